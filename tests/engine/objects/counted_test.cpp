#include "frame/host/counted.h"
#include "frame/host/collections.h"

#include <gtest/gtest.h>
#include <unordered_set>

namespace qn {
namespace {

TEST(Counted, AddsOnCopyAndReleasesAtScopeEnd) {
    const auto map = VarMap::Create();
    EXPECT_EQ(map->GetRefCount(), 1);
    {
        const Counted<VarMap> copy(map);
        const Counted<Interface> base(map);
        EXPECT_EQ(map->GetRefCount(), 3);
    }
    EXPECT_EQ(map->GetRefCount(), 1);
}

TEST(Counted, BorrowsOrAdopts) {
    auto map = VarMap::Create();
    const Counted<VarMap> shared(map.Get());
    EXPECT_EQ(map->GetRefCount(), 2);
    const auto adopted = Counted<VarMap>::Adopt(map.Detach());
    EXPECT_EQ(adopted->GetRefCount(), 2);
}

TEST(Counted, TakesTheNewObjectBeforeItDropsTheOldOne) {
    auto outer = VarArray::Create();
    outer->Add(Var(VarArray::Create()));
    outer = Counted<VarArray>(outer->Get(0).ToArray());
    EXPECT_EQ(outer->GetCount(), 0);
    EXPECT_EQ(outer->GetRefCount(), 1);
}

TEST(Counted, MovesWithoutCounting) {
    auto map = VarMap::Create();
    const Counted<Interface> moved(std::move(map));
    EXPECT_FALSE(map);
    EXPECT_EQ(moved->GetRefCount(), 1);
}

TEST(Counted, CastKeepsTheCountOrDropsIt) {
    const Counted<Interface> object = VarMap::Create();
    EXPECT_EQ(CountedCast<VarMap>(object)->GetRefCount(), 2);
    EXPECT_FALSE(CountedCast<VarArray>(object));
    EXPECT_EQ(object->GetRefCount(), 1);
}

TEST(Counted, ComparesAndHashesByPointer) {
    const auto map = VarMap::Create();
    const std::unordered_set<Counted<VarMap>> set{map, Counted<VarMap>(map), VarMap::Create()};
    EXPECT_EQ(set.size(), 2u);
    EXPECT_TRUE(map == map.Get());
}

}  // namespace
}  // namespace qn
