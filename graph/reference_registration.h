#pragma once

#include "graph/lookup_table.h"
#include "graph/reference_impl.h"

#include <cstdint>

namespace qn::graph {

/// As `Reference::RegisterInTable`. Where more than `mostUses` uses occur, each definition is entered once,
/// and all ends when that many were met. Ends early, too, when the context (may be null) is cancelled.
/// Expects a table.
Reference* RegisterInTable(ReferenceImpl& root, LookupTable* table, std::int64_t mostUses,
                           const Context* context = nullptr);

}  // namespace qn::graph
