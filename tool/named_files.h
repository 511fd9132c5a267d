#pragma once

#include "tool/session.h"
#include "tool/structure.h"

#include <CLI/CLI.hpp>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace assembly::tool {

/// What a chain of files may ask for. A file beyond a limit is refused with exit code 7.
namespace named_file_limits {
inline constexpr std::uint32_t kMostLevels = 1000;    ///< files that name files below the first one
inline constexpr std::uint32_t kMostFiles = 100'000;  ///< files that one assembly is made of
}  // namespace named_file_limits

/// Which of the files that definitions name are read.
struct FollowRequest {
    static constexpr std::uint32_t kAllLevels = std::numeric_limits<std::uint32_t>::max();
    std::uint32_t levels = 0;          ///< 0: none, 1: those that the first file names, ...
    std::vector<std::string> allowed;  ///< folders where files may lie besides those of the naming files
};

/// One definition of a file that names another one.
struct FileNaming {
    std::uint32_t definition = 0;  ///< index into the structure of the naming file
    std::uint32_t file = 0;        ///< index into `NamedFiles::files`
    std::string name;              ///< as the definition has it, with forward slashes
};

/// One file of an assembly.
struct NamedFile {
    std::string shown;        ///< for messages: relative as the first file was typed
    std::string path;         ///< absolute, links resolved
    std::uint32_t level = 0;  ///< the first file has 0
    FileState state = FileState::kNotRead;
    std::uint32_t namedBy = 0;  ///< the file that named it first, and the naming there
    std::uint32_t naming = 0;
    std::uint32_t otherNamings = 0;    ///< by further definitions
    std::vector<FileNaming> namings;   ///< of other files, in the order of the definitions
    qn::Counted<qn::k3::Scene> scene;  ///< null if it was not read
    Structure structure;               ///< of this file alone
};

/// The files that an assembly is made of: the first one, then the others in the order in which they are met,
/// level by level. Each stands here once, however often and under whatever names it is named.
struct NamedFiles {
    std::vector<NamedFile> files;
    std::size_t opened = 0;  ///< times that a file was opened, the first one included

    /// Different files that are named; where none was followed, different names.
    std::size_t CountNamed() const;
    std::size_t CountMissing() const;
    /// Files that were read besides the first one.
    std::size_t CountRead() const;
    /// The names by which a file was reached: "a.qn -> parts/b.qn".
    std::string ChainTo(std::uint32_t file) const;
};

/// Reads a file, and those that its definitions name as far as asked. Each file is read once. A missing file
/// is noted; a file that names itself, directly or through others, a name that may not be opened, and a file
/// that cannot be read fail with a message that holds the chain of names.
NamedFiles ReadNamedFiles(Session& session, const LoadRequest& request, const FollowRequest& follow);

/// One structure of all: the root of a file takes the place of the definitions that name it. Files that are
/// definitions of one server id are one definition. Costs by definitions and uses.
Structure JoinFiles(NamedFiles&& files);

/// One line for each missing file: who names it, and where it was looked for. Empty if none is missing.
std::string MissingText(const NamedFiles& files);

/// The whole of an assembly, for verbs that look at its structure.
struct FollowedStructure {
    Structure structure;
    std::size_t filesNamed = 0;    ///< different ones, without the first
    std::size_t filesRead = 0;     ///< of these
    std::size_t filesMissing = 0;  ///< of these

    /// Fails with kFileMissing if files are missing; called when all is printed.
    void FailIfMissing() const;

    std::string missing;  ///< what `FailIfMissing` tells
};
FollowedStructure Join(NamedFiles&& files);
FollowedStructure ReadFollowed(Session& session, const LoadRequest& request, const FollowRequest& follow);

/// Adds "--load" and "--allow".
void AddFollowOptions(CLI::App& verb, FollowRequest& follow);
void AddAllowOption(CLI::App& verb, FollowRequest& follow);

}  // namespace assembly::tool
