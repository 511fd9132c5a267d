#include "frame/host/object3d.h"
#include "tests/behaviour/foreign_instance.h"
#include "tests/behaviour/traverser_support.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

/// An instance that came with a node, from nowhere near the table.
struct Known : Stage {
    Counted<Reference> reference = NewReference();
    Counted<Instance> instance = reference->CreateInstance();
    k3::Node* top = Node(L"top");

    k3::Node* Below() const { return NodeWith(instance.Get(), top); }
    void NameInstance(const wchar_t* bsId) const { instance->SetProperty(Prop::kBsId, Var(bsId)); }
    void NameReference(const wchar_t* bsId) const { reference->SetProperty(Prop::kBsId, Var(bsId)); }
};

TEST(NodeTraverserKnownInstance, IsTheInstanceOfItsNode) {
    Known k;
    EXPECT_EQ(k.InstanceOf(k.Below()).Get(), k.instance.Get());
    EXPECT_EQ(k.FreeInstanceOf(k.Below()).Get(), k.instance.Get());
}

TEST(NodeTraverserKnownInstance, GetsIdsWithItsReference) {
    const Known k;
    k.InstanceOf(k.Below());
    EXPECT_EQ(IdOf(k.instance.Get()), L"n1");
    EXPECT_EQ(IdOf(k.reference.Get()), L"e1");
    EXPECT_EQ(k.table->FindInstanceById(L"n1").Get(), k.instance.Get());
    EXPECT_EQ(k.table->FindReferenceById(L"e1").Get(), k.reference.Get());
    EXPECT_TRUE(k.Fields().instances.count(k.instance));
}

TEST(NodeTraverserKnownInstance, GetsNoIdsWithoutTable) {
    Known k;
    k.FreeInstanceOf(k.Below());
    EXPECT_TRUE(k.instance->GetProperty(Prop::kLocalId, 0).IsEmpty());
    EXPECT_TRUE(k.reference->GetProperty(Prop::kLocalId, 0).IsEmpty());
}

TEST(NodeTraverserKnownInstance, IsHeldByTheNodeWithoutTable) {
    Known k;
    k3::Node* node = k.Node(L"", k.top);
    node->SetParamVar(Param::kInstance, Var(k.instance.Get(), 0));
    k.FreeInstanceOf(node);
    EXPECT_FALSE(node->GetParamVar(Param::kInstance).IsWeak());
    EXPECT_EQ(Cast<Instance>(node->GetParamVar(Param::kInstance)), k.instance.Get());
}

TEST(NodeTraverserKnownInstance, KeepsAnIdThatTheTableKnows) {
    const Known k;
    k.InstanceOf(k.Below());
    k.InstanceOf(k.Below());
    EXPECT_EQ(IdOf(k.instance.Get()), L"n1");
    EXPECT_EQ(IdOf(k.reference.Get()), L"e1");
}

TEST(NodeTraverserKnownInstance, LosesAnIdThatTheTableGivesToAnother) {
    const Known k;
    const auto holder = EnterInstance(*k.table, L"id");  // takes e1
    k.instance->SetProperty(Prop::kLocalId, Var(L"id"));
    k.reference->SetProperty(Prop::kLocalId, Var(L"e1"));
    k.InstanceOf(k.Below());
    EXPECT_EQ(IdOf(k.instance.Get()), L"n1");
    EXPECT_EQ(IdOf(k.reference.Get()), L"e2");
    EXPECT_EQ(k.table->FindInstanceById(L"id").Get(), holder.Get());
}

TEST(NodeTraverserKnownInstance, LosesAnIdThatTheTableDoesNotKnow) {
    const Known k;
    k.instance->SetProperty(Prop::kLocalId, Var(L"stored"));
    k.reference->SetProperty(Prop::kLocalId, Var(L"stored"));
    k.InstanceOf(k.Below());
    EXPECT_EQ(IdOf(k.instance.Get()), L"n1");
    EXPECT_EQ(IdOf(k.reference.Get()), L"e1");
}

TEST(NodeTraverserKnownInstance, OfATopLevelNodeGetsNewIdsInAnyCase) {
    const Known k;
    k.InstanceOf(k.Below());
    k.InstanceOf(k.NodeWith(k.instance.Get()));
    EXPECT_EQ(IdOf(k.instance.Get()), L"n2");
    EXPECT_EQ(IdOf(k.reference.Get()), L"e2");
    EXPECT_EQ(k.table->FindInstanceById(L"n1").Get(), k.instance.Get()) << "the former id stays in the index";
    EXPECT_EQ(k.table->FindInstanceById(L"n2").Get(), k.instance.Get());
}

TEST(NodeTraverserKnownInstance, WithANewServerIdIsEnteredUnderIt) {
    const Known k;
    k.NameInstance(L"s1:use");
    EXPECT_EQ(k.InstanceOf(k.Below()).Get(), k.instance.Get());
    EXPECT_EQ(k.table->FindInstanceByBsId(L"s1:use").Get(), k.instance.Get());
    EXPECT_EQ(IdOf(k.instance.Get()), L"n1");
    EXPECT_EQ(k.table->FindInstanceById(L"n1").Get(), k.instance.Get());
}

TEST(NodeTraverserKnownInstance, WithANewServerIdGetsASecondIdOnATopLevelNode) {
    const Known k;
    k.NameInstance(L"s1:use");
    k.NameReference(L"s1:part");
    k.InstanceOf(k.NodeWith(k.instance.Get()));
    EXPECT_EQ(IdOf(k.instance.Get()), L"n2");
    EXPECT_EQ(IdOf(k.reference.Get()), L"e2");
    EXPECT_EQ(k.table->FindInstanceById(L"n1").Get(), k.instance.Get());
    EXPECT_EQ(k.table->FindReferenceById(L"e1").Get(), k.reference.Get());
}

TEST(NodeTraverserKnownInstance, GivesWayToTheOneOfItsServerId) {
    const Known k;
    const auto other = k.table->GetOrCreateReference(L"other")->CreateInstanceWithBsId(L"use", L"s1:use");
    k.NameInstance(L"s1:use");
    k.NameReference(L"s1:part");
    EXPECT_EQ(k.InstanceOf(k.Below()).Get(), other.Get());
    EXPECT_EQ(IdOf(other.Get()), L"use");
    EXPECT_TRUE(k.instance->GetProperty(Prop::kLocalId, 0).IsEmpty()) << "the later steps are off";
    EXPECT_FALSE(k.table->FindReferenceByBsId(L"s1:part"));
}

TEST(NodeTraverserKnownInstance, GivesWayOnTopLevelNodesWithoutNewIds) {
    const Known k;
    const auto other = k.table->GetOrCreateReference(L"other")->CreateInstanceWithBsId(L"use", L"s1:use");
    k.NameInstance(L"s1:use");
    EXPECT_EQ(k.InstanceOf(k.NodeWith(k.instance.Get())).Get(), other.Get());
    EXPECT_EQ(IdOf(other.Get()), L"use");
    EXPECT_EQ(IdOf(other->GetReference()), L"other");
}

TEST(NodeTraverserKnownInstance, WithoutTableNeverGivesWay) {
    Known k;
    k.table->GetOrCreateReference(L"other")->CreateInstanceWithBsId(L"use", L"s1:use");
    k.NameInstance(L"s1:use");
    EXPECT_EQ(k.FreeInstanceOf(k.Below()).Get(), k.instance.Get());
}

TEST(NodeTraverserKnownInstance, BringsAReferenceOfANewServerId) {
    const Known k;
    k.NameReference(L"s1:part");
    k.InstanceOf(k.Below());
    EXPECT_EQ(k.table->FindReferenceByBsId(L"s1:part").Get(), k.reference.Get());
    EXPECT_EQ(IdOf(k.reference.Get()), L"e1");
    EXPECT_EQ(k.table->FindReferenceById(L"e1").Get(), k.reference.Get());
    EXPECT_EQ(IdOf(k.instance.Get()), L"n1");
}

TEST(NodeTraverserKnownInstance, KeepsItsReferenceWhereTheTableHasOneOfTheServerId) {
    const Known k;
    const auto found = k.table->GetOrCreateBsReference(L"part", L"s1:part");
    k.NameReference(L"s1:part");
    EXPECT_EQ(k.InstanceOf(k.Below()).Get(), k.instance.Get());
    EXPECT_EQ(k.instance->GetReference(), k.reference.Get());
    EXPECT_EQ(k.table->FindReferenceByBsId(L"s1:part").Get(), found.Get());
    EXPECT_TRUE(k.reference->GetProperty(Prop::kLocalId, 0).IsEmpty());
}

TEST(NodeTraverserKnownInstance, GetsNoIdWhereOnlyItsReferenceWasFound) {
    const Known k;
    k.table->GetOrCreateBsReference(L"part", L"s1:part");
    k.NameReference(L"s1:part");
    k.InstanceOf(k.Below());
    EXPECT_TRUE(k.instance->GetProperty(Prop::kLocalId, 0).IsEmpty());
    EXPECT_FALSE(k.Fields().instances.count(k.instance));
}

TEST(NodeTraverserKnownInstance, FillsALeafOfItsReferencesServerId) {
    const Known k;
    const auto found = k.table->GetOrCreateBsReference(L"part", L"s1:part");
    const auto child = NewReference()->CreateInstance();
    k.reference->AddChild(child.Get());
    k.reference->SetProperty(Prop::kText, Var(L"text"));
    k.NameReference(L"s1:part");
    k.InstanceOf(k.Below());
    EXPECT_TRUE(found->HasChild(child.Get()));
    EXPECT_EQ(found->GetProperty(Prop::kText, 0), Var(L"text"));
    EXPECT_EQ(IdOf(found.Get()), L"part");
}

TEST(NodeTraverserKnownInstance, LeavesAReferenceThatIsNoLeafOrHasNothingToGain) {
    {
        const Known k;
        const auto found = k.table->GetOrCreateBsReference(L"part", L"s1:part");
        k.reference->SetProperty(Prop::kText, Var(L"text"));
        k.NameReference(L"s1:part");
        k.InstanceOf(k.Below());
        EXPECT_TRUE(found->GetProperty(Prop::kText, 0).IsEmpty()) << "both are leaves";
    }
    const Known k;
    const auto found = k.table->GetOrCreateBsReference(L"part", L"s1:part");
    found->AddChild(NewReference()->CreateInstance().Get());
    const auto child = NewReference()->CreateInstance();
    k.reference->AddChild(child.Get());
    k.NameReference(L"s1:part");
    k.InstanceOf(k.Below());
    EXPECT_FALSE(found->HasChild(child.Get())) << "both have children";
    EXPECT_EQ(found->GetChildCount(), 1);
}

TEST(NodeTraverserKnownInstance, WithAServerIdKeepsItWhereTheReferenceWasFound) {
    const Known k;
    k.table->GetOrCreateBsReference(L"part", L"s1:part");
    k.NameReference(L"s1:part");
    k.NameInstance(L"s1:use");
    k.instance->SetProperty(Prop::kText, Var(L"text"));
    k.InstanceOf(k.NodeWith(k.instance.Get()));
    EXPECT_EQ(k.instance->GetProperty(Prop::kBsId, 0), Var(L"s1:use"));
    EXPECT_EQ(k.instance->GetProperty(Prop::kText, 0), Var(L"text"));
    EXPECT_EQ(IdOf(k.instance.Get()), L"n1") << "one id, although it is a top-level node";
}

TEST(NodeTraverserKnownInstance, LeavesItsReferenceAsItIs) {
    const Known k;
    const auto object = Make<k3::Object3D>();
    k3::Node* node = k.Below();
    node->SetObject(object.Get());
    node->SetName(L"node");
    k.InstanceOf(node);
    EXPECT_TRUE(k.reference->GetTarget().IsEmpty());
    EXPECT_TRUE(k.reference->GetProperty(Prop::kName, 0).IsEmpty());
}

TEST(NodeTraverserKnownInstance, NeedsNoReference) {
    const Known k;
    const auto bare = NewInstance();
    k3::Node* node = k.NodeWith(bare.Get(), k.top);
    EXPECT_EQ(k.InstanceOf(node).Get(), bare.Get());
    EXPECT_EQ(k.table->FindInstanceById(L"n1").Get(), bare.Get());
    EXPECT_TRUE(k.Fields().references.empty());
}

TEST(NodeTraverserKnownInstance, MayBeOfAnotherImplementation) {
    Known k;
    const auto foreign = Make<ForeignInstance>();
    EXPECT_EQ(k.FreeInstanceOf(k.NodeWith(foreign.Get(), k.top)).Get(), foreign.Get());
}

}  // namespace
}  // namespace qn::test
