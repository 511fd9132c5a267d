#pragma once

#include "frame/host/collections.h"
#include "frame/host/extension.h"
#include "frame/host/selector.h"
#include "graph/graph.h"

namespace qn::graph {

/// Converts between the scene tree and the instance-reference graph; keeps nothing between calls.
/// Class key "qn.graph.hierarchyfactory". Results are counted, null on refusal.
class HierarchyFactory : public Extension {
public:
    virtual Counted<LookupTable> CreateLookupTable() = 0;
    virtual Counted<Reference> CreateReference() = 0;
    virtual Counted<Reference> CreateReferenceFromTraverser(Selector::Traverser* traverser,
                                                            LookupTable* table, const String& id) = 0;
    virtual Counted<Selector::Traverser> CreateNodesFromSelector(const Selector& selector,
                                                                 Selector::Traverser* traverser) = 0;
    virtual Counted<k3::Node> GenerateNodes(const Selector& selector, k3::Node* root) = 0;
    virtual Counted<Reference> CreateStandaloneReference(k3::Node* node) = 0;
    virtual Counted<Reference> CreateReferenceFromNode(k3::Node* node, LookupTable* table) = 0;
    virtual Counted<Instance> CreateInstanceFromNode(k3::Node* node) = 0;
    virtual Counted<Instance> CreateInstanceInTable(k3::Node* node, LookupTable* table) = 0;
    virtual Selector SelectorFromPersistent(PersistentSelector* source) = 0;
    virtual Counted<PersistentSelector> PersistentFromSelector(const Selector& selector) = 0;
    virtual Counted<k3::Node> FindNodeForSelector(k3::Node* root, const Selector& selector) = 0;
    virtual Selector SelectorFromInstance(Instance* instance) = 0;
    virtual Counted<k3::Node> FindRelatedNode(InterfaceArray* nodes, k3::Node* node) = 0;
    virtual bool HasCircularReference(Reference* reference, Context* log) = 0;
    virtual void ApplyNodeToInstance(k3::Node* node) = 0;
    virtual void ApplyNodeToReference(k3::Node* node, Reference* reference) = 0;
    virtual Counted<LookupTable> CreateLookupTableForScene(k3::Scene* scene, Context* context) = 0;

    static const ClassRecord& StaticClass() {
        static const ClassRecord& record = InternClass("qn::graph::HierarchyFactory");
        return record;
    }
    void* CastTo(const ClassRecord& wanted) override {
        return CastThrough<HierarchyFactory, Extension>(this, wanted);
    }
};

}  // namespace qn::graph
