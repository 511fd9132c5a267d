#pragma once

#include "tool/validity_ranges.h"

#include <string>
#include <vector>

namespace assembly::tool {

/// Ranges to add to one occurrence.
struct RangesToAdd {
    std::string occurrence;  ///< path
    std::string from, to;    ///< dates; a missing one leaves that end open, both missing: no date range
    std::string lines;       ///< "A-B" or "A" from 0 on; empty: no line range
    std::vector<std::string> texts;
    bool onlyHere = false;  ///< for this occurrence alone, not for its use
};

/// Where the ranges went.
struct AddedRanges {
    std::string path;
    bool isUse = false;             ///< or the node of one occurrence
    std::uint64_t occurrences = 1;  ///< that they hold for
    std::vector<ValidityRange> ranges;
};

/// What the texts say. Fails with kUsage for one that means nothing, and for a range that ends before it
/// starts.
std::vector<ValidityRange> RangesIn(const RangesToAdd& request);

/// Adds the ranges behind those that are there. A top-level occurrence, and with `onlyHere` any, keeps them
/// on its node, which is then made if it is not there. Fails with kUsage as `RangesIn`, and for a path that
/// leads nowhere.
AddedRanges AddRanges(qn::k3::Scene& scene, qn::Context& context, const RangesToAdd& request);

}  // namespace assembly::tool
