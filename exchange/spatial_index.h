#pragma once

#include "exchange/box.h"
#include "exchange/context_query.h"

#include <string>
#include <string_view>
#include <vector>

namespace qn::k3 {
class Node;
}

namespace qn::exchange {

/// Where one occurrence stands. `id` is the server id of its instance, `path` that of its scene node; one of
/// them may be empty.
struct IndexEntry {
    Box box;
    String id;
    String path;
};

/// Boxes of occurrences, millimetres, in scene coordinates.
struct SpatialIndex {
    double margin = 0;  ///< how far from a box still counts as near
    std::vector<IndexEntry> entries;
};

/// Reads the text of an index. False, with the line in the reason and the index empty, if it cannot be used.
bool ParseSpatialIndex(std::string_view text, SpatialIndex& index, ReadProblem& problem);
std::string FormatSpatialIndex(const SpatialIndex& index);

/// Every node at or below the top that shows a mesh and has one of the two ids. Ids with control characters,
/// which the text cannot hold, count as none.
SpatialIndex IndexOf(k3::Node& top);

}  // namespace qn::exchange
