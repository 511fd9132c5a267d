#include "exchange/box.h"

#include <algorithm>
#include <cmath>

namespace qn::exchange {
namespace {

constexpr std::size_t kAxes = 3;
constexpr unsigned kCorners = 8;

}  // namespace

void Box::AddPoint(const Vector3& point) {
    for (std::size_t axis = 0; axis < kAxes; ++axis) {
        min[axis] = isEmpty ? point[axis] : std::min(min[axis], point[axis]);
        max[axis] = isEmpty ? point[axis] : std::max(max[axis], point[axis]);
    }
    isEmpty = false;
}

void Box::AddBox(const Box& other) {
    if (other.isEmpty) return;
    AddPoint(other.min);
    AddPoint(other.max);
}

bool Box::IsFinite() const {
    const auto isFinite = [](double value) { return std::isfinite(value); };
    return std::all_of(min.begin(), min.end(), isFinite) && std::all_of(max.begin(), max.end(), isFinite);
}

bool Box::Meets(const Box& other, double margin) const {
    if (isEmpty || other.isEmpty) return false;
    for (std::size_t axis = 0; axis < kAxes; ++axis)
        if (min[axis] > other.max[axis] + margin || other.min[axis] > max[axis] + margin) return false;
    return true;
}

Box Box::Mapped(const Matrix4<double>& matrix) const {
    Box mapped;
    if (isEmpty) return mapped;
    for (unsigned corner = 0; corner < kCorners; ++corner)
        mapped.AddPoint(qn::Mapped(
            {corner & 1 ? max[0] : min[0], corner & 2 ? max[1] : min[1], corner & 4 ? max[2] : min[2]},
            matrix));
    return mapped;
}

}  // namespace qn::exchange
