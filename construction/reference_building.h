#pragma once

#include "frame/host/selector.h"
#include "graph/instance.h"
#include "graph/reference.h"

namespace qn::graph {

/// Copies what the selector sees below it into definitions: transforms onto the instances, children into the
/// references. With a `target` the top definition goes there, else it stays that of the selector's instance.
/// Gives the instance that the selector stands for, or null.
Counted<Instance> FillReference(const Selector& selector, Reference* target);

/// Gives the definition the set properties of its instance, inherited ones included, but not the local id.
/// Metadata is merged into what the definition has.
void TransferInstanceProperties(Instance& instance, Reference& target);

/// Gives the definition the properties of the instance's selectors, then takes the selectors away by rising
/// index. Indexes move with each removal and nobody corrects them, so later selectors survive.
void TransferSelectors(Instance& instance, Reference& target);

}  // namespace qn::graph
