#pragma once

namespace qn {

namespace k3 {
class Node;
}

namespace graph {

/// Clears ids on the node and everything below it; `flags` of `RemovalFlag`, whose masks overlap. A shared
/// definition is cleared at each meeting.
void RemoveIds(k3::Node& root, unsigned flags);

}  // namespace graph
}  // namespace qn
