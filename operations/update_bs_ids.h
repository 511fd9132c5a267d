#pragma once

#include "frame/host/string.h"

namespace qn {

namespace k3 {
class Node;
}

namespace graph {

/// A text that goes in front of an id, or behind it.
struct IdModification {
    String text;
    bool asPrefix = true;
};

/// Changes the server ids of the node and everything below it; `flags` of `LayerFlag`. An id of a definition
/// or of an instance that equals one already made in this call is left alone, so that a shared definition
/// changes once; ids of scene nodes always change.
void UpdateBsIds(k3::Node& root, const IdModification& modification, unsigned flags);

}  // namespace graph
}  // namespace qn
