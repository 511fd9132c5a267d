#pragma once

#include "graph/graph.h"

#include <set>

namespace qn::graph {

/// Takes `root` off the front of the paths of all selectors below `reference`, when a loaded file's root
/// instance leaves the hierarchy. A path of one element stays. Each definition is visited once; those in
/// `visited` are passed over.
void TrimSelectorPaths(Instance* root, Reference* reference, std::set<Reference*>& visited);

/// The same for the selectors of one instance, those that they link to, and those that the instance links to.
void TrimSelectorsOf(Instance* element, Instance* root);

}  // namespace qn::graph
