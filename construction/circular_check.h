#pragma once

#include "frame/host/context.h"
#include "graph/reference.h"

namespace qn::graph {

/// Whether the definition reaches one that contains itself. The first such find is reported to `log`; without
/// one the answer is the same and nothing is said.
bool HasCircularReference(Reference* reference, Context* log);

}  // namespace qn::graph
