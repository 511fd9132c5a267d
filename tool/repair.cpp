#include "tool/failure.h"
#include "tool/progress_option.h"
#include "tool/save_target.h"
#include "tool/scene_check.h"
#include "tool/scene_repair.h"
#include "tool/stored_scene.h"
#include "tool/terminal.h"
#include "tool/verbs.h"

#include <memory>

namespace assembly::tool {
namespace {

struct Options {
    LoadRequest load;
    SaveTarget target;
    bool dryRun = false;
    std::string format = "table";
    ProgressStyle progress = ProgressStyle::kAuto;
};

constexpr const char* kExamples =
    "Examples:\n"
    "  assembly repair bracket.qn --dry-run            what would be changed\n"
    "  assembly repair bracket.qn -o sound.qn          writes the repaired scene to a new file\n"
    "  assembly repair bracket.qn --in-place           the same, to the file itself if there is a change\n\n"
    "Repairs what \"assembly check\" finds. Where nodes and hierarchy disagree the nodes stay and their ties "
    "to the\n"
    "hierarchy are cut; uses and overrides that lead nowhere are removed, and layers lose members that are "
    "not in\n"
    "the scene. With --dry-run the exit code is 1 if there is something to repair.";

void CheckOptions(const Options& options) {
    if (!options.dryRun && !options.target.inPlace && options.target.output.empty())
        throw Failure(ExitCode::kUsage, "repair: say where to: -o FILE, --in-place or --dry-run");
}

void WriteLines(Output& output, const Options& options, const std::vector<Change>& changes) {
    for (const Change& change : changes)
        output.Line(Printable(options.load.file + ": " + LineOf(change)));
}

void WriteJson(Output& output, const Options& options, const std::string& path,
               const std::vector<Change>& changes) {
    output.Write("{\"file\": " + Quoted(options.load.file) +
                 ", \"saved\": " + (path.empty() ? "null" : Quoted(path)) + ", \"changes\": [");
    const char* separator = "\n";
    for (const Change& change : changes) {
        output.Write(separator);
        output.Write(std::string("  {\"code\": ") + Quoted(change.code) +
                     ", \"path\": " + Quoted(change.path) + ", \"message\": " + Quoted(change.message) + "}");
        separator = ",\n";
    }
    output.Line(changes.empty() ? "]}" : "\n]}");
}

/// Fails unless a check finds nothing any more.
void ExpectSound(qn::k3::Scene& scene, const std::string& file) {
    if (const std::size_t left = CheckScene(scene).size())
        throw Failure(ExitCode::kFindings, file + ": " + std::to_string(left) + " of the findings remain");
}

void Run(const Options& options) {
    CheckOptions(options);
    std::string path = options.dryRun ? std::string() : PathOf(options.target, options.load.file);
    Session session(options.progress);
    const auto scene = LoadAsStored(session, options.load);
    const std::vector<Change> changes = RepairScene(*scene, session.GetContext());
    ExpectSound(*scene, options.load.file);
    if (options.target.inPlace && changes.empty()) path.clear();
    if (!path.empty()) SaveChanged(path, options.load.file, *scene, session);
    Output output;
    options.format == "json" ? WriteJson(output, options, path, changes)
                             : WriteLines(output, options, changes);
    output.Flush();
    if (options.dryRun && !changes.empty())
        throw Failure(ExitCode::kFindings,
                      options.load.file + ": " + std::to_string(changes.size()) + " to repair");
}

}  // namespace

void AddRepair(CLI::App& app) {
    auto options = std::make_shared<Options>();
    CLI::App* verb = app.add_subcommand("repair", "Repair the hierarchy of a file");
    verb->description(kExamples);
    verb->add_option("FILE", options->load.file, "STEP, glTF or scene file")->required();
    AddSaveOptions(*verb, options->target);
    verb->add_flag("--dry-run", options->dryRun, "Tell what would be changed, write nothing");
    verb->add_option("--format", options->format, "table or json")->check(CLI::IsMember({"table", "json"}));
    AddProgressOption(*verb, options->progress);
    verb->callback([options] { Run(*options); });
}

}  // namespace assembly::tool
