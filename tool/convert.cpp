#include "engine/import/external_name.h"
#include "graph/limits.h"
#include "tool/export_gltf.h"
#include "tool/failure.h"
#include "tool/generate.h"
#include "tool/merge_files.h"
#include "tool/placeholder_nodes.h"
#include "tool/progress_option.h"
#include "tool/save_target.h"
#include "tool/session.h"
#include "tool/verbs.h"

#include <filesystem>
#include <memory>

namespace assembly::tool {
namespace {

struct Options {
    LoadRequest load;
    FollowRequest follow;
    std::string output;
    std::string up;  ///< of a glTF file: axis of the scene that points up
    bool expand = false;
    ProgressStyle progress = ProgressStyle::kAuto;
};

constexpr const char* kExamples =
    "Examples:\n"
    "  assembly convert bracket.stp bracket.qn                     with geometry\n"
    "  assembly convert --structure-only bracket.stp bracket.qn    definitions, uses, names and places "
    "alone\n"
    "  assembly convert --expand bracket.stp bracket.qn            stores a node for each occurrence, too\n"
    "  assembly convert bracket.qn bracket.glb                     for viewers and the web\n"
    "  assembly convert --load all master.stp whole.qn             with the content of the files that it "
    "names\n\n"
    "Imports a file, builds its hierarchy and saves it as a scene file, or as glTF: .glb, or .gltf with a "
    ".bin\n"
    "beside it. Files that its definitions name stay names, which lead from the new file to the same files, "
    "unless\n"
    "--load asks for their content.";

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

/// All files that are asked for.
struct Whole {
    NamedFiles files;
    std::uint64_t occurrences = 0;
};

/// Nobody who takes in parts wants to lose one of them.
void KeepParts(const NamedFiles& files, const std::string& output) {
    const std::string path = qn::CanonicalPath(output);
    for (std::uint32_t i = 1; i < files.files.size(); ++i)
        if (files.files[i].state == FileState::kRead && files.files[i].path == path)
            throw Failure(ExitCode::kUsage, output + ": is one of the files that come in (" +
                                                files.ChainTo(i) + "); write to another one");
}

/// The structure alone: what is wrong with a file, or with the whole, shows before any geometry is read.
Whole LookAhead(Session& session, const Options& options) {
    LoadRequest request = options.load;
    request.structureOnly = request.graphOnly = true;
    Whole whole{ReadNamedFiles(session, request, options.follow)};
    whole.occurrences = JoinFiles(NamedFiles(whole.files)).occurrences;
    KeepParts(whole.files, options.output);
    return whole;
}

void Write(qn::k3::Scene& scene, Session& session, const Options& options) {
    if (IsGltfName(options.output)) {
        ExportGltf(scene, session, {options.output, options.load.structureOnly, options.up});
        return;
    }
    qn::SceneSaveOptions save;
    save.expand = options.expand;
    SaveTo(options.output, scene, session, save);
}

/// With the files of the assembly in it: a scene that stores its nodes gets those of the files, too. Views
/// that came along are bound to nodes, which have to be made for that.
std::vector<KeptName> MergeAll(Session& session, qn::k3::Scene& scene, const Whole& whole,
                               const Options& options) {
    const PlaceholderNodes stored(scene);
    if (!stored.IsEmpty() && whole.occurrences > static_cast<std::uint64_t>(qn::graph::kMaxOccurrences))
        throw Failure(ExitCode::kLimit, options.load.file + ": has stored nodes, and the whole would have " +
                                            std::to_string(whole.occurrences) + "; the limit is " +
                                            std::to_string(qn::graph::kMaxOccurrences));
    std::vector<KeptName> kept = MergeNamedFiles(session, scene, whole.files, options.follow);
    stored.Fill(session, scene);
    if (scene.GetViewports()) GenerateNodes(scene, session.GetContext());
    return kept;
}

void Run(const Options& options) {
    CheckOutput(options);
    Session session(options.progress);
    const bool follows = options.follow.levels > 0;
    const Whole whole = follows ? LookAhead(session, options) : Whole();
    const bool isExport = IsGltfName(options.output) && !follows;
    const auto scene = isExport ? LoadForExport(session, options.load) : session.Load(options.load);
    MoveNames(follows ? MergeAll(session, *scene, whole, options) : KeptNamesOf(*scene, options.load.file),
              options.output);
    if (options.expand) GenerateNodes(*scene, session.GetContext());
    Write(*scene, session, options);
    if (const std::string missing = MissingText(whole.files); !missing.empty())
        throw Failure(ExitCode::kFileMissing, missing);
}

}  // namespace

void AddConvert(CLI::App& app) {
    auto options = std::make_shared<Options>();
    CLI::App* verb = app.add_subcommand("convert", "Import a file and save it as a scene or glTF file");
    verb->description(kExamples);
    verb->add_option("IN", options->load.file, "STEP or scene file")->required();
    verb->add_option("OUT", options->output, "file to write (.qn, .glb, .gltf)")->required();
    AddFollowOptions(*verb, options->follow);
    verb->add_flag("--expand", options->expand, "Store a node for each occurrence, too");
    verb->add_option("--up", options->up,
                     "glTF: the axis that points up in the scene (what the file says, else z)")
        ->check(CLI::IsMember({"y", "z"}));
    verb->add_flag("--structure-only", options->load.structureOnly, "Read no geometry");
    verb->add_option("--tolerance", options->load.tolerance,
                     "Greatest distance of facets to the surface, mm (by size)")
        ->check(CLI::PositiveNumber);
    AddProgressOption(*verb, options->progress);
    verb->callback([options] { Run(*options); });
}

}  // namespace assembly::tool
