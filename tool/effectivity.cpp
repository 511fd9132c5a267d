#include "tool/column_widths.h"
#include "tool/failure.h"
#include "tool/progress_option.h"
#include "tool/save_target.h"
#include "tool/validity_add.h"
#include "tool/validity_lint.h"
#include "tool/verbs.h"

#include <algorithm>
#include <cstdio>
#include <memory>

namespace assembly::tool {
namespace {

struct Options {
    std::vector<std::string> files;
    LoadRequest load;
    SaveTarget target;
    RangesToAdd ranges;
    std::string format = "table";
    ProgressStyle progress = ProgressStyle::kAuto;
};

constexpr const char* kExamples =
    "Examples:\n"
    "  assembly effectivity show car.qn\n"
    "  assembly effectivity add car.qn --occurrence \"car/wheel[2]\" --from 2026-01-01 --to 2026-06-30 -o "
    "new.qn\n"
    "  assembly effectivity add car.qn --occurrence car/seat --lines 120-180 --text \"after refit\" "
    "--in-place\n"
    "  assembly effectivity lint *.qn\n\n"
    "Tells for which dates and line numbers what is valid. A use, or one occurrence alone, may be valid for "
    "some dates and line numbers only. \"assembly parts "
    "--as-of DATE\n"
    "--line N\" counts what is valid then.";
constexpr const char* kShowExamples =
    "Examples:\n"
    "  assembly effectivity show car.qn                    one line for each range\n"
    "  assembly effectivity show --format json car.qn      the same for scripts\n\n"
    "Lists the ranges of uses and occurrences. Ranges of a use hold for all its occurrences; the path is "
    "that of the first one. Dates are UTC, and "
    "both "
    "ends\n"
    "belong to a range.";
constexpr const char* kAddExamples =
    "Examples:\n"
    "  assembly effectivity add car.qn --occurrence \"car/wheel[2]\" --from 2026-01-01 --to 2026-06-30 -o "
    "new.qn\n"
    "  assembly effectivity add car.qn --occurrence car/seat --lines 120-180 --text refit --in-place\n"
    "  assembly effectivity add car.qn --occurrence car/seat --from 2026-07-01 --only-here -o new.qn\n\n"
    "Adds a range to a use or an occurrence. An occurrence is written as the names of the uses from the top "
    "down, as \"assembly check\" and "
    "\"effectivity show\"\n"
    "write them: \"car/wheel[2]\" is the second of several wheels; \"/\", \"[\" and \"\\\" within a name "
    "stand behind a \"\\\".\n"
    "Without --from or --to that end is open; a day as --to belongs to the range whole. The ranges go to the "
    "use, and\n"
    "so hold for all its occurrences, unless it stands at the top or --only-here is given.";
constexpr const char* kLintExamples =
    "Examples:\n"
    "  assembly effectivity lint car.qn\n"
    "  assembly effectivity lint --format json *.qn\n\n"
    "Reports ranges that look wrong: those that end before they start (inverted-range), that have something "
    "in common "
    "(overlapping-ranges),\n"
    "what lies between two ranges (gap-between-ranges; dates a day apart are no gap), and uses without "
    "ranges beside\n"
    "others of the same definition that have some (missing-ranges). Exit codes: 0 nothing found, 1 findings.";

std::string TextsOf(const ValidityRange& range) {
    std::string all;
    for (const std::string& text : range.texts)
        all += (all.empty() ? "" : "; ") + Printable(text);
    return all;
}

std::string RangeJson(const ValidityRange& range) {
    const auto end = [&](std::int64_t value) {
        return range.kind == ValidityRange::Kind::kDate ? Quoted(EndText(range.kind, value))
                                                        : EndText(range.kind, value);
    };
    std::string texts;
    for (const std::string& text : range.texts)
        texts += (texts.empty() ? "" : ", ") + Quoted(text);
    return std::string("{\"kind\": ") + Quoted(WordOf(range.kind)) + ", \"from\": " + end(range.from) +
           ", \"to\": " + end(range.to) + ", \"texts\": [" + texts + "]}";
}

std::string HolderJson(const std::string& path, bool isUse, std::uint64_t occurrences,
                       const std::vector<ValidityRange>& ranges) {
    std::string list;
    for (const ValidityRange& range : ranges)
        list += (list.empty() ? "" : ", ") + RangeJson(range);
    return "{\"path\": " + Quoted(path) + ", \"holder\": " + (isUse ? "\"use\"" : "\"occurrence\"") +
           ", \"occurrences\": " + std::to_string(occurrences) + ", \"ranges\": [" + list + "]}";
}

void WriteShowJson(Output& output, const std::vector<RangeHolder>& holders) {
    output.Write("{\"effectivity\": [");
    const char* separator = "\n";
    for (const RangeHolder& holder : holders) {
        output.Write(separator);
        output.Write("  " +
                     HolderJson(holder.path, holder.isUse, holder.occurrences, RangesOf(holder.ranges)));
        separator = ",\n";
    }
    output.Line(holders.empty() ? "]}" : "\n]}");
}

void WriteShowTable(Output& output, const std::vector<RangeHolder>& holders) {
    if (holders.empty()) return;
    std::vector<std::vector<std::string>> rows{{"path", "holds for", "kind", "from", "to", "texts"}};
    for (const RangeHolder& holder : holders)
        for (const ValidityRange& range : RangesOf(holder.ranges))
            rows.push_back({Printable(holder.path), std::to_string(holder.occurrences), WordOf(range.kind),
                            EndText(range.kind, range.from), EndText(range.kind, range.to), TextsOf(range)});
    ColumnWidths widths(rows[0].size());
    for (const auto& row : rows)
        for (std::size_t column = 0; column + 1 < row.size(); ++column)
            widths.Add(column, row[column], false);
    for (const auto& row : rows) {
        std::string line;
        for (std::size_t column = 0; column + 1 < row.size(); ++column)
            line += widths.Padded(column, row[column]) + "  ";
        line += row.back();
        output.Line(line.substr(0, line.find_last_not_of(' ') + 1));
    }
}

void Show(const Options& options) {
    Session session(options.progress);
    const auto scene = session.Load(options.load);
    const Structure structure = ReadStructure(*scene, session.GetContext());
    const std::vector<RangeHolder> holders = RangeHolders(structure, *scene);
    Output output;
    options.format == "json" ? WriteShowJson(output, holders) : WriteShowTable(output, holders);
}

void Add(const Options& options) {
    const std::string path = PathOf(options.target, options.load.file);
    if (path.empty()) throw Failure(ExitCode::kUsage, "effectivity add: say where to: -o FILE or --in-place");
    RangesIn(options.ranges);  // a text that means nothing is refused before a large file is read
    Session session(options.progress);
    const auto scene = session.Load(options.load);
    const AddedRanges added = AddRanges(*scene, session.GetContext(), options.ranges);
    SaveChanged(path, options.load.file, *scene, session);
    Output output;
    if (options.format == "json")
        output.Line(HolderJson(added.path, added.isUse, added.occurrences, added.ranges));
    else
        output.Line(Printable(added.path) + ": holds for " + std::to_string(added.occurrences) +
                    (added.occurrences == 1 ? " occurrence" : " occurrences"));
}

/// What a file answers; one that cannot be read keeps its failure.
struct LintedFile {
    std::vector<ValidityFinding> findings;
    ExitCode code = ExitCode::kFine;
    std::string failure;
};

LintedFile LintFile(const std::string& file, const Options& options) {
    LintedFile linted;
    try {
        Session session(options.progress);
        LoadRequest request = options.load;
        request.file = file;
        const auto scene = session.Load(request);
        linted.findings = LintValidity(ReadStructure(*scene, session.GetContext()), *scene);
        if (!linted.findings.empty()) linted.code = ExitCode::kFindings;
    } catch (const Failure& failure) {
        if (failure.Code() == ExitCode::kCancelled) throw;
        linted.code = failure.Code();
        linted.failure = failure.what();
    }
    return linted;
}

void WriteLintLines(Output& output, const std::string& file, const LintedFile& linted) {
    for (const ValidityFinding& finding : linted.findings)
        output.Line(Printable(file + ": " + finding.path + ": " + finding.severity + ": " + finding.message +
                              " [" + finding.code + "]"));
    if (linted.failure.empty()) return;
    output.Flush();
    std::fprintf(stderr, "assembly: %s\n", linted.failure.c_str());
}

void WriteLintJson(Output& output, const std::string& file, const LintedFile& linted, bool first) {
    output.Write((first ? "\n" : ",\n") + ("    {\"file\": " + Quoted(file)));
    if (!linted.failure.empty())
        output.Write(", \"exit_code\": " + std::to_string(ToInt(linted.code)) +
                     ", \"failure\": " + Quoted(linted.failure));
    output.Write(", \"findings\": [");
    const char* separator = "\n";
    for (const ValidityFinding& finding : linted.findings) {
        output.Write(separator);
        output.Write(std::string("      {\"code\": ") + Quoted(finding.code) +
                     ", \"severity\": " + Quoted(finding.severity) + ", \"path\": " + Quoted(finding.path) +
                     ", \"message\": " + Quoted(finding.message) + "}");
        separator = ",\n";
    }
    output.Write(linted.findings.empty() ? "]}" : "\n    ]}");
}

void RunLint(const Options& options) {
    const bool json = options.format == "json";
    Output output;
    std::size_t count = 0;
    ExitCode worst = ExitCode::kFine;
    if (json) output.Write("{\n  \"files\": [");
    for (const std::string& file : options.files) {
        const LintedFile linted = LintFile(file, options);
        json ? WriteLintJson(output, file, linted, &file == &options.files.front())
             : WriteLintLines(output, file, linted);
        count += linted.findings.size();
        worst = std::max(worst, linted.code);
    }
    if (json) output.Line("\n  ],\n  \"findings\": " + std::to_string(count) + "\n}");
    output.Flush();
    if (worst != ExitCode::kFine)
        throw Failure(worst, std::to_string(count) + (count == 1 ? " finding" : " findings"));
}

CLI::App* AddVerb(CLI::App& parent, const char* name, const char* meaning, const char* examples,
                  const std::shared_ptr<Options>& options) {
    CLI::App* verb = parent.add_subcommand(name, meaning);
    verb->description(examples);
    verb->add_option("--format", options->format, "table or json")->check(CLI::IsMember({"table", "json"}));
    AddProgressOption(*verb, options->progress);
    return verb;
}

void AddShowVerb(CLI::App& parent) {
    auto options = std::make_shared<Options>();
    options->load.structureOnly = options->load.graphOnly = true;
    CLI::App* verb = AddVerb(parent, "show", "List the validity ranges of a file", kShowExamples, options);
    verb->add_option("FILE", options->load.file, "STEP, glTF or scene file")->required();
    verb->callback([options] { Show(*options); });
}

void AddAddVerb(CLI::App& parent) {
    auto options = std::make_shared<Options>();
    CLI::App* verb = AddVerb(parent, "add", "Limit when an occurrence is valid", kAddExamples, options);
    RangesToAdd& ranges = options->ranges;
    verb->add_option("FILE", options->load.file, "STEP, glTF or scene file")->required();
    verb->add_option("--occurrence", ranges.occurrence, "Path of the occurrence")->required();
    verb->add_option("--from", ranges.from, "First date, UTC (open)");
    verb->add_option("--to", ranges.to, "Last date, UTC (open)");
    verb->add_option("--lines", ranges.lines, "Line numbers, as 12-40 or 12");
    verb->add_option("--text", ranges.texts, "A text of the range; may be given several times")
        ->allow_extra_args(false);
    verb->add_flag("--only-here", ranges.onlyHere, "For this occurrence alone; stores a node for each");
    AddSaveOptions(*verb, options->target);
    verb->callback([options] { Add(*options); });
}

void AddLintVerb(CLI::App& parent) {
    auto options = std::make_shared<Options>();
    options->load.structureOnly = options->load.graphOnly = true;
    CLI::App* verb =
        AddVerb(parent, "lint", "Tell what is doubtful about validity ranges", kLintExamples, options);
    verb->add_option("FILE", options->files, "STEP, glTF or scene files")->required();
    verb->callback([options] { RunLint(*options); });
}

}  // namespace

void AddEffectivity(CLI::App& app) {
    CLI::App* verb = app.add_subcommand("effectivity", "Show, add and examine validity ranges");
    verb->description(kExamples);
    verb->require_subcommand(1);
    AddShowVerb(*verb);
    AddAddVerb(*verb);
    AddLintVerb(*verb);
}

}  // namespace assembly::tool
