#pragma once

#include "frame/host/scene_document.h"

namespace assembly::tool {

/// Has every generator at the top of the scene make its nodes. Fails with kLimit or kDefect.
void GenerateNodes(qn::k3::Scene& scene, qn::Context& context);

}  // namespace assembly::tool
