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
    bool expand = false;
};

constexpr const char* kExamples =
    "Examples:\n"
    "  assembly convert bracket.stp bracket.qn                     with geometry\n"
    "  assembly convert --structure-only bracket.stp bracket.qn    definitions, uses, names and places "
    "alone\n"
    "  assembly convert --expand bracket.stp bracket.qn            stores a node for each occurrence, too\n\n"
    "Imports a file, builds its hierarchy and saves it as a scene file.";

constexpr const char* kSceneEnding = ".qn";

void CheckOutput(const Options& options) {
    const std::filesystem::path path(options.output);
    if (path.extension() != kSceneEnding)
        throw Failure(ExitCode::kUsage, options.output + ": a scene file ends in " + kSceneEnding);
    std::error_code ignored;
    if (path.has_parent_path() && !std::filesystem::is_directory(path.parent_path(), ignored))
        throw Failure(ExitCode::kNotWritten, options.output + ": its folder does not exist");
}

void Run(const Options& options) {
    CheckOutput(options);
    Session session;
    const auto scene = session.Load(options.load);
    if (options.expand) GenerateNodes(*scene, session.GetContext());
    qn::SceneSaveOptions save;
    save.expand = options.expand;
    if (!qn::SaveSceneFile(*scene, qn::String::FromUtf8(options.output), session.GetContext(), save))
        throw Failure(ExitCode::kNotWritten, session.FailureText(options.output, "could not be written"));
}

}  // namespace

void AddConvert(CLI::App& app) {
    auto options = std::make_shared<Options>();
    CLI::App* verb = app.add_subcommand("convert", "Import a file and save it as a scene file");
    verb->description(kExamples);
    verb->add_option("IN", options->load.file, "STEP or scene file")->required();
    verb->add_option("OUT", options->output, "scene file to write (.qn)")->required();
    verb->add_flag("--expand", options->expand, "Store a node for each occurrence, too");
    verb->add_flag("--structure-only", options->load.structureOnly, "Read no geometry");
    verb->add_option("--tolerance", options->load.tolerance,
                     "Greatest distance of facets to the surface, mm (by size)")
        ->check(CLI::PositiveNumber);
    verb->callback([options] { Run(*options); });
}

}  // namespace assembly::tool
