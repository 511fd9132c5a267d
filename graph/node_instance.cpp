#include "graph/node_instance.h"

#include "frame/host/collections.h"
#include "frame/host/node.h"
#include "frame/host/scene_document.h"
#include "graph/instance_impl.h"
#include "graph/lookup_table.h"
#include "graph/node_matching.h"
#include "graph/node_overrides.h"
#include "graph/reference_impl.h"

#include <cstdint>

namespace qn::graph {

namespace {

/// Values that a new instance stores in its property map, its id included.
constexpr int kCopiedValues = 30;

// Keys of the map that a node of an unresolved file carries in place of an instance.
constexpr int kDefinitionEntry = 0;
// Keys of the definition's own map.
constexpr int kOriginEntry = 1;
constexpr int kNameEntry = 4;

struct DescribedProperty {
    int entry;
    PropEnum property;
};

constexpr DescribedProperty kDescribed[] = {
    {4, Prop::kName},        {6, Prop::kLocalMatrix}, {7, Prop::kOwnMatrix},
    {8, Prop::kThirdMatrix}, {9, Prop::kInteger},     {0x0b, Prop::kBlockA},
    {0x0c, Prop::kBlockB},   {0x0a, Prop::kLink},     {1, Prop::kOrigin},
};

Var EntryOf(const VarMap& map, int key) {
    const Var* value = map.Lookup(key);
    return value ? *value : Var();
}

/// The definition of a new instance.
struct Definition {
    Counted<Reference> reference;
    bool isNew = false;  ///< made by this very call
};

/// A new reference away from tables, or the table's for a server id.
Definition DefinitionFor(LookupTable* table, const String& bsId) {
    if (!table) return {Make<ReferenceImpl>(), true};
    const bool isKnown = static_cast<bool>(table->FindReferenceByBsId(bsId));
    return {table->GetOrCreateBsReference(String(), bsId), !isKnown};
}

/// Makes the elements of one node; `Run` decides from what.
class InstanceMaker {
public:
    InstanceMaker(k3::Node& node, LookupTable* table, const HierarchyElement& element)
        : node_(node), table_(table), element_(element) {}

    Counted<Instance> Run();

private:
    void TakeFromDescription(const VarMap& description);
    void SetOriginsMetadata(const Extension& origin);
    void TakeCarried(Instance& carried);
    bool FindByInstanceBsId();
    bool FindByReferenceBsId();
    void KeepOrGiveIds();
    bool IsBelowScene() const;
    void MakeNew();
    void CopyElement();

    k3::Node& node_;
    LookupTable* table_;
    const HierarchyElement& element_;
    Counted<Instance> instance_;
    Definition definition_;
};

Counted<Instance> InstanceMaker::Run() {
    const Var carried = node_.GetParamVar(Param::kInstance);
    bool wasCarried = false;
    if (const VarMap* description = carried.ToMap()) {
        TakeFromDescription(*description);
    } else if (auto* instance = Cast<Instance>(carried)) {
        TakeCarried(*instance);
        wasCarried = true;
    }
    if (!instance_) MakeNew();
    if (!instance_) return nullptr;
    if (wasCarried) StoreNodeOverrides(node_, table_, element_, *instance_);
    k3::Object3D* content = node_.GetObject();
    if (definition_.isNew && definition_.reference && content)
        definition_.reference->SetTarget(Var(content, 1));
    if (!table_) node_.SetParamVar(Param::kInstance, Var(instance_));
    return instance_;
}

void InstanceMaker::TakeFromDescription(const VarMap& description) {
    const Var definitionEntry = EntryOf(description, kDefinitionEntry);
    const VarMap* definition = definitionEntry.ToMap();
    if (!definition) return;
    const Var originEntry = EntryOf(*definition, kOriginEntry);
    const auto* origin = Cast<Extension>(originEntry);

    const Var originId = origin ? const_cast<Extension*>(origin)->GetParamVar(Param::kBsId) : Var();
    definition_ = DefinitionFor(table_, originId.ToText());
    if (table_ && originEntry.IsMap())
        definition_ = {table_->CreateReferenceFrom(definition_.reference.Get(), String()), true};
    Reference* reference = definition_.reference.Get();
    if (!reference) return;
    reference->SetProperty(Prop::kName, EntryOf(*definition, kNameEntry));
    if (origin) SetOriginsMetadata(*origin);

    const Var instanceId = definition->GetParamVar(Param::kBsId);
    instance_ = reference->CreateInstanceWithBsId(String(), instanceId.ToText());
    if (!instance_) return;
    instance_->SetProperty(Prop::kBsId, instanceId);
    for (const auto& [entry, property] : kDescribed)
        if (const Var* value = description.Lookup(entry)) instance_->SetProperty(property, *value);
    if (VarMap* metadata = definition->GetMetadata(false))
        instance_->SetProperty(Prop::kMetadata, Var(metadata, 1));
    if (const int value = node_.GetShortValue(); value != 0)
        instance_->SetProperty(Prop::kShortValue, Var(value));
    if (table_) table_->RegisterInstance(instance_.Get());
}

void InstanceMaker::SetOriginsMetadata(const Extension& origin) {
    if (VarMap* metadata = origin.GetMetadata(false))
        definition_.reference->SetProperty(Prop::kMetadata, Var(metadata, 1));
}

void InstanceMaker::TakeCarried(Instance& carried) {
    instance_ = Counted<Instance>(&carried);
    definition_.reference = Counted<Reference>(carried.GetReference());
    if (!table_ || FindByInstanceBsId() || FindByReferenceBsId()) return;
    KeepOrGiveIds();
}

/// A known instance of the same server id takes the place of the carried one; an unknown one becomes known.
bool InstanceMaker::FindByInstanceBsId() {
    const Var bsId = instance_->GetParamVar(Param::kBsId);
    if (bsId.IsEmpty()) return false;
    if (auto known = table_->FindInstanceByBsId(bsId.ToText())) {
        instance_ = known;
        definition_.reference = Counted<Reference>(known->GetReference());
        return true;
    }
    instance_->SetProperty(Prop::kLocalId, Var(table_->GenerateNodeId()));
    table_->RegisterInstanceWithBsId(instance_.Get());
    return false;
}

/// A known reference of the same server id becomes the definition here and takes over content that it lacks.
/// The instance keeps its own reference and its properties.
bool InstanceMaker::FindByReferenceBsId() {
    Reference* current = definition_.reference.Get();
    const Var bsId = current ? current->GetParamVar(Param::kBsId) : Var();
    if (bsId.IsEmpty()) return false;
    if (auto known = table_->FindReferenceByBsId(bsId.ToText())) {
        if (known->IsLeaf() && !current->IsLeaf()) known->CopyContentFrom(current);
        definition_.reference = known;
        return true;
    }
    current->SetProperty(Prop::kLocalId, Var(table_->GenerateEntityId()));
    table_->RegisterReferenceWithBsId(current);
    return false;
}

bool InstanceMaker::IsBelowScene() const {
    const k3::Node* parent = node_.GetParent();
    return parent && parent == node_.GetScene();
}

/// Ids stay if the table knows the very same elements under them; a top-level node's elements always get new
/// ones.
void InstanceMaker::KeepOrGiveIds() {
    const bool mayKeep = !IsBelowScene();
    const String instanceId = instance_->GetProperty(Prop::kLocalId, 0).ToText();
    if (!mayKeep || !(table_->FindInstanceById(instanceId) == instance_)) {
        instance_->SetProperty(Prop::kLocalId, Var(table_->GenerateNodeId()));
        table_->RegisterInstance(instance_.Get());
    }
    Reference* reference = definition_.reference.Get();
    if (!reference) return;
    const String referenceId = reference->GetProperty(Prop::kLocalId, 0).ToText();
    if (!mayKeep || !(table_->FindReferenceById(referenceId) == reference)) {
        reference->SetProperty(Prop::kLocalId, Var(table_->GenerateEntityId()));
        table_->RegisterReference(reference);
    }
}

/// The node's server id names the reference, never the instance.
void InstanceMaker::MakeNew() {
    definition_ = DefinitionFor(table_, node_.GetParamVar(Param::kBsId).ToText());
    Reference* reference = definition_.reference.Get();
    if (!reference) return;
    instance_ = table_ ? reference->CreateInstanceWithId(String()) : reference->CreateInstance();
    if (instance_) CopyElement();
}

/// Empty values, too: the new instance says everything itself and inherits nothing.
void InstanceMaker::CopyElement() {
    if (auto* impl = Cast<InstanceImpl>(instance_.Get())) impl->ReserveProperties(kCopiedValues);
    for (int key = kFirstProp; key <= kLastProp; ++key) {
        const PropEnum id{key};
        if (id == Prop::kLocalId || id == Prop::kBsId) continue;
        const Var value = element_.GetProperty(id, 0);
        if (id == Prop::kMetadata && !value.IsMap()) continue;
        if (id == Prop::kName) {
            if (!value.IsText()) continue;
            Reference& reference = *definition_.reference;
            if (reference.GetProperty(id, 0).IsEmpty()) reference.SetProperty(id, value);
        }
        instance_->SetProperty(id, value);
    }
}

}  // namespace

Counted<Instance> InstanceForNode(k3::Node& node, LookupTable* table, const HierarchyElement& element) {
    return InstanceMaker(node, table, element).Run();
}

}  // namespace qn::graph
