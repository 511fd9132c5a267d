#include "tests/graph/element_changes_fixture.h"

#include <map>

namespace qn::test {
namespace {

using Links = ElementChanges;

TEST_F(Links, BecomeWeakNodeLinks) {
    k3::Node* top = Top();
    k3::Node* wheel = ShownBelow(top, L"n1");
    k3::Node* note = ShownBelow(top, L"n2");
    Link(note, PathTo(wheel));
    Apply(top);
    const Var link = note->GetParamVar(Param::kLinkedNode);
    EXPECT_EQ(LinkedNode(note), wheel);
    EXPECT_TRUE(link.IsWeak());
    EXPECT_EQ(LinkedNode(wheel), nullptr);
}

TEST_F(Links, ThatLeadNowhereLeaveTheNodeAlone) {
    k3::Node* note = ShownBelow(Top(), L"n2");
    note->SetParamVar(Param::kLinkedNode, Var(7));
    Link(note, StoredPath({}));
    Apply(note);
    Link(note, StoredPath({nullptr, Known(L"n9").Get()}));
    Apply(note);
    EXPECT_EQ(note->GetParamVar(Param::kLinkedNode), Var(7));
}

TEST_F(Links, AreFollowedFromWhatTheTableKnowsIfTheNodeCarriesNothing) {
    k3::Node* top = Top();
    k3::Node* wheel = ShownBelow(top, L"n1");
    k3::Node* note = ShownBelow(top, L"n2");
    Link(note, PathTo(wheel));
    note->SetParamVar(Param::kInstance, Var());
    Apply(note);
    EXPECT_EQ(LinkedNode(note), wheel);
}

TEST_F(Links, AreNotFollowedOnANodeThatCarriesSomethingElse) {
    k3::Node* top = Top();
    k3::Node* wheel = ShownBelow(top, L"n1");
    k3::Node* note = ShownBelow(top, L"n2");
    Link(note, PathTo(wheel));
    note->SetParamVar(Param::kInstance, Var(7));
    Apply(note);
    EXPECT_EQ(LinkedNode(note), nullptr);
}

TEST_F(Links, OfAListBecomeAMapByTheirKeys) {
    k3::Node* top = Top();
    k3::Node* wheel = ShownBelow(top, L"n1");
    k3::Node* note = ShownBelow(top, L"n2");
    LinkAll(note,
            LinkList({{PathTo(wheel).Get(), Var(L"a")}, {PathTo(wheel).Get(), Var(2)}, {nullptr, Var(3)}}));
    Apply(note);
    const Var links = note->GetParamVar(Param::kLinkList);
    ASSERT_TRUE(links.IsMap());
    ASSERT_EQ(links.size(), 2);
    EXPECT_EQ(links.KeyAt(0), Var(L"a"));
    EXPECT_EQ(links.KeyAt(1), Var(2));
    const Var row = links.ValueAt(0);
    ASSERT_EQ(row.size(), 2);
    EXPECT_EQ(Cast<k3::Node>(row.ValueAt(0)), wheel);
    EXPECT_TRUE(row.ToArray()->Get(0).IsWeak());
    EXPECT_EQ(row.ValueAt(1), Var(L"a"));
}

TEST_F(Links, OfAListMayHaveAnEmptyKey) {
    k3::Node* wheel = ShownBelow(Top(), L"n1");
    k3::Node* note = ShownBelow(Top(), L"n2");
    LinkAll(note, LinkList({{PathTo(wheel).Get(), Var()}}));
    Apply(note);
    const Var links = note->GetParamVar(Param::kLinkList);
    ASSERT_EQ(links.size(), 1);
    EXPECT_TRUE(links.KeyAt(0).IsEmpty());
}

TEST_F(Links, OfAListJoinThoseThatTheNodeHas) {
    k3::Node* wheel = ShownBelow(Top(), L"n1");
    k3::Node* note = ShownBelow(Top(), L"n2");
    Var before;
    before.At(L"old") = Var(1);
    note->SetParamVar(Param::kLinkList, before);
    LinkAll(note, LinkList({{PathTo(wheel).Get(), Var(L"new")}}));
    Apply(note);
    EXPECT_EQ(note->GetParamVar(Param::kLinkList).size(), 2);
}

TEST_F(Links, OfAListAreLookedUpOnceForEachSelector) {
    k3::Node* top = Top();
    k3::Node* wheel = ShownBelow(top, L"n1");
    k3::Node* note = ShownBelow(top, L"n2");
    k3::Node* other = ShownBelow(top, L"n3");
    const auto selector = PathTo(wheel);
    LinkAll(note, LinkList({{selector.Get(), Var(1)}}));
    std::map<PersistentSelector*, k3::Node*> answers{{selector.Get(), other}};
    std::map<PersistentSelector*, k3::Node*> reserved;
    On(note)->ApplyElementChanges(note, String(), answers, reserved);
    const Var links = note->GetParamVar(Param::kLinkList);
    EXPECT_EQ(Cast<k3::Node>(links.Lookup(1)->ValueAt(0)), other);
}

TEST_F(Links, OfTheSelectorsOfTheInstanceReachTheNodeToo) {
    k3::Node* top = Top();
    k3::Node* wheel = ShownBelow(top, L"n1");
    k3::Node* note = ShownBelow(top, L"n2");
    const auto selector = Make<PersistentSelectorImpl>();
    selector->SetProperty(Prop::kLink, Var(PathTo(wheel)));
    selector->SetProperty(Prop::kLinkList, LinkList({{PathTo(wheel).Get(), Var(1)}}));
    Cast<InstanceImpl>(Carried(note))->Selectors().At(L"n2") = Var(selector);
    Apply(top);
    EXPECT_EQ(LinkedNode(note), wheel);
    EXPECT_EQ(note->GetParamVar(Param::kLinkList).size(), 1);
}

TEST_F(Links, OfSharedInstancesReachEveryNode) {
    k3::Node* top = Top();
    k3::Node* wheel = ShownBelow(top, L"n1");
    k3::Node* note = ShownBelow(top, L"n2");
    k3::Node* second = top->CreateChildNode(0, 0, 0);
    Show(second, Carried(note));
    const auto selector = Make<PersistentSelectorImpl>();
    selector->SetProperty(Prop::kLink, Var(PathTo(wheel)));
    Cast<InstanceImpl>(Carried(note))->Selectors().At(0) = Var(selector);
    Apply(top);
    EXPECT_EQ(LinkedNode(note), wheel);
    EXPECT_EQ(LinkedNode(second), wheel);
}

using StoredLinks = ElementChanges;

TEST_F(StoredLinks, AreSelectorsWithThePathOfTheLinkedNode) {
    k3::Node* top = Top();
    Show(top, Known(L"n1").Get());
    k3::Node* wheel = ShownBelow(top, L"n2");
    k3::Node* note = ShownBelow(top, L"n3");
    note->SetParamVar(Param::kLinkedNode, Var(wheel, 0));
    Store(top);
    const auto link = LinkOf(*Carried(note));
    ASSERT_TRUE(link);
    ASSERT_EQ(link->path.size(), 2u);
    EXPECT_EQ(link->path[0].Get(), Carried(top));
    EXPECT_EQ(link->path[1].Get(), Carried(wheel));
}

TEST_F(StoredLinks, AreNotMadeAcrossAGap) {
    k3::Node* top = Top();
    k3::Node* wheel = ShownBelow(top, L"n2");
    k3::Node* note = ShownBelow(top, L"n3");
    note->SetParamVar(Param::kLinkedNode, Var(wheel, 0));
    Store(top);
    EXPECT_FALSE(LinkOf(*Carried(note)));
}

TEST_F(StoredLinks, NeedAnEntryInTheMap) {
    k3::Node* wheel = Top();
    Show(wheel, Known(L"n1").Get());
    k3::Node* note = Top();
    const auto instance = Known(L"n2");
    note->SetParamVar(Param::kInstance, Var(instance));
    note->SetParamVar(Param::kLinkedNode, Var(wheel, 0));
    Store(note);
    EXPECT_FALSE(LinkOf(*instance));
}

TEST_F(StoredLinks, OfAListKeepTheirKeysAndShareTheSelectorOfOneNode) {
    k3::Node* wheel = Top();
    Show(wheel, Known(L"n1").Get());
    k3::Node* note = Top();
    Show(note, Known(L"n2").Get());
    const auto entry = [&](Interface* linked, const wchar_t* key) {
        Var row(VarArray::Create(2));
        row.At(0) = Var(linked, 0);
        row.At(1) = Var(key);
        return row;
    };
    Var links;
    links.At(L"a") = entry(wheel, L"a");
    links.At(L"b") = entry(wheel, L"b");
    links.At(L"c") = entry(table.Get(), L"c");
    links.At(L"d") = Var(7);
    note->SetParamVar(Param::kLinkList, links);
    Store(note);
    const Var stored = Carried(note)->GetProperty(Prop::kLinkList, 0);
    ASSERT_EQ(stored.size(), 2);
    EXPECT_EQ(stored.ValueAt(0).ValueAt(1), Var(L"a"));
    EXPECT_EQ(stored.ValueAt(1).ValueAt(1), Var(L"b"));
    EXPECT_EQ(Cast<Interface>(stored.ValueAt(0).ValueAt(0)), Cast<Interface>(stored.ValueAt(1).ValueAt(0)));
    EXPECT_EQ(ListedLinksOf(*Carried(note))[0]->path[0].Get(), Carried(wheel));
}

TEST_F(StoredLinks, AreReadFromAnArrayToo) {
    k3::Node* wheel = Top();
    Show(wheel, Known(L"n1").Get());
    k3::Node* note = Top();
    Show(note, Known(L"n2").Get());
    note->SetParamVar(Param::kLinkList, LinkList({{wheel, Var(1)}}));
    Store(note);
    EXPECT_EQ(ListedLinksOf(*Carried(note)).size(), 1u);
    note->SetParamVar(Param::kLinkList, Var());
}

TEST_F(StoredLinks, ComeBackToTheSameNodes) {
    k3::Node* top = Top();
    Show(top, Known(L"n1").Get());
    k3::Node* wheel = ShownBelow(top, L"n2");
    k3::Node* note = ShownBelow(top, L"n3");
    note->SetParamVar(Param::kLinkedNode, Var(wheel, 0));
    Store(top);
    note->SetParamVar(Param::kLinkedNode, Var());
    Apply(top);
    EXPECT_EQ(LinkedNode(note), wheel);
}

}  // namespace
}  // namespace qn::test
