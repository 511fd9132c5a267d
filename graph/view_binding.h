#pragma once

#include "frame/host/class_record.h"
#include "graph/graph.h"

namespace qn::graph {

/// The side of a lookup table that keeps viewports until the nodes that they look at are made. Reached by
/// `Cast` from the table.
class ViewBinding {
public:
    /// The viewport will look at the first node of the definition's first instance. Both are watched, not
    /// counted; the first definition of a viewport wins.
    virtual void BindViewLater(k3::Viewport* viewport, Reference* definition) = 0;

    static const ClassRecord& StaticClass() {
        static const ClassRecord& record = InternClass("qn::graph::ViewBinding");
        return record;
    }
    virtual void* CastTo(const ClassRecord& wanted) { return &wanted == &StaticClass() ? this : nullptr; }

protected:
    ~ViewBinding() = default;
};

}  // namespace qn::graph
