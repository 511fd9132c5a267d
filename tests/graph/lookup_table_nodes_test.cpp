#include "tests/graph/table_fixture.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace qn::test {
namespace {

using testing::ElementsAre;

class LookupTableNodes : public TableFixture {
protected:
    /// A child of `parent` that shows the instance, known to the table unless told otherwise.
    k3::Node* NodeOf(k3::Node* parent, Instance* instance, bool known = true) {
        k3::Node* node = parent->CreateChildNode(0, 0, 0);
        node->SetParamVar(Param::kInstance, Var(instance, 1));
        if (known) table->nodeToInstance.Set(node, instance);
        if (known) table->instanceToNodes.Add(instance, node);
        return node;
    }
    static std::vector<Interface*> InOrder(std::vector<Interface*> nodes) {
        std::sort(nodes.begin(), nodes.end(), std::less<Interface*>());
        return nodes;
    }

    Counted<k3::Scene> scene = Make<k3::Scene>();
};

TEST_F(LookupTableNodes, OfNullOrAnUnknownInstanceAreNull) {
    EXPECT_FALSE(table->GetNodesOfInstance(nullptr));
    EXPECT_FALSE(table->GetNodesOfInstance(Known(L"n1").Get()));
}

TEST_F(LookupTableNodes, OfAnInstanceComeInAddressOrder) {
    const auto part = Known(L"n1");
    k3::Node* first = NodeOf(scene.Get(), part.Get());
    k3::Node* second = NodeOf(scene.Get(), part.Get());
    const auto nodes = table->GetNodesOfInstance(part.Get());
    EXPECT_TRUE(nodes->IsStrong());
    EXPECT_EQ(Members(nodes), InOrder({first, second}));
}

TEST_F(LookupTableNodes, ThatAreDeadCountAsAbsent) {
    const auto part = Known(L"n1");
    k3::Node* node = NodeOf(scene.Get(), part.Get());
    scene->DeleteNode(0, node, 0);
    scene->CreateEmptyNode(0, 0, 0);
    EXPECT_FALSE(table->GetNodesOfInstance(part.Get()));
    EXPECT_TRUE(table->instanceToNodes.Contains(part.Get()));
}

TEST_F(LookupTableNodes, KnowTheirInstance) {
    const auto part = Known(L"n1");
    k3::Node* node = NodeOf(scene.Get(), part.Get());
    EXPECT_EQ(table->GetInstanceOfNode(node), part.Get());
    EXPECT_FALSE(table->GetInstanceOfNode(nullptr));
    EXPECT_FALSE(table->GetInstanceOfNode(scene.Get()));
}

TEST_F(LookupTableNodes, OfASelectorAreFoundDownThePathFromEveryStart) {
    const auto top = Known(L"n1"), part = Known(L"n2");
    top->GetReference()->AddChild(part.Get());
    k3::Node* left = NodeOf(scene.Get(), top.Get());
    k3::Node* right = NodeOf(scene.Get(), top.Get());
    k3::Node* leftPart = NodeOf(left, part.Get());
    k3::Node* rightPart = NodeOf(right, part.Get());
    const Selector selector = PathOf({top.Get(), part.Get()});
    for (const bool exact : {false, true}) {
        const auto nodes = table->GetNodesOfSelector(selector, exact);
        ASSERT_TRUE(nodes);
        EXPECT_EQ(InOrder(Members(nodes)), InOrder({leftPart, rightPart})) << exact;
    }
}

TEST_F(LookupTableNodes, OfASelectorOfOneElementAreTheStarts) {
    const auto top = Known(L"n1");
    k3::Node* node = NodeOf(scene.Get(), top.Get());
    EXPECT_THAT(Members(table->GetNodesOfSelector(PathOf({top.Get()}), false)), ElementsAre(node));
}

TEST_F(LookupTableNodes, OfAnInvalidOrUnknownSelectorAreNull) {
    const auto top = Known(L"n1");
    EXPECT_FALSE(table->GetNodesOfSelector(Selector(), false));
    EXPECT_FALSE(table->GetNodesOfSelector(PathOf({top.Get()}), false));
    NodeOf(scene.Get(), top.Get());
    EXPECT_FALSE(table->GetNodesOfSelector(PathOf({top.Get(), nullptr}), false));
    EXPECT_FALSE(table->GetNodesOfSelector(PathOf({top.Get(), Known(L"n2").Get()}), true));
}

TEST_F(LookupTableNodes, AreMatchedByTheNodesParameterUnlessExact) {
    const auto top = Known(L"n1"), part = Known(L"n2");
    k3::Node* node = NodeOf(scene.Get(), top.Get());
    k3::Node* below = NodeOf(node, part.Get(), false);
    const Selector selector = PathOf({top.Get(), part.Get()});
    EXPECT_THAT(Members(table->GetNodesOfSelector(selector, false)), ElementsAre(below));
    EXPECT_FALSE(table->GetNodesOfSelector(selector, true));
}

TEST_F(LookupTableNodes, AreMatchedByTheMapWhenExact) {
    const auto top = Known(L"n1"), part = Known(L"n2");
    k3::Node* node = NodeOf(scene.Get(), top.Get());
    k3::Node* below = NodeOf(node, part.Get());
    below->SetParamVar(Param::kInstance, Var());
    const Selector selector = PathOf({top.Get(), part.Get()});
    EXPECT_FALSE(table->GetNodesOfSelector(selector, false));
    EXPECT_THAT(Members(table->GetNodesOfSelector(selector, true)), ElementsAre(below));
}

TEST_F(LookupTableNodes, AreLookedForInTheFirstMatchingChildAlone) {
    const auto top = Known(L"n1"), part = Known(L"n2"), bolt = Known(L"n3");
    k3::Node* node = NodeOf(scene.Get(), top.Get());
    NodeOf(node, part.Get());
    k3::Node* second = NodeOf(node, part.Get());
    NodeOf(second, bolt.Get());
    EXPECT_FALSE(table->GetNodesOfSelector(PathOf({top.Get(), part.Get(), bolt.Get()}), false));
}

TEST_F(LookupTableNodes, DumpNamesAndIdsBetweenRules) {
    const auto part = Known(L"n1");
    k3::Node* node = NodeOf(scene.Get(), part.Get());
    node->SetName(L"Rad größer");
    const std::wstring rule(76, L'-');
    EXPECT_EQ(table->DumpNodeMap(), String(rule + L"\n{Rad größer -> n1}\n" + rule + L"\n"));
}

TEST_F(LookupTableNodes, DumpCutsNamesToTheirBuffer) {
    k3::Node* node = NodeOf(scene.Get(), Known(L"n1").Get());
    node->SetName(std::wstring(300, L'x').c_str());
    const auto dump = std::wstring(table->DumpNodeMap().View());
    EXPECT_NE(dump.find(L"{" + std::wstring(259, L'x') + L" -> n1}"), std::wstring::npos);
}

// The maps.

TEST(NodeToInstance, ReplacesTheEntryOfADeadNode) {
    NodeToInstance map;
    const auto first = Make<InstanceImpl>(), second = Make<InstanceImpl>();
    auto node = Make<k3::Node>();
    k3::Node* address = node.Get();
    map.Set(node.Get(), first.Get());
    EXPECT_EQ(map.Find(address), first.Get());
    node.Reset();
    EXPECT_EQ(map.Find(address), nullptr);
    int visited = 0;
    map.ForEach([&](k3::Node*, Instance*) { ++visited; });
    EXPECT_EQ(visited, 0);
    const auto next = Make<k3::Node>();
    map.Set(next.Get(), second.Get());
    EXPECT_EQ(map.Find(next.Get()), second.Get());
}

TEST(NodeToInstance, IsWalkedInAddressOrder) {
    NodeToInstance map;
    const auto instance = Make<InstanceImpl>();
    std::vector<Counted<k3::Node>> nodes;
    std::vector<k3::Node*> expected;
    for (int i = 0; i < 100; ++i) {
        nodes.push_back(Make<k3::Node>());
        expected.push_back(nodes.back().Get());
    }
    for (auto node = nodes.rbegin(); node != nodes.rend(); ++node)
        map.Set(node->Get(), instance.Get());
    std::vector<k3::Node*> walked;
    map.ForEach([&](k3::Node* node, Instance*) { walked.push_back(node); });
    std::sort(expected.begin(), expected.end(), std::less<k3::Node*>());
    EXPECT_EQ(walked, expected);
}

TEST(InstanceToNodes, KeepsEachNodeOnceInAddressOrder) {
    InstanceToNodes map;
    const auto instance = Make<InstanceImpl>();
    std::vector<Counted<k3::Node>> nodes;
    std::vector<k3::Node*> expected;
    for (int i = 0; i < 300; ++i) {
        nodes.push_back(Make<k3::Node>());
        expected.push_back(nodes.back().Get());
    }
    for (std::size_t step : {7u, 1u})
        for (std::size_t i = 0; i < nodes.size(); ++i)
            map.Add(instance.Get(), nodes[i * step % nodes.size()].Get());
    std::sort(expected.begin(), expected.end(), std::less<k3::Node*>());
    EXPECT_EQ(map.NodesOf(instance.Get()), expected);
}

TEST(InstanceToNodes, HoldsInstancesAndWatchesNodes) {
    InstanceToNodes map;
    auto instance = Make<InstanceImpl>();
    const Weak<Instance> watch(instance.Get());
    auto node = Make<k3::Node>();
    map.Add(instance.Get(), node.Get());
    map.Add(nullptr, node.Get());
    map.Add(instance.Get(), nullptr);
    EXPECT_EQ(map.Size(), 1u);
    EXPECT_EQ(node->GetRefCount(), 1);
    instance.Reset();
    EXPECT_TRUE(watch);
    node.Reset();
    EXPECT_TRUE(map.NodesOf(watch.Get()).empty());
    map.Clear();
    EXPECT_FALSE(watch);
}

TEST(WatchedMap, ForgetsTheValueOfADeadKey) {
    WatchedMap<k3::Layer, int> map;
    auto layer = Make<k3::Layer>();
    k3::Layer* address = layer.Get();
    map.At(layer.Get()) = 7;
    EXPECT_EQ(*map.Find(address), 7);
    layer.Reset();
    EXPECT_FALSE(map.Contains(address));
    int visited = 0;
    map.ForEach([&](k3::Layer*, int) { ++visited; });
    EXPECT_EQ(visited, 0);
    const auto next = Make<k3::Layer>();
    EXPECT_EQ(map.At(next.Get()), 0);
}

}  // namespace
}  // namespace qn::test
