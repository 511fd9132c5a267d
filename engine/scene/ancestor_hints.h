#pragma once

#include "frame/host/node.h"

#include <unordered_map>
#include <vector>

namespace qn::k3 {

/// Finds the top of trees that only grow together, as they do in a load. Remembers ancestors that it passed,
/// so that many questions cost little more than one climb.
class AncestorHints {
public:
    /// The ancestor of the node that has no parent; the node itself if that is so.
    const Node* TopOf(const Node& node) {
        path_.clear();
        const Node* at = &node;
        while (const Node* above = Above(*at)) {
            path_.push_back(at);
            at = above;
        }
        for (const Node* passed : path_)
            hints_[passed] = at;
        return at;
    }

private:
    /// Some ancestor, or null.
    const Node* Above(const Node& node) const {
        const auto known = hints_.find(&node);
        return known == hints_.end() ? node.GetParent() : known->second;
    }

    std::unordered_map<const Node*, const Node*> hints_;
    std::vector<const Node*> path_;
};

}  // namespace qn::k3
