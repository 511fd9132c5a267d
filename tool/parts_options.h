#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace assembly::tool {

/// How a parts list is laid out.
enum class PartsStructure {
    kMulti,        ///< the tops and everything below, level by level, with quantities per parent
    kSingle,       ///< the direct components of the tops
    kFlat,         ///< parts alone, with total quantities
    kOccurrences,  ///< one row for each occurrence
};

enum class PartsFormat { kTable, kCsv, kJson, kMarkdown };

struct PartsOptions {
    /// That a list sorts or groups at most; each is kept, with its texts.
    static constexpr std::size_t kMostKeptLines = 5'000'000;
    static constexpr std::uint32_t kAllLevels = std::numeric_limits<std::uint32_t>::max() - 1;

    PartsStructure structure = PartsStructure::kMulti;
    std::uint32_t level = kAllLevels;  ///< deepest level that is listed; the tops have 0
    bool once = false;                 ///< multi: the components of an assembly only where it first stands
    std::vector<std::string> fields;   ///< columns by name; empty: by structure
    std::vector<std::string> groupBy;  ///< rows that agree in these fields become one
    std::string sortField;             ///< empty: the order of the assembly
    bool descending = false;
    std::size_t mostKeptLines = kMostKeptLines;
};

}  // namespace assembly::tool
