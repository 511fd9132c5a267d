#include "exchange/content_boxes.h"

#include "graph/node_content.h"
#include "graph/node_walk.h"

#include <optional>
#include <unordered_map>

namespace qn::exchange {
namespace {

/// What the node shows, behind a substitution, if that is a mesh.
const k3::Mesh* MeshOf(const k3::Node& node) {
    return Cast<k3::Mesh>(graph::BehindSubstitution(node.GetObject()));
}

Box Measure(const k3::Mesh& mesh) {
    constexpr std::size_t kAxes = 3;
    Box box;
    const std::vector<float>& positions = mesh.GetPositions();
    for (std::size_t i = 0; i + kAxes <= positions.size(); i += kAxes)
        box.AddPoint({positions[i], positions[i + 1], positions[i + 2]});
    return box;
}

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
    graph::WalkBelow(top, world, [&](k3::Node& node, const Matrix4<double>& above) {
        Matrix4<double> place;
        node.GetMatrix(&place, 0);
        place.SetMul(place, above);
        take(node, place);
        return std::optional(place);
    });
}

}  // namespace qn::exchange
