#pragma once

#include "engine/view/raster.h"

#include <string>

namespace qn::view {

/// The picture as a PNG file; empty if it cannot be made. The same picture gives the same bytes.
std::string EncodePng(const Raster& picture);

}  // namespace qn::view
