#pragma once

#include "frame/host/node.h"

#include <optional>
#include <utility>
#include <vector>

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

/// Walks what is below `root`, parents first, siblings in order, and hands something down on the way:
/// `visit(k3::Node&, const Given&)` gets what its parent gives (`given` for the children of `root`) and
/// answers an optional with what its own children get; without a value they are left out. It must not change
/// the tree.
template <class Given, class Visit>
void WalkBelow(const k3::Node& root, Given given, Visit&& visit) {
    struct Level {
        k3::Node* next;  // whose turn it is
        Given given;
    };
    std::vector<Level> levels;
    levels.push_back({root.GetFirstChild(), std::move(given)});
    while (!levels.empty()) {
        k3::Node* const node = levels.back().next;
        if (!node) {
            levels.pop_back();
            continue;
        }
        levels.back().next = node->GetNextSibling();
        std::optional<Given> below = visit(*node, std::as_const(levels.back().given));
        if (below && node->GetFirstChild()) levels.push_back({node->GetFirstChild(), *std::move(below)});
    }
}

}  // namespace qn::graph
