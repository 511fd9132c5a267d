#pragma once

#include "frame/host/string.h"

#include <string_view>

namespace qn {

class Context;

namespace k3 {

class Node;
class Scene;

/// Reads a scene file in memory and moves its content into the scene, as one new top-level node (borrowed):
/// the file's only one, else a new node above all of them. Layers, viewports, entities and the view nodes of
/// viewports come along; parameters and metadata of the file's scene itself do not. The modules check the
/// content before it is moved. Null on failure, with the scene as it was and the cause, which starts with
/// `name`, in the context.
Node* MergeSceneBytes(Scene& scene, std::string_view bytes, const String& name, Context& context);

}  // namespace k3
}  // namespace qn
