#include "construction/hierarchy_factory.h"
#include "tests/behaviour/stored_selector.h"
#include "tests/behaviour/table_scene.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;
using Path = std::vector<Instance*>;

Counted<HierarchyFactory> Factory() {
    return CreateAs<HierarchyFactory>(ClassKey::kHierarchyFactory);
}

// Without a table.

TEST(PersistentSelectorPaths, OfAnEmptySelectorAreNone) {
    EXPECT_FALSE(Factory()->PersistentFromSelector(Selector()));
    Selector attributed;
    attributed.SetProperty(Prop::kName, Var(L"name"));
    EXPECT_FALSE(Factory()->PersistentFromSelector(attributed));
}

TEST(PersistentSelectorPaths, AreLiveAloneWithoutTable) {
    const TableScene s;
    const auto a = EnterInstance(*s.table, L"a"), b = EnterInstance(*s.table, L"b");
    const auto made = Factory()->PersistentFromSelector(PathOf({a.Get(), b.Get(), a.Get()}));
    ASSERT_TRUE(made);
    EXPECT_EQ(PathIn(*made), (Path{a.Get(), b.Get(), a.Get()}));
    EXPECT_TRUE(FieldsOf(made).idPath.IsEmpty());
}

TEST(PersistentSelectorPaths, WithoutTableTakeSetAttributesOfKnownNumbersAlone) {
    const auto instance = NewInstance();
    instance->SetProperty(Prop::kText, Var(L"inherited"));
    Selector selector = PathOf({instance.Get()});
    EXPECT_TRUE(FieldsOf(Factory()->PersistentFromSelector(selector)).attributes.IsEmpty());
    selector.SetAttributes(
        MapOf({{Var(0), Var(1)}, {Var(1), Var()}, {Var(0x23), Var(L"last")}, {Var(0x24), Var(2)}}));
    EXPECT_EQ(FieldsOf(Factory()->PersistentFromSelector(selector)).attributes,
              MapOf({{Var(0), Var(1)}, {Var(0x23), Var(L"last")}}));
}

TEST(PersistentSelectorPaths, WithoutTableOwnTheirAttributes) {
    const auto instance = NewInstance();
    Selector selector = PathOf({instance.Get()});
    Var shared = MapOf({{Var(L"group"), MapOf({{Var(L"key"), Var(1)}})}});
    selector.SetProperty(Prop::kMetadata, shared);
    const auto made = Factory()->PersistentFromSelector(selector);
    shared.At(L"group").At(L"key") = Var(2);
    EXPECT_EQ(made->GetProperty(Prop::kMetadata, 0),
              MapOf({{Var(L"group"), MapOf({{Var(L"key"), Var(1)}})}}));
}

TEST(PersistentSelectorPaths, ReadWithoutTableNeverComeFromIds) {
    const TableScene s;
    const auto a = EnterInstance(*s.table, L"a");
    const auto source = NewStoredSelector();
    FieldsOf(source).idPath = IdPath({L"a"});
    source->SetProperty(Prop::kName, Var(L"name"));
    const Selector out = Factory()->SelectorFromPersistent(source.Get());
    EXPECT_EQ(out.GetPathElementCount(), 0);
    EXPECT_EQ(out.GetAttributes(), MapOf({{Var(1), Var(L"name")}}));
}

TEST(PersistentSelectorPaths, ReadWithoutTableHaveNullForTheDead) {
    const auto a = NewInstance();
    auto mortal = NewInstance();
    const auto source = LiveSelector({a.Get(), mortal.Get()});
    mortal.Reset();
    const Selector out = Factory()->SelectorFromPersistent(source.Get());
    EXPECT_EQ(ElementsOf(out), (Path{a.Get(), nullptr}));
    EXPECT_FALSE(out.IsValid());
}

TEST(PersistentSelectorPaths, OfNothingAreReadAsEmpty) {
    EXPECT_EQ(Factory()->SelectorFromPersistent(nullptr).GetPathElementCount(), 0);
    const Selector foreign = Factory()->SelectorFromPersistent(Make<ForeignSelector>().Get());
    EXPECT_EQ(foreign.GetPathElementCount(), 0);
    EXPECT_TRUE(foreign.GetAttributes().IsEmpty());
}

// Between the two forms.

/// An instance of the table that carries one stored selector; "a", "b" and "p_a" are in the table.
struct Carrier : TableScene {
    Counted<Instance> at = EnterInstance(*table, L"at");
    Counted<Instance> a = EnterInstance(*table, L"a");
    Counted<Instance> b = EnterInstance(*table, L"b");
    Counted<Instance> prefixed = EnterInstance(*table, L"p_a");
    Counted<PersistentSelector> selector = NewStoredSelector();

    Carrier() { SetSelectors(*at, {selector.Get()}); }
    void Live(std::initializer_list<Instance*> path) const {
        for (Instance* element : path)
            FieldsOf(selector).path.emplace_back(element);
    }
};

TEST(PersistentSelectorPaths, AreStoredAsTheIdsOfThePath) {
    const Carrier c;
    c.Live({c.a.Get(), c.b.Get()});
    FieldsOf(c.selector).idPath = IdPath({L"former", L"former", L"former"});
    c.at->StoreSelectors(false, nullptr);
    EXPECT_EQ(FieldsOf(c.selector).idPath, IdPath({L"a", L"b"}));
    EXPECT_EQ(PathIn(*c.selector), (Path{c.a.Get(), c.b.Get()}));
}

TEST(PersistentSelectorPaths, AreStoredAsNothingIfOneElementHasNoId) {
    const Carrier c;
    const auto nameless = NewInstance();
    c.Live({c.a.Get(), nameless.Get(), c.b.Get()});
    c.at->StoreSelectors(false, nullptr);
    EXPECT_TRUE(FieldsOf(c.selector).idPath.IsEmpty());
    EXPECT_EQ(PathIn(*c.selector).size(), 3u);
}

TEST(PersistentSelectorPaths, AreStoredWithoutTheDead) {
    const Carrier c;
    auto mortal = EnterInstance(*NewTable(), L"mortal");
    c.Live({c.a.Get(), mortal.Get(), c.b.Get()});
    mortal.Reset();
    c.at->StoreSelectors(false, nullptr);
    EXPECT_EQ(FieldsOf(c.selector).idPath, IdPath({L"a", L"b"}));
}

TEST(PersistentSelectorPaths, OfIdsAloneAreLostWhenStored) {
    const Carrier c;
    FieldsOf(c.selector).idPath = IdPath({L"a"});
    c.at->StoreSelectors(false, nullptr);
    EXPECT_TRUE(FieldsOf(c.selector).idPath.IsArray());
    EXPECT_EQ(FieldsOf(c.selector).idPath.size(), 0);
}

TEST(PersistentSelectorPaths, KeepIdsThatAreNoText) {
    const Carrier c;
    c.a->SetProperty(Prop::kLocalId, Var(5));
    c.Live({c.a.Get()});
    c.at->StoreSelectors(false, nullptr);
    EXPECT_EQ(FieldsOf(c.selector).idPath, ArrayOf({Var(5)}));
}

TEST(PersistentSelectorPaths, AreResolvedUnderThePrefixInForce) {
    const Carrier c;
    const auto prefix = EnterInstance(*c.table, L"p");
    FieldsOf(c.selector).idPath = IdPath({L"a"});
    c.table->PushIdPrefix(prefix.Get());
    c.at->ResolveSelectors(false, nullptr);
    EXPECT_EQ(PathIn(*c.selector), Path{c.prefixed.Get()});
    EXPECT_TRUE(FieldsOf(c.selector).idPath.IsEmpty());
}

TEST(PersistentSelectorPaths, AreLostIfOneIdIsUnknown) {
    const Carrier c;
    c.selector->SetProperty(Prop::kName, Var(L"kept"));
    FieldsOf(c.selector).idPath = IdPath({L"a", L"unknown", L"b"});
    c.at->ResolveSelectors(false, nullptr);
    EXPECT_TRUE(PathIn(*c.selector).empty());
    EXPECT_TRUE(FieldsOf(c.selector).idPath.IsEmpty());
    EXPECT_EQ(c.selector->GetProperty(Prop::kName, 0), Var(L"kept"));
    EXPECT_EQ(c.Fields().instancesById.count(L"unknown"), 1u) << "the miss is remembered";

    const Selector out = c.at->GetSelector(0);
    EXPECT_EQ(out.GetPathElementCount(), 0);
    EXPECT_EQ(out.GetProperty(Prop::kName, 0), Var(L"kept"));
}

TEST(PersistentSelectorPaths, AreClearedByAnEmptyListOfIds) {
    const Carrier c;
    c.Live({c.a.Get()});
    FieldsOf(c.selector).idPath = IdPath({});
    c.at->ResolveSelectors(false, nullptr);
    EXPECT_TRUE(PathIn(*c.selector).empty());
}

TEST(PersistentSelectorPaths, StayLiveWithoutIds) {
    const Carrier c;
    c.Live({c.a.Get()});
    c.at->ResolveSelectors(false, nullptr);
    EXPECT_EQ(PathIn(*c.selector), Path{c.a.Get()});
}

TEST(PersistentSelectorPaths, GoThroughBothFormsToTheSuccessors) {
    const Carrier c;
    c.Live({c.a.Get(), c.b.Get()});
    c.at->StoreSelectors(false, nullptr);
    const auto next = EnterInstance(*c.table, L"b");
    c.at->ResolveSelectors(false, nullptr);
    EXPECT_EQ(PathIn(*c.selector), (Path{c.a.Get(), next.Get()}));
}

}  // namespace
}  // namespace qn::test
