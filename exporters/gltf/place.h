#pragma once

#include "frame/host/matrix.h"

#include <array>

namespace qn::gltf_export {

using Quaternion = std::array<double, 4>;  ///< x, y, z, w

/// How a node's place is written.
enum class PlaceForm {
    kNothing,  ///< the identity
    kMatrix,   ///< as it is
    kParts,    ///< translation, rotation and scale in one node; the numbers are rounded
    kTwo,      ///< no such parts exist: a node with parts, and one below it that turns first
};

struct Place {
    PlaceForm form = PlaceForm::kNothing;
    Matrix4<double> matrix;
};

/// Parts of a map that stretches along turned axes: first `inner` turns, then `scale`, `rotation`,
/// `translation`. Negative scales mirror.
struct PlaceParts {
    std::array<double, 3> translation{0, 0, 0};
    Quaternion rotation{0, 0, 0, 1};
    std::array<double, 3> scale{1, 1, 1};
    Quaternion inner{0, 0, 0, 1};
};

/// Whether all 16 numbers are finite and the map is affine.
bool IsWritablePlace(const Matrix4<double>& matrix);
/// `matrix` is writable. A matrix that readers in single precision might take for a sheared one gets parts.
Place PlaceOf(const Matrix4<double>& matrix);
/// For kParts, with `inner` the identity, and for kTwo.
PlaceParts PartsOf(const Place& place);

}  // namespace qn::gltf_export
