#pragma once

#include "frame/host/scene_document.h"

#include <string>
#include <vector>

namespace qn::test {

/// A scene with one thing wrong, and what is to be found in it.
struct Exhibit {
    const char* name;
    Counted<k3::Scene> (*make)();
    const char* code;       ///< what the tool calls it
    const char* path;       ///< of the occurrence, as the tool tells it
    const char* validator;  ///< what the module's validator says first; empty where it cannot see it
};

/// Scenes that were damaged on purpose, one way each. All show "car(chassis, wheel(tyre), wheel(tyre))", as
/// nodes or as definitions. Expects that the classes of the graph, the factory, the generator and the
/// structures are registered.
const std::vector<Exhibit>& Museum();

/// The same car without damage: as nodes, and as definitions that a generator holds.
Counted<k3::Scene> SoundNodes();
Counted<k3::Scene> SoundDefinitions();

}  // namespace qn::test
