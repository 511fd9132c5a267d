#include "engine/import/moved_name.h"

#include <algorithm>
#include <filesystem>

namespace qn {
namespace {

namespace fs = std::filesystem;

/// Where a name leads matters here, not whether it may be opened.
const std::vector<std::string> kAnywhere = {"/"};

std::string FolderOf(const std::string& file) {
    return CanonicalPath((fs::path(file).parent_path() / ".").string());
}

bool GoesUp(const fs::path& name) {
    return std::find(name.begin(), name.end(), "..") != name.end();
}

/// Whether the text is understood as it is meant.
bool IsUsable(const std::string& name) {
    return FaultOfText(name) == NameFault::kNone && WithForwardSlashes(name) == name;
}

}  // namespace

MovedNames::MovedNames(const std::string& from, const std::string& to)
    : oldFolder_(FolderOf(from)),
      newFolder_(FolderOf(to)),
      fromOld_(from, kAnywhere),
      fromNew_(to, kAnywhere) {}

std::optional<std::string> MovedNames::Move(std::string_view name) const {
    const fs::path portable(WithForwardSlashes(name));
    if (!AreChanged() || FaultOfText(portable.string()) != NameFault::kNone) return std::string(name);
    const fs::path oldFolder(oldFolder_), newFolder(newFolder_);
    const fs::path way = oldFolder.lexically_relative(newFolder);
    const fs::path tidy = (oldFolder / portable).lexically_normal().lexically_relative(newFolder);
    // "./" keeps a name from looking like a drive.
    for (const fs::path& candidate : {tidy, "." / tidy, "." / way / portable}) {
        if (!IsUsable(candidate.string())) continue;
        // Both folders are free of links, so a name that goes down alone needs no look at the disk. Behind a
        // link ".." leads elsewhere than its text says.
        if (!GoesUp(portable) || fromNew_.Resolve(candidate.string()).path == fromOld_.Resolve(name).path)
            return candidate.string();
    }
    return std::nullopt;
}

bool MovedNames::LeadsTo(std::string_view name, const std::string& path) const {
    const fs::path portable(WithForwardSlashes(name)), wanted(path);
    std::error_code ignored;
    const bool isPossible =
        portable.filename() == wanted.filename() || fs::is_symlink(oldFolder_ / portable, ignored);
    return isPossible && fromOld_.Resolve(name).path == path;
}

bool MovedNames::LeadsOut(std::string_view name) {
    const fs::path tidy = fs::path(name).lexically_normal();
    return tidy.is_relative() && tidy.begin() != tidy.end() && *tidy.begin() == "..";
}

}  // namespace qn
