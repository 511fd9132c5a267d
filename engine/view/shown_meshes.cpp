#include "engine/view/shown_meshes.h"

#include "graph/node_content.h"

namespace qn::view {

ShownNodes::ShownNodes(k3::Scene& scene, const k3::Viewport& viewport) : scene_(scene) {
    const k3::Layer* const layer = viewport.GetLayer();
    const PointerArray* const members = layer ? layer->GetMembers() : nullptr;
    for (int i = 0; members && i < members->GetCount(); ++i)
        if (const auto* const node = Cast<k3::Node>(members->Get(i)); node && node->GetScene() == &scene)
            members_.insert(node);
}

k3::Node* ShownNodes::Enter(std::vector<Level>& levels, k3::Node* node, bool shown,
                            const Matrix4<double>& toWorld) const {
    if (node->GetFlags() & NodeFlag::kHidden) {
        levels.push_back({nullptr, toWorld, false});
        return node;
    }
    Matrix4<double> place;
    node->GetMatrix(&place, 0);
    place.SetMul(place, toWorld);
    levels.push_back({node->GetFirstChild(), place, shown || members_.empty() || members_.count(node) != 0});
    return node;
}

/// The next node, with its level on top; null while only levels were left.
k3::Node* ShownNodes::Next(std::vector<Level>& levels) const {
    Level& level = levels.back();
    k3::Node* const node = level.next;
    if (!node) {
        levels.pop_back();
        return nullptr;
    }
    level.next = node->GetNextSibling();
    return Enter(levels, node, level.shown, Matrix4<double>(level.toWorld));
}

const k3::Mesh* ShownNodes::MeshOf(const k3::Node& node, const Level& level) {
    if (!level.shown) return nullptr;
    return Cast<k3::Mesh>(graph::BehindSubstitution(node.GetObject()));
}

Matrix4<double> ShownNodes::ContentPlace(const k3::Node& node, const Matrix4<double>& toWorld) {
    Matrix4<double> place;
    node.GetOwnMatrix(&place);
    place.SetMul(place, toWorld);
    return place;
}

}  // namespace qn::view
