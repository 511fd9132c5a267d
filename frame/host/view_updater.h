#pragma once

namespace qn {

namespace k3 {
class Scene;
}

/// Refreshes the pictures of views. The stand-alone host draws nothing: it records the request with
/// `Scene::HostCall`, the kind of view first, then 0.
namespace views::ViewUpdater {
void UpdateSceneModelViewThumbnails(k3::Scene* scene);
void UpdateSceneStepViewThumbnails(k3::Scene* scene);
void UpdateSceneDetailViewThumbnails(k3::Scene* scene);
}  // namespace views::ViewUpdater

}  // namespace qn
