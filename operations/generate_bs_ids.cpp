#include "operations/generate_bs_ids.h"

#include "frame/host/scene_document.h"
#include "graph/node_content.h"
#include "graph/node_walk.h"
#include "operations/element_values.h"
#include "operations/layers.h"

namespace qn::graph {
namespace {

void GenerateFor(HierarchyElement& element, const IdFrame& frame) {
    if (element.GetProperty(Prop::kBsId, 0).IsEmpty())
        element.SetProperty(Prop::kBsId, Var(GenerateId(frame)));
}

void GenerateFor(k3::Node& node, const IdFrame& frame) {
    if (node.GetParamVar(Param::kBsId).IsEmpty() && node.GetScene() != &node)
        node.SetParamVar(Param::kBsId, Var(GenerateId(frame)));
}

}  // namespace

void GenerateBsIds(k3::Node& root, unsigned flags, const IdFrame& frame) {
    WalkNodes(root, [&](k3::Node& node) {
        if (Instance* const instance = CarriedInstance(node)) {
            Reference* const reference = instance->GetReference();
            if (reference && (flags & LayerFlag::kEntity)) GenerateFor(*reference, frame);
            if (flags & LayerFlag::kNode) GenerateFor(*instance, frame);
        }
        if (flags & LayerFlag::kSelector) GenerateFor(node, frame);
    });
}

}  // namespace qn::graph
