#include "construction/write_back.h"

#include "construction/property_set.h"
#include "construction/selector_paths.h"
#include "construction/working_maps.h"
#include "graph/node_traverser.h"
#include "graph/node_walk.h"

namespace qn::graph {

namespace {

/// Mark on a metadata value that a definition does not take over.
constexpr unsigned kNodeOnlyMark = 0x8;

Counted<NodeTraverser> ReadingTraverser(k3::Node& node, WorkingMaps& maps) {
    return Make<NodeTraverser>(nullptr, &node, &maps.Nodes(), &maps.Instances(), false);
}

void ApplyOneNode(k3::Node& node) {
    const Counted<Instance> instance = InstanceIn(node);
    if (!instance) return;
    WorkingMaps maps(nullptr);
    const auto shown = ReadingTraverser(node, maps);
    ForEachProperty({Prop::kBsId},
                    [&](PropEnum id) { instance->SetProperty(id, shown->GetProperty(id, 0)); });
}

Var MetadataFor(const k3::Node& node) {
    Var metadata = node.GetExtendedMetadata(k3::MetadataFormatEnum::kPlain, k3::ExtendedMetadata::kAll, 0);
    if (!metadata.IsSet()) return metadata;
    metadata.MakeUnique(1);
    metadata.SetValueFlags(metadata.GetValueFlags() & ~kNodeOnlyMark);
    return metadata;
}

}  // namespace

void ApplyNodeToInstance(k3::Node* root) {
    if (root) WalkNodes(*root, &ApplyOneNode);
}

void ApplyNodeToReference(k3::Node* node, Reference* reference) {
    if (!node || !reference) return;
    WorkingMaps maps(nullptr);
    const auto shown = ReadingTraverser(*node, maps);
    const Var metadata = MetadataFor(*node);
    ForEachProperty({Prop::kBsId}, [&](PropEnum id) {
        reference->SetProperty(id, id == Prop::kMetadata ? metadata : shown->GetProperty(id, 0));
    });
    if (k3::Object3D* const content = node->GetObject()) reference->SetTarget(Var(content, 1));
}

}  // namespace qn::graph
