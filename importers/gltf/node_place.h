#pragma once

#include "frame/host/matrix.h"
#include "importers/gltf/gltf_model.h"

#include <string>

namespace qn::gltf {

/// Millimetres in the format's unit, the metre.
inline constexpr double kMillimetres = 1000;

/// A place from translation, rotation (x, y, z, w) and scale; any may be null. Lengths times `scale`. Throws
/// GltfError naming `pointer` for a rotation of no length and for numbers that are not finite.
Matrix4<double> PlaceFromParts(const double* translation, const double* rotation, const double* stretch,
                               double scale, const std::string& pointer);

/// Node to parent. False, and `out` untouched, for the identity.
bool PlaceOf(const Model& model, std::uint32_t node, double scale, Matrix4<double>& out);

}  // namespace qn::gltf
