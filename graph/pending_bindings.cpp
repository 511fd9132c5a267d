#include "graph/pending_bindings.h"

namespace qn::graph {

namespace {

constexpr const wchar_t* kCadMetadata = L"$CADMetadata";
constexpr const wchar_t* kUniqueId = L"UNIQUEID";
constexpr const wchar_t* kEntityType = L"EntityType";

void AddNodes(k3::Layer& layer, const LookupTableImpl& table, const Instance* instance) {
    for (k3::Node* node : table.instanceToNodes.NodesOf(instance))
        layer.AddNode(node);
}

void BindLayers(LookupTableImpl& table) {
    table.layerMembers.ForEach([&](k3::Layer* layer, const ElementSet<Instance>& members) {
        if (!members.empty()) layer->DeleteAll();
        for (const auto& member : members)
            AddNodes(*layer, table, member.Get());
        const Counted<Reference>* whole = table.layerReferences.Find(layer);
        if (whole && *whole) AddNodes(*layer, table, (*whole)->GetInstance(0).Get());
    });
}

/// The first node of a loaded reference shows what its metadata say.
void MarkLoaded(LookupTableImpl& table, const Reference& reference) {
    const auto nodes = NodesOfInstanceAlone(table, reference.GetInstance(0).Get());
    if (nodes.empty()) return;
    const Var metadata = reference.GetProperty(Prop::kMetadata, 0);
    if (const Var* id = CadUniqueId(metadata)) SetCadUniqueId(*nodes.front(), *id);
    const Var* group = metadata.Lookup(kEntityTypeGroup);
    if (group && (EntityTypeOf(*group) & kHiddenEntityType)) nodes.front()->SetVisible(0);
}

}  // namespace

std::vector<k3::Node*> NodesOfInstanceAlone(LookupTableImpl& table, Instance* instance) {
    std::vector<k3::Node*> nodes;
    if (!instance) return nodes;
    Selector alone;
    alone.AppendPathElement(instance);
    const auto found = table.GetNodesOfSelector(alone, true);
    for (int i = 0; found && i < found->GetCount(); ++i)
        if (auto* node = Cast<k3::Node>(found->Get(i))) nodes.push_back(node);
    return nodes;
}

const Var* CadUniqueId(const Var& metadata) {
    const Var* group = metadata.Lookup(kCadMetadata);
    const Var* id = group ? group->Lookup(kUniqueId) : nullptr;
    return id && id->IsSet() ? id : nullptr;
}

void SetCadUniqueId(k3::Node& node, const Var& id) {
    const Var copy = id;  // may stand in the very map that changes
    if (VarMap* metadata = node.GetMetadata(true)) metadata->At(Var(kCadMetadata)).At(kUniqueId) = copy;
}

int EntityTypeOf(const Var& group) {
    const Var* type = group.Lookup(kEntityType);
    return type ? type->ToInt() : 0;
}

void LookupTableImpl::BindViewLater(k3::Viewport* viewport, Reference* definition) {
    if (!viewport || !definition || viewportTargets.Contains(viewport)) return;
    viewportTargets.At(viewport) = Weak<Reference>(definition);
}

void LookupTableImpl::ApplyPendingBindings() {
    const Counted<LookupTableImpl> kept(this);
    BindLayers(*this);
    const auto liveScene = scene.Lock();
    if (liveScene && !viewportTargets.IsEmpty()) BindPendingViewports(*this, *liveScene);
    for (const auto& reference : loadedReferences)
        MarkLoaded(*this, *reference);
}

}  // namespace qn::graph
