#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace qn::view {

/// Red, green, blue as the screen takes them.
using Colour = std::array<std::uint8_t, 3>;

/// x to the right and y down in pixels, z towards the viewer in any unit.
using ScreenPoint = std::array<double, 3>;

/// A picture of square pixels with a depth for each: what is nearer hides what is farther.
class Raster {
public:
    Raster(int width, int height, const Colour& background);

    /// Fills the pixels whose middle lies in the triangle; points that are no numbers draw nothing.
    void Fill(const std::array<ScreenPoint, 3>& corners, const Colour& colour);
    /// One pixel, unless the point is outside.
    void Dot(const ScreenPoint& point, const Colour& colour);

    int Width() const { return width_; }
    int Height() const { return height_; }
    Colour At(int x, int y) const;
    /// Rows from the top, three bytes for each pixel.
    const std::vector<std::uint8_t>& Bytes() const { return bytes_; }

private:
    void Put(int x, int y, double depth, const Colour& colour);

    int width_, height_;
    std::vector<std::uint8_t> bytes_;
    std::vector<double> depths_;
};

}  // namespace qn::view
