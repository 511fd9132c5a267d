#include "importers/gltf/draco_primitive.h"

#include "importers/gltf/gltf_error.h"
#include "importers/gltf/gltf_limits.h"
#include "importers/gltf/gltf_model.h"

#include <draco/compression/mesh/mesh_edgebreaker_decoder.h>
#include <draco/compression/mesh/mesh_sequential_decoder.h>
#include <draco/core/varint_decoding.h>

#include <array>
#include <memory>
#include <optional>

namespace qn::gltf {
namespace {

constexpr int kMajorVersion = 2, kMinorVersion = 2;
/// What the decoder and its mesh hold of a triangle, and of a component of a point.
constexpr std::uint64_t kBytesOfFace = 32, kBytesOfComponent = 4;

/// A decoder that asks for its memory: packed triangles and points that are all alike cost next to no bytes,
/// so that their number says nothing of them. The library's own tables are sized by what the bytes claim.
template <class Decoder>
class AskingDecoder final : public Decoder {
public:
    AskingDecoder(Allowance& allowance, std::optional<GltfError>& refusal)
        : allowance_(allowance), refusal_(refusal) {}

private:
    bool DecodeConnectivity() override {
        draco::DecoderBuffer ahead = *this->buffer();
        std::uint32_t faces = 0;
        if constexpr (std::is_same_v<Decoder, draco::MeshEdgebreakerDecoder>) {
            std::uint32_t vertices = 0;
            if (!draco::DecodeVarint(&vertices, &ahead)) return false;
        }
        if (!draco::DecodeVarint(&faces, &ahead)) return false;
        return Asks(faces * kBytesOfFace) && Decoder::DecodeConnectivity();
    }

    bool DecodeAllAttributes() override {
        const draco::PointCloud& points = *this->point_cloud();
        std::uint64_t components = 0;
        for (int i = 0; i < points.num_attributes(); ++i)
            components += points.attribute(i)->num_components();
        return Asks(points.num_points() * components * kBytesOfComponent) && Decoder::DecodeAllAttributes();
    }

    /// The library is not left by an exception.
    bool Asks(std::uint64_t bytes) {
        try {
            allowance_.Take(bytes, "");
        } catch (const GltfError& error) {
            refusal_ = error;
        }
        return !refusal_;
    }

    Allowance& allowance_;
    std::optional<GltfError>& refusal_;
};

std::unique_ptr<draco::MeshDecoder> DecoderOf(draco::DecoderBuffer bytes, Allowance& allowance,
                                              std::optional<GltfError>& refusal) {
    draco::DracoHeader header;
    if (!draco::PointCloudDecoder::DecodeHeader(&bytes, &header).ok())
        throw GltfError("the packed bytes are damaged: expected a header of Draco");
    if (header.version_major != kMajorVersion || header.version_minor != kMinorVersion)
        throw GltfError("version 2.2 of Draco is read, this is version " +
                        std::to_string(header.version_major) + "." + std::to_string(header.version_minor));
    if (header.encoder_type != draco::TRIANGULAR_MESH) throw GltfError("the packed bytes are no triangles");
    if (header.encoder_method == draco::MESH_SEQUENTIAL_ENCODING)
        return std::make_unique<AskingDecoder<draco::MeshSequentialDecoder>>(allowance, refusal);
    if (header.encoder_method == draco::MESH_EDGEBREAKER_ENCODING)
        return std::make_unique<AskingDecoder<draco::MeshEdgebreakerDecoder>>(allowance, refusal);
    throw GltfError("the packed bytes are damaged: their method " + std::to_string(header.encoder_method) +
                    " is not known");
}

std::unique_ptr<draco::Mesh> DecodeMesh(std::span<const std::uint8_t> packed, Allowance& allowance) {
    draco::DecoderBuffer bytes;
    bytes.Init(reinterpret_cast<const char*>(packed.data()), packed.size());
    std::optional<GltfError> refusal;
    const auto decoder = DecoderOf(bytes, allowance, refusal);
    auto mesh = std::make_unique<draco::Mesh>();
    const draco::Status status = decoder->Decode(draco::DecoderOptions(), &bytes, mesh.get());
    if (refusal) throw *refusal;
    if (!status.ok()) throw GltfError("the packed bytes are damaged: " + status.error_msg_string());
    if (mesh->num_points() > gltf_limits::kMostVertices || mesh->num_faces() > gltf_limits::kMostVertices / 3)
        throw GltfError("expected at most " + std::to_string(gltf_limits::kMostVertices) +
                            " vertices, and corners, found " + std::to_string(mesh->num_points()) + " and " +
                            std::to_string(std::uint64_t{mesh->num_faces()} * 3),
                        LoadFailure::kLimit);
    return mesh;
}

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
                                  std::uint32_t normals, Allowance& allowance) {
    const std::unique_ptr<draco::Mesh> mesh = DecodeMesh(packed, allowance);
    const std::uint64_t attributes = (positions != kNone ? 1u : 0u) + (normals != kNone ? 1u : 0u);
    allowance.Take(mesh->num_points() * attributes * 3 * sizeof(float) +
                       std::uint64_t{mesh->num_faces()} * 3 * sizeof(std::uint32_t),
                   "");
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
