#pragma once

#include "exchange/shallow_options.h"

namespace qn::exchange {

/// A scene with copies of the nodes: names, places, flags, ids and, if wanted, metadata, but no geometry, no
/// hierarchy, no layers and no views. A node without server id of its own gets that of its instance.
Counted<k3::Scene> CopyShallow(const ShallowOptions& options);

}  // namespace qn::exchange
