#include "importers/gltf/camera_views.h"

#include "frame/host/parameter_ids.h"
#include "graph/view_binding.h"
#include "importers/gltf/gltf_metadata.h"

namespace qn::gltf {

void AddCameraViews(const Model& model, const GraphBuilder& builder, k3::Scene& scene) {
    auto* const binding = Cast<graph::ViewBinding>(builder.GetTable());
    std::vector<String> names;  // shared by the viewports of a camera
    names.reserve(model.cameras.size());
    for (const Camera& camera : model.cameras)
        names.push_back(ToText(model, camera.name));
    for (const GraphBuilder::View& view : builder.GetViews()) {
        const Camera& camera = model.cameras[view.camera];
        k3::Viewport* const viewport = scene.CreateViewport(names[view.camera]);
        if (!viewport) return;
        viewport->SetMetadata(MetadataOf(model, camera).ToMap());
        viewport->SetParamVar(qn::Param::kViewportTarget, Var(view.definition.Get(), 0));
        if (binding) binding->BindViewLater(viewport, view.definition.Get());
    }
}

}  // namespace qn::gltf
