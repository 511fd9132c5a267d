#pragma once

#include "frame/host/class_record.h"
#include "frame/host/collections.h"
#include "frame/host/var.h"

namespace qn::graph {

/// A structure of the scene with top-level nodes of its own, as far as pending views need it: a `Bom` is one.
class NodeListOwner {
public:
    /// A `VarArray` of top-level nodes; empty if there is none.
    virtual Var GetNodes() const = 0;
    /// The layers that it keeps while it is not shown, or null.
    virtual Counted<InterfaceArray> GetLayers() const { return {}; }

    static const ClassRecord& StaticClass() {
        static const ClassRecord& record = InternClass("qn::graph::NodeListOwner");
        return record;
    }
    virtual void* CastTo(const ClassRecord& wanted) { return &wanted == &StaticClass() ? this : nullptr; }

protected:
    ~NodeListOwner() = default;
};

}  // namespace qn::graph
