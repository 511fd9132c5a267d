#include "graph/id_path.h"

#include "graph/lookup_table_impl.h"
#include "graph/persistent_selector_impl.h"

namespace qn::graph {

String IdPathPrefix(const LookupTable* table) {
    if (!table) return String();
    const String prefix = table->GetCurrentIdPrefix();
    return prefix.IsEmpty() ? prefix : prefix + L"_";
}

Var PrefixedIdPath(const Var& idPath, const String& prefix) {
    const int count = idPath.size();
    if (count == 0 || prefix.IsEmpty()) return idPath;
    Var prefixed;
    prefixed.InitArray(count);
    for (int i = 0; i < count; ++i)
        prefixed.At(i) = Var(prefix + idPath.ValueAt(i).ToText());
    return prefixed;
}

void FollowIdPath(const Var& ids, LookupTableImpl& table, PersistentSelectorImpl& selector) {
    selector.path.clear();
    for (int i = 0; i < ids.size(); ++i) {
        const Counted<Instance>& instance = table.instancesById[ids.ValueAt(i).ToText()];
        if (!instance) {
            selector.path.clear();
            return;
        }
        selector.path.emplace_back(instance.Get());
    }
}

}  // namespace qn::graph
