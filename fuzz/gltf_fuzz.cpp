// glTF files: whatever the bytes are, they are refused with a text, or give a hierarchy whose links hold and
// meshes whose corners do.

#include "engine/runtime/context_impl.h"
#include "engine/runtime/modules.h"
#include "frame/entry.h"
#include "importers/gltf/gltf_document.h"
#include "importers/gltf/gltf_error.h"
#include "importers/gltf/graph_builder.h"
#include "importers/gltf/mesh_reader.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

using namespace qn;
using namespace qn::gltf;

namespace {

void Demand(bool condition, const char* what) {
    if (condition) return;
    std::fprintf(stderr, "%s\n", what);
    std::abort();
}

constexpr char kRecipe = 'R';

std::string Word(std::size_t value) {
    const auto word = static_cast<std::uint32_t>(value);
    return {reinterpret_cast<const char*>(&word), sizeof(word)};
}

/// A binary file from a recipe, whose sizes always fit, so that mutations reach text and buffers: 'R', then
/// the text, a zero and the binary part.
std::string FileFromRecipe(std::string_view recipe) {
    const std::string_view text = recipe.substr(0, recipe.find('\0'));
    const std::string_view bytes = recipe.substr(std::min(text.size() + 1, recipe.size()));
    const std::string chunks = Word(text.size()) + "JSON" + std::string(text) + Word(bytes.size()) +
                               std::string("BIN\0", 4) + std::string(bytes);
    return "glTF" + Word(2) + Word(12 + chunks.size()) + chunks;
}

void CheckModel(const Model& model) {
    std::size_t children = 0;
    for (const Node& node : model.nodes) {
        Demand(node.mesh == kNone || node.mesh < model.meshes.size(), "a node shows no mesh");
        children += node.childCount;
    }
    Demand(children + model.roots.size() == model.nodes.size(), "a node with two parents, or none");
}

void CheckMesh(const k3::Mesh& mesh) {
    const std::size_t vertices = mesh.GetPositions().size() / 3;
    for (const std::uint32_t corner : mesh.GetIndices())
        Demand(corner < vertices, "a corner of no vertex");
}

void Read(std::string_view bytes) {
    const auto source = SourceOf(bytes);
    const Document document = ReadDocument(*source);
    CheckModel(document.model);
    BufferStore store(document.model, *source, document.container, std::nullopt);
    const auto context = Make<ContextImpl>();
    GraphBuilder builder(document.model, store, *context, false);
    Demand(builder.Build(L"fuzz"), "nobody stopped it");
    MeshReader reader(document.model, store, builder.GetScale());
    for (const auto& shown : builder.GetShown())
        if (const auto mesh = reader.Read(shown.mesh)) CheckMesh(*mesh);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static char module;
    static const bool registered = RegisterEntry(&module, &K3DLLFunc);
    Demand(registered, "the module cannot be registered");
    std::string_view bytes(reinterpret_cast<const char*>(data), size);
    std::string made;
    if (size > 0 && bytes.front() == kRecipe) bytes = made = FileFromRecipe(bytes.substr(1));
    try {
        Read(bytes);
    } catch (const GltfError& error) {
        Demand(std::strlen(error.what()) > 0, "refused without a cause");
    } catch (const std::bad_alloc&) {
    }
    return 0;
}
