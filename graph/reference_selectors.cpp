#include "graph/id_path.h"
#include "graph/lookup_table_impl.h"
#include "graph/persistent_selector_impl.h"
#include "graph/reference_impl.h"
#include "graph/resolver_cache_impl.h"
#include "graph/selector_list.h"
#include "graph/selector_walk.h"

namespace qn::graph {

namespace {

/// Unlike an instance, a definition that is resolved again loses a path that was live already.
void ResolveOne(PersistentSelectorImpl& selector, const String& prefix, LookupTableImpl& table) {
    const Var ids = PrefixedIdPath(selector.idPath, prefix);
    selector.path.clear();
    if (ids.IsArray()) FollowIdPath(ids, table, selector);
    selector.idPath = Var();
}

/// Remembers in a cache what it met: the caller's, or one of its own.
class Resolving {
public:
    explicit Resolving(Var* cache) : cache_(cache) {
        if (cache_ && Cast<ResolverCache>(*cache_)) return;
        own_ = Var(Make<ResolverCacheImpl>());
        cache_ = &own_;
    }

    void Own(InstanceImpl& instance) { instance.ResolveOwnSelectors(); }
    void Own(ReferenceImpl& reference) { reference.ResolveOwnSelectors(); }
    void Foreign(Reference& reference) { reference.ResolveSelectors(true, cache_); }
    bool Meet(Instance* instance) {
        auto* cache = Cast<ResolverCache>(*cache_);
        if (!cache || cache->ContainsInstance(instance)) return false;
        cache->AddInstance(instance);
        return true;
    }

private:
    Var own_;
    Var* cache_;
};

/// Remembers in a map what it met: the caller's, or one of its own.
class Storing {
public:
    explicit Storing(Var* visited) : visited_(visited ? visited : &own_) {}

    void Own(InstanceImpl& instance) { instance.StoreOwnSelectors(); }
    void Own(ReferenceImpl& reference) { reference.StoreOwnSelectors(); }
    void Foreign(Reference& reference) { reference.StoreSelectors(true, visited_); }
    bool Meet(Instance* instance) {
        Var& mark = visited_->At(Var(instance, 1));
        if (mark.ToBool()) return false;
        mark = Var(1);
        return true;
    }

private:
    Var own_;
    Var* visited_;
};

}  // namespace

int ReferenceImpl::GetSelectorCount() const {
    return selectors_.size();
}

Selector ReferenceImpl::GetSelector(int index) const {
    return ReadSelector(selectors_, index, GetLookupTable());
}

Var ReferenceImpl::GetSelectorPath(int index) const {
    if (!table_ || index >= selectors_.size()) return Var();
    const auto* selector = SelectorAt(selectors_, index);
    return selector ? selector->idPath : Var();
}

void ReferenceImpl::RemoveSelector(int index) {
    RemoveSelectorAt(selectors_, index);
}

void ReferenceImpl::AddSelectorPath(const Var& path) {
    if (!table_) return;
    bool known = false;
    ForEachSelector(selectors_, [&](PersistentSelectorImpl& selector) { known |= selector.idPath == path; });
    if (known) return;
    const auto selector = Make<PersistentSelectorImpl>();
    if (!selector) return;
    selector->idPath = path;
    AppendSelector(selectors_, Var(selector));
}

void ReferenceImpl::AddSelector(const Selector& selector) {
    const auto table = table_.Lock();
    if (!table || !selector.IsValid()) return;
    if (const auto stored = table->CreatePersistentSelector(selector))
        AppendSelector(selectors_, Var(stored));
}

void ReferenceImpl::ResolveSelectors(bool recurse, Var* cache) {
    ResolveOwnSelectors();
    if (!recurse) return;
    Resolving work(cache);
    SelectorWalk(work).Below(*this);
}

void ReferenceImpl::ResolveOwnSelectors() {
    const auto table = table_.Lock();
    if (!table || selectors_.size() == 0) return;
    const String prefix = IdPathPrefix(table.Get());
    ForEachSelector(selectors_,
                    [&](PersistentSelectorImpl& selector) { ResolveOne(selector, prefix, *table); });
}

void ReferenceImpl::StoreSelectors(bool recurse, Var* visited) {
    StoreOwnSelectors();
    if (!recurse) return;
    Storing work(visited);
    SelectorWalk(work).Below(*this);
}

void ReferenceImpl::StoreOwnSelectors() {
    ForEachSelector(selectors_, [](PersistentSelectorImpl& selector) { selector.StorePath(); });
}

}  // namespace qn::graph
