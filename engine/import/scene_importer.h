#pragma once

#include "engine/import/importer_record.h"

namespace qn {

class Context;

namespace k3 {
class Node;
class Scene;
}  // namespace k3

/// The record of the engine's own scene files, which need no importer object.
ImporterRecord SceneImporterRecord();

/// Adds the content of a scene file as one top-level node, borrowed. The node keeps the name that it was
/// saved with; without one it is `name`. Null on failure, with the scene as it was and the cause in the
/// context.
k3::Node* ImportSceneFile(k3::Scene* scene, const String& file, const String& name, Context* context);

}  // namespace qn
