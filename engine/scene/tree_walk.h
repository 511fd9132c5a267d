#pragma once

#include "frame/host/node.h"

namespace qn::k3 {

/// The node after `node` in the subtree of `root` that does not stand below `node`, or null.
inline Node* NextBeside(Node* node, const Node* root) {
    while (node != root) {
        if (Node* next = node->GetNextSibling()) return next;
        node = node->GetParent();
        if (!node) return nullptr;
    }
    return nullptr;
}

/// The node after `node` in the subtree of `root`, parents first, siblings in order; null at the end.
inline Node* NextInSubtree(Node* node, const Node* root) {
    if (Node* child = node->GetFirstChild()) return child;
    return NextBeside(node, root);
}

/// Calls `visit(Node&)` for `root` and everything below it, parents first. It must not change the tree.
template <class Visit>
void WalkSubtree(Node& root, Visit&& visit) {
    for (Node* node = &root; node; node = NextInSubtree(node, &root))
        visit(*node);
}

}  // namespace qn::k3
