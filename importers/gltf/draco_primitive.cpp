#include "importers/gltf/draco_primitive.h"

#include "importers/gltf/gltf_error.h"
#include "importers/gltf/gltf_limits.h"
#include "importers/gltf/gltf_model.h"

#include <draco/compression/decode.h>

#include <array>

namespace qn::gltf {
namespace {

std::vector<float> ReadAttribute(const draco::Mesh& mesh, std::uint32_t id, const char* name) {
    const draco::PointAttribute* attribute = mesh.GetAttributeByUniqueId(id);
    if (!attribute || attribute->num_components() != 3)
        FailAt(std::string("/attributes/") + name,
               "the packed mesh has no attribute " + std::to_string(id) + " of 3 components");
    std::vector<float> numbers(std::size_t{mesh.num_points()} * 3);
    for (std::uint32_t point = 0; point < mesh.num_points(); ++point) {
        std::array<float, 3> value{};
        if (!attribute->ConvertValue<float, 3>(attribute->mapped_index(draco::PointIndex(point)),
                                               value.data()))
            FailAt(std::string("/attributes/") + name, "the packed attribute cannot be read");
        for (std::size_t i = 0; i < 3; ++i)
            numbers[std::size_t{point} * 3 + i] = value[i];
    }
    return numbers;
}

}  // namespace

UnpackedPrimitive UnpackPrimitive(std::span<const std::uint8_t> packed, std::uint32_t positions,
                                  std::uint32_t normals) {
    draco::DecoderBuffer bytes;
    bytes.Init(reinterpret_cast<const char*>(packed.data()), packed.size());
    draco::Decoder decoder;
    auto decoded = decoder.DecodeMeshFromBuffer(&bytes);
    if (!decoded.ok())
        throw GltfError("the packed bytes are damaged: " + decoded.status().error_msg_string());
    const std::unique_ptr<draco::Mesh> mesh = std::move(decoded).value();
    if (mesh->num_points() > gltf_limits::kMostVertices || mesh->num_faces() > gltf_limits::kMostVertices / 3)
        throw GltfError("the packed mesh is larger than " + std::to_string(gltf_limits::kMostVertices) +
                            " vertices or indices",
                        LoadFailure::kLimit);
    UnpackedPrimitive result;
    if (positions != kNone) result.positions = ReadAttribute(*mesh, positions, "POSITION");
    if (normals != kNone) result.normals = ReadAttribute(*mesh, normals, "NORMAL");
    result.indices.reserve(std::size_t{mesh->num_faces()} * 3);
    for (std::uint32_t face = 0; face < mesh->num_faces(); ++face)
        for (const draco::PointIndex& corner : mesh->face(draco::FaceIndex(face)))
            result.indices.push_back(corner.value());
    return result;
}

}  // namespace qn::gltf
