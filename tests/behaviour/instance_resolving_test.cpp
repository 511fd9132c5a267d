#include "graph/lookup_table_impl.h"
#include "graph/persistent_selector_impl.h"
#include "tests/behaviour/selector_scenery.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

/// A list of links: each entry an array with the selector in front.
Var Links(std::initializer_list<PersistentSelector*> selectors) {
    const auto list = VarArray::Create();
    for (PersistentSelector* selector : selectors)
        list->Add(ArrayOf({Var(selector), Var(L"more")}));
    return Var(list);
}

void ResolveOne(PersistentSelector* selector, LookupTable* table, const wchar_t* prefix = L"",
                PersistentSelector* exclude = nullptr, bool nested = false) {
    String text(prefix);
    NewInstance()->ResolveSelector(Cast<PersistentSelectorImpl>(selector), &text,
                                   Cast<LookupTableImpl>(table), Cast<PersistentSelectorImpl>(exclude),
                                   nested);
}

TEST(InstanceResolving, TurnsIdsIntoALivePath) {
    const Scenery s;
    const auto one = s.Ids({L"a", L"b"}), two = s.Ids({L"b"});
    SetSelectors(*s.at, {one.Get(), two.Get()});
    EXPECT_TRUE(LivePath(*one).empty());
    s.at->ResolveSelectors(false, nullptr);
    EXPECT_EQ(LivePath(*one), (Path{s.a.Get(), s.b.Get()}));
    EXPECT_EQ(LivePath(*two), Path{s.b.Get()});
}

TEST(InstanceResolving, TakesTheIdsAway) {
    const Scenery s;
    const auto selector = s.Ids({L"a"});
    SetSelectors(*s.at, {selector.Get()});
    s.at->ResolveSelectors(false, nullptr);
    const auto newcomer = EnterInstance(*s.table, L"a");
    s.at->ResolveSelectors(false, nullptr);
    EXPECT_EQ(LivePath(*selector), Path{s.a.Get()}) << "no id is left that could find the newcomer";
}

TEST(InstanceResolving, LosesAPathWithAnUnknownId) {
    const Scenery s;
    const auto selector = s.Ids({L"a", L"later"});
    SetSelectors(*s.at, {selector.Get()});
    s.at->ResolveSelectors(false, nullptr);
    EXPECT_TRUE(LivePath(*selector).empty());

    const auto late = EnterInstance(*s.table, L"later");
    EXPECT_TRUE(PathFor(*s.table, *selector).empty()) << "the ids are gone, too";
    s.at->ResolveSelectors(false, nullptr);
    EXPECT_TRUE(LivePath(*selector).empty());
}

TEST(InstanceResolving, KeepsTheAttributesOfALostPath) {
    const Scenery s;
    const auto selector = s.Ids({L"unknown"});
    selector->SetProperty(Prop::kName, Var(L"named"));
    SetSelectors(*s.at, {selector.Get()});
    s.at->ResolveSelectors(false, nullptr);
    EXPECT_EQ(selector->GetProperty(Prop::kName, 0), Var(L"named"));
    EXPECT_EQ(s.at->GetSelectorCount(), 1);
}

TEST(InstanceResolving, LeavesNothingBehindThatTakesTheUnknownId) {
    const Scenery s;
    SetSelectors(*s.at, {s.Ids({L"unknown"}).Get()});
    s.at->ResolveSelectors(false, nullptr);
    EXPECT_FALSE(s.table->FindInstanceById(L"unknown"));
    const auto made = NewReferenceIn(*s.table)->CreateInstanceWithId(L"unknown");
    ASSERT_TRUE(made);
    EXPECT_EQ(s.table->FindInstanceById(L"unknown"), made);
}

TEST(InstanceResolving, KeepsALivePathThatHasNoIds) {
    const Scenery s;
    const auto selector = LiveSelector({s.a.Get()});
    SetSelectors(*s.at, {selector.Get()});
    s.at->ResolveSelectors(false, nullptr);
    EXPECT_EQ(LivePath(*selector), Path{s.a.Get()});
}

TEST(InstanceResolving, LosesALivePathToAnEmptyListOfIds) {
    const Scenery s;
    auto mortal = NewReference()->CreateInstance();
    s.at->AddLocalSelector(PathOf({mortal.Get()}));
    mortal.Reset();
    s.at->StoreSelectors(false, nullptr);
    EXPECT_EQ(s.at->GetSelector(0).GetPathElementCount(), 1) << "one null";
    s.at->ResolveSelectors(false, nullptr);
    EXPECT_EQ(s.at->GetSelector(0).GetPathElementCount(), 0);
}

TEST(InstanceResolving, PutsThePresentPrefixInFrontOfEachId) {
    const Scenery s;
    const auto owner = NewReferenceIn(*s.table);
    owner->SetProperty(Prop::kLocalId, Var(L"file"));
    const auto x = EnterInstance(*s.table, L"file_x"), y = EnterInstance(*s.table, L"file_y");
    const auto selector = s.Ids({L"x", L"y"}), whole = s.Ids({L"file_x"});
    SetSelectors(*s.at, {selector.Get(), whole.Get()});
    s.table->PushIdPrefix(owner.Get());
    s.at->ResolveSelectors(false, nullptr);
    EXPECT_EQ(LivePath(*selector), (Path{x.Get(), y.Get()}));
    EXPECT_TRUE(LivePath(*whole).empty()) << "it got the prefix twice";
}

TEST(InstanceResolving, DoesNothingWithoutATable) {
    const Scenery s;
    const auto selector = s.Ids({L"a"});
    const auto free = NewReference()->CreateInstance();
    SetSelectors(*free, {selector.Get()});
    free->ResolveSelectors(false, nullptr);
    EXPECT_TRUE(LivePath(*selector).empty());
    EXPECT_EQ(PathFor(*s.table, *selector), Path{s.a.Get()}) << "its ids are still there";
}

TEST(InstanceResolving, PassesOverWhatIsNoStoredSelector) {
    const Scenery s;
    const auto selector = s.Ids({L"a"});
    Feed(*s.at, 0x1002, MapOf({{Var(0), Var(5)}, {Var(1), Var()}, {Var(2), Var(selector)}}).ToMap());
    s.at->ResolveSelectors(false, nullptr);
    EXPECT_EQ(LivePath(*selector), Path{s.a.Get()});
}

TEST(InstanceResolving, GoesByRunningKeysOnlyUpToTheCount) {
    const Scenery s;
    const auto first = s.Ids({L"a"}), second = s.Ids({L"b"});
    SetSelectors(*s.at, {first.Get(), second.Get()});
    s.at->RemoveSelector(0);
    s.at->ResolveSelectors(false, nullptr);
    EXPECT_TRUE(LivePath(*second).empty()) << "its key 1 is outside the count";
    EXPECT_EQ(s.at->GetSelectorCount(), 1);
}

TEST(InstanceResolving, PassesOverSelectorsUnderTextKeys) {
    const Scenery s;
    const auto selector = s.table->SetPathAttributes(IdPath({L"a", L"at"}), MapOf({{Var(1), Var(L"n")}}));
    ASSERT_EQ(s.at->GetSelectorCount(), 1);
    s.at->ResolveSelectors(false, nullptr);
    EXPECT_TRUE(LivePath(*selector).empty());
    EXPECT_EQ(PathFor(*s.table, *selector), (Path{s.a.Get(), s.at.Get()}));
    EXPECT_EQ(s.at->GetSelectorCount(), 1);
}

TEST(InstanceResolving, TakesInTheLinkAndTheLinkList) {
    const Scenery s;
    const auto link = s.Ids({L"a"}), listed = s.Ids({L"b"}), last = s.Ids({L"a", L"b"});
    s.at->SetProperty(Prop::kLink, Var(link));
    s.at->SetProperty(Prop::kLinkList, Links({listed.Get(), last.Get()}));
    s.at->ResolveSelectors(false, nullptr);
    EXPECT_EQ(LivePath(*link), Path{s.a.Get()});
    EXPECT_EQ(LivePath(*listed), Path{s.b.Get()});
    EXPECT_EQ(LivePath(*last), (Path{s.a.Get(), s.b.Get()}));
}

TEST(InstanceResolving, PassesOverEntriesOfTheLinkListThatAreNoArrayWithASelectorInFront) {
    const Scenery s;
    const auto bare = s.Ids({L"a"}), second = s.Ids({L"a"}), good = s.Ids({L"b"});
    s.at->SetProperty(Prop::kLinkList,
                      ArrayOf({Var(bare), Var(5), Var(), MapOf({{Var(0), Var(bare)}}), ArrayOf({}),
                               ArrayOf({Var(1), Var(second)}), ArrayOf({Var(good)})}));
    s.at->ResolveSelectors(false, nullptr);
    EXPECT_TRUE(LivePath(*bare).empty());
    EXPECT_TRUE(LivePath(*second).empty());
    EXPECT_EQ(LivePath(*good), Path{s.b.Get()});
}

TEST(InstanceResolving, DoesNotReadALinkListThatIsAMap) {
    const Scenery s;
    const auto selector = s.Ids({L"a"});
    s.at->SetProperty(Prop::kLinkList, MapOf({{Var(0), ArrayOf({Var(selector)})}}));
    s.at->ResolveSelectors(false, nullptr);
    EXPECT_TRUE(LivePath(*selector).empty());
}

TEST(InstanceResolving, LeavesTheLinkOfItsDefinitionAlone) {
    const Scenery s;
    const auto link = s.Ids({L"a"});
    s.at->GetReference()->SetProperty(Prop::kLink, Var(link));
    s.at->ResolveSelectors(false, nullptr);
    EXPECT_TRUE(LivePath(*link).empty());
}

TEST(InstanceResolving, FollowsTheLinksOfASelectorOneLevel) {
    const Scenery s;
    const auto outer = s.Ids({L"a"}), link = s.Ids({L"a"}), listed = s.Ids({L"b"});
    const auto deepLink = s.Ids({L"a"}), deepListed = s.Ids({L"b"});
    link->SetProperty(Prop::kLink, Var(deepLink));
    listed->SetProperty(Prop::kLinkList, Links({deepListed.Get()}));
    outer->SetProperty(Prop::kLink, Var(link));
    outer->SetProperty(Prop::kLinkList, Links({listed.Get()}));
    SetSelectors(*s.at, {outer.Get()});
    s.at->ResolveSelectors(false, nullptr);
    EXPECT_EQ(LivePath(*link), Path{s.a.Get()});
    EXPECT_EQ(LivePath(*listed), Path{s.b.Get()});
    EXPECT_TRUE(LivePath(*deepLink).empty());
    EXPECT_TRUE(LivePath(*deepListed).empty());
}

TEST(InstanceResolving, FollowsTheLinksOfALinkedSelectorOneLevel) {
    const Scenery s;
    const auto outer = s.Ids({L"a"}), inner = s.Ids({L"b"}), deep = s.Ids({L"a"});
    inner->SetProperty(Prop::kLink, Var(deep));
    outer->SetProperty(Prop::kLink, Var(inner));
    s.at->SetProperty(Prop::kLinkList, Links({outer.Get()}));
    s.at->ResolveSelectors(false, nullptr);
    EXPECT_EQ(LivePath(*inner), Path{s.b.Get()});
    EXPECT_TRUE(LivePath(*deep).empty());
}

TEST(InstanceResolving, FollowsLinksOfASelectorWhosePathIsLost) {
    const Scenery s;
    const auto outer = s.Ids({L"unknown"}), link = s.Ids({L"a"});
    outer->SetProperty(Prop::kLink, Var(link));
    SetSelectors(*s.at, {outer.Get()});
    s.at->ResolveSelectors(false, nullptr);
    EXPECT_EQ(LivePath(*link), Path{s.a.Get()});
}

TEST(InstanceResolving, OfOneSelectorNeedsSelectorAndTable) {
    const Scenery s;
    const auto selector = s.Ids({L"a"});
    ResolveOne(selector.Get(), nullptr);
    ResolveOne(nullptr, s.table.Get());
    EXPECT_TRUE(LivePath(*selector).empty());
    ResolveOne(selector.Get(), s.table.Get());
    EXPECT_EQ(LivePath(*selector), Path{s.a.Get()});
}

TEST(InstanceResolving, OfOneSelectorTakesThePrefixAsItStands) {
    const Scenery s;
    const auto x = EnterInstance(*s.table, L"prea");
    const auto selector = s.Ids({L"a"});
    ResolveOne(selector.Get(), s.table.Get(), L"pre");
    EXPECT_EQ(LivePath(*selector), Path{x.Get()});
}

TEST(InstanceResolving, OfOneSelectorLeavesOutTheExcludedOne) {
    const Scenery s;
    const auto outer = s.Ids({L"a"}), link = s.Ids({L"a"}), listed = s.Ids({L"b"});
    outer->SetProperty(Prop::kLink, Var(link));
    outer->SetProperty(Prop::kLinkList, Links({link.Get(), listed.Get()}));
    ResolveOne(outer.Get(), s.table.Get(), L"", link.Get());
    EXPECT_TRUE(LivePath(*link).empty());
    EXPECT_EQ(LivePath(*listed), Path{s.b.Get()});
}

TEST(InstanceResolving, OfOneNestedSelectorFollowsNoLinks) {
    const Scenery s;
    const auto outer = s.Ids({L"a"}), link = s.Ids({L"a"}), listed = s.Ids({L"b"});
    outer->SetProperty(Prop::kLink, Var(link));
    outer->SetProperty(Prop::kLinkList, Links({listed.Get()}));
    ResolveOne(outer.Get(), s.table.Get(), L"", nullptr, true);
    EXPECT_EQ(LivePath(*outer), Path{s.a.Get()});
    EXPECT_TRUE(LivePath(*link).empty());
    EXPECT_TRUE(LivePath(*listed).empty());
}

TEST(InstanceResolving, GoesOnBelowItsDefinitionWhenTold) {
    const Scenery s;
    const auto inside = EnterInstance(*s.table, L"inside");
    s.at->GetReference()->AddChild(inside.Get());
    const auto selector = s.Ids({L"b"});
    SetSelectors(*inside, {selector.Get()});
    s.at->ResolveSelectors(false, nullptr);
    EXPECT_TRUE(LivePath(*selector).empty());
    s.at->ResolveSelectors(true, nullptr);
    EXPECT_EQ(LivePath(*selector), Path{s.b.Get()});
}

TEST(InstanceResolving, StopsWhereTheDefinitionIsMissing) {
    NewInstance()->ResolveSelectors(true, nullptr);
    NewInstance()->StoreSelectors(true, nullptr);
}

}  // namespace
}  // namespace qn::test
