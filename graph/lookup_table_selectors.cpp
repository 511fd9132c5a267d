#include "graph/instance_impl.h"
#include "graph/lookup_table_impl.h"
#include "graph/persistent_selector_impl.h"
#include "graph/selector_list.h"

namespace qn::graph {

namespace {

constexpr const wchar_t* kPrefixDelimiter = L"_";

/// The instance under the last id of a path; an unknown id stays in the index with a null. Null if it is no
/// `InstanceImpl`.
InstanceImpl* LastInstance(ElementIndex<Instance>& instancesById, const VarArray& ids) {
    return Cast<InstanceImpl>(instancesById[ids.Get(ids.GetCount() - 1).ToText()].Get());
}

/// The ids as a non-empty array, or null.
const VarArray* AsPath(const Var& ids) {
    const VarArray* array = ids.ToArray();
    return array && array->GetCount() != 0 ? array : nullptr;
}

String WithPrefix(const String& prefix, const String& id) {
    return prefix + kPrefixDelimiter + id;
}

Var PathWithPrefix(const String& prefix, const VarArray& ids) {
    const auto prefixed = VarArray::Create(ids.GetCount());
    for (int i = 0; i < ids.GetCount(); ++i)
        prefixed->Set(i, Var(WithPrefix(prefix, ids.Get(i).ToText())));
    return Var(prefixed);
}

Counted<PersistentSelectorImpl> MakeSelector(const Var& ids, const Var& attributes) {
    auto selector = Make<PersistentSelectorImpl>();
    if (!selector) return nullptr;
    selector->idPath = ids;
    selector->attributes = attributes;
    return selector;
}

void CopyTraverserAttributes(const Selector::Traverser& traverser, PersistentSelectorImpl& selector) {
    for (int id = kFirstProp; id <= kLastProp; ++id)
        selector.SetProperty(PropEnum{id}, traverser.GetProperty(PropEnum{id}, 1));
}

}  // namespace

void LookupTableImpl::ResolvePersistentSelector(Selector& out, PersistentSelector* source) {
    const Counted<PersistentSelector> kept(source);
    out = SelectorFromPersistent(source);
    const auto* stored = Cast<PersistentSelectorImpl>(source);
    const VarArray* ids = stored && stored->path.empty() ? stored->idPath.ToArray() : nullptr;
    if (!ids) return;
    for (int i = 0; i < ids->GetCount(); ++i) {
        const auto instance = FindInstanceById(ids->Get(i).ToText());
        if (!instance) return;
        out.AppendPathElement(instance.Get());
    }
}

Counted<PersistentSelector> LookupTableImpl::CreatePersistentSelector(const Selector& selector) {
    const auto stored = Make<PersistentSelectorImpl>();
    if (!stored) return nullptr;
    const Selector::Traverser* traverser = selector.GetTraverser();
    const auto ids = VarArray::Create();
    for (int i = 0; i < selector.GetPathElementCount(); ++i) {
        Instance* element = selector.GetPathElement(static_cast<unsigned>(i));
        if (!element) continue;
        ids->Set(i, element->GetProperty(Prop::kLocalId, 0));
        if (!traverser) stored->path.emplace_back(element);
    }
    stored->idPath = Var(ids);
    if (traverser)
        CopyTraverserAttributes(*traverser, *stored);
    else
        stored->attributes = selector.GetAttributes();
    return stored;
}

Counted<PersistentSelector> LookupTableImpl::SetPathAttributes(const Var& path, const Var& attributes) {
    const VarArray* ids = AsPath(path);
    if (!ids) return nullptr;
    const Var key = ids->Get(ids->GetCount() - 1);
    const Counted<InstanceImpl> owner(LastInstance(instancesById, *ids));
    if (!owner) return nullptr;
    const Var* entry = owner->Selectors().Lookup(key);
    if (auto* known = entry ? Cast<PersistentSelectorImpl>(*entry) : nullptr) {
        known->attributes.Merge(attributes, 0);
        return Counted<PersistentSelector>(known);
    }
    const auto selector = MakeSelector(path, attributes);
    if (selector) owner->Selectors().At(key) = Var(selector);
    return selector;
}

Counted<PersistentSelector> LookupTableImpl::GetOrCreatePersistentSelector(const String& id, const Var& path,
                                                                           const Var& attributes) {
    const String prefix = GetCurrentIdPrefix();
    const String fullId = prefix.IsEmpty() ? id : WithPrefix(prefix, id);
    if (const auto known = selectorsById.find(fullId); known != selectorsById.end()) return known->second;

    Counted<PersistentSelectorImpl> selector;
    if (const VarArray* given = AsPath(path)) {
        const Var ids = prefix.IsEmpty() ? path : PathWithPrefix(prefix, *given);
        const Counted<InstanceImpl> owner(LastInstance(instancesById, *ids.ToArray()));
        if (owner) selector = MakeSelector(ids, attributes);
        if (selector) {
            selector->SetProperty(Prop::kLocalId, Var(fullId));
            AppendSelector(owner->Selectors(), Var(selector));
            selectorOwners[fullId] = owner->GetProperty(Prop::kLocalId, 0).ToText();
        }
    }
    selectorsById[fullId] = selector;  // a miss, too: the next call gives it without a look at the ids
    return selector;
}

Counted<PersistentSelector> LookupTableImpl::FindPersistentSelector(const String& id) {
    const auto found = selectorsById.find(id);
    return found == selectorsById.end() ? Counted<PersistentSelector>() : found->second;
}

}  // namespace qn::graph
