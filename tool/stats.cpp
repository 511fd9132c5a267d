#include "tool/named_files.h"
#include "tool/progress_option.h"
#include "tool/session.h"
#include "tool/structure.h"
#include "tool/terminal.h"
#include "tool/verbs.h"

#include <sys/resource.h>
#include <chrono>
#include <memory>
#include <string>
#include <vector>

namespace assembly::tool {
namespace {

struct Options {
    LoadRequest load;
    FollowRequest follow;
    std::string format = "table";
    bool timing = false;
    ProgressStyle progress = ProgressStyle::kAuto;
};

constexpr const char* kExamples =
    "Examples:\n"
    "  assembly stats bracket.stp                  the counts of an assembly\n"
    "  assembly stats --format json bracket.qn     the same for scripts\n"
    "  assembly stats --timing bracket.qn          with seconds and peak memory\n"
    "  assembly stats --load all master.stp        with the files that the assembly names\n\n"
    "Counts definitions, their uses (instances) and the occurrences of the expanded tree without making it.\n"
    "Files that the assembly names are counted, and read on request alone (--load all).";

struct Figure {
    const char* key;
    const char* label;
    std::string value;  ///< JSON text
};

std::vector<Figure> CountsOf(const FollowedStructure& followed) {
    const Structure& structure = followed.structure;
    std::uint64_t assemblies = 0;
    for (const Definition& definition : structure.definitions)
        assemblies += definition.useCount > 0;
    const auto text = [](std::uint64_t number) { return std::to_string(number); };
    return {{"definitions", "definitions", text(structure.definitions.size())},
            {"assemblies", "  assemblies", text(assemblies)},
            {"parts", "  parts", text(structure.definitions.size() - assemblies)},
            {"instances", "instances", text(structure.instances)},
            {"occurrences", "occurrences", text(structure.occurrences)},
            {"leaf_occurrences", "  of parts", text(structure.leafOccurrences)},
            {"roots", "roots", text(structure.roots.size())},
            {"depth", "levels", text(structure.depth)},
            {"max_children", "most children", text(structure.widest)},
            {"files_named", "files named", text(followed.filesNamed)},
            {"files_read", "  read", text(followed.filesRead)},
            {"files_missing", "  missing", text(followed.filesMissing)}};
}

std::uint64_t PeakMemoryKib() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return static_cast<std::uint64_t>(usage.ru_maxrss);
}

void AddTiming(std::vector<Figure>& figures, double loadSeconds, double countSeconds) {
    figures.push_back({"load_seconds", "load seconds", NumberText(loadSeconds)});
    figures.push_back({"count_seconds", "count seconds", NumberText(countSeconds)});
    figures.push_back({"peak_memory_kib", "peak memory KiB", std::to_string(PeakMemoryKib())});
}

void WriteJson(Output& output, const std::vector<Figure>& figures) {
    const char* separator = "{\n";
    for (const Figure& figure : figures) {
        output.Write(separator);
        output.Write("  \"" + std::string(figure.key) + "\": " + figure.value);
        separator = ",\n";
    }
    output.Line("\n}");
}

void WriteTable(Output& output, const std::vector<Figure>& figures) {
    constexpr std::size_t kLabelColumns = 18;
    for (const Figure& figure : figures) {
        std::string line = figure.label;
        line.resize(std::max(kLabelColumns, line.size() + 2), ' ');
        output.Line(line + figure.value);
    }
}

void Run(const Options& options) {
    using Clock = std::chrono::steady_clock;
    Session session(options.progress);
    const auto start = Clock::now();
    NamedFiles files = ReadNamedFiles(session, options.load, options.follow);
    const auto loaded = Clock::now();
    const FollowedStructure followed = Join(std::move(files));
    const auto counted = Clock::now();

    std::vector<Figure> figures = CountsOf(followed);
    if (options.timing)
        AddTiming(figures, std::chrono::duration<double>(loaded - start).count(),
                  std::chrono::duration<double>(counted - loaded).count());
    Output output;
    if (options.format == "json")
        WriteJson(output, figures);
    else
        WriteTable(output, figures);
    followed.FailIfMissing();
}

}  // namespace

void AddStats(CLI::App& app) {
    auto options = std::make_shared<Options>();
    options->load.structureOnly = options->load.graphOnly = true;
    CLI::App* verb = app.add_subcommand("stats", "Count definitions, uses and occurrences");
    verb->description(kExamples);
    verb->add_option("FILE", options->load.file, "STEP or scene file")->required();
    AddFollowOptions(*verb, options->follow);
    verb->add_option("--format", options->format, "table or json")->check(CLI::IsMember({"table", "json"}));
    verb->add_flag("--timing", options->timing, "Add times and peak memory");
    AddProgressOption(*verb, options->progress);
    verb->callback([options] { Run(*options); });
}

}  // namespace assembly::tool
