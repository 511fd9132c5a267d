#include "services/hierarchy_checker_impl.h"

#include "construction/hierarchy_factory.h"
#include "frame/host/api.h"
#include "frame/host/context.h"
#include "services/check_log.h"
#include "services/hierarchy_operation.h"
#include "services/layer_check.h"
#include "services/node_check.h"

namespace qn::graph {
namespace {

bool CheckNode(k3::Node* node, Instance* instance, Context* log) {
    return NodeCheck([log](const NodeFinding& finding) {
               LogFinding(finding, log);
               return false;
           })
        .Run(node, instance);
}

bool CheckCircular(const Instance* instance, Context* log) {
    Reference* const reference = instance ? instance->GetReference() : nullptr;
    if (!reference) return true;
    const auto factory = CreateAs<HierarchyFactory>(ClassKey::kHierarchyFactory);
    return factory && !factory->HasCircularReference(reference, log);
}

bool CheckTopLevelNode(k3::Node& node, Context* log) {
    const Counted<Instance> instance(CarriedInstance(node));
    return CheckNode(&node, instance.Get(), log) && CheckCircular(instance.Get(), log);
}

bool CheckLayer(const k3::Layer* layer, SceneNodes& sceneNodes, Context* log) {
    if (!layer || !log) return true;
    const StrayMembers stray = ClassifyMembers(*layer, sceneNodes);
    const int orphaned = static_cast<int>(stray.orphaned.size());
    const int invalid = static_cast<int>(stray.invalid.size());
    if (orphaned > 0) LogMembers("%1 orphaned nodes detected in layer %2", orphaned, *layer, log);
    if (invalid > 0) LogMembers("%1 invalid nodes detected in layer %2", invalid, *layer, log);
    return stray.IsEmpty();
}

/// Takes the objects, which stand in the array in this order, out of it.
void RemoveFrom(PointerArray& members, const std::vector<Interface*>& gone) {
    std::size_t next = 0;
    int kept = 0;
    for (int i = 0; i < members.GetCount(); ++i) {
        Interface* const member = members.Get(i);
        if (next < gone.size() && member == gone[next])
            ++next;
        else
            members.Set(kept++, member);
    }
    members.RemoveAt(kept, members.GetCount() - kept);
}

/// The log is part of a repair: without one nothing is removed.
bool CleanLayer(k3::Layer* layer, SceneNodes& sceneNodes, Context* log) {
    if (!layer || !layer->GetMembers() || !log) return true;
    const StrayMembers stray = ClassifyMembers(*layer, sceneNodes);
    const int orphaned = static_cast<int>(stray.orphaned.size());
    const int invalid = static_cast<int>(stray.invalid.size());
    if (orphaned > 0) LogMembers("Removed %1 orphaned nodes from layer %2", orphaned, *layer, log);
    if (invalid > 0) LogMembers("Removed %1 invalid nodes from layer %2", invalid, *layer, log);
    for (Interface* const member : stray.orphaned)
        layer->RemoveNode(Cast<k3::Node>(member));
    if (invalid > 0) RemoveFrom(*layer->GetMembers(), stray.invalid);
    return stray.IsEmpty();
}

bool CleanSceneLayers(k3::Scene& scene, SceneNodes& sceneNodes, Context* log) {
    bool sound = true;
    const Counted<InterfaceArray> layers(scene.GetLayers());
    for (int i = 0; i < layers->GetCount(); ++i)
        if (!CleanLayer(Cast<k3::Layer>(layers->Get(i)), sceneNodes, log)) sound = false;
    return sound;
}

k3::Layer* LayerOfView(Interface* object) {
    const auto* const viewport = Cast<k3::Viewport>(object);
    return viewport ? viewport->GetLayer() : nullptr;
}

}  // namespace

bool HierarchyCheckerImpl::ValidateHierarchy(k3::Scene* scene, Context* log) {
    for (k3::Node* const node : TopLevelNodes(scene))
        if (!CheckTopLevelNode(*node, log)) return false;
    return true;
}

bool HierarchyCheckerImpl::ValidateLayers(k3::Scene* scene, Context* log) {
    if (!scene) return true;
    SceneNodes sceneNodes(*scene);
    bool sound = true;
    const InterfaceArray& layers = *scene->GetLayers();
    for (int i = 0; sound && i < layers.GetCount(); ++i)
        sound = CheckLayer(Cast<k3::Layer>(layers.Get(i)), sceneNodes, log);
    const InterfaceArray* const viewports = scene->GetViewports();
    for (int i = 0; viewports && i < viewports->GetCount(); ++i) {
        const k3::Layer* const layer = LayerOfView(viewports->Get(i));
        if (!layer) continue;
        sound = CheckLayer(layer, sceneNodes, log);
        if (!sound) break;
    }
    return sound;
}

bool HierarchyCheckerImpl::RepairHierarchy(k3::Scene* scene, Context* log) {
    return RepairTopLevelNodes(scene, log);
}

void HierarchyCheckerImpl::RepairLayers(k3::Scene* scene, Context* log) {
    if (!scene) return;
    SceneNodes sceneNodes(*scene);
    CleanSceneLayers(*scene, sceneNodes, log);
}

bool HierarchyCheckerImpl::RepairTopLevelNodes(k3::Scene* scene, Context* log) {
    Counted<HierarchyOperation> operation;
    bool sound = true;
    for (k3::Node* const node : TopLevelNodes(scene)) {
        if (CheckTopLevelNode(*node, log)) continue;
        if (sound) operation = CreateAs<HierarchyOperation>(ClassKey::kHierarchyOperation);
        sound = false;
        if (operation) operation->RemoveHierarchyCache(node, false, false, false, false);
        LogLostHierarchy(*node, log);
    }
    return sound;
}

bool HierarchyCheckerImpl::RepairLayersAndViewports(k3::Scene* scene, Context* log) {
    if (!scene) return true;
    SceneNodes sceneNodes(*scene);
    bool sound = CleanSceneLayers(*scene, sceneNodes, log);
    const Counted<InterfaceArray> viewports(scene->GetViewports());
    for (int i = 0; viewports && i < viewports->GetCount(); ++i)
        if (!CleanLayer(LayerOfView(viewports->Get(i)), sceneNodes, log)) sound = false;
    return sound;
}

ResultEnum HierarchyCheckerImpl::CopyFrom(const Interface* source, unsigned flags) {
    const auto* const checker = Cast<HierarchyChecker>(source);
    return checker ? CloneFrom(*checker, flags) : ResultEnum::kWrongClass;
}

bool HierarchyCheckerImpl::IsTypeOf(const char* name) const {
    return EqualKeys(name, ClassKey::kHierarchyChecker) || HierarchyChecker::IsTypeOf(name);
}

}  // namespace qn::graph
