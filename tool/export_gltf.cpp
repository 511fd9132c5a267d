#include "tool/export_gltf.h"

#include "exporters/gltf/gltf_export.h"
#include "graph/node_content.h"
#include "tool/failure.h"
#include "tool/structure.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>

namespace assembly::tool {
namespace {

namespace gltf = qn::gltf_export;

constexpr const char* kBinaryEnding = ".glb";
constexpr const char* kTextEnding = ".gltf";

/// The reference around the roots, if the scene is one file that has one.
qn::graph::Reference* ContainerOf(qn::k3::Scene& scene) {
    const qn::k3::Node* top = scene.GetFirstChild();
    const bool isAlone = top && !top->GetNextSibling();
    qn::graph::Reference* root = isAlone ? qn::graph::GeneratedReference(*top) : nullptr;
    return root && IsContainer(*root) ? root : nullptr;
}

gltf::Options OptionsOf(const GltfRequest& request) {
    gltf::Options options;
    options.isBinary = std::filesystem::path(request.file).extension() == kBinaryEnding;
    options.structureOnly = request.structureOnly;
    if (!request.up.empty()) options.up = request.up == "y" ? gltf::UpAxis::kY : gltf::UpAxis::kZ;
    return options;
}

ExitCode CodeOf(gltf::Outcome outcome) {
    switch (outcome) {
        case gltf::Outcome::kDone:
            return ExitCode::kFine;
        case gltf::Outcome::kLimit:
            return ExitCode::kLimit;
        case gltf::Outcome::kCancelled:
            return ExitCode::kCancelled;
        case gltf::Outcome::kUnsayable:
        case gltf::Outcome::kNotWritten:
            return ExitCode::kNotWritten;
    }
    return ExitCode::kDefect;
}

}  // namespace

bool IsGltfName(const std::string& file) {
    const auto ending = std::filesystem::path(file).extension();
    return ending == kBinaryEnding || ending == kTextEnding;
}

qn::Counted<qn::k3::Scene> LoadForExport(Session& session, LoadRequest request) {
    request.graphOnly = true;
    auto scene = session.Load(request);
    const Structure structure = ReadStructure(*scene, session.GetContext());
    // Paths of single occurrences can be read through an index alone.
    const auto hasHiddenPaths = [](const Use& use) {
        return use.instance && use.instance->GetSelectorCount() > 0 && !use.instance->GetLookupTable();
    };
    const bool needsIndex = std::any_of(structure.uses.begin(), structure.uses.end(), hasHiddenPaths) ||
                            std::any_of(structure.roots.begin(), structure.roots.end(), hasHiddenPaths);
    if (!needsIndex) return scene;
    request.graphOnly = false;
    return session.Load(request);
}

void ExportGltf(qn::k3::Scene& scene, Session& session, const GltfRequest& request) {
    const Structure structure = ReadStructure(scene, session.GetContext());
    gltf::Assembly assembly;
    assembly.container = ContainerOf(scene);
    for (const Use& root : structure.roots)
        assembly.roots.push_back({root.instance, structure.definitions[root.definition].reference});
    const gltf::Result result =
        gltf::WriteGltf(assembly, request.file, OptionsOf(request), session.GetContext());
    for (const std::string& warning : result.warnings)
        std::fprintf(stderr, "assembly: %s: %s\n", request.file.c_str(), warning.c_str());
    if (result.outcome == gltf::Outcome::kDone) return;
    throw Failure(CodeOf(result.outcome), result.error.empty()
                                              ? session.FailureText(request.file, "could not be written")
                                              : request.file + ": " + result.error);
}

}  // namespace assembly::tool
