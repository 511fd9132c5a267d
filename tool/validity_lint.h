#pragma once

#include "tool/validity_ranges.h"

#include <string>
#include <vector>

namespace assembly::tool {

/// What is doubtful about validity ranges. Codes are never changed and never used again:
///   inverted-range     error    the end stands before the start, so nothing is valid in it
///   overlapping-ranges warning  two ranges of one kind have a date or a line in common
///   gap-between-ranges warning  dates or lines between two ranges are in none; two dates a day apart are no
///   gap missing-ranges     warning  no ranges, though a sibling of the same definition has some
struct ValidityFinding {
    const char* code;
    const char* severity;
    std::string path;  ///< of the occurrence, of a use's first one
    std::string message;
};

std::vector<ValidityFinding> LintValidity(const Structure& structure, const qn::k3::Scene& scene);

}  // namespace assembly::tool
