#pragma once

#include "frame/host/node.h"
#include "graph/reference.h"

namespace qn::graph {

/// Writes what each node from `root` down shows to its instance, unset values too, but no server id.
void ApplyNodeToInstance(k3::Node* root);

/// Writes what the node shows to the definition, unset values too, but no server id; as metadata the merge of
/// all that the node has. Content of the node becomes the target.
void ApplyNodeToReference(k3::Node* node, Reference* reference);

}  // namespace qn::graph
