#include "tests/engine/stream/knot.h"

#include "engine/runtime/class_table.h"
#include "engine/stream/object_file.h"
#include "tests/support/recording_context.h"

#include <gtest/gtest.h>

namespace qn::test {

Knot::Knot(std::string text) : name(std::move(text)) {}

Knot& Knot::Link(Interface* object) {
    links.emplace_back(object);
    return *this;
}

ResultEnum Knot::Save(Stream* stream, Context* context) {
    if (saveInstead) return saveInstead(*stream);
    if (const auto base = ReferenceSource::Save(stream, context); !Succeeded(base)) return base;
    if (stream->BeginChunk(kNameChunk)) {
        stream->WriteData(name.data(), 1, static_cast<int>(name.size()));
        stream->EndChunk();
    }
    for (const auto& link : links)
        stream->WriteObjectChunk(link.Get(), context, kLinkChunk);
    if (!weakLinks.empty() && stream->BeginChunk(kWeakChunk)) {
        for (const auto& link : weakLinks)
            stream->WriteObjectNumber(link.Get(), context, true);
        stream->EndChunk();
    }
    if (!saveExtra || !stream->BeginChunk(kExtraChunk)) return ResultEnum::kSuccess;
    const ResultEnum result = saveExtra(*stream);
    stream->EndChunk();
    return result;
}

ResultEnum Knot::Load(Stream* stream, Context* context) {
    const ResultEnum result = ReferenceSource::Load(stream, context);
    wasRead = true;
    return result;
}

ResultEnum Knot::HandleChunk(int id, Stream* stream, Context* context) {
    if (id == kNameChunk) {
        name.resize(stream->Remaining());
        stream->ReadData(name.data(), 1, static_cast<int>(name.size()));
    } else if (id == kLinkChunk) {
        links.push_back(stream->ReadObject(context));
        if (const auto* knot = Cast<Knot>(links.back().Get())) linkWasRead.push_back(knot->wasRead);
    } else if (id == kWeakChunk) {
        while (stream->Remaining() > 0)
            weakLinks.emplace_back(stream->ReadObjectNumber(context).Get());
    } else if (id == kExtraChunk) {
        return loadExtra ? loadExtra(*stream) : ResultEnum::kSuccess;
    } else {
        return ReferenceSource::HandleChunk(id, stream, context);
    }
    return ResultEnum::kSuccess;
}

bool Knot::IsTypeOf(const char* type) const {
    return EqualKeys(type, kKey) || ReferenceSource::IsTypeOf(type);
}

const ClassRecord& Knot::StaticClass() {
    static const ClassRecord& record = InternClass("qn::test::Knot");
    return record;
}

void* Knot::CastTo(const ClassRecord& wanted) {
    return CastThrough<Knot, ReferenceSource>(this, wanted);
}

namespace {

/// Files of knots can be read before the first one was made.
const bool g_known = (AddEngineClass({Knot::kKey, &MakeOf<Knot>}), true);

}  // namespace

Counted<Knot> MakeKnot(std::string name) {
    static_cast<void>(g_known);
    return Make<Knot>(std::move(name));
}

std::string Saved(Interface& root) {
    const auto context = MakeContext();
    auto bytes = SaveToBytes(root, *context);
    EXPECT_FALSE(bytes.empty()) << context->GetFailureText().ToUtf8();
    return bytes;
}

Counted<Interface> Loaded(std::string_view bytes) {
    const auto context = MakeContext();
    auto root = LoadFromBytes(bytes, *context);
    EXPECT_TRUE(root) << context->GetFailureText().ToUtf8();
    return root;
}

}  // namespace qn::test
