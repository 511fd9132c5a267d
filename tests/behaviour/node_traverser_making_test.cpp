#include "frame/host/object3d.h"
#include "tests/behaviour/traverser_support.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

struct Maker : Stage {
    k3::Node* top = Node(L"top");
    Counted<Instance> instance = EnterInstance(*table, L"a");
    Counted<NodeTraverser> at = On(top, true);

    k3::Node* MakeNode() const { return NodeAt(at->CreateChild(instance.Get())); }
};

TEST(NodeTraverserMaking, GivesItselfIfItMakesNoNodes) {
    const Maker m;
    const auto reader = m.On(m.top, false);
    const int before = reader->GetRefCount();
    const auto result = reader->CreateChild(m.instance.Get());
    EXPECT_EQ(result.Get(), reader.Get());
    EXPECT_EQ(reader->GetRefCount(), before + 1);
    EXPECT_EQ(reader->CreateChild(nullptr).Get(), reader.Get());
    EXPECT_EQ(m.top->GetChildCount(), 0);
    EXPECT_TRUE(m.top->GetParamVar(Param::kInstance).IsEmpty());
    EXPECT_EQ(m.Fields().nodeToInstance.Size(), 0u);
}

TEST(NodeTraverserMaking, GivesNothingForNull) {
    const Maker m;
    EXPECT_FALSE(m.at->CreateChild(nullptr));
    EXPECT_EQ(m.top->GetChildCount(), 0);
}

TEST(NodeTraverserMaking, MakesANewLastChildForEachCall) {
    const Maker m;
    k3::Node* former = m.Node(L"former", m.top);
    k3::Node* first = m.MakeNode();
    k3::Node* second = m.MakeNode();
    EXPECT_EQ(former->GetNextSibling(), first);
    EXPECT_EQ(first->GetNextSibling(), second);
    EXPECT_EQ(m.top->GetChildCount(), 3);
}

TEST(NodeTraverserMaking, BindsNodeAndInstanceBothWays) {
    const Maker m;
    const int before = m.instance->GetRefCount();
    k3::Node* first = m.MakeNode();
    k3::Node* second = m.MakeNode();
    for (k3::Node* node : {first, second}) {
        EXPECT_EQ(Cast<Instance>(node->GetParamVar(Param::kInstance)), m.instance.Get());
        EXPECT_FALSE(node->GetParamVar(Param::kInstance).IsWeak());
        EXPECT_EQ(m.table->GetInstanceOfNode(node).Get(), m.instance.Get());
    }
    EXPECT_EQ(NodesIn(m.table->GetNodesOfInstance(m.instance.Get()).Get()), InSetOrder({first, second}));
    EXPECT_GT(m.instance->GetRefCount(), before);
}

TEST(NodeTraverserMaking, TakesTheObjectOfTheReference) {
    const Maker m;
    const auto object = Make<k3::Object3D>();
    m.instance->GetReference()->SetTarget(Var(object));
    EXPECT_EQ(m.MakeNode()->GetObject(), object.Get());
}

TEST(NodeTraverserMaking, TakesNoTargetThatIsNoObject3D) {
    const Maker m;
    for (const Var& target : {Var(), Var(L"file.step"), ArrayOf({}), Var(Make<k3::Generic>())}) {
        m.instance->GetReference()->SetTarget(target);
        k3::Node* node = m.MakeNode();
        EXPECT_EQ(node->GetObject(), nullptr);
        EXPECT_EQ(m.table->GetInstanceOfNode(node).Get(), m.instance.Get())
            << "the node is made in every case";
    }
}

TEST(NodeTraverserMaking, PlacesTheNodeByTheMatricesOfTheInstance) {
    const Maker m;
    m.instance->SetProperty(Prop::kLocalMatrix, Var(Shift(1)));
    m.instance->SetProperty(Prop::kOwnMatrix, Var(Shift(2)));
    m.instance->SetProperty(Prop::kThirdMatrix, Var(Shift(3)));
    k3::Node* node = m.MakeNode();
    Matrix4<double> local, own, third;
    node->GetMatrix(&local, 0);
    node->GetMatrix(&own, 1);
    node->GetThirdMatrix(&third);
    EXPECT_EQ(local, Shift(1));
    EXPECT_EQ(own, Shift(2));
    EXPECT_EQ(third, Shift(3));
}

TEST(NodeTraverserMaking, PlacesTheNodeByMatricesAlone) {
    const Maker m;
    for (const PropEnum id : {Prop::kLocalMatrix, Prop::kOwnMatrix, Prop::kThirdMatrix})
        m.instance->SetProperty(id, Var(L"no matrix"));
    const auto at = m.On(m.MakeNode());
    for (const PropEnum id : {Prop::kLocalMatrix, Prop::kOwnMatrix, Prop::kThirdMatrix})
        EXPECT_TRUE(at->GetProperty(id, 0).IsEmpty()) << Key(id);
}

TEST(NodeTraverserMaking, DoesNotPlaceTheNodeByTheReference) {
    const Maker m;
    m.instance->GetReference()->SetProperty(Prop::kLocalMatrix, Var(Shift(1)));
    EXPECT_TRUE(m.On(m.MakeNode())->GetProperty(Prop::kLocalMatrix, 0).IsEmpty());
}

TEST(NodeTraverserMaking, TakesNoOtherPropertyOver) {
    const Maker m;
    m.instance->SetProperty(Prop::kName, Var(L"name"));
    m.instance->SetProperty(Prop::kText, Var(L"text"));
    m.instance->SetProperty(Prop::kHidden, Var(true));
    m.instance->SetProperty(Prop::kBsId, Var(L"s1:a"));
    m.instance->SetProperty(Prop::kMetadata, MapOf({{Var(L"a"), Var(1)}}));
    k3::Node* node = m.MakeNode();
    EXPECT_EQ(node->GetName(), L"");
    EXPECT_EQ(node->GetText(), L"");
    EXPECT_EQ(node->GetFlags(), 0u);
    EXPECT_TRUE(node->GetParamVar(Param::kBsId).IsEmpty());
    EXPECT_EQ(node->GetMetadata(false), nullptr);
}

TEST(NodeTraverserMaking, WorksWithoutReference) {
    const Maker m;
    const auto bare = NewInstance();
    bare->SetProperty(Prop::kLocalMatrix, Var(Shift(1)));
    const auto made = m.at->CreateChild(bare.Get());
    ASSERT_TRUE(NodeAt(made));
    EXPECT_EQ(m.table->GetInstanceOfNode(NodeAt(made)).Get(), bare.Get());
    EXPECT_EQ(made->GetProperty(Prop::kLocalMatrix, 0), Var(Shift(1)));
    EXPECT_EQ(made->GetLookupTable(), nullptr);
}

TEST(NodeTraverserMaking, GoesOnWithTheTableOfTheInstance) {
    Maker m;
    const auto other = NewTable();
    const auto foreign = EnterInstance(*other, L"b");
    EXPECT_EQ(m.at->CreateChild(foreign.Get())->GetLookupTable(), other.Get());
    EXPECT_EQ(m.Free(m.top, true)->CreateChild(foreign.Get())->GetLookupTable(), other.Get());
    EXPECT_EQ(m.at->CreateChild(NewReference()->CreateInstance().Get())->GetLookupTable(), nullptr);
}

TEST(NodeTraverserMaking, GoesOnWithMapsAndMode) {
    Maker m;
    const auto child = m.Free(m.top, true)->CreateChild(m.instance.Get());
    const auto grandchild = child->CreateChild(m.instance.Get());
    ASSERT_TRUE(NodeAt(grandchild));
    EXPECT_EQ(NodeAt(grandchild)->GetParent(), NodeAt(child));
    EXPECT_EQ(m.nodes.Find(NodeAt(grandchild)), m.instance.Get());
    EXPECT_EQ(m.Fields().nodeToInstance.Size(), 0u);
}

TEST(NodeTraverserMaking, BindsTheNodeItselfIfItIsTold) {
    const Maker m;
    m.at->SetUseNodeItself(true);
    const auto bound = m.at->CreateChild(m.instance.Get());
    EXPECT_EQ(NodeAt(bound), m.top);
    EXPECT_NE(static_cast<Selector::Traverser*>(m.at.Get()), bound.Get());
    EXPECT_EQ(m.top->GetChildCount(), 0);
    EXPECT_EQ(m.table->GetInstanceOfNode(m.top).Get(), m.instance.Get());
    EXPECT_EQ(Cast<Instance>(m.top->GetParamVar(Param::kInstance)), m.instance.Get());
    EXPECT_EQ(NodeAt(bound->CreateChild(m.instance.Get()))->GetParent(), m.top)
        << "the traverser that comes out makes children again";
}

TEST(NodeTraverserMaking, BindsTheNodeItselfTheFirstTimeOnly) {
    const Maker m;
    m.at->SetUseNodeItself(true);
    EXPECT_FALSE(m.at->CreateChild(nullptr));
    EXPECT_EQ(NodeAt(m.at->CreateChild(m.instance.Get())), m.top);
    EXPECT_EQ(m.MakeNode()->GetParent(), m.top);
}

}  // namespace
}  // namespace qn::test
