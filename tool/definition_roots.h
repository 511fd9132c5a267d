#pragma once

#include "frame/host/scene_document.h"
#include "graph/instance.h"
#include "graph/reference.h"

#include <string>
#include <vector>

namespace assembly::tool {

/// A definition that nodes of a scene stand for or are generated from, with nothing above it.
struct DefinitionRoot {
    qn::Counted<qn::graph::Reference> definition;
    std::string path;  ///< of its occurrence; empty for one that only stands around the roots of a file
};

/// Each once: what generators of any node hold, and what top-level nodes of any structure carry.
std::vector<DefinitionRoot> DefinitionRoots(qn::k3::Scene& scene);

}  // namespace assembly::tool
