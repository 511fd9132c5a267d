#pragma once

namespace qn {

namespace k3 {
class Scene;
}

namespace graph {

/// Gives every node of the scene a definition and an instance of its own, each with a new server id, and the
/// scene's structures ids, too. Without a factory nothing happens.
void GenerateHierarchyWithBsIds(k3::Scene& scene);

}  // namespace graph
}  // namespace qn
