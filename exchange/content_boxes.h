#pragma once

#include "exchange/box.h"
#include "frame/host/node.h"

#include <functional>

namespace qn::exchange {

using ContentBoxFunction = std::function<void(k3::Node& node, const Box& box)>;

/// Calls `visit` for each node at or below `top` that shows a mesh, parents first, with the mesh's box in
/// scene coordinates. Each mesh is measured once; one without finite size is passed over.
void ForEachContentBox(k3::Node& top, const ContentBoxFunction& visit);

}  // namespace qn::exchange
