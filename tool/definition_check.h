#pragma once

#include "frame/host/scene_document.h"
#include "graph/instance.h"
#include "graph/reference.h"
#include "tool/finding.h"

namespace assembly::tool {

// What is wrong within the definitions of a scene, apart from its nodes. Costs by definitions and uses, never
// by occurrences, and makes no nodes.

/// A fault and where it stands.
struct DefinitionFault {
    FindingKind kind;
    std::string path;                              ///< of the first occurrence of the use
    qn::Counted<qn::graph::Reference> definition;  ///< the one with the use
    int child = 0;                                 ///< the place of the use in it
    qn::Counted<qn::graph::Instance> use;          ///< null if that is what is wrong
    qn::Var selector;                              ///< of kOverrideWithoutOccurrence: its key
};

/// Everything below the generators and the instances of the scene's nodes: definitions inside themselves,
/// uses that use nothing, overrides that match no occurrence.
std::vector<DefinitionFault> CheckDefinitions(qn::k3::Scene& scene);

std::string MessageOf(const DefinitionFault& fault);

/// Takes the faulty uses and overrides out of the definitions. Expects all faults of one check.
void RepairDefinitions(const std::vector<DefinitionFault>& faults);

}  // namespace assembly::tool
