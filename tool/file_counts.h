#pragma once

#include "tool/named_files.h"

#include <cstdint>
#include <string>
#include <vector>

namespace assembly::tool {

/// One file that another one names, put together over all definitions that name it there.
struct FileLink {
    std::uint32_t file = 0;
    std::string name;               ///< the first of its names there
    std::uint64_t definitions = 0;  ///< that name it
    std::uint64_t uses = 0;         ///< of these definitions in the naming file; a root counts as one
};

/// How often the files of an assembly are used. Costs by files and namings.
struct FileCounts {
    std::vector<std::vector<FileLink>> links;  ///< by file, in the order of the first naming
    std::vector<std::uint64_t> uses;           ///< by file, summed over all naming files
    std::vector<std::uint64_t> occurrences;    ///< by file, in the expanded tree
};

/// Fails with kLimit if there are more occurrences than 64 bits count.
FileCounts CountFiles(const NamedFiles& files);

}  // namespace assembly::tool
