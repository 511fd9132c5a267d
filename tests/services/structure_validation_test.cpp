#include "services/top_level_nodes.h"
#include "tests/services/services_support.h"

namespace qn::test {
namespace {

using Nodes = std::vector<k3::Node*>;

/// A scene with two shown nodes and two that stand in no tree.
class Structures : public HierarchyCheck {
protected:
    Nodes TopNodes() { return graph::TopLevelNodes(scene.Get()); }

    k3::Node* first = scene->CreateEmptyNode(0, 0, 0);
    k3::Node* second = scene->CreateEmptyNode(0, 0, 0);
    Counted<k3::Node> hidden = Make<k3::Node>(), other = Make<k3::Node>();
};

TEST_F(Structures, AreTheScenesChildrenIfThereIsNone) {
    EXPECT_EQ(TopNodes(), (Nodes{first, second}));
    SetBoms({}, nullptr);
    EXPECT_EQ(TopNodes(), (Nodes{first, second}));
}

TEST_F(Structures, OfTheCurrentOneAreTheScenesChildren) {
    const auto current = Make<ListedBom>(std::initializer_list<k3::Node*>{hidden.Get()});
    SetBoms({current.Get()}, current.Get());
    EXPECT_EQ(TopNodes(), (Nodes{first, second}));
}

TEST_F(Structures, OfTheOthersAreTheirLists) {
    const auto current = Make<ListedBom>();
    const auto stored = Make<ListedBom>(std::initializer_list<k3::Node*>{hidden.Get(), other.Get()});
    SetBoms({stored.Get(), current.Get()}, current.Get());
    EXPECT_EQ(TopNodes(), (Nodes{hidden.Get(), other.Get(), first, second}));
}

TEST_F(Structures, LeaveTheSceneOutIfNoneIsCurrent) {
    const auto stored = Make<ListedBom>(std::initializer_list<k3::Node*>{hidden.Get()});
    SetBoms({stored.Get()}, nullptr);
    EXPECT_EQ(TopNodes(), Nodes{hidden.Get()});
}

TEST_F(Structures, AreTheScenesChildrenIfTheListHoldsOnlyStrangers) {
    const auto stranger = Make<k3::Object3D>();
    SetBoms({stranger.Get()}, nullptr);
    EXPECT_EQ(TopNodes(), (Nodes{first, second}));
}

TEST_F(Structures, PassOverEntriesThatAreNoNodes) {
    const auto stored = Make<ListedBom>(std::initializer_list<k3::Node*>{hidden.Get()});
    stored->nodes.ToArray()->Add(Var(7));
    stored->nodes.ToArray()->Add(Var(Make<k3::Object3D>()));
    stored->nodes.ToArray()->Add(Var(other));
    const auto empty = Make<ListedBom>();
    empty->nodes = Var();
    SetBoms({stored.Get(), empty.Get()}, nullptr);
    EXPECT_EQ(TopNodes(), (Nodes{hidden.Get(), other.Get()}));
}

TEST_F(Structures, OfNoSceneAreNone) {
    EXPECT_EQ(graph::TopLevelNodes(nullptr), Nodes{});
}

TEST_F(Structures, AreCheckedEvenIfTheyAreNotShown) {
    const auto shelf = Make<k3::Scene>();
    SoundCar stored(*shelf);
    const auto current = Make<ListedBom>();
    const auto idle = Make<ListedBom>(std::initializer_list<k3::Node*>{stored.top});
    SetBoms({current.Get(), idle.Get()}, current.Get());
    EXPECT_TRUE(Validate());
    stored.At({0})->DeleteParam(Param::kInstance);
    EXPECT_FALSE(Validate());
    EXPECT_FALSE(Repair());
    EXPECT_EQ(Operations().removals[0].node, stored.top);
    EXPECT_TRUE(Validate());
}

}  // namespace
}  // namespace qn::test
