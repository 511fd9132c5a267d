#pragma once

namespace qn {

namespace k3 {
class Scene;
}

/// Draws anew the pictures kept with all views of one kind. The stand-alone host also records the request
/// with `Scene::HostCall`, the kind of view first, then 0.
namespace views::ViewUpdater {
void UpdateSceneModelViewThumbnails(k3::Scene* scene);
void UpdateSceneStepViewThumbnails(k3::Scene* scene);
void UpdateSceneDetailViewThumbnails(k3::Scene* scene);
}  // namespace views::ViewUpdater

}  // namespace qn
