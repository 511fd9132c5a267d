#pragma once

namespace qn {

namespace k3 {
class Scene;
}

namespace frame {

/// Checks and repairs a scene that was just read, and tells the user in the way that fits the kind of
/// process. Scenes with an identifier extension, and a null scene, are left alone.
void CheckLoadedScene(k3::Scene* scene, bool merged);

}  // namespace frame
}  // namespace qn
