#pragma once

#include "importers/gltf/gltf_model.h"

namespace qn::gltf {

/// Refuses extensions that the file requires and nobody here knows.
void CheckExtensions(const Model& model);

/// Refuses links that lead nowhere, nodes with two parents and nodes that contain themselves; marks the
/// children, finds the roots and counts the copies. Everything later relies on it. Both throw GltfError.
void CheckModel(Model& model);

}  // namespace qn::gltf
