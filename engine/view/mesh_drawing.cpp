#include "engine/view/mesh_drawing.h"

#include <algorithm>
#include <cmath>

namespace qn::view {
namespace {

constexpr double kAmbient = 0.35;
constexpr double kGamma = 1 / 2.2;
constexpr std::array<float, 4> kPlain{0.6f, 0.6f, 0.6f, 1.0f};

using Linear = std::array<float, 4>;

/// The colour of each triangle, asked for in rising order.
class TriangleColours {
public:
    explicit TriangleColours(const k3::Mesh& mesh) : mesh_(mesh), groups_(mesh.GetGroups()) {
        std::stable_sort(groups_.begin(), groups_.end(),
                         [](const auto& a, const auto& b) { return a.firstIndex < b.firstIndex; });
    }

    const Linear& At(std::size_t index) {
        while (next_ < groups_.size() && groups_[next_].firstIndex <= index)
            present_ = &groups_[next_++];
        if (!present_ || index - present_->firstIndex >= present_->indexCount) return kPlain;
        const k3::MaterialSlot* const slot = mesh_.GetSlot(static_cast<int>(present_->slot));
        const k3::Material* const material = slot ? slot->GetMaterial() : nullptr;
        return material ? material->GetColour() : kPlain;
    }

private:
    const k3::Mesh& mesh_;
    std::vector<k3::MeshGroup> groups_;
    std::size_t next_ = 0;
    const k3::MeshGroup* present_ = nullptr;
};

Colour Lit(const Linear& colour, double light) {
    Colour lit;
    for (std::size_t i = 0; i < lit.size(); ++i) {
        const double value = std::clamp(static_cast<double>(colour[i]) * light, 0.0, 1.0);
        lit[i] = static_cast<std::uint8_t>(std::lround(std::pow(value, kGamma) * 255));
    }
    return lit;
}

Vector PositionOf(const k3::Mesh& mesh, std::uint32_t vertex) {
    const float* const first = mesh.GetPositions().data() + std::size_t{vertex} * 3;
    return {first[0], first[1], first[2]};
}

/// Both sides are lit alike, so the order of corners does not count.
double LightOn(const std::array<Vector, 3>& corners, const Vector& toward) {
    Vector first, second;
    for (std::size_t i = 0; i < first.size(); ++i) {
        first[i] = corners[1][i] - corners[0][i];
        second[i] = corners[2][i] - corners[0][i];
    }
    return kAmbient + (1 - kAmbient) * std::abs(Dot(Normalised(Cross(first, second)), toward));
}

bool IsSmallerThanAPixel(const Box& box, const Matrix4<double>& toWorld, const Camera& camera) {
    const ScreenPoint first = camera.Project(Mapped(box.Corner(0), toWorld));
    for (int corner = 1; corner < 8; ++corner) {
        const ScreenPoint other = camera.Project(Mapped(box.Corner(corner), toWorld));
        if (!(std::abs(other[0] - first[0]) < 1 && std::abs(other[1] - first[1]) < 1)) return false;
    }
    return true;
}

}  // namespace

bool IsFinite(const Vector& vector) {
    return std::isfinite(vector[0]) && std::isfinite(vector[1]) && std::isfinite(vector[2]);
}

Box BoxOf(const k3::Mesh& mesh) {
    Box box;
    const auto count = static_cast<std::uint32_t>(mesh.GetPositions().size() / 3);
    for (std::uint32_t vertex = 0; vertex < count; ++vertex)
        if (const Vector position = PositionOf(mesh, vertex); IsFinite(position)) box.Add(position);
    return box;
}

void DrawMesh(const k3::Mesh& mesh, const Box& box, const Matrix4<double>& toWorld, const Camera& camera,
              Raster& picture) {
    TriangleColours colours(mesh);
    if (IsSmallerThanAPixel(box, toWorld, camera)) {
        const ScreenPoint dot = camera.Project(Mapped(box.Corner(0), toWorld));
        if (!mesh.GetIndices().empty()) picture.Dot(dot, Lit(colours.At(0), 1));
        return;
    }
    const auto& indices = mesh.GetIndices();
    for (std::size_t i = 0; i + 2 < indices.size(); i += 3) {
        std::array<Vector, 3> corners;
        std::array<ScreenPoint, 3> seen;
        for (std::size_t corner = 0; corner < corners.size(); ++corner) {
            corners[corner] = Mapped(PositionOf(mesh, indices[i + corner]), toWorld);
            seen[corner] = camera.Project(corners[corner]);
        }
        picture.Fill(seen, Lit(colours.At(i), LightOn(corners, camera.Directions().toward)));
    }
}

}  // namespace qn::view
