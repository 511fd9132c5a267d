#include "importers/step/kernel/kernel_mesher.h"

#include "importers/step/step_transform.h"

#include <Bnd_Box.hxx>
#include <BRep_Tool.hxx>
#include <BRepBndLib.hxx>
#include <BRepMesh_IncrementalMesh.hxx>
#include <gp_Trsf.hxx>
#include <IMeshTools_Parameters.hxx>
#include <Poly_Triangulation.hxx>
#include <TopExp_Explorer.hxx>
#include <TopLoc_Location.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Face.hxx>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace qn::step {
namespace {

constexpr double kToleranceShare = 1e-3;   ///< of the diagonal, if no tolerance is given
constexpr double kFinestTolerance = 1e-6;  ///< millimetres
constexpr double kFinestAngle = 1;         ///< degrees

/// The place of a face as a transform of ours.
Transform FromLocation(const TopLoc_Location& location) {
    const gp_Trsf& t = location.Transformation();
    Transform result = kIdentity;
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column)
            result[static_cast<std::size_t>(row * 4 + column)] = t.Value(column + 1, row + 1);
        result[static_cast<std::size_t>(12 + row)] = t.Value(row + 1, 4);
    }
    return result;
}

std::array<double, 3> Apply(const Transform& m, const gp_Pnt& p) {
    std::array<double, 3> result{};
    for (std::size_t k = 0; k < 3; ++k)
        result[k] = p.X() * m[k] + p.Y() * m[4 + k] + p.Z() * m[8 + k] + m[12 + k];
    return result;
}

bool Mirrors(const Transform& m) {
    const double determinant = m[0] * (m[5] * m[10] - m[6] * m[9]) - m[1] * (m[4] * m[10] - m[6] * m[8]) +
                               m[2] * (m[4] * m[9] - m[5] * m[8]);
    return determinant < 0;
}

/// Collects triangles by colour, so that each colour becomes one part.
class MeshBuilder {
public:
    void AddFace(const TopoDS_Face& face, const Transform& toDefinition,
                 const std::optional<Colour>& colour) {
        TopLoc_Location location;
        const Handle(Poly_Triangulation) triangles = BRep_Tool::Triangulation(face, location);
        if (triangles.IsNull()) return;
        const Transform place = Then(FromLocation(location), toDefinition);
        const auto first = static_cast<std::uint32_t>(mesh_.positions.size() / 3);
        for (int i = 1; i <= triangles->NbNodes(); ++i)
            for (const double coordinate : Apply(place, triangles->Node(i)))
                mesh_.positions.push_back(static_cast<float>(coordinate));
        mesh_.normals.resize(mesh_.positions.size(), 0);
        const bool isTurned = (face.Orientation() == TopAbs_REVERSED) != Mirrors(place);
        auto& indices = IndicesOf(colour);
        for (int i = 1; i <= triangles->NbTriangles(); ++i) {
            int a = 0;
            int b = 0;
            int c = 0;
            triangles->Triangle(i).Get(a, b, c);
            if (isTurned) std::swap(b, c);
            const std::array<std::uint32_t, 3> corners = {first + static_cast<std::uint32_t>(a - 1),
                                                          first + static_cast<std::uint32_t>(b - 1),
                                                          first + static_cast<std::uint32_t>(c - 1)};
            indices.insert(indices.end(), corners.begin(), corners.end());
            AddNormal(corners);
        }
    }

    MeshData Finish() {
        for (std::size_t i = 0; i + 2 < mesh_.normals.size(); i += 3)
            Normalise(&mesh_.normals[i]);
        for (auto& [colour, indices] : parts_) {
            if (indices.empty()) continue;
            MeshPart part;
            part.colour = colour;
            part.firstIndex = static_cast<std::uint32_t>(mesh_.indices.size());
            part.indexCount = static_cast<std::uint32_t>(indices.size());
            mesh_.indices.insert(mesh_.indices.end(), indices.begin(), indices.end());
            mesh_.parts.push_back(part);
        }
        return std::move(mesh_);
    }

private:
    struct Part {
        std::optional<Colour> colour;
        std::vector<std::uint32_t> indices;
    };

    std::vector<std::uint32_t>& IndicesOf(const std::optional<Colour>& colour) {
        const auto found = std::find_if(parts_.begin(), parts_.end(),
                                        [&](const Part& part) { return part.colour == colour; });
        return found != parts_.end() ? found->indices : parts_.emplace_back(Part{colour, {}}).indices;
    }

    /// Adds the triangle's normal, as long as its area is large, to its corners.
    void AddNormal(const std::array<std::uint32_t, 3>& corners) {
        const auto at = [&](std::size_t corner, std::size_t axis) {
            return static_cast<double>(mesh_.positions[corners[corner] * 3 + axis]);
        };
        std::array<double, 3> u{};
        std::array<double, 3> v{};
        for (std::size_t axis = 0; axis < 3; ++axis) {
            u[axis] = at(1, axis) - at(0, axis);
            v[axis] = at(2, axis) - at(0, axis);
        }
        const std::array<double, 3> normal = {u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2],
                                              u[0] * v[1] - u[1] * v[0]};
        for (const std::uint32_t corner : corners)
            for (std::size_t axis = 0; axis < 3; ++axis)
                mesh_.normals[corner * 3 + axis] += static_cast<float>(normal[axis]);
    }

    static void Normalise(float* v) {
        const float length = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
        if (!(length > 0)) {
            v[2] = 1;
            return;
        }
        for (int i = 0; i < 3; ++i)
            v[i] /= length;
    }

    MeshData mesh_;
    std::vector<Part> parts_;
};

double Diagonal(const std::vector<PlacedShape>& shapes) {
    Bnd_Box box;
    for (const PlacedShape& placed : shapes)
        BRepBndLib::Add(placed.shape, box, false);
    return box.IsVoid() || box.IsOpen() ? 0 : std::sqrt(box.SquareExtent());
}

}  // namespace

MeshData MeshShapes(const std::vector<PlacedShape>& shapes, const FaceColours& colours,
                    const Tessellation& tessellation, KernelWatch& watch) {
    const double wanted =
        tessellation.tolerance > 0 ? tessellation.tolerance : Diagonal(shapes) * kToleranceShare;
    IMeshTools_Parameters parameters;
    parameters.Deflection = std::max(wanted, kFinestTolerance);
    parameters.Angle = std::max(tessellation.angle, kFinestAngle) * std::numbers::pi / 180;
    MeshBuilder builder;
    for (const PlacedShape& placed : shapes) {
        const BRepMesh_IncrementalMesh mesher(placed.shape, parameters, watch.Range());
        for (TopExp_Explorer at(placed.shape, TopAbs_FACE); at.More(); at.Next()) {
            const TopoDS_Face& face = TopoDS::Face(at.Current());
            const auto own = colours.find(face.TShape().get());
            builder.AddFace(face, placed.toDefinition, own != colours.end() ? own->second : placed.colour);
        }
    }
    return builder.Finish();
}

}  // namespace qn::step
