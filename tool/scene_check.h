#pragma once

#include "frame/host/scene_document.h"
#include "tool/finding.h"

namespace assembly::tool {

/// Everything that is wrong with a scene, in this order: nodes, structure after structure and parents first;
/// definitions; layers, those of the scene before those of its views. Makes no nodes and changes nothing.
std::vector<Finding> CheckScene(qn::k3::Scene& scene);

/// What is wrong with its layers alone.
std::vector<Finding> CheckLayers(qn::k3::Scene& scene);

/// The top-level nodes of any structure that stand above something wrong, in order, borrowed.
std::vector<qn::k3::Node*> BrokenTopLevelNodes(qn::k3::Scene& scene);

}  // namespace assembly::tool
