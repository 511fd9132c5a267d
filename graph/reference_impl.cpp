#include "graph/reference_impl.h"

#include "graph/element_properties.h"
#include "graph/instance_impl.h"
#include "graph/lookup_table_impl.h"
#include "graph/resolver_cache_impl.h"

namespace qn::graph {

namespace {

/// What a copy of `source` remembers: its server id, else that of the reference it was copied from, else the
/// text that it remembers itself; empty if there is none.
Var OriginOf(const Reference& source) {
    const Var bsId = source.GetProperty(Prop::kBsId, 0);
    if (bsId.ToBool()) return bsId;
    const Var origin = source.GetProperty(Prop::kOrigin, 0);
    if (const auto* reference = Cast<Reference>(origin)) {
        const Var originId = reference->GetProperty(Prop::kBsId, 0);
        return originId.ToBool() ? originId : Var();
    }
    return origin.IsText() ? origin : Var();
}

constexpr bool IsCopied(PropEnum id) {
    return id != Prop::kOrigin && id != Prop::kLocalId && id != Prop::kBsId && id != Prop::kNotCopied1c;
}

}  // namespace

ReferenceImpl::ReferenceImpl() = default;

ReferenceImpl::ReferenceImpl(LookupTable* table) {
    BindTable(table);
}

ReferenceImpl::ReferenceImpl(Reference* source, LookupTable* table) {
    BindTable(table || !source ? table : source->GetLookupTable());
    if (!source) return;
    const Var origin = OriginOf(*source);
    if (origin.ToBool()) StoreProperty(properties_, Prop::kOrigin, origin);
}

ReferenceImpl::~ReferenceImpl() = default;

const ClassRecord& ReferenceImpl::StaticClass() {
    static const ClassRecord& record = InternClass("qn::graph::ReferenceImpl");
    return record;
}

void ReferenceImpl::BindTable(LookupTable* table) {
    table_ = Cast<LookupTableImpl>(table);
}

Counted<Reference> ReferenceImpl::CreateCopy() {
    auto copy = Make<ReferenceImpl>(static_cast<Reference*>(this));
    if (!copy) return nullptr;
    copy->SetTarget(target_);
    for (int key = kFirstProp; key <= kLastProp; ++key)
        if (const PropEnum id{key}; IsCopied(id)) copy->SetProperty(id, GetProperty(id, 0));
    return copy;
}

void ReferenceImpl::CopyContentFrom(Reference* source) {
    if (!source) return;
    if (target_.IsEmpty() || target_.IsText()) {
        SetTarget(source->GetTarget());
    } else if (const Var target = source->GetTarget(); target.IsSet()) {
        if (const auto table = table_.Lock()) {
            const auto definition = table->GetOrCreateReferenceWithTarget(target, String());
            if (definition) AddChild(definition->CreateInstanceWithId(String()).Get());
        }
    }
    for (int key = kFirstProp; key <= kLastProp; ++key)
        if (const PropEnum id{key}; id != Prop::kLocalId) SetProperty(id, source->GetProperty(id, 1));
    for (int i = 0; i < source->GetChildCount(); ++i)
        AddChild(source->GetChild(i).Get());
}

Var ReferenceImpl::CreateResolverCache() {
    return Var(Make<ResolverCacheImpl>());
}

LookupTable* ReferenceImpl::GetLookupTable() const {
    return table_.Get();
}

ResultEnum ReferenceImpl::CopyFrom(const Interface* source, unsigned flags) {
    const auto* other = Cast<Reference>(source);
    return other ? CloneFrom(*other, flags) : ResultEnum::kWrongClass;
}

bool ReferenceImpl::IsTypeOf(const char* name) const {
    return EqualKeys(name, ClassKey::kReference) || ReferenceSource::IsTypeOf(name);
}

}  // namespace qn::graph
