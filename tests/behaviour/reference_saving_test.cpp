#include "engine/stream/object_file.h"
#include "frame/host/object3d.h"
#include "graph/post_processing_instruction.h"
#include "tests/behaviour/element_support.h"
#include "tests/support/failing_stream.h"
#include "tests/support/recording_context.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

constexpr int kProperties = 0x1000, kTarget = 0x1001, kChildren = 0x1002, kSelectors = 0x1003,
              kInstructions = 0x1004, kObject = 0x1005, kSecondObject = 0x1006;

using Ids = std::vector<int>;

Counted<Reference> Reloaded(Reference& reference) {
    const auto context = MakeContext();
    return CountedCast<Reference>(LoadFromBytes(SaveToBytes(reference, *context), *context));
}

Counted<Reference> WithTarget(const Var& target) {
    auto reference = NewReference();
    reference->SetTarget(target);
    return reference;
}

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

TEST(ReferenceReading, AttachesASecondObjectToTheFirst) {
    const auto reference = NewReference();
    const auto first = Make<k3::Object3D>(), second = Make<k3::Object3D>();
    EXPECT_EQ(Feed(*reference, kObject, first.Get()), ResultEnum::kSuccess);
    EXPECT_EQ(Cast<k3::Object3D>(reference->GetTarget()), first.Get());
    EXPECT_EQ(Feed(*reference, kObject, second.Get()), ResultEnum::kSuccess);
    EXPECT_EQ(Cast<k3::Object3D>(reference->GetTarget()), first.Get());
    EXPECT_EQ(first->GetHandleObject(), second.Get());
    EXPECT_EQ(second->GetHandleObject(), nullptr);
}

TEST(ReferenceReading, PutsTheObjectOfTheSecondChunkInFront) {
    const auto reference = NewReference();
    const auto partner = Make<k3::Object3D>(), object = Make<k3::Object3D>();
    Feed(*reference, kObject, partner.Get());
    EXPECT_EQ(Feed(*reference, kSecondObject, object.Get()), ResultEnum::kSuccess);
    EXPECT_EQ(Cast<k3::Object3D>(reference->GetTarget()), object.Get());
    EXPECT_EQ(object->GetHandleObject(), partner.Get());
    EXPECT_EQ(partner->GetHandleObject(), nullptr);
}

TEST(ReferenceReading, TakesTheObjectOfTheSecondChunkAlone) {
    for (const Var& before : {Var(), Var(L"file"), Var(Make<k3::Generic>())}) {
        const auto reference = WithTarget(before);
        const auto object = Make<k3::Object3D>();
        Feed(*reference, kSecondObject, object.Get());
        EXPECT_EQ(Cast<k3::Object3D>(reference->GetTarget()), object.Get());
        EXPECT_EQ(object->GetHandleObject(), nullptr);
        EXPECT_EQ(object->GetRefCount(), 2);
    }
}

TEST(ReferenceReading, ReplacesATargetThatIsNoObject) {
    const auto reference = WithTarget(Var(L"file"));
    const auto object = Make<k3::Object3D>();
    Feed(*reference, kObject, object.Get());
    EXPECT_EQ(Cast<k3::Object3D>(reference->GetTarget()), object.Get());
}

TEST(ReferenceReading, KeepsTheTargetWhereNoObjectIsRead) {
    const auto object = Make<k3::Object3D>();
    const auto reference = WithTarget(Var(object));
    for (const int chunk : {kObject, kSecondObject}) {
        EXPECT_EQ(Feed(*reference, chunk, nullptr), ResultEnum::kSuccess);
        EXPECT_EQ(Cast<k3::Object3D>(reference->GetTarget()), object.Get());
        EXPECT_EQ(object->GetHandleObject(), nullptr);
    }
}

TEST(ReferenceReading, TakesNothingFromAnObjectOfAnotherClass) {
    const auto reference = NewReference();
    reference->SetProperty(Prop::kName, Var(L"n"));
    reference->AddInstruction();
    for (const int chunk : {kProperties, kChildren, kInstructions})
        EXPECT_EQ(Feed(*reference, chunk, NewInstance().Get()), ResultEnum::kSuccess);
    EXPECT_TRUE(reference->GetProperty(Prop::kName, 0).IsEmpty());
    EXPECT_EQ(reference->GetChildCount(), 0);
    EXPECT_EQ(reference->GetInstructionCount(), 0);
}

TEST(ReferenceReading, ReplacesPropertiesAndInstructions) {
    const auto reference = NewReference(), other = NewReference();
    reference->SetProperty(Prop::kName, Var(L"n"));
    reference->AddInstruction();
    const auto instruction = other->AddInstruction();
    EXPECT_EQ(Feed(*reference, kProperties, MapOf({{Var(2), Var(5)}}).ToMap()), ResultEnum::kSuccess);
    EXPECT_EQ(Feed(*reference, kInstructions, ArrayOf({Var(instruction)}).ToArray()), ResultEnum::kSuccess);
    EXPECT_TRUE(reference->GetProperty(Prop::kName, 0).IsEmpty());
    EXPECT_EQ(reference->GetProperty(Prop::kLocalMatrix, 0), Var(5));
    ASSERT_EQ(reference->GetInstructionCount(), 1);
    EXPECT_EQ(reference->GetInstruction(0), instruction);
}

TEST(ReferenceReading, DoesNotReadItsSelectorsBack) {
    const auto table = NewTable();
    const auto reference = NewReferenceIn(*table);
    reference->AddSelectorPath(IdPath({L"a"}));
    const Var map = SavedMap(*reference, kSelectors);
    ASSERT_EQ(map.size(), 1);
    const auto plain = NewTable();  // a class without chunks of its own
    const auto reader = NewReferenceIn(*table);
    EXPECT_EQ(Feed(*reader, kSelectors, map.ToMap()), Feed(*plain, kSelectors, map.ToMap()));
    EXPECT_EQ(reader->GetSelectorCount(), 0);
}

TEST(ReferenceReading, LeavesOtherChunksToTheBase) {
    const auto reference = NewReference();
    const auto plain = NewTable();
    for (const int chunk : {0x0fff, 0x1007, 0x2000})
        EXPECT_EQ(Feed(*reference, chunk, NewReference().Get()), Feed(*plain, chunk, NewReference().Get()));
    EXPECT_TRUE(reference->GetTarget().IsEmpty());
}

TEST(ReferenceFile, BringsBackAllButSelectorsTableAndAnswers) {
    const auto table = NewTable();
    const auto part = NewReference(), reference = NewReferenceIn(*table);
    const auto child = part->CreateInstance(), use = reference->CreateInstance();
    part->SetProperty(Prop::kName, Var(L"part"));
    reference->AddChild(child.Get());
    reference->AddSelector(PathOf({child.Get()}));
    child->AddLocalSelector(PathOf({child.Get()}));
    reference->SetTarget(MapOf({{Var(L"k"), Var(L"e9")}}));
    reference->ResolveTarget(Var(L"k"));
    reference->SetProperty(Prop::kName, Var(L"root"));
    reference->SetProperty(Prop::kBsId, Var(L"server"));
    const auto instruction = reference->AddInstruction();
    instruction->SetMethodId(12);
    instruction->SetArgument(1, Var(L"x"));

    const auto loaded = Reloaded(*reference);
    ASSERT_TRUE(loaded);
    EXPECT_EQ(loaded->GetProperty(Prop::kName, 0), Var(L"root"));
    EXPECT_EQ(loaded->GetProperty(Prop::kBsId, 0), Var(L"server"));
    EXPECT_EQ(loaded->GetTarget(), MapOf({{Var(L"k"), Var(L"e9")}}));
    ASSERT_EQ(loaded->GetChildCount(), 1);
    EXPECT_EQ(loaded->GetChild(0)->GetReference()->GetProperty(Prop::kName, 0), Var(L"part"));
    EXPECT_EQ(loaded->GetChild(0)->GetSelectorCount(), 1);
    ASSERT_EQ(loaded->GetInstructionCount(), 1);
    EXPECT_EQ(loaded->GetInstruction(0)->GetMethodId(), 12);
    EXPECT_EQ(loaded->GetInstruction(0)->GetArgument(1), Var(L"x"));
    EXPECT_EQ(loaded->GetSelectorCount(), 0);
    EXPECT_EQ(loaded->GetInstanceCount(), 0);
    EXPECT_EQ(loaded->GetLookupTable(), nullptr);
}

TEST(ReferenceFile, BringsBackAPairOfObjects) {
    const auto object = Make<k3::Mesh>(), partner = Make<k3::Mesh>();
    object->SetGeometry({0, 0, 0, 1, 0, 0, 0, 1, 0}, {}, {0, 1, 2}, {});
    object->AttachHandleObject(partner.Get());
    const auto loaded = Reloaded(*WithTarget(Var(object)));
    ASSERT_TRUE(loaded);
    const auto* mesh = Cast<k3::Mesh>(loaded->GetTarget());
    ASSERT_TRUE(mesh);
    EXPECT_EQ(mesh->GetIndices().size(), 3U);
    const auto* second = Cast<k3::Mesh>(mesh->GetHandleObject());
    ASSERT_TRUE(second);
    EXPECT_TRUE(second->GetIndices().empty());
    EXPECT_EQ(second->GetHandleObject(), nullptr);
}

TEST(ReferenceFile, IsTheSameWhenWrittenAgain) {
    const auto root = NewReference(), part = NewReference();
    root->AddChild(part->CreateInstance().Get());
    root->AddChild(part->CreateInstance().Get());
    root->SetProperty(Prop::kLocalId, Var(L"e1"));
    part->SetTarget(Var(Make<k3::Mesh>()));
    part->AddInstruction()->SetCommandKey(L"some.class");
    const auto context = MakeContext();
    const std::string first = SaveToBytes(*root, *context);
    const auto loaded = LoadFromBytes(first, *context);
    ASSERT_TRUE(loaded);
    EXPECT_FALSE(first.empty());
    const std::string second = SaveToBytes(*loaded, *context);
    const auto again = LoadFromBytes(second, *context);
    ASSERT_TRUE(again);
    EXPECT_TRUE(SaveToBytes(*again, *context) == second);
    EXPECT_TRUE(SaveToBytes(*root, *context) == first);
}

}  // namespace
}  // namespace qn::test
