#pragma once

#include "product/effectivity.h"
#include "tool/structure.h"

#include <cstdint>
#include <string>
#include <vector>

namespace assembly::tool {

/// One validity range as it is kept, of either kind.
struct ValidityRange {
    enum class Kind { kDate, kLine };
    Kind kind = Kind::kDate;
    std::int64_t from = 0;           ///< date: seconds since 1970-01-01 UTC
    std::int64_t to = 0;             ///< included
    std::vector<std::string> texts;  ///< UTF-8
};
/// "date" or "line".
const char* WordOf(ValidityRange::Kind kind);
/// An end of a range for print: the date, or the number of the line.
std::string EndText(ValidityRange::Kind kind, std::int64_t end);

/// The ranges of an object in their order, dates first; none for null.
std::vector<ValidityRange> RangesOf(const qn::k3::Effectivity* ranges);
/// The ranges that hang on a node or a use, borrowed, or null.
qn::k3::Effectivity* EffectivityOf(const qn::Extension& holder);

/// Something that may have ranges: a use, for all its occurrences, or a node, for its own one.
struct RangeHolder {
    bool isUse = true;
    std::string path;               ///< of the occurrence; of a use's first one
    std::uint64_t occurrences = 1;  ///< that the ranges hold for
    const qn::k3::Effectivity* ranges = nullptr;
};

/// All holders that have ranges, uses first, in the order of the structure and of the nodes that the scene
/// shows. Costs by definitions, uses and nodes that are there.
std::vector<RangeHolder> RangeHolders(const Structure& structure, const qn::k3::Scene& scene);
/// Holders without ranges though a sibling of the same definition has some.
std::vector<RangeHolder> HoldersWithout(const Structure& structure, const qn::k3::Scene& scene);

}  // namespace assembly::tool
