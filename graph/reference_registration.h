#pragma once

#include "graph/lookup_table.h"
#include "graph/reference_impl.h"

#include <cstdint>

namespace qn::graph {

/// As `Reference::RegisterInTable`, but ends when `mostUses` uses were met, each counted as often as it
/// occurs. Expects a table.
Reference* RegisterInTable(ReferenceImpl& root, LookupTable* table, std::int64_t mostUses);

}  // namespace qn::graph
