#pragma once

#include "frame/host/selector.h"
#include "frame/host/var.h"
#include "graph/graph.h"

// The `selectors` values of instances and references: empty, or a map from running number to persistent
// selector.

namespace qn::graph {

/// The entry under that number, borrowed, or null. Entries under a text are never met.
PersistentSelectorImpl* SelectorAt(const Var& selectors, int index);
/// Appends under the running count, which may overwrite an entry above a gap.
void AppendSelector(Var& selectors, const Var& selector);
/// Nothing happens from the count on.
void RemoveSelectorAt(Var& selectors, int index);
/// Invalid outside the count, for a missing entry, or without table.
Selector ReadSelector(const Var& selectors, int index, LookupTable* table);

/// Calls `visit(PersistentSelectorImpl&)` for each entry below the count.
template <class Visit>
void ForEachSelector(const Var& selectors, Visit&& visit) {
    for (int i = 0; i < selectors.size(); ++i)
        if (PersistentSelectorImpl* selector = SelectorAt(selectors, i)) visit(*selector);
}

}  // namespace qn::graph
