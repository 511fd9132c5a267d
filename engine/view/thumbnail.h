#pragma once

#include <string_view>

namespace qn {

namespace k3 {
class Viewport;
}

namespace view {

/// Width and height of the pictures that views keep.
inline constexpr int kThumbnailPixels = 256;

/// The picture that the view keeps, as a PNG file; nothing before it was drawn. Valid until it is drawn anew.
std::string_view GetThumbnail(const k3::Viewport& viewport);

}  // namespace view
}  // namespace qn
