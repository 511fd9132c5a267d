#include "frame/host/collections.h"
#include "frame/host/params.h"
#include "tests/engine/values/flat_stream.h"
#include "tests/engine/values/value_builders.h"

#include <gtest/gtest.h>
#include <vector>

namespace qn {
namespace {

using test::FlatStream;

/// Notes the chunks that reach it; answers its own ids with what `answer` says.
class Thing : public ReferenceSource {
public:
    std::vector<int> chunks;
    ResultEnum answer = ResultEnum::kSuccess;
    ResultEnum HandleChunk(int id, Stream* stream, Context* context) override {
        chunks.push_back(id);
        return id >= 0x1000 ? answer : ReferenceSource::HandleChunk(id, stream, context);
    }
    using ReferenceSource::CloneFrom;
};

TEST(ReferenceSource, HasInertDefaults) {
    const auto thing = Make<Thing>();
    Var out;
    EXPECT_EQ(thing->OnNotify(Message()), ResultEnum::kNothing);
    EXPECT_EQ(thing->OnNotify(thing.Get(), 1, 2), ResultEnum::kNothing);
    EXPECT_EQ(thing->SaveToVar(out, nullptr), ResultEnum::kNothing);
    EXPECT_EQ(thing->LoadFromVar(Var(1), nullptr), ResultEnum::kNothing);
    EXPECT_FALSE(thing->Clone(0x80));
    thing->SetParamVar(1, Var(1));
    thing->Clear();
    thing->Notify(3300, Var(0));
    EXPECT_EQ(thing->GetParamVar(1), Var(1));
}

TEST(ReferenceSource, ClonesParametersAndMetadataPrivatelyWhateverTheFlags) {
    const auto from = Make<Thing>(), to = Make<Thing>();
    from->SetParamVar(1, test::ArrayOf({Var(1)}));
    from->SetMetaValue(Var("k"), test::MapOf({{Var("x"), Var(1)}}));
    to->SetParamVar(9, Var(9));
    for (const unsigned flags : {0u, 0xffffffffu}) {
        EXPECT_EQ(to->CloneFrom(*from, flags), ResultEnum::kSuccess);
        EXPECT_EQ(to->GetParamVar(1), from->GetParamVar(1));
        EXPECT_NE(to->GetParamVar(1).ToArray(), from->GetParamVar(1).ToArray());
        EXPECT_TRUE(to->GetParamVar(9).IsEmpty());
        EXPECT_NE(to->GetMetadata(false), from->GetMetadata(false));
        EXPECT_EQ(Var(to->GetMetadata(false)), Var(from->GetMetadata(false)));
    }
}

TEST(ReferenceSource, ClonesAbsenceToo) {
    const auto from = Make<Thing>(), to = Make<Thing>();
    to->SetParamVar(9, Var(9));
    to->SetMetaValue(Var("k"), Var(1));
    to->CloneFrom(*from, 0);
    EXPECT_EQ(to->GetMetadata(false), nullptr);
    EXPECT_TRUE(to->GetParamVar(9).IsEmpty());
}

TEST(ReferenceSource, ClonedFromItselfStaysAsItIs) {
    const auto thing = Make<Thing>();
    thing->SetMetaValue(Var("k"), Var(1));
    const VarMap* const map = thing->GetMetadata(false);
    EXPECT_EQ(thing->CloneFrom(*thing, 0), ResultEnum::kSuccess);
    EXPECT_EQ(thing->GetMetadata(false), map);
}

TEST(ReferenceSource, CopiesFromItsOwnKindOnly) {
    const auto thing = Make<Thing>(), other = Make<Thing>();
    other->SetParamVar(1, Var(1));
    EXPECT_EQ(thing->CopyFrom(nullptr, 0), ResultEnum::kWrongClass);
    EXPECT_EQ(thing->CopyFrom(Params::Create().Get(), 0), ResultEnum::kWrongClass);
    EXPECT_EQ(thing->CopyFrom(other.Get(), 0), ResultEnum::kSuccess);
    EXPECT_EQ(thing->GetParamVar(1), Var(1));
}

TEST(ReferenceSourceStream, KeepsParametersAndSharesMetadata) {
    const auto thing = Make<Thing>(), loaded = Make<Thing>();
    thing->SetParamVar(-3, Var("p"));
    thing->SetParamVar(0x94, Var(VarMap::Create()));
    thing->SetMetaValue(Var("k"), Var(1));
    const auto stream = Make<FlatStream>();
    EXPECT_EQ(thing->Save(stream.Get(), nullptr), ResultEnum::kSuccess);
    stream->Rewind();
    EXPECT_EQ(loaded->Load(stream.Get(), nullptr), ResultEnum::kSuccess);
    EXPECT_EQ(loaded->chunks, (std::vector<int>{1, 2}));
    EXPECT_EQ(loaded->GetParamVar(-3), Var("p"));
    EXPECT_EQ(loaded->GetParamObject(0x94), thing->GetParamObject(0x94));
    EXPECT_EQ(loaded->GetMetadata(false), thing->GetMetadata(false));
}

TEST(ReferenceSourceStream, WritesNoChunkForWhatIsMissingOrEmpty) {
    const auto thing = Make<Thing>();
    const auto stream = Make<FlatStream>();
    EXPECT_EQ(thing->Save(stream.Get(), nullptr), ResultEnum::kSuccess);
    thing->GetMetadata(true);
    thing->GetParams(true);
    EXPECT_EQ(thing->Save(stream.Get(), nullptr), ResultEnum::kSuccess);
    EXPECT_TRUE(stream->bytes.empty());
}

TEST(ReferenceSourceStream, SkipsUnknownChunks) {
    const auto stream = Make<FlatStream>();
    for (const unsigned id : {0x0eu, 0x0fffu}) {
        stream->BeginChunk(id);
        stream->WriteInt(5);
        stream->EndChunk();
    }
    stream->Rewind();
    EXPECT_EQ(Make<Thing>()->Load(stream.Get(), nullptr), ResultEnum::kSuccess);
}

TEST(ReferenceSourceStream, StopsAtTheFirstResultBelowOneOutsideTheChunk) {
    for (const ResultEnum answer : {ResultEnum::kNothing, ResultEnum::kWriteFailed}) {
        const auto stream = Make<FlatStream>();
        for (const unsigned id : {0x1000u, 0x1001u}) {
            stream->BeginChunk(id);
            stream->WriteInt(5);
            stream->EndChunk();
        }
        stream->Rewind();
        const auto thing = Make<Thing>();
        thing->answer = answer;
        EXPECT_EQ(thing->Load(stream.Get(), nullptr), answer);
        EXPECT_EQ(thing->chunks, (std::vector<int>{0x1000}));
        EXPECT_TRUE(stream->NextChunk());
        EXPECT_EQ(stream->GetChunkId(), 0x1001);
    }
}

TEST(ReferenceSourceStream, FailsForAParameterTableThatIsCut) {
    const auto whole = Make<FlatStream>();
    const auto thing = Make<Thing>();
    for (int id = 0; id < 3; ++id)
        thing->SetParamVar(id, Var("value"));
    thing->Save(whole.Get(), nullptr);
    const std::string payload = whole->bytes.substr(8);
    for (std::size_t size = 0; size < payload.size(); ++size) {
        const auto stream = Make<FlatStream>();
        stream->BeginChunk(1);
        if (size) stream->WriteData(payload.data(), 1, static_cast<int>(size));
        stream->EndChunk();
        stream->Rewind();
        EXPECT_EQ(Make<Thing>()->Load(stream.Get(), nullptr), ResultEnum::kNothing) << size;
        EXPECT_TRUE(stream->HasFailed());
    }
}

TEST(ReferenceSourceStream, AnswersEveryWriteThatFails) {
    const auto thing = Make<Thing>();
    thing->SetParamVar(1, Var("p"));
    thing->SetMetaValue(Var("k"), Var(1));
    for (int failing = 1;; ++failing) {
        const auto stream = Make<FlatStream>();
        stream->failingWrite = failing;
        const ResultEnum result = thing->Save(stream.Get(), nullptr);
        if (result == ResultEnum::kSuccess) break;
        EXPECT_EQ(result, ResultEnum::kWriteFailed);
        ASSERT_LT(failing, 100);
    }
}

TEST(ReferenceSourceStream, LosesMetadataThatIsNoMap) {
    const auto stream = Make<FlatStream>();
    stream->WriteObjectChunk(VarArray::Create().Get(), nullptr, 2);
    stream->Rewind();
    const auto thing = Make<Thing>();
    EXPECT_EQ(thing->Load(stream.Get(), nullptr), ResultEnum::kSuccess);
    EXPECT_EQ(thing->GetMetadata(false), nullptr);
}

}  // namespace
}  // namespace qn
