#include "graph/node_overrides.h"

#include "frame/host/node.h"
#include "frame/host/scene_document.h"
#include "frame/host/selector.h"
#include "graph/instance.h"
#include "graph/lookup_table.h"
#include "graph/node_content.h"
#include "graph/node_matching.h"

#include <vector>

namespace qn::graph {

namespace {

/// Ids, and what is compared in its own way.
bool IsNeverCompared(PropEnum id) {
    return id == Prop::kLocalId || id == Prop::kBsId || id == Prop::kExternalIds;
}

bool Differs(PropEnum id, const Var& value, const Instance& instance) {
    if (id == Prop::kMetadata) return value.IsMap();
    return value.IsSet() && !(value == instance.GetProperty(id, 1));
}

Counted<Instance> InstanceShownBy(k3::Node& node, LookupTable* table) {
    return table ? table->GetInstanceOfNode(&node) : Counted<Instance>(CarriedInstance(node));
}

/// From the topmost ancestor that is reached without a gap down to the instance.
void AppendPath(k3::Node& node, LookupTable* table, Instance& instance, Selector& selector) {
    std::vector<Counted<Instance>> upwards{Counted<Instance>(&instance)};
    const k3::Node* scene = node.GetScene();
    for (k3::Node* above = node.GetParent(); above && above != scene; above = above->GetParent()) {
        auto shown = InstanceShownBy(*above, table);
        if (!shown) break;
        upwards.push_back(std::move(shown));
    }
    for (auto element = upwards.rbegin(); element != upwards.rend(); ++element)
        selector.AppendPathElement(element->Get());
}

}  // namespace

void StoreNodeOverrides(k3::Node& node, LookupTable* table, const HierarchyElement& element,
                        Instance& instance) {
    Selector selector;
    bool differs = false;
    for (int key = kFirstProp; key <= kLastProp; ++key) {
        const PropEnum id{key};
        if (IsNeverCompared(id)) continue;
        const Var value = element.GetProperty(id, 0);
        if (!Differs(id, value, instance)) continue;
        selector.SetProperty(id, value);
        differs = true;
    }
    if (!differs) return;
    AppendPath(node, table, instance, selector);
    instance.AddSelector(selector);
}

}  // namespace qn::graph
