#include "engine/stream/builtin_writers.h"

#include "frame/host/collections.h"
#include "frame/host/params.h"
#include "frame/host/stream.h"

namespace qn {
namespace {

constexpr int kParamChunk = 0x1000;    // id, value; one for each
constexpr int kEntriesChunk = 0x1000;  // the numbers of all entries
constexpr std::size_t kNumberSize = 4;

ResultEnum SaveParams(Interface& object, Stream* stream, Context* context) {
    const auto& params = *Cast<Params>(&object);
    for (int i = 0; i < params.GetCount(); ++i) {
        if (!stream->BeginChunk(kParamChunk)) return ResultEnum::kWriteFailed;
        const bool written = stream->WriteInt(params.IdAt(i)) && params.ValueAt(i).Save(stream, context);
        stream->EndChunk();
        if (!written) return ResultEnum::kWriteFailed;
    }
    return ResultEnum::kSuccess;
}

ResultEnum LoadParams(Interface& object, Stream* stream, Context* context) {
    auto* params = Cast<Params>(&object);
    if (!params) return ResultEnum::kWrongClass;
    for (; stream->NextChunk(); stream->EndChunk()) {
        int id = 0;
        Var value;
        if (stream->GetChunkId() != kParamChunk) continue;
        if (stream->ReadInt(id) && value.Load(stream, context)) params->SetParamVar(id, value);
    }
    return stream->HasFailed() ? ResultEnum::kWriteFailed : ResultEnum::kSuccess;
}

ResultEnum SaveArray(Interface& object, Stream* stream, Context* context) {
    auto& array = *Cast<InterfaceArray>(&object);
    const ResultEnum base = array.ReferenceSource::Save(stream, context);
    if (!Succeeded(base)) return base;
    if (array.GetCount() == 0) return ResultEnum::kSuccess;
    if (!stream->BeginChunk(kEntriesChunk)) return ResultEnum::kWriteFailed;
    bool written = true;
    for (int i = 0; written && i < array.GetCount(); ++i)
        written = stream->WriteObjectNumber(array.Get(i), context, !array.IsStrong());
    stream->EndChunk();
    return written ? ResultEnum::kSuccess : ResultEnum::kWriteFailed;
}

ResultEnum LoadArray(Interface& object, Stream* stream, Context* context) {
    auto* array = Cast<InterfaceArray>(&object);
    if (!array) return ResultEnum::kWrongClass;
    for (; stream->NextChunk(); stream->EndChunk()) {
        if (stream->GetChunkId() != kEntriesChunk) {
            if (const ResultEnum result = array->HandleChunk(stream->GetChunkId(), stream, context);
                !Succeeded(result))
                return result;
            continue;
        }
        while (stream->Remaining() >= kNumberSize)
            array->Add(stream->ReadObjectNumber(context).Get());
    }
    return stream->HasFailed() ? ResultEnum::kWriteFailed : ResultEnum::kSuccess;
}

}  // namespace

std::vector<ObjectWriter> BuiltinWriters() {
    return {
        {"k3_params", nullptr, &SaveParams, &LoadParams},
        {"k3_interfacearray", nullptr, &SaveArray, &LoadArray},
        {"k3_pointerarray", nullptr, &SaveArray, &LoadArray},
        {"k3_collection", nullptr, &SaveArray, &LoadArray},
    };
}

}  // namespace qn
