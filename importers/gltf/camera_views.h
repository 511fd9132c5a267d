#pragma once

#include "frame/host/scene.h"
#include "importers/gltf/graph_builder.h"

namespace qn::gltf {

/// Adds a viewport for each node with a camera. It looks at that node once the node was made.
void AddCameraViews(const Model& model, const GraphBuilder& builder, k3::Scene& scene);

}  // namespace qn::gltf
