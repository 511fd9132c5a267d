#include "graph/lookup_table_impl.h"
#include "graph/reference_impl.h"

namespace qn::graph {

namespace {

constexpr const wchar_t* kEntityFamily = L"e";
constexpr const wchar_t* kNodeFamily = L"n";
constexpr const wchar_t* kSelectorFamily = L"s";

/// The element under a text, counted; null for an empty text, too.
template <class T>
Counted<T> FindIn(const ElementIndex<T>& index, const String& text) {
    if (text.IsEmpty()) return nullptr;
    const auto found = index.find(text);
    return found == index.end() ? Counted<T>() : found->second;
}

String LocalIdOf(const HierarchyElement& element) {
    return element.GetProperty(Prop::kLocalId, 0).ToText();
}

/// What a copy does not take over: it is another element, with ids of its own.
bool IsLeftOutOfCopies(PropEnum id) {
    return id == Prop::kOrigin || id == Prop::kLocalId || id == Prop::kBsId || id == Prop::kNotCopied1c;
}

}  // namespace

Counted<Reference> LookupTableImpl::GetOrCreateReferenceWithTarget(const Var& target, const String& id) {
    const auto reference = GetOrCreateReference(id);
    if (reference) reference->SetTarget(target);
    return reference;
}

Counted<Reference> LookupTableImpl::GetOrCreateReference(const String& id) {
    const String key = id.IsEmpty() ? GenerateEntityId() : id;
    const auto place = referencesById.try_emplace(key).first;
    if (place->second) return place->second;
    place->second = Make<ReferenceImpl>(this);
    const Counted<Reference> reference = place->second;
    if (!reference) {
        referencesById.erase(place);
        return nullptr;
    }
    references.insert(reference);
    reference->SetProperty(Prop::kLocalId, Var(key));
    return reference;
}

Counted<Reference> LookupTableImpl::CreateReferenceFrom(Reference* source, const String& id) {
    const Counted<Reference> reference =
        source ? Make<ReferenceImpl>(source, this) : Counted<ReferenceImpl>();
    if (!reference) return nullptr;
    reference->SetTarget(source->GetTarget());
    for (int property = kFirstProp; property <= kLastProp; ++property)
        if (!IsLeftOutOfCopies(PropEnum{property}))
            reference->SetProperty(PropEnum{property}, source->GetProperty(PropEnum{property}, 0));
    const String key = id.IsEmpty() ? GenerateEntityId() : id;
    references.insert(reference);
    referencesById[key] = reference;
    reference->SetProperty(Prop::kLocalId, Var(key));
    return reference;
}

Counted<Reference> LookupTableImpl::GetOrCreateBsReferenceWithTarget(const Var& target, const String& id,
                                                                     const String& bsId) {
    if (bsId.IsEmpty()) return GetOrCreateReferenceWithTarget(target, id);
    const auto reference = GetOrCreateBsReference(id, bsId);
    if (reference) reference->SetTarget(target);
    return reference;
}

Counted<Reference> LookupTableImpl::GetOrCreateBsReference(const String& id, const String& bsId) {
    if (bsId.IsEmpty()) return GetOrCreateReference(id);
    if (auto known = FindIn(referencesByBsId, bsId)) return known;
    const Counted<Reference> reference = Make<ReferenceImpl>(this);
    if (!reference) return nullptr;
    references.insert(reference);
    referencesByBsId[bsId] = reference;
    reference->SetProperty(Prop::kBsId, Var(bsId));
    const String key = id.IsEmpty() ? GenerateEntityId() : id;
    referencesById[key] = reference;
    reference->SetProperty(Prop::kLocalId, Var(key));
    return reference;
}

Counted<Reference> LookupTableImpl::FindReferenceById(const String& id) {
    return FindIn(referencesById, id);
}

Counted<Instance> LookupTableImpl::FindInstanceById(const String& id) {
    return FindIn(instancesById, id);
}

Counted<Reference> LookupTableImpl::FindReferenceByBsId(const String& bsId) {
    return FindIn(referencesByBsId, bsId);
}

Counted<Instance> LookupTableImpl::FindInstanceByBsId(const String& bsId) {
    return FindIn(instancesByBsId, bsId);
}

// The four registrations differ in what makes them write an index or the pool, and keep these differences.

void LookupTableImpl::RegisterInstanceWithBsId(Instance* instance) {
    if (!instance) return;
    const Counted<Instance> counted(instance);
    if (const Var bsId = instance->GetParamVar(Param::kBsId); bsId.IsSet()) {
        instances.insert(counted);
        instancesByBsId[bsId.ToText()] = counted;
    }
    if (const Var id = instance->GetProperty(Prop::kLocalId, 0); id.IsSet())
        instancesById[id.ToText()] = counted;
}

void LookupTableImpl::RegisterReferenceWithBsId(Reference* reference) {
    if (!reference) return;
    const Counted<Reference> counted(reference);
    if (const String bsId = reference->GetParamVar(Param::kBsId).ToText(); bsId.NonEmpty()) {
        references.insert(counted);
        referencesByBsId[bsId] = counted;
    }
    if (const String id = LocalIdOf(*reference); id.NonEmpty()) referencesById[id] = counted;
}

void LookupTableImpl::RegisterInstance(Instance* instance) {
    if (!instance) return;
    const Counted<Instance> counted(instance);
    instances.insert(counted);
    if (const String id = LocalIdOf(*instance); id.NonEmpty()) instancesById[id] = counted;
}

void LookupTableImpl::RegisterReference(Reference* reference) {
    if (!reference) return;
    const Var id = reference->GetProperty(Prop::kLocalId, 0);
    if (id.IsEmpty()) return;
    const Counted<Reference> counted(reference);
    references.insert(counted);
    referencesById[id.ToText()] = counted;
}

void LookupTableImpl::PushIdPrefix(HierarchyElement* element) {
    if (element) nameGenerator.PushPrefix(LocalIdOf(*element).c_str());
}

String LookupTableImpl::GenerateEntityId() {
    return nameGenerator.GetNext(kEntityFamily);
}

String LookupTableImpl::GenerateNodeId() {
    return nameGenerator.GetNext(kNodeFamily);
}

String LookupTableImpl::GenerateSelectorId() {
    return nameGenerator.GetNext(kSelectorFamily);
}

}  // namespace qn::graph
