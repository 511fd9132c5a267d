#include "tests/behaviour/registration_support.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

std::vector<Instance*> UsesOf(const Reference& reference) {
    std::vector<Instance*> uses;
    for (int i = 0; i < reference.GetInstanceCount(); ++i)
        uses.push_back(reference.GetInstance(i).Get());
    return uses;
}

using Uses = std::vector<Instance*>;

TEST(ReferenceInstances, AreMadeListedAndNothingElse) {
    const auto table = NewTable();
    const auto reference = NewReferenceIn(*table);
    const auto use = reference->CreateInstance();
    EXPECT_EQ(use->GetReference(), reference);
    EXPECT_EQ(use->GetRefCount(), 1) << "the list watches";
    EXPECT_EQ(UsesOf(*reference), Uses{use.Get()});
    EXPECT_EQ(reference->GetChildCount(), 0);
    EXPECT_EQ(use->GetParentReference(), nullptr);
    EXPECT_TRUE(use->GetProperty(Prop::kLocalId, 0).IsEmpty());
    EXPECT_FALSE(IsRegistered(*table, use.Get()));
}

TEST(ReferenceInstances, AreCountedWithTheDeadOnes) {
    const auto reference = NewReference();
    auto first = reference->CreateInstance();
    const auto second = reference->CreateInstance();
    first.Reset();
    EXPECT_EQ(reference->GetInstanceCount(), 2);
    EXPECT_FALSE(reference->GetInstance(0));
    EXPECT_EQ(reference->GetInstance(1), second);
    EXPECT_FALSE(reference->GetInstance(2));
}

TEST(ReferenceInstances, AreHandedOutCounted) {
    const auto reference = NewReference();
    const auto use = reference->CreateInstance();
    const auto found = reference->GetInstance(0);
    EXPECT_EQ(use->GetRefCount(), 2);
}

TEST(ReferenceInstances, CanBeClearedAndAdded) {
    const auto reference = NewReference();
    const auto a = reference->CreateInstance();
    const auto b = NewReference()->CreateInstance();
    reference->ClearInstances();
    EXPECT_EQ(reference->GetInstanceCount(), 0);
    EXPECT_EQ(a->GetReference(), reference) << "the instances themselves stay as they are";
    reference->AddInstances({b.Get(), a.Get(), b.Get()});
    EXPECT_EQ(UsesOf(*reference), (Uses{b.Get(), a.Get(), b.Get()}));
    EXPECT_NE(b->GetReference(), reference);
    EXPECT_EQ(b->GetRefCount(), 1);
}

TEST(ReferenceInstances, MoveAndStayInTheListTheyLeft) {
    const auto before = NewReference(), after = NewReference();
    const auto use = before->CreateInstance();
    after->SetInstanceReference(use.Get());
    EXPECT_EQ(use->GetReference(), after);
    EXPECT_EQ(UsesOf(*after), Uses{use.Get()});
    EXPECT_EQ(UsesOf(*before), Uses{use.Get()});
}

TEST(ReferenceInstances, LeaveTheListOfTheirParentWhenTheyMove) {
    const auto before = NewReference(), after = NewReference(), parent = NewReference();
    const auto use = before->CreateInstance();
    parent->AddChild(use.Get());
    parent->AddInstances({use.Get()});
    after->SetInstanceReference(use.Get());
    EXPECT_TRUE(UsesOf(*parent).empty());
    EXPECT_EQ(UsesOf(*before), Uses{use.Get()});
    EXPECT_TRUE(parent->HasChild(use.Get()));
    EXPECT_EQ(use->GetParentReference(), parent);
}

TEST(ReferenceInstances, LeaveTheListOfADefinitionThatIsTheParent) {
    const auto before = NewReference(), after = NewReference();
    const auto use = before->CreateInstance(), other = before->CreateInstance();
    before->AddChild(use.Get());
    after->SetInstanceReference(use.Get());
    EXPECT_EQ(UsesOf(*before), Uses{other.Get()});
}

TEST(ReferenceInstances, AreListedTwiceAfterAMoveToTheirOwnDefinition) {
    const auto reference = NewReference();
    const auto use = reference->CreateInstance();
    reference->SetInstanceReference(use.Get());
    EXPECT_EQ(UsesOf(*reference), (Uses{use.Get(), use.Get()}));
}

TEST(ReferenceInstancesWithId, AreEnteredInTheTable) {
    const auto table = NewTable();
    const auto reference = NewReferenceIn(*table);
    const auto use = reference->CreateInstanceWithId(L"n77");
    EXPECT_EQ(use->GetReference(), reference);
    EXPECT_EQ(use->GetProperty(Prop::kLocalId, 0), Var(L"n77"));
    EXPECT_EQ(table->FindInstanceById(L"n77"), use);
    EXPECT_TRUE(IsRegistered(*table, use.Get()));
    EXPECT_EQ(UsesOf(*reference), Uses{use.Get()});
    EXPECT_EQ(reference->GetChildCount(), 0);
}

TEST(ReferenceInstancesWithId, GetAnIdOfTheirOwnInPlaceOfAnEmptyOne) {
    const auto table = NewTable();
    const auto reference = NewReferenceIn(*table);
    const auto a = reference->CreateInstanceWithId(String()), b = reference->CreateInstanceWithId(String());
    EXPECT_EQ(a->GetProperty(Prop::kLocalId, 0), Var(L"n1"));
    EXPECT_EQ(b->GetProperty(Prop::kLocalId, 0), Var(L"n2"));
    EXPECT_EQ(table->FindInstanceById(L"n2"), b);
}

TEST(ReferenceInstancesWithId, AreThoseOfAnotherDefinitionIfTheIdIsTaken) {
    const auto table = NewTable();
    const auto owner = NewReferenceIn(*table), asked = NewReferenceIn(*table);
    const auto taken = owner->CreateInstanceWithId(L"n5");
    const auto found = asked->CreateInstanceWithId(L"n5");
    EXPECT_EQ(found, taken);
    EXPECT_EQ(found->GetReference(), owner);
    EXPECT_EQ(asked->GetInstanceCount(), 0);
    EXPECT_EQ(UsesOf(*owner), Uses{taken.Get()});
}

TEST(ReferenceInstancesWithId, LackTheIdWithoutATable) {
    const auto free = NewReference();
    auto table = NewTable();
    const auto bereft = NewReferenceIn(*table);
    table.Reset();
    for (const auto& reference : {free, bereft}) {
        const auto use = reference->CreateInstanceWithId(L"n5");
        ASSERT_TRUE(use);
        EXPECT_TRUE(use->GetProperty(Prop::kLocalId, 0).IsEmpty());
        EXPECT_EQ(UsesOf(*reference), Uses{use.Get()});
    }
}

TEST(ReferenceInstancesWithId, AreMadeWithoutTableEvenForAnEmptyId) {
    const auto reference = NewReference();
    const auto use = reference->CreateInstanceWithId(String());
    ASSERT_TRUE(use);
    EXPECT_EQ(use->GetReference(), reference);
    EXPECT_TRUE(use->GetProperty(Prop::kLocalId, 0).IsEmpty());
}

TEST(ReferenceInstancesWithServerId, AreEnteredUnderBothIds) {
    const auto table = NewTable();
    const auto reference = NewReferenceIn(*table);
    const auto use = reference->CreateInstanceWithBsId(L"n9", L"server");
    EXPECT_EQ(use->GetProperty(Prop::kLocalId, 0), Var(L"n9"));
    EXPECT_EQ(use->GetProperty(Prop::kBsId, 0), Var(L"server"));
    EXPECT_EQ(table->FindInstanceById(L"n9"), use);
    EXPECT_EQ(table->FindInstanceByBsId(L"server"), use);
    EXPECT_TRUE(IsRegistered(*table, use.Get()));
    EXPECT_EQ(UsesOf(*reference), Uses{use.Get()});
    const auto second = reference->CreateInstanceWithBsId(String(), L"second");
    EXPECT_EQ(second->GetProperty(Prop::kLocalId, 0), Var(L"n1"));
    EXPECT_EQ(table->FindInstanceById(L"n1"), second);
}

TEST(ReferenceInstancesWithServerId, AreTheKnownOneWhateverTheLocalId) {
    const auto table = NewTable();
    const auto owner = NewReferenceIn(*table), asked = NewReferenceIn(*table);
    const auto known = owner->CreateInstanceWithBsId(L"n9", L"server");
    EXPECT_EQ(asked->CreateInstanceWithBsId(L"n10", L"server"), known);
    EXPECT_EQ(known->GetReference(), owner);
    EXPECT_EQ(asked->GetInstanceCount(), 0);
    EXPECT_FALSE(table->FindInstanceById(L"n10"));
}

TEST(ReferenceInstancesWithServerId, TakeALocalIdFromWhoeverHasIt) {
    const auto table = NewTable();
    const auto reference = NewReferenceIn(*table);
    const auto former = reference->CreateInstanceWithId(L"n9");
    const auto use = reference->CreateInstanceWithBsId(L"n9", L"server");
    EXPECT_NE(use, former);
    EXPECT_EQ(table->FindInstanceById(L"n9"), use);
    EXPECT_EQ(former->GetProperty(Prop::kLocalId, 0), Var(L"n9"));
}

TEST(ReferenceInstancesWithServerId, AreNullWithoutATable) {
    const auto free = NewReference();
    auto table = NewTable();
    const auto bereft = NewReferenceIn(*table);
    table.Reset();
    for (const auto& reference : {free, bereft}) {
        EXPECT_FALSE(reference->CreateInstanceWithBsId(L"n9", L"server"));
        EXPECT_EQ(reference->GetInstanceCount(), 0);
    }
}

TEST(ReferenceInstancesWithServerId, AreOrdinaryOnesForAnEmptyServerId) {
    const auto free = NewReference();
    const auto plain = free->CreateInstanceWithBsId(L"n9", String());
    ASSERT_TRUE(plain);
    EXPECT_TRUE(plain->GetProperty(Prop::kLocalId, 0).IsEmpty());
    EXPECT_TRUE(free->CreateInstanceWithBsId(String(), String()));

    const auto table = NewTable();
    const auto reference = NewReferenceIn(*table);
    const auto use = reference->CreateInstanceWithBsId(L"n9", String());
    EXPECT_EQ(table->FindInstanceById(L"n9"), use);
    EXPECT_EQ(NewReferenceIn(*table)->CreateInstanceWithBsId(L"n9", String()), use);
    EXPECT_TRUE(use->GetProperty(Prop::kBsId, 0).IsEmpty());
}

}  // namespace
}  // namespace qn::test
