#include "graph/selector_list.h"

#include "graph/lookup_table.h"
#include "graph/persistent_selector_impl.h"

namespace qn::graph {

PersistentSelectorImpl* SelectorAt(const Var& selectors, int index) {
    const Var* entry = selectors.Lookup(index);
    return entry ? Cast<PersistentSelectorImpl>(*entry) : nullptr;
}

void AppendSelector(Var& selectors, const Var& selector) {
    const int count = selectors.size();
    selectors.At(count) = selector;
}

void RemoveSelectorAt(Var& selectors, int index) {
    if (index < selectors.size()) selectors.Remove(Var(index));
}

Selector ReadSelector(const Var& selectors, int index, LookupTable* table) {
    Selector result;
    if (!table || index >= selectors.size()) return result;
    const Var* entry = selectors.Lookup(index);
    table->ResolvePersistentSelector(result, entry ? Cast<PersistentSelector>(*entry) : nullptr);
    return result;
}

}  // namespace qn::graph
