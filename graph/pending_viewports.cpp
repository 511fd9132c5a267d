#include "frame/host/meta.h"
#include "graph/pending_bindings.h"
#include "graph/shown_nodes.h"

#include <algorithm>
#include <unordered_set>

namespace qn::graph {

namespace {

constexpr const wchar_t* kViewportGroup = L"$QN.PMI.VIEWPORT";
constexpr const wchar_t* kIsCapture = L"IsCapture";
constexpr const wchar_t* kPmiGroup = L"$QN.CAD.PMI";
constexpr const wchar_t* kPmiType = L"PMIType";
constexpr const wchar_t* kCrossSection = L"$QN.XSECTION.OBJECT";

/// Everything below a node, then the node itself; membership takes constant time.
class Subtree {
public:
    explicit Subtree(k3::Node& root) : root_(&root) {
        root.Visit(0, &Collect, reinterpret_cast<ParamWord>(this));
        nodes_.push_back(&root);
        members_.insert(nodes_.begin(), nodes_.end());
    }

    bool Contains(const k3::Node* node) const { return members_.count(node) != 0; }
    const std::vector<k3::Node*>& Nodes() const { return nodes_; }

private:
    static bool Collect(k3::Node* node, ParamWord argument) {
        auto* self = reinterpret_cast<Subtree*>(argument);
        if (node != self->root_) self->nodes_.push_back(node);
        return true;
    }

    k3::Node* root_;
    std::vector<k3::Node*> nodes_;
    std::unordered_set<const k3::Node*> members_;
};

/// Neither PMI, nor a cross section, nor of a hidden entity type.
bool IsOrdinaryGeometry(k3::Node* node) {
    if (!node) return false;
    const Var pmi = meta::GetAllExistingMetadata(node, Var(kPmiGroup));
    const Var* type = pmi.Lookup(kPmiType);
    if (type && type->IsSet() && *type != Var(0)) return false;
    if (GetMeta(node, Var(kCrossSection), 0).IsSet()) return false;
    const Var entity = meta::GetAllExistingMetadata(node, Var(kEntityTypeGroup));
    return (EntityTypeOf(entity) & kHiddenEntityType) == 0;
}

void SetExcludedFlag(Extension& object) {
    const auto flags = static_cast<unsigned>(object.GetParamVar(Param::kFlags).ToInt());
    object.SetParamVar(Param::kFlags, Var(static_cast<int>(flags | NodeFlag::kExcluded)));
}

/// A capture shows what it held; any other view of PMI shows all of the subtree that is ordinary geometry.
bool WantsWholeSubtree(const k3::Viewport& viewport, k3::Node& shown) {
    const Var group = GetMeta(&viewport, Var(kViewportGroup), 0);
    if (!group.IsMap()) return false;
    const Var* capture = group.Lookup(kIsCapture);
    if (!capture || capture->GetTag() != VarTag::kBool || !capture->ToBool()) return true;
    const Var owner = viewport.GetParamVar(Param::kViewportTarget);
    if (const auto* reference = Cast<Reference>(owner)) {
        const Var metadata = reference->GetProperty(Prop::kMetadata, 0);
        if (const Var* id = CadUniqueId(metadata)) SetCadUniqueId(shown, *id);
    }
    return false;
}

void FitLayer(k3::Layer& layer, const Subtree& subtree, bool whole) {
    std::vector<k3::Node*> outside;  // collected first: removal changes the members
    const PointerArray* members = layer.GetMembers();
    for (int i = 0; members && i < members->GetCount(); ++i) {
        auto* node = Cast<k3::Node>(members->Get(i));
        if (node && !subtree.Contains(node)) outside.push_back(node);
    }
    for (k3::Node* node : outside)
        layer.RemoveNode(node);
    if (!whole) return;
    for (k3::Node* node : subtree.Nodes())
        if (IsOrdinaryGeometry(node)) layer.AddNode(node);
}

/// The first of `nodes` that stands in the part of the tree to which the viewport belongs.
k3::Node* BindToSubtree(k3::Viewport& viewport, k3::Node& shown, const std::vector<k3::Node*>& nodes) {
    const Subtree subtree(shown);
    const auto inside = std::find_if(nodes.begin(), nodes.end(),
                                     [&](const k3::Node* node) { return subtree.Contains(node); });
    if (IsExcluded(&shown)) {
        SetExcludedFlag(viewport);
        if (k3::Entity* companion = viewport.GetCompanion()) SetExcludedFlag(*companion);
    }
    if (k3::Layer* layer = viewport.GetLayer()) FitLayer(*layer, subtree, WantsWholeSubtree(viewport, shown));
    return inside == nodes.end() ? nullptr : *inside;
}

void BindViewport(LookupTableImpl& table, const ShownNodes& shownNodes, k3::Viewport& viewport,
                  const Reference& definition) {
    const auto nodes = NodesOfInstanceAlone(table, definition.GetInstance(0).Get());
    const Var owner = viewport.GetParamVar(Param::kViewportTarget);
    const Var bom = viewport.GetParamVar(Param::kViewportOwnBom);
    k3::Node* shown = shownNodes.Find(bom.ToInterface(), Cast<Reference>(owner));
    k3::Node* viewNode = nullptr;
    if (shown)
        viewNode = BindToSubtree(viewport, *shown, nodes);
    else if (!nodes.empty())
        viewNode = nodes.front();
    if (viewNode) viewport.SetViewNode(viewNode);
}

}  // namespace

void BindPendingViewports(LookupTableImpl& table, k3::Scene& scene) {
    const ShownNodes shownNodes(scene);
    table.viewportTargets.ForEach([&](k3::Viewport* viewport, const Weak<Reference>& target) {
        if (const auto definition = target.Lock()) BindViewport(table, shownNodes, *viewport, *definition);
    });
}

}  // namespace qn::graph
