#include "tests/graph/graph_support.h"

namespace qn::test {

namespace {

class InstanceSelectors : public testing::Test {
protected:
    PersistentSelectorImpl* Stored(const InstanceImpl& instance, int index) {
        const Var* entry = instance.Selectors().Lookup(index);
        return entry ? Cast<PersistentSelectorImpl>(*entry) : nullptr;
    }
    void Append(InstanceImpl& instance, PersistentSelectorImpl& selector) {
        instance.Selectors().At(instance.Selectors().size()) = Var(&selector, 1);
    }

    Counted<LookupTableImpl> table = Make<LookupTableImpl>();
    Counted<InstanceImpl> door = Known(*table, L"door");
    Counted<InstanceImpl> lock = Known(*table, L"lock");
    Counted<InstanceImpl> loose = MakeInstance();  // without table
};

}  // namespace

TEST_F(InstanceSelectors, AnInvalidSelectorIsNotAdded) {
    door->AddSelector(Selector());
    loose->AddSelector(Selector());
    door->AddLocalSelector(Selector());
    EXPECT_EQ(door->GetSelectorCount(), 0);
    EXPECT_EQ(loose->GetSelectorCount(), 0);
}

TEST_F(InstanceSelectors, AddedThroughTheTableHasIds) {
    door->AddSelector(PathOf({door.Get(), lock.Get()}));
    ASSERT_EQ(door->GetSelectorCount(), 1);
    EXPECT_EQ(Stored(*door, 0)->idPath, IdsOf({L"door", L"lock"}));
}

TEST_F(InstanceSelectors, AddedWithoutTableIsLive) {
    loose->AddSelector(PathOf({loose.Get()}));
    ASSERT_EQ(loose->GetSelectorCount(), 1);
    EXPECT_EQ(Targets(*Stored(*loose, 0)), std::vector<Instance*>{loose.Get()});
}

TEST_F(InstanceSelectors, AddedLocallyNeverGoesThroughTheTable) {
    door->AddLocalSelector(PathOf({door.Get(), lock.Get()}));
    EXPECT_TRUE(Stored(*door, 0)->idPath.IsEmpty());
    EXPECT_EQ(Targets(*Stored(*door, 0)), (std::vector<Instance*>{door.Get(), lock.Get()}));
}

TEST_F(InstanceSelectors, GetSelectorGivesThePathBack) {
    door->AddSelector(PathOf({door.Get(), lock.Get()}));
    const Selector selector = door->GetSelector(0);
    ASSERT_EQ(selector.GetPathElementCount(), 2);
    EXPECT_EQ(selector.GetPathElement(1), lock.Get());
}

TEST_F(InstanceSelectors, GetSelectorIsInvalidPastTheEndAndWithoutTable) {
    loose->AddSelector(PathOf({loose.Get()}));
    EXPECT_FALSE(loose->GetSelector(0).IsValid());
    EXPECT_FALSE(door->GetSelector(0).IsValid());
    EXPECT_FALSE(door->GetSelector(-1).IsValid());
}

TEST_F(InstanceSelectors, RemovingLeavesAGap) {
    for (int i = 0; i < 3; ++i)
        door->AddSelector(PathOf({door.Get()}));
    door->RemoveSelector(0);
    EXPECT_EQ(door->GetSelectorCount(), 2);
    EXPECT_EQ(Stored(*door, 0), nullptr);
    EXPECT_FALSE(door->GetSelector(0).IsValid());
    EXPECT_NE(Stored(*door, 2), nullptr);
}

TEST_F(InstanceSelectors, AppendingAfterAGapOverwritesAHigherEntry) {
    for (int i = 0; i < 3; ++i)
        door->AddSelector(PathOf({door.Get()}));
    door->RemoveSelector(0);
    door->AddSelector(PathOf({lock.Get()}));
    EXPECT_EQ(door->GetSelectorCount(), 2);
    EXPECT_EQ(Stored(*door, 2)->idPath, IdsOf({L"lock"}));
}

TEST_F(InstanceSelectors, RemovingPastTheEndDoesNothing) {
    door->AddSelector(PathOf({door.Get()}));
    door->RemoveSelector(1);
    door->RemoveSelector(-1);
    EXPECT_EQ(door->GetSelectorCount(), 1);
}

TEST_F(InstanceSelectors, ResolvingMakesALivePathFromIds) {
    const auto stored = StoredIds({L"door", L"lock"});
    Append(*door, *stored);
    door->ResolveSelectors(false, nullptr);
    EXPECT_EQ(Targets(*stored), (std::vector<Instance*>{door.Get(), lock.Get()}));
    EXPECT_TRUE(stored->idPath.IsEmpty());
}

TEST_F(InstanceSelectors, AnUnknownIdLosesTheWholePath) {
    const auto stored = StoredIds({L"door", L"nothing", L"lock"});
    Append(*door, *stored);
    door->ResolveSelectors(false, nullptr);
    EXPECT_TRUE(stored->path.empty());
    EXPECT_TRUE(stored->idPath.IsEmpty());
}

TEST_F(InstanceSelectors, AnUnknownIdLeavesANullEntryInTheTable) {
    Append(*door, *StoredIds({L"nothing", L"never"}));
    door->ResolveSelectors(false, nullptr);
    ASSERT_EQ(table->instancesById.count(L"nothing"), 1u);
    EXPECT_FALSE(table->instancesById[L"nothing"]);
    EXPECT_EQ(table->instancesById.count(L"never"), 0u);
}

TEST_F(InstanceSelectors, ALivePathSurvivesResolving) {
    const auto live = LivePath({door.Get()});
    Append(*door, *live);
    door->ResolveSelectors(false, nullptr);
    EXPECT_EQ(Targets(*live), std::vector<Instance*>{door.Get()});
}

TEST_F(InstanceSelectors, TheTablesPrefixStandsBeforeEachId) {
    const auto inner = Known(*table, L"e1_lock");
    const auto stored = StoredIds({L"lock"});
    Append(*door, *stored);
    table->nameGenerator.PushPrefix(L"e1");
    door->ResolveSelectors(false, nullptr);
    EXPECT_EQ(Targets(*stored), std::vector<Instance*>{inner.Get()});
}

TEST_F(InstanceSelectors, WithoutTableNothingIsResolved) {
    const auto stored = StoredIds({L"door"});
    Append(*loose, *stored);
    loose->ResolveSelectors(false, nullptr);
    EXPECT_TRUE(stored->path.empty());
    EXPECT_EQ(stored->idPath, IdsOf({L"door"}));
}

TEST_F(InstanceSelectors, EntriesUnderATextAreNotResolved) {
    const auto stored = StoredIds({L"door"});
    door->Selectors().At(L"door") = Var(stored);
    door->ResolveSelectors(false, nullptr);
    EXPECT_TRUE(stored->path.empty());
}

TEST_F(InstanceSelectors, TheLinkedSelectorIsResolved) {
    const auto linked = StoredIds({L"lock"});
    door->SetProperty(Prop::kLink, Var(linked));
    door->ResolveSelectors(false, nullptr);
    EXPECT_EQ(Targets(*linked), std::vector<Instance*>{lock.Get()});
}

TEST_F(InstanceSelectors, TheListedSelectorsAreResolved) {
    const auto first = StoredIds({L"door"});
    const auto second = StoredIds({L"lock"});
    door->SetProperty(Prop::kLinkList, LinksTo({first.Get(), first.Get(), second.Get()}));
    door->ResolveSelectors(false, nullptr);
    EXPECT_EQ(Targets(*first), std::vector<Instance*>{door.Get()});
    EXPECT_EQ(Targets(*second), std::vector<Instance*>{lock.Get()});
}

TEST_F(InstanceSelectors, ALinkOfAnInheritedReferenceIsNotLookedAt) {
    const auto linked = StoredIds({L"lock"});
    door->GetReference()->SetProperty(Prop::kLink, Var(linked));
    door->ResolveSelectors(false, nullptr);
    EXPECT_TRUE(linked->path.empty());
}

TEST_F(InstanceSelectors, SelectorsOfASelectorAreResolvedOneLevelDeep) {
    const auto outer = StoredIds({L"door"});
    const auto linked = StoredIds({L"lock"});
    const auto listed = StoredIds({L"lock"});
    const auto beyond = StoredIds({L"lock"});
    outer->SetProperty(Prop::kLink, Var(linked));
    outer->SetProperty(Prop::kLinkList, LinksTo({listed.Get()}));
    linked->SetProperty(Prop::kLink, Var(beyond));
    Append(*door, *outer);
    door->ResolveSelectors(false, nullptr);
    EXPECT_EQ(linked->path.size(), 1u);
    EXPECT_EQ(listed->path.size(), 1u);
    EXPECT_TRUE(beyond->path.empty());
    EXPECT_TRUE(beyond->idPath.IsSet());
}

TEST_F(InstanceSelectors, TheExcludedSelectorIsPassedOver) {
    const auto outer = StoredIds({L"door"});
    const auto linked = StoredIds({L"lock"});
    outer->SetProperty(Prop::kLink, Var(linked));
    String prefix;
    door->ResolveSelector(outer.Get(), &prefix, table.Get(), linked.Get(), false);
    EXPECT_EQ(outer->path.size(), 1u);
    EXPECT_TRUE(linked->path.empty());
}

TEST_F(InstanceSelectors, ResolveSelectorWithoutSelectorOrTableDoesNothing) {
    const auto stored = StoredIds({L"door"});
    String prefix;
    door->ResolveSelector(nullptr, &prefix, table.Get(), nullptr, false);
    door->ResolveSelector(stored.Get(), &prefix, nullptr, nullptr, false);
    EXPECT_TRUE(stored->idPath.IsSet());
}

TEST_F(InstanceSelectors, StoringRebuildsTheIds) {
    const auto live = LivePath({door.Get(), lock.Get()});
    const auto linked = LivePath({lock.Get()});
    const auto listed = LivePath({door.Get()});
    Append(*door, *live);
    door->SetProperty(Prop::kLink, Var(linked));
    door->SetProperty(Prop::kLinkList, LinksTo({listed.Get()}));
    door->StoreSelectors(false, nullptr);
    EXPECT_EQ(live->idPath, IdsOf({L"door", L"lock"}));
    EXPECT_EQ(linked->idPath, IdsOf({L"lock"}));
    EXPECT_EQ(listed->idPath, IdsOf({L"door"}));
}

TEST_F(InstanceSelectors, StoringEmptiesTheIdsWhereOneElementHasNone) {
    const auto live = LivePath({door.Get(), loose.Get()});
    Append(*door, *live);
    door->StoreSelectors(false, nullptr);
    EXPECT_TRUE(live->idPath.IsEmpty());
}

TEST_F(InstanceSelectors, StoringDoesNotFollowTheLinksOfASelector) {
    const auto live = LivePath({door.Get()});
    const auto linked = LivePath({lock.Get()});
    live->SetProperty(Prop::kLink, Var(linked));
    Append(*door, *live);
    door->StoreSelectors(false, nullptr);
    EXPECT_TRUE(linked->idPath.IsEmpty());
}

TEST_F(InstanceSelectors, RecursionWithoutReferenceStops) {
    loose->ResolveSelectors(true, nullptr);
    loose->StoreSelectors(true, nullptr);
    EXPECT_EQ(loose->GetSelectorCount(), 0);
}

TEST_F(InstanceSelectors, RecursionGoesIntoTheReference) {
    const auto stored = StoredIds({L"lock"});
    Append(*lock, *stored);
    door->GetReference()->AddChild(lock.Get());
    door->ResolveSelectors(true, nullptr);
    EXPECT_EQ(stored->path.size(), 1u);
    door->StoreSelectors(true, nullptr);
    EXPECT_EQ(stored->idPath, IdsOf({L"lock"}));
}

}  // namespace qn::test
