#pragma once

#include "exchange/context_query.h"
#include "exchange/spatial_index.h"

namespace qn::k3 {
class Scene;
}

namespace qn::exchange {

/// The query for every occurrence of the scene that has a server id.
ContextQuery QueryForAll(k3::Scene& scene);

/// The query for the index entries near the scene's content, without those of the scene itself. Empty if the
/// scene shows no mesh.
ContextQuery QueryForSurroundings(k3::Scene& scene, const SpatialIndex& index);

}  // namespace qn::exchange
