#pragma once

#include "frame/host/scene_document.h"
#include "tests/support/assembly.h"

namespace qn::test {

/// A scene whose one top node carries a hierarchy generator for the assembly. Nodes are not made yet.
Counted<k3::Scene> GeneratedScene(const Assembly& assembly);

}  // namespace qn::test
