#include "tool/export_gltf.h"
#include "tool/failure.h"
#include "tool/generate.h"
#include "tool/session.h"
#include "tool/verbs.h"

#include "engine/stream/scene_file.h"

#include <filesystem>
#include <memory>

namespace assembly::tool {
namespace {

struct Options {
    LoadRequest load;
    std::string output;
    std::string up;  ///< of a glTF file: axis of the scene that points up
    bool expand = false;
};

constexpr const char* kExamples =
    "Examples:\n"
    "  assembly convert bracket.stp bracket.qn                     with geometry\n"
    "  assembly convert --structure-only bracket.stp bracket.qn    definitions, uses, names and places "
    "alone\n"
    "  assembly convert --expand bracket.stp bracket.qn            stores a node for each occurrence, too\n"
    "  assembly convert bracket.qn bracket.glb                     for viewers and the web\n\n"
    "Imports a file, builds its hierarchy and saves it as a scene file, or as glTF: .glb, or .gltf with a "
    ".bin\n"
    "beside it.";

constexpr const char* kSceneEnding = ".qn";

void CheckOutput(const Options& options) {
    const std::filesystem::path path(options.output);
    const bool isGltf = IsGltfName(options.output);
    if (!isGltf && path.extension() != kSceneEnding)
        throw Failure(ExitCode::kUsage, options.output + ": a scene file ends in " + kSceneEnding +
                                            ", a glTF file in .glb or .gltf");
    if (isGltf && options.expand)
        throw Failure(ExitCode::kUsage, "--expand: a glTF file has all nodes in any case");
    if (!isGltf && !options.up.empty()) throw Failure(ExitCode::kUsage, "--up: only glTF files are turned");
    std::error_code ignored;
    if (path.has_parent_path() && !std::filesystem::is_directory(path.parent_path(), ignored))
        throw Failure(ExitCode::kNotWritten, options.output + ": its folder does not exist");
}

void Run(const Options& options) {
    CheckOutput(options);
    Session session;
    const auto scene = session.Load(options.load);
    if (IsGltfName(options.output)) {
        ExportGltf(*scene, session, {options.output, options.load.structureOnly, options.up});
        return;
    }
    if (options.expand) GenerateNodes(*scene, session.GetContext());
    qn::SceneSaveOptions save;
    save.expand = options.expand;
    if (!qn::SaveSceneFile(*scene, qn::String::FromUtf8(options.output), session.GetContext(), save))
        throw Failure(ExitCode::kNotWritten, session.FailureText(options.output, "could not be written"));
}

}  // namespace

void AddConvert(CLI::App& app) {
    auto options = std::make_shared<Options>();
    CLI::App* verb = app.add_subcommand("convert", "Import a file and save it as a scene or glTF file");
    verb->description(kExamples);
    verb->add_option("IN", options->load.file, "STEP or scene file")->required();
    verb->add_option("OUT", options->output, "file to write (.qn, .glb, .gltf)")->required();
    verb->add_flag("--expand", options->expand, "Store a node for each occurrence, too");
    verb->add_option("--up", options->up,
                     "glTF: the axis that points up in the scene (what the file says, else z)")
        ->check(CLI::IsMember({"y", "z"}));
    verb->add_flag("--structure-only", options->load.structureOnly, "Read no geometry");
    verb->add_option("--tolerance", options->load.tolerance,
                     "Greatest distance of facets to the surface, mm (by size)")
        ->check(CLI::PositiveNumber);
    verb->callback([options] { Run(*options); });
}

}  // namespace assembly::tool
