#pragma once

#include "frame/host/layer.h"
#include "frame/host/scene_document.h"
#include "services/top_level_nodes.h"

#include <unordered_set>
#include <vector>

namespace qn::graph {

/// Every node of the scene, those of structures that are not shown included. Collected when first asked for.
class SceneNodes {
public:
    explicit SceneNodes(k3::Scene& scene) : scene_(scene) {}
    bool Has(const Interface* object) {
        if (!collected_) Collect();
        return nodes_.contains(object);
    }

private:
    void Collect() {
        collected_ = true;
        for (k3::Node* const top : TopLevelNodes(&scene_))
            top->Visit(0, &Add, reinterpret_cast<ParamWord>(&nodes_));
    }
    static bool Add(k3::Node* node, ParamWord nodes) {
        reinterpret_cast<std::unordered_set<const Interface*>*>(nodes)->insert(node);
        return true;
    }

    k3::Scene& scene_;
    bool collected_ = false;
    std::unordered_set<const Interface*> nodes_;
};

/// Members of a layer that should not be there, in its order, borrowed.
struct StrayMembers {
    std::vector<Interface*> orphaned;  ///< nodes that left the scene
    std::vector<Interface*> invalid;   ///< no nodes at all
    bool IsEmpty() const { return orphaned.empty() && invalid.empty(); }
};

inline StrayMembers ClassifyMembers(const k3::Layer& layer, SceneNodes& sceneNodes) {
    StrayMembers stray;
    const PointerArray* const members = layer.GetMembers();
    for (int i = 0; members && i < members->GetCount(); ++i) {
        Interface* const member = members->Get(i);
        if (!member || sceneNodes.Has(member)) continue;
        (member->IsTypeOf("k3_node") ? stray.orphaned : stray.invalid).push_back(member);
    }
    return stray;
}

}  // namespace qn::graph
