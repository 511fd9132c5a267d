#pragma once

#include "importers/gltf/file_source.h"
#include "importers/gltf/gltf_container.h"
#include "importers/gltf/gltf_model.h"

namespace qn::gltf {

/// A glTF file whose text was read and checked. The text itself is gone: names and extras are kept by the
/// model.
struct Document {
    Container container;
    Model model;
};

/// Throws GltfError.
Document ReadDocument(const FileSource& file);

}  // namespace qn::gltf
