#include "tests/behaviour/element_support.h"
#include "tests/behaviour/table_scene.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

Counted<Instance> WithId(const Var& id) {
    auto instance = NewInstance();
    instance->SetProperty(Prop::kLocalId, id);
    return instance;
}

TEST(LookupTableIds, AreALetterForTheFamilyAndANumberFromOne) {
    const auto table = NewTable();
    EXPECT_EQ(table->GenerateEntityId(), L"e1");
    EXPECT_EQ(table->GenerateNodeId(), L"n1");
    EXPECT_EQ(table->GenerateSelectorId(), L"s1");
    EXPECT_EQ(table->GenerateEntityId(), L"e2");
    EXPECT_EQ(table->GenerateNodeId(), L"n2");
    EXPECT_EQ(table->GenerateSelectorId(), L"s2");
}

TEST(LookupTableIds, StandBehindThePrefixAndAnUnderscore) {
    const auto table = NewTable();
    table->PushIdPrefix(WithId(Var(L"n7")).Get());
    EXPECT_EQ(table->GetCurrentIdPrefix(), L"n7");
    EXPECT_EQ(table->GenerateEntityId(), L"n7_e1");
    EXPECT_EQ(table->GenerateNodeId(), L"n7_n1");
    EXPECT_EQ(table->GenerateSelectorId(), L"n7_s1");
}

TEST(LookupTableIds, AreCountedForEachPrefix) {
    const auto table = NewTable();
    EXPECT_EQ(table->GenerateNodeId(), L"n1");
    table->PushIdPrefix(WithId(Var(L"a")).Get());
    EXPECT_EQ(table->GenerateNodeId(), L"a_n1");
    table->PopIdPrefix();
    EXPECT_EQ(table->GenerateNodeId(), L"n2");
    table->PushIdPrefix(WithId(Var(L"a")).Get());
    EXPECT_EQ(table->GenerateNodeId(), L"a_n2") << "counters outlive their prefix";
}

TEST(LookupTableIds, TakeTheInnermostPrefixAlone) {
    const auto table = NewTable();
    table->PushIdPrefix(WithId(Var(L"a")).Get());
    table->PushIdPrefix(WithId(Var(L"b")).Get());
    EXPECT_EQ(table->GetCurrentIdPrefix(), L"b");
    table->PopIdPrefix();
    EXPECT_EQ(table->GetCurrentIdPrefix(), L"a");
    table->PopIdPrefix();
    EXPECT_EQ(table->GetCurrentIdPrefix(), L"");
}

TEST(LookupTableIds, LoseNoPrefixWhereThereIsNone) {
    const auto table = NewTable();
    table->PopIdPrefix();
    table->PushIdPrefix(WithId(Var(L"a")).Get());
    EXPECT_EQ(table->GetCurrentIdPrefix(), L"a");
}

TEST(LookupTableIds, TakeAPrefixFromAnyElementAsText) {
    const auto table = NewTable();
    const auto reference = table->GetOrCreateReference(L"car");
    table->PushIdPrefix(reference.Get());
    EXPECT_EQ(table->GetCurrentIdPrefix(), L"car");
    table->PushIdPrefix(WithId(Var(12)).Get());
    EXPECT_EQ(table->GetCurrentIdPrefix(), L"12");
}

TEST(LookupTableIds, TakeNoPrefixFromNull) {
    const auto table = NewTable();
    table->PushIdPrefix(WithId(Var(L"a")).Get());
    table->PushIdPrefix(nullptr);
    EXPECT_EQ(table->GetCurrentIdPrefix(), L"a");
    table->PopIdPrefix();
    EXPECT_EQ(table->GetCurrentIdPrefix(), L"");
}

TEST(LookupTableIds, HaveAnEmptyPrefixFromAnElementWithoutId) {
    const auto table = NewTable();
    table->PushIdPrefix(WithId(Var(L"a")).Get());
    table->PushIdPrefix(NewInstance().Get());
    EXPECT_EQ(table->GetCurrentIdPrefix(), L"");
    EXPECT_EQ(table->GenerateNodeId(), L"n1");
    table->PopIdPrefix();
    EXPECT_EQ(table->GetCurrentIdPrefix(), L"a");
}

TEST(LookupTableIds, StartAnewInEveryTable) {
    NewTable()->GenerateNodeId();
    EXPECT_EQ(NewTable()->GenerateNodeId(), L"n1");
}

TEST(LookupTableIds, MayNameWhatAnotherElementHasAlready) {
    const auto table = NewTable();
    const auto known = table->GetOrCreateReference(L"e1");
    EXPECT_EQ(table->GetOrCreateReference(String()).Get(), known.Get());
}

TEST(LookupTableIds, OfNewElementsCarryThePrefix) {
    const auto table = NewTable();
    table->PushIdPrefix(WithId(Var(L"a")).Get());
    EXPECT_EQ(IdOf(table->GetOrCreateReference(String()).Get()), L"a_e1");
    EXPECT_EQ(IdOf(table->GetOrCreateBsReference(String(), L"s1:x").Get()), L"a_e2");
    EXPECT_EQ(IdOf(table->GetOrCreateReference(L"given").Get()), L"given");
}

TEST(LookupTableIds, KeepTheDelimiterWhenTheTableStartsOver) {
    const TableScene s;
    s.table->GenerateNodeId();
    s.table->PushIdPrefix(WithId(Var(L"a")).Get());
    s.table->GenerateNodeId();
    s.table->Rebuild();
    EXPECT_EQ(s.table->GetCurrentIdPrefix(), L"");
    EXPECT_EQ(s.table->GenerateNodeId(), L"n1");
    s.table->PushIdPrefix(WithId(Var(L"a")).Get());
    EXPECT_EQ(s.table->GenerateNodeId(), L"a_n1");
}

}  // namespace
}  // namespace qn::test
