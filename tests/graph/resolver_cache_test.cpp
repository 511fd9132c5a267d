#include "graph/resolver_cache_impl.h"

#include "tests/graph/graph_support.h"

namespace qn::test {

TEST(ResolverCache, ANewOneContainsNothing) {
    const auto cache = Make<ResolverCacheImpl>();
    EXPECT_FALSE(cache->ContainsInstance(nullptr));
    EXPECT_FALSE(cache->ContainsOther(nullptr));
}

TEST(ResolverCache, RemembersWithoutCounting) {
    const auto cache = Make<ResolverCacheImpl>();
    const auto instance = MakeInstance();
    cache->AddInstance(instance.Get());
    cache->AddInstance(instance.Get());
    EXPECT_TRUE(cache->ContainsInstance(instance.Get()));
    EXPECT_EQ(instance->GetRefCount(), 1);
}

TEST(ResolverCache, NullIsAValueLikeAnyOther) {
    const auto cache = Make<ResolverCacheImpl>();
    cache->AddInstance(nullptr);
    cache->AddOther(nullptr);
    EXPECT_TRUE(cache->ContainsInstance(nullptr));
    EXPECT_TRUE(cache->ContainsOther(nullptr));
}

TEST(ResolverCache, TheTwoSetsKnowNothingOfEachOther) {
    const auto cache = Make<ResolverCacheImpl>();
    const auto instance = MakeInstance();
    cache->AddOther(instance.Get());
    EXPECT_TRUE(cache->ContainsOther(instance.Get()));
    EXPECT_FALSE(cache->ContainsInstance(instance.Get()));
}

TEST(ResolverCache, CopyFromCopiesNeitherSet) {
    const auto source = Make<ResolverCacheImpl>();
    source->AddInstance(nullptr);
    source->AddOther(nullptr);
    const auto copy = Make<ResolverCacheImpl>();
    EXPECT_EQ(copy->CopyFrom(source.Get(), 0), ResultEnum::kSuccess);
    EXPECT_FALSE(copy->ContainsInstance(nullptr));
    EXPECT_FALSE(copy->ContainsOther(nullptr));
    EXPECT_EQ(copy->CopyFrom(MakeInstance().Get(), 0), ResultEnum::kWrongClass);
}

TEST(ResolverCache, AnswersItsKeyAndThatOfItsAncestor) {
    const auto cache = Make<ResolverCacheImpl>();
    EXPECT_STREQ(cache->GetInterfaceName(), "qn.graph.resolvercache");
    EXPECT_TRUE(cache->IsTypeOf("qn.graph.resolvercache"));
    EXPECT_TRUE(cache->IsTypeOf("k3_extension"));
    EXPECT_FALSE(cache->IsTypeOf("k3_refsource"));
}

TEST(ResolverCache, AReferenceMakesANewOneEachTime) {
    const auto reference = MakeReference();
    const Var first = reference->CreateResolverCache();
    const Var second = reference->CreateResolverCache();
    EXPECT_EQ(first.GetTag(), VarTag::kObject);
    EXPECT_NE(Cast<ResolverCache>(first), nullptr);
    EXPECT_NE(first, second);
}

}  // namespace qn::test
