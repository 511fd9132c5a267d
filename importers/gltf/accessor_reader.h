#pragma once

#include "importers/gltf/buffer_store.h"

#include <cstdint>
#include <vector>

namespace qn::gltf {

/// Elements of the accessor as numbers, `components` for each; normalised integers become -1 to 1 or 0 to 1.
/// Sparse values are put in. Taken from the allowance of the store. Throws GltfError, also for an accessor of
/// another shape.
std::vector<float> ReadFloats(BufferStore& store, const Model& model, std::uint32_t accessor,
                              std::uint32_t components);

/// Elements of a SCALAR accessor of whole numbers.
std::vector<std::uint32_t> ReadIndices(BufferStore& store, const Model& model, std::uint32_t accessor);

}  // namespace qn::gltf
