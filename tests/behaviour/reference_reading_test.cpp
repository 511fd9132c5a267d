#include "frame/host/object3d.h"
#include "graph/post_processing_instruction.h"
#include "tests/behaviour/reloading_support.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

using namespace ReferenceChunk;

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
