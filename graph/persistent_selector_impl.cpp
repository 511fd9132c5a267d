#include "graph/persistent_selector_impl.h"

#include "frame/host/stream.h"

namespace qn::graph {

namespace {

constexpr int kAttributesChunk = 0x1000;
constexpr int kPathChunk = 0x1001;

/// The living instances of a path, or null if there is none.
Counted<VarArray> LivePath(const std::vector<Weak<Instance>>& path) {
    Counted<VarArray> live;
    for (const Weak<Instance>& element : path) {
        const Var instance(element.Get(), 1);
        if (instance.IsEmpty()) continue;
        if (!live) live = VarArray::Create();
        live->Add(instance);
    }
    return live;
}

void ReadPath(Interface* object, std::vector<Weak<Instance>>& path) {
    const auto* stored = Cast<VarArray>(object);
    if (!stored || stored->GetCount() == 0) return;
    path.clear();
    for (int i = 0; i < stored->GetCount(); ++i)
        if (auto* instance = Cast<Instance>(stored->Get(i))) path.emplace_back(instance);
}

}  // namespace

Var PersistentSelectorImpl::GetProperty(PropEnum id, int) const {
    const Var* value = attributes.Lookup(Key(id));
    return value ? *value : Var();
}

void PersistentSelectorImpl::SetProperty(PropEnum id, const Var& value) {
    const Var kept = value;  // may stand in the map that grows here
    attributes.At(Key(id)) = kept;
}

void PersistentSelectorImpl::StorePath() {
    Var ids(VarArray::Create());
    for (const Weak<Instance>& element : path) {
        const Counted<Instance> instance = element.Lock();
        if (!instance) continue;
        const Var id = instance->GetProperty(Prop::kLocalId, 0);
        if (id.IsEmpty()) {
            ids = Var();
            break;
        }
        ids.ToArray()->Add(id);
    }
    idPath = ids;
}

ResultEnum PersistentSelectorImpl::Save(Stream* stream, Context* context) {
    const ResultEnum base = ReferenceSource::Save(stream, context);
    if (base != ResultEnum::kSuccess) return base;
    if (attributes.IsMap()) stream->WriteObjectChunk(attributes.ToMap(), context, kAttributesChunk);
    if (!path.empty()) stream->WriteObjectChunk(LivePath(path).Get(), context, kPathChunk);
    return ResultEnum::kSuccess;
}

ResultEnum PersistentSelectorImpl::HandleChunk(int id, Stream* stream, Context* context) {
    if (id != kAttributesChunk && id != kPathChunk) return ReferenceSource::HandleChunk(id, stream, context);
    const Counted<Interface> object = stream->ReadObject(context);
    if (id == kAttributesChunk)
        attributes = Var(Cast<VarMap>(object.Get()), 1);
    else
        ReadPath(object.Get(), path);
    return ResultEnum::kSuccess;
}

ResultEnum PersistentSelectorImpl::CopyFrom(const Interface* source, unsigned flags) {
    if (!Cast<PersistentSelector>(source)) return ResultEnum::kWrongClass;
    return ReferenceSource::CopyFrom(source, flags);
}

bool PersistentSelectorImpl::IsTypeOf(const char* name) const {
    return EqualKeys(name, ClassKey::kPersistentSelector) || ReferenceSource::IsTypeOf(name);
}

Selector SelectorFromPersistent(PersistentSelector* source) {
    Selector selector;
    const auto* stored = Cast<PersistentSelectorImpl>(source);
    if (!stored) return selector;
    selector.SetAttributes(stored->attributes);
    for (const Weak<Instance>& element : stored->path)
        selector.AppendPathElement(element.Get());
    return selector;
}

Counted<PersistentSelector> PersistentFromSelector(const Selector& selector) {
    const int count = selector.GetPathElementCount();
    if (count == 0) return nullptr;
    const auto stored = Make<PersistentSelectorImpl>();
    if (!stored) return nullptr;
    for (int i = 0; i < count; ++i)
        stored->path.emplace_back(selector.GetPathElement(static_cast<unsigned>(i)));
    for (int id = kFirstProp; id <= kLastProp; ++id) {
        Var value = selector.GetProperty(PropEnum{id}, 0);
        if (value.IsEmpty()) continue;
        value.MakeUnique(1);
        stored->SetProperty(PropEnum{id}, value);
    }
    return stored;
}

Counted<PersistentSelectorImpl> LinkOf(const HierarchyElement& element) {
    return Counted<PersistentSelectorImpl>(Cast<PersistentSelectorImpl>(element.GetProperty(Prop::kLink, 0)));
}

std::vector<Counted<PersistentSelectorImpl>> ListedLinksOf(const HierarchyElement& element) {
    std::vector<Counted<PersistentSelectorImpl>> links;
    const Var value = element.GetProperty(Prop::kLinkList, 0);
    const VarArray* list = value.ToArray();
    if (!list) return links;
    for (int i = 0; i < list->GetCount(); ++i) {
        const VarArray* entry = list->Get(i).ToArray();
        if (!entry) continue;
        if (auto* link = Cast<PersistentSelectorImpl>(entry->Get(0))) links.emplace_back(link);
    }
    return links;
}

}  // namespace qn::graph
