#pragma once

#include "frame/host/context.h"
#include "frame/host/scene_document.h"
#include "tool/finding.h"

namespace assembly::tool {

/// What a repair did to a scene. Texts are UTF-8.
struct Change {
    const char* code;  ///< stable, as docs/checks.md lists them
    std::string path;  ///< of the occurrence; empty where it is about no single one
    std::string message;
};

/// "PATH: MESSAGE [CODE]"
std::string LineOf(const Change& change);

/// Repairs until nothing is found any more, and tells what was done, in order. Broken top-level nodes lose
/// their hierarchy and keep their nodes; faulty uses and overrides leave their definitions; stray members
/// leave their layers. Fails with kDefect if the module's validator is not to be had.
std::vector<Change> RepairScene(qn::k3::Scene& scene, qn::Context& context);

}  // namespace assembly::tool
