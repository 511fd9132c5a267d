#pragma once

#include "frame/host/class_record.h"
#include "frame/host/counted.h"
#include "graph/node_maps.h"

namespace qn::graph {

/// The part of the hierarchy factory that file loading needs besides `HierarchyFactory`: reached by class key
/// and cast.
class NodeInstancing {
public:
    /// Turns a node into a reference with the given maps. Null on refusal.
    virtual Counted<Reference> CreateReferenceFromNodeWithMaps(k3::Node* node, LookupTable* table,
                                                               const String& id, NodeToInstance& nodeMap,
                                                               InstanceToNodes& instanceMap) = 0;

    static const ClassRecord& StaticClass() {
        static const ClassRecord& record = InternClass("qn::graph::NodeInstancing");
        return record;
    }
    virtual void* CastTo(const ClassRecord& wanted) { return &wanted == &StaticClass() ? this : nullptr; }

protected:
    ~NodeInstancing() = default;
};

}  // namespace qn::graph
