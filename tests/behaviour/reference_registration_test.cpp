#include "tests/behaviour/foreign_instance.h"
#include "tests/behaviour/foreign_table.h"
#include "tests/behaviour/registration_support.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

TEST(ReferenceRegistration, OfNullDoesNothing) {
    const auto table = NewTable();
    const auto reference = NewReferenceIn(*table);
    EXPECT_EQ(reference->RegisterInTable(nullptr), nullptr);
    EXPECT_EQ(reference->GetLookupTable(), table);
    EXPECT_EQ(IdOf(*reference), Var(L"e1"));
}

TEST(ReferenceRegistration, GivesAnIdAndBindsTheTable) {
    const auto table = NewTable();
    const auto reference = NewReference();
    reference->SetProperty(Prop::kLocalId, Var(L"own"));
    EXPECT_EQ(reference->RegisterInTable(table.Get()), reference);
    EXPECT_EQ(reference->GetLookupTable(), table);
    EXPECT_EQ(IdOf(*reference), Var(L"e1"));
    EXPECT_EQ(table->FindReferenceById(L"e1"), reference);
    EXPECT_FALSE(table->FindReferenceById(L"own"));
    EXPECT_EQ(reference->GetRefCount(), 3) << "held by the set and the index";
}

TEST(ReferenceRegistration, UsesThePrefixInForce) {
    const auto table = NewTable();
    const auto owner = NewReference(), reference = NewReference();
    owner->SetProperty(Prop::kLocalId, Var(L"file"));
    const auto use = AddUse(*reference, *NewReference());
    table->PushIdPrefix(owner.Get());
    reference->RegisterInTable(table.Get());
    EXPECT_EQ(IdOf(*reference), Var(L"file_e1"));
    EXPECT_EQ(IdOf(*use), Var(L"file_n1"));
}

TEST(ReferenceRegistration, MovesToAnotherTable) {
    const auto before = NewTable(), after = NewTable();
    const auto reference = NewReferenceIn(*before);
    reference->RegisterInTable(after.Get());
    EXPECT_EQ(reference->GetLookupTable(), after);
    EXPECT_EQ(after->FindReferenceById(L"e1"), reference);
    EXPECT_EQ(before->FindReferenceById(L"e1"), reference) << "nobody takes it out there";
}

TEST(ReferenceRegistration, IsBoundToNoTableOfAnotherModule) {
    const auto table = NewTable();
    const auto foreign = Make<ForeignTable>(NewTable());
    const auto reference = NewReferenceIn(*table);
    EXPECT_EQ(reference->RegisterInTable(foreign.Get()), reference);
    EXPECT_EQ(reference->GetLookupTable(), nullptr);
}

TEST(ReferenceRegistration, EntersANewServerId) {
    const auto table = NewTable();
    const auto reference = WithServerId(L"server");
    EXPECT_EQ(reference->RegisterInTable(table.Get()), reference);
    EXPECT_EQ(table->FindReferenceByBsId(L"server"), reference);
    EXPECT_EQ(IdOf(*reference), Var(L"e1"));
    EXPECT_EQ(table->FindReferenceById(L"e1"), reference);
}

TEST(ReferenceRegistration, KeepsTheIdOfOneThatIsEnteredAlready) {
    const auto table = NewTable();
    const auto reference = table->GetOrCreateBsReference(L"own", L"server");
    const auto use = AddUse(*reference, *NewReference());
    EXPECT_EQ(reference->RegisterInTable(table.Get()), reference);
    EXPECT_EQ(IdOf(*reference), Var(L"own"));
    EXPECT_EQ(IdOf(*use), Var(L"n1")) << "its children get new ids";
}

TEST(ReferenceRegistration, EntersTheChildrenWithNewIds) {
    const auto table = NewTable();
    const auto root = NewReference(), part = NewReference(), other = NewReference();
    const auto a = AddUse(*root, *part), b = AddUse(*root, *other);
    a->SetProperty(Prop::kLocalId, Var(L"old"));
    root->RegisterInTable(table.Get());
    EXPECT_EQ(IdOf(*a), Var(L"n1"));
    EXPECT_EQ(IdOf(*b), Var(L"n2"));
    EXPECT_EQ(table->FindInstanceById(L"n1"), a);
    EXPECT_EQ(table->FindInstanceById(L"n2"), b);
    EXPECT_FALSE(table->FindInstanceById(L"old"));
    EXPECT_TRUE(IsRegistered(*table, a.Get()));
    EXPECT_EQ(IdOf(*root), Var(L"e1"));
    EXPECT_EQ(IdOf(*part), Var(L"e2"));
    EXPECT_EQ(IdOf(*other), Var(L"e3"));
    EXPECT_EQ(part->GetLookupTable(), table);
}

TEST(ReferenceRegistration, GoesDownBeforeItGoesOn) {
    const auto table = NewTable();
    const auto root = NewReference(), part = NewReference();
    const auto first = AddUse(*root, *part);
    const auto inner = AddUse(*part, *NewReference());
    const auto second = AddUse(*root, *NewReference());
    root->RegisterInTable(table.Get());
    EXPECT_EQ(IdOf(*first), Var(L"n1"));
    EXPECT_EQ(IdOf(*inner), Var(L"n2"));
    EXPECT_EQ(IdOf(*second), Var(L"n3"));
}

TEST(ReferenceRegistration, EntersAChildUnderItsServerId) {
    const auto table = NewTable();
    const auto root = NewReference();
    const auto known = NewReferenceIn(*table)->CreateInstanceWithBsId(L"x", L"server");
    const auto use = AddUse(*root, *NewReference());
    use->SetProperty(Prop::kBsId, Var(L"server"));
    root->RegisterInTable(table.Get());
    EXPECT_EQ(table->FindInstanceByBsId(L"server"), use) << "a later one takes the place";
    EXPECT_EQ(table->FindInstanceById(L"n1"), use);
    EXPECT_TRUE(IsRegistered(*table, use.Get()));
    EXPECT_EQ(root->GetChild(0), use);
}

TEST(ReferenceRegistration, ListsEachChildWithItsDefinitionAgain) {
    const auto table = NewTable();
    const auto root = NewReference(), part = NewReference();
    const auto use = AddUse(*root, *part);
    root->RegisterInTable(table.Get());
    ASSERT_EQ(part->GetInstanceCount(), 2);
    EXPECT_EQ(part->GetInstance(0), use);
    EXPECT_EQ(part->GetInstance(1), use);
}

TEST(ReferenceRegistration, EntersASharedDefinitionOnceForEachUse) {
    const auto table = NewTable();
    const auto root = NewReference(), part = NewReference();
    AddUse(*root, *part);
    const auto inner = AddUse(*part, *NewReference());
    AddUse(*root, *part);
    root->RegisterInTable(table.Get());
    EXPECT_EQ(IdOf(*root), Var(L"e1"));
    EXPECT_EQ(table->FindReferenceById(L"e2"), part);
    EXPECT_EQ(IdOf(*part), Var(L"e4")) << "the second time";
    EXPECT_EQ(table->FindReferenceById(L"e4"), part);
    EXPECT_EQ(table->FindInstanceById(L"n2"), inner);
    EXPECT_EQ(IdOf(*inner), Var(L"n4"));
}

TEST(ReferenceRegistration, EntersChildrenThatCameFromAFile) {
    const auto table = NewTable();
    const auto root = NewReference(), part = NewReference();
    const auto use = NewInstance();
    Feed(*use, 0x1001, part.Get());
    Feed(*root, 0x1002, ArrayOf({Var(use)}).ToArray());
    root->RegisterInTable(table.Get());
    ASSERT_EQ(part->GetInstanceCount(), 1);
    EXPECT_EQ(part->GetInstance(0), use);
    EXPECT_EQ(use->GetParentReference(), nullptr);
}

TEST(ReferenceRegistration, PassesOverForeignChildrenAndChildrenWithoutDefinition) {
    const auto table = NewTable();
    const auto root = NewReference(), hidden = NewReference();
    const auto foreign = Make<ForeignInstance>(hidden.Get());
    const auto bare = NewInstance();
    Feed(*root, 0x1002, ArrayOf({Var(foreign), Var(bare)}).ToArray());
    root->RegisterInTable(table.Get());
    EXPECT_EQ(foreign->written, 0);
    EXPECT_TRUE(IdOf(*hidden).IsEmpty());
    EXPECT_EQ(table->FindInstanceById(L"n1"), bare);
}

TEST(ReferenceRegistration, EndsInARing) {
    const auto table = NewTable();
    const auto root = NewReference(), part = NewReference();
    AddUse(*root, *part);
    const auto back = AddUse(*part, *root);
    EXPECT_EQ(root->RegisterInTable(table.Get()), root);
    EXPECT_EQ(IdOf(*root), Var(L"e1"));
    EXPECT_EQ(IdOf(*back), Var(L"n2"));
    part->RemoveChildAt(0);
}

TEST(ReferenceRegistration, GoesAsDeepAsTheAssembly) {
    constexpr int kLevels = 10'000;
    const auto table = NewTable();
    const auto root = NewReference();
    Counted<Reference> last = root;
    for (int i = 0; i < kLevels; ++i) {
        const auto next = NewReference();
        AddUse(*last, *next);
        last = next;
    }
    root->RegisterInTable(table.Get());
    EXPECT_EQ(IdOf(*last), Var(L"e10001"));
}

}  // namespace
}  // namespace qn::test
