#include "tests/behaviour/stored_selector.h"
#include "tests/behaviour/traverser_support.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

Var Link(const Counted<PersistentSelector>& selector, const Var& more) {
    return ArrayOf({Var(selector), more});
}

/// A node "at" whose instance carries the links, and nodes to be found: top > (at, goal).
struct Applied : Stage {
    Counted<Instance> topInstance = EnterInstance(*table, L"top");
    Counted<Instance> instance = EnterInstance(*table, L"at");
    Counted<Instance> goalInstance = EnterInstance(*table, L"goal");
    k3::Node* top = NodeOf(topInstance.Get());
    k3::Node* at = NodeOf(instance.Get(), top);
    k3::Node* goal = NodeOf(goalInstance.Get(), top);

    Counted<PersistentSelector> ToGoal() const {
        return LiveSelector({topInstance.Get(), goalInstance.Get()});
    }
    void Apply() const { table->ApplyElementChanges(top); }
    static Interface* Linked(k3::Node* node) { return node->GetParamVar(Param::kLinkedNode).ToInterface(); }
};

// Links.

TEST(NodeTraverserApplying, LinksTheNodeThatPropertyNineNames) {
    const Applied a;
    a.instance->SetProperty(Prop::kLink, Var(a.ToGoal()));
    a.Apply();
    EXPECT_EQ(Applied::Linked(a.at), a.goal);
    EXPECT_TRUE(a.at->GetParamVar(Param::kLinkedNode).IsWeak());
    EXPECT_TRUE(a.top->GetParamVar(Param::kLinkedNode).IsEmpty());
}

TEST(NodeTraverserApplying, LinksNothingThatIsNotFound) {
    const Applied a;
    for (const Var& link : {Var(), Var(L"text"), Var(a.goalInstance), Var(NewStoredSelector()),
                            Var(LiveSelector({a.goalInstance.Get(), a.topInstance.Get()}))}) {
        a.instance->SetProperty(Prop::kLink, link);
        a.Apply();
        EXPECT_TRUE(a.at->GetParamVar(Param::kLinkedNode).IsEmpty()) << int{link.GetTag()};
    }
}

TEST(NodeTraverserApplying, LinksNothingByIds) {
    const Applied a;
    const auto selector = NewStoredSelector();
    FieldsOf(selector).idPath = IdPath({L"top", L"goal"});
    a.instance->SetProperty(Prop::kLink, Var(selector));
    a.Apply();
    EXPECT_TRUE(a.at->GetParamVar(Param::kLinkedNode).IsEmpty());
}

TEST(NodeTraverserApplying, ListsTheNodesOfPropertyNineteenUnderTheirKeys) {
    const Applied a;
    a.instance->SetProperty(Prop::kLinkList, ArrayOf({Link(a.ToGoal(), Var(L"key")), Var(L"no array"),
                                                      Link(a.ToGoal(), Var(7))}));
    a.Apply();
    const Var list = a.at->GetParamVar(Param::kLinkList);
    ASSERT_TRUE(list.IsMap());
    EXPECT_EQ(list.size(), 2);
    for (const Var& key : {Var(L"key"), Var(7)}) {
        const Var* entry = list.Lookup(key);
        ASSERT_TRUE(entry && entry->IsArray());
        EXPECT_EQ(entry->size(), 2);
        EXPECT_EQ(entry->ToArray()->Get(0).ToInterface(), a.goal);
        EXPECT_TRUE(entry->ToArray()->Get(0).IsWeak());
        EXPECT_EQ(entry->ToArray()->Get(1), key);
    }
}

TEST(NodeTraverserApplying, ListsUnderAnEmptyKeyToo) {
    const Applied a;
    a.instance->SetProperty(Prop::kLinkList, ArrayOf({ArrayOf({Var(a.ToGoal())})}));
    a.Apply();
    const Var list = a.at->GetParamVar(Param::kLinkList);
    ASSERT_TRUE(list.IsMap());
    EXPECT_TRUE(list.Lookup(Var()));
}

TEST(NodeTraverserApplying, ListsNothingThatIsNotFound) {
    const Applied a;
    a.instance->SetProperty(Prop::kLinkList, ArrayOf({Link(NewStoredSelector(), Var(L"key")), ArrayOf({}),
                                                      ArrayOf({Var(L"text"), Var(L"key")})}));
    a.Apply();
    EXPECT_TRUE(a.at->GetParamVar(Param::kLinkList).IsEmpty());
}

TEST(NodeTraverserApplying, AddsToTheListOfTheNode) {
    const Applied a;
    a.at->SetParamVar(Param::kLinkList, MapOf({{Var(L"former"), Var(1)}}));
    a.instance->SetProperty(Prop::kLinkList, ArrayOf({Link(a.ToGoal(), Var(L"key"))}));
    a.Apply();
    const Var list = a.at->GetParamVar(Param::kLinkList);
    EXPECT_TRUE(list.Lookup(L"former"));
    EXPECT_TRUE(list.Lookup(L"key"));
}

TEST(NodeTraverserApplying, FollowsTheLinksOfSelectorsToo) {
    const Applied a;
    const auto carrier = NewStoredSelector();
    carrier->SetProperty(Prop::kLink, Var(a.ToGoal()));
    carrier->SetProperty(Prop::kLinkList, ArrayOf({Link(a.ToGoal(), Var(L"key"))}));
    SetSelectors(*a.instance, {carrier.Get()});
    a.Apply();
    EXPECT_EQ(Applied::Linked(a.at), a.goal);
    EXPECT_TRUE(a.at->GetParamVar(Param::kLinkList).Lookup(L"key"));
}

// Which node is found.

/// Two tops that show the same hierarchy, each with "at" and "goal".
struct Twice : Applied {
    k3::Node* otherTop = NodeOf(topInstance.Get());
    k3::Node* otherAt = NodeOf(instance.Get(), otherTop);
    k3::Node* otherGoal = NodeOf(goalInstance.Get(), otherTop);
};

TEST(NodeTraverserApplying, PrefersTheStartThatIsAnAncestor) {
    const Twice t;
    t.instance->SetProperty(Prop::kLink, Var(t.ToGoal()));
    t.table->ApplyElementChanges(t.scene.Get());
    EXPECT_EQ(Applied::Linked(t.at), t.goal);
    EXPECT_EQ(Applied::Linked(t.otherAt), t.otherGoal);
}

TEST(NodeTraverserApplying, PrefersTheStartThatIsBelow) {
    const Twice t;
    t.topInstance->SetProperty(Prop::kLink, Var(LiveSelector({t.goalInstance.Get()})));
    t.table->ApplyElementChanges(t.scene.Get());
    EXPECT_EQ(Applied::Linked(t.top), t.goal);
    EXPECT_EQ(Applied::Linked(t.otherTop), t.otherGoal);
}

TEST(NodeTraverserApplying, PrefersTheNodeItself) {
    const Twice t;
    t.instance->SetProperty(Prop::kLink, Var(LiveSelector({t.instance.Get()})));
    t.table->ApplyElementChanges(t.scene.Get());
    EXPECT_EQ(Applied::Linked(t.at), t.at);
    EXPECT_EQ(Applied::Linked(t.otherAt), t.otherAt);
}

TEST(NodeTraverserApplying, TakesTheFirstOfUnrelatedStarts) {
    const Twice t;
    k3::Node* aside = t.NodeOf(EnterInstance(*t.table, L"aside").Get());
    t.table->GetInstanceOfNode(aside)->SetProperty(Prop::kLink, Var(t.ToGoal()));
    t.table->ApplyElementChanges(aside);
    k3::Node* first = InSetOrder({t.top, t.otherTop})[0];
    EXPECT_EQ(Applied::Linked(aside), first == t.top ? t.goal : t.otherGoal);
}

TEST(NodeTraverserApplying, TriesUnrelatedStartsUntilOneLeadsToTheEnd) {
    const Twice t;
    k3::Node* aside = t.NodeOf(EnterInstance(*t.table, L"aside").Get());
    t.table->GetInstanceOfNode(aside)->SetProperty(Prop::kLink, Var(t.ToGoal()));
    k3::Node* first = InSetOrder({t.top, t.otherTop})[0];
    t.scene->DeleteNode(0, first == t.top ? t.goal : t.otherGoal, 0);
    t.table->ApplyElementChanges(aside);
    EXPECT_EQ(Applied::Linked(aside), first == t.top ? t.otherGoal : t.goal);
}

TEST(NodeTraverserApplying, TriesNoOtherStartThanTheRelatedOne) {
    const Twice t;
    t.instance->SetProperty(Prop::kLink, Var(t.ToGoal()));
    t.scene->DeleteNode(0, t.goal, 0);
    t.table->ApplyElementChanges(t.at);
    EXPECT_TRUE(t.at->GetParamVar(Param::kLinkedNode).IsEmpty());
}

TEST(NodeTraverserApplying, FindsByParameter94) {
    const Applied a;
    a.goal->DeleteParam(Param::kInstance);
    a.instance->SetProperty(Prop::kLink, Var(a.ToGoal()));
    a.Apply();
    EXPECT_TRUE(a.at->GetParamVar(Param::kLinkedNode).IsEmpty());
}

// Which nodes are walked.

TEST(NodeTraverserApplying, GoesDownFromTheNodeThatItIsGiven) {
    const Applied a;
    k3::Node* below = a.NodeOf(EnterInstance(*a.table, L"below").Get(), a.at);
    a.table->GetInstanceOfNode(below)->SetProperty(Prop::kLink, Var(a.ToGoal()));
    a.goalInstance->SetProperty(Prop::kLink, Var(a.ToGoal()));
    a.table->ApplyElementChanges(a.at);
    EXPECT_EQ(Applied::Linked(below), a.goal);
    EXPECT_TRUE(a.goal->GetParamVar(Param::kLinkedNode).IsEmpty());
}

TEST(NodeTraverserApplying, GoesThroughNodesWithoutInstance) {
    const Applied a;
    k3::Node* plain = a.Node(L"plain", a.top);
    k3::Node* below = a.NodeOf(EnterInstance(*a.table, L"below").Get(), plain);
    a.table->GetInstanceOfNode(below)->SetProperty(Prop::kLink, Var(a.ToGoal()));
    a.Apply();
    EXPECT_EQ(Applied::Linked(below), a.goal);
}

TEST(NodeTraverserApplying, TakesTheInstanceFromTheMapWhereTheNodeHasNone) {
    const Applied a;
    a.at->DeleteParam(Param::kInstance);
    a.instance->SetProperty(Prop::kLink, Var(a.ToGoal()));
    a.Apply();
    EXPECT_EQ(Applied::Linked(a.at), a.goal);
}

TEST(NodeTraverserApplying, TakesTheInstanceOfTheNodeBeforeThatOfTheMap) {
    const Applied a;
    const auto other = EnterInstance(*a.table, L"other");
    other->SetProperty(Prop::kLink, Var(a.ToGoal()));
    a.Fields().nodeToInstance.Set(a.at, other.Get());
    a.Apply();
    EXPECT_TRUE(a.at->GetParamVar(Param::kLinkedNode).IsEmpty());
}

// Answers that are remembered.

TEST(NodeTraverserApplying, LooksForAListedNodeOnceForEachSelector) {
    const Applied a;
    const auto selector = a.ToGoal(), lost = NewStoredSelector();
    a.instance->SetProperty(Prop::kLinkList, ArrayOf({Link(selector, Var(1)), Link(lost, Var(2))}));
    std::map<PersistentSelector*, k3::Node*> answers{{lost.Get(), a.top}}, reserved;
    a.On(a.at)->ApplyElementChanges(a.at, String(), answers, reserved);
    EXPECT_EQ(answers[selector.Get()], a.goal);
    EXPECT_EQ(a.at->GetParamVar(Param::kLinkList).Lookup(2)->ValueAt(0).ToInterface(), a.top);
    EXPECT_TRUE(reserved.empty());
}

}  // namespace
}  // namespace qn::test
