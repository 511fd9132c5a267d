#pragma once

#include "frame/host/scene_document.h"
#include "graph/reference.h"

#include <map>
#include <unordered_map>

namespace qn::graph {

/// For each structure of a scene, which node shows a definition first. Excluded nodes and what is below them
/// do not count.
class ShownNodes {
public:
    explicit ShownNodes(k3::Scene& scene);

    /// The first node of the definition in that structure (null stands for the scene's current one), or null.
    k3::Node* Find(const Interface* bom, const Reference* reference) const;

private:
    using FirstNodes = std::unordered_map<const Reference*, k3::Node*>;
    void Walk(k3::Node* root, FirstNodes& found);

    const Interface* current_;
    std::map<const Interface*, FirstNodes> byBom_;
};

/// Whether the node or one above it is excluded, by its flag, its instance or that one's definition.
bool IsExcluded(const k3::Node* node);

}  // namespace qn::graph
