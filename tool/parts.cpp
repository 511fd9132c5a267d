#include "tool/dates.h"
#include "tool/failure.h"
#include "tool/named_files.h"
#include "tool/parts_fields.h"
#include "tool/parts_list.h"
#include "tool/progress_option.h"
#include "tool/session.h"
#include "tool/validity.h"
#include "tool/verbs.h"

#include <map>
#include <memory>

namespace assembly::tool {
namespace {

struct Options {
    LoadRequest load;
    FollowRequest follow;
    PartsOptions parts;
    PartsFormat format = PartsFormat::kTable;
    std::optional<std::string> asOf;
    std::optional<std::int32_t> line;
    ProgressStyle progress = ProgressStyle::kAuto;
};

constexpr const char* kExamples =
    "Examples:\n"
    "  assembly parts bracket.stp                                what it is made of, level by level\n"
    "  assembly parts --structure flat bracket.stp               each part with how many there are\n"
    "  assembly parts --structure flat --format csv --sort-field name bracket.stp\n"
    "  assembly parts --fields name,quantity,Description --level 2 bracket.stp\n"
    "  assembly parts --structure flat --group-by name bracket.stp   parts of one name as one\n"
    "  assembly parts --as-of 2026-03-31 --line 120 bracket.qn   only what is valid then\n\n"
    "Prints the bill of materials. A line stands for all uses of a definition within one parent. The\n"
    "quantities of a flat list add up to the number of occurrences of parts. Files that the assembly names\n"
    "are read on request alone (--load all).\n\n";

const std::map<std::string, PartsStructure> kStructures{{"multi", PartsStructure::kMulti},
                                                        {"single", PartsStructure::kSingle},
                                                        {"flat", PartsStructure::kFlat},
                                                        {"occurrences", PartsStructure::kOccurrences}};
const std::map<std::string, PartsFormat> kFormats{{"table", PartsFormat::kTable},
                                                  {"csv", PartsFormat::kCsv},
                                                  {"json", PartsFormat::kJson},
                                                  {"md", PartsFormat::kMarkdown}};

Validity ValidityOf(const Options& options) {
    Validity validity;
    validity.line = options.line;
    if (!options.asOf) return validity;
    validity.date = ParseDate(*options.asOf);
    if (!validity.date)
        throw Failure(ExitCode::kUsage,
                      "\"" + *options.asOf + "\" is no date, as 2026-03-31 or 2026-03-31T08:30:00Z");
    return validity;
}

void Run(const Options& options) {
    const Validity validity = ValidityOf(options);
    Session session(options.progress);
    NamedFiles files = ReadNamedFiles(session, options.load, options.follow);
    const qn::Counted<qn::k3::Scene> scene = files.files.front().scene;
    FollowedStructure followed = Join(std::move(files));
    if (validity.IsAsked()) followed.structure = OnlyValid(followed.structure, *scene, validity);
    Output output;
    WritePartsList(output, followed.structure, options.parts, options.format);
    followed.FailIfMissing();
}

template <class Value>
void AddChoice(CLI::App& verb, const char* name, const std::map<std::string, Value>& choices, Value& chosen,
               const char* meaning) {
    std::vector<std::string> words;
    for (const auto& [word, value] : choices)
        words.push_back(word);
    verb.add_option_function<std::string>(
            name, [&choices, &chosen](const std::string& word) { chosen = choices.at(word); }, meaning)
        ->check(CLI::IsMember(words));
}

void AddLayout(CLI::App& verb, Options& options) {
    PartsOptions& parts = options.parts;
    AddChoice(verb, "--structure", kStructures, parts.structure,
              "multi, single, flat or occurrences (multi)");
    verb.add_option("--level", parts.level, "Deepest level to list; the top has level 0, its components 1")
        ->check(CLI::Range(1u, PartsOptions::kAllLevels));
    verb.add_flag("--once", parts.once,
                  "Of several levels: list the components of an assembly only where it first stands");
    verb.add_option("--fields", parts.fields, "Columns, separated by commas")
        ->delimiter(',')
        ->allow_extra_args(false);
    verb.add_option("--group-by", parts.groupBy, "Make lines that agree in these fields one")
        ->delimiter(',')
        ->allow_extra_args(false);
    CLI::Option* const sort =
        verb.add_option("--sort-field", parts.sortField, "Order lines, or the components of each assembly");
    verb.add_flag("--descending", parts.descending, "The other way round")->needs(sort);
    AddChoice(verb, "--format", kFormats, options.format, "table, csv, json or md (table)");
}

}  // namespace

void AddParts(CLI::App& app) {
    auto options = std::make_shared<Options>();
    options->load.structureOnly = options->load.graphOnly = true;
    CLI::App* verb = app.add_subcommand("parts", "Print the bill of materials");
    verb->description(kExamples + DescribePartsFields());
    verb->add_option("FILE", options->load.file, "STEP or scene file")->required();
    AddFollowOptions(*verb, options->follow);
    AddLayout(*verb, *options);
    verb->add_option("--as-of", options->asOf, "Only what is valid on this date (UTC)");
    verb->add_option("--line", options->line, "Only what is valid for this line number");
    AddProgressOption(*verb, options->progress);
    verb->callback([options] { Run(*options); });
}

}  // namespace assembly::tool
