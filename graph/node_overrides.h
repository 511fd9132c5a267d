#pragma once

#include "graph/graph.h"

namespace qn::graph {

/// Where a node says something else than the instance that it shows, that becomes a selector on the instance:
/// the node's path and the values that differ. Metadata counts as different. Nothing happens if nothing
/// differs.
void StoreNodeOverrides(k3::Node& node, LookupTable* table, const HierarchyElement& element,
                        Instance& instance);

}  // namespace qn::graph
