#include "tests/behaviour/element_support.h"
#include "tests/behaviour/table_scene.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

Var BsId(const ReferenceSource& element) {
    return element.GetParamVar(Param::kBsId);
}

TEST(LookupTableElements, HaveTwoIdsOfTheEntityFamilyWhenMadeTwiceWithoutId) {
    const auto table = NewTable();
    const auto first = table->GetOrCreateReference(String()), second = table->GetOrCreateReference(String());
    EXPECT_NE(first.Get(), second.Get());
    EXPECT_NE(IdOf(first.Get()), IdOf(second.Get()));
    EXPECT_EQ(IdOf(first.Get()).front(), L'e');
    EXPECT_EQ(IdOf(second.Get()).front(), L'e');
    EXPECT_EQ(table->FindReferenceById(IdOf(first.Get())).Get(), first.Get());
    EXPECT_EQ(table->FindReferenceById(IdOf(second.Get())).Get(), second.Get());
}

TEST(LookupTableElements, AreMadeOnceForEachId) {
    const auto table = NewTable();
    const auto made = table->GetOrCreateReference(L"wheel");
    EXPECT_EQ(table->GetOrCreateReference(L"wheel").Get(), made.Get());
    EXPECT_NE(table->GetOrCreateReference(L"Wheel").Get(), made.Get()) << "case counts";
}

TEST(LookupTableElements, KnowTheirTableAndId) {
    const TableScene s;
    const auto made = s.table->GetOrCreateReference(L"wheel");
    EXPECT_EQ(made->GetLookupTable(), s.table.Get());
    EXPECT_EQ(made->GetProperty(Prop::kLocalId, 0), Var(L"wheel"));
    EXPECT_TRUE(s.Fields().references.count(made));
    EXPECT_TRUE(BsId(*made).IsEmpty());
}

TEST(LookupTableElements, AreOwnedByTheTableThatTheyOnlyWatch) {
    auto table = NewTable();
    auto made = table->GetOrCreateReference(L"wheel");
    EXPECT_EQ(table->GetRefCount(), 1);
    const Weak<Reference> watched(made.Get());
    made.Reset();
    EXPECT_TRUE(watched);
    table.Reset();
    EXPECT_FALSE(watched);
}

TEST(LookupTableElements, SurviveTheirTableWithoutIt) {
    auto table = NewTable();
    const auto made = table->GetOrCreateReference(L"wheel");
    table.Reset();
    EXPECT_EQ(made->GetLookupTable(), nullptr);
    EXPECT_EQ(made->GetRefCount(), 1);
}

TEST(LookupTableElements, GetTheirTargetEvenIfTheIdIsKnown) {
    const auto table = NewTable();
    const auto made = table->GetOrCreateReferenceWithTarget(Var(L"first.step"), L"wheel");
    EXPECT_EQ(made->GetTarget(), Var(L"first.step"));
    EXPECT_EQ(IdOf(made.Get()), L"wheel");
    EXPECT_EQ(table->GetOrCreateReferenceWithTarget(Var(), L"wheel").Get(), made.Get());
    EXPECT_TRUE(made->GetTarget().IsEmpty());
}

TEST(LookupTableElements, OfAServerIdAreMadeWithBothIds) {
    const TableScene s;
    const auto made = s.table->GetOrCreateBsReference(L"wheel", L"s1:wheel");
    EXPECT_EQ(BsId(*made), Var(L"s1:wheel"));
    EXPECT_EQ(made->GetProperty(Prop::kBsId, 0), Var(L"s1:wheel"));
    EXPECT_EQ(IdOf(made.Get()), L"wheel");
    EXPECT_EQ(made->GetLookupTable(), s.table.Get());
    EXPECT_EQ(s.table->FindReferenceByBsId(L"s1:wheel").Get(), made.Get());
    EXPECT_EQ(s.table->FindReferenceById(L"wheel").Get(), made.Get());
    EXPECT_TRUE(s.Fields().references.count(made));
}

TEST(LookupTableElements, OfAServerIdWithoutIdGetAGeneratedOne) {
    const auto table = NewTable();
    const auto made = table->GetOrCreateBsReference(String(), L"s1:wheel");
    EXPECT_EQ(IdOf(made.Get()), L"e1");
    EXPECT_EQ(table->FindReferenceById(L"e1").Get(), made.Get());
}

TEST(LookupTableElements, OfAKnownServerIdIgnoreTheGivenId) {
    const auto table = NewTable();
    const auto made = table->GetOrCreateBsReference(L"wheel", L"s1:wheel");
    EXPECT_EQ(table->GetOrCreateBsReference(L"rim", L"s1:wheel").Get(), made.Get());
    EXPECT_EQ(IdOf(made.Get()), L"wheel");
    EXPECT_FALSE(table->FindReferenceById(L"rim"));
}

TEST(LookupTableElements, OfANewServerIdAreNewEvenIfTheIdIsKnown) {
    const auto table = NewTable();
    const auto plain = table->GetOrCreateReference(L"wheel");
    const auto made = table->GetOrCreateBsReference(L"wheel", L"s1:wheel");
    EXPECT_NE(made.Get(), plain.Get());
    EXPECT_TRUE(BsId(*plain).IsEmpty());
    EXPECT_EQ(table->FindReferenceById(L"wheel").Get(), made.Get());
}

TEST(LookupTableElements, WithoutServerIdAreThoseOfTheId) {
    const auto table = NewTable();
    const auto made = table->GetOrCreateBsReference(L"wheel", String());
    EXPECT_TRUE(BsId(*made).IsEmpty());
    EXPECT_EQ(table->GetOrCreateReference(L"wheel").Get(), made.Get());
    EXPECT_FALSE(table->FindReferenceByBsId(String()));
}

TEST(LookupTableElements, OfAServerIdGetTheirTargetEvenIfKnown) {
    const auto table = NewTable();
    const auto made = table->GetOrCreateBsReferenceWithTarget(Var(L"a.step"), L"wheel", L"s1:wheel");
    EXPECT_EQ(made->GetTarget(), Var(L"a.step"));
    EXPECT_EQ(BsId(*made), Var(L"s1:wheel"));
    EXPECT_EQ(table->GetOrCreateBsReferenceWithTarget(Var(L"b.step"), L"rim", L"s1:wheel").Get(), made.Get());
    EXPECT_EQ(made->GetTarget(), Var(L"b.step"));
}

TEST(LookupTableElements, WithTargetAndWithoutServerIdAreThoseOfTheId) {
    const auto table = NewTable();
    const auto plain = table->GetOrCreateReference(L"wheel");
    EXPECT_EQ(table->GetOrCreateBsReferenceWithTarget(Var(L"a.step"), L"wheel", String()).Get(), plain.Get());
    EXPECT_EQ(plain->GetTarget(), Var(L"a.step"));
}

TEST(LookupTableElements, MadeFromAnotherAreAlwaysNew) {
    const TableScene s;
    const auto source = s.table->GetOrCreateReference(L"wheel");
    const auto copy = s.table->CreateReferenceFrom(source.Get(), String());
    EXPECT_NE(copy.Get(), source.Get());
    EXPECT_EQ(IdOf(copy.Get()), L"e1");
    EXPECT_EQ(s.table->FindReferenceById(L"e1").Get(), copy.Get());
    EXPECT_TRUE(s.Fields().references.count(copy));
}

TEST(LookupTableElements, MadeFromAnotherTakeItsIdAway) {
    const TableScene s;
    const auto source = s.table->GetOrCreateReference(L"wheel");
    const auto copy = s.table->CreateReferenceFrom(source.Get(), L"wheel");
    EXPECT_EQ(s.table->FindReferenceById(L"wheel").Get(), copy.Get());
    EXPECT_EQ(IdOf(source.Get()), L"wheel");
    EXPECT_EQ(IdOf(copy.Get()), L"wheel");
    EXPECT_TRUE(s.Fields().references.count(source)) << "it has lost its place in the index alone";
}

TEST(LookupTableElements, MadeFromAnotherCopyTargetAndPropertiesButNotWhatIsItsOwn) {
    const auto table = NewTable();
    const auto source = table->GetOrCreateBsReference(L"wheel", L"s1:wheel");
    source->SetTarget(Var(L"a.step"));
    source->SetProperty(Prop::kName, Var(L"Wheel"));
    source->SetProperty(Prop::kNotCopied1c, Var(7));
    source->AddChild(NewReferenceIn(*table)->CreateInstance().Get());
    const auto copy = table->CreateReferenceFrom(source.Get(), L"rim");
    EXPECT_EQ(copy->GetTarget(), Var(L"a.step"));
    EXPECT_EQ(copy->GetProperty(Prop::kName, 0), Var(L"Wheel"));
    EXPECT_TRUE(copy->GetProperty(Prop::kNotCopied1c, 0).IsEmpty());
    EXPECT_TRUE(BsId(*copy).IsEmpty());
    EXPECT_EQ(copy->GetProperty(Prop::kOrigin, 0), Var(L"s1:wheel"));
    EXPECT_EQ(copy->GetChildCount(), 0);
    EXPECT_EQ(table->FindReferenceByBsId(L"s1:wheel").Get(), source.Get());
}

TEST(LookupTableElements, MadeFromAnotherTablesBelongToThisOne) {
    const auto here = NewTable(), there = NewTable();
    const auto source = there->GetOrCreateReference(L"wheel");
    const auto copy = here->CreateReferenceFrom(source.Get(), L"rim");
    EXPECT_EQ(copy->GetLookupTable(), here.Get());
    EXPECT_FALSE(there->FindReferenceById(L"rim"));
}

TEST(LookupTableElements, AreNotFoundUnderTheEmptyText) {
    const TableScene s;
    const auto instance = NewInstance();
    const auto reference = NewReference();
    s.Fields().instancesById[String()] = s.Fields().instancesByBsId[String()] = instance;
    s.Fields().referencesById[String()] = s.Fields().referencesByBsId[String()] = reference;
    EXPECT_FALSE(s.table->FindInstanceById(String()));
    EXPECT_FALSE(s.table->FindInstanceByBsId(String()));
    EXPECT_FALSE(s.table->FindReferenceById(String()));
    EXPECT_FALSE(s.table->FindReferenceByBsId(String()));
}

TEST(LookupTableElements, AreLookedForWithoutLeavingATrace) {
    const TableScene s;
    EXPECT_FALSE(s.table->FindInstanceById(L"a"));
    EXPECT_FALSE(s.table->FindInstanceByBsId(L"a"));
    EXPECT_FALSE(s.table->FindReferenceById(L"a"));
    EXPECT_FALSE(s.table->FindReferenceByBsId(L"a"));
    EXPECT_FALSE(s.table->FindPersistentSelector(L"a"));
    EXPECT_TRUE(s.Fields().instancesById.empty() && s.Fields().instancesByBsId.empty());
    EXPECT_TRUE(s.Fields().referencesById.empty() && s.Fields().referencesByBsId.empty());
    EXPECT_TRUE(s.Fields().selectorsById.empty());
}

TEST(LookupTableElements, AreAbsentWhereANullStandsInTheIndex) {
    const TableScene s;
    s.Fields().instancesById[L"a"];
    EXPECT_FALSE(s.table->FindInstanceById(L"a"));
    const auto made = NewReferenceIn(*s.table)->CreateInstanceWithId(L"a");
    ASSERT_TRUE(made);
    EXPECT_EQ(s.table->FindInstanceById(L"a").Get(), made.Get());
}

TEST(LookupTableElements, ComeCounted) {
    const auto table = NewTable();
    auto made = table->GetOrCreateReference(L"wheel");
    const int before = made->GetRefCount();
    const auto found = table->FindReferenceById(L"wheel");
    EXPECT_EQ(made->GetRefCount(), before + 1);
}

}  // namespace
}  // namespace qn::test
