#pragma once

#include "exporters/gltf/export_model.h"
#include "frame/host/object3d.h"

#include <array>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace qn::gltf_export {

/// Vertices up to which indices have 16 bits: the highest 16-bit number is not allowed as an index.
inline constexpr std::size_t kMostShortVertices = 65535;

/// One draw call.
struct PrimitiveRow {
    std::uint32_t firstIndex = 0;  ///< in the mesh's own list
    std::uint32_t indexCount = 0;
    std::uint32_t material = 0;  ///< in `MeshPlan::Materials`
    std::uint32_t accessor = 0;  ///< of the indices
};

/// One mesh of the file.
struct MeshRow {
    const k3::Mesh* mesh = nullptr;  ///< borrowed
    std::string name;                ///< of the first definition that shows it
    std::vector<PrimitiveRow> primitives;
    bool hasNormals = false;
    bool normalsNeedWork = false;  ///< are not of unit length as they stand
    bool hasShortIndices = false;
    std::uint64_t vertexOffset = 0;   ///< bytes, in the view of vertices; normals follow the positions
    std::uint64_t indexOffset = 0;    ///< bytes, in the view of 16-bit or of 32-bit indices
    std::uint32_t firstAccessor = 0;  ///< positions; then normals, if any; then one for each primitive
    std::array<float, 3> least{}, greatest{};

    std::size_t VertexCount() const { return mesh->GetPositions().size() / 3; }
};

/// Which meshes and materials the file has, each once, and where their bytes stand in its buffer: all
/// vertices, then 32-bit indices, then 16-bit indices.
class MeshPlan {
public:
    /// An empty plan: nodes alone.
    MeshPlan() = default;
    /// Finds the meshes that definitions show, and notes them there. Throws ExportFailure for vertices that
    /// are not finite.
    explicit MeshPlan(ExportModel& model);

    const std::vector<MeshRow>& Meshes() const { return meshes_; }
    /// Borrowed; null for the material of slots without one.
    const std::vector<const k3::Material*>& Materials() const { return materials_; }
    std::uint64_t VertexBytes() const { return vertexBytes_; }
    std::uint64_t LongIndexBytes() const { return longBytes_; }
    std::uint64_t ShortIndexBytes() const { return shortBytes_; }
    std::uint64_t BufferBytes() const { return vertexBytes_ + longBytes_ + shortBytes_; }

private:
    std::uint32_t Add(const k3::Mesh& mesh, const DefinitionRow& definition);
    void AddPrimitives(MeshRow& row);
    void Place(MeshRow& row);
    std::uint32_t MaterialIndex(const k3::Material* material);

    std::vector<MeshRow> meshes_;
    std::vector<const k3::Material*> materials_;
    std::uint64_t vertexBytes_ = 0, longBytes_ = 0, shortBytes_ = 0;
    std::uint32_t accessors_ = 0;
    std::unordered_map<const k3::Mesh*, std::uint32_t> meshNumbers_;
    std::unordered_map<const k3::Material*, std::uint32_t> materialNumbers_;
};

/// The mesh that the definition shows, through a substitution too, borrowed; null if there is none, or
/// nothing in it.
const k3::Mesh* ShownMesh(const graph::Reference& definition);

}  // namespace qn::gltf_export
