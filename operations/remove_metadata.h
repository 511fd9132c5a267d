#pragma once

#include "frame/host/var.h"

namespace qn {

namespace k3 {
class Node;
}

namespace graph {

class HierarchyOperation;

/// Takes metadata off one node and what it carries; `flags` of `LayerFlag`. With `keepSystem` the keys that
/// begin with "$" stay.
void RemoveMetadata(k3::Node& node, unsigned flags, bool keepSystem);
/// The operation's `RemoveNodeMetadata` on the node and everything below it.
void RemoveMetadataTree(HierarchyOperation& operation, k3::Node& root, unsigned flags, unsigned reserved,
                        bool keepSystem);
/// Takes every key out of a map that is no text or does not begin with "$", in place. Other values stay.
void PurgeMetadata(Var metadata);

}  // namespace graph
}  // namespace qn
