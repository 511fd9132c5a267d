#pragma once

#include "importers/gltf/allowance.h"

#include <cstdint>
#include <span>
#include <vector>

namespace qn::gltf {

/// Triangles of a primitive that KHR_draco_mesh_compression has packed.
struct UnpackedPrimitive {
    std::vector<float> positions;  ///< x, y, z
    std::vector<float> normals;    ///< x, y, z; empty if not asked for
    std::vector<std::uint32_t> indices;
};

/// `positions` and `normals` are ids of attributes within the packed bytes; kNone: not asked for. What
/// the packed bytes claim to hold is taken from the allowance first. Throws GltfError.
UnpackedPrimitive UnpackPrimitive(std::span<const std::uint8_t> packed, std::uint32_t positions,
                                  std::uint32_t normals, Allowance& allowance);

}  // namespace qn::gltf
