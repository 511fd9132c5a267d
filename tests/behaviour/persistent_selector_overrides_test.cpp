#include "tests/behaviour/foreign_instance.h"
#include "tests/behaviour/stored_selector.h"
#include "tests/behaviour/table_scene.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

Var Name(const wchar_t* name) {
    return MapOf({{Var(1), Var(name)}});
}

struct Garage : TableScene {
    Counted<Instance> a = EnterInstance(*table, L"a");
    Counted<Instance> b = EnterInstance(*table, L"b");

    /// What the index says: 0 no entry, 1 a null, 2 an instance.
    int Entry(const wchar_t* id) const {
        const auto found = Fields().instancesById.find(id);
        return found == Fields().instancesById.end() ? 0 : found->second ? 2 : 1;
    }
    std::wstring OwnerOf(const wchar_t* selector) const {
        const auto found = Fields().selectorOwners.find(selector);
        return found == Fields().selectorOwners.end() ? L"(none)" : found->second.c_str();
    }
    void EnterForeign() const { Fields().instancesById[L"foreign"] = Make<ForeignInstance>(); }
};

// Attributes given for a path of ids.

TEST(PersistentSelectorOverrides, OfAPathStandOnItsLastInstanceUnderTheLastId) {
    const Garage g;
    const auto made = g.table->SetPathAttributes(IdPath({L"a", L"b"}), Name(L"here"));
    ASSERT_TRUE(made);
    EXPECT_EQ(SelectorUnder(*g.b, Var(L"b")).Get(), made.Get());
    EXPECT_EQ(FieldsOf(made).idPath, IdPath({L"a", L"b"}));
    EXPECT_EQ(FieldsOf(made).attributes, Name(L"here"));
    EXPECT_TRUE(FieldsOf(made).path.empty());
    EXPECT_EQ(g.a->GetSelectorCount(), 0);
    EXPECT_EQ(g.b->GetSelectorCount(), 1);
    EXPECT_TRUE(g.Fields().selectorsById.empty());
}

TEST(PersistentSelectorOverrides, OfAPathAreOutOfReachByIndex) {
    const Garage g;
    g.table->SetPathAttributes(IdPath({L"a"}), Name(L"here"));
    EXPECT_EQ(g.a->GetSelectorCount(), 1);
    EXPECT_FALSE(g.a->GetSelector(0).IsValid());
}

TEST(PersistentSelectorOverrides, OfPathsWithOneEndMergeIntoOneSelector) {
    const Garage g;
    const auto first = g.table->SetPathAttributes(IdPath({L"a", L"b"}), Name(L"here"));
    const auto second = g.table->SetPathAttributes(
        IdPath({L"b"}), MapOf({{Var(1), Var(L"there")}, {Var(0x20), Var(L"text")}}));
    EXPECT_EQ(second.Get(), first.Get());
    EXPECT_EQ(FieldsOf(first).attributes, MapOf({{Var(1), Var(L"there")}, {Var(0x20), Var(L"text")}}));
    EXPECT_EQ(FieldsOf(first).idPath, IdPath({L"a", L"b"})) << "the first path stays";
    EXPECT_EQ(g.b->GetSelectorCount(), 1);
}

TEST(PersistentSelectorOverrides, OfWhatIsNoPathAreNone) {
    const Garage g;
    EXPECT_FALSE(g.table->SetPathAttributes(Var(), Name(L"x")));
    EXPECT_FALSE(g.table->SetPathAttributes(Var(L"a"), Name(L"x")));
    EXPECT_FALSE(g.table->SetPathAttributes(IdPath({}), Name(L"x")));
    EXPECT_FALSE(g.table->SetPathAttributes(MapOf({{Var(0), Var(L"a")}}), Name(L"x")));
    EXPECT_EQ(g.a->GetSelectorCount(), 0);
    EXPECT_EQ(g.Fields().instancesById.size(), 2u);
}

TEST(PersistentSelectorOverrides, OfAnUnknownEndAreNoneAndLeaveANull) {
    const Garage g;
    EXPECT_FALSE(g.table->SetPathAttributes(IdPath({L"first", L"last"}), Name(L"x")));
    EXPECT_EQ(g.Entry(L"last"), 1);
    EXPECT_EQ(g.Entry(L"first"), 0) << "only the last id is looked for";
    EXPECT_FALSE(g.table->FindInstanceById(L"last"));
}

TEST(PersistentSelectorOverrides, OfAnUnknownStartAreMade) {
    const Garage g;
    const auto made = g.table->SetPathAttributes(IdPath({L"unknown", L"a"}), Name(L"x"));
    ASSERT_TRUE(made);
    EXPECT_EQ(FieldsOf(made).idPath, IdPath({L"unknown", L"a"}));
}

TEST(PersistentSelectorOverrides, OfAForeignInstanceAreNone) {
    const Garage g;
    g.EnterForeign();
    EXPECT_FALSE(g.table->SetPathAttributes(IdPath({L"foreign"}), Name(L"x")));
    EXPECT_FALSE(g.table->GetOrCreatePersistentSelector(L"s", IdPath({L"foreign"}), Name(L"x")));
}

TEST(PersistentSelectorOverrides, OfAPathTakeNoPrefix) {
    const Garage g;
    g.table->PushIdPrefix(g.b.Get());
    EXPECT_TRUE(g.table->SetPathAttributes(IdPath({L"a"}), Name(L"x")));
    EXPECT_TRUE(SelectorUnder(*g.a, Var(L"a")));
}

// Selectors with an id.

TEST(PersistentSelectorOverrides, WithAnIdStandOnTheLastInstanceUnderARunningNumber) {
    const Garage g;
    const auto made = g.table->GetOrCreatePersistentSelector(L"s", IdPath({L"a", L"b"}), Name(L"here"));
    ASSERT_TRUE(made);
    EXPECT_EQ(SelectorUnder(*g.b, Var(0)).Get(), made.Get());
    EXPECT_EQ(FieldsOf(made).idPath, IdPath({L"a", L"b"}));
    EXPECT_EQ(FieldsOf(made).attributes, MapOf({{Var(1), Var(L"here")}, {Var(0x0f), Var(L"s")}}));
    EXPECT_TRUE(FieldsOf(made).path.empty());
    EXPECT_EQ(g.table->FindPersistentSelector(L"s").Get(), made.Get());
    EXPECT_EQ(g.OwnerOf(L"s"), L"b");
}

TEST(PersistentSelectorOverrides, WithAKnownIdAreNotMadeAgain) {
    const Garage g;
    const auto made = g.table->GetOrCreatePersistentSelector(L"s", IdPath({L"a"}), Name(L"here"));
    EXPECT_EQ(g.table->GetOrCreatePersistentSelector(L"s", IdPath({L"b"}), Name(L"there")).Get(), made.Get());
    EXPECT_EQ(made->GetProperty(Prop::kName, 0), Var(L"here"));
    EXPECT_EQ(g.b->GetSelectorCount(), 0);
    EXPECT_EQ(g.OwnerOf(L"s"), L"a");
}

TEST(PersistentSelectorOverrides, WithAnIdAppendAtTheSize) {
    const Garage g;
    g.table->GetOrCreatePersistentSelector(L"s1", IdPath({L"a"}), Var());
    const auto second = g.table->GetOrCreatePersistentSelector(L"s2", IdPath({L"a"}), Var());
    EXPECT_EQ(SelectorUnder(*g.a, Var(1)).Get(), second.Get());
    EXPECT_EQ(g.a->GetSelectorCount(), 2);
}

TEST(PersistentSelectorOverrides, OfBothKindsShareTheSelectorsOfAnInstance) {
    const Garage g;
    const auto first = g.table->GetOrCreatePersistentSelector(L"s1", IdPath({L"a"}), Var());
    const auto named = g.table->SetPathAttributes(IdPath({L"a"}), Name(L"x"));
    const auto last = g.table->GetOrCreatePersistentSelector(L"s2", IdPath({L"a"}), Var());
    EXPECT_EQ(g.a->GetSelectorCount(), 3);
    EXPECT_EQ(SelectorUnder(*g.a, Var(0)).Get(), first.Get());
    EXPECT_EQ(SelectorUnder(*g.a, Var(L"a")).Get(), named.Get());
    EXPECT_EQ(SelectorUnder(*g.a, Var(2)).Get(), last.Get()) << "the text key counts for the next number";
    EXPECT_FALSE(SelectorUnder(*g.a, Var(1)));
}

TEST(PersistentSelectorOverrides, WithAnIdRememberThatThereWasNoInstance) {
    const Garage g;
    EXPECT_FALSE(g.table->GetOrCreatePersistentSelector(L"s", IdPath({L"unknown"}), Var()));
    EXPECT_EQ(g.Entry(L"unknown"), 1);
    EXPECT_EQ(g.Fields().selectorsById.count(L"s"), 1u);
    EXPECT_FALSE(g.table->GetOrCreatePersistentSelector(L"s", IdPath({L"a"}), Var()));
    EXPECT_EQ(g.a->GetSelectorCount(), 0);
    EXPECT_EQ(g.OwnerOf(L"s"), L"(none)");
    EXPECT_FALSE(g.table->FindPersistentSelector(L"s"));
}

TEST(PersistentSelectorOverrides, WithAnIdRememberThatThereWereNoIds) {
    const Garage g;
    EXPECT_FALSE(g.table->GetOrCreatePersistentSelector(L"none", Var(), Var()));
    EXPECT_FALSE(g.table->GetOrCreatePersistentSelector(L"text", Var(L"a"), Var()));
    EXPECT_FALSE(g.table->GetOrCreatePersistentSelector(L"array", IdPath({}), Var()));
    EXPECT_EQ(g.Fields().selectorsById.size(), 3u);
    EXPECT_FALSE(g.table->GetOrCreatePersistentSelector(L"none", IdPath({L"a"}), Var()));
}

TEST(PersistentSelectorOverrides, WithAnIdAreKeptByTheTable) {
    const Garage g;
    const Weak<PersistentSelector> made(
        g.table->GetOrCreatePersistentSelector(L"s", IdPath({L"a"}), Var()).Get());
    g.a->RemoveSelector(0);
    EXPECT_TRUE(made);
    EXPECT_EQ(g.table->FindPersistentSelector(L"s").Get(), made.Get());
}

/// "car_part" is an instance of a hierarchy that came in under "car".
struct Prefixed : Garage {
    Prefixed() { table->PushIdPrefix(car.Get()); }
    Counted<Instance> car = EnterInstance(*table, L"car");
    Counted<Instance> part = EnterInstance(*table, L"car_part");
};

TEST(PersistentSelectorOverrides, WithAnIdStandUnderThePrefix) {
    const Prefixed p;
    const Var given = IdPath({L"x", L"part"});
    const auto made = p.table->GetOrCreatePersistentSelector(L"s", given, Var());
    ASSERT_TRUE(made);
    EXPECT_EQ(SelectorUnder(*p.part, Var(0)).Get(), made.Get());
    EXPECT_EQ(FieldsOf(made).idPath, IdPath({L"car_x", L"car_part"}));
    EXPECT_EQ(made->GetProperty(Prop::kLocalId, 0), Var(L"car_s"));
    EXPECT_EQ(p.OwnerOf(L"car_s"), L"car_part");
    EXPECT_EQ(given, IdPath({L"x", L"part"})) << "the caller's ids stay";
}

TEST(PersistentSelectorOverrides, WithAnIdAreFoundUnderTheFullIdAlone) {
    const Prefixed p;
    const auto made = p.table->GetOrCreatePersistentSelector(L"s", IdPath({L"part"}), Var());
    EXPECT_FALSE(p.table->FindPersistentSelector(L"s"));
    EXPECT_EQ(p.table->FindPersistentSelector(L"car_s").Get(), made.Get());
    EXPECT_EQ(p.table->GetOrCreatePersistentSelector(L"s", IdPath({L"other"}), Var()).Get(), made.Get());
    p.table->PopIdPrefix();
    EXPECT_EQ(p.table->GetOrCreatePersistentSelector(L"car_s", Var(), Var()).Get(), made.Get());
}

TEST(PersistentSelectorOverrides, WithAnIdOfAnUnprefixedInstanceMissIt) {
    const Prefixed p;
    EXPECT_FALSE(p.table->GetOrCreatePersistentSelector(L"s", IdPath({L"a"}), Var()));
    EXPECT_EQ(p.Entry(L"car_a"), 1);
}

}  // namespace
}  // namespace qn::test
