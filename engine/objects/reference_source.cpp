#include "frame/host/reference_source.h"

#include "engine/objects/chunk_ids.h"
#include "engine/stream/stream_writer.h"
#include "engine/values/value_copier.h"
#include "frame/host/collections.h"
#include "frame/host/params.h"
#include "frame/host/stream.h"

namespace qn {
namespace {

/// Whether a reader will find the row: a value whose object is not stored would be an empty one, and a table
/// has none of those.
bool IsRowStored(const Var& value, Stream* stream) {
    return !value.HoldsInterface() || IsStored(stream, value.ToInterface(), value.IsWeak());
}

bool SaveParams(const Params& params, Stream* stream, Context* context) {
    int stored = 0;
    for (int i = 0; i < params.GetCount(); ++i)
        stored += IsRowStored(params.ValueAt(i), stream) ? 1 : 0;
    if (stored == 0) return true;
    if (!stream->BeginChunk(chunk::kParams)) return false;
    bool written = stream->WriteInt(stored);
    for (int i = 0; written && i < params.GetCount(); ++i)
        if (IsRowStored(params.ValueAt(i), stream))
            written = stream->WriteInt(params.IdAt(i)) && params.ValueAt(i).Save(stream, context);
    stream->EndChunk();
    return written;
}

bool LoadParams(Params& params, Stream* stream, Context* context) {
    constexpr std::size_t kLeastRow = sizeof(int) + 1;  // an id and a tag
    int count = 0;
    if (!stream->ReadInt(count) || count < 0 ||
        static_cast<std::size_t>(count) > stream->Remaining() / kLeastRow)
        return stream->Fail(L"a parameter table claims more rows than its chunk can hold");
    for (int i = 0, previous = 0; i < count; ++i) {
        int id = 0;
        Var value;
        if (!stream->ReadInt(id)) return stream->Fail(L"a parameter table ends before its last row");
        if (i > 0 && id <= previous) return stream->Fail(L"a parameter table is out of order");
        previous = id;
        if (!value.Load(stream, context)) return false;
        params.SetParamVar(id, value);
    }
    return true;
}

}  // namespace

ResultEnum ReferenceTarget::OnNotify(const Message&) {
    return ResultEnum::kNothing;
}
ResultEnum ReferenceTarget::OnNotify(ReferenceSource*, unsigned, unsigned) {
    return ResultEnum::kNothing;
}

bool ReferenceTarget::IsTypeOf(const char* name) const {
    return EqualKeys(name, "k3_reftarget") || Extension::IsTypeOf(name);
}

const ClassRecord& ReferenceTarget::StaticClass() {
    static const ClassRecord& record = InternClass("qn::ReferenceTarget");
    return record;
}

void* ReferenceTarget::CastTo(const ClassRecord& wanted) {
    return CastThrough<ReferenceTarget, Extension>(this, wanted);
}

ResultEnum ReferenceSource::HandleChunk(int id, Stream* stream, Context* context) {
    if (id == chunk::kParams) {
        Params* params = Extension::GetParams(true);
        return params && LoadParams(*params, stream, context) ? ResultEnum::kSuccess : ResultEnum::kNothing;
    }
    if (id == chunk::kMetadata) {
        const Counted<Interface> map = stream->ReadObject(context);
        Extension::SetMetadata(Cast<VarMap>(map.Get()));
    }
    return ResultEnum::kSuccess;
}

void ReferenceSource::Clear() {}
bool ReferenceSource::IsShareable() const {
    return true;
}
ResultEnum ReferenceSource::SaveToVar(Var&, Context*) {
    return ResultEnum::kNothing;
}
ResultEnum ReferenceSource::LoadFromVar(const Var&, Context*) {
    return ResultEnum::kNothing;
}
Counted<ReferenceSource> ReferenceSource::Clone(unsigned) const {
    return nullptr;
}
void ReferenceSource::Notify(unsigned, const Var&) {}

ResultEnum ReferenceSource::Save(Stream* stream, Context* context) {
    if (params_ && params_->GetCount() > 0 && !SaveParams(*params_, stream, context))
        return ResultEnum::kWriteFailed;
    // The map is an object of the stream, so that several holders keep sharing it.
    if (metadata_ && metadata_->GetCount() > 0 &&
        !stream->WriteObjectChunk(metadata_, context, chunk::kMetadata))
        return ResultEnum::kWriteFailed;
    return ResultEnum::kSuccess;
}

ResultEnum ReferenceSource::Load(Stream* stream, Context* context) {
    while (stream->NextChunk()) {
        const ResultEnum result = HandleChunk(stream->GetChunkId(), stream, context);
        stream->EndChunk();
        if (!Succeeded(result)) return result;
    }
    return ResultEnum::kSuccess;
}

ResultEnum ReferenceSource::CopyFrom(const Interface* source, unsigned flags) {
    const auto* other = Cast<ReferenceSource>(source);
    return other ? CloneFrom(*other, flags) : ResultEnum::kWrongClass;
}

bool ReferenceSource::IsTypeOf(const char* name) const {
    return EqualKeys(name, "k3_refsource") || ReferenceTarget::IsTypeOf(name);
}

const ClassRecord& ReferenceSource::StaticClass() {
    static const ClassRecord& record = InternClass("qn::ReferenceSource");
    return record;
}

void* ReferenceSource::CastTo(const ClassRecord& wanted) {
    return CastThrough<ReferenceSource, ReferenceTarget>(this, wanted);
}

ResultEnum ReferenceSource::CloneFrom(const ReferenceSource& source, unsigned) {
    if (&source == this) return ResultEnum::kSuccess;
    // One copier, so that what parameters and metadata share stays shared.
    ValueCopier copier;
    const Counted<Params> params = copier.CopyParams(source.params_);
    const Counted<VarMap> metadata = copier.CopyMap(source.metadata_);
    Extension::SetParams(params.Get());
    Extension::SetMetadata(metadata.Get());
    return ResultEnum::kSuccess;
}

}  // namespace qn
