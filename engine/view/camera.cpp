#include "engine/view/camera.h"

#include <algorithm>
#include <cmath>

namespace qn::view {
namespace {

constexpr double kFilled = 0.9;  // of the picture's width
constexpr double kLeastLength = 1e-12;

Vector RowOf(const Matrix4<double>& matrix, int row) {
    return {matrix.m[row][0], matrix.m[row][1], matrix.m[row][2]};
}

}  // namespace

Vector Normalised(const Vector& vector) {
    const double length = std::sqrt(Dot(vector, vector));
    if (!(length > kLeastLength) || !std::isfinite(length)) return {};
    return {vector[0] / length, vector[1] / length, vector[2] / length};
}

Axes IsometricAxes() {
    const Vector toward = Normalised({1, -1, 1});
    const Vector right = Normalised(Cross({0, 0, 1}, toward));
    return {right, Cross(toward, right), toward};
}

Axes AxesOf(const Matrix4<double>& camera) {
    const Vector toward = Normalised(RowOf(camera, 2));
    const Vector right = Normalised(Cross(RowOf(camera, 1), toward));
    if (toward == Vector() || right == Vector()) return IsometricAxes();
    return {right, Cross(toward, right), toward};
}

void Box::Add(const Vector& point) {
    for (std::size_t i = 0; i < point.size(); ++i) {
        low_[i] = empty_ ? point[i] : std::min(low_[i], point[i]);
        high_[i] = empty_ ? point[i] : std::max(high_[i], point[i]);
    }
    empty_ = false;
}

Vector Box::Corner(int number) const {
    return {(number & 1 ? high_ : low_)[0], (number & 2 ? high_ : low_)[1], (number & 4 ? high_ : low_)[2]};
}

Vector AlongAxes(const Vector& point, const Axes& axes) {
    return {Dot(point, axes.right), Dot(point, axes.up), Dot(point, axes.toward)};
}

Camera::Camera(const Axes& axes, const Box& extent, int pixels) : axes_(axes), half_(pixels / 2.0) {
    if (extent.IsEmpty()) return;
    const Vector &low = extent.Low(), &high = extent.High();
    for (std::size_t i = 0; i < middle_.size(); ++i)
        middle_[i] = (low[i] + high[i]) / 2;
    const double width = std::max(high[0] - low[0], high[1] - low[1]);
    if (width > kLeastLength && std::isfinite(width)) scale_ = kFilled * pixels / width;
}

ScreenPoint Camera::Project(const Vector& point) const {
    const Vector seen = AlongAxes(point, axes_);
    return {half_ + (seen[0] - middle_[0]) * scale_, half_ - (seen[1] - middle_[1]) * scale_, seen[2]};
}

}  // namespace qn::view
