#include "importers/gltf/mesh_reader.h"

#include "importers/gltf/accessor_reader.h"
#include "importers/gltf/draco_primitive.h"
#include "importers/gltf/gltf_assembly_extras.h"
#include "importers/gltf/gltf_error.h"
#include "importers/gltf/gltf_extras_keys.h"
#include "importers/gltf/gltf_limits.h"
#include "importers/gltf/gltf_metadata.h"

#include <cmath>
#include <map>
#include <numeric>

namespace qn::gltf {
namespace {

constexpr int kTriangles = 4, kStrip = 5, kFan = 6;

/// Corners of a strip or fan, three for each triangle. Every second triangle of a strip turns the other way.
std::vector<std::uint32_t> ToTriangles(std::vector<std::uint32_t> corners, int mode) {
    if (mode == kTriangles) return corners;
    std::vector<std::uint32_t> triangles;
    for (std::size_t i = 2; i < corners.size(); ++i) {
        const bool isOdd = mode == kStrip && i % 2 == 1;
        const std::uint32_t first = mode == kFan ? corners[0] : corners[i - (isOdd ? 1 : 2)];
        const std::uint32_t second = mode == kStrip && isOdd ? corners[i - 2] : corners[i - 1];
        triangles.insert(triangles.end(), {first, second, corners[i]});
    }
    return triangles;
}

/// Puts the primitives of one mesh together.
class MeshBuilder {
public:
    MeshBuilder(const Model& model, BufferStore& store, double scale)
        : model_(model), store_(store), scale_(scale) {}

    void Add(const Primitive& primitive, std::uint32_t slot, const std::string& place) {
        std::vector<std::uint32_t> corners;
        const Vertices vertices = primitive.dracoView == kNone ? AddPlain(primitive, corners, place)
                                                               : AddPacked(primitive, corners, place);
        if (primitive.mode != kTriangles) TakeCorners(3 * corners.size(), place);
        corners = ToTriangles(std::move(corners), primitive.mode);
        if (corners.size() % 3 != 0)
            FailAt(place,
                   "expected three corners for each triangle, found " + std::to_string(corners.size()));
        CheckSize(indices_.size() + corners.size(), place);
        const auto first = static_cast<std::uint32_t>(indices_.size());
        if (indices_.empty()) indices_.reserve(corners.size());  // later ones let it grow in proportion
        for (const std::uint32_t corner : corners) {
            if (corner >= vertices.count)
                FailAt(place + "/indices", "expected indices below " + std::to_string(vertices.count) +
                                               ", found " + std::to_string(corner));
            indices_.push_back(vertices.first + corner);
        }
        if (!corners.empty()) groups_.push_back({first, static_cast<std::uint32_t>(corners.size()), slot});
    }

    bool IsEmpty() const { return indices_.empty(); }

    bool Finish(k3::Mesh& mesh) {
        for (float& length : positions_)
            length = static_cast<float>(length * scale_);
        if (!hasAllNormals_) normals_.clear();
        indices_.shrink_to_fit();
        return mesh.SetGeometry(std::move(positions_), std::move(normals_), std::move(indices_),
                                std::move(groups_));
    }

private:
    struct Vertices {
        std::uint32_t first = 0;
        std::uint32_t count = 0;
    };

    std::uint32_t VertexCount() const { return static_cast<std::uint32_t>(positions_.size() / 3); }

    static void CheckSize(std::size_t count, const std::string& place) {
        if (count > gltf_limits::kMostVertices)
            FailAt(place,
                   "expected at most " + std::to_string(gltf_limits::kMostVertices) +
                       " vertices, and corners, in one mesh, with this it is " + std::to_string(count),
                   LoadFailure::kLimit);
    }

    void TakeCorners(std::size_t count, const std::string& place) {
        store_.GetAllowance().Take(count * sizeof(std::uint32_t), place);
    }

    /// Vertices that primitives share are stored once.
    Vertices AddPlain(const Primitive& primitive, std::vector<std::uint32_t>& corners,
                      const std::string& place) {
        const auto [known, isNew] = shared_.try_emplace({primitive.positions, primitive.normals}, Vertices{});
        if (isNew) {
            std::vector<float> normals;
            std::vector<float> positions = ReadFloats(store_, model_, primitive.positions, 3);
            if (primitive.normals != kNone) normals = ReadFloats(store_, model_, primitive.normals, 3);
            known->second = AddVertices(positions, normals, PointerTo("accessors", primitive.positions));
        }
        if (primitive.indices == kNone) {
            TakeCorners(known->second.count, place);
            corners.resize(known->second.count);
            std::iota(corners.begin(), corners.end(), 0u);
        } else {
            corners = ReadIndices(store_, model_, primitive.indices);
        }
        return known->second;
    }

    Vertices AddPacked(const Primitive& primitive, std::vector<std::uint32_t>& corners,
                       const std::string& place) {
        const std::string extension = place + "/extensions/KHR_draco_mesh_compression";
        const Bytes packed = store_.GetView(primitive.dracoView);
        UnpackedPrimitive unpacked;
        try {
            unpacked = UnpackPrimitive(packed, primitive.dracoPositions, primitive.dracoNormals,
                                       store_.GetAllowance());
        } catch (const GltfError& error) {
            FailAt(extension, error.what(), error.Kind());
        }
        corners = std::move(unpacked.indices);
        return AddVertices(unpacked.positions, unpacked.normals, extension);
    }

    Vertices AddVertices(const std::vector<float>& positions, const std::vector<float>& normals,
                         const std::string& place) {
        CheckSize((positions_.size() + positions.size()) / 3, place);
        for (const float number : positions)
            if (!std::isfinite(static_cast<float>(number * scale_)))
                FailAt(place, "a vertex has a coordinate that is not finite in millimetres");
        if (!normals.empty() && normals.size() != positions.size())
            FailAt(place, "there are " + std::to_string(positions.size() / 3) + " positions and " +
                              std::to_string(normals.size() / 3) + " normals");
        const std::uint32_t first = VertexCount();
        positions_.insert(positions_.end(), positions.begin(), positions.end());
        normals_.insert(normals_.end(), normals.begin(), normals.end());
        if (normals.empty()) hasAllNormals_ = false;
        return {first, static_cast<std::uint32_t>(positions.size() / 3)};
    }

    const Model& model_;
    BufferStore& store_;
    double scale_;
    std::vector<float> positions_, normals_;
    std::vector<std::uint32_t> indices_;
    std::vector<k3::MeshGroup> groups_;
    std::map<std::pair<std::uint32_t, std::uint32_t>, Vertices> shared_;  // by accessors
    bool hasAllNormals_ = true;
};

/// Whether a writer of ours gave the material to triangles that have none.
bool StandsForNone(const Var& extras) {
    const Var* told = extras.IsMap() ? extras.Lookup(kAssemblyExtras) : nullptr;
    const Var* mark = told ? told->Lookup(gltf_extras::Word::kUnassigned) : nullptr;
    return mark && mark->ToBool();
}

}  // namespace

Counted<k3::Mesh> MeshReader::Read(std::uint32_t index) {
    const Mesh& mesh = model_.meshes[index];
    const auto made = Make<k3::Mesh>();
    if (!made) throw std::bad_alloc();
    MeshBuilder builder(model_, store_, scale_);
    std::map<std::uint32_t, std::uint32_t> slots;  // by material
    for (std::uint32_t p = 0; p < mesh.primitiveCount; ++p) {
        const Primitive& primitive = model_.primitives[mesh.firstPrimitive + p];
        const bool isShown = primitive.mode >= kTriangles && primitive.mode <= kFan;
        const bool hasVertices = primitive.positions != kNone || primitive.dracoView != kNone;
        if (!isShown) ++skipped_;
        if (!isShown || !hasVertices) continue;
        const auto [slot, isNew] = slots.try_emplace(primitive.material, 0u);
        if (isNew) slot->second = static_cast<std::uint32_t>(made->AddSlot(MaterialOf(primitive.material)));
        builder.Add(primitive, slot->second, PointerTo("meshes", index) + PointerTo("primitives", p));
    }
    if (builder.IsEmpty()) return nullptr;
    if (!builder.Finish(*made)) FailAt(PointerTo("meshes", index), "the triangles do not fit together");
    return made;
}

k3::Material* MeshReader::MaterialOf(std::uint32_t index) {
    if (index == kNone) return nullptr;
    Counted<k3::Material>& made = materials_[index];
    if (made) return made.Get();
    const Material& material = model_.materials[index];
    if (StandsForNone(model_.ExtrasAt(material.extras))) return nullptr;
    made = Make<k3::Material>();
    if (!made) return nullptr;
    std::array<float, 4> colour = material.colour;
    if (!material.isBlended) colour[3] = 1;
    made->SetColour(colour);
    made->SetName(ToText(model_, material.name));
    if (const Var metadata = MetadataOf(model_.ExtrasAt(material.extras)); metadata.IsMap())
        made->SetMetadata(metadata.ToMap());
    return made.Get();
}

}  // namespace qn::gltf
