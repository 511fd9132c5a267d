#pragma once

#include "frame/host/node.h"
#include "frame/host/selector.h"
#include "graph/graph.h"
#include "graph/lookup_table.h"
#include "graph/node_maps.h"

namespace qn::graph {

/// A position in the scene tree that shows itself as part of the hierarchy: instances and references are made
/// when first seen. The other way round it makes nodes for instances. Every move makes a new traverser with
/// the same table, maps and mode. The maps are borrowed and must outlive it.
class NodeTraverser final : public Selector::Traverser {
public:
    /// `table` may be null: then nothing gets ids, and new instances are kept on the nodes. With
    /// `createNodes` false `CreateChild` makes nothing.
    NodeTraverser(LookupTable* table, k3::Node* node, NodeToInstance* nodeToInstance,
                  InstanceToNodes* instanceToNodes, bool createNodes);
    ~NodeTraverser() override;

    /// The first `CreateChild` binds the node itself instead of a new child.
    void SetUseNodeItself(bool use) { useNodeItself_ = use; }
    /// Borrowed; null above the top.
    k3::Node* GetNode() const { return node_.Get(); }

    /// The known instance of the node, or a new one, entered in the maps. The first call also gives every
    /// child of the node an instance and adds it to the reference. Null without node.
    Counted<Instance> GetInstance() override;
    /// A traverser on the node that now shows the instance; this one if it makes no nodes; null for null.
    Counted<Selector::Traverser> CreateChild(Instance* instance) override;
    /// On the node's parent, which may be null.
    Counted<Selector::Traverser> GetParent() override;
    int GetChildCount() const override;
    /// Null outside.
    Counted<Selector::Traverser> GetChild(int index) override;
    /// Always.
    bool IsValid() const override { return true; }
    /// Takes what the elements say over to the nodes at and below `node`: links, metadata without
    /// repetitions, PMI names.
    void ApplyElementChanges(k3::Node* node, const String& path,
                             std::map<PersistentSelector*, k3::Node*>& answers,
                             std::map<PersistentSelector*, k3::Node*>& reserved) override;
    /// The way back for links: from nodes to stored selectors on the instances.
    void StoreElementChanges(k3::Node* node) override;

    /// By the node's property table; `inherit` means nothing.
    Var GetProperty(PropEnum id, int inherit) const override;
    void SetProperty(PropEnum id, const Var& value) override;
    LookupTable* GetLookupTable() const override { return table_.Get(); }
    String ToDebugString() const override { return String(); }

    static const ClassRecord& StaticClass() {
        static const ClassRecord& record = InternClass("qn::graph::NodeTraverser");
        return record;
    }
    void* CastTo(const ClassRecord& wanted) override {
        return CastThrough<NodeTraverser, Selector::Traverser>(this, wanted);
    }

private:
    Counted<NodeTraverser> At(k3::Node* node) const;
    void Enter(k3::Node* node, Instance* instance);
    Counted<Instance> KnownOrNewInstance();
    void AddChildrenTo(Reference& reference);

    Weak<LookupTable> table_;
    NodeToInstance* nodeToInstance_;
    InstanceToNodes* instanceToNodes_;
    bool createNodes_;
    bool childrenAdded_ = false;
    Counted<k3::Node> node_;
    bool useNodeItself_ = false;
};

}  // namespace qn::graph
