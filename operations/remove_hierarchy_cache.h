#pragma once

namespace qn {

namespace k3 {
class Node;
}

namespace graph {

/// What survives when the hierarchy goes.
struct CacheRemoval {
    bool keepSelectorMetadata = false;  ///< the merged metadata becomes the node's own
    bool keepSelectorBsIds = false;
    bool keepSelectorExternalIds = false;
    bool keepEntityMetadata = false;  ///< it goes to the descriptor of what the node shows
};

/// Takes the instances off the node and everything below it; the nodes stay.
void RemoveHierarchyCache(k3::Node& root, const CacheRemoval& what);

}  // namespace graph
}  // namespace qn
