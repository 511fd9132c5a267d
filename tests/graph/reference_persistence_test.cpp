#include "frame/host/object3d.h"
#include "graph/post_processing_instruction.h"
#include "tests/graph/graph_support.h"
#include "tests/support/failing_stream.h"

namespace qn::test {

namespace {

std::vector<std::string> LogOfSave(ReferenceSource& element) {
    FailingStream stream;
    EXPECT_EQ(element.Save(&stream, nullptr), ResultEnum::kSuccess);
    return stream.Log();
}

}  // namespace

TEST(ReferencePersistence, KeepsPropertiesAndParameters) {
    const auto reference = MakeReference();
    reference->SetProperty(Prop::kName, Var(L"door"));
    reference->SetProperty(Prop::kBsId, Var(L"s:1"));
    const auto loaded = ReloadedAs(*reference);
    EXPECT_EQ(loaded->GetProperty(Prop::kName, 0), Var(L"door"));
    EXPECT_EQ(loaded->GetParamVar(0x9e), Var(L"s:1"));
}

TEST(ReferencePersistence, KeepsTheLocalIdOnlyOfAMarkedElement) {
    const auto reference = MakeReference();
    reference->SetProperty(Prop::kLocalId, Var(L"e1"));
    EXPECT_TRUE(ReloadedAs(*reference)->GetProperty(Prop::kLocalId, 0).IsEmpty());
    EXPECT_EQ(reference->GetProperty(Prop::kLocalId, 0), Var(L"e1"));
    reference->SetProperty(Prop::kKeepLocalId, Var(true));
    EXPECT_EQ(ReloadedAs(*reference)->GetProperty(Prop::kLocalId, 0), Var(L"e1"));
}

TEST(ReferencePersistence, KeepsAFileNameAndAKeyTable) {
    const auto reference = MakeReference();
    reference->SetTarget(Var(L"door.qn"));
    EXPECT_EQ(ReloadedAs(*reference)->GetTarget(), Var(L"door.qn"));
    Var map;
    map.At(L"left") = Var(L"e7");
    reference->SetTarget(map);
    EXPECT_EQ(ReloadedAs(*reference)->GetTarget(), map);
}

TEST(ReferencePersistence, WritesItsChunksInOrder) {
    const auto table = Make<LookupTableImpl>();
    const auto reference = MakeReference(table.Get());
    reference->SetTarget(Var(Make<k3::Object3D>()));
    reference->AddChild(MakeInstance().Get());
    reference->AddSelectorPath(IdsOf({L"n1"}));
    reference->AddInstruction();
    EXPECT_EQ(LogOfSave(*reference), (std::vector<std::string>{
                                         "object 1000 k3_varmap",
                                         "object 1005 k3_object3d",
                                         "object 1002 k3_vararray",
                                         "object 1003 k3_varmap",
                                         "object 1004 k3_vararray",
                                     }));
}

TEST(ReferencePersistence, WritesNoChunksForWhatIsEmpty) {
    const auto reference = MakeReference();
    reference->AddInstruction();
    reference->RemoveInstruction(0);
    EXPECT_EQ(LogOfSave(*reference), std::vector<std::string>{"object 1000 k3_varmap"});
}

TEST(ReferencePersistence, ATargetChunkThatDoesNotOpenIsNeitherFilledNorClosed) {
    const auto reference = MakeReference();
    reference->SetTarget(Var(L"door.qn"));
    FailingStream stream;
    stream.FailBeginChunk(1);
    EXPECT_EQ(reference->Save(&stream, nullptr), ResultEnum::kSuccess);
    EXPECT_EQ(stream.OpenChunks(), 0);
    EXPECT_EQ(std::count(stream.Log().begin(), stream.Log().end(), "end"), 0);
}

TEST(ReferencePersistence, ChildrenComeBackInOrderAndWithoutParent) {
    const auto car = MakeReference();
    for (const wchar_t* name : {L"a", L"b", L"c"}) {
        const auto child = MakeInstance();
        child->SetProperty(Prop::kName, Var(name));
        car->AddChild(child.Get());
    }
    const auto loaded = ReloadedAs(*car);
    ASSERT_EQ(loaded->GetChildCount(), 3);
    EXPECT_EQ(loaded->GetChild(2)->GetProperty(Prop::kName, 0), Var(L"c"));
    EXPECT_EQ(loaded->GetChild(0)->GetParentReference(), nullptr);
}

TEST(ReferencePersistence, ReadChildrenAreAppendedWithDoubles) {
    const auto child = MakeInstance();
    const auto list = VarArray::Create();
    list->Add(Var(child));
    list->Add(Var(child));
    list->Add(Var(MakeReference()));  // no instance: left out
    ObjectStream stream(list.Get());
    const auto reference = MakeReference();
    reference->AddChild(child.Get());
    EXPECT_EQ(reference->HandleChunk(0x1002, &stream, nullptr), ResultEnum::kSuccess);
    EXPECT_EQ(reference->GetChildCount(), 3);
    EXPECT_EQ(child->GetParentReference(), reference.Get());
}

TEST(ReferencePersistence, ReadingChildrenLeavesTheirParentAlone) {
    const auto child = MakeInstance();
    const auto list = VarArray::Create();
    list->Add(Var(child));
    ObjectStream stream(list.Get());
    const auto former = MakeReference();
    former->AddChild(child.Get());
    MakeReference()->HandleChunk(0x1002, &stream, nullptr);
    EXPECT_EQ(child->GetParentReference(), former.Get());
}

TEST(ReferencePersistence, SelectorsAreWrittenAndNotReadBack) {
    const auto table = Make<LookupTableImpl>();
    const auto reference = MakeReference(table.Get());
    reference->AddSelectorPath(IdsOf({L"n1"}));
    EXPECT_EQ(ReloadedAs(*reference)->GetSelectorCount(), 0);
}

TEST(ReferencePersistence, InstructionsSurvive) {
    const auto reference = MakeReference();
    const auto instruction = reference->AddInstruction();
    instruction->SetCommandKey(L"test.class");
    instruction->SetMethodId(7);
    instruction->SetArgument(3, Var(L"value"));
    const auto loaded = ReloadedAs(*reference);
    ASSERT_EQ(loaded->GetInstructionCount(), 1);
    EXPECT_EQ(loaded->GetInstruction(0)->GetCommandKey(), String(L"test.class"));
    EXPECT_EQ(loaded->GetInstruction(0)->GetMethodId(), 7);
    EXPECT_EQ(loaded->GetInstruction(0)->GetArgument(3), Var(L"value"));
}

TEST(ReferencePersistence, AContentObjectStaysShared) {
    const auto mesh = Make<k3::Object3D>();
    const auto car = MakeReference();
    for (int i = 0; i < 2; ++i) {
        const auto part = MakeReference();
        part->SetTarget(Var(mesh));
        car->AddChild(MakeInstance(part.Get()).Get());
    }
    const auto loaded = ReloadedAs(*car);
    ASSERT_EQ(loaded->GetChildCount(), 2);
    const Var first = loaded->GetChild(0)->GetReference()->GetTarget();
    EXPECT_NE(Cast<k3::Object3D>(first), nullptr);
    EXPECT_EQ(first, loaded->GetChild(1)->GetReference()->GetTarget());
}

TEST(ReferencePersistence, AHandlePairComesBackLinkedOneWay) {
    const auto object = Make<k3::Object3D>();
    object->AttachHandleObject(Make<k3::Object3D>().Get());
    const auto reference = MakeReference();
    reference->SetTarget(Var(object));
    const Var target = ReloadedAs(*reference)->GetTarget();
    auto* loaded = Cast<k3::Object3D>(target);
    ASSERT_NE(loaded, nullptr);
    ASSERT_NE(loaded->GetHandleObject(), nullptr);
    EXPECT_EQ(loaded->GetHandleObject()->GetHandleObject(), nullptr);
}

TEST(ReferencePersistence, TheFirstHandleChunkOnATargetBecomesItsPartner) {
    const auto present = Make<k3::Object3D>();
    const auto read = Make<k3::Object3D>();
    const auto reference = MakeReference();
    reference->SetTarget(Var(present));
    ObjectStream stream(read.Get());
    reference->HandleChunk(0x1005, &stream, nullptr);
    EXPECT_EQ(reference->GetTarget(), Var(present));
    EXPECT_EQ(present->GetHandleObject(), read.Get());
}

TEST(ReferencePersistence, TheSecondHandleChunkBecomesTheTarget) {
    const auto present = Make<k3::Object3D>();
    const auto read = Make<k3::Object3D>();
    const auto reference = MakeReference();
    reference->SetTarget(Var(present));
    ObjectStream stream(read.Get());
    reference->HandleChunk(0x1006, &stream, nullptr);
    EXPECT_EQ(reference->GetTarget(), Var(read));
    EXPECT_EQ(read->GetHandleObject(), present.Get());
}

TEST(ReferencePersistence, ANullHandleObjectChangesNothing) {
    const auto reference = MakeReference();
    reference->SetTarget(Var(L"door.qn"));
    ObjectStream stream(nullptr);
    EXPECT_EQ(reference->HandleChunk(0x1005, &stream, nullptr), ResultEnum::kSuccess);
    EXPECT_EQ(reference->HandleChunk(0x1006, &stream, nullptr), ResultEnum::kSuccess);
    EXPECT_EQ(reference->GetTarget(), Var(L"door.qn"));
}

TEST(ReferencePersistence, ObjectsOfAnotherClassAreNotTaken) {
    const auto reference = MakeReference();
    reference->SetProperty(Prop::kName, Var(L"door"));
    reference->AddInstruction();
    ObjectStream stream(MakeInstance().Get());
    for (const int id : {0x1000, 0x1002, 0x1004, 0x1005, 0x1006})
        EXPECT_EQ(reference->HandleChunk(id, &stream, nullptr), ResultEnum::kSuccess);
    EXPECT_TRUE(reference->GetProperty(Prop::kName, 0).IsEmpty());
    EXPECT_EQ(reference->GetChildCount() + reference->GetInstructionCount(), 0);
    EXPECT_TRUE(reference->GetTarget().IsEmpty());
}

TEST(ReferencePersistence, TheResolvedTargetsAreNotSaved) {
    const auto table = Make<LookupTableImpl>();
    const auto reference = MakeReference(table.Get());
    Var map;
    map.At(L"left") = Var(L"e7");
    reference->SetTarget(map);
    reference->ResolveTarget(Var(L"left"));
    EXPECT_FALSE(ReloadedAs(*reference)->ResolveTarget(Var(L"left")));
}

TEST(ReferencePersistence, ADeepChainIsSavedAndLoaded) {
    const auto loaded = ReloadedAs(*Chain(kDeep).root);
    int levels = 0;
    for (Counted<Reference> at = loaded; at; ++levels) {
        const auto child = at->GetChild(0);
        at = Counted<Reference>(child ? child->GetReference() : nullptr);
    }
    EXPECT_EQ(levels, kDeep);
}

}  // namespace qn::test
