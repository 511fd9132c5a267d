#include "engine/view/raster.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace qn::view {
namespace {

constexpr double kMiddle = 0.5;  // of a pixel

/// Twice the signed area of a triangle on the screen.
double Area(const ScreenPoint& a, const ScreenPoint& b, double x, double y) {
    return (b[0] - a[0]) * (y - a[1]) - (b[1] - a[1]) * (x - a[0]);
}

bool IsFinite(const ScreenPoint& point) {
    return std::isfinite(point[0]) && std::isfinite(point[1]) && std::isfinite(point[2]);
}

struct Range {
    int first, last;
};

/// The pixels of one axis that three coordinates can touch, within the picture.
Range PixelsOf(double a, double b, double c, int count) {
    const double low = std::clamp(std::floor(std::min({a, b, c})), 0.0, static_cast<double>(count));
    const double high = std::clamp(std::ceil(std::max({a, b, c})), -1.0, static_cast<double>(count - 1));
    return {static_cast<int>(low), static_cast<int>(high)};
}

}  // namespace

Raster::Raster(int width, int height, const Colour& background)
    : width_(width),
      height_(height),
      bytes_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * background.size()),
      depths_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height),
              -std::numeric_limits<double>::infinity()) {
    for (std::size_t i = 0; i < bytes_.size(); ++i)
        bytes_[i] = background[i % background.size()];
}

void Raster::Fill(const std::array<ScreenPoint, 3>& corners, const Colour& colour) {
    const auto& [a, b, c] = corners;
    if (!IsFinite(a) || !IsFinite(b) || !IsFinite(c)) return;
    const double whole = Area(a, b, c[0], c[1]);
    if (whole == 0) return;
    const Range columns = PixelsOf(a[0], b[0], c[0], width_), rows = PixelsOf(a[1], b[1], c[1], height_);
    for (int y = rows.first; y <= rows.last; ++y)
        for (int x = columns.first; x <= columns.last; ++x) {
            const double atX = x + kMiddle, atY = y + kMiddle;
            const double ofA = Area(b, c, atX, atY) / whole, ofB = Area(c, a, atX, atY) / whole;
            const double ofC = 1 - ofA - ofB;
            if (ofA >= 0 && ofB >= 0 && ofC >= 0) Put(x, y, ofA * a[2] + ofB * b[2] + ofC * c[2], colour);
        }
}

void Raster::Dot(const ScreenPoint& point, const Colour& colour) {
    if (!IsFinite(point) || point[0] < 0 || point[1] < 0 || point[0] >= width_ || point[1] >= height_) return;
    Put(static_cast<int>(point[0]), static_cast<int>(point[1]), point[2], colour);
}

Colour Raster::At(int x, int y) const {
    const std::size_t first =
        (static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) + static_cast<std::size_t>(x)) *
        Colour().size();
    return {bytes_[first], bytes_[first + 1], bytes_[first + 2]};
}

void Raster::Put(int x, int y, double depth, const Colour& colour) {
    const std::size_t pixel =
        static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) + static_cast<std::size_t>(x);
    if (!(depth > depths_[pixel])) return;
    depths_[pixel] = depth;
    std::copy(colour.begin(), colour.end(),
              bytes_.begin() + static_cast<std::ptrdiff_t>(pixel * colour.size()));
}

}  // namespace qn::view
