#pragma once

#include "frame/host/node.h"
#include "graph/graph.h"

namespace qn::graph {

/// Walks the nodes below `top` that show instances and stores on each last instance, as a local selector, in
/// what its node differs from it. With a table whose filter leaves an element out, the occurrence is stored
/// as hidden in any case. Nodes without instance end their branch. `table` may be null.
void CaptureOverrides(k3::Node& top, LookupTable* table);

}  // namespace qn::graph
