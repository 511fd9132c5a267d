#pragma once

#include "frame/host/node.h"
#include "frame/host/property_ids.h"
#include "frame/host/var.h"

// A node's fields and parameters under the property numbers of the hierarchy. Reading and writing are not
// symmetric: some numbers are written elsewhere than they are read, flags can be set but not cleared, most
// defaults read as empty.

namespace qn::graph {

/// A copy of the value; empty where the node says nothing.
Var ReadNodeProperty(const k3::Node& node, PropEnum id);

/// Nothing happens for a value of the wrong kind, or a property that nodes do not take.
void WriteNodeProperty(k3::Node& node, PropEnum id, const Var& value);

}  // namespace qn::graph
