#pragma once

#include "operations/generated_id.h"

namespace qn {

namespace k3 {
class Node;
}

namespace graph {

/// Gives the node and everything below it server ids where there is no value at all (an empty text is one);
/// `flags` of `LayerFlag`. The scene itself gets none.
void GenerateBsIds(k3::Node& root, unsigned flags, const IdFrame& frame);

}  // namespace graph
}  // namespace qn
