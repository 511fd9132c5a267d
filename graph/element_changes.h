#pragma once

#include "frame/host/string.h"
#include "graph/graph.h"

#include <map>

namespace qn::graph {

class InstanceToNodes;
class NodeToInstance;

/// Takes what the elements say over to `node` and everything below it, parents first, siblings in order:
/// links become weak node links, metadata that the definition carries already goes out of instance, node and
/// selectors, PMI gets its name. `path` names PMI where the nodes above do not. `table` may be null.
/// `answers` remembers the node of each listed link.
void ApplyElementsToNodes(k3::Node& node, const String& path, LookupTable* table,
                          const InstanceToNodes& nodes, std::map<PersistentSelector*, k3::Node*>& answers);

/// The way back at and below `node`: node links become stored selectors in properties 9 and 0x19 of the
/// instances.
void StoreNodeLinks(k3::Node& node, const NodeToInstance& instances);

/// The node that a selector leads to, borrowed, or null. Of several nodes that show its first element the
/// first one (in address order) is taken that is `near`, above it or below it; without such a one the first
/// that leads anywhere.
k3::Node* FindNodeNear(const Selector& selector, const InstanceToNodes& nodes, const k3::Node& near);

}  // namespace qn::graph
