#include "graph/resolver_cache_impl.h"
#include "tests/graph/graph_support.h"

namespace qn::test {

namespace {

class ReferenceSelectors : public testing::Test {
protected:
    Counted<LookupTableImpl> table = Make<LookupTableImpl>();
    Counted<ReferenceImpl> car = CountedCast<ReferenceImpl>(table->GetOrCreateReference(L"car"));
    Counted<InstanceImpl> door = Known(*table, L"door");
    Counted<InstanceImpl> lock = Known(*table, L"lock");

    static void Append(InstanceImpl& instance, PersistentSelectorImpl& selector) {
        instance.Selectors().At(instance.Selectors().size()) = Var(&selector, 1);
    }
    /// How often the children of `parent` use the definition of `used`.
    static void Use(Reference& parent, Instance& used, int times) {
        for (int i = 0; i < times; ++i)
            parent.AddChild(used.GetReference()->CreateInstance().Get());
    }
};

}  // namespace

TEST_F(ReferenceSelectors, AddingNeedsALiveTable) {
    const auto free = MakeReference();
    free->AddSelector(PathOf({door.Get()}));
    free->AddSelectorPath(IdsOf({L"door"}));
    EXPECT_EQ(free->GetSelectorCount(), 0);
    car->AddSelector(PathOf({door.Get()}));
    EXPECT_EQ(car->GetSelectorCount(), 1);
}

TEST_F(ReferenceSelectors, AnInvalidSelectorIsNotAdded) {
    car->AddSelector(Selector());
    EXPECT_EQ(car->GetSelectorCount(), 0);
}

TEST_F(ReferenceSelectors, GetSelectorAndItsPath) {
    car->AddSelector(PathOf({door.Get(), lock.Get()}));
    EXPECT_EQ(car->GetSelector(0).GetPathElementCount(), 2);
    EXPECT_EQ(car->GetSelectorPath(0), IdsOf({L"door", L"lock"}));
    EXPECT_FALSE(car->GetSelector(1).IsValid());
    EXPECT_TRUE(car->GetSelectorPath(1).IsEmpty());
}

TEST_F(ReferenceSelectors, ThePathIsEmptyOnceTheTableIsGone) {
    car->AddSelectorPath(IdsOf({L"door"}));
    table.Reset();
    EXPECT_EQ(car->GetSelectorCount(), 1);
    EXPECT_TRUE(car->GetSelectorPath(0).IsEmpty());
    EXPECT_FALSE(car->GetSelector(0).IsValid());
}

TEST_F(ReferenceSelectors, AnEqualPathIsAddedOnce) {
    car->AddSelectorPath(IdsOf({L"door"}));
    car->AddSelectorPath(IdsOf({L"door"}));
    car->AddSelectorPath(IdsOf({L"lock"}));
    EXPECT_EQ(car->GetSelectorCount(), 2);
}

TEST_F(ReferenceSelectors, RemovingLeavesAGap) {
    car->AddSelectorPath(IdsOf({L"door"}));
    car->AddSelectorPath(IdsOf({L"lock"}));
    car->RemoveSelector(0);
    EXPECT_EQ(car->GetSelectorCount(), 1);
    EXPECT_TRUE(car->GetSelectorPath(0).IsEmpty());
}

TEST_F(ReferenceSelectors, ResolvingMakesALivePathAndEmptiesTheIds) {
    car->AddSelectorPath(IdsOf({L"door", L"lock"}));
    car->ResolveSelectors(false, nullptr);
    EXPECT_TRUE(car->GetSelectorPath(0).IsEmpty());
    EXPECT_EQ(car->GetSelector(0).GetPathElementCount(), 2);
}

TEST_F(ReferenceSelectors, AnUnknownIdLosesThePathAndLeavesANullEntry) {
    car->AddSelectorPath(IdsOf({L"door", L"nothing"}));
    car->ResolveSelectors(false, nullptr);
    EXPECT_EQ(car->GetSelector(0).GetPathElementCount(), 0);
    EXPECT_EQ(table->instancesById.count(L"nothing"), 1u);
}

TEST_F(ReferenceSelectors, TheTablesPrefixStandsBeforeEachId) {
    const auto inner = Known(*table, L"e1_lock");
    car->AddSelectorPath(IdsOf({L"lock"}));
    table->nameGenerator.PushPrefix(L"e1");
    car->ResolveSelectors(false, nullptr);
    EXPECT_EQ(car->GetSelector(0).GetPathElement(0), inner.Get());
}

TEST_F(ReferenceSelectors, ResolvingAgainLosesALivePath) {
    car->AddSelectorPath(IdsOf({L"door"}));
    car->ResolveSelectors(false, nullptr);
    car->ResolveSelectors(false, nullptr);
    EXPECT_EQ(car->GetSelector(0).GetPathElementCount(), 0);
}

TEST_F(ReferenceSelectors, ItsOwnLinksAreNotLookedAt) {
    const auto linked = StoredIds({L"lock"});
    const auto listed = StoredIds({L"lock"});
    car->SetProperty(Prop::kLink, Var(linked));
    car->SetProperty(Prop::kLinkList, LinksTo({listed.Get()}));
    car->ResolveSelectors(true, nullptr);
    EXPECT_TRUE(linked->path.empty());
    EXPECT_TRUE(listed->path.empty());
}

TEST_F(ReferenceSelectors, TheWalkResolvesEveryLevel) {
    const auto atDoor = StoredIds({L"lock"});
    const auto atLock = StoredIds({L"door"});
    Append(*door, *atDoor);
    Append(*lock, *atLock);
    car->AddChild(door.Get());
    door->GetReference()->AddChild(lock.Get());
    Var cache = car->CreateResolverCache();
    car->ResolveSelectors(true, &cache);
    EXPECT_EQ(atDoor->path.size(), 1u);
    EXPECT_EQ(atLock->path.size(), 1u);
}

TEST_F(ReferenceSelectors, TheWalkPassesOverWhatTheCacheHas) {
    const auto stored = StoredIds({L"lock"});
    Append(*door, *stored);
    car->AddChild(door.Get());
    Var cache = car->CreateResolverCache();
    Cast<ResolverCache>(cache)->AddInstance(door.Get());
    car->ResolveSelectors(true, &cache);
    EXPECT_TRUE(stored->path.empty());
}

TEST_F(ReferenceSelectors, TheWalkEntersWhatItMeetsInTheCache) {
    car->AddChild(door.Get());
    Var cache = car->CreateResolverCache();
    car->ResolveSelectors(true, &cache);
    EXPECT_TRUE(Cast<ResolverCache>(cache)->ContainsInstance(door.Get()));
    EXPECT_FALSE(Cast<ResolverCache>(cache)->ContainsOther(door.Get()));
}

TEST_F(ReferenceSelectors, StoringMarksWhatItMeetsInTheMap) {
    car->AddChild(door.Get());
    Var visited;
    car->StoreSelectors(true, &visited);
    ASSERT_NE(visited.Lookup(Var(door.Get(), 1)), nullptr);
    EXPECT_EQ(*visited.Lookup(Var(door.Get(), 1)), Var(1));
}

TEST_F(ReferenceSelectors, StoringPassesOverWhatTheMapHas) {
    const auto live = LivePath({lock.Get()});
    Append(*door, *live);
    car->AddChild(door.Get());
    Var visited;
    visited.At(Var(door.Get(), 1)) = Var(1);
    car->StoreSelectors(true, &visited);
    EXPECT_TRUE(live->idPath.IsEmpty());
    visited.At(Var(door.Get(), 1)) = Var(0);
    car->StoreSelectors(true, &visited);
    EXPECT_EQ(live->idPath, IdsOf({L"lock"}));
}

TEST_F(ReferenceSelectors, StoringRebuildsItsOwnIds) {
    car->AddSelectorPath(IdsOf({L"door"}));
    car->ResolveSelectors(false, nullptr);
    car->StoreSelectors(false, nullptr);
    EXPECT_EQ(car->GetSelectorPath(0), IdsOf({L"door"}));
}

TEST_F(ReferenceSelectors, ASharedDefinitionIsResolvedForEachUseAndSoLosesItsPath) {
    auto* shared = Cast<ReferenceImpl>(door->GetReference());
    shared->AddSelectorPath(IdsOf({L"lock"}));
    Use(*car, *door, 2);
    car->ResolveSelectors(true, nullptr);
    EXPECT_EQ(shared->GetSelector(0).GetPathElementCount(), 0);
}

TEST_F(ReferenceSelectors, ADefinitionThatIsUsedOnceKeepsItsPath) {
    auto* part = Cast<ReferenceImpl>(door->GetReference());
    part->AddSelectorPath(IdsOf({L"lock"}));
    Use(*car, *door, 1);
    car->ResolveSelectors(true, nullptr);
    EXPECT_EQ(part->GetSelector(0).GetPathElementCount(), 1);
}

TEST_F(ReferenceSelectors, ARingEnds) {
    car->AddChild(door.Get());
    door->GetReference()->AddChild(lock.Get());
    lock->SetReference(car.Get());
    car->ResolveSelectors(true, nullptr);
    car->StoreSelectors(true, nullptr);
    door->ResolveSelectors(true, nullptr);
    door->StoreSelectors(true, nullptr);
    lock->SetReference(nullptr);
}

TEST_F(ReferenceSelectors, TheWalkReachesTheEndOfADeepChain) {
    const Chain chain(kDeep, table.Get());
    const auto stored = StoredIds({L"door"});
    chain.instances.back()->Selectors().At(0) = Var(stored);
    chain.root->ResolveSelectors(true, nullptr);
    EXPECT_EQ(stored->path.size(), 1u);
    chain.root->StoreSelectors(true, nullptr);
    EXPECT_EQ(stored->idPath, IdsOf({L"door"}));
}

TEST_F(ReferenceSelectors, TheWalkTakesHeavilySharedDefinitionsByUse) {
    // Ten uses on each of 20 levels: too many to go by occurrence.
    std::vector<Counted<Reference>> levels;
    for (int i = 0; i < 20; ++i) {
        levels.push_back(table->GetOrCreateReference(String()));
        for (int use = 0; i > 0 && use < 10; ++use)
            levels[i - 1]->AddChild(levels[i]->CreateInstance().Get());
    }
    levels.front()->ResolveSelectors(true, nullptr);
    levels.front()->StoreSelectors(true, nullptr);
}

}  // namespace qn::test
