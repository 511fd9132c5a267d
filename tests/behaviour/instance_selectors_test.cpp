#include "tests/behaviour/element_support.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

constexpr int kSelectorsChunk = 0x1002;
constexpr int kForeignKey = 0x50;  // no property has this number

/// An instance `at` in a table, with uses to point at: two of them make a path.
struct Scenery {
    Counted<LookupTable> table = NewTable();
    Counted<Instance> at = EnterInstance(*table, L"at");
    Counted<Instance> first = EnterInstance(*table, L"first");
    Counted<Instance> second = EnterInstance(*table, L"second");
    Selector path = PathOf({first.Get(), second.Get()});
};

Selector Named(const wchar_t* name, Instance* instance) {
    Selector selector = PathOf({instance});
    selector.SetProperty(Prop::kName, Var(name));
    return selector;
}

std::vector<std::wstring> NamesByIndex(Instance& instance) {
    std::vector<std::wstring> names;
    for (int i = 0; i < instance.GetSelectorCount(); ++i)
        names.push_back(instance.GetSelector(i).GetProperty(Prop::kName, 0).ToText().c_str());
    return names;
}

using Names = std::vector<std::wstring>;

TEST(InstanceSelectors, GiveBackThePathAndItsAttributes) {
    const Scenery s;
    Selector path = s.path;
    path.SetProperty(Prop::kName, Var(L"here"));
    s.at->AddSelector(path);
    ASSERT_EQ(s.at->GetSelectorCount(), 1);
    const Selector found = s.at->GetSelector(0);
    EXPECT_EQ(ElementsOf(found), ElementsOf(path));
    EXPECT_EQ(found.GetProperty(Prop::kName, 0), Var(L"here"));
}

TEST(InstanceSelectors, ComeByValue) {
    const Scenery s;
    s.at->AddSelector(s.path);
    Selector found = s.at->GetSelector(0);
    found.AppendPathElement(s.at.Get());
    found.SetProperty(Prop::kName, Var(L"changed"));
    EXPECT_EQ(ElementsOf(s.at->GetSelector(0)), ElementsOf(s.path));
    EXPECT_TRUE(s.at->GetSelector(0).GetProperty(Prop::kName, 0).IsEmpty());
}

TEST(InstanceSelectors, AreCountedUnderRunningKeys) {
    const Scenery s;
    for (const wchar_t* name : {L"a", L"b", L"c"})
        s.at->AddSelector(Named(name, s.first.Get()));
    EXPECT_EQ(NamesByIndex(*s.at), (Names{L"a", L"b", L"c"}));
    const Var map = SavedMap(*s.at, kSelectorsChunk);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(map.KeyAt(i), Var(i));
}

TEST(InstanceSelectors, TakeNoInvalidOne) {
    const Scenery s;
    s.at->AddSelector(Selector());
    s.at->AddSelector(PathOf({s.first.Get(), nullptr}));
    s.at->AddLocalSelector(Selector());
    s.at->AddLocalSelector(PathOf({nullptr}));
    EXPECT_EQ(s.at->GetSelectorCount(), 0);
}

TEST(InstanceSelectors, AreInvalidOutsideTheCount) {
    const Scenery s;
    s.at->AddSelector(s.path);
    for (const int index : {1, 2, 100, -1}) {
        EXPECT_FALSE(s.at->GetSelector(index).IsValid()) << index;
        EXPECT_EQ(s.at->GetSelector(index).GetPathElementCount(), 0) << index;
    }
}

TEST(InstanceSelectors, AreBuiltByALiveTableWithAllAttributes) {
    const Scenery s;
    Selector path = s.path;
    path.SetAttributes(MapOf({{Var(1), Var()}, {Var(kForeignKey), Var(L"kept")}}));
    s.at->AddSelector(path);
    EXPECT_EQ(s.at->GetSelector(0).GetAttributes(),
              MapOf({{Var(1), Var()}, {Var(kForeignKey), Var(L"kept")}}));
}

TEST(InstanceSelectors, KeepIdsWhenATableBuiltThem) {
    const Scenery s;
    s.at->AddSelector(s.path);
    const auto other = EnterInstance(*s.table, L"second");
    s.at->ResolveSelectors(false, nullptr);
    EXPECT_EQ(ElementsOf(s.at->GetSelector(0)), (std::vector<Instance*>{s.first.Get(), other.Get()}));
}

TEST(InstanceSelectors, AreBuiltWithoutATableFromKnownSetPropertiesAlone) {
    const auto at = NewInstance(), used = NewInstance();
    Selector path = PathOf({used.Get()});
    path.SetAttributes(MapOf({{Var(0), Var(L"lowest")},
                              {Var(1), Var()},
                              {Var(0x23), Var(L"highest")},
                              {Var(kForeignKey), Var(L"lost")}}));
    at->AddSelector(path);
    ASSERT_EQ(at->GetSelectorCount(), 1);
    const auto stored = SelectorUnder(*at, Var(0));
    ASSERT_TRUE(stored);
    EXPECT_EQ(LivePath(*stored), std::vector<Instance*>{used.Get()});
    EXPECT_EQ(SavedMap(*stored, 0x1000), MapOf({{Var(0), Var(L"lowest")}, {Var(0x23), Var(L"highest")}}));
}

TEST(InstanceSelectors, OwnTheValuesThatTheyTookWithoutATable) {
    const auto at = NewInstance(), used = NewInstance();
    Selector path = PathOf({used.Get()});
    Var shared = MapOf({{Var(L"a"), Var(1)}});
    path.SetProperty(Prop::kText, shared);
    at->AddSelector(path);
    shared.At(L"a") = Var(2);
    EXPECT_EQ(SelectorUnder(*at, Var(0))->GetProperty(Prop::kText, 0), MapOf({{Var(L"a"), Var(1)}}));
}

TEST(InstanceSelectors, AreBuiltWithoutADeadTable) {
    Scenery s;
    Selector path = s.path;
    path.SetAttributes(MapOf({{Var(kForeignKey), Var(L"lost")}}));
    s.table.Reset();
    s.at->AddSelector(path);
    ASSERT_EQ(s.at->GetSelectorCount(), 1);
    EXPECT_EQ(LivePath(*SelectorUnder(*s.at, Var(0))), ElementsOf(path));
    EXPECT_FALSE(SavedMap(*SelectorUnder(*s.at, Var(0)), 0x1000).IsSet());
}

TEST(InstanceSelectors, AddedAsLocalNeverGoThroughTheTable) {
    const Scenery s;
    Selector path = s.path;
    path.SetAttributes(MapOf({{Var(1), Var(L"name")}, {Var(kForeignKey), Var(L"lost")}}));
    s.at->AddLocalSelector(path);
    EXPECT_EQ(s.at->GetSelector(0).GetAttributes(), MapOf({{Var(1), Var(L"name")}}));

    const auto other = EnterInstance(*s.table, L"second");  // there are no ids that would find it
    s.at->ResolveSelectors(false, nullptr);
    EXPECT_EQ(ElementsOf(s.at->GetSelector(0)), ElementsOf(path));
}

TEST(InstanceSelectors, OfBothKindsShareTheRunningKeys) {
    const Scenery s;
    s.at->AddSelector(Named(L"a", s.first.Get()));
    s.at->AddLocalSelector(Named(L"b", s.first.Get()));
    s.at->AddSelector(Named(L"c", s.first.Get()));
    EXPECT_EQ(NamesByIndex(*s.at), (Names{L"a", L"b", L"c"}));
}

TEST(InstanceSelectors, CannotBeReadWithoutATable) {
    const auto at = NewReference()->CreateInstance();
    at->AddSelector(PathOf({at.Get()}));
    EXPECT_EQ(at->GetSelectorCount(), 1);
    EXPECT_EQ(at->GetSelector(0).GetPathElementCount(), 0);
}

TEST(InstanceSelectors, CannotBeReadAfterTheTableDied) {
    Scenery s;
    s.at->AddSelector(s.path);
    s.table.Reset();
    EXPECT_EQ(s.at->GetSelectorCount(), 1);
    EXPECT_EQ(s.at->GetSelector(0).GetPathElementCount(), 0);
}

TEST(InstanceSelectors, BecomeInvalidWhenAPathElementDies) {
    const Scenery s;
    auto mortal = NewReference()->CreateInstance();
    s.at->AddLocalSelector(PathOf({s.first.Get(), mortal.Get()}));
    mortal.Reset();
    const Selector found = s.at->GetSelector(0);
    EXPECT_FALSE(found.IsValid());
    EXPECT_EQ(ElementsOf(found), (std::vector<Instance*>{s.first.Get(), nullptr}));
}

TEST(InstanceSelectors, DoNotKeepTheirPathAlive) {
    const Scenery s;
    auto mortal = NewReference()->CreateInstance();
    s.at->AddLocalSelector(PathOf({mortal.Get()}));
    EXPECT_EQ(mortal->GetRefCount(), 1);
}

TEST(InstanceSelectors, AreRemovedFromTheEndWithoutTrace) {
    const Scenery s;
    s.at->AddSelector(Named(L"a", s.first.Get()));
    s.at->AddSelector(Named(L"b", s.first.Get()));
    s.at->RemoveSelector(1);
    s.at->AddSelector(Named(L"c", s.first.Get()));
    EXPECT_EQ(NamesByIndex(*s.at), (Names{L"a", L"c"}));
}

TEST(InstanceSelectors, AreNotRemovedOutsideTheCount) {
    const Scenery s;
    s.at->AddSelector(s.path);
    for (const int index : {1, 7, -1})
        s.at->RemoveSelector(index);
    EXPECT_EQ(s.at->GetSelectorCount(), 1);
    EXPECT_TRUE(s.at->GetSelector(0).IsValid());
}

TEST(InstanceSelectors, LeaveAGapWhereOneIsRemovedBeforeTheEnd) {
    const Scenery s;
    for (const wchar_t* name : {L"a", L"b", L"c"})
        s.at->AddSelector(Named(name, s.first.Get()));
    s.at->RemoveSelector(0);
    EXPECT_EQ(s.at->GetSelectorCount(), 2);
    EXPECT_FALSE(s.at->GetSelector(0).IsValid());
    EXPECT_EQ(NamesByIndex(*s.at), (Names{L"", L"b"}));
    EXPECT_FALSE(s.at->GetSelector(2).IsValid()) << "it is there, but outside the count";
}

TEST(InstanceSelectors, OverwriteAHigherOneAfterAGap) {
    const Scenery s;
    for (const wchar_t* name : {L"a", L"b", L"c"})
        s.at->AddSelector(Named(name, s.first.Get()));
    s.at->RemoveSelector(0);
    s.at->AddSelector(Named(L"d", s.first.Get()));
    EXPECT_EQ(s.at->GetSelectorCount(), 2);
    EXPECT_EQ(SelectorUnder(*s.at, Var(1))->GetProperty(Prop::kName, 0), Var(L"b"));
    EXPECT_EQ(SelectorUnder(*s.at, Var(2))->GetProperty(Prop::kName, 0), Var(L"d"));
    EXPECT_FALSE(SelectorUnder(*s.at, Var(0)));
}

TEST(InstanceSelectors, RemovedInRisingOrderLeaveTheLastOfThree) {
    const Scenery s;
    for (const wchar_t* name : {L"a", L"b", L"c"})
        s.at->AddSelector(Named(name, s.first.Get()));
    for (int i = 0; i < 3; ++i)
        s.at->RemoveSelector(i);
    EXPECT_EQ(s.at->GetSelectorCount(), 1);
    EXPECT_EQ(SelectorUnder(*s.at, Var(2))->GetProperty(Prop::kName, 0), Var(L"c"));
}

}  // namespace
}  // namespace qn::test
