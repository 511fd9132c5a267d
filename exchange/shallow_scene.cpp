#include "exchange/shallow_scene.h"

#include "frame/host/collections.h"
#include "graph/node_content.h"
#include "graph/node_walk.h"

#include <optional>

namespace qn::exchange {
namespace {

void CopyIds(const k3::Node& source, k3::Node& copy) {
    Var bsId = source.GetParamVar(Param::kBsId);
    const auto* instance = graph::CarriedInstance(source);
    if (bsId.IsEmpty() && instance) bsId = instance->GetProperty(graph::Prop::kBsId, 0);
    copy.SetParamVar(Param::kBsId, bsId);
    Var externalIds = source.GetParamVar(Param::kExternalIds);
    externalIds.MakeUnique();
    copy.SetParamVar(Param::kExternalIds, externalIds);
}

void CopyFields(const k3::Node& source, k3::Node& copy, const TreeOptions& options) {
    copy.SetName(source.GetName().c_str());
    copy.SetFlags(source.GetFlags());
    Matrix4<double> matrix;
    source.GetMatrix(&matrix, 0);
    if (!matrix.IsIdentity(0.0)) copy.SetMatrix(&matrix, 0);
    CopyIds(source, copy);
    Var metadata = options.metadata ? source.GetExtendedMetadata(k3::MetadataFormatEnum::kPlain,
                                                                 k3::ExtendedMetadata::kAll, 0)
                                    : Var();
    if (VarMap* map = metadata.ToMap(); map && map->GetCount() > 0) copy.SetMetadata(map);
}

/// A copy below which further ones may stand.
struct Copied {
    k3::Node* node;
    int level;  // 1 for the top
};

void CopyTree(const k3::Node& top, k3::Scene& scene, const TreeOptions& options) {
    const auto copy = [&](const k3::Node& source, const Copied& target) -> std::optional<Copied> {
        CopyFields(source, *target.node, options);
        return target.level < options.levels ? std::optional(target) : std::nullopt;
    };
    const auto copyBelow = [&](const k3::Node& source, const Copied& parent) {
        return copy(source, {parent.node->CreateChildNode(0, 0, 0), parent.level + 1});
    };
    const auto copied = copy(top, {scene.CreateEmptyNode(0, 0, 0), 1});
    if (copied) graph::WalkBelow(top, *copied, copyBelow);
}

}  // namespace

Counted<k3::Scene> CopyShallow(const ShallowOptions& options) {
    auto scene = Make<k3::Scene>();
    if (!scene) return nullptr;
    scene->SetName(options.title.c_str());
    for (const k3::Node* top : options.tops)
        CopyTree(*top, *scene, options.tree);
    return scene;
}

}  // namespace qn::exchange
