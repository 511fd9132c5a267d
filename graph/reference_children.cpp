#include "graph/instance_impl.h"
#include "graph/lookup_table_impl.h"
#include "graph/reference_impl.h"

#include <algorithm>

// What a definition holds (its children), and what uses it (its instances).

namespace qn::graph {

Counted<Instance> ReferenceImpl::CreateInstance() {
    auto instance = Make<InstanceImpl>(this);
    if (instance) instances_.emplace_back(instance.Get());
    return instance;
}

/// A new use that the table counts, too.
Counted<Instance> ReferenceImpl::CreateListedInstance(LookupTableImpl& table) {
    auto instance = CreateInstance();
    if (instance) table.instances.insert(instance);
    return instance;
}

Counted<Instance> ReferenceImpl::CreateInstanceWithId(const String& id) {
    const auto table = table_.Lock();
    if (!table) return CreateInstance();
    const String key = id.IsEmpty() ? table->GenerateNodeId() : id;
    if (auto known = table->FindInstanceById(key)) return known;
    auto instance = CreateListedInstance(*table);
    if (!instance) return instance;
    table->instancesById[key] = instance;
    instance->SetProperty(Prop::kLocalId, Var(key));
    return instance;
}

Counted<Instance> ReferenceImpl::CreateInstanceWithBsId(const String& id, const String& bsId) {
    if (bsId.IsEmpty()) return table_ ? CreateInstanceWithId(id) : CreateInstance();
    const auto table = table_.Lock();
    if (!table) return nullptr;
    if (auto known = table->FindInstanceByBsId(bsId)) return known;
    auto instance = CreateListedInstance(*table);
    if (!instance) return instance;
    table->instancesByBsId[bsId] = instance;
    instance->SetProperty(Prop::kBsId, Var(bsId));
    const String key = id.IsEmpty() ? table->GenerateNodeId() : id;
    table->instancesById[key] = instance;
    instance->SetProperty(Prop::kLocalId, Var(key));
    return instance;
}

int ReferenceImpl::GetChildCount() const {
    return children_.GetCount();
}

Counted<Instance> ReferenceImpl::GetChild(int index) const {
    return Counted<Instance>(children_.Get(index));
}

void ReferenceImpl::AddChild(Instance* instance) {
    auto* impl = Cast<InstanceImpl>(instance);
    if (!impl || children_.Contains(impl)) return;
    children_.Append(impl);
    impl->SetParentReference(this);
}

bool ReferenceImpl::HasChild(Instance* instance) const {
    return instance && children_.Contains(instance);
}

void ReferenceImpl::RemoveChild(Instance* instance) {
    RemoveChildAt(children_.Find(instance));
}

void ReferenceImpl::RemoveChildAt(int index) {
    const Counted<Instance> child = GetChild(index);
    if (!child) return;
    children_.RemoveAt(index);
    if (auto* impl = Cast<InstanceImpl>(child.Get())) impl->SetParentReference(nullptr);
}

int ReferenceImpl::GetInstanceCount() const {
    return static_cast<int>(instances_.size());
}

Counted<Instance> ReferenceImpl::GetInstance(int index) const {
    if (index < 0 || index >= GetInstanceCount()) return nullptr;
    return instances_[static_cast<std::size_t>(index)].Lock();
}

void ReferenceImpl::SetInstanceReference(Instance* instance) {
    auto* impl = Cast<InstanceImpl>(instance);
    if (!impl) return;
    const Counted<Reference> keepsThis(this);
    // The list that loses the entry is that of the parent, not that of the definition used so far.
    if (auto* parent = Cast<ReferenceImpl>(impl->GetParentReference())) {
        auto& listed = parent->instances_;
        const auto entry = std::find_if(listed.begin(), listed.end(),
                                        [&](const Weak<Instance>& other) { return other.Get() == impl; });
        if (entry != listed.end()) listed.erase(entry);
    }
    impl->SetReference(this);
    instances_.emplace_back(impl);
}

void ReferenceImpl::ClearInstances() {
    instances_.clear();
}

void ReferenceImpl::AddInstances(const std::vector<Instance*>& instances) {
    for (Instance* instance : instances)
        instances_.emplace_back(instance);
}

}  // namespace qn::graph
