#pragma once

#include "importers/step/step_model.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace qn::step {

/// Triangles of one colour, side by side in the index list.
struct MeshPart {
    std::optional<Colour> colour;  ///< none: the file gives these faces no colour
    std::uint32_t firstIndex = 0;
    std::uint32_t indexCount = 0;  ///< a multiple of 3
};

/// The triangles of one definition. Vertices are shared inside a face, not across its edges.
struct MeshData {
    std::vector<float> positions;        ///< x, y, z in millimetres
    std::vector<float> normals;          ///< x, y, z, of unit length
    std::vector<std::uint32_t> indices;  ///< three for each triangle, counter-clockwise from outside
    std::vector<MeshPart> parts;         ///< in the order in which their colours are met

    bool IsEmpty() const { return indices.empty(); }
};

}  // namespace qn::step
