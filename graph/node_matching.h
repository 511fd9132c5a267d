#pragma once

#include "graph/graph.h"

namespace qn::graph {

class NodeToInstance;

/// The node at the end of the selector's path when `start` stands for its first element, borrowed, or null.
/// Instances are those that the nodes carry. Each step takes the first child that shows the next element;
/// later siblings are not tried.
k3::Node* MatchPath(k3::Node* start, const Selector& selector);

/// The same with the instances of a map; nodes without entry match nothing.
k3::Node* MatchPath(k3::Node* start, const Selector& selector, const NodeToInstance& instances);

}  // namespace qn::graph
