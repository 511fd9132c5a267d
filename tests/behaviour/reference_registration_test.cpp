#include "frame/host/object3d.h"
#include "tests/behaviour/element_support.h"
#include "tests/behaviour/foreign_instance.h"
#include "tests/behaviour/foreign_table.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

Counted<Reference> WithServerId(const wchar_t* id) {
    auto reference = NewReference();
    reference->SetProperty(Prop::kBsId, Var(id));
    return reference;
}

Counted<Instance> AddUse(Reference& parent, Reference& used) {
    auto use = used.CreateInstance();
    parent.AddChild(use.Get());
    return use;
}

Var IdOf(const HierarchyElement& element) {
    return element.GetProperty(Prop::kLocalId, 0);
}

bool IsRegistered(LookupTable& table, Instance* instance) {
    return table.IsSelectorPathValid(PathOf({instance}));
}

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

TEST(ReferenceRegistration, PrefersTheOneThatHasContentToALeaf) {
    const auto table = NewTable();
    const auto leaf = table->GetOrCreateBsReference(L"placeholder", L"server");
    const auto a = leaf->CreateInstance(), b = leaf->CreateInstance();
    const auto full = WithServerId(L"server");
    const auto own = full->CreateInstance();
    const auto child = AddUse(*full, *NewReference());
    EXPECT_EQ(full->RegisterInTable(table.Get()), full);

    EXPECT_EQ(a->GetReference(), full);
    EXPECT_EQ(b->GetReference(), full);
    EXPECT_EQ(IdOf(*full), Var(L"placeholder"));
    EXPECT_EQ(table->FindReferenceByBsId(L"server"), full);
    EXPECT_EQ(table->FindReferenceById(L"placeholder"), full);
    EXPECT_EQ(IdOf(*child), Var(L"n1"));
    EXPECT_EQ(leaf->GetInstanceCount(), 2) << "both lists stay as they were";
    ASSERT_EQ(full->GetInstanceCount(), 1);
    EXPECT_EQ(full->GetInstance(0), own);
}

TEST(ReferenceRegistration, CountsAnObjectAsContentAndAFileNameNot) {
    const auto table = NewTable();
    table->GetOrCreateBsReference(L"e8", L"server");
    const auto byFile = WithServerId(L"server"), byObject = WithServerId(L"server");
    byFile->SetTarget(Var(L"file"));
    EXPECT_NE(byFile->RegisterInTable(table.Get()), byFile);
    byObject->SetTarget(Var(Make<k3::Object3D>()));
    EXPECT_EQ(byObject->RegisterInTable(table.Get()), byObject);
    EXPECT_EQ(IdOf(*byObject), Var(L"e8"));
}

TEST(ReferenceRegistration, PassesOverDeadInstancesOfTheLoser) {
    const auto table = NewTable();
    const auto leaf = table->GetOrCreateBsReference(L"e1", L"server");
    auto dead = leaf->CreateInstance();
    const auto live = leaf->CreateInstance();
    dead.Reset();
    const auto full = WithServerId(L"server");
    AddUse(*full, *NewReference());
    full->RegisterInTable(table.Get());
    EXPECT_EQ(live->GetReference(), full);
}

/// What is known under the server id wins: the later one ends without ids of its own.
void ExpectFirstStays(bool firstFull, bool secondFull) {
    const auto table = NewTable();
    const auto first = table->GetOrCreateBsReference(L"first", L"server");
    if (firstFull) AddUse(*first, *NewReference());
    const auto second = WithServerId(L"server");
    const auto part = NewReference();
    const auto child = secondFull ? AddUse(*second, *part) : Counted<Instance>();
    const auto use = second->CreateInstance(), old = first->CreateInstance();

    EXPECT_EQ(second->RegisterInTable(table.Get()), first);
    EXPECT_EQ(use->GetReference(), first);
    EXPECT_EQ(old->GetReference(), first);
    EXPECT_EQ(first->GetInstanceCount(), 1) << "the lists stay";
    EXPECT_EQ(second->GetInstanceCount(), 1);
    EXPECT_TRUE(IdOf(*second).IsEmpty());
    EXPECT_EQ(second->GetLookupTable(), table);
    EXPECT_EQ(table->FindReferenceByBsId(L"server"), first);
    if (child) {
        EXPECT_TRUE(IdOf(*child).IsEmpty());
        EXPECT_FALSE(IsRegistered(*table, child.Get()));
        EXPECT_TRUE(IdOf(*part).IsEmpty());
    }
}

TEST(ReferenceRegistration, PrefersTheKnownOneIfBothHaveContent) {
    ExpectFirstStays(true, true);
}

TEST(ReferenceRegistration, PrefersTheKnownOneToALeaf) {
    ExpectFirstStays(true, false);
}

TEST(ReferenceRegistration, PrefersTheKnownOneIfBothAreLeaves) {
    ExpectFirstStays(false, false);
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

TEST(ReferenceRegistration, PointsChildrenAtTheDefinitionThatIsKnown) {
    const auto table = NewTable();
    const auto known = table->GetOrCreateBsReference(L"known", L"server");
    known->SetTarget(Var(Make<k3::Object3D>()));
    const auto root = NewReference(), part = WithServerId(L"server");
    const auto use = AddUse(*root, *part);
    root->RegisterInTable(table.Get());
    EXPECT_EQ(use->GetReference(), known);
    EXPECT_EQ(IdOf(*use), Var(L"n1"));
    EXPECT_EQ(known->GetInstanceCount(), 0) << "its list does not know";
    EXPECT_EQ(part->GetInstanceCount(), 2);
}

TEST(ReferenceRegistration, MergesTwoDefinitionsOfOneGraph) {
    const auto table = NewTable();
    const auto root = NewReference(), leaf = WithServerId(L"server"), full = WithServerId(L"server");
    const auto inside = AddUse(*full, *NewReference());
    const auto a = AddUse(*root, *leaf), b = AddUse(*root, *full);
    root->RegisterInTable(table.Get());
    EXPECT_EQ(a->GetReference(), full);
    EXPECT_EQ(b->GetReference(), full);
    EXPECT_EQ(IdOf(*full), IdOf(*leaf));
    EXPECT_EQ(table->FindReferenceByBsId(L"server"), full);
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
