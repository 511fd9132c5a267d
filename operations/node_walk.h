#pragma once

#include "frame/host/node.h"

namespace qn::graph {

/// The node that follows in the subtree of `root`, parents first, siblings in order; null at the end.
inline k3::Node* NextInSubtree(k3::Node* node, const k3::Node& root) {
    if (k3::Node* const child = node->GetFirstChild()) return child;
    while (node && node != &root) {
        if (k3::Node* const sibling = node->GetNextSibling()) return sibling;
        node = node->GetParent();
    }
    return nullptr;
}

/// Calls `visit(k3::Node&)` for `root` and everything below it. It must not change the tree.
template <class Visit>
void WalkNodes(k3::Node& root, Visit&& visit) {
    for (k3::Node* node = &root; node; node = NextInSubtree(node, root))
        visit(*node);
}

}  // namespace qn::graph
