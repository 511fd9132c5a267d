#include "operations/build_hierarchy.h"

#include "construction/hierarchy_factory.h"
#include "frame/host/api.h"
#include "frame/host/scene.h"
#include "graph/instance.h"
#include "graph/node_walk.h"
#include "graph/reference.h"
#include "operations/generated_id.h"
#include "product/bom.h"
#include "services/top_level_nodes.h"

#include <optional>

namespace qn::graph {
namespace {

Var NewId() {
    return Var(GenerateId({L"s1:", L""}));
}

/// A definition and an instance for the node, below `parent` (may be null). Null for the scene.
Counted<Reference> MakeElements(k3::Node& node, Reference* parent, HierarchyFactory& factory) {
    if (node.GetScene() == &node) return {};
    Counted<Reference> reference = factory.CreateReference();
    const Counted<Instance> instance = reference->CreateInstance();
    factory.ApplyNodeToReference(&node, reference.Get());
    if (parent) parent->AddChild(instance.Get());
    node.SetParamVar(Param::kInstance, Var(instance));
    reference->SetProperty(Prop::kBsId, NewId());
    instance->SetProperty(Prop::kBsId, NewId());
    node.SetParamVar(Param::kBsId, NewId());
    return reference;
}

void BuildNodeHierarchy(k3::Node& root, HierarchyFactory& factory) {
    const auto build = [&](k3::Node& node, const Counted<Reference>& above) {
        return std::optional(MakeElements(node, above.Get(), factory));
    };
    WalkBelow(root, MakeElements(root, nullptr, factory), build);
}

void GiveStructuresIds(k3::Scene& scene) {
    const VarArray* const boms = k3::BomHelper(&scene).GetBoms();
    for (int i = 0; boms && i < boms->GetCount(); ++i)
        if (auto* const bom = Cast<k3::Bom>(boms->Get(i))) bom->SetParamVar(Param::kBsId, NewId());
}

/// Asks the list, not its entries, to be a viewport, once for each entry: a plain list gives no viewport an
/// id.
void GiveViewportListIds(k3::Scene& scene) {
    InterfaceArray* const list = scene.GetViewports();
    for (int i = 0, count = list ? list->GetCount() : 0; i < count; ++i)
        if (auto* const viewport = Cast<k3::Viewport>(static_cast<Interface*>(list)))
            viewport->SetParamVar(Param::kBsId, NewId());
}

void GenerateWith(HierarchyFactory& factory, k3::Scene& scene) {
    for (k3::Node* const node : TopLevelNodes(&scene))
        BuildNodeHierarchy(*node, factory);
    GiveStructuresIds(scene);
    GiveViewportListIds(scene);
}

}  // namespace

void GenerateHierarchyWithBsIds(k3::Scene& scene) {
    const Weak<k3::Scene> alive(&scene);
    if (k3::Scene* const watched = alive.Get()) watched->BeginUpdate();
    if (const auto factory = CreateAs<HierarchyFactory>(ClassKey::kHierarchyFactory))
        GenerateWith(*factory, scene);
    if (k3::Scene* const still = alive.Get()) still->EndUpdate();
}

}  // namespace qn::graph
