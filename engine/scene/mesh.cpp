#include "engine/scene/chunk_ids.h"
#include "engine/scene/chunk_io.h"
#include "frame/host/object3d.h"

#include <algorithm>

namespace qn::k3 {
namespace {

constexpr std::size_t kCorners = 3;  // numbers of a position, corners of a triangle
static_assert(sizeof(MeshGroup) == 12, "groups are stored as three 32-bit numbers");

bool GroupFits(const MeshGroup& group, std::size_t indexCount) {
    return group.indexCount % kCorners == 0 && group.firstIndex <= indexCount &&
           group.indexCount <= indexCount - group.firstIndex;
}

bool Fits(const std::vector<float>& positions, const std::vector<float>& normals,
          const std::vector<std::uint32_t>& indices, const std::vector<MeshGroup>& groups) {
    if (positions.size() % kCorners != 0 || indices.size() % kCorners != 0) return false;
    if (!normals.empty() && normals.size() != positions.size()) return false;
    const std::size_t vertices = positions.size() / kCorners;
    const bool indicesFit =
        std::all_of(indices.begin(), indices.end(), [&](std::uint32_t i) { return i < vertices; });
    return indicesFit && std::all_of(groups.begin(), groups.end(), [&](const MeshGroup& group) {
               return GroupFits(group, indices.size());
           });
}

template <class T>
bool WriteBlock(Stream* stream, int id, const std::vector<T>& block) {
    return block.empty() || ChunkWriter(stream, id).Bytes(block.data(), sizeof(T), block.size()).Ok();
}

}  // namespace

Mesh::Mesh() = default;
Mesh::~Mesh() = default;

bool Mesh::SetGeometry(std::vector<float> positions, std::vector<float> normals,
                       std::vector<std::uint32_t> indices, std::vector<MeshGroup> groups) {
    if (!Fits(positions, normals, indices, groups)) return false;
    positions_ = std::move(positions);
    normals_ = std::move(normals);
    indices_ = std::move(indices);
    groups_ = std::move(groups);
    return true;
}

MaterialSlot* Mesh::GetSlot(int index) const {
    return index >= 0 && index < GetSlotCount() ? slots_[static_cast<std::size_t>(index)].Get() : nullptr;
}

int Mesh::AddSlot(Material* material) {
    Counted<MaterialSlot> slot = Make<MaterialSlot>();
    slot->SetMaterial(material);
    slots_.push_back(std::move(slot));
    return GetSlotCount() - 1;
}

bool Mesh::CollectMaterialSlots(Collection* slots, int) const {
    if (!slots || slots_.empty()) return false;
    for (const auto& slot : slots_)
        slots->Add(slot.Get());
    return true;
}

void Mesh::MaterialsChanged() {}

ResultEnum Mesh::Save(Stream* stream, Context* context) {
    if (const ResultEnum base = Renderable::Save(stream, context); base != ResultEnum::kSuccess) return base;
    bool written = WriteBlock(stream, MeshChunk::kPositions, positions_) &&
                   WriteBlock(stream, MeshChunk::kNormals, normals_) &&
                   WriteBlock(stream, MeshChunk::kIndices, indices_) &&
                   WriteBlock(stream, MeshChunk::kGroups, groups_);
    if (written && !slots_.empty()) {
        ChunkWriter chunk(stream, MeshChunk::kSlots);
        for (const auto& slot : slots_)
            chunk.Number(slot->GetMaterial(), context, false);
        written = chunk.Ok();
    }
    return written ? ResultEnum::kSuccess : ResultEnum::kWriteFailed;
}

ResultEnum Mesh::HandleChunk(int id, Stream* stream, Context* context) {
    if (id == MeshChunk::kPositions) {
        ReadBlock(stream, positions_, L"mesh positions");
    } else if (id == MeshChunk::kNormals) {
        ReadBlock(stream, normals_, L"mesh normals");
    } else if (id == MeshChunk::kIndices) {
        ReadBlock(stream, indices_, L"mesh indices");
    } else if (id == MeshChunk::kGroups) {
        ReadBlock(stream, groups_, L"mesh groups");
    } else if (id == MeshChunk::kSlots) {
        ReadNumbers(stream, context,
                    [this](const Counted<Interface>& m) { AddSlot(Cast<Material>(m.Get())); });
    } else {
        return Renderable::HandleChunk(id, stream, context);
    }
    return stream->HasFailed() ? ResultEnum::kNothing : ResultEnum::kSuccess;
}

ResultEnum Mesh::Load(Stream* stream, Context* context) {
    const ResultEnum result = Renderable::Load(stream, context);
    if (!Succeeded(result) || Fits(positions_, normals_, indices_, groups_)) return result;
    stream->Fail(L"the parts of a mesh do not fit together");
    return ResultEnum::kNothing;
}

bool Mesh::IsTypeOf(const char* name) const {
    return EqualKeys(name, "k3_mesh") || EqualKeys(name, "k3_renderable") || Renderable::IsTypeOf(name);
}

const ClassRecord& Mesh::StaticClass() {
    static const ClassRecord& record = InternClass("qn::k3::Mesh");
    return record;
}

void* Mesh::CastTo(const ClassRecord& wanted) {
    return CastThrough<Mesh, Renderable>(this, wanted);
}

}  // namespace qn::k3
