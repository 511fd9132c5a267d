#pragma once

#include "frame/host/string.h"
#include "graph/graph.h"

namespace qn::graph {

/// The element and everything below it as one line of nested tags with names and addresses, one for each
/// occurrence. A definition that stands on the present descent is not entered again.
String DebugText(const InstanceImpl& instance);
String DebugText(const ReferenceImpl& reference);

}  // namespace qn::graph
