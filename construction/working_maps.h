#pragma once

#include "graph/lookup_table_impl.h"
#include "graph/node_maps.h"

namespace qn::graph {

/// The maps that a traverser works on for one operation: the table's own, so that it stays current, or an
/// empty pair where there is no table of the module's class.
class WorkingMaps {
public:
    explicit WorkingMaps(LookupTable* table) : table_(Cast<LookupTableImpl>(table)) {}
    NodeToInstance& Nodes() { return table_ ? table_->nodeToInstance : nodes_; }
    InstanceToNodes& Instances() { return table_ ? table_->instanceToNodes : instances_; }

private:
    Counted<LookupTableImpl> table_;
    NodeToInstance nodes_;
    InstanceToNodes instances_;
};

}  // namespace qn::graph
