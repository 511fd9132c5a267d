#include "tool/invalid_paths.h"

#include "engine/scene/tree_walk.h"
#include "frame/host/parameter_ids.h"

#include <algorithm>

namespace assembly::tool {
namespace {

using qn::graph::Instance;
using qn::k3::Node;

Instance* InstanceOf(const Structure& structure, Node& node) {
    if (auto* own = qn::Cast<Instance>(node.GetParamVar(qn::Param::kInstance))) return own;
    return structure.table ? structure.table->GetInstanceOfNode(&node).Get() : nullptr;
}

}  // namespace

InvalidPaths::InvalidPaths(const Structure& structure, qn::k3::Scene& scene, const Validity& validity)
    : places_(1), roots_(structure.roots.size(), kNone) {
    for (std::size_t root = 0; root < structure.roots.size(); ++root) {
        const Top& top = structure.tops[root];
        rootsOfTop_[top.node].push_back(root);
        if (top.inContainer) rootInContainer_[structure.roots[root].instance] = root;
    }
    for (Node* node = scene.GetFirstChild(); node;) {
        const bool valid = validity.Allows(*node);
        if (!valid) Mark(structure, *node);
        node = valid && node->GetFirstChild() ? node->GetFirstChild() : qn::k3::NextBeside(node, &scene);
    }
}

void InvalidPaths::Mark(const Structure& structure, Node& node) {
    Path path;
    const Node* top = &node;
    for (Node* at = &node; at->GetParent() != at->GetScene(); at = at->GetParent()) {
        path.push_back(InstanceOf(structure, *at));
        top = at->GetParent();
    }
    std::reverse(path.begin(), path.end());
    const auto roots = rootsOfTop_.find(top);
    if (roots == rootsOfTop_.end()) return;
    if (path.empty() || !structure.tops[roots->second.front()].inContainer) {
        for (const std::size_t root : roots->second)
            MarkBelowRoot(root, path);
        return;
    }
    const auto root = rootInContainer_.find(path.front());
    if (root != rootInContainer_.end()) MarkBelowRoot(root->second, Path(path.begin() + 1, path.end()));
}

void InvalidPaths::MarkBelowRoot(std::size_t root, const Path& path) {
    const auto make = [this](std::uint32_t& place) {
        if (place == kNone) {
            place = static_cast<std::uint32_t>(places_.size());
            places_.emplace_back();
        }
        return place;
    };
    std::uint32_t place = make(roots_[root]);
    for (const Instance* instance : path) {
        std::uint32_t below = Below(place, instance);
        places_[place].below[instance] = make(below);
        place = below;
    }
    places_[place].invalid = true;
}

std::uint32_t InvalidPaths::Below(std::uint32_t place, const Instance* instance) const {
    const auto found = places_[place].below.find(instance);
    return found == places_[place].below.end() ? kNone : found->second;
}

}  // namespace assembly::tool
