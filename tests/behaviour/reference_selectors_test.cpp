#include "tests/behaviour/element_support.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

using Path = std::vector<Instance*>;

constexpr int kForeignKey = 0x50;  // no property has this number

struct Scenery {
    Counted<LookupTable> table = NewTable();
    Counted<Reference> at = NewReferenceIn(*table);
    Counted<Instance> a = EnterInstance(*table, L"a");
    Counted<Instance> b = EnterInstance(*table, L"b");

    Counted<PersistentSelector> Stored(int key) const { return SelectorUnder(*at, Var(key)); }
};

TEST(ReferenceSelectors, GiveBackPathIdsAndAttributes) {
    const Scenery s;
    Selector path = PathOf({s.a.Get(), s.b.Get()});
    path.SetAttributes(MapOf({{Var(1), Var()}, {Var(kForeignKey), Var(L"kept")}}));
    s.at->AddSelector(path);
    ASSERT_EQ(s.at->GetSelectorCount(), 1);
    EXPECT_EQ(ElementsOf(s.at->GetSelector(0)), (Path{s.a.Get(), s.b.Get()}));
    EXPECT_EQ(s.at->GetSelector(0).GetAttributes(), path.GetAttributes());
    EXPECT_EQ(s.at->GetSelectorPath(0), IdPath({L"a", L"b"}));
}

TEST(ReferenceSelectors, TakeNoInvalidOne) {
    const Scenery s;
    s.at->AddSelector(Selector());
    s.at->AddSelector(PathOf({s.a.Get(), nullptr}));
    EXPECT_EQ(s.at->GetSelectorCount(), 0);
}

TEST(ReferenceSelectors, AreNotAddedWithoutALiveTable) {
    Scenery s;
    const auto free = NewReference();
    s.table.Reset();
    for (const auto& reference : {free, s.at}) {
        reference->AddSelector(PathOf({s.a.Get()}));
        reference->AddSelectorPath(IdPath({L"a"}));
        EXPECT_EQ(reference->GetSelectorCount(), 0);
    }
}

TEST(ReferenceSelectors, CannotBeReadAfterTheTableDied) {
    Scenery s;
    s.at->AddSelector(PathOf({s.a.Get()}));
    s.table.Reset();
    EXPECT_EQ(s.at->GetSelectorCount(), 1);
    EXPECT_EQ(s.at->GetSelector(0).GetPathElementCount(), 0);
    EXPECT_TRUE(s.at->GetSelectorPath(0).IsEmpty());
}

TEST(ReferenceSelectors, AreEmptyOutsideTheCount) {
    const Scenery s;
    s.at->AddSelector(PathOf({s.a.Get()}));
    for (const int index : {1, 9, -1}) {
        EXPECT_EQ(s.at->GetSelector(index).GetPathElementCount(), 0) << index;
        EXPECT_TRUE(s.at->GetSelectorPath(index).IsEmpty()) << index;
        s.at->RemoveSelector(index);
    }
    EXPECT_EQ(s.at->GetSelectorCount(), 1);
}

TEST(ReferenceSelectors, CanBeMadeFromIdsAlone) {
    const Scenery s;
    s.at->AddSelectorPath(IdPath({L"a", L"b"}));
    ASSERT_EQ(s.at->GetSelectorCount(), 1);
    EXPECT_EQ(s.at->GetSelectorPath(0), IdPath({L"a", L"b"}));
    EXPECT_TRUE(LivePath(*s.Stored(0)).empty());
    EXPECT_EQ(ElementsOf(s.at->GetSelector(0)), (Path{s.a.Get(), s.b.Get()})) << "by the ids";
}

TEST(ReferenceSelectors, FromIdsAreThereOnce) {
    const Scenery s;
    s.at->AddSelector(PathOf({s.a.Get()}));
    s.at->AddSelectorPath(IdPath({L"b"}));
    s.at->AddSelectorPath(IdPath({L"a"}));
    s.at->AddSelectorPath(IdPath({L"b"}));
    s.at->AddSelectorPath(IdPath({L"b", L"a"}));
    ASSERT_EQ(s.at->GetSelectorCount(), 3);
    EXPECT_EQ(s.at->GetSelectorPath(2), IdPath({L"b", L"a"}));
}

TEST(ReferenceSelectors, FromPathsMayRepeat) {
    const Scenery s;
    s.at->AddSelector(PathOf({s.a.Get()}));
    s.at->AddSelector(PathOf({s.a.Get()}));
    EXPECT_EQ(s.at->GetSelectorCount(), 2);
}

TEST(ReferenceSelectors, LeaveAGapThatTheNextOneMayFillFurtherUp) {
    const Scenery s;
    for (const wchar_t* id : {L"x", L"y", L"z"})
        s.at->AddSelectorPath(IdPath({id}));
    s.at->RemoveSelector(0);
    EXPECT_EQ(s.at->GetSelectorCount(), 2);
    EXPECT_TRUE(s.at->GetSelectorPath(0).IsEmpty());
    EXPECT_EQ(s.at->GetSelectorPath(1), IdPath({L"y"}));
    s.at->AddSelectorPath(IdPath({L"a"}));
    EXPECT_EQ(s.at->GetSelectorCount(), 2);
    EXPECT_FALSE(s.Stored(0));
    EXPECT_EQ(PathFor(*s.table, *s.Stored(2)), Path{s.a.Get()}) << "in place of z";
    s.at->RemoveSelector(1);
    s.at->RemoveSelector(0);
    EXPECT_EQ(s.at->GetSelectorCount(), 1) << "only key 2 is left, outside the count of the loops";
}

TEST(ReferenceResolvingSelectors, TurnsIdsIntoALivePathAndDropsThem) {
    const Scenery s;
    s.at->AddSelectorPath(IdPath({L"a", L"b"}));
    s.at->ResolveSelectors(false, nullptr);
    EXPECT_EQ(LivePath(*s.Stored(0)), (Path{s.a.Get(), s.b.Get()}));
    EXPECT_TRUE(s.at->GetSelectorPath(0).IsEmpty());
}

TEST(ReferenceResolvingSelectors, LosesAPathWithAnUnknownId) {
    const Scenery s;
    s.at->AddSelectorPath(IdPath({L"a", L"unknown"}));
    s.at->AddSelectorPath(IdPath({L"b"}));
    s.at->ResolveSelectors(false, nullptr);
    EXPECT_TRUE(LivePath(*s.Stored(0)).empty());
    EXPECT_TRUE(s.at->GetSelectorPath(0).IsEmpty());
    EXPECT_EQ(LivePath(*s.Stored(1)), Path{s.b.Get()});
    EXPECT_FALSE(s.table->FindInstanceById(L"unknown"));
}

TEST(ReferenceResolvingSelectors, LosesALivePathThatHasNoIds) {
    const Scenery s;
    s.at->AddSelectorPath(IdPath({L"a"}));
    s.at->ResolveSelectors(false, nullptr);
    s.at->ResolveSelectors(false, nullptr);
    EXPECT_TRUE(LivePath(*s.Stored(0)).empty());
}

TEST(ReferenceResolvingSelectors, PutsThePresentPrefixInFrontOfEachId) {
    const Scenery s;
    const auto owner = NewReference();
    owner->SetProperty(Prop::kLocalId, Var(L"file"));
    const auto x = EnterInstance(*s.table, L"file_a");
    s.at->AddSelectorPath(IdPath({L"a"}));
    s.table->PushIdPrefix(owner.Get());
    s.at->ResolveSelectors(false, nullptr);
    EXPECT_EQ(LivePath(*s.Stored(0)), Path{x.Get()});
}

TEST(ReferenceResolvingSelectors, DoesNothingWithoutATable) {
    Scenery s;
    s.at->AddSelectorPath(IdPath({L"a"}));
    s.table.Reset();
    s.at->ResolveSelectors(true, nullptr);
    const auto other = NewTable();
    const auto successor = EnterInstance(*other, L"a");
    s.at->RegisterInTable(other.Get());
    s.at->ResolveSelectors(false, nullptr);
    EXPECT_EQ(LivePath(*s.Stored(0)), Path{successor.Get()}) << "the ids were still there";
}

TEST(ReferenceResolvingSelectors, LooksNeitherAtItsLinksNorAtThoseOfItsSelectors) {
    const Scenery s;
    const auto link = IdSelector(*s.table, IdPath({L"a"})), listed = IdSelector(*s.table, IdPath({L"a"})),
               nested = IdSelector(*s.table, IdPath({L"a"}));
    s.at->SetProperty(Prop::kLink, Var(link));
    s.at->SetProperty(Prop::kLinkList, ArrayOf({ArrayOf({Var(listed)})}));
    s.at->AddSelectorPath(IdPath({L"b"}));
    s.Stored(0)->SetProperty(Prop::kLink, Var(nested));
    s.at->ResolveSelectors(false, nullptr);
    EXPECT_EQ(LivePath(*s.Stored(0)), Path{s.b.Get()});
    for (const auto& untouched : {link, listed, nested}) {
        EXPECT_TRUE(LivePath(*untouched).empty());
        EXPECT_EQ(PathFor(*s.table, *untouched), Path{s.a.Get()});
    }
}

TEST(ReferenceStoringSelectors, WritesTheIdsOfTheLivePath) {
    const Scenery s;
    s.at->AddSelectorPath(IdPath({L"a", L"b"}));
    s.at->ResolveSelectors(false, nullptr);
    s.a->SetProperty(Prop::kLocalId, Var(L"renamed"));
    s.at->StoreSelectors(false, nullptr);
    EXPECT_EQ(s.at->GetSelectorPath(0), IdPath({L"renamed", L"b"}));
    EXPECT_EQ(LivePath(*s.Stored(0)), (Path{s.a.Get(), s.b.Get()}));
}

TEST(ReferenceStoringSelectors, EmptiesTheIdsIfOneElementHasNone) {
    const Scenery s;
    const auto nameless = NewReference()->CreateInstance();
    s.at->AddSelector(PathOf({s.a.Get(), nameless.Get()}));
    s.at->StoreSelectors(false, nullptr);
    EXPECT_TRUE(s.at->GetSelectorPath(0).IsEmpty());
}

TEST(ReferenceStoringSelectors, PassesOverDeadElements) {
    const Scenery s;
    auto mortal = NewReference()->CreateInstance();
    mortal->SetProperty(Prop::kLocalId, Var(L"m"));
    s.at->AddSelector(PathOf({s.a.Get(), mortal.Get(), s.b.Get()}));
    s.at->AddSelector(PathOf({mortal.Get()}));
    mortal.Reset();
    s.at->StoreSelectors(false, nullptr);
    EXPECT_EQ(s.at->GetSelectorPath(0), IdPath({L"a", L"b"}));
    EXPECT_TRUE(s.at->GetSelectorPath(1).IsArray());
    EXPECT_EQ(s.at->GetSelectorPath(1).size(), 0);
}

TEST(ReferenceStoringSelectors, LosesAPathThatIsIdsAlone) {
    const Scenery s;
    s.at->AddSelectorPath(IdPath({L"a"}));
    s.at->StoreSelectors(false, nullptr);
    EXPECT_EQ(s.at->GetSelectorPath(0), ArrayOf({}));
}

TEST(ReferenceStoringSelectors, LooksNeitherAtItsLinksNorAtThoseOfItsSelectors) {
    const Scenery s;
    const auto link = IdSelector(*s.table, IdPath({L"a"})), nested = IdSelector(*s.table, IdPath({L"a"}));
    s.at->SetProperty(Prop::kLink, Var(link));
    s.at->AddSelector(PathOf({s.b.Get()}));
    s.Stored(0)->SetProperty(Prop::kLink, Var(nested));
    s.at->StoreSelectors(false, nullptr);
    for (const auto& untouched : {link, nested})
        EXPECT_EQ(PathFor(*s.table, *untouched), Path{s.a.Get()}) << "it would have lost its ids";
}

}  // namespace
}  // namespace qn::test
