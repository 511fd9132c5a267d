#include "graph/instance_impl.h"

#include "frame/host/collections.h"
#include "frame/host/stream.h"
#include "graph/element_properties.h"
#include "graph/reference.h"

namespace qn::graph {

InstanceImpl::InstanceImpl(Reference* reference) : reference_(reference) {}

InstanceImpl::~InstanceImpl() = default;

const ClassRecord& InstanceImpl::StaticClass() {
    static const ClassRecord& record = InternClass("qn::graph::InstanceImpl");
    return record;
}

Reference* InstanceImpl::GetReference() const {
    return reference_.Get();
}

Reference* InstanceImpl::GetParentReference() const {
    return parent_.Get();
}

void InstanceImpl::SetReference(Reference* reference) {
    if (reference != reference_.Get()) reference_ = Counted<Reference>(reference);
}

void InstanceImpl::ReserveProperties(int count) {
    if (properties_.IsEmpty()) properties_.InitMap();
    if (VarMap* map = properties_.ToMap()) map->Reserve(count);
}

void InstanceImpl::SetParentReference(Reference* parent) {
    parent_ = parent;
}

void InstanceImpl::SetProperty(PropEnum id, const Var& value) {
    if (const int* parameter = ForwardedParameter(id)) {
        SetParamVar(*parameter, value);
    } else if (id == Prop::kMetadata) {
        SetMetadata(value.ToMap());
    } else if (id == Prop::kOrigin && value.IsEmpty()) {
        if (StoredProperty(properties_, id).ToBool()) properties_.Remove(Var(Key(id)));
    } else {
        StoreProperty(properties_, id, value);
    }
}

Var InstanceImpl::GetProperty(PropEnum id, int inherit) const {
    if (const int* parameter = ForwardedParameter(id)) return GetParamVar(*parameter);
    if (id == Prop::kMetadata) return Var(GetMetadata(false), 1);
    if (const Var* stored = properties_.Lookup(Key(id))) return *stored;
    if (id == Prop::kOrigin || !inherit || !reference_) return Var();
    return reference_->GetProperty(id, 0);
}

LookupTable* InstanceImpl::GetLookupTable() const {
    return reference_ ? reference_->GetLookupTable() : nullptr;
}

ResultEnum InstanceImpl::CopyFrom(const Interface* source, unsigned flags) {
    const auto* other = Cast<Instance>(source);
    return other ? CloneFrom(*other, flags) : ResultEnum::kWrongClass;
}

bool InstanceImpl::IsTypeOf(const char* name) const {
    return EqualKeys(name, ClassKey::kInstance) || ReferenceSource::IsTypeOf(name);
}

}  // namespace qn::graph
