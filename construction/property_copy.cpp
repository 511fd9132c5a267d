#include "construction/property_copy.h"

#include "construction/property_set.h"
#include "graph/instance.h"
#include "graph/reference.h"

namespace qn::graph {

namespace {

/// Values that an occurrence has of its own and that no instance passes on.
constexpr PropertySet kSelectorOnly{Prop::kBsId, Prop::kAttachedIdentifier, Prop::kPrimaryIdentifier};
constexpr PropertySet kSelectorOnlyAndMetadata{Prop::kBsId, Prop::kAttachedIdentifier,
                                               Prop::kPrimaryIdentifier, Prop::kMetadata};

/// The transform of the definition first, then that of the occurrence; `value` where the definition has none.
Var PlacedMatrix(const Selector& source, const Instance* instance, const Var& value) {
    const Reference* const reference = instance ? instance->GetReference() : nullptr;
    const Var inner = reference ? reference->GetProperty(Prop::kLocalMatrix, 0) : Var();
    if (!inner.IsMatrix()) return value;
    Var outer = source.GetProperty(Prop::kLocalMatrix, 0);
    if (!outer.IsMatrix()) outer = instance->GetProperty(Prop::kLocalMatrix, 0);
    if (!outer.IsMatrix()) return inner;
    Matrix4<double> first, second, product;
    inner.copy_to(first);
    outer.copy_to(second);
    product.SetMul(first, second);
    return product;
}

PropertySet SkippedBy(CopySource kind, bool withMetadata) {
    if (kind == CopySource::kSelector) return {};
    return withMetadata ? kSelectorOnly : kSelectorOnlyAndMetadata;
}

/// Calls `visit(PropEnum, const Var&)` for what a copy takes over.
template <class Visit>
void ForEachValue(const Selector& source, CopySource kind, bool withMetadata, Visit&& visit) {
    const int inherit = kind == CopySource::kPath ? 1 : 0;
    ForEachProperty(SkippedBy(kind, withMetadata), [&](PropEnum id) {
        if (const Var value = source.GetProperty(id, inherit); value.IsSet()) visit(id, value);
    });
}

void WriteProperty(const Selector& source, Selector::Traverser& target, PropEnum id, const Var& value) {
    if (id == Prop::kLocalMatrix)
        target.SetProperty(id, PlacedMatrix(source, target.GetInstance().Get(), value));
    else
        target.SetProperty(id, value);
}

}  // namespace

void CopyProperties(const Selector& source, Selector::Traverser& target, CopySource kind, bool withMetadata) {
    ForEachValue(source, kind, withMetadata,
                 [&](PropEnum id, const Var& value) { WriteProperty(source, target, id, value); });
}

PropertyValues ReadProperties(const Selector& source, CopySource kind) {
    PropertyValues values;
    ForEachValue(source, kind, false, [&](PropEnum id, const Var& value) { values.emplace_back(id, value); });
    return values;
}

void WriteProperties(const Selector& source, const PropertyValues& values, Selector::Traverser& target) {
    for (const auto& [id, value] : values)
        WriteProperty(source, target, id, value);
}

}  // namespace qn::graph
