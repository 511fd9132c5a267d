#include "frame/host/node.h"
#include "frame/host/scene_document.h"
#include "frame/host/selector.h"
#include "graph/element_changes.h"
#include "graph/node_maps.h"
#include "graph/node_matching.h"

#include <unordered_set>

namespace qn::graph {

namespace {

/// `node` and what is above it, up to the scene.
std::unordered_set<const k3::Node*> LineOf(const k3::Node& node) {
    std::unordered_set<const k3::Node*> line;
    const k3::Node* scene = node.GetScene();
    for (const k3::Node* above = &node; above && above != scene; above = above->GetParent())
        line.insert(above);
    return line;
}

bool IsBelow(const k3::Node* node, const k3::Node& above) {
    const k3::Node* scene = above.GetScene();
    while (node && node != scene && node != &above)
        node = node->GetParent();
    return node == &above;
}

k3::Node* Closest(const std::vector<k3::Node*>& candidates, const k3::Node& near) {
    const auto line = LineOf(near);
    for (k3::Node* candidate : candidates)
        if (line.count(candidate) != 0 || IsBelow(candidate, near)) return candidate;
    return nullptr;
}

}  // namespace

k3::Node* FindNodeNear(const Selector& selector, const InstanceToNodes& nodes, const k3::Node& near) {
    const Instance* first = selector.GetPathElement(0);
    if (!first) return nullptr;
    const auto candidates = nodes.NodesOf(first);
    if (candidates.size() == 1) return MatchPath(candidates.front(), selector);
    if (k3::Node* start = Closest(candidates, near)) return MatchPath(start, selector);
    for (k3::Node* start : candidates)
        if (k3::Node* found = MatchPath(start, selector)) return found;
    return nullptr;
}

}  // namespace qn::graph
