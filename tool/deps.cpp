#include "tool/failure.h"
#include "tool/file_counts.h"
#include "tool/named_files.h"
#include "tool/session.h"
#include "tool/terminal.h"
#include "tool/verbs.h"

#include <memory>
#include <string>
#include <vector>

namespace assembly::tool {
namespace {

struct Options {
    LoadRequest load;
    FollowRequest follow;
    std::string format = "tree";
    bool missing = false;
};

constexpr const char* kExamples =
    "Examples:\n"
    "  assembly deps master.stp                    the files that an assembly is made of, as a tree\n"
    "  assembly deps --missing master.stp          those that are not there\n"
    "  assembly deps --format json master.qn       files, who names them and how often they are used\n\n"
    "Lists the files that an assembly names: reads the structure of the file, of those that its definitions\n"
    "name, and so on, each once. Behind a name stands how many uses the naming file has of it; a file that\n"
    "stands above already is not gone into again. Exit code 5 if a file is missing.";

const char* StateText(FileState state) {
    return state == FileState::kMissing ? "missing" : state == FileState::kRead ? "read" : "not read";
}

std::string Counted(std::uint64_t count, const char* what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

/// The tree of files, each gone into once.
class TreeWriter {
public:
    TreeWriter(Output& output, const NamedFiles& files, const FileCounts& counts)
        : output_(output), files_(files), counts_(counts), shown_(files.files.size()) {}

    void Run() {
        output_.Line(Printable(files_.files.front().shown));
        Open(0);
        while (!levels_.empty() && output_.IsOpen()) {
            Level& level = levels_.back();
            const std::vector<FileLink>& links = counts_.links[level.file];
            if (level.next == links.size()) {
                levels_.pop_back();
                guides_.resize(levels_.empty() ? 0 : levels_.back().guide);
                continue;
            }
            const FileLink& link = links[level.next++];
            Write(link, level.next == links.size());
        }
    }

private:
    struct Level {
        std::uint32_t file;
        std::size_t next;
        std::size_t guide;  // length of the guides in front of its lines
    };

    void Open(std::uint32_t file) {
        shown_[file] = true;
        levels_.push_back({file, 0, guides_.size()});
    }

    void Write(const FileLink& link, bool isLast) {
        const NamedFile& file = files_.files[link.file];
        std::string notes = " (" + Counted(link.uses, "use") + ")";
        if (file.state != FileState::kRead) notes += std::string(" ") + StateText(file.state);
        const bool isAbove = shown_[link.file] && !counts_.links[link.file].empty();
        if (isAbove) notes += " as above";
        output_.Write(guides_ + (isLast ? "└─ " : "├─ "));
        output_.Line(Printable(link.name) + output_.Faint(notes));
        if (isAbove) return;
        guides_ += isLast ? "   " : "│  ";
        Open(link.file);
    }

    Output& output_;
    const NamedFiles& files_;
    const FileCounts& counts_;
    std::vector<bool> shown_;
    std::vector<Level> levels_;
    std::string guides_;
};

std::string Field(const char* key, const std::string& value) {
    return std::string("\"") + key + "\": " + value;
}

std::string LinksText(const std::vector<FileLink>& links) {
    std::string text = "[";
    for (const FileLink& link : links)
        text += (text.size() > 1 ? ", {" : "{") + Field("file", std::to_string(link.file)) + ", " +
                Field("name", Quoted(link.name)) + ", " +
                Field("definitions", std::to_string(link.definitions)) + ", " +
                Field("uses", std::to_string(link.uses)) + "}";
    return text + "]";
}

void WriteFiles(Output& output, const NamedFiles& files, const FileCounts& counts) {
    output.Write("  \"files\": [");
    for (std::size_t i = 0; i < files.files.size(); ++i) {
        const NamedFile& file = files.files[i];
        output.Write(std::string(i == 0 ? "\n" : ",\n") + "    {" + Field("path", Quoted(file.shown)) + ", " +
                     Field("state", Quoted(StateText(file.state))) + ", " +
                     Field("level", std::to_string(file.level)) + ", " +
                     Field("uses", std::to_string(counts.uses[i])) + ", " +
                     Field("occurrences", std::to_string(counts.occurrences[i])) + ", " +
                     Field("names", LinksText(counts.links[i])) + "}");
    }
    output.Write("\n  ],\n");
}

void WriteMissing(Output& output, const NamedFiles& files) {
    output.Write("  \"missing\": [");
    const char* separator = "\n";
    for (std::uint32_t i = 0; i < files.files.size(); ++i) {
        const NamedFile& file = files.files[i];
        if (file.state != FileState::kMissing) continue;
        output.Write(separator + ("    {" + Field("path", Quoted(file.shown))) + ", " +
                     Field("chain", Quoted(files.ChainTo(i))) + "}");
        separator = ",\n";
    }
    output.Write("\n  ]");
}

void WriteJson(Output& output, const NamedFiles& files, const FileCounts& counts, bool missingOnly) {
    output.Write("{\n");
    if (!missingOnly) WriteFiles(output, files, counts);
    WriteMissing(output, files);
    output.Line("\n}");
}

void WriteChains(Output& output, const NamedFiles& files) {
    for (std::uint32_t i = 0; i < files.files.size(); ++i)
        if (files.files[i].state == FileState::kMissing) output.Line(Printable(files.ChainTo(i)));
}

void Run(const Options& options) {
    Session session;
    const NamedFiles files = ReadNamedFiles(session, options.load, options.follow);
    const FileCounts counts = CountFiles(files);
    Output output;
    if (options.format == "json")
        WriteJson(output, files, counts, options.missing);
    else if (options.missing)
        WriteChains(output, files);
    else
        TreeWriter(output, files, counts).Run();
    if (const std::string missing = MissingText(files); !missing.empty())
        throw Failure(ExitCode::kFileMissing, missing);
}

}  // namespace

void AddDeps(CLI::App& app) {
    auto options = std::make_shared<Options>();
    options->load.structureOnly = options->load.graphOnly = true;
    options->follow.levels = FollowRequest::kAllLevels;
    CLI::App* verb = app.add_subcommand("deps", "List the files that an assembly is made of");
    verb->description(kExamples);
    verb->add_option("FILE", options->load.file, "STEP, glTF or scene file")->required();
    verb->add_flag("--missing", options->missing, "Only the files that are not there");
    verb->add_option("--format", options->format, "tree or json")->check(CLI::IsMember({"tree", "json"}));
    AddAllowOption(*verb, options->follow);
    verb->callback([options] { Run(*options); });
}

}  // namespace assembly::tool
