#pragma once

#include "frame/host/counted.h"
#include "graph/graph.h"

namespace qn::graph {

/// The instance that stands for a node: the one that the node carries, the known one of the same server id,
/// one made from a description that the node carries, or a new one. `table` may be null: nothing gets ids
/// then, and the result is kept on the node. `element` answers the node's properties. What the node says
/// beyond its carried instance becomes a selector.
Counted<Instance> InstanceForNode(k3::Node& node, LookupTable* table, const HierarchyElement& element);

}  // namespace qn::graph
