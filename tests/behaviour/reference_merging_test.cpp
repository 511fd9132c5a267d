#include "frame/host/object3d.h"
#include "tests/behaviour/registration_support.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

TEST(ReferenceMerging, PrefersTheOneThatHasContentToALeaf) {
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

TEST(ReferenceMerging, CountsAnObjectAsContentAndAFileNameNot) {
    const auto table = NewTable();
    table->GetOrCreateBsReference(L"e8", L"server");
    const auto byFile = WithServerId(L"server"), byObject = WithServerId(L"server");
    byFile->SetTarget(Var(L"file"));
    EXPECT_NE(byFile->RegisterInTable(table.Get()), byFile);
    byObject->SetTarget(Var(Make<k3::Object3D>()));
    EXPECT_EQ(byObject->RegisterInTable(table.Get()), byObject);
    EXPECT_EQ(IdOf(*byObject), Var(L"e8"));
}

TEST(ReferenceMerging, PassesOverDeadInstancesOfTheLoser) {
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

TEST(ReferenceMerging, PrefersTheKnownOneIfBothHaveContent) {
    ExpectFirstStays(true, true);
}

TEST(ReferenceMerging, PrefersTheKnownOneToALeaf) {
    ExpectFirstStays(true, false);
}

TEST(ReferenceMerging, PrefersTheKnownOneIfBothAreLeaves) {
    ExpectFirstStays(false, false);
}

TEST(ReferenceMerging, PointsChildrenAtTheDefinitionThatIsKnown) {
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

TEST(ReferenceMerging, MergesTwoDefinitionsOfOneGraph) {
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

}  // namespace
}  // namespace qn::test
