#include "exchange/content_boxes.h"

#include <unordered_map>
#include <vector>

namespace qn::exchange {
namespace {

/// What the node shows, behind a substitution, if that is a mesh.
const k3::Mesh* MeshOf(const k3::Node& node) {
    k3::Object3D* object = node.GetObject();
    if (const auto* substitution = Cast<k3::MaterialSubstitution>(object))
        object = substitution->GetSubstituted();
    return Cast<k3::Mesh>(object);
}

Box Measure(const k3::Mesh& mesh) {
    constexpr std::size_t kAxes = 3;
    Box box;
    const std::vector<float>& positions = mesh.GetPositions();
    for (std::size_t i = 0; i + kAxes <= positions.size(); i += kAxes)
        box.AddPoint({positions[i], positions[i + 1], positions[i + 2]});
    return box;
}

/// A node whose remaining siblings are still to be visited, and the place of their parent.
struct Level {
    k3::Node* next;
    Matrix4<double> parent;
};

}  // namespace

void ForEachContentBox(k3::Node& top, const ContentBoxFunction& visit) {
    std::unordered_map<const k3::Mesh*, Box> measured;
    const auto take = [&](k3::Node& node, const Matrix4<double>& world) {
        const k3::Mesh* mesh = MeshOf(node);
        if (!mesh) return;
        const auto [entry, isNew] = measured.try_emplace(mesh);
        if (isNew) entry->second = Measure(*mesh);
        Matrix4<double> place;
        node.GetOwnMatrix(&place);
        place.SetMul(place, world);
        const Box box = entry->second.Mapped(place);
        if (!box.isEmpty && box.IsFinite()) visit(node, box);
    };
    const Matrix4<double> world = top.GetWorldMatrix();
    take(top, world);
    std::vector<Level> levels{{top.GetFirstChild(), world}};
    while (!levels.empty()) {
        k3::Node* node = levels.back().next;
        if (!node) {
            levels.pop_back();
            continue;
        }
        levels.back().next = node->GetNextSibling();
        Matrix4<double> place;
        node->GetMatrix(&place, 0);
        place.SetMul(place, levels.back().parent);
        take(*node, place);
        if (node->GetFirstChild()) levels.push_back({node->GetFirstChild(), place});
    }
}

}  // namespace qn::exchange
