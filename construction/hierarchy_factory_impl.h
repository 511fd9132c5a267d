#pragma once

#include "construction/hierarchy_factory.h"
#include "graph/node_instancing.h"

namespace qn::graph {

/// The class behind "qn.graph.hierarchyfactory".
class HierarchyFactoryImpl final : public HierarchyFactory, public NodeInstancing {
public:
    Counted<LookupTable> CreateLookupTable() override;
    Counted<Reference> CreateReference() override;
    /// A found definition that has content is given as it is. Null if traverser or table is null.
    Counted<Reference> CreateReferenceFromTraverser(Selector::Traverser* traverser, LookupTable* table,
                                                    const String& id) override;
    Counted<Selector::Traverser> CreateNodesFromSelector(const Selector& selector,
                                                         Selector::Traverser* traverser) override;
    Counted<k3::Node> GenerateNodes(const Selector& selector, k3::Node* root) override;
    Counted<Reference> CreateStandaloneReference(k3::Node* node) override;
    Counted<Reference> CreateReferenceFromNode(k3::Node* node, LookupTable* table) override;
    Counted<Instance> CreateInstanceFromNode(k3::Node* node) override;
    Counted<Instance> CreateInstanceInTable(k3::Node* node, LookupTable* table) override;
    Selector SelectorFromPersistent(PersistentSelector* source) override;
    Counted<PersistentSelector> PersistentFromSelector(const Selector& selector) override;
    Counted<k3::Node> FindNodeForSelector(k3::Node* root, const Selector& selector) override;
    Selector SelectorFromInstance(Instance* instance) override;
    Counted<k3::Node> FindRelatedNode(InterfaceArray* nodes, k3::Node* node) override;
    bool HasCircularReference(Reference* reference, Context* log) override;
    void ApplyNodeToInstance(k3::Node* node) override;
    void ApplyNodeToReference(k3::Node* node, Reference* reference) override;
    Counted<LookupTable> CreateLookupTableForScene(k3::Scene* scene, Context* context) override;

    Counted<Reference> CreateReferenceFromNodeWithMaps(k3::Node* node, LookupTable* table, const String& id,
                                                       NodeToInstance& nodeMap,
                                                       InstanceToNodes& instanceMap) override;

    /// kWrongClass unless the source is a factory; there is nothing to copy.
    ResultEnum CopyFrom(const Interface* source, unsigned flags) override;
    const char* GetInterfaceName() const override { return ClassKey::kHierarchyFactory; }
    bool IsTypeOf(const char* name) const override;

    static const ClassRecord& StaticClass() {
        static const ClassRecord& record = InternClass("qn::graph::HierarchyFactoryImpl");
        return record;
    }
    void* CastTo(const ClassRecord& wanted) override {
        return CastThrough<HierarchyFactoryImpl, HierarchyFactory, NodeInstancing>(this, wanted);
    }
};

}  // namespace qn::graph
