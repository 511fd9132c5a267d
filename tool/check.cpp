#include "tool/failure.h"
#include "tool/file_jobs.h"
#include "tool/progress_option.h"
#include "tool/scene_check.h"
#include "tool/stored_scene.h"
#include "tool/terminal.h"
#include "tool/verbs.h"

#include <nlohmann/json.hpp>

#include <memory>

namespace assembly::tool {
namespace {

using Json = nlohmann::json;

struct Options {
    std::vector<std::string> files;
    std::size_t jobs = 1;
    std::string format = "table";
    ProgressStyle progress = ProgressStyle::kAuto;
};

/// What a check of one file gave.
struct CheckedFile {
    ExitCode code = ExitCode::kFine;
    std::string failure;
    std::vector<Finding> findings;
};

constexpr const char* kExamples =
    "Examples:\n"
    "  assembly check bracket.qn                       one line for each finding, nothing if there is none\n"
    "  assembly check --jobs 4 parts/*.qn              several files, four at a time\n"
    "  assembly check --format json bracket.stp        the same for scripts\n\n"
    "Tells whether a file is sound. Compares the nodes of a scene with its definitions and uses, looks for "
    "definitions inside themselves, "
    "for uses\n"
    "and overrides that lead nowhere, and for layers that list what is not there. Files stay as they are.\n"
    "Exit codes: 0 nothing found, 1 findings.";

CheckedFile CheckFile(const std::string& file, ProgressStyle progress) {
    CheckedFile checked;
    try {
        Session session(progress);
        LoadRequest request;
        request.file = file;
        request.structureOnly = true;
        const auto scene = LoadAsStored(session, request);
        checked.findings = CheckScene(*scene);
        if (!checked.findings.empty()) checked.code = ExitCode::kFindings;
    } catch (const Failure& failure) {
        checked.code = failure.Code();
        checked.failure = failure.what();
    } catch (const std::exception& error) {
        checked.code = ExitCode::kDefect;
        checked.failure = file + ": " + error.what();
    }
    return checked;
}

/// The way of a result from one process to another.
std::string Packed(const CheckedFile& checked) {
    Json findings = Json::array();
    for (const Finding& finding : checked.findings)
        findings.push_back({static_cast<int>(finding.kind), finding.path, finding.message});
    const auto bytes = Json::to_cbor({ToInt(checked.code), checked.failure, findings});
    return std::string(bytes.begin(), bytes.end());
}

CheckedFile Unpacked(const std::string& file, const JobResult& result) {
    CheckedFile checked;
    const Json packed = Json::from_cbor(result.output, true, false);
    if (!result.finished || packed.is_discarded()) {
        checked.code = ExitCode::kDefect;
        checked.failure = file + ": the check broke off";
        return checked;
    }
    checked.code = static_cast<ExitCode>(packed[0].get<int>());
    checked.failure = packed[1].get<std::string>();
    for (const Json& finding : packed[2])
        checked.findings.push_back({static_cast<FindingKind>(finding[0].get<int>()),
                                    finding[1].get<std::string>(), finding[2].get<std::string>()});
    return checked;
}

std::string Count(std::size_t number, const char* thing) {
    return std::to_string(number) + " " + thing + (number == 1 ? "" : "s");
}

/// Writes results as they come, in the order of the files.
class CheckWriter {
public:
    explicit CheckWriter(bool json) : json_(json) {
        if (json_) output_.Write("{\n  \"files\": [");
    }

    void Write(const std::string& file, const CheckedFile& checked) {
        json_ ? WriteJson(file, checked) : WriteLines(file, checked);
        if (!checked.failure.empty()) {
            output_.Flush();
            std::fprintf(stderr, "assembly: %s\n", checked.failure.c_str());
        }
        findings_ += checked.findings.size();
        // A file that could not be read says more than findings in others.
        if (code_ <= ExitCode::kFindings && checked.code != ExitCode::kFine) code_ = checked.code;
    }

    /// Fails with the code and the summary unless nothing was found.
    void Finish(std::size_t files) {
        if (json_) output_.Line("\n  ],\n  \"findings\": " + std::to_string(findings_) + "\n}");
        output_.Flush();
        const std::string summary = Count(files, "file") + " checked, " + Count(findings_, "finding");
        if (code_ != ExitCode::kFine) throw Failure(code_, summary);
        std::fprintf(stderr, "assembly: %s\n", summary.c_str());
    }

private:
    void WriteLines(const std::string& file, const CheckedFile& checked) {
        for (const Finding& finding : checked.findings)
            output_.Line(Printable(file + ": " + LineOf(finding)));
    }

    void WriteJson(const std::string& file, const CheckedFile& checked) {
        output_.Write(first_ ? "\n" : ",\n");
        first_ = false;
        output_.Write("    {\"file\": " + Quoted(file));
        if (!checked.failure.empty())
            output_.Write(", \"failure\": " + Quoted(checked.failure) +
                          ", \"exit_code\": " + std::to_string(ToInt(checked.code)));
        output_.Write(", \"findings\": [");
        const char* separator = "\n";
        for (const Finding& finding : checked.findings) {
            const FindingTexts& texts = TextsOf(finding.kind);
            output_.Write(separator);
            output_.Write(std::string("      {\"code\": ") + Quoted(texts.code) + ", \"severity\": " +
                          Quoted(texts.severity) + ", \"path\": " + Quoted(finding.path) +
                          ", \"message\": " + Quoted(finding.message) + "}");
            separator = ",\n";
        }
        output_.Write(checked.findings.empty() ? "]}" : "\n    ]}");
    }

    Output output_;
    bool json_;
    bool first_ = true;
    std::size_t findings_ = 0;
    ExitCode code_ = ExitCode::kFine;
};

void CheckInProcesses(const Options& options, CheckWriter& writer) {
    RunInProcesses(
        options.files.size(), options.jobs,
        [&](std::size_t i) { return Packed(CheckFile(options.files[i], ProgressStyle::kNone)); },
        [&](std::size_t i, const JobResult& result) {
            std::fputs(result.messages.c_str(), stderr);
            writer.Write(options.files[i], Unpacked(options.files[i], result));
        });
}

void Run(const Options& options) {
    CheckWriter writer(options.format == "json");
    if (options.files.size() == 1)
        writer.Write(options.files[0], CheckFile(options.files[0], options.progress));
    else
        CheckInProcesses(options, writer);
    writer.Finish(options.files.size());
}

}  // namespace

void AddCheck(CLI::App& app) {
    auto options = std::make_shared<Options>();
    CLI::App* verb = app.add_subcommand("check", "Tell what is wrong with the hierarchy of files");
    verb->description(kExamples);
    verb->add_option("FILE", options->files, "STEP, glTF or scene files")->required();
    verb->add_option("--jobs", options->jobs, "Files to check at a time, each in a process of its own (1)")
        ->check(CLI::Range(std::size_t{1}, std::size_t{256}));
    verb->add_option("--format", options->format, "table or json")->check(CLI::IsMember({"table", "json"}));
    AddProgressOption(*verb, options->progress);
    verb->callback([options] { Run(*options); });
}

}  // namespace assembly::tool
