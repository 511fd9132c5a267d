#include "frame/host/collections.h"
#include "frame/host/node.h"
#include "frame/host/scene_document.h"
#include "frame/host/selector.h"
#include "graph/element_changes.h"
#include "graph/node_maps.h"
#include "graph/node_walk.h"
#include "graph/persistent_selector_impl.h"

#include <algorithm>
#include <map>
#include <vector>

namespace qn::graph {

namespace {

/// The instances from the top down to `node`; nothing if a node on the way shows none.
Selector PathTo(k3::Node& node, const NodeToInstance& instances) {
    Selector selector;
    std::vector<Instance*> upwards;
    const k3::Node* scene = node.GetScene();
    for (k3::Node* above = &node; above && above != scene; above = above->GetParent()) {
        Instance* shown = instances.Find(above);
        if (!shown) return selector;
        upwards.push_back(shown);
    }
    for (auto element = upwards.rbegin(); element != upwards.rend(); ++element)
        selector.AppendPathElement(*element);
    return selector;
}

/// Turns the nodes of one link list into selectors, each node once.
class LinkList {
public:
    explicit LinkList(const NodeToInstance& instances) : instances_(instances) {}

    void Add(const Var& entry) {
        if (!entry.IsArray()) return;
        const auto* row = entry.ToArray();
        auto* linked = Cast<k3::Node>(row->Get(0));
        if (!linked) return;
        const auto [known, isNew] = selectors_.try_emplace(linked);
        if (isNew) known->second = PersistentFromSelector(PathTo(*linked, instances_));
        if (!known->second) return;
        const auto stored = VarArray::Create(2);
        stored->Set(0, Var(known->second));
        stored->Set(1, row->Get(1));
        if (!list_) list_ = VarArray::Create();
        list_->Add(Var(stored));
    }
    const Counted<VarArray>& Get() const { return list_; }

private:
    const NodeToInstance& instances_;
    std::map<k3::Node*, Counted<PersistentSelector>> selectors_;
    Counted<VarArray> list_;
};

void StoreLink(const k3::Node& node, Instance& instance, const NodeToInstance& instances) {
    auto* linked = Cast<k3::Node>(node.GetParamVar(Param::kLinkedNode));
    if (!linked) return;
    if (const auto selector = PersistentFromSelector(PathTo(*linked, instances)))
        instance.SetProperty(Prop::kLink, Var(selector));
}

void StoreLinkList(const k3::Node& node, Instance& instance, const NodeToInstance& instances) {
    const Var entries = node.GetParamVar(Param::kLinkList);
    if (!entries.IsMap() && !entries.IsArray()) return;
    LinkList list(instances);
    for (int i = 0; i < entries.size(); ++i)
        list.Add(entries.ValueAt(i));
    if (list.Get()) instance.SetProperty(Prop::kLinkList, Var(list.Get()));
}

}  // namespace

void StoreNodeLinks(k3::Node& node, const NodeToInstance& instances) {
    WalkNodes(node, [&](k3::Node& current) {
        Instance* const instance = instances.Find(&current);
        if (!instance) return;
        StoreLink(current, *instance, instances);
        StoreLinkList(current, *instance, instances);
    });
}

}  // namespace qn::graph
