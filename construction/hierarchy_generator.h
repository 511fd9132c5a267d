#pragma once

#include "frame/host/generator.h"
#include "frame/host/selector.h"
#include "graph/graph.h"

namespace qn::graph {

/// Turns a selector over the graph into nodes below the node that it is attached to.
/// Class key "qn.graph.hierarchygenerator".
class HierarchyGenerator : public k3::Generator {
public:
    /// Nothing happens for a selector without reference; else the output is stale.
    virtual void SetSelector(const Selector& selector) = 0;
    /// From now on the generator writes nothing at all.
    virtual void DisableSave() = 0;
    virtual void ResolveReferenceSelectors() = 0;
    virtual void StoreReferenceSelectors() = 0;
    virtual void RunReferenceInstructions() = 0;
    /// The node last generated into, borrowed, or null.
    virtual k3::Node* GetTargetNode() const = 0;
    /// Borrowed, or null.
    virtual Reference* GetRootReference() const = 0;

    static const ClassRecord& StaticClass() {
        static const ClassRecord& record = InternClass("qn::graph::HierarchyGenerator");
        return record;
    }
    void* CastTo(const ClassRecord& wanted) override {
        return CastThrough<HierarchyGenerator, Generator>(this, wanted);
    }
};

}  // namespace qn::graph
