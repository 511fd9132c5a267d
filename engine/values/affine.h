#pragma once

#include "engine/values/matrix3.h"
#include "frame/host/matrix.h"

namespace qn {

/// Takes a linear map apart: a point is stretched, then turned, then mirrored through the origin if the sign
/// is -1. The stretch scales by `scale` along the axes that `stretchRotation` turns x, y and z into; of the
/// many ways to name these axes it is the one that turns least. A quaternion q turns p into q p q*. False if
/// the map is singular; the translation is not touched.
bool DecomposeLinear(const Matrix3& linear, AffineParts& parts) noexcept;

}  // namespace qn
