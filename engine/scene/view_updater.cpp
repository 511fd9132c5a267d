#include "frame/host/view_updater.h"

#include "frame/host/scene_document.h"

namespace qn::views::ViewUpdater {
namespace {

void Request(k3::Scene* scene, k3::ViewKind kind) {
    if (scene) scene->HostCall(static_cast<int>(kind), 0);
}

}  // namespace

void UpdateSceneModelViewThumbnails(k3::Scene* scene) {
    Request(scene, k3::ViewKind::kModel);
}
void UpdateSceneStepViewThumbnails(k3::Scene* scene) {
    Request(scene, k3::ViewKind::kStep);
}
void UpdateSceneDetailViewThumbnails(k3::Scene* scene) {
    Request(scene, k3::ViewKind::kDetail);
}

}  // namespace qn::views::ViewUpdater
