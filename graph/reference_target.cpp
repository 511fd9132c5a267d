#include "graph/instance_impl.h"
#include "graph/lookup_table_impl.h"
#include "graph/reference_impl.h"

namespace qn::graph {

Var ReferenceImpl::GetTarget() const {
    return target_;
}

void ReferenceImpl::SetTarget(const Var& target) {
    const Var former = target_;  // lives until the new one is in place
    target_ = target;
}

bool ReferenceImpl::HasNoTargetLink() const {
    return !target_.IsMap() && !target_.IsArray() && !target_.IsText();
}

bool ReferenceImpl::IsLeaf() const {
    return !target_.HoldsInterface() && children_.GetCount() == 0;
}

Counted<Reference> ReferenceImpl::ResolveTarget(const Var& key) {
    if (target_.IsArray() || target_.IsMap()) return ResolveEntry(key);
    if (target_.IsText()) return ResolveFile(Var(target_));
    return Counted<Reference>(this);
}

Counted<Reference> ReferenceImpl::ResolveEntry(const Var& key) {
    if (const Var known = resolvedTargets_.At(key); known.HoldsInterface())
        return Counted<Reference>(Cast<Reference>(known));
    const String id = target_.At(key).ToText();
    const auto table = table_.Lock();
    return KeepResolved(key, table ? table->GetOrCreateReference(id) : nullptr);
}

Counted<Reference> ReferenceImpl::ResolveFile(const Var& file) {
    if (const Var known = resolvedTargets_.At(file); known.HoldsInterface())
        return Counted<Reference>(Cast<Reference>(known));
    const auto table = table_.Lock();
    return KeepResolved(file, table ? table->LoadExternalReference(this, Var(), String()) : nullptr);
}

Counted<Reference> ReferenceImpl::KeepResolved(const Var& key, Counted<Reference> result) {
    const bool isThis = result == this;  // counted, it would keep itself alive
    if (result) resolvedTargets_.At(key) = Var(result.Get(), isThis ? 0 : 1);
    return result;
}

void ReferenceImpl::ReloadExternalTarget() {
    if (!target_.IsText()) return;
    const Counted<Reference> keepsThis(this);
    std::vector<Counted<Instance>> live;
    std::vector<Instance*> listed;
    for (const Weak<Instance>& entry : instances_) {
        if (auto instance = entry.Lock()) {
            listed.push_back(instance.Get());
            live.push_back(std::move(instance));
        }
    }
    const String id = GetProperty(Prop::kLocalId, 0).ToText();
    const auto table = table_.Lock();
    if (!table) return;
    if (IsLeaf()) table->loadPlaceholder = keepsThis;
    const auto loaded = table->LoadExternalReference(this, Var(), id);
    table->loadPlaceholder.Reset();
    if (!loaded) return;
    loaded->ClearInstances();
    loaded->AddInstances(listed);
    if (loaded == this) return;
    for (Instance* instance : listed)
        if (auto* impl = Cast<InstanceImpl>(instance)) impl->SetReference(loaded.Get());
}

}  // namespace qn::graph
