#pragma once

#include "importers/gltf/allowance.h"
#include "importers/gltf/gltf_model.h"

#include <cstdint>
#include <span>
#include <vector>

namespace qn::gltf {

/// The bytes of a view that EXT_meshopt_compression has packed, taken from the allowance. Throws GltfError.
std::vector<std::uint8_t> UnpackView(const BufferView& view, std::span<const std::uint8_t> packed,
                                     Allowance& allowance);

}  // namespace qn::gltf
