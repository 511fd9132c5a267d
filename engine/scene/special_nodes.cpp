#include "frame/host/layer.h"
#include "frame/host/meta.h"
#include "frame/host/scene_document.h"

namespace qn::hack {

bool IsPMINode(k3::Node* node) {
    const Var group = meta::GetAllExistingMetadata(node, L"$QN.CAD.PMI");
    const Var* type = group.IsMap() ? group.Lookup(L"PMIType") : nullptr;
    return type && type->IsSet() && !(*type == Var(0));
}

bool IsModelViewOrStepViewCameraNode(k3::Node* node) {
    k3::Scene* scene = node ? node->GetScene() : nullptr;
    const InterfaceArray* viewports = scene ? scene->GetViewports() : nullptr;
    for (int i = 0; viewports && i < viewports->GetCount(); ++i) {
        const auto* viewport = Cast<k3::Viewport>(viewports->Get(i));
        if (!viewport || viewport->GetViewNode() != node) continue;
        if (viewport->GetKind() == k3::ViewKind::kModel || viewport->GetKind() == k3::ViewKind::kStep)
            return true;
    }
    return false;
}

}  // namespace qn::hack
