#include "construction/selector_paths.h"

#include "frame/host/scene_document.h"
#include "graph/reference.h"

#include <functional>
#include <set>
#include <unordered_set>
#include <vector>

namespace qn::graph {

namespace {

bool Shows(const k3::Node& node, const Instance* instance) {
    return instance && InstanceIn(node) == instance;
}

k3::Node* FirstChildShowing(const k3::Node& parent, const Instance* instance) {
    k3::Node* child = parent.GetFirstChild();
    while (child && !Shows(*child, instance))
        child = child->GetNextSibling();
    return child;
}

using KnownNodes = std::unordered_set<const k3::Node*>;

/// The node above, null at the top and below the scene.
k3::Node* Above(const k3::Node& node) {
    k3::Node* const parent = node.GetParent();
    return parent == node.GetScene() ? nullptr : parent;
}

/// The node and all above it.
KnownNodes UpwardsFrom(const k3::Node* node) {
    KnownNodes met;
    while (node && met.insert(node).second)
        node = Above(*node);
    return met;
}

/// Whether the climb from `node` meets `wanted`. What the climb met is remembered as leading elsewhere.
bool ClimbMeets(const k3::Node* node, const k3::Node* wanted, KnownNodes& leadElsewhere) {
    for (; node; node = Above(*node)) {
        if (node == wanted) return true;
        if (!leadElsewhere.insert(node).second) return false;
    }
    return false;
}

}  // namespace

Counted<Instance> InstanceIn(const k3::Node& node) {
    const Var value = node.GetParamVar(Param::kInstance);
    return Counted<Instance>(Cast<Instance>(value));
}

k3::Node* FindNodeForSelector(k3::Node* root, const Selector& selector) {
    const int length = selector.GetPathElementCount();
    if (!root || length == 0 || !Shows(*root, selector.GetPathElement(0))) return nullptr;
    k3::Node* node = root;
    for (int index = 1; node && index < length; ++index)
        node = FirstChildShowing(*node, selector.GetPathElement(static_cast<unsigned>(index)));
    return node;
}

Selector SelectorFromInstance(Instance* instance) {
    std::vector<Counted<Instance>> climb;
    std::unordered_set<const Instance*> met;
    Counted<Instance> place(instance);
    while (place && met.insert(place.Get()).second) {
        climb.push_back(place);
        Reference* const parent = place->GetParentReference();
        place = parent ? parent->GetInstance(0) : Counted<Instance>();
    }
    Selector selector;
    for (auto element = climb.rbegin(); element != climb.rend(); ++element)
        selector.AppendPathElement(element->Get());
    return selector;
}

k3::Node* FindRelatedNode(const InterfaceArray* nodes, k3::Node* node) {
    if (!nodes || !node) return nullptr;
    std::set<k3::Node*, std::less<k3::Node*>> members;
    for (int index = 0; index < nodes->GetCount(); ++index)
        if (auto* member = Cast<k3::Node>(nodes->Get(index))) members.insert(member);
    const KnownNodes upwards = UpwardsFrom(node);
    KnownNodes leadElsewhere;
    for (k3::Node* const member : members)
        if (upwards.contains(member) || ClimbMeets(member, node, leadElsewhere)) return member;
    return nullptr;
}

}  // namespace qn::graph
