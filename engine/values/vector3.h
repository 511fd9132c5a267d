#pragma once

#include "frame/host/matrix.h"

#include <array>

namespace qn {

/// A point or a direction.
using Vector3 = std::array<double, 3>;

inline double Dot(const Vector3& a, const Vector3& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

inline Vector3 Cross(const Vector3& a, const Vector3& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

inline Vector3 Scaled(const Vector3& vector, double factor) {
    return {vector[0] * factor, vector[1] * factor, vector[2] * factor};
}

/// The point that an affine map takes `point` to.
inline Vector3 Mapped(const Vector3& point, const Matrix4<double>& map) {
    Vector3 mapped;
    for (std::size_t i = 0; i < mapped.size(); ++i)
        mapped[i] = point[0] * map.m[0][i] + point[1] * map.m[1][i] + point[2] * map.m[2][i] + map.m[3][i];
    return mapped;
}

}  // namespace qn
