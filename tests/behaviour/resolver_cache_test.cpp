#include "graph/resolver_cache.h"
#include "tests/behaviour/element_support.h"

#include <gtest/gtest.h>

#include <array>

namespace qn::test {
namespace {

using namespace graph;

Counted<ResolverCache> NewCache() {
    const Var holder = NewReference()->CreateResolverCache();
    return Counted<ResolverCache>(Cast<ResolverCache>(holder));
}

TEST(ResolverCacheClass, IsMadeByAReferenceAndHeldByTheValueAlone) {
    Var holder = NewReference()->CreateResolverCache();
    EXPECT_EQ(holder.GetTag(), VarTag::kObject);
    ASSERT_TRUE(Cast<ResolverCache>(holder));
    EXPECT_EQ(Cast<ResolverCache>(holder)->GetRefCount(), 1);
    const Weak<ResolverCache> watch(Cast<ResolverCache>(holder));
    holder = Var();
    EXPECT_EQ(watch.Get(), nullptr);
}

TEST(ResolverCacheClass, IsNewEachTime) {
    const auto reference = NewReference();
    const Var first = reference->CreateResolverCache(), second = reference->CreateResolverCache();
    EXPECT_NE(first.ToInterface(), second.ToInterface());
}

TEST(ResolverCacheClass, CannotBeMadeByKey) {
    EXPECT_FALSE(api->Create("qn.graph.resolvercache"));
}

TEST(ResolverCacheClass, NamesItsKeyAndItsAncestor) {
    const auto cache = NewCache();
    EXPECT_STREQ(cache->GetInterfaceName(), "qn.graph.resolvercache");
    EXPECT_TRUE(cache->IsTypeOf("QN.graph.resolverCACHE"));
    EXPECT_TRUE(cache->IsTypeOf("k3_extension"));
    for (const char* name : {"k3_refsource", "k3_reftarget", "qn.graph.reference", ""})
        EXPECT_FALSE(cache->IsTypeOf(name)) << name;
}

TEST(ResolverCacheSets, AreEmptyAtFirst) {
    const auto cache = NewCache();
    const auto instance = NewInstance();
    EXPECT_FALSE(cache->ContainsInstance(instance.Get()));
    EXPECT_FALSE(cache->ContainsOther(instance.Get()));
    EXPECT_FALSE(cache->ContainsInstance(nullptr));
    EXPECT_FALSE(cache->ContainsOther(nullptr));
}

TEST(ResolverCacheSets, RememberAnInstanceByAddress) {
    const auto cache = NewCache();
    const auto met = NewInstance(), other = NewInstance();
    cache->AddInstance(met.Get());
    cache->AddInstance(met.Get());
    EXPECT_TRUE(cache->ContainsInstance(met.Get()));
    EXPECT_FALSE(cache->ContainsInstance(other.Get()));
}

TEST(ResolverCacheSets, AreApart) {
    const auto cache = NewCache();
    const auto instance = NewInstance();
    int other = 0;
    cache->AddInstance(instance.Get());
    cache->AddOther(&other);
    EXPECT_FALSE(cache->ContainsOther(instance.Get()));
    EXPECT_TRUE(cache->ContainsOther(&other));
}

TEST(ResolverCacheSets, StoreNullLikeAnyOtherPointer) {
    const auto cache = NewCache();
    cache->AddInstance(nullptr);
    EXPECT_TRUE(cache->ContainsInstance(nullptr));
    EXPECT_FALSE(cache->ContainsOther(nullptr));
    cache->AddOther(nullptr);
    EXPECT_TRUE(cache->ContainsOther(nullptr));
}

TEST(ResolverCacheSets, DoNotCountWhatTheyHold) {
    const auto cache = NewCache();
    auto instance = NewInstance();
    cache->AddInstance(instance.Get());
    EXPECT_EQ(instance->GetRefCount(), 1);
}

TEST(ResolverCacheCopy, LeavesTheSetsAlone) {
    const auto source = NewCache(), copy = NewCache();
    const auto seen = NewInstance(), kept = NewInstance();
    int other = 0;
    source->AddInstance(seen.Get());
    source->AddOther(&other);
    copy->AddInstance(kept.Get());
    EXPECT_EQ(copy->CopyFrom(source.Get(), 0), ResultEnum::kSuccess);
    EXPECT_FALSE(copy->ContainsInstance(seen.Get()));
    EXPECT_FALSE(copy->ContainsOther(&other));
    EXPECT_TRUE(copy->ContainsInstance(kept.Get()));
}

TEST(ResolverCacheCopy, RefusesAnotherClass) {
    const auto cache = NewCache();
    EXPECT_EQ(cache->CopyFrom(NewReference().Get(), 0), ResultEnum::kWrongClass);
    EXPECT_EQ(cache->CopyFrom(nullptr, 0), ResultEnum::kWrongClass);
}

TEST(ResolverCacheWalk, NotesInstancesAndNothingElse) {
    const auto root = NewReference();
    const auto used = NewReference();
    const auto child = used->CreateInstance();
    root->AddChild(child.Get());
    Var holder = root->CreateResolverCache();
    root->ResolveSelectors(true, &holder);
    const auto* cache = Cast<ResolverCache>(holder);
    EXPECT_TRUE(cache->ContainsInstance(child.Get()));
    for (void* address : std::array<void*, 3>{root.Get(), used.Get(), child.Get()})
        EXPECT_FALSE(cache->ContainsOther(address));
}

}  // namespace
}  // namespace qn::test
