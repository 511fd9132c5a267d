#pragma once

namespace qn {

namespace k3 {
class Node;
}

namespace graph {

/// Gives the definitions and instances of the node and everything below it the server ids of what they were
/// copied from, and forgets where that was. An origin without id is kept, and the element's id with it.
void ReplaceBsIdsWithBasedOn(k3::Node& root);

}  // namespace graph
}  // namespace qn
