#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace qn {

// Definitions name files by texts that come from other files, so no name is trusted: it is relative to the
// folder of the file that names it, and leads to nothing outside of that folder or of the folders that the
// user allowed. All texts are UTF-8.

/// The name with forward slashes, whatever system wrote it.
std::string WithForwardSlashes(std::string_view name);

/// Why a name is refused.
enum class NameFault {
    kNone,
    kEmpty,
    kUnusable,  ///< holds a control character, or is longer than any path
    kAbsolute,  ///< starts at a root, a drive, a server or a scheme
    kOutside,   ///< leads out of the folders where files may lie, by ".." or by a link
};

/// What the text alone says: nothing is looked up.
NameFault FaultOfText(std::string_view name);

/// Where a name leads to.
struct ExternalPath {
    NameFault fault = NameFault::kNone;
    std::string path;  ///< absolute, links resolved: two names of one file have one path; empty after a fault
    std::string shown;  ///< for messages and for opening: the folder of the naming file as the user typed it,
                        ///< then the name
};

/// What a name may be resolved against: the folder of one naming file, and the folders that the user allowed.
class ExternalFolder {
public:
    /// `namingFile` as it is opened; `allowed` folders need not exist.
    ExternalFolder(const std::string& namingFile, const std::vector<std::string>& allowed);

    /// Tells nothing about whether the file is there.
    ExternalPath Resolve(std::string_view name) const;

private:
    std::string shown_;                 // of the naming file, as typed; may be empty
    std::vector<std::string> folders_;  // links resolved; the naming file's own first
};

/// The path of an existing file with links resolved; the path itself, made absolute, if that fails.
std::string CanonicalPath(const std::string& file);
/// The fault in words, to stand after the name.
const char* DescribeFault(NameFault fault);

}  // namespace qn
