#include "frame/host/object3d.h"
#include "graph/post_processing_instruction.h"
#include "tests/behaviour/element_support.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

Var NewObject() {
    return Var(Make<k3::Object3D>());
}

TEST(ReferenceContent, StaysAsItIsWithoutASource) {
    const auto receiver = NewReference();
    receiver->SetProperty(Prop::kName, Var(L"n"));
    receiver->SetTarget(Var(L"file"));
    receiver->CopyContentFrom(nullptr);
    EXPECT_EQ(receiver->GetProperty(Prop::kName, 0), Var(L"n"));
    EXPECT_EQ(receiver->GetTarget(), Var(L"file"));
}

TEST(ReferenceContent, TakesTheTargetInPlaceOfNoneOrAFileName) {
    for (const Var& before : {Var(), Var(L"file")}) {
        for (const Var& after : {NewObject(), Var(L"other"), MapOf({{Var(1), Var(L"e1")}}), Var()}) {
            const auto table = NewTable();
            const auto receiver = NewReferenceIn(*table), source = NewReference();
            receiver->SetTarget(before);
            source->SetTarget(after);
            receiver->CopyContentFrom(source.Get());
            EXPECT_EQ(receiver->GetTarget().GetTag(), after.GetTag());
            EXPECT_EQ(receiver->GetTarget(), after);
            EXPECT_EQ(receiver->GetChildCount(), 0);
        }
    }
}

TEST(ReferenceContent, TakesASecondTargetAsAChild) {
    for (const Var& own : {NewObject(), MapOf({}), ArrayOf({})}) {
        const auto table = NewTable();
        const auto receiver = NewReferenceIn(*table), source = NewReference();
        const Var other = NewObject();
        receiver->SetTarget(own);
        source->SetTarget(other);
        receiver->CopyContentFrom(source.Get());

        EXPECT_EQ(receiver->GetTarget().ToInterface(), own.ToInterface());
        ASSERT_EQ(receiver->GetChildCount(), 1);
        const auto child = receiver->GetChild(0);
        Reference* made = child->GetReference();
        EXPECT_EQ(made->GetTarget().ToInterface(), other.ToInterface());
        EXPECT_NE(made, source.Get());
        EXPECT_EQ(made->GetLookupTable(), table);
        EXPECT_EQ(table->FindReferenceById(made->GetProperty(Prop::kLocalId, 0).ToText()), made);
        EXPECT_EQ(child->GetProperty(Prop::kLocalId, 0), Var(L"n1"));
        EXPECT_EQ(table->FindInstanceById(L"n1"), child);
        EXPECT_EQ(child->GetParentReference(), receiver);
        EXPECT_EQ(source->GetTarget().ToInterface(), other.ToInterface());
    }
}

TEST(ReferenceContent, TakesEvenAFileNameAsAChildBesideAnObject) {
    const auto table = NewTable();
    const auto receiver = NewReferenceIn(*table), source = NewReference();
    receiver->SetTarget(NewObject());
    source->SetTarget(Var(L"file"));
    receiver->CopyContentFrom(source.Get());
    ASSERT_EQ(receiver->GetChildCount(), 1);
    EXPECT_EQ(receiver->GetChild(0)->GetReference()->GetTarget(), Var(L"file"));
}

TEST(ReferenceContent, KeepsItsTargetAgainstAnEmptyOne) {
    const auto table = NewTable();
    const auto receiver = NewReferenceIn(*table);
    const Var own = NewObject();
    receiver->SetTarget(own);
    receiver->CopyContentFrom(NewReference().Get());
    EXPECT_EQ(receiver->GetTarget().ToInterface(), own.ToInterface());
    EXPECT_EQ(receiver->GetChildCount(), 0);
}

TEST(ReferenceContent, GoesOnWithoutATable) {
    const auto receiver = NewReference(), source = NewReference();
    receiver->SetTarget(NewObject());
    source->SetTarget(NewObject());
    source->SetProperty(Prop::kName, Var(L"n"));
    source->AddChild(NewReference()->CreateInstance().Get());
    receiver->CopyContentFrom(source.Get());
    EXPECT_EQ(receiver->GetChildCount(), 1) << "that of the source";
    EXPECT_EQ(receiver->GetProperty(Prop::kName, 0), Var(L"n"));
}

TEST(ReferenceContent, OverwritesEveryPropertyButTheLocalId) {
    const auto receiver = NewReference(), source = NewReference();
    for (const PropEnum id :
         {Prop::kName, Prop::kText, Prop::kNotCopied1c, Prop::kBsId, Prop::kExternalIds}) {
        receiver->SetProperty(id, Var(L"before"));
        source->SetProperty(id, Var(L"after"));
    }
    receiver->SetProperty(Prop::kLocalId, Var(L"e1"));
    source->SetProperty(Prop::kLocalId, Var(L"e2"));
    receiver->CopyContentFrom(source.Get());
    for (const PropEnum id : {Prop::kName, Prop::kText, Prop::kNotCopied1c, Prop::kBsId, Prop::kExternalIds})
        EXPECT_EQ(receiver->GetProperty(id, 0), Var(L"after")) << Key(id);
    EXPECT_EQ(receiver->GetProperty(Prop::kLocalId, 0), Var(L"e1"));
}

TEST(ReferenceContent, OverwritesWithEmptyValuesToo) {
    const auto receiver = NewReference();
    for (const PropEnum id :
         {Prop::kName, Prop::kLocalMatrix, Prop::kOrigin, Prop::kBsId, Prop::kExternalIds})
        receiver->SetProperty(id, Var(L"before"));
    receiver->SetProperty(Prop::kMetadata, MapOf({{Var(1), Var(2)}}));
    receiver->CopyContentFrom(NewReference().Get());
    for (const PropEnum id :
         {Prop::kName, Prop::kLocalMatrix, Prop::kOrigin, Prop::kBsId, Prop::kExternalIds})
        EXPECT_TRUE(receiver->GetProperty(id, 0).IsEmpty()) << Key(id);
    EXPECT_EQ(receiver->GetMetadata(false), nullptr);
    EXPECT_TRUE(SavesProperty(*receiver, Prop::kName));
    EXPECT_FALSE(SavesProperty(*receiver, Prop::kLocalMatrix));
}

TEST(ReferenceContent, TakesTheOriginAsItIs) {
    const auto receiver = NewReference(), source = NewReference();
    source->SetProperty(Prop::kBsId, Var(L"server"));
    source->SetProperty(Prop::kOrigin, Var(L"origin"));
    receiver->CopyContentFrom(source.Get());
    EXPECT_EQ(receiver->GetProperty(Prop::kOrigin, 0), Var(L"origin"));
}

TEST(ReferenceContent, SharesTheChildrenAndBecomesTheirParent) {
    const auto receiver = NewReference(), source = NewReference();
    const auto own = NewReference()->CreateInstance(), a = NewReference()->CreateInstance(),
               b = NewReference()->CreateInstance();
    receiver->AddChild(own.Get());
    for (const auto& child : {a, b})
        source->AddChild(child.Get());
    receiver->CopyContentFrom(source.Get());
    ASSERT_EQ(receiver->GetChildCount(), 3);
    EXPECT_EQ(receiver->GetChild(0), own);
    EXPECT_EQ(receiver->GetChild(1), a);
    EXPECT_EQ(receiver->GetChild(2), b);
    EXPECT_EQ(source->GetChildCount(), 2);
    EXPECT_TRUE(source->HasChild(a.Get()));
    EXPECT_EQ(a->GetParentReference(), receiver);
}

TEST(ReferenceContent, PutsTheSecondTargetBeforeTheChildrenOfTheSource) {
    const auto table = NewTable();
    const auto receiver = NewReferenceIn(*table), source = NewReference();
    const auto child = NewReference()->CreateInstance();
    receiver->SetTarget(NewObject());
    source->SetTarget(NewObject());
    source->AddChild(child.Get());
    receiver->CopyContentFrom(source.Get());
    ASSERT_EQ(receiver->GetChildCount(), 2);
    EXPECT_EQ(receiver->GetChild(1), child);
}

TEST(ReferenceContent, LeavesSelectorsAndInstructionsBehind) {
    const auto table = NewTable();
    const auto receiver = NewReferenceIn(*table), source = NewReferenceIn(*table);
    const auto use = source->CreateInstance();
    source->AddSelector(PathOf({use.Get()}));
    source->AddInstruction();
    receiver->CopyContentFrom(source.Get());
    EXPECT_EQ(receiver->GetSelectorCount(), 0);
    EXPECT_EQ(receiver->GetInstructionCount(), 0);
    EXPECT_EQ(use->GetReference(), source);
}

}  // namespace
}  // namespace qn::test
