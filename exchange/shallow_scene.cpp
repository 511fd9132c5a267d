#include "exchange/shallow_scene.h"

#include "frame/host/collections.h"

namespace qn::exchange {
namespace {

void CopyIds(const k3::Node& source, k3::Node& copy) {
    Var bsId = source.GetParamVar(Param::kBsId);
    const auto* instance = Cast<graph::Instance>(source.GetParamObject(Param::kInstance));
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

/// A node whose remaining siblings are still to be copied below `parent`.
struct Level {
    const k3::Node* next;
    k3::Node* parent;
};

void CopyTree(const k3::Node& top, k3::Scene& scene, const TreeOptions& options) {
    k3::Node* copy = scene.CreateEmptyNode(0, 0, 0);
    CopyFields(top, *copy, options);
    std::vector<Level> levels;
    const auto enter = [&](const k3::Node& source, k3::Node* parent) {
        if (static_cast<int>(levels.size()) + 1 < options.levels)
            levels.push_back({source.GetFirstChild(), parent});
    };
    enter(top, copy);
    while (!levels.empty()) {
        const auto [source, parent] = levels.back();
        if (!source) {
            levels.pop_back();
            continue;
        }
        levels.back().next = source->GetNextSibling();
        k3::Node* child = parent->CreateChildNode(0, 0, 0);
        CopyFields(*source, *child, options);
        enter(*source, child);
    }
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
