#include "frame/host/object3d.h"
#include "tests/graph/graph_support.h"

namespace qn::test {

namespace {

Var MapTarget(const wchar_t* key, const Var& value) {
    Var map;
    map.At(key) = value;
    return map;
}

}  // namespace

TEST(ReferenceTarget, ItsTagTellsLinksAndLeavesApart) {
    const struct {
        Var target;
        bool noLink;
        bool leaf;
    } kRows[] = {{Var(), true, true},
                 {Var(L"door.qn"), false, true},
                 {IdsOf({L"e1"}), false, false},
                 {MapTarget(L"a", Var(L"e1")), false, false},
                 {Var(Make<k3::Object3D>()), true, false}};
    for (const auto& row : kRows) {
        const auto reference = MakeReference();
        reference->SetTarget(row.target);
        EXPECT_EQ(reference->HasNoTargetLink(), row.noLink) << int{row.target.GetTag()};
        EXPECT_EQ(reference->IsLeaf(), row.leaf) << int{row.target.GetTag()};
    }
}

TEST(ReferenceTarget, AReferenceWithChildrenIsNoLeaf) {
    const auto reference = MakeReference();
    reference->AddChild(MakeInstance().Get());
    EXPECT_FALSE(reference->IsLeaf());
}

TEST(ReferenceTarget, AnythingElseResolvesToTheReferenceItself) {
    const auto reference = MakeReference();
    EXPECT_EQ(reference->ResolveTarget(Var(L"a")), reference.Get());
    reference->SetTarget(Var(Make<k3::Object3D>()));
    EXPECT_EQ(reference->ResolveTarget(Var()), reference.Get());
}

TEST(ReferenceTarget, AMapResolvesEachKeyOnce) {
    const auto table = Make<LookupTableImpl>();
    const auto reference = MakeReference(table.Get());
    reference->SetTarget(MapTarget(L"left", Var(L"e7")));
    const auto left = reference->ResolveTarget(Var(L"left"));
    EXPECT_EQ(table->FindReferenceById(L"e7"), left.Get());
    table->referencesById.clear();
    EXPECT_EQ(reference->ResolveTarget(Var(L"left")), left.Get());
}

TEST(ReferenceTarget, AnArrayResolvesByIndex) {
    const auto table = Make<LookupTableImpl>();
    const auto reference = MakeReference(table.Get());
    reference->SetTarget(IdsOf({L"e7", L"e8"}));
    EXPECT_EQ(reference->ResolveTarget(Var(1)), table->GetOrCreateReference(L"e8").Get());
}

TEST(ReferenceTarget, AnUnknownKeyIsCreatedAndMakesANewReference) {
    const auto table = Make<LookupTableImpl>();
    const auto reference = MakeReference(table.Get());
    const Var target = MapTarget(L"left", Var(L"e7"));
    reference->SetTarget(target);
    const auto made = reference->ResolveTarget(Var(L"right"));
    ASSERT_TRUE(made);
    EXPECT_NE(made->GetProperty(Prop::kLocalId, 0), Var(L"e7"));
    EXPECT_EQ(target.size(), 2);
}

TEST(ReferenceTarget, WithoutTableKeysAndFilesResolveToNull) {
    const auto reference = MakeReference();
    reference->SetTarget(MapTarget(L"left", Var(L"e7")));
    EXPECT_FALSE(reference->ResolveTarget(Var(L"left")));
    reference->SetTarget(Var(L"door.qn"));
    EXPECT_FALSE(reference->ResolveTarget(Var()));
    EXPECT_EQ(reference->GetTarget(), Var(L"door.qn"));
}

TEST(ReferenceTarget, AMissIsNotRemembered) {
    const auto reference = MakeReference();
    const Var target = MapTarget(L"left", Var(L"e7"));
    reference->SetTarget(target);
    EXPECT_FALSE(reference->ResolveTarget(Var(L"left")));
    const auto table = Make<LookupTableImpl>();
    reference->RegisterInTable(table.Get());
    EXPECT_TRUE(reference->ResolveTarget(Var(L"left")));
}

TEST(ReferenceTarget, AResolvedKeyIsNeverForgotten) {
    const auto table = Make<LookupTableImpl>();
    const auto reference = MakeReference(table.Get());
    reference->SetTarget(MapTarget(L"left", Var(L"e7")));
    const auto left = reference->ResolveTarget(Var(L"left"));
    reference->SetTarget(MapTarget(L"left", Var(L"e8")));
    reference->ReloadExternalTarget();
    EXPECT_EQ(reference->ResolveTarget(Var(L"left")), left.Get());
}

TEST(ReferenceTarget, AReferenceThatResolvesToItselfDoesNotKeepItselfAlive) {
    const auto table = Make<LookupTableImpl>();
    auto reference = CountedCast<ReferenceImpl>(table->GetOrCreateReference(L"e1"));
    reference->SetTarget(MapTarget(L"self", Var(L"e1")));
    EXPECT_EQ(reference->ResolveTarget(Var(L"self")), reference.Get());
    const Weak<ReferenceImpl> watch(reference.Get());
    reference.Reset();
    table->references.clear();
    table->referencesById.clear();
    EXPECT_FALSE(watch.Get());
}

TEST(ReferenceTarget, AFileThatCannotBeLoadedLosesItsName) {
    const auto table = Make<LookupTableImpl>();  // without scene nothing can be loaded
    const auto reference = MakeReference(table.Get());
    reference->SetTarget(Var(L"door.qn"));
    EXPECT_FALSE(reference->ResolveTarget(Var()));
    EXPECT_TRUE(reference->GetTarget().IsEmpty());
}

}  // namespace qn::test
