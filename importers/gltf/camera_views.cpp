#include "importers/gltf/camera_views.h"

#include "frame/host/parameter_ids.h"
#include "graph/view_binding.h"
#include "importers/gltf/gltf_metadata.h"

namespace qn::gltf {

void AddCameraViews(const Model& model, const GraphBuilder& builder, k3::Scene& scene) {
    auto* const binding = Cast<graph::ViewBinding>(builder.GetTable());
    for (const GraphBuilder::View& view : builder.GetViews()) {
        const Camera& camera = model.cameras[view.camera];
        k3::Viewport* const viewport = scene.CreateViewport(ToText(model, camera.name));
        if (!viewport) return;
        viewport->SetMetadata(MetadataOf(model, camera).ToMap());
        viewport->SetParamVar(qn::Param::kViewportTarget, Var(view.definition.Get(), 0));
        if (binding) binding->BindViewLater(viewport, view.definition.Get());
    }
}

}  // namespace qn::gltf
