#pragma once

#include "graph/instance.h"
#include "graph/reference.h"

#include <algorithm>
#include <cstdint>
#include <unordered_map>
#include <vector>

namespace qn::graph {

/// The uses below a definition, each counted as often as it occurs, or `most` + 1 if there are more. Visits
/// every definition once; one within itself is not entered again. Calls nothing but the classes' own
/// interfaces.
inline std::int64_t CountOccurrences(const Reference& root, std::int64_t most) {
    struct Level {
        const Reference* definition;
        int next = 0;
        std::int64_t count = 0;
    };
    std::unordered_map<const Reference*, std::int64_t> known{{&root, 0}};
    std::vector<Level> levels{{&root}};
    while (true) {
        Level& level = levels.back();
        if (level.next < level.definition->GetChildCount()) {
            const Counted<Instance> child = level.definition->GetChild(level.next++);
            const Reference* used = child ? child->GetReference() : nullptr;
            level.count = std::min(level.count + (child ? 1 : 0), most + 1);
            if (!used) continue;
            const auto [entry, isNew] = known.try_emplace(used, 0);
            if (isNew)
                levels.push_back({used});
            else
                level.count = std::min(level.count + entry->second, most + 1);
            continue;
        }
        const std::int64_t count = known[level.definition] = level.count;
        levels.pop_back();
        if (levels.empty()) return count;
        levels.back().count = std::min(levels.back().count + count, most + 1);
    }
}

}  // namespace qn::graph
