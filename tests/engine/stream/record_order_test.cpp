#include "engine/stream/record_order.h"

#include "engine/stream/pointer_index.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using Order = std::vector<std::uint32_t>;

/// The order of a graph that is given as the targets of each object.
Order OrderOf(const std::vector<Order>& targets, std::uint32_t root = 0) {
    scene_file::ReferenceGraph graph;
    graph.Resize(targets.size());
    for (std::size_t i = 0; i < targets.size(); ++i) {
        graph.SetTargets(i, graph.Targets().size(), targets[i].size());
        graph.Targets().insert(graph.Targets().end(), targets[i].begin(), targets[i].end());
    }
    return OrderFrom(graph, root);
}

TEST(RecordOrder, PutsWhatIsNamedFirst) {
    EXPECT_EQ(OrderOf({{1, 2}, {2}, {}}), (Order{2, 1, 0}));
}

TEST(RecordOrder, KeepsTheOrderOfTheReferences) {
    EXPECT_EQ(OrderOf({{2, 1, 3}, {}, {}, {}}), (Order{2, 1, 3, 0}));
}

TEST(RecordOrder, EndsWithTheRootOfARing) {
    EXPECT_EQ(OrderOf({{1}, {2}, {0, 1, 2}}), (Order{2, 1, 0}));
}

TEST(RecordOrder, LeavesOutWhatTheRootDoesNotReach) {
    EXPECT_EQ(OrderOf({{}, {2}, {0}}, 2), (Order{0, 2}));
}

TEST(RecordOrder, GoesThroughAMillionLevels) {
    std::vector<Order> chain(1'000'000);
    for (std::uint32_t i = 0; i + 1 < chain.size(); ++i)
        chain[i] = {i + 1};

    EXPECT_EQ(OrderOf(chain).front(), 999'999u);
}

TEST(PointerIndex, FindsEveryNumberAgain) {
    std::vector<int> objects(10'000);
    PointerIndex index;
    EXPECT_EQ(index.Find(&objects[0]), PointerIndex::kNone);

    for (std::uint32_t i = 0; i < objects.size(); i += 2)
        index.Insert(&objects[i], i);

    for (std::uint32_t i = 0; i < objects.size(); ++i)
        EXPECT_EQ(index.Find(&objects[i]), i % 2 == 0 ? i : PointerIndex::kNone);
    index.Clear();
    EXPECT_EQ(index.Find(&objects[0]), PointerIndex::kNone);
}

}  // namespace
}  // namespace qn::test
