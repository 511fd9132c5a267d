#pragma once

#include "frame/host/collections.h"
#include "frame/host/scene_document.h"
#include "product/bom.h"

#include <vector>

namespace qn::graph {

inline void AppendChildren(const k3::Node& parent, std::vector<k3::Node*>& nodes) {
    for (k3::Node* child = parent.GetFirstChild(); child; child = child->GetNextSibling())
        nodes.push_back(child);
}

/// The nodes that stand at the top of any structure of the scene, borrowed, in order: the scene's children
/// for the current structure, the listed nodes of every other. A scene without structures has its children
/// alone; one whose structures are all not current leaves its children out. Empty for null.
inline std::vector<k3::Node*> TopLevelNodes(k3::Scene* scene) {
    std::vector<k3::Node*> nodes;
    if (!scene) return nodes;
    const k3::BomHelper helper(scene);
    const Interface* const current = helper.GetCurrentBom();
    const VarArray* const boms = helper.GetBoms();
    bool hasBom = false;
    for (int i = 0; boms && i < boms->GetCount(); ++i) {
        const auto* const bom = Cast<k3::Bom>(boms->Get(i));
        if (!bom) continue;
        hasBom = true;
        if (bom == current) {
            AppendChildren(*scene, nodes);
            continue;
        }
        const Var listed = bom->GetNodes();
        for (int n = 0; n < listed.size(); ++n)
            if (auto* const node = Cast<k3::Node>(listed.ValueAt(n))) nodes.push_back(node);
    }
    if (!hasBom) AppendChildren(*scene, nodes);
    return nodes;
}

}  // namespace qn::graph
