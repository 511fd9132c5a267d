#include "exchange/query_extraction.h"

#include "engine/scene/tree_walk.h"
#include "exchange/content_boxes.h"
#include "frame/host/scene_document.h"
#include "graph/instance.h"
#include "graph/node_content.h"

#include <unordered_set>

namespace qn::exchange {
namespace {

/// A list without doubles, and without ids that a query cannot hold.
class TextList {
public:
    explicit TextList(std::vector<String>& values) : values_(values) {}
    void Add(const String& text) {
        if (IsStorableId(text) && known_.insert(text).second) values_.push_back(text);
    }
    bool Has(const String& text) const { return known_.count(text) != 0; }

private:
    std::vector<String>& values_;
    std::unordered_set<String> known_;
};

/// A query in the making.
struct Collector {
    ContextQuery query;
    TextList paths{query.paths};
    TextList ids{query.ids};

    void AddAll(k3::Scene& scene) {
        for (k3::Node* node = scene.GetFirstChild(); node; node = k3::NextInSubtree(node, &scene)) {
            paths.Add(node->GetParamVar(Param::kBsId).ToText());
            if (const auto* instance = graph::CarriedInstance(*node))
                ids.Add(instance->GetProperty(graph::Prop::kBsId, 0).ToText());
        }
    }
};

}  // namespace

ContextQuery QueryForAll(k3::Scene& scene) {
    Collector all;
    all.AddAll(scene);
    return std::move(all.query);
}

ContextQuery QueryForSurroundings(k3::Scene& scene, const SpatialIndex& index) {
    Box content;
    ForEachContentBox(scene, [&](k3::Node&, const Box& box) { content.AddBox(box); });
    Collector own, near;
    own.AddAll(scene);
    for (const IndexEntry& entry : index.entries) {
        if (!content.Meets(entry.box, index.margin)) continue;
        if (own.paths.Has(entry.path) || own.ids.Has(entry.id)) continue;
        near.paths.Add(entry.path);
        near.ids.Add(entry.id);
    }
    return std::move(near.query);
}

}  // namespace qn::exchange
