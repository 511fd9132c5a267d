#include "engine/import/external_name.h"

#include <algorithm>
#include <filesystem>

namespace qn {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLongestName = 4096;  // bytes

bool IsLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool HasControlCharacter(std::string_view name) {
    return std::any_of(name.begin(), name.end(), [](unsigned char c) { return c < ' ' || c == 0x7f; });
}

/// "/a", "//server/a", "C:a", "file:///a".
bool IsAbsolute(std::string_view name) {
    if (name.front() == '/' || name.front() == '\\') return true;
    if (name.size() > 1 && IsLetter(name[0]) && name[1] == ':') return true;
    return name.find("://") != std::string_view::npos;
}

/// What exists of the path with links resolved, the rest joined to it.
fs::path Canonical(const fs::path& path) {
    std::error_code error;
    fs::path canonical = fs::weakly_canonical(fs::absolute(path, error), error);
    return error ? fs::absolute(path, error).lexically_normal() : canonical;
}

bool IsBelow(const fs::path& file, const fs::path& folder) {
    const auto ends = std::mismatch(folder.begin(), folder.end(), file.begin(), file.end());
    return ends.first == folder.end() && ends.second != file.end();
}

fs::path FolderOf(const fs::path& file) {
    return file.has_parent_path() ? file.parent_path() : fs::path(".");
}

}  // namespace

std::string WithForwardSlashes(std::string_view name) {
    std::string text(name);
    std::replace(text.begin(), text.end(), '\\', '/');
    return text;
}

NameFault FaultOfText(std::string_view name) {
    if (name.empty()) return NameFault::kEmpty;
    if (name.size() > kLongestName || HasControlCharacter(name)) return NameFault::kUnusable;
    return IsAbsolute(name) ? NameFault::kAbsolute : NameFault::kNone;
}

ExternalFolder::ExternalFolder(const std::string& namingFile, const std::vector<std::string>& allowed)
    : shown_(fs::path(namingFile).parent_path().string()) {
    folders_.push_back(Canonical(FolderOf(namingFile)).string());
    for (const std::string& folder : allowed) {
        // A final slash would be a last, empty part of the path.
        const fs::path canonical = Canonical(fs::path(folder) / ".");
        folders_.push_back((canonical.has_filename() ? canonical : canonical.parent_path()).string());
    }
}

ExternalPath ExternalFolder::Resolve(std::string_view name) const {
    const std::string portable = WithForwardSlashes(name);
    ExternalPath result;
    result.fault = FaultOfText(portable);
    if (result.fault != NameFault::kNone) return result;
    const fs::path target = Canonical(fs::path(folders_.front()) / portable);
    const bool lies = std::any_of(folders_.begin(), folders_.end(),
                                  [&](const std::string& folder) { return IsBelow(target, folder); });
    if (!lies) {
        result.fault = NameFault::kOutside;
        return result;
    }
    result.path = target.string();
    const fs::path written = fs::path(shown_) / portable;
    const fs::path tidy = written.lexically_normal();
    // Behind a link ".." leads elsewhere than its text says.
    result.shown = (Canonical(tidy) == target ? tidy : written).string();
    return result;
}

std::string CanonicalPath(const std::string& file) {
    return Canonical(file).string();
}

const char* DescribeFault(NameFault fault) {
    switch (fault) {
        case NameFault::kNone:
            return "can be used";
        case NameFault::kEmpty:
            return "is empty";
        case NameFault::kUnusable:
            return "is no name that a file can have";
        case NameFault::kAbsolute:
            return "is absolute; only names relative to the file that names them are opened";
        case NameFault::kOutside:
            return "leads out of the folder of the file that names it";
    }
    return "";
}

}  // namespace qn
