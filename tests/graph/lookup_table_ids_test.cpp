#include "tests/graph/table_fixture.h"

namespace qn::test {
namespace {

using LookupTableReferences = TableFixture;
using LookupTableRegistration = TableFixture;
using LookupTableIds = TableFixture;

bool Holds(const ElementPool<Reference>& pool, const Counted<Reference>& reference) {
    return pool.count(reference) != 0;
}

TEST_F(LookupTableReferences, WithEmptyIdAreNewEachTimeWithIdsOfTheEntityFamily) {
    const auto first = table->GetOrCreateReference(String());
    const auto second = table->GetOrCreateReference(String());
    EXPECT_FALSE(first == second);
    EXPECT_EQ(first->GetProperty(Prop::kLocalId, 0).ToText(), L"e1");
    EXPECT_EQ(second->GetProperty(Prop::kLocalId, 0).ToText(), L"e2");
}

TEST_F(LookupTableReferences, AreFoundByTheirId) {
    const auto made = table->GetOrCreateReference(L"car");
    EXPECT_EQ(table->GetOrCreateReference(L"car"), made);
    EXPECT_EQ(table->FindReferenceById(L"car"), made);
    EXPECT_TRUE(Holds(table->references, made));
    EXPECT_EQ(made->GetLookupTable(), table.Get());
}

TEST_F(LookupTableReferences, TakeTheTargetEvenIfTheyWereKnown) {
    const auto made = table->GetOrCreateReference(L"car");
    made->SetTarget(Var(L"old.qn"));
    EXPECT_EQ(table->GetOrCreateReferenceWithTarget(Var(L"new.qn"), L"car"), made);
    EXPECT_EQ(made->GetTarget().ToText(), L"new.qn");
}

TEST_F(LookupTableReferences, OfAServerIdAreRegisteredUnderBothIds) {
    const auto made = table->GetOrCreateBsReference(L"car", L"s1");
    EXPECT_EQ(table->FindReferenceById(L"car"), made);
    EXPECT_EQ(table->FindReferenceByBsId(L"s1"), made);
    EXPECT_EQ(made->GetProperty(Prop::kBsId, 0).ToText(), L"s1");
    EXPECT_TRUE(Holds(table->references, made));
}

TEST_F(LookupTableReferences, OfAServerIdGetAnIdIfNoneIsGiven) {
    const auto made = table->GetOrCreateBsReference(String(), L"s1");
    EXPECT_EQ(made->GetProperty(Prop::kLocalId, 0).ToText(), L"e1");
    EXPECT_EQ(table->FindReferenceById(L"e1"), made);
}

TEST_F(LookupTableReferences, IgnoreTheGivenIdWhenTheServerIdIsKnown) {
    const auto made = table->GetOrCreateBsReference(L"car", L"s1");
    EXPECT_EQ(table->GetOrCreateBsReference(L"bus", L"s1"), made);
    EXPECT_FALSE(table->FindReferenceById(L"bus"));
    EXPECT_EQ(made->GetProperty(Prop::kLocalId, 0).ToText(), L"car");
}

TEST_F(LookupTableReferences, WithoutServerIdAreTheOnesByLocalId) {
    const auto made = table->GetOrCreateReference(L"car");
    EXPECT_EQ(table->GetOrCreateBsReference(L"car", String()), made);
    EXPECT_TRUE(table->referencesByBsId.empty());
}

TEST_F(LookupTableReferences, WithTargetAndServerIdTakeTheTarget) {
    const auto made = table->GetOrCreateBsReferenceWithTarget(Var(L"a.qn"), L"car", L"s1");
    EXPECT_EQ(made->GetTarget().ToText(), L"a.qn");
    EXPECT_EQ(table->FindReferenceByBsId(L"s1"), made);
    EXPECT_EQ(table->GetOrCreateBsReferenceWithTarget(Var(L"b.qn"), L"car", String()), made);
    EXPECT_EQ(made->GetTarget().ToText(), L"b.qn");
}

TEST_F(LookupTableReferences, CopiedFromAnotherTakeTargetAndPropertiesButNotItsIds) {
    const auto source = table->GetOrCreateBsReference(L"car", L"s1");
    source->SetProperty(Prop::kName, Var(L"Car"));
    source->SetProperty(Prop::kNotCopied1c, Var(1));
    source->SetTarget(Var(L"car.qn"));
    const auto copy = table->CreateReferenceFrom(source.Get(), L"bus");
    EXPECT_FALSE(copy == source);
    EXPECT_EQ(copy->GetProperty(Prop::kName, 0).ToText(), L"Car");
    EXPECT_EQ(copy->GetTarget().ToText(), L"car.qn");
    EXPECT_TRUE(copy->GetProperty(Prop::kBsId, 0).IsEmpty());
    EXPECT_TRUE(copy->GetProperty(Prop::kNotCopied1c, 0).IsEmpty());
    EXPECT_EQ(copy->GetProperty(Prop::kOrigin, 0).ToText(), L"s1");
    EXPECT_EQ(copy->GetProperty(Prop::kLocalId, 0).ToText(), L"bus");
    EXPECT_EQ(table->FindReferenceById(L"bus"), copy);
}

TEST_F(LookupTableReferences, CopiedFromAnotherOverwriteATakenId) {
    const auto source = table->GetOrCreateReference(L"car");
    const auto copy = table->CreateReferenceFrom(source.Get(), L"car");
    EXPECT_EQ(table->FindReferenceById(L"car"), copy);
    EXPECT_TRUE(Holds(table->references, source));
}

TEST_F(LookupTableReferences, CopiedFromAnotherTableBelongToThisOne) {
    const auto other = Make<LookupTableImpl>();
    const auto source = other->GetOrCreateReference(L"car");
    const auto copy = table->CreateReferenceFrom(source.Get(), String());
    EXPECT_EQ(copy->GetLookupTable(), table.Get());
    EXPECT_EQ(copy->GetProperty(Prop::kLocalId, 0).ToText(), L"e1");
    EXPECT_EQ(other->references.size(), 1u);
}

TEST_F(LookupTableReferences, AreNotCopiedFromNull) {
    EXPECT_FALSE(table->CreateReferenceFrom(nullptr, L"car"));
    EXPECT_FALSE(table->FindReferenceById(L"car"));
}

TEST_F(LookupTableIds, FindNothingUnderAnEmptyText) {
    table->instancesById[String()] = Known(L"n1");
    table->referencesById[String()] = table->GetOrCreateReference(L"e1");
    table->instancesByBsId[String()] = Known(L"n1");
    table->referencesByBsId[String()] = table->GetOrCreateReference(L"e1");
    EXPECT_FALSE(table->FindInstanceById(String()));
    EXPECT_FALSE(table->FindReferenceById(String()));
    EXPECT_FALSE(table->FindInstanceByBsId(String()));
    EXPECT_FALSE(table->FindReferenceByBsId(String()));
}

TEST_F(LookupTableIds, LeaveNoNullBehindWhenTheyFindNothing) {
    table->FindInstanceById(L"n1");
    table->FindReferenceById(L"e1");
    table->FindInstanceByBsId(L"s1");
    table->FindReferenceByBsId(L"s1");
    table->FindPersistentSelector(L"s1");
    EXPECT_TRUE(table->instancesById.empty());
    EXPECT_TRUE(table->referencesById.empty());
    EXPECT_TRUE(table->instancesByBsId.empty());
    EXPECT_TRUE(table->referencesByBsId.empty());
    EXPECT_TRUE(table->selectorsById.empty());
}

TEST_F(LookupTableIds, TreatARememberedNullAsAbsent) {
    table->referencesById[L"car"] = nullptr;
    const auto made = table->GetOrCreateReference(L"car");
    ASSERT_TRUE(made);
    EXPECT_EQ(table->FindReferenceById(L"car"), made);
}

TEST_F(LookupTableIds, CountForEachFamilyOnItsOwn) {
    EXPECT_EQ(table->GenerateEntityId(), L"e1");
    EXPECT_EQ(table->GenerateEntityId(), L"e2");
    EXPECT_EQ(table->GenerateNodeId(), L"n1");
    EXPECT_EQ(table->GenerateSelectorId(), L"s1");
}

TEST_F(LookupTableIds, CarryTheLocalIdThatWasPushedAsPrefix) {
    const auto reference = table->GetOrCreateReference(L"car");
    table->PushIdPrefix(reference.Get());
    EXPECT_EQ(table->GetCurrentIdPrefix(), L"car");
    EXPECT_EQ(table->GenerateNodeId(), L"car_n1");
    table->PopIdPrefix();
    EXPECT_TRUE(table->GetCurrentIdPrefix().IsEmpty());
    EXPECT_EQ(table->GenerateNodeId(), L"n1");
}

TEST_F(LookupTableIds, IgnoreANullPrefixElement) {
    table->PushIdPrefix(nullptr);
    EXPECT_EQ(table->GenerateNodeId(), L"n1");
    table->PopIdPrefix();
    EXPECT_EQ(table->GenerateNodeId(), L"n2");
}

TEST_F(LookupTableIds, RepeatInANewTable) {
    EXPECT_EQ(table->GenerateNodeId(), L"n1");
    EXPECT_EQ(Make<LookupTableImpl>()->GenerateNodeId(), L"n1");
}

// The four registrations differ on purpose.

TEST_F(LookupTableRegistration, IgnoresNull) {
    table->RegisterInstance(nullptr);
    table->RegisterInstanceWithBsId(nullptr);
    table->RegisterReference(nullptr);
    table->RegisterReferenceWithBsId(nullptr);
    EXPECT_TRUE(table->instances.empty());
    EXPECT_TRUE(table->references.empty());
}

TEST_F(LookupTableRegistration, OfAnInstanceWithoutIdEntersTheSetOnly) {
    const auto instance = Make<InstanceImpl>();
    table->RegisterInstance(instance.Get());
    EXPECT_TRUE(table->IsSelectorPathValid(PathOf({instance.Get()})));
    EXPECT_TRUE(table->instancesById.empty());
}

TEST_F(LookupTableRegistration, OfAnInstanceReadsNoServerId) {
    const auto instance = Make<InstanceImpl>();
    instance->SetProperty(Prop::kLocalId, Var(L"n1"));
    instance->SetParamVar(Param::kBsId, Var(L"s1"));
    table->RegisterInstance(instance.Get());
    EXPECT_EQ(table->FindInstanceById(L"n1"), instance.Get());
    EXPECT_FALSE(table->FindInstanceByBsId(L"s1"));
}

TEST_F(LookupTableRegistration, OfAnInstanceByServerIdEntersTheSetOnlyWithOne) {
    const auto without = Make<InstanceImpl>();
    without->SetProperty(Prop::kLocalId, Var(L"n1"));
    table->RegisterInstanceWithBsId(without.Get());
    EXPECT_TRUE(table->instances.empty());
    EXPECT_EQ(table->FindInstanceById(L"n1"), without.Get());

    const auto with = Make<InstanceImpl>();
    with->SetParamVar(Param::kBsId, Var(L"s1"));
    table->RegisterInstanceWithBsId(with.Get());
    EXPECT_EQ(table->instances.size(), 1u);
    EXPECT_EQ(table->FindInstanceByBsId(L"s1"), with.Get());
}

TEST_F(LookupTableRegistration, OfAnInstanceByServerIdTakesASetButEmptyTextForAKey) {
    const auto instance = Make<InstanceImpl>();
    instance->SetParamVar(Param::kBsId, Var(L""));
    table->RegisterInstanceWithBsId(instance.Get());
    EXPECT_EQ(table->instances.size(), 1u);
    EXPECT_EQ(table->instancesByBsId.count(String()), 1u);
}

TEST_F(LookupTableRegistration, OfAReferenceByServerIdTakesNoEmptyTexts) {
    const auto reference = Make<ReferenceImpl>();
    reference->SetParamVar(Param::kBsId, Var(L""));
    reference->SetProperty(Prop::kLocalId, Var(L""));
    table->RegisterReferenceWithBsId(reference.Get());
    EXPECT_TRUE(table->references.empty());
    EXPECT_TRUE(table->referencesByBsId.empty());
    EXPECT_TRUE(table->referencesById.empty());
}

TEST_F(LookupTableRegistration, OfAReferenceByServerIdEntersTheLocalIdAlone) {
    const auto reference = Make<ReferenceImpl>();
    reference->SetProperty(Prop::kLocalId, Var(L"e1"));
    table->RegisterReferenceWithBsId(reference.Get());
    EXPECT_TRUE(table->references.empty());
    EXPECT_EQ(table->FindReferenceById(L"e1"), reference.Get());
}

TEST_F(LookupTableRegistration, OfAReferenceWithoutIdChangesNothing) {
    const auto reference = Make<ReferenceImpl>();
    reference->SetParamVar(Param::kBsId, Var(L"s1"));
    table->RegisterReference(reference.Get());
    EXPECT_TRUE(table->references.empty());
    EXPECT_TRUE(table->referencesById.empty());
    EXPECT_TRUE(table->referencesByBsId.empty());
}

TEST_F(LookupTableRegistration, OfAReferenceTakesASetButEmptyIdForAKey) {
    const auto reference = Make<ReferenceImpl>();
    reference->SetProperty(Prop::kLocalId, Var(L""));
    table->RegisterReference(reference.Get());
    EXPECT_EQ(table->references.size(), 1u);
    EXPECT_EQ(table->referencesById.count(String()), 1u);
}

TEST_F(LookupTableRegistration, OverwritesAKeyAndRemovesNothingFromTheSet) {
    const auto first = Make<InstanceImpl>(), second = Make<InstanceImpl>();
    first->SetProperty(Prop::kLocalId, Var(L"n1"));
    second->SetProperty(Prop::kLocalId, Var(L"n1"));
    table->RegisterInstance(first.Get());
    table->RegisterInstance(second.Get());
    EXPECT_EQ(table->FindInstanceById(L"n1"), second.Get());
    EXPECT_EQ(table->instances.size(), 2u);
}

}  // namespace
}  // namespace qn::test
