#include "graph/element_pool.h"

#include "graph/instance_impl.h"

#include <gtest/gtest.h>

#include <vector>

namespace qn::graph {
namespace {

TEST(ElementPool, HoldsEachElementOnceWithOneCount) {
    const auto use = Make<InstanceImpl>();
    const int before = use->GetRefCount();
    ElementPool<Instance> pool;
    EXPECT_TRUE(pool.insert(use));
    EXPECT_FALSE(pool.insert(use));
    EXPECT_EQ(pool.size(), 1u);
    EXPECT_EQ(use->GetRefCount(), before + 1);
    pool.clear();
    EXPECT_TRUE(pool.empty());
    EXPECT_EQ(use->GetRefCount(), before);
}

TEST(ElementPool, NullIsNoElement) {
    ElementPool<Instance> pool;
    EXPECT_FALSE(pool.insert(nullptr));
    EXPECT_EQ(pool.count(nullptr), 0u);
    EXPECT_TRUE(pool.empty());
}

TEST(ElementPool, FindsAllElementsWhileItGrows) {
    constexpr std::size_t kMany = 5000;
    std::vector<Counted<Instance>> uses;
    ElementPool<Instance> pool;
    for (std::size_t i = 0; i < kMany; ++i) {
        uses.push_back(Make<InstanceImpl>());
        EXPECT_EQ(pool.count(uses.back()), 0u);
        EXPECT_TRUE(pool.insert(uses.back()));
    }
    for (const auto& use : uses)
        EXPECT_EQ(pool.count(use), 1u);
    EXPECT_EQ(pool.size(), kMany);
}

}  // namespace
}  // namespace qn::graph
