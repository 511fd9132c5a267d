#include "engine/scene/scene_access.h"
#include "engine/scene/scene_data.h"
#include "frame/host/generator.h"
#include "frame/host/params.h"
#include "graph/node_list_owner.h"

namespace qn::k3 {
namespace {

/// Collects the nodes above those that something points at.
class PointerCollector {
public:
    explicit PointerCollector(std::unordered_set<const Node*>& above) : above_(above) {}

    void Add(const Node* node) {
        for (node = node ? node->GetParent() : nullptr; node; node = node->GetParent())
            if (!above_.insert(node).second) return;
    }

    void AddMembers(const InterfaceArray* members) {
        for (int i = 0; members && i < members->GetCount(); ++i)
            Add(Cast<Node>(members->Get(i)));
    }

    void AddLayers(const InterfaceArray* layers) {
        for (int i = 0; layers && i < layers->GetCount(); ++i)
            if (const auto* layer = Cast<Layer>(layers->Get(i))) AddMembers(layer->GetMembers());
    }

    void AddParams(Extension& object) {
        const Params* params = object.GetParams(false);
        for (int i = 0; params && i < params->GetCount(); ++i)
            AddValues(params->ValueAt(i));
    }

private:
    /// Nodes in the value, in nested arrays and maps, too; keeps its own stack, for containers may be rings.
    void AddValues(const Var& value) {
        std::vector<Var> open{value};
        std::unordered_set<const Interface*> seen;
        while (!open.empty()) {
            const Var next = open.back();
            open.pop_back();
            if (!next.HoldsInterface()) continue;
            Interface* object = next.ToInterface();
            if (!object || !seen.insert(object).second) continue;
            Add(Cast<Node>(object));
            if (const auto* array = Cast<VarArray>(object))
                for (int i = 0; i < array->GetCount(); ++i)
                    open.push_back(array->Get(i));
            else if (const auto* map = Cast<VarMap>(object))
                for (int i = 0; i < map->GetCount(); ++i)
                    open.push_back(map->ValueAt(i));
        }
    }

    std::unordered_set<const Node*>& above_;
};

}  // namespace

std::unordered_set<const Node*>& SceneAccess::PointedOutside() {
    static auto& nodes = *new std::unordered_set<const Node*>;  // outlives every other static object
    return nodes;
}

void SceneAccess::FindPointedInto(Scene& scene) {
    Scene::Data& data = *scene.data_;
    data.pointedInto.clear();
    PointerCollector collector(data.pointedInto);
    collector.AddLayers(data.layers.Get());
    collector.AddParams(scene);
    const InterfaceArray* viewports = data.viewports.Get();
    for (int i = 0; viewports && i < viewports->GetCount(); ++i) {
        auto* viewport = Cast<Viewport>(viewports->Get(i));
        if (!viewport) continue;
        collector.Add(viewport->GetViewNode());
        collector.AddParams(*viewport);
        if (viewport->GetLayer()) collector.AddMembers(viewport->GetLayer()->GetMembers());
    }
    const VarArray* boms = BomHelper(&scene).GetBoms();
    for (int i = 0; boms && i < boms->GetCount(); ++i)
        if (const auto* bom = Cast<graph::NodeListOwner>(boms->Get(i).ToInterface()))
            collector.AddLayers(bom->GetLayers().Get());
    PointedOutside().clear();
    for (const Node* node : data.pointedInto)
        if (!node->GetScene()) PointedOutside().insert(node);
}

}  // namespace qn::k3
