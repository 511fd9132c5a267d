#pragma once

#include "frame/host/object3d.h"
#include "importers/gltf/buffer_store.h"

#include <cstdint>
#include <vector>

namespace qn::gltf {

/// Makes meshes and materials of a file, each once.
class MeshReader {
public:
    /// Lengths times `scale`.
    MeshReader(const Model& model, BufferStore& store, double scale)
        : model_(model), store_(store), scale_(scale), materials_(model.materials.size()) {}

    /// Null for a mesh without triangles. Throws GltfError.
    Counted<k3::Mesh> Read(std::uint32_t mesh);
    /// Draw calls met so far that are points or lines, which are not shown.
    std::size_t GetSkippedCount() const { return skipped_; }

private:
    k3::Material* MaterialOf(std::uint32_t index);

    const Model& model_;
    BufferStore& store_;
    double scale_;
    std::vector<Counted<k3::Material>> materials_;
    std::size_t skipped_ = 0;
};

}  // namespace qn::gltf
