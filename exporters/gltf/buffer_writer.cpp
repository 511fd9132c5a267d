#include "exporters/gltf/buffer_writer.h"

#include <bit>
#include <cmath>

namespace qn::gltf_export {
namespace {

static_assert(std::endian::native == std::endian::little, "glTF buffers are little-endian");

template <class T>
std::string_view BytesOf(const std::vector<T>& values) {
    return {reinterpret_cast<const char*>(values.data()), values.size() * sizeof(T)};
}

std::vector<float> UnitNormals(const std::vector<float>& normals) {
    std::vector<float> result(normals.size());
    for (std::size_t i = 0; i < normals.size(); i += 3) {
        const double length = std::hypot(double(normals[i]), double(normals[i + 1]), double(normals[i + 2]));
        for (std::size_t k = 0; k < 3; ++k)
            result[i + k] = static_cast<float>(normals[i + k] / length);
    }
    return result;
}

/// With a number more where that is needed to end on four bytes.
std::vector<std::uint16_t> ShortIndices(const std::vector<std::uint32_t>& indices) {
    std::vector<std::uint16_t> result(indices.begin(), indices.end());
    if (result.size() % 2 != 0) result.push_back(0);
    return result;
}

}  // namespace

void WriteBuffer(const MeshPlan& plan, Sink& sink) {
    for (const MeshRow& row : plan.Meshes()) {
        sink.Write(BytesOf(row.mesh->GetPositions()));
        if (!row.hasNormals) continue;
        if (row.normalsNeedWork)
            sink.Write(BytesOf(UnitNormals(row.mesh->GetNormals())));
        else
            sink.Write(BytesOf(row.mesh->GetNormals()));
    }
    for (const MeshRow& row : plan.Meshes())
        if (!row.hasShortIndices) sink.Write(BytesOf(row.mesh->GetIndices()));
    for (const MeshRow& row : plan.Meshes())
        if (row.hasShortIndices) sink.Write(BytesOf(ShortIndices(row.mesh->GetIndices())));
}

}  // namespace qn::gltf_export
