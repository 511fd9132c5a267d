#pragma once

#include "engine/view/raster.h"

namespace qn {

namespace k3 {
class Scene;
class Viewport;
}  // namespace k3

namespace view {

/// What the view shows, flat shaded, `pixels` wide and high: from the direction of its view node, or
/// isometric without one, fitted to what is there.
Raster DrawView(k3::Scene& scene, const k3::Viewport& viewport, int pixels);

}  // namespace view
}  // namespace qn
