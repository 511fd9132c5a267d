#include "tests/behaviour/traverser_support.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

/// top > (first > below), second.
struct Family : Stage {
    k3::Node* top = Node(L"top");
    k3::Node* first = Node(L"first", top);
    k3::Node* below = Node(L"below", first);
    k3::Node* second = Node(L"second", top);

    Counted<Instance> At(k3::Node* node) const { return table->GetInstanceOfNode(node); }
};

std::vector<Instance*> ChildrenOf(Instance* instance) {
    std::vector<Instance*> children;
    for (int i = 0; i < instance->GetReference()->GetChildCount(); ++i)
        children.push_back(instance->GetReference()->GetChild(i).Get());
    return children;
}

TEST(NodeTraverserChildren, EnterTheMapsWithTheirParent) {
    const Family f;
    const auto instance = f.On(f.top)->GetInstance();
    ASSERT_TRUE(instance);
    EXPECT_EQ(f.At(f.top).Get(), instance.Get());
    for (k3::Node* node : {f.top, f.first, f.second}) {
        ASSERT_TRUE(f.At(node)) << node->GetName().ToUtf8();
        EXPECT_EQ(NodesIn(f.table->GetNodesOfInstance(f.At(node).Get()).Get()), std::vector<k3::Node*>{node});
    }
}

TEST(NodeTraverserChildren, BelongToTheReferenceInSiblingOrder) {
    const Family f;
    f.first->AttachTo(f.top);  // now behind the second
    const auto instance = f.On(f.top)->GetInstance();
    EXPECT_EQ(ChildrenOf(instance.Get()),
              (std::vector<Instance*>{f.At(f.second).Get(), f.At(f.first).Get()}));
    EXPECT_EQ(f.At(f.first)->GetParentReference(), instance->GetReference());
}

TEST(NodeTraverserChildren, ComeOneLevelAtATime) {
    const Family f;
    const auto at = f.On(f.top);
    at->GetInstance();
    EXPECT_FALSE(f.At(f.below));
    EXPECT_EQ(f.At(f.first)->GetReference()->GetChildCount(), 0);
    const auto first = at->GetChild(0)->GetInstance();
    EXPECT_EQ(first.Get(), f.At(f.first).Get());
    EXPECT_EQ(ChildrenOf(first.Get()), std::vector<Instance*>{f.At(f.below).Get()});
}

TEST(NodeTraverserChildren, AreAttachedOnceByATraverser) {
    const Family f;
    const auto at = f.On(f.top);
    const auto instance = at->GetInstance();
    k3::Node* late = f.Node(L"late", f.top);
    EXPECT_EQ(at->GetInstance().Get(), instance.Get());
    EXPECT_EQ(ChildrenOf(instance.Get()).size(), 2u);
    EXPECT_FALSE(f.At(late));
}

TEST(NodeTraverserChildren, AreAttachedAgainByTheNextTraverserWithoutDoubles) {
    const Family f;
    const auto instance = f.On(f.top)->GetInstance();
    k3::Node* late = f.Node(L"late", f.top);
    EXPECT_EQ(f.On(f.top)->GetInstance().Get(), instance.Get());
    EXPECT_EQ(ChildrenOf(instance.Get()),
              (std::vector<Instance*>{f.At(f.first).Get(), f.At(f.second).Get(), f.At(late).Get()}));
}

TEST(NodeTraverserChildren, AreAttachedToAnInstanceThatTheMapKnows) {
    const Family f;
    const auto known = EnterInstance(*f.table, L"known");
    f.EnterInMaps(f.top, known.Get());
    EXPECT_EQ(f.On(f.top)->GetInstance().Get(), known.Get());
    EXPECT_EQ(ChildrenOf(known.Get()).size(), 2u);
}

TEST(NodeTraverserChildren, ThatTheMapKnowsAreNotMadeAgain) {
    const Family f;
    const auto known = EnterInstance(*f.table, L"known");
    f.EnterInMaps(f.first, known.Get());
    const auto instance = f.On(f.top)->GetInstance();
    EXPECT_EQ(ChildrenOf(instance.Get())[0], known.Get());
    EXPECT_EQ(f.At(f.first).Get(), known.Get());
}

TEST(NodeTraverserChildren, AreNoneOfAnInstanceWithoutReference) {
    const Family f;
    const auto bare = NewInstance();
    f.EnterInMaps(f.top, bare.Get());
    EXPECT_EQ(f.On(f.top)->GetInstance().Get(), bare.Get());
    EXPECT_FALSE(f.At(f.first));
}

TEST(NodeTraverserChildren, AreNoneWithoutNode) {
    const Family f;
    EXPECT_FALSE(f.On(nullptr)->GetInstance());
    EXPECT_EQ(f.Fields().nodeToInstance.Size(), 0u);
    EXPECT_EQ(f.Fields().instanceToNodes.Size(), 0u);
    EXPECT_TRUE(f.Fields().instances.empty());
}

TEST(NodeTraverserChildren, WithOneInstanceAreOneChild) {
    const Family f;
    const auto shared = EnterInstance(*f.table, L"shared");
    f.first->SetParamVar(Param::kInstance, Var(shared));
    f.second->SetParamVar(Param::kInstance, Var(shared));
    const auto instance = f.On(f.top)->GetInstance();
    EXPECT_EQ(ChildrenOf(instance.Get()), std::vector<Instance*>{shared.Get()});
    EXPECT_EQ(NodesIn(f.table->GetNodesOfInstance(shared.Get()).Get()), InSetOrder({f.first, f.second}));
}

TEST(NodeTraverserChildren, WithoutTableStandInTheCallersMapsAndOnTheNodes) {
    Family f;
    const auto instance = f.FreeInstanceOf(f.top);
    ASSERT_TRUE(instance);
    EXPECT_EQ(f.nodes.Find(f.top), instance.Get());
    ASSERT_TRUE(f.nodes.Find(f.first));
    EXPECT_EQ(f.instances.NodesOf(f.nodes.Find(f.first)), std::vector<k3::Node*>{f.first});
    for (k3::Node* node : {f.top, f.first, f.second})
        EXPECT_EQ(Cast<Instance>(node->GetParamVar(Param::kInstance)), f.nodes.Find(node));
    EXPECT_EQ(f.Fields().nodeToInstance.Size(), 0u);
}

}  // namespace
}  // namespace qn::test
