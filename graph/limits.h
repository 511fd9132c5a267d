#pragma once

#include <cstdint>

namespace qn::graph {

/// Occurrences that one walk by occurrence may meet (nodes made, uses registered) before it stops.
inline constexpr std::int64_t kMaxOccurrences = 20'000'000;

}  // namespace qn::graph
