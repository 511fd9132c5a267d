#pragma once

namespace qn::k3 {

class Node;

/// Ties each node of two trees of the same form, walked in step, to its counterpart, siblings of `first` and
/// `second` included: the metadata "$QN.BOM.LINK" of both gets one shared map, whose "Links" lists all nodes
/// that are this node in any structure. A node without parent keeps what it had.
void LinkNodes(Node* first, Node* second);

}  // namespace qn::k3
