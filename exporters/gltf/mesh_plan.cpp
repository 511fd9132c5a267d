#include "exporters/gltf/mesh_plan.h"

#include "graph/node_content.h"

#include <algorithm>
#include <cmath>

namespace qn::gltf_export {
namespace {

constexpr std::uint64_t kVectorBytes = 3 * sizeof(float);
/// How far the square of a normal's length may be from 1.
constexpr double kUnitTolerance = 1e-3;
/// Below this length a normal points nowhere.
constexpr double kShortestNormal = 1e-12;

enum class NormalState { kNone, kUnit, kNeedWork };

NormalState StateOf(const std::vector<float>& normals, std::size_t vertices) {
    if (normals.size() != 3 * vertices) return NormalState::kNone;
    NormalState state = NormalState::kUnit;
    for (std::size_t i = 0; i < normals.size(); i += 3) {
        const double x = normals[i], y = normals[i + 1], z = normals[i + 2];
        const double square = x * x + y * y + z * z;
        if (!std::isfinite(square) || square < kShortestNormal * kShortestNormal) return NormalState::kNone;
        if (std::abs(square - 1) > kUnitTolerance) state = NormalState::kNeedWork;
    }
    return state;
}

/// False if a number is not finite.
bool FindBox(MeshRow& row) {
    const std::vector<float>& positions = row.mesh->GetPositions();
    row.least = {positions[0], positions[1], positions[2]};
    row.greatest = row.least;
    for (std::size_t i = 0; i < positions.size(); ++i) {
        if (!std::isfinite(positions[i])) return false;
        row.least[i % 3] = std::min(row.least[i % 3], positions[i]);
        row.greatest[i % 3] = std::max(row.greatest[i % 3], positions[i]);
    }
    return true;
}

std::uint64_t RoundedUp(std::uint64_t bytes) {
    return (bytes + 3) & ~std::uint64_t{3};
}

std::uint64_t IndexBytes(const MeshRow& row) {
    const std::uint64_t count = row.mesh->GetIndices().size();
    return row.hasShortIndices ? RoundedUp(count * sizeof(std::uint16_t)) : count * sizeof(std::uint32_t);
}

}  // namespace

const k3::Mesh* ShownMesh(const graph::Reference& definition) {
    const Var target = definition.GetTarget();
    const k3::Mesh* mesh = Cast<k3::Mesh>(graph::BehindSubstitution(Cast<k3::Object3D>(target)));
    return mesh && !mesh->GetIndices().empty() && !mesh->GetPositions().empty() ? mesh : nullptr;
}

MeshPlan::MeshPlan(ExportModel& model) {
    for (DefinitionRow& definition : model.definitions)
        if (const k3::Mesh* mesh = ShownMesh(*definition.reference)) definition.mesh = Add(*mesh, definition);
    for (const MeshRow& row : meshes_)
        if (!row.hasNormals && !row.mesh->GetNormals().empty())
            model.warnings.push_back("\"" + row.name +
                                     "\": normals of no direction, all of the mesh left out");
}

std::uint32_t MeshPlan::Add(const k3::Mesh& mesh, const DefinitionRow& definition) {
    const auto [entry, isNew] = meshNumbers_.emplace(&mesh, static_cast<std::uint32_t>(meshes_.size()));
    if (!isNew) return entry->second;
    MeshRow row;
    row.mesh = &mesh;
    row.name = definition.name;
    if (!FindBox(row))
        throw ExportFailure(Outcome::kUnsayable, "\"" + definition.name + "\": a vertex is not finite");
    const NormalState normals = StateOf(mesh.GetNormals(), row.VertexCount());
    row.hasNormals = normals != NormalState::kNone;
    row.normalsNeedWork = normals == NormalState::kNeedWork;
    row.hasShortIndices = row.VertexCount() <= kMostShortVertices;
    Place(row);
    AddPrimitives(row);
    meshes_.push_back(std::move(row));
    return entry->second;
}

void MeshPlan::Place(MeshRow& row) {
    row.vertexOffset = vertexBytes_;
    vertexBytes_ += row.VertexCount() * kVectorBytes * (row.hasNormals ? 2 : 1);
    std::uint64_t& indexBytes = row.hasShortIndices ? shortBytes_ : longBytes_;
    row.indexOffset = indexBytes;
    indexBytes += IndexBytes(row);
}

void MeshPlan::AddPrimitives(MeshRow& row) {
    const k3::Mesh& mesh = *row.mesh;
    row.firstAccessor = accessors_;
    accessors_ += row.hasNormals ? 2 : 1;
    const auto add = [&](std::uint32_t first, std::uint32_t count, const k3::Material* material) {
        if (count > 0) row.primitives.push_back({first, count, MaterialIndex(material), accessors_++});
    };
    for (const k3::MeshGroup& group : mesh.GetGroups()) {
        const k3::MaterialSlot* slot = mesh.GetSlot(static_cast<int>(group.slot));
        add(group.firstIndex, group.indexCount, slot ? slot->GetMaterial() : nullptr);
    }
    if (row.primitives.empty()) {
        const k3::MaterialSlot* slot = mesh.GetSlotCount() > 0 ? mesh.GetSlot(0) : nullptr;
        add(0, static_cast<std::uint32_t>(mesh.GetIndices().size()), slot ? slot->GetMaterial() : nullptr);
    }
}

std::uint32_t MeshPlan::MaterialIndex(const k3::Material* material) {
    const auto [entry, isNew] =
        materialNumbers_.emplace(material, static_cast<std::uint32_t>(materials_.size()));
    if (isNew) materials_.push_back(material);
    return entry->second;
}

}  // namespace qn::gltf_export
