#include "graph/child_list.h"

#include "graph/instance_impl.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

namespace {

using namespace qn;
using namespace qn::graph;

constexpr int kMany = 200;  // enough for an index

std::vector<Counted<InstanceImpl>> ManyInAddressOrder() {
    std::vector<Counted<InstanceImpl>> made;
    for (int i = 0; i < kMany; ++i)
        made.push_back(Make<InstanceImpl>());
    std::sort(made.begin(), made.end(),
              [](const auto& left, const auto& right) { return std::less<>()(left.Get(), right.Get()); });
    return made;
}

TEST(ChildList, KnowsItsEntriesInWhateverOrderTheyCame) {
    const auto made = ManyInAddressOrder();
    ChildList rising, falling;
    for (int i = 0; i < kMany; ++i) {
        EXPECT_FALSE(rising.Contains(made[static_cast<std::size_t>(i)].Get()));
        EXPECT_FALSE(falling.Contains(made[static_cast<std::size_t>(kMany - 1 - i)].Get()));
        rising.Append(made[static_cast<std::size_t>(i)].Get());
        falling.Append(made[static_cast<std::size_t>(kMany - 1 - i)].Get());
    }
    for (const auto& entry : made) {
        EXPECT_TRUE(rising.Contains(entry.Get()));
        EXPECT_TRUE(falling.Contains(entry.Get()));
    }
}

TEST(ChildList, ForgetsWhatIsTakenOut) {
    const auto made = ManyInAddressOrder();
    ChildList list;
    for (const auto& entry : made)
        list.Append(entry.Get());
    list.RemoveAt(kMany - 1);
    list.RemoveAt(0);
    EXPECT_FALSE(list.Contains(made.front().Get()));
    EXPECT_FALSE(list.Contains(made.back().Get()));
    EXPECT_EQ(list.GetCount(), kMany - 2);
}

TEST(ChildList, CountsDoubles) {
    const auto made = ManyInAddressOrder();
    ChildList list;
    for (const auto& entry : made)
        list.Append(entry.Get());
    list.Append(made[7].Get());
    list.RemoveAt(7);
    EXPECT_TRUE(list.Contains(made[7].Get()));
}

TEST(ChildList, NeverHoldsNull) {
    EXPECT_FALSE(ChildList().Contains(nullptr));
}

}  // namespace
