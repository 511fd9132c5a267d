#pragma once

#include "engine/view/camera.h"
#include "frame/host/object3d.h"

namespace qn::view {

bool IsFinite(const Vector& vector);

/// The extent of a mesh in its own space; positions that are no numbers do not count.
Box BoxOf(const k3::Mesh& mesh);

/// Draws a mesh with flat shading; one smaller than a pixel becomes a dot. `box` is its `BoxOf`.
void DrawMesh(const k3::Mesh& mesh, const Box& box, const Matrix4<double>& toWorld, const Camera& camera,
              Raster& picture);

}  // namespace qn::view
