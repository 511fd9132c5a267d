#include "tests/behaviour/stored_selector.h"
#include "tests/behaviour/traverser_support.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;
using Path = std::vector<Instance*>;

/// top > (at, between > goal); every node shows an instance.
struct Linked : Stage {
    Counted<Instance> topInstance = EnterInstance(*table, L"top");
    Counted<Instance> instance = EnterInstance(*table, L"at");
    Counted<Instance> betweenInstance = EnterInstance(*table, L"between");
    Counted<Instance> goalInstance = EnterInstance(*table, L"goal");
    k3::Node* top = NodeOf(topInstance.Get());
    k3::Node* at = NodeOf(instance.Get(), top);
    k3::Node* between = NodeOf(betweenInstance.Get(), top);
    k3::Node* goal = NodeOf(goalInstance.Get(), between);

    void Store(k3::Node* node) const { On(node)->StoreElementChanges(node); }
    void Store() const { Store(top); }
    Path ToGoal() const { return {topInstance.Get(), betweenInstance.Get(), goalInstance.Get()}; }
    static PersistentSelector* LinkOf(Instance& instance) {
        return Cast<PersistentSelector>(instance.GetProperty(Prop::kLink, 0));
    }
    Var List() const { return instance->GetProperty(Prop::kLinkList, 0); }
};

TEST(NodeTraverserStoring, GivesTheInstanceASelectorToTheLinkedNode) {
    const Linked l;
    l.at->SetParamVar(Param::kLinkedNode, Var(l.goal, 0));
    l.Store();
    ASSERT_TRUE(Linked::LinkOf(*l.instance));
    PersistentSelector& link = *Linked::LinkOf(*l.instance);
    EXPECT_EQ(PathIn(link), l.ToGoal());
    EXPECT_TRUE(FieldsOf(link).idPath.IsEmpty());
    EXPECT_TRUE(FieldsOf(link).attributes.IsEmpty());
    EXPECT_FALSE(l.instance->GetProperty(Prop::kLink, 0).IsWeak());
}

TEST(NodeTraverserStoring, LeavesTheLinkWhereTheNodeHasNone) {
    const Linked l;
    l.instance->SetProperty(Prop::kLink, Var(L"former"));
    l.Store();
    for (const Var& value : {Var(7), Var(L"text"), Var(NewInstance())}) {
        l.at->SetParamVar(Param::kLinkedNode, value);
        l.Store();
    }
    EXPECT_EQ(l.instance->GetProperty(Prop::kLink, 0), Var(L"former"));
}

TEST(NodeTraverserStoring, LeavesTheLinkWhereTheWayUpHasAGap) {
    const Linked l;
    l.instance->SetProperty(Prop::kLink, Var(L"former"));
    l.Fields().nodeToInstance.Set(l.between, nullptr);
    l.at->SetParamVar(Param::kLinkedNode, Var(l.goal, 0));
    l.Store();
    EXPECT_EQ(l.instance->GetProperty(Prop::kLink, 0), Var(L"former"));
}

TEST(NodeTraverserStoring, GoesUpByTheMapNotByTheNodes) {
    const Linked l;
    l.goal->DeleteParam(Param::kInstance);
    l.at->SetParamVar(Param::kLinkedNode, Var(l.goal, 0));
    l.Store();
    ASSERT_TRUE(Linked::LinkOf(*l.instance));
    EXPECT_EQ(PathIn(*Linked::LinkOf(*l.instance)), l.ToGoal());
}

TEST(NodeTraverserStoring, ListsASelectorForEachEntry) {
    const Linked l;
    const Var list = ArrayOf({ArrayOf({Var(l.goal, 0), Var(L"key")}), Var(L"no array"),
                              ArrayOf({Var(7), Var(8)}), ArrayOf({Var(l.between, 0), Var(9)})});
    l.at->SetParamVar(Param::kLinkList, list);
    l.Store();
    ASSERT_TRUE(l.List().IsArray());
    ASSERT_EQ(l.List().size(), 2);
    const Var first = l.List().ValueAt(0), second = l.List().ValueAt(1);
    ASSERT_TRUE(first.IsArray() && second.IsArray());
    EXPECT_EQ(PathIn(*Cast<PersistentSelector>(first.ValueAt(0))), l.ToGoal());
    EXPECT_EQ(first.ValueAt(1), Var(L"key"));
    EXPECT_EQ(PathIn(*Cast<PersistentSelector>(second.ValueAt(0))),
              (Path{l.topInstance.Get(), l.betweenInstance.Get()}));
    EXPECT_EQ(second.ValueAt(1), Var(9));
}

TEST(NodeTraverserStoring, ListsOneSelectorForEachNode) {
    const Linked l;
    l.at->SetParamVar(Param::kLinkList,
                      ArrayOf({ArrayOf({Var(l.goal, 0), Var(1)}), ArrayOf({Var(l.goal, 0), Var(2)}),
                               ArrayOf({Var(l.between, 0), Var(3)})}));
    l.Store();
    ASSERT_EQ(l.List().size(), 3);
    const auto selector = [&](int i) { return l.List().ValueAt(i).ValueAt(0).ToInterface(); };
    EXPECT_EQ(selector(0), selector(1));
    EXPECT_NE(selector(0), selector(2));
}

TEST(NodeTraverserStoring, ListsFromAMapToo) {
    const Linked l;
    l.at->SetParamVar(Param::kLinkList, MapOf({{Var(L"key"), ArrayOf({Var(l.goal, 0), Var(L"key")})}}));
    l.Store();
    ASSERT_EQ(l.List().size(), 1);
    EXPECT_EQ(PathIn(*Cast<PersistentSelector>(l.List().ValueAt(0).ValueAt(0))), l.ToGoal());
    EXPECT_EQ(l.List().ValueAt(0).ValueAt(1), Var(L"key"));
}

TEST(NodeTraverserStoring, ListsNothingWhereTheNodeHasNone) {
    const Linked l;
    l.Store();
    EXPECT_TRUE(l.List().IsEmpty());
}

TEST(NodeTraverserStoring, GoesDownFromTheNodeThatItIsGiven) {
    const Linked l;
    l.goal->SetParamVar(Param::kLinkedNode, Var(l.at, 0));
    l.at->SetParamVar(Param::kLinkedNode, Var(l.goal, 0));
    l.Store(l.between);
    ASSERT_TRUE(Linked::LinkOf(*l.goalInstance));
    EXPECT_EQ(PathIn(*Linked::LinkOf(*l.goalInstance)), (Path{l.topInstance.Get(), l.instance.Get()}));
    EXPECT_FALSE(Linked::LinkOf(*l.instance));
}

TEST(NodeTraverserStoring, GoesThroughNodesThatAreNotInTheMap) {
    const Linked l;
    k3::Node* plain = l.Node(L"plain", l.top);
    plain->SetParamVar(Param::kLinkedNode, Var(l.goal, 0));
    const auto instance = EnterInstance(*l.table, L"below");
    k3::Node* below = l.NodeOf(instance.Get(), plain);
    below->SetParamVar(Param::kLinkedNode, Var(l.goal, 0));
    l.Store();
    EXPECT_TRUE(Linked::LinkOf(*instance));
}

TEST(NodeTraverserStoring, PassesOverNodesThatOnlyCarryAnInstance) {
    const Linked l;
    const auto instance = EnterInstance(*l.table, L"carried");
    k3::Node* carrier = l.NodeWith(instance.Get(), l.top);
    carrier->SetParamVar(Param::kLinkedNode, Var(l.goal, 0));
    l.Store();
    EXPECT_FALSE(Linked::LinkOf(*instance));
}

TEST(NodeTraverserStoring, IsTheWayBackOfApplying) {
    const Linked l;
    l.at->SetParamVar(Param::kLinkedNode, Var(l.goal, 0));
    l.Store();
    l.at->DeleteParam(Param::kLinkedNode);
    l.table->ApplyElementChanges(l.top);
    EXPECT_EQ(l.at->GetParamVar(Param::kLinkedNode).ToInterface(), l.goal);
}

}  // namespace
}  // namespace qn::test
