// Scene files, with the classes of the module: whatever the bytes are, they are refused or read, and what was
// read can be saved and read again.

#include "engine/runtime/context_impl.h"
#include "engine/runtime/modules.h"
#include "engine/stream/container.h"
#include "engine/stream/object_file.h"
#include "engine/stream/stream_reader.h"
#include "frame/entry.h"
#include "frame/host/reference_source.h"

#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <vector>

using namespace qn;

namespace {

void Demand(bool condition, const char* what) {
    if (condition) return;
    std::fprintf(stderr, "%s\n", what);
    std::abort();
}

constexpr const char* kClasses[] = {"k3_scene",
                                    "k3_node",
                                    "k3_varmap",
                                    "k3_vararray",
                                    "k3_params",
                                    "k3_interfacearray",
                                    "k3_interfacearray.weak",
                                    "k3_pointerarray",
                                    "k3_collection",
                                    "k3_layer",
                                    "k3_viewport",
                                    "qn.k3.entity",
                                    "k3_mesh",
                                    "k3_material",
                                    "k3_materialsubstitution",
                                    "k3_object3d",
                                    "k3_generic",
                                    "k3_detail_markup",
                                    "qn.graph.instance",
                                    "qn.graph.reference",
                                    "qn.graph.persistentselector",
                                    "qn.graph.hierarchygenerator",
                                    "qn.graph.postprocessinginstruction",
                                    "qn.k3.bom",
                                    "qn.k3.effectivity"};
constexpr char kRecipe = 'R';
constexpr std::size_t kRecipeRowSize = 3;

/// A file from a recipe, whose sizes always fit, so that mutations reach the bodies: 'R', then for each
/// object the class (1 byte), the length of the body (2 bytes) and the body. The last object is the root.
std::string FileFromRecipe(std::string_view recipe) {
    std::string classes, index, bodies;
    for (const std::string_view key : kClasses) {
        scene_file::Put(classes, static_cast<std::uint16_t>(key.size()));
        classes.append(key);
    }
    while (recipe.size() >= kRecipeRowSize) {
        const auto number =
            static_cast<std::uint16_t>(static_cast<unsigned char>(recipe[0]) % std::size(kClasses));
        const auto wanted = scene_file::GetAt<std::uint16_t>(recipe.data() + 1);
        const auto body = recipe.substr(kRecipeRowSize, wanted);
        recipe.remove_prefix(kRecipeRowSize + body.size());
        scene_file::Put(index, number);
        scene_file::Put(index, static_cast<std::uint32_t>(body.size()));
        bodies.append(body);
    }
    std::string blocks;
    const std::vector rows{PackBlock(scene_file::BlockKind::kClasses, classes, blocks),
                           PackBlock(scene_file::BlockKind::kIndex, index, blocks),
                           PackBlock(scene_file::BlockKind::kBodies, bodies, blocks)};
    const auto count = static_cast<std::uint32_t>(index.size() / scene_file::kIndexRowSize);
    return WriteContainer(rows, blocks, count, std::size(kClasses), count);
}

/// Some classes of the module change what they read, or do not read all that they write.
bool KeepsItsBytes(std::string_view file) {
    return file.find("qn.graph.") == file.npos;
}

std::string Again(Interface& root) {
    const auto context = Make<ContextImpl>();
    auto bytes = SaveToBytes(root, *context);
    Demand(!bytes.empty() || context->GetFailure() == LoadFailure::kLimit, "what was read cannot be saved");
    return bytes;
}

std::string ReadAndSave(const std::string& bytes) {
    const auto context = Make<ContextImpl>();
    const auto root = LoadFromBytes(bytes, *context);
    Demand(static_cast<bool>(root), context->GetFailureText().Utf8CStr());
    return Again(*root);
}

}  // namespace

// Rings of owners are legal in a file, and nobody takes them apart.
extern "C" const char* __asan_default_options() {
    return "detect_leaks=0";
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static char module;
    static const bool registered = RegisterEntry(&module, &K3DLLFunc);
    Demand(registered, "the module cannot be registered");
    std::string_view bytes(reinterpret_cast<const char*>(data), size);
    std::string made;
    if (size > 0 && bytes.front() == kRecipe) bytes = made = FileFromRecipe(bytes.substr(1));
    const auto context = Make<ContextImpl>();
    const auto reader = Make<StreamReader>("fuzz", bytes, *context, false);
    if (!reader->Read()) {
        Demand(context->GetFailure() != LoadFailure::kNone, "refused without a cause");
        return 0;
    }
    const std::string first = Again(*reader->GetRoot());
    if (first.empty()) return 0;
    const std::string second = ReadAndSave(first);
    Demand(second == first || !KeepsItsBytes(first), "saving what was saved gives other bytes");
    return 0;
}
