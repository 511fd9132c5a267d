#pragma once

#include "frame/host/hierarchy_element.h"
#include "frame/host/reference_source.h"
#include "frame/host/selector.h"
#include "graph/graph.h"

#include <set>
#include <vector>

namespace qn::graph {

/// A definition, part or assembly: its children, the instances that use it, what it stands for, and stored
/// calls. Class key "qn.graph.reference".
class Reference : public ReferenceSource, public HierarchyElement {
public:
    class PostProcessingInstruction;

    /// A new use of this definition, listed here, child of nothing and in no index.
    virtual Counted<Instance> CreateInstance() = 0;
    /// The instance that already has the local id, unchanged; else a new one. An empty id is generated.
    virtual Counted<Instance> CreateInstanceWithId(const String& id) = 0;
    /// The instance that already has the server id; else a new one. Null without table unless `bsId` is
    /// empty.
    virtual Counted<Instance> CreateInstanceWithBsId(const String& id, const String& bsId) = 0;
    virtual int GetChildCount() const = 0;
    /// Null past the end.
    virtual Counted<Instance> GetChild(int index) const = 0;
    /// Appends unless it is a child already; only then its parent becomes this.
    virtual void AddChild(Instance* instance) = 0;
    virtual bool HasChild(Instance* instance) const = 0;
    /// A new definition with this target and properties; children, selectors and instructions stay.
    virtual Counted<Reference> CreateCopy() = 0;
    virtual void RemoveChild(Instance* instance) = 0;
    virtual void RemoveChildAt(int index) = 0;
    /// Counts dead entries.
    virtual int GetInstanceCount() const = 0;
    /// Null past the end or for a dead entry.
    virtual Counted<Instance> GetInstance(int index) const = 0;
    virtual int GetSelectorCount() const = 0;
    virtual Selector GetSelector(int index) const = 0;
    /// The stored id path; empty without a live table.
    virtual Var GetSelectorPath(int index) const = 0;
    virtual void RemoveSelector(int index) = 0;
    virtual void AddSelectorPath(const Var& path) = 0;
    /// Nothing happens without a live table.
    virtual void AddSelector(const Selector& selector) = 0;
    virtual void ResolveSelectors(bool recurse, Var* cache) = 0;
    virtual void StoreSelectors(bool recurse, Var* visited) = 0;
    virtual Var GetTarget() const = 0;
    virtual void SetTarget(const Var& target) = 0;
    /// False for a text, an array or a map.
    virtual bool HasNoTargetLink() const = 0;
    virtual Counted<Reference> ResolveTarget(const Var& key) = 0;
    virtual void CopyContentFrom(Reference* source) = 0;
    virtual void ReloadExternalTarget() = 0;
    /// No children, and the target is no array, map or object.
    virtual bool IsLeaf() const = 0;
    virtual int GetInstructionCount() const = 0;
    virtual Counted<PostProcessingInstruction> GetInstruction(int index) const = 0;
    virtual void RemoveInstruction(int index) = 0;
    virtual Counted<PostProcessingInstruction> AddInstruction() = 0;
    virtual void RunInstructions(Extension* target, Context* context) = 0;
    virtual void RunAllInstructions(Extension* target, Context* context) = 0;
    virtual Var CreateResolverCache() = 0;
    /// Enters this and the graph below it in a table, with new local ids, and merges definitions of one
    /// server id. The definition that stands for this one from now on, borrowed; null for a null table.
    virtual Reference* RegisterInTable(LookupTable* table) = 0;
    virtual void RunInstructionsRecursive(Extension* target, Context* context,
                                          std::set<Reference*>& visited) = 0;
    virtual void SetInstanceReference(Instance* instance) = 0;
    virtual void ClearInstances() = 0;
    virtual void AddInstances(const std::vector<Instance*>& instances) = 0;

    static const ClassRecord& StaticClass() {
        static const ClassRecord& record = InternClass("qn::graph::Reference");
        return record;
    }
    void* CastTo(const ClassRecord& wanted) override {
        return CastThrough<Reference, ReferenceSource, HierarchyElement>(this, wanted);
    }
};

}  // namespace qn::graph
