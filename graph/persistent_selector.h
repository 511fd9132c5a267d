#pragma once

#include "frame/host/hierarchy_element.h"
#include "frame/host/reference_source.h"
#include "graph/graph.h"

namespace qn::graph {

/// The stored form of a selector: a path and the attributes of one occurrence.
/// Class key "qn.graph.persistentselector".
class PersistentSelector : public ReferenceSource, public HierarchyElement {
public:
    static const ClassRecord& StaticClass() {
        static const ClassRecord& record = InternClass("qn::graph::PersistentSelector");
        return record;
    }
    void* CastTo(const ClassRecord& wanted) override {
        return CastThrough<PersistentSelector, ReferenceSource, HierarchyElement>(this, wanted);
    }
};

}  // namespace qn::graph
