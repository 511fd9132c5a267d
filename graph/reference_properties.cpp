#include "frame/host/collections.h"
#include "frame/host/object3d.h"
#include "frame/host/parameter_ids.h"
#include "graph/element_properties.h"
#include "graph/reference_impl.h"

namespace qn::graph {

namespace {

/// These lose their key when an empty value is set and what was stored is true.
constexpr bool IsRemovedByEmpty(PropEnum id) {
    return id == Prop::kOrigin || id == Prop::kLocalMatrix;
}

}  // namespace

void ReferenceImpl::SetProperty(PropEnum id, const Var& value) {
    if (!properties_.IsMap()) properties_.InitMap();
    if (const int* parameter = ForwardedParameter(id)) {
        SetParamVar(*parameter, value);
    } else if (id == Prop::kMetadata) {
        SetMetadata(value.ToMap());
    } else if (value.IsEmpty() && IsRemovedByEmpty(id) && StoredProperty(properties_, id).ToBool()) {
        properties_.Remove(Var(Key(id)));
    } else {
        StoreProperty(properties_, id, value);
    }
}

Var ReferenceImpl::GetProperty(PropEnum id, int) const {
    if (const int* parameter = ForwardedParameter(id)) return GetParamVar(*parameter);
    if (id == Prop::kMetadata) return Var(GetMetadata(false), 1);
    if (id == Prop::kGenericContent) return GetGenericContent();
    return StoredProperty(properties_, id);
}

Var ReferenceImpl::GetGenericContent() const {
    const bool isTied =
        GetParamVar(Param::kBsId).ToBool() || StoredProperty(properties_, Prop::kOrigin).ToBool();
    if (!isTied) return Var();
    const Var stored = StoredProperty(properties_, Prop::kGenericContent);
    if (stored.ToBool()) return stored;
    const auto* generic = Cast<k3::Generic>(target_);
    return generic ? Var(generic->GetParam(Param::kGenericFlag, 0, kValueInteger) != 0) : Var();
}

}  // namespace qn::graph
