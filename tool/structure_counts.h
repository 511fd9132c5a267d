#pragma once

#include "tool/structure.h"

#include <cstdint>

namespace assembly::tool {

/// Fills in everything that follows from definitions, uses and roots: the order, and all counts. Fails with
/// kUnreadable if a definition contains itself, with kLimit if there are more occurrences than 64 bits count.
void CountStructure(Structure& structure);

/// Sums and products of counts; fail with kLimit where 64 bits end.
std::uint64_t AddCounts(std::uint64_t left, std::uint64_t right);
std::uint64_t MultiplyCounts(std::uint64_t left, std::uint64_t right);

}  // namespace assembly::tool
