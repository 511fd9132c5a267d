#include "construction/hierarchy_factory_impl.h"

#include "construction/circular_check.h"
#include "construction/node_generation.h"
#include "construction/reference_building.h"
#include "construction/selector_paths.h"
#include "construction/working_maps.h"
#include "construction/write_back.h"
#include "frame/host/scene_document.h"
#include "graph/node_traverser.h"
#include "graph/persistent_selector_impl.h"
#include "graph/reference_impl.h"

namespace qn::graph {

namespace {

Selector SelectorOn(Selector::Traverser* traverser) {
    Selector selector;
    selector.AssignTraverser(traverser);
    return selector;
}

Counted<NodeTraverser> TraverserOn(k3::Node* node, LookupTable* table, WorkingMaps& maps, bool createNodes) {
    return Make<NodeTraverser>(table, node, &maps.Nodes(), &maps.Instances(), createNodes);
}

/// While it lives, new local ids start with that of the element.
class IdPrefix {
public:
    IdPrefix(LookupTable& table, HierarchyElement* element) : table_(table) { table_.PushIdPrefix(element); }
    ~IdPrefix() { table_.PopIdPrefix(); }
    IdPrefix(const IdPrefix&) = delete;
    IdPrefix& operator=(const IdPrefix&) = delete;

private:
    LookupTable& table_;
};

/// Fills an empty definition of that id, found or new; gives the instance that was the source, null if
/// nothing was done.
Counted<Instance> FillById(const Selector& selector, LookupTable& table, const String& id,
                           Counted<Reference>& reference) {
    reference = table.FindReferenceById(id);
    const bool found = static_cast<bool>(reference);
    if (found && !reference->IsLeaf()) return {};
    if (!found) reference = table.GetOrCreateReference(id);
    if (!reference) return {};
    const IdPrefix prefix(table, reference.Get());
    Counted<Instance> instance = FillReference(selector, reference.Get());
    if (found && instance) reference->SetInstanceReference(instance.Get());
    return instance;
}

}  // namespace

Counted<LookupTable> HierarchyFactoryImpl::CreateLookupTable() {
    return Make<LookupTableImpl>();
}

Counted<Reference> HierarchyFactoryImpl::CreateReference() {
    return Make<ReferenceImpl>();
}

Counted<Reference> HierarchyFactoryImpl::CreateReferenceFromTraverser(Selector::Traverser* traverser,
                                                                      LookupTable* table, const String& id) {
    if (!traverser || !table) return {};
    Counted<Reference> reference;
    if (const Counted<Instance> instance = FillById(SelectorOn(traverser), *table, id, reference)) {
        TransferInstanceProperties(*instance, *reference);
        TransferSelectors(*instance, *reference);
    }
    return reference;
}

Counted<Selector::Traverser> HierarchyFactoryImpl::CreateNodesFromSelector(const Selector& selector,
                                                                           Selector::Traverser* traverser) {
    return NodeGeneration().Run(selector, traverser);
}

Counted<k3::Node> HierarchyFactoryImpl::GenerateNodes(const Selector& selector, k3::Node* root) {
    if (!root || !selector.IsValid()) return {};
    Reference* const reference = selector.GetReference();
    WorkingMaps maps(reference ? reference->GetLookupTable() : nullptr);
    const auto traverser = TraverserOn(root, selector.GetLookupTable(), maps, true);
    traverser->SetUseNodeItself(true);
    maps.Instances().Add(selector.GetInstance(), root);
    maps.Nodes().Set(root, selector.GetInstance());
    NodeGeneration().Run(selector, traverser.Get());
    std::map<PersistentSelector*, k3::Node*> answers, reserved;
    traverser->ApplyElementChanges(root, String(), answers, reserved);
    return Counted<k3::Node>(root);
}

Counted<Reference> HierarchyFactoryImpl::CreateStandaloneReference(k3::Node* node) {
    if (!node) return {};
    WorkingMaps maps(nullptr);
    const auto traverser = TraverserOn(node, nullptr, maps, false);
    Counted<Reference> reference = CreateReference();
    if (const Counted<Instance> instance = FillReference(SelectorOn(traverser.Get()), reference.Get()))
        TransferInstanceProperties(*instance, *reference);
    traverser->StoreElementChanges(node);
    return reference;
}

Counted<Reference> HierarchyFactoryImpl::CreateReferenceFromNode(k3::Node* node, LookupTable* table) {
    WorkingMaps maps(table);
    return CreateReferenceFromNodeWithMaps(node, table, String(), maps.Nodes(), maps.Instances());
}

Counted<Reference> HierarchyFactoryImpl::CreateReferenceFromNodeWithMaps(k3::Node* node, LookupTable* table,
                                                                         const String& id,
                                                                         NodeToInstance& nodeMap,
                                                                         InstanceToNodes& instanceMap) {
    if (!node || !table) return {};
    const auto traverser = Make<NodeTraverser>(table, node, &nodeMap, &instanceMap, false);
    Counted<Reference> reference = CreateReferenceFromTraverser(traverser.Get(), table, id);
    traverser->StoreElementChanges(node);
    return reference;
}

Counted<Instance> HierarchyFactoryImpl::CreateInstanceFromNode(k3::Node* node) {
    return CreateInstanceInTable(node, nullptr);
}

Counted<Instance> HierarchyFactoryImpl::CreateInstanceInTable(k3::Node* node, LookupTable* table) {
    if (!node) return {};
    WorkingMaps maps(table);
    const auto traverser = TraverserOn(node, table, maps, false);
    const Selector selector = SelectorOn(traverser.Get());
    Counted<Instance> instance(selector.GetInstance());
    if (instance && instance->GetReference()) instance = FillReference(selector, nullptr);
    traverser->StoreElementChanges(node);
    return instance;
}

Selector HierarchyFactoryImpl::SelectorFromPersistent(PersistentSelector* source) {
    return graph::SelectorFromPersistent(source);
}

Counted<PersistentSelector> HierarchyFactoryImpl::PersistentFromSelector(const Selector& selector) {
    return graph::PersistentFromSelector(selector);
}

Counted<k3::Node> HierarchyFactoryImpl::FindNodeForSelector(k3::Node* root, const Selector& selector) {
    return Counted<k3::Node>(graph::FindNodeForSelector(root, selector));
}

Selector HierarchyFactoryImpl::SelectorFromInstance(Instance* instance) {
    return graph::SelectorFromInstance(instance);
}

Counted<k3::Node> HierarchyFactoryImpl::FindRelatedNode(InterfaceArray* nodes, k3::Node* node) {
    return Counted<k3::Node>(graph::FindRelatedNode(nodes, node));
}

bool HierarchyFactoryImpl::HasCircularReference(Reference* reference, Context* log) {
    return graph::HasCircularReference(reference, log);
}

void HierarchyFactoryImpl::ApplyNodeToInstance(k3::Node* node) {
    graph::ApplyNodeToInstance(node);
}

void HierarchyFactoryImpl::ApplyNodeToReference(k3::Node* node, Reference* reference) {
    graph::ApplyNodeToReference(node, reference);
}

Counted<LookupTable> HierarchyFactoryImpl::CreateLookupTableForScene(k3::Scene* scene, Context* context) {
    if (!scene) return {};
    Counted<LookupTable> table = CreateLookupTable();
    table->SetSceneAndContext(scene, context);
    Var visited;
    visited.InitMap();
    for (k3::Node* node = scene->GetFirstChild(); node; node = node->GetNextSibling())
        if (const Counted<Instance> instance = CreateInstanceInTable(node, table.Get()))
            instance->StoreSelectors(true, &visited);
    return table;
}

ResultEnum HierarchyFactoryImpl::CopyFrom(const Interface* source, unsigned flags) {
    const auto* const factory = Cast<HierarchyFactory>(source);
    return factory ? CloneFrom(*factory, flags) : ResultEnum::kWrongClass;
}

bool HierarchyFactoryImpl::IsTypeOf(const char* name) const {
    return EqualKeys(name, ClassKey::kHierarchyFactory) || HierarchyFactory::IsTypeOf(name);
}

}  // namespace qn::graph
