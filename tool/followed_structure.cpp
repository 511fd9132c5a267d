#include "tool/failure.h"
#include "tool/named_files.h"
#include "tool/similar_file.h"
#include "tool/terminal.h"

#include <charconv>

namespace assembly::tool {
namespace {

constexpr const char* kAll = "all";
constexpr const char* kNoFiles = "none";

std::string Quoted(const Definition& definition) {
    return definition.name.empty() ? std::string("(no name)") : "\"" + Printable(definition.name) + "\"";
}

std::string MissingLine(const NamedFiles& files, const NamedFile& file, SimilarFiles& similar) {
    const NamedFile& naming = files.files[file.namedBy];
    const FileNaming& first = naming.namings[file.naming];
    std::string text = "missing file \"" + Printable(first.name) + "\": named by definition " +
                       Quoted(naming.structure.definitions[first.definition]) + " in " +
                       Printable(naming.shown);
    if (file.otherNamings > 0) text += " and by " + std::to_string(file.otherNamings) + " more";
    text += ", looked for at " + Printable(file.shown);
    const std::string other = similar.Find(file.shown);
    return other.empty() ? text : text + "; there is " + Printable(other);
}

/// False if the text is neither a word for it nor a number.
bool ReadLevels(const std::string& text, std::uint32_t& levels) {
    if (text == kAll) levels = FollowRequest::kAllLevels;
    if (text == kNoFiles) levels = 0;
    if (text == kAll || text == kNoFiles) return true;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), levels);
    return error == std::errc() && end == text.data() + text.size();
}

}  // namespace

std::string MissingText(const NamedFiles& files) {
    std::string text;
    SimilarFiles similar;
    for (const NamedFile& file : files.files)
        if (file.state == FileState::kMissing)
            text += (text.empty() ? "" : "\nassembly: ") + MissingLine(files, file, similar);
    return text;
}

void FollowedStructure::FailIfMissing() const {
    if (!missing.empty()) throw Failure(ExitCode::kFileMissing, missing);
}

FollowedStructure Join(NamedFiles&& files) {
    FollowedStructure result;
    result.filesNamed = files.CountNamed();
    result.filesRead = files.opened - 1;
    result.filesMissing = files.CountMissing();
    result.missing = MissingText(files);
    result.structure = JoinFiles(std::move(files));
    return result;
}

FollowedStructure ReadFollowed(Session& session, const LoadRequest& request, const FollowRequest& follow) {
    return Join(ReadNamedFiles(session, request, follow));
}

void AddFollowOptions(CLI::App& verb, FollowRequest& follow) {
    verb.add_option_function<std::string>(
            "--load",
            [&follow](const std::string& text) {
                if (!ReadLevels(text, follow.levels))
                    throw CLI::ValidationError("--load", "all, none or a number of levels, not " + text);
            },
            "Read the files that definitions name: all, none, or so many levels of them")
        ->default_str(kNoFiles)
        ->option_text("all|none|N (default: none)");
    AddAllowOption(verb, follow);
}

void AddAllowOption(CLI::App& verb, FollowRequest& follow) {
    verb.add_option("--allow", follow.allowed,
                    "Files may lie below this folder, too, not only below that of the file that names them")
        ->option_text("DIR")
        ->allow_extra_args(false);
}

}  // namespace assembly::tool
