#include "tests/support/assembly_shape.h"

#include <algorithm>

namespace qn::test {
namespace {

constexpr int kSharedWidth = 10;

/// Definitions that the root reaches, each before those that it uses; those in or below a ring are missing.
std::vector<int> ParentsFirst(const AssemblyShape& shape) {
    std::vector<int> uses(shape.definitions.size(), 0);
    for (const auto& definition : shape.definitions) {
        for (const int child : definition.children)
            ++uses[static_cast<std::size_t>(child)];
    }
    std::vector<int> order;
    for (std::size_t i = 0; i < uses.size(); ++i) {
        if (uses[i] == 0) order.push_back(static_cast<int>(i));
    }
    for (std::size_t next = 0; next < order.size(); ++next) {
        for (const int child : shape.definitions[static_cast<std::size_t>(order[next])].children) {
            if (--uses[static_cast<std::size_t>(child)] == 0) order.push_back(child);
        }
    }
    return order;
}

/// How often each definition occurs below the root.
std::vector<std::int64_t> OccurrencesOf(const AssemblyShape& shape) {
    std::vector<std::int64_t> times(shape.definitions.size(), 0);
    if (!times.empty()) times[0] = 1;
    for (const int parent : ParentsFirst(shape)) {
        for (const int child : shape.definitions[static_cast<std::size_t>(parent)].children) {
            times[static_cast<std::size_t>(child)] += times[static_cast<std::size_t>(parent)];
        }
    }
    return times;
}

}  // namespace

std::int64_t CountOccurrences(const AssemblyShape& shape) {
    std::int64_t sum = 0;
    for (const std::int64_t times : OccurrencesOf(shape))
        sum += times;
    return sum;
}

std::int64_t CountUses(const AssemblyShape& shape) {
    const auto times = OccurrencesOf(shape);
    std::int64_t sum = 0;
    for (std::size_t i = 0; i < times.size(); ++i) {
        if (times[i] > 0) sum += static_cast<std::int64_t>(shape.definitions[i].children.size());
    }
    return sum;
}

bool IsCyclic(const AssemblyShape& shape) {
    return ParentsFirst(shape).size() != shape.definitions.size();
}

AssemblyShape SharedShape(std::int64_t occurrences) {
    int levels = 1;
    for (std::int64_t total = 1 + kSharedWidth, last = kSharedWidth;
         total + last * kSharedWidth <= occurrences;) {
        last *= kSharedWidth;
        total += last;
        ++levels;
    }
    AssemblyShape shape;
    shape.definitions.push_back({"shared", {}});
    for (int level = 0; level < levels; ++level) {
        const int first = static_cast<int>(shape.definitions.size());
        for (int i = 0; i < kSharedWidth; ++i) {
            shape.definitions.push_back({"part " + std::to_string(level) + "." + std::to_string(i), {}});
        }
        const int parents = level == 0 ? 1 : kSharedWidth;
        for (int parent = first - parents; parent < first; ++parent) {
            for (int i = 0; i < kSharedWidth; ++i) {
                shape.definitions[static_cast<std::size_t>(parent)].children.push_back(first + i);
            }
        }
    }
    return shape;
}

AssemblyShape FlatShape(std::int64_t occurrences) {
    AssemblyShape shape;
    shape.definitions.push_back({"flat", {}});
    for (int i = 1; i < occurrences; ++i) {
        shape.definitions.push_back({"part " + std::to_string(i), {}});
        shape.definitions[0].children.push_back(i);
    }
    return shape;
}

AssemblyShape DeepShape(std::int64_t occurrences) {
    AssemblyShape shape;
    shape.definitions.push_back({"deep", {}});
    for (int i = 1; i < occurrences; ++i) {
        shape.definitions.push_back({"level " + std::to_string(i), {}});
        shape.definitions[static_cast<std::size_t>(i) - 1].children.push_back(i);
    }
    return shape;
}

}  // namespace qn::test
