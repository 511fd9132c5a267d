#pragma once

#include "construction/descent.h"
#include "construction/occurrence_budget.h"
#include "frame/host/selector.h"
#include "graph/instance.h"

namespace qn::graph {

/// Takes over a definition that lies elsewhere, and those below it: reloads it, gives each instance the name
/// that its selector shows and the selector itself, and each definition the children that the selector has.
/// Definitions on the descent are not gone into, files on it are not loaded again. Gives the selector's
/// instance, or null.
Counted<Instance> AdoptLinkedReference(const Selector& selector, Descent& descent, OccurrenceBudget& budget);

}  // namespace qn::graph
