#include "importers/gltf/gltf_check.h"

#include "importers/gltf/gltf_error.h"
#include "importers/gltf/gltf_limits.h"

#include <algorithm>
#include <iterator>

namespace qn::gltf {
namespace {

/// What is read, and what changes nothing in that which is read: looks, lights, pictures, further attributes.
constexpr std::string_view kKnownExtensions[] = {
    "EXT_mesh_gpu_instancing", "EXT_meshopt_compression", "KHR_draco_mesh_compression",
    "KHR_mesh_quantization",   "EXT_instance_features",   "EXT_mesh_features",
    "EXT_structural_metadata", "EXT_texture_webp",        "EXT_texture_avif",
    "EXT_lights_image_based",  "EXT_lights_ies",          "KHR_animation_pointer",
    "KHR_lights_punctual",     "KHR_texture_basisu",      "KHR_texture_transform",
    "KHR_xmp_json_ld",         "MSFT_texture_dds",
};
constexpr std::string_view kMaterialExtensions = "KHR_materials_";

bool IsKnown(const std::string& extension) {
    return extension.rfind(kMaterialExtensions, 0) == 0 ||
           std::find(std::begin(kKnownExtensions), std::end(kKnownExtensions), extension) !=
               std::end(kKnownExtensions);
}

/// Refuses an index that is given and leads nowhere. `place` is asked for its pointer only then.
template <class List, class Place>
void CheckLink(std::uint32_t index, const List& list, const char* things, Place&& place,
               const char* member = "") {
    if (index == kNone || index < list.size()) return;
    FailAt(place() + member, "expected one of the " + std::to_string(list.size()) + " " + things +
                                 ", found " + std::to_string(index));
}

void CheckNodeLinks(Model& model) {
    for (std::size_t i = 0; i < model.nodes.size(); ++i) {
        const Node& node = model.nodes[i];
        const auto place = [&] { return PointerTo("nodes", i); };
        CheckLink(node.mesh, model.meshes, "meshes", place, "/mesh");
        CheckLink(node.camera, model.cameras, "cameras", place, "/camera");
    }
}

void MarkChildren(Model& model) {
    for (std::size_t i = 0; i < model.nodes.size(); ++i) {
        const Node& parent = model.nodes[i];
        for (std::uint32_t c = 0; c < parent.childCount; ++c) {
            const std::uint32_t child = model.children[parent.firstChild + c];
            const auto place = [&] { return PointerTo("nodes", i) + PointerTo("children", c); };
            CheckLink(child, model.nodes, "nodes", place);
            if (model.nodes[child].isChild)
                FailAt(place(), "node " + std::to_string(child) +
                                    " has two parents; a node is the child of one other at most");
            model.nodes[child].isChild = true;
        }
    }
}

void FindRoots(Model& model) {
    std::vector<bool> isListed(model.nodes.size());
    const auto add = [&](std::uint32_t node) {
        if (!isListed[node]) model.roots.push_back(node);
        isListed[node] = true;
    };
    for (std::size_t s = 0; s < model.scenes.size(); ++s) {
        const std::vector<std::uint32_t>& nodes = model.scenes[s].nodes;
        for (std::size_t i = 0; i < nodes.size(); ++i) {
            const auto place = [&] { return PointerTo("scenes", s) + PointerTo("nodes", i); };
            CheckLink(nodes[i], model.nodes, "nodes", place);
            if (model.nodes[nodes[i]].isChild)
                FailAt(place(), "node " + std::to_string(nodes[i]) +
                                    " is the child of another node; scenes list nodes without parent");
            add(nodes[i]);
        }
    }
    for (std::size_t i = 0; i < model.nodes.size(); ++i)
        if (!model.nodes[i].isChild) add(static_cast<std::uint32_t>(i));
}

/// Every node has one parent at most, so what no root leads to stands in or below a ring.
void RefuseRings(const Model& model) {
    std::vector<bool> isReached(model.nodes.size());
    std::vector<std::uint32_t> open = model.roots;
    std::size_t reached = 0;
    while (!open.empty()) {
        const Node& node = model.nodes[open.back()];
        isReached[open.back()] = true;
        ++reached;
        open.pop_back();
        for (std::uint32_t c = 0; c < node.childCount; ++c)
            open.push_back(model.children[node.firstChild + c]);
    }
    if (reached == model.nodes.size()) return;
    for (std::size_t i = 0; i < model.nodes.size(); ++i)
        if (!isReached[i])
            FailAt(PointerTo("nodes", i), "the node contains itself, by its children or theirs");
}

void CountCopies(Model& model) {
    std::uint64_t total = model.nodes.size();
    for (std::size_t i = 0; i < model.nodes.size(); ++i) {
        if (model.nodes[i].copies == kNone) continue;
        Copies& copies = model.copies[model.nodes[i].copies];
        const std::string place = PointerTo("nodes", i) + "/extensions/EXT_mesh_gpu_instancing/attributes";
        bool isFirst = true;
        for (const std::uint32_t accessor : {copies.translation, copies.rotation, copies.scale}) {
            if (accessor == kNone) continue;
            CheckLink(accessor, model.accessors, "accessors", [&] { return place; });
            const std::uint32_t count = model.accessors[accessor].count;
            if (!isFirst && count != copies.count)
                FailAt(place, "expected accessors of one count, found " + std::to_string(copies.count) +
                                  " and " + std::to_string(count));
            copies.count = count, isFirst = false;
        }
        total += copies.count;
        if (total > gltf_limits::kMostNodes)
            FailAt(place,
                   "expected at most " + std::to_string(gltf_limits::kMostNodes) +
                       " nodes and copies together, with this it is " + std::to_string(total),
                   LoadFailure::kLimit);
    }
}

void CheckMeshLinks(const Model& model) {
    for (std::size_t m = 0; m < model.meshes.size(); ++m) {
        const Mesh& mesh = model.meshes[m];
        for (std::uint32_t p = 0; p < mesh.primitiveCount; ++p) {
            const Primitive& primitive = model.primitives[mesh.firstPrimitive + p];
            const auto place = [&] { return PointerTo("meshes", m) + PointerTo("primitives", p); };
            CheckLink(primitive.positions, model.accessors, "accessors", place, "/attributes/POSITION");
            CheckLink(primitive.normals, model.accessors, "accessors", place, "/attributes/NORMAL");
            CheckLink(primitive.indices, model.accessors, "accessors", place, "/indices");
            CheckLink(primitive.material, model.materials, "materials", place, "/material");
            CheckLink(primitive.dracoView, model.views, "buffer views", place,
                      "/extensions/KHR_draco_mesh_compression/bufferView");
        }
    }
}

void CheckDataLinks(const Model& model) {
    for (std::size_t i = 0; i < model.views.size(); ++i) {
        const BufferView& view = model.views[i];
        const auto place = [&] { return PointerTo("bufferViews", i); };
        if (view.buffer == kNone) FailAt(place() + "/buffer", "expected a buffer, found none");
        CheckLink(view.buffer, model.buffers, "buffers", place, "/buffer");
        CheckLink(view.packedBuffer, model.buffers, "buffers", place,
                  "/extensions/EXT_meshopt_compression/buffer");
    }
    for (std::size_t i = 0; i < model.accessors.size(); ++i) {
        const Accessor& accessor = model.accessors[i];
        const auto place = [&] { return PointerTo("accessors", i); };
        CheckLink(accessor.view, model.views, "buffer views", place, "/bufferView");
        if (accessor.sparse.count == 0) continue;
        const Sparse& sparse = accessor.sparse;
        if (sparse.indexView == kNone || sparse.valueView == kNone)
            FailAt(place() + "/sparse", "expected buffer views of indices and values");
        CheckLink(sparse.indexView, model.views, "buffer views", place, "/sparse/indices/bufferView");
        CheckLink(sparse.valueView, model.views, "buffer views", place, "/sparse/values/bufferView");
    }
}

}  // namespace

void CheckExtensions(const Model& model) {
    for (std::size_t i = 0; i < model.extensionsRequired.size(); ++i) {
        const std::string& extension = model.extensionsRequired[i];
        if (!IsKnown(extension))
            FailAt(PointerTo("extensionsRequired", i),
                   "the file requires the extension \"" + extension + "\", which is not read here");
    }
}

void CheckModel(Model& model) {
    CheckNodeLinks(model);
    CheckMeshLinks(model);
    CheckDataLinks(model);
    CheckLink(model.scene, model.scenes, "scenes", [] { return std::string("/scene"); });
    MarkChildren(model);
    FindRoots(model);
    RefuseRings(model);
    CountCopies(model);
}

}  // namespace qn::gltf
