#include "frame/host/collections.h"
#include "graph/id_path.h"
#include "graph/instance_impl.h"
#include "graph/lookup_table_impl.h"
#include "graph/persistent_selector_impl.h"
#include "graph/reference.h"
#include "graph/selector_list.h"

#include <set>

namespace qn::graph {

namespace {

/// Calls `visit` for the selector of property 9, then once for each selector of property 0x19.
template <class Visit>
void ForEachLinked(const HierarchyElement& element, Visit&& visit) {
    if (const auto linked = LinkOf(element)) visit(*linked);
    std::set<PersistentSelectorImpl*> visited;
    for (const auto& listed : ListedLinksOf(element))
        if (visited.insert(listed.Get()).second) visit(*listed);
}

}  // namespace

int InstanceImpl::GetSelectorCount() const {
    return selectors_.size();
}

Selector InstanceImpl::GetSelector(int index) const {
    return ReadSelector(selectors_, index, GetLookupTable());
}

void InstanceImpl::RemoveSelector(int index) {
    RemoveSelectorAt(selectors_, index);
}

void InstanceImpl::AddSelector(const Selector& selector) {
    LookupTable* table = GetLookupTable();
    if (!table) return AddLocalSelector(selector);
    if (!selector.IsValid()) return;
    if (const auto stored = table->CreatePersistentSelector(selector))
        AppendSelector(selectors_, Var(stored));
}

void InstanceImpl::AddLocalSelector(const Selector& selector) {
    if (!selector.IsValid()) return;
    if (const auto stored = PersistentFromSelector(selector)) AppendSelector(selectors_, Var(stored));
}

void InstanceImpl::ResolveSelectors(bool recurse, Var* cache) {
    ResolveOwnSelectors();
    if (recurse && reference_) reference_->ResolveSelectors(true, cache);
}

void InstanceImpl::ResolveOwnSelectors() {
    auto* table = Cast<LookupTableImpl>(GetLookupTable());
    String prefix = IdPathPrefix(table);
    const auto resolve = [&](PersistentSelectorImpl& selector) {
        ResolveSelector(&selector, &prefix, table, nullptr, false);
    };
    ForEachSelector(selectors_, resolve);
    ForEachLinked(*this, resolve);
}

void InstanceImpl::ResolveSelector(PersistentSelectorImpl* selector, String* prefix, LookupTableImpl* table,
                                   PersistentSelectorImpl* exclude, bool nested) {
    if (!selector || !table) return;
    const Var ids = PrefixedIdPath(selector->idPath, prefix ? *prefix : String());
    if (ids.IsArray()) {
        FollowIdPath(ids, *table, *selector);
        selector->idPath = Var();
    }
    if (nested) return;
    const auto resolve = [&](PersistentSelectorImpl& linked) {
        if (&linked != exclude) ResolveSelector(&linked, prefix, table, selector, true);
    };
    ForEachLinked(*selector, resolve);
}

void InstanceImpl::StoreSelectors(bool recurse, Var* visited) {
    StoreOwnSelectors();
    if (recurse && reference_) reference_->StoreSelectors(true, visited);
}

void InstanceImpl::StoreOwnSelectors() {
    const auto store = [](PersistentSelectorImpl& selector) { selector.StorePath(); };
    ForEachSelector(selectors_, store);
    ForEachLinked(*this, store);
}

}  // namespace qn::graph
