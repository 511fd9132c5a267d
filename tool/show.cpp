#include "tool/named_files.h"
#include "tool/occurrence_walk.h"
#include "tool/progress_option.h"
#include "tool/session.h"
#include "tool/show_json.h"
#include "tool/show_table.h"
#include "tool/verbs.h"

#include <memory>

namespace assembly::tool {
namespace {

struct Options {
    LoadRequest load;
    FollowRequest follow;
    ShowOptions show;
    std::string format = "table";
    ProgressStyle progress = ProgressStyle::kAuto;
};

constexpr const char* kExamples =
    "Examples:\n"
    "  assembly show bracket.stp                   the tree of occurrences\n"
    "  assembly show --depth 2 bracket.stp         two levels of it\n"
    "  assembly show --definitions bracket.stp     each definition with how often it is used\n"
    "  assembly show --format json bracket.qn      definitions, uses and occurrences for scripts\n"
    "  assembly show --load all master.stp         with the files that the assembly names\n\n"
    "Prints the occurrence tree of an assembly: definition name, then the occurrence's own name in quotes "
    "where it\n"
    "differs, then how many uses the definition has where it is more than one, then the file that it names "
    "and that\n"
    "was not read. Files that the assembly names are read on request alone (--load all).";

void Run(const Options& options) {
    Session session(options.progress);
    const FollowedStructure followed = ReadFollowed(session, options.load, options.follow);
    const Structure& structure = followed.structure;
    Output output;
    if (options.format == "json")
        WriteShowJson(output, structure, options.show);
    else if (options.show.definitions)
        WriteDefinitionTable(output, structure, options.show);
    else
        WriteOccurrenceTree(output, structure, options.show);
    followed.FailIfMissing();
}

}  // namespace

void AddShow(CLI::App& app) {
    auto options = std::make_shared<Options>();
    options->load.structureOnly = options->load.graphOnly = true;
    CLI::App* verb =
        app.add_subcommand("show", "Print the occurrence tree or the definitions of an assembly");
    verb->description(kExamples);
    verb->add_option("FILE", options->load.file, "STEP or scene file")->required();
    AddFollowOptions(*verb, options->follow);
    verb->add_option("--depth", options->show.depth, "Levels of the tree to print (1: the roots alone)")
        ->check(CLI::Range(1u, OccurrenceWalk::kAllLevels));
    verb->add_flag("--definitions", options->show.definitions, "List the definitions in place of the tree");
    verb->add_flag("--ids", options->show.ids, "Print ids, too");
    verb->add_option("--format", options->format, "table or json")->check(CLI::IsMember({"table", "json"}));
    AddProgressOption(*verb, options->progress);
    verb->callback([options] { Run(*options); });
}

}  // namespace assembly::tool
