#pragma once

#include "frame/host/scene_document.h"

namespace assembly::tool {

/// Has every generator make its nodes that were neither made nor stored. Fails with kLimit, kCancelled or
/// kDefect.
void GenerateNodes(qn::k3::Scene& scene, qn::Context& context);

}  // namespace assembly::tool
