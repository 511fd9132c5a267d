#include "engine/view/picture.h"

#include "engine/view/camera.h"
#include "engine/view/mesh_drawing.h"
#include "engine/view/shown_meshes.h"

#include <unordered_map>

namespace qn::view {
namespace {

constexpr Colour kBackground{255, 255, 255};
constexpr int kCorners = 8;

/// The extent of each mesh in its own space, measured once.
class MeshBoxes {
public:
    const Box& Of(const k3::Mesh& mesh) {
        const auto [place, isNew] = boxes_.try_emplace(&mesh);
        if (isNew) place->second = BoxOf(mesh);
        return place->second;
    }

private:
    std::unordered_map<const k3::Mesh*, Box> boxes_;
};

Axes AxesOfView(const k3::Viewport& viewport) {
    const k3::Node* const camera = viewport.GetViewNode();
    return camera ? AxesOf(camera->GetWorldMatrix()) : IsometricAxes();
}

/// All that is shown, measured along the axes.
Box Extent(const ShownNodes& shown, const Axes& axes, MeshBoxes& boxes) {
    Box extent;
    shown.VisitMeshes([&](const k3::Mesh& mesh, const Matrix4<double>& toWorld) {
        const Box& box = boxes.Of(mesh);
        for (int corner = 0; !box.IsEmpty() && corner < kCorners; ++corner) {
            const Vector seen = AlongAxes(Mapped(box.Corner(corner), toWorld), axes);
            if (IsFinite(seen)) extent.Add(seen);
        }
    });
    return extent;
}

}  // namespace

Raster DrawView(k3::Scene& scene, const k3::Viewport& viewport, int pixels) {
    const ShownNodes shown(scene, viewport);
    const Axes axes = AxesOfView(viewport);
    MeshBoxes boxes;
    const Camera camera(axes, Extent(shown, axes, boxes), pixels);
    Raster picture(pixels, pixels, kBackground);
    shown.VisitMeshes([&](const k3::Mesh& mesh, const Matrix4<double>& toWorld) {
        const Box& box = boxes.Of(mesh);
        if (!box.IsEmpty()) DrawMesh(mesh, box, toWorld, camera, picture);
    });
    return picture;
}

}  // namespace qn::view
