#include "frame/host/view_updater.h"

#include "engine/scene/engine_parameter_ids.h"
#include "engine/view/picture.h"
#include "engine/view/png.h"
#include "engine/view/thumbnail.h"
#include "frame/host/scene_document.h"

namespace qn {
namespace view {
namespace {

void DrawThumbnail(k3::Scene& scene, k3::Viewport& viewport) {
    const std::string picture = EncodePng(DrawView(scene, viewport, kThumbnailPixels));
    if (picture.empty()) return;
    viewport.SetParamVar(k3::EngineParam::kThumbnail, Var::Block(picture.data(), picture.size()));
}

void Update(k3::Scene* scene, k3::ViewKind kind) {
    if (!scene) return;
    scene->HostCall(static_cast<int>(kind), 0);
    const Counted<InterfaceArray> viewports = scene->GetAllViewports();
    for (int i = 0; i < viewports->GetCount(); ++i)
        if (auto* const viewport = Cast<k3::Viewport>(viewports->Get(i));
            viewport && viewport->GetKind() == kind)
            DrawThumbnail(*scene, *viewport);
}

}  // namespace

std::string_view GetThumbnail(const k3::Viewport& viewport) {
    // The parameter owns the bytes.
    return viewport.GetParamVar(k3::EngineParam::kThumbnail).BlockBytes();
}

}  // namespace view

namespace views::ViewUpdater {

void UpdateSceneModelViewThumbnails(k3::Scene* scene) {
    view::Update(scene, k3::ViewKind::kModel);
}
void UpdateSceneStepViewThumbnails(k3::Scene* scene) {
    view::Update(scene, k3::ViewKind::kStep);
}
void UpdateSceneDetailViewThumbnails(k3::Scene* scene) {
    view::Update(scene, k3::ViewKind::kDetail);
}

}  // namespace views::ViewUpdater
}  // namespace qn
