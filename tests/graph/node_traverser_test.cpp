#include "tests/graph/traverser_fixture.h"

#include <gmock/gmock.h>

namespace qn::test {
namespace {

using testing::ElementsAre;

using NodeTraverserMoves = TraverserFixture;
using NodeTraverserInstances = TraverserFixture;
using NodeTraverserCreation = TraverserFixture;

k3::Node* NodeOf(const Counted<Selector::Traverser>& traverser) {
    const auto* impl = Cast<NodeTraverser>(traverser.Get());
    return impl ? impl->GetNode() : nullptr;
}

TEST_F(NodeTraverserMoves, AreValidEvenWithoutNode) {
    const auto lost = On(nullptr);
    EXPECT_TRUE(lost->IsValid());
    EXPECT_EQ(lost->GetChildCount(), 0);
    EXPECT_FALSE(lost->GetChild(0));
    EXPECT_TRUE(lost->GetProperty(Prop::kName, 0).IsEmpty());
    lost->SetProperty(Prop::kName, Var(L"x"));
    EXPECT_TRUE(On(Top())->IsValid());
}

TEST_F(NodeTraverserMoves, FollowTheSiblingOrder) {
    k3::Node* top = Top();
    k3::Node* first = Below(top);
    k3::Node* second = Below(top);
    const auto traverser = On(top);
    EXPECT_EQ(traverser->GetChildCount(), 2);
    EXPECT_EQ(NodeOf(traverser->GetChild(0)), first);
    EXPECT_EQ(NodeOf(traverser->GetChild(1)), second);
}

TEST_F(NodeTraverserMoves, GiveNullAtTheChildCount) {
    k3::Node* top = Top();
    Below(top);
    EXPECT_FALSE(On(top)->GetChild(1));
    EXPECT_FALSE(On(top)->GetChild(-1));
}

TEST_F(NodeTraverserMoves, MakeANewTraverserEachTime) {
    k3::Node* top = Top();
    Below(top);
    const auto traverser = On(top);
    EXPECT_FALSE(traverser->GetChild(0) == traverser->GetChild(0));
}

TEST_F(NodeTraverserMoves, ClimbToAParentThatMayBeNull) {
    k3::Node* top = Top();
    const auto child = On(Below(top));
    EXPECT_EQ(NodeOf(child->GetParent()), top);
    EXPECT_EQ(NodeOf(child->GetParent()->GetParent()), scene.Get());
    const auto above = child->GetParent()->GetParent()->GetParent();
    ASSERT_TRUE(above);
    EXPECT_EQ(NodeOf(above), nullptr);
    EXPECT_TRUE(above->IsValid());
}

TEST_F(NodeTraverserMoves, HoldTheNodeAndWatchTheTable) {
    auto node = Make<k3::Node>();
    const auto traverser = On(node.Get());
    EXPECT_EQ(traverser->GetLookupTable(), table.Get());
    const Weak<k3::Node> watch(node.Get());
    node.Reset();
    EXPECT_TRUE(watch);
    table.Reset();
    EXPECT_EQ(traverser->GetLookupTable(), nullptr);
    EXPECT_TRUE(traverser->ToDebugString().IsEmpty());
}

TEST_F(NodeTraverserMoves, ReadAndWriteTheNodesProperties) {
    k3::Node* top = Top();
    const auto traverser = On(top);
    traverser->SetProperty(Prop::kName, Var(L"door"));
    EXPECT_EQ(top->GetName(), L"door");
    EXPECT_EQ(traverser->GetProperty(Prop::kName, 1).ToText(), L"door");
}

// Instances.

TEST_F(NodeTraverserInstances, AreNullWithoutNodeAndEnterNothing) {
    EXPECT_FALSE(On(nullptr)->GetInstance());
    EXPECT_EQ(table->nodeToInstance.Size(), 0u);
    EXPECT_TRUE(table->instances.empty());
}

TEST_F(NodeTraverserInstances, AreTheKnownOnesOfTheMap) {
    k3::Node* top = Top();
    const auto known = Known(L"n7");
    table->nodeToInstance.Set(top, known.Get());
    EXPECT_EQ(On(top)->GetInstance(), known.Get());
}

TEST_F(NodeTraverserInstances, AreEnteredInBothMaps) {
    k3::Node* top = Top();
    const auto instance = On(top)->GetInstance();
    ASSERT_TRUE(instance);
    EXPECT_EQ(table->nodeToInstance.Find(top), instance.Get());
    EXPECT_THAT(table->instanceToNodes.NodesOf(instance.Get()), ElementsAre(top));
}

TEST_F(NodeTraverserInstances, AttachTheChildrenOnceInSiblingOrder) {
    k3::Node* top = Top();
    k3::Node* first = Below(top, L"a");
    k3::Node* second = Below(top, L"b");
    const auto traverser = On(top);
    const auto instance = traverser->GetInstance();
    traverser->GetInstance();
    On(top)->GetInstance();
    Reference* reference = instance->GetReference();
    ASSERT_EQ(reference->GetChildCount(), 2);
    EXPECT_EQ(reference->GetChild(0), table->nodeToInstance.Find(first));
    EXPECT_EQ(reference->GetChild(1), table->nodeToInstance.Find(second));
    EXPECT_EQ(reference->GetChild(0)->GetParentReference(), reference);
}

TEST_F(NodeTraverserInstances, AttachOneLevelAtATime) {
    k3::Node* top = Top();
    k3::Node* middle = Below(top);
    k3::Node* leaf = Below(middle);
    const auto traverser = On(top);
    traverser->GetInstance();
    EXPECT_NE(table->nodeToInstance.Find(middle), nullptr);
    EXPECT_EQ(table->nodeToInstance.Find(leaf), nullptr);
    traverser->GetChild(0)->GetInstance();
    EXPECT_NE(table->nodeToInstance.Find(leaf), nullptr);
}

TEST_F(NodeTraverserInstances, LookAtChildrenOnlyOnceForEachTraverser) {
    k3::Node* top = Top();
    const auto traverser = On(top);
    const auto instance = traverser->GetInstance();
    Below(top);
    traverser->GetInstance();
    EXPECT_EQ(instance->GetReference()->GetChildCount(), 0);
    On(top)->GetInstance();
    EXPECT_EQ(instance->GetReference()->GetChildCount(), 1);
}

TEST_F(NodeTraverserInstances, UseAChildsKnownInstanceAndMakeNoSecondOne) {
    k3::Node* top = Top();
    k3::Node* child = Below(top);
    const auto known = Known(L"n7");
    table->nodeToInstance.Set(child, known.Get());
    const auto instance = On(top)->GetInstance();
    ASSERT_EQ(instance->GetReference()->GetChildCount(), 1);
    EXPECT_EQ(instance->GetReference()->GetChild(0), known.Get());
}

TEST_F(NodeTraverserInstances, LeaveChildrenAloneWithoutReference) {
    k3::Node* top = Top();
    k3::Node* child = Below(top);
    const auto bare = Make<InstanceImpl>();
    table->nodeToInstance.Set(top, bare.Get());
    EXPECT_EQ(On(top)->GetInstance(), bare.Get());
    EXPECT_EQ(table->nodeToInstance.Find(child), nullptr);
}

TEST_F(NodeTraverserInstances, TakeTwentyThousandSiblingsInOneGo) {
    constexpr int kMany = 20'000;
    k3::Node* top = Top();
    for (int i = 0; i < kMany; ++i)
        top->CreateChildNode(0, 0, 0);
    Selector selector;
    const auto traverser = On(top);
    selector.AssignTraverser(traverser.Get());
    EXPECT_EQ(selector.GetReference()->GetChildCount(), kMany);
    int valid = 0;
    for (int i = 0; i < selector.GetChildCount(); ++i)
        valid += selector.GetChild(static_cast<unsigned>(i)).GetInstance() != nullptr;
    EXPECT_EQ(valid, kMany);
}

// Nodes for instances.

TEST_F(NodeTraverserCreation, GivesTheTraverserItselfWhenItMakesNothing) {
    const auto traverser = On(Top());
    const auto instance = Known(L"n1");
    const int before = traverser->GetRefCount();
    const auto result = traverser->CreateChild(instance.Get());
    EXPECT_TRUE(result == traverser.Get());
    EXPECT_EQ(traverser->GetRefCount(), before + 1);
    EXPECT_EQ(traverser->GetChildCount(), 0);
    EXPECT_TRUE(traverser->CreateChild(nullptr) == traverser.Get());
}

TEST_F(NodeTraverserCreation, IsNullForNull) {
    k3::Node* top = Top();
    EXPECT_FALSE(On(top, true)->CreateChild(nullptr));
    EXPECT_EQ(top->GetChildCount(), 0);
}

TEST_F(NodeTraverserCreation, MakesAChildThatCarriesTheInstance) {
    k3::Node* top = Top();
    const auto instance = Known(L"n1");
    const auto child = On(top, true)->CreateChild(instance.Get());
    ASSERT_EQ(top->GetChildCount(), 1);
    k3::Node* made = top->GetFirstChild();
    EXPECT_EQ(NodeOf(child), made);
    EXPECT_EQ(Carried(made), instance.Get());
    EXPECT_EQ(table->nodeToInstance.Find(made), instance.Get());
    EXPECT_THAT(table->instanceToNodes.NodesOf(instance.Get()), ElementsAre(made));
    EXPECT_EQ(child->GetLookupTable(), table.Get());
}

TEST_F(NodeTraverserCreation, TakesTheTableFromTheInstance) {
    const auto other = Make<LookupTableImpl>();
    const auto instance = other->GetOrCreateReference(L"e1")->CreateInstanceWithId(L"n1");
    EXPECT_EQ(On(Top(), true)->CreateChild(instance.Get())->GetLookupTable(), other.Get());
    const auto loose = Make<InstanceImpl>();
    EXPECT_EQ(On(Top(), true)->CreateChild(loose.Get())->GetLookupTable(), nullptr);
}

TEST_F(NodeTraverserCreation, PlacesTheNodeByTheInstancesOwnMatrices) {
    const auto instance = Known(L"n1");
    instance->GetReference()->SetProperty(Prop::kOwnMatrix, Var(Matrix4<double>::Translation(9, 0, 0)));
    instance->SetProperty(Prop::kLocalMatrix, Var(Matrix4<double>::Translation(1, 0, 0)));
    instance->SetProperty(Prop::kThirdMatrix, Var(Matrix4<double>::Translation(3, 0, 0)));
    k3::Node* made = NodeOf(On(Top(), true)->CreateChild(instance.Get()));
    EXPECT_EQ(On(made)->GetProperty(Prop::kLocalMatrix, 0), Var(Matrix4<double>::Translation(1, 0, 0)));
    EXPECT_TRUE(On(made)->GetProperty(Prop::kOwnMatrix, 0).IsEmpty());
    EXPECT_EQ(On(made)->GetProperty(Prop::kThirdMatrix, 0), Var(Matrix4<double>::Translation(3, 0, 0)));
}

TEST_F(NodeTraverserCreation, ShowsTheContentOfTheDefinition) {
    const auto content = Make<k3::Object3D>();
    const auto instance = Known(L"n1");
    instance->GetReference()->SetTarget(Var(content));
    EXPECT_EQ(NodeOf(On(Top(), true)->CreateChild(instance.Get()))->GetObject(), content.Get());
}

TEST_F(NodeTraverserCreation, ShowsNothingForATargetThatIsALink) {
    const auto instance = Known(L"n1");
    instance->GetReference()->SetTarget(Var(L"other.qn"));
    EXPECT_EQ(NodeOf(On(Top(), true)->CreateChild(instance.Get()))->GetObject(), nullptr);
}

TEST_F(NodeTraverserCreation, BindsTheNodeItselfTheFirstTimeIfToldSo) {
    k3::Node* top = Top();
    const auto first = Known(L"n1"), second = Known(L"n2");
    const auto traverser = On(top, true);
    traverser->SetUseNodeItself(true);
    const auto bound = traverser->CreateChild(first.Get());
    EXPECT_EQ(NodeOf(bound), top);
    EXPECT_EQ(Carried(top), first.Get());
    EXPECT_EQ(top->GetChildCount(), 0);
    bound->CreateChild(second.Get());
    EXPECT_EQ(top->GetChildCount(), 1);
}

}  // namespace
}  // namespace qn::test
