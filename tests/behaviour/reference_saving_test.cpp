#include "frame/host/object3d.h"
#include "graph/post_processing_instruction.h"
#include "tests/behaviour/reloading_support.h"
#include "tests/support/failing_stream.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

using namespace ReferenceChunk;

using Ids = std::vector<int>;

TEST(ReferenceSaving, WritesItsChunksInOrder) {
    const auto table = NewTable();
    const auto reference = NewReferenceIn(*table);
    const auto child = NewReference()->CreateInstance();
    reference->AddInstruction();
    reference->AddSelector(PathOf({child.Get()}));
    reference->AddChild(child.Get());
    reference->SetTarget(Var(L"file"));
    reference->SetParamVar(5, Var(1));
    const auto tape = TapeOf(*reference);
    EXPECT_EQ(tape->OwnIds(), (Ids{kProperties, kTarget, kChildren, kSelectors, kInstructions}));
    EXPECT_LT(tape->Chunks().front().id, kProperties) << "what the base holds comes first";
    EXPECT_FALSE(tape->Find(kTarget)->isObject);
    for (const int id : {kProperties, kChildren, kSelectors, kInstructions})
        EXPECT_TRUE(tape->Find(id)->isObject) << id;
    EXPECT_TRUE(Cast<VarMap>(tape->ObjectAt(kSelectors)));
    const auto* children = Cast<VarArray>(tape->ObjectAt(kChildren));
    ASSERT_TRUE(children);
    ASSERT_EQ(children->GetCount(), 1);
    EXPECT_EQ(Cast<Instance>(children->Get(0)), child.Get());
}

TEST(ReferenceSaving, WritesNothingThatIsNotThere) {
    EXPECT_EQ(TapeOf(*NewReference())->OwnIds(), Ids{kProperties});
}

TEST(ReferenceSaving, WritesNoListThatBecameEmpty) {
    const auto table = NewTable();
    const auto reference = NewReferenceIn(*table);
    const auto child = NewReference()->CreateInstance();
    reference->AddChild(child.Get());
    reference->AddSelector(PathOf({child.Get()}));
    reference->AddInstruction();
    reference->RemoveChildAt(0);
    reference->RemoveSelector(0);
    reference->RemoveInstruction(0);
    EXPECT_EQ(TapeOf(*reference)->OwnIds(), Ids{kProperties});
}

TEST(ReferenceSaving, EndsWithTheResultOfABaseThatFails) {
    const auto reference = WithTarget(Var(L"file"));
    reference->SetParamVar(5, Var(1));
    const auto stream = Make<FailingStream>();
    stream->FailBeginChunk(1);
    stream->FailWrite(1);
    stream->FailObject(1);
    EXPECT_LT(ToInt(reference->Save(stream.Get(), MakeContext().Get())), 1);
    for (const std::string& line : stream->Log())
        EXPECT_EQ(line.find(" 100"), std::string::npos) << line;
}

TEST(ReferenceSaving, GoesOnWhereTheChunkOfTheTargetDoesNotOpen) {
    const auto reference = WithTarget(Var(L"file"));
    reference->AddInstruction();
    const auto tape = Make<ChunkTape>();
    tape->Refuse(kTarget);
    EXPECT_EQ(reference->Save(tape.Get(), MakeContext().Get()), ResultEnum::kSuccess);
    EXPECT_EQ(tape->OwnIds(), (Ids{kProperties, kInstructions}));
    EXPECT_FALSE(tape->HasFailed()) << "nothing of the target is written elsewhere";
}

TEST(ReferenceSaving, ClosesTheChunkOfATargetThatCannotBeWrittenAndGoesOn) {
    const auto reference = WithTarget(Var(L"file"));
    reference->AddInstruction();
    const auto stream = Make<FailingStream>();
    stream->FailWrite(1);
    EXPECT_EQ(reference->Save(stream.Get(), MakeContext().Get()), ResultEnum::kSuccess);
    EXPECT_EQ(stream->OpenChunks(), 0);
    EXPECT_EQ(stream->Log().back(), "object 1004 k3_vararray");
}

TEST(ReferenceSaving, LeavesTheLocalIdOutAndKeepsIt) {
    const auto reference = NewReference();
    reference->SetProperty(Prop::kLocalId, Var(L"e1"));
    EXPECT_FALSE(SavesProperty(*reference, Prop::kLocalId));
    EXPECT_EQ(reference->GetProperty(Prop::kLocalId, 0), Var(L"e1"));
    EXPECT_TRUE(SavesProperty(*reference, Prop::kKeepLocalId)) << "the key of the mark was made by the test";
    EXPECT_TRUE(Reloaded(*reference)->GetProperty(Prop::kLocalId, 0).IsEmpty());
}

TEST(ReferenceSaving, WritesTheLocalIdIfItIsMarked) {
    for (const Var& mark : {Var(true), Var(false)}) {
        const auto reference = NewReference();
        reference->SetProperty(Prop::kLocalId, Var(L"e1"));
        reference->SetProperty(Prop::kKeepLocalId, mark);
        EXPECT_EQ(Reloaded(*reference)->GetProperty(Prop::kLocalId, 0), Var(L"e1"));
    }
}

TEST(ReferenceSaving, WritesAnEmptyKeyForAMissingLocalId) {
    const Var saved = SavedMap(*NewReference(), kProperties);
    EXPECT_EQ(saved.size(), 1);
    ASSERT_NE(saved.Lookup(Key(Prop::kLocalId)), nullptr);
    EXPECT_TRUE(saved.Lookup(Key(Prop::kLocalId))->IsEmpty());
}

TEST(ReferenceSaving, WritesAnObjectAloneInOneChunk) {
    const auto object = Make<k3::Object3D>();
    const auto tape = TapeOf(*WithTarget(Var(object)));
    EXPECT_EQ(tape->OwnIds(), (Ids{kProperties, kObject}));
    EXPECT_EQ(tape->ObjectAt(kObject), static_cast<Interface*>(object.Get()));
}

TEST(ReferenceSaving, WritesAPairInTwoChunksThePartnerFirst) {
    const auto object = Make<k3::Object3D>(), partner = Make<k3::Object3D>();
    object->AttachHandleObject(partner.Get());
    const auto tape = TapeOf(*WithTarget(Var(object)));
    EXPECT_EQ(tape->OwnIds(), (Ids{kProperties, kObject, kSecondObject}));
    EXPECT_EQ(tape->ObjectAt(kObject), static_cast<Interface*>(partner.Get()));
    EXPECT_EQ(tape->ObjectAt(kSecondObject), static_cast<Interface*>(object.Get()));
}

TEST(ReferenceSaving, WritesEveryOtherTargetAsAValue) {
    const Var generic = Var(Make<k3::Generic>());
    for (const Var& target : {Var(L"file"), Var(5), Var(false), MapOf({{Var(L"k"), Var(L"e1")}}),
                              IdPath({L"e1", L"e2"}), generic}) {
        const auto reference = WithTarget(target);
        const auto tape = TapeOf(*reference);
        EXPECT_EQ(tape->OwnIds(), (Ids{kProperties, kTarget})) << int(target.GetTag());
        const auto reader = NewReference();
        ASSERT_TRUE(tape->Enter(kTarget));
        EXPECT_EQ(reader->HandleChunk(kTarget, tape.Get(), MakeContext().Get()), ResultEnum::kSuccess);
        EXPECT_EQ(reader->GetTarget().GetTag(), target.GetTag());
        EXPECT_EQ(reader->GetTarget(), target) << int(target.GetTag());
    }
}

}  // namespace
}  // namespace qn::test
