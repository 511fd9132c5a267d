#include "graph/shown_nodes.h"

#include "graph/node_content.h"
#include "graph/node_list_owner.h"
#include "graph/node_walk.h"

#include <optional>

namespace qn::graph {

namespace {

/// By itself, whatever is above it.
bool IsExcludedItself(const k3::Node& node) {
    if (node.GetFlags() & NodeFlag::kExcluded) return true;
    const Instance* instance = CarriedInstance(node);
    if (!instance) return false;
    if (instance->GetProperty(Prop::kExcluded, 0).IsSet()) return true;
    const Reference* reference = instance->GetReference();
    return reference && reference->GetProperty(Prop::kExcluded, 0).IsSet();
}

bool IsScene(const k3::Node* node) {
    return node->GetScene() == node;
}

}  // namespace

bool IsExcluded(const k3::Node* node) {
    for (; node && !IsScene(node); node = node->GetParent())
        if (IsExcludedItself(*node)) return true;
    return false;
}

ShownNodes::ShownNodes(k3::Scene& scene) {
    const k3::BomHelper helper(&scene);
    current_ = helper.GetCurrentBom();
    const VarArray* boms = helper.GetBoms();
    if (!boms || boms->GetCount() == 0) {
        Walk(&scene, byBom_[current_]);
        return;
    }
    for (int i = 0; i < boms->GetCount(); ++i) {
        const Interface* bom = boms->Get(i).ToInterface();
        if (bom == current_) {
            Walk(&scene, byBom_[bom]);
            continue;
        }
        const auto* owner = Cast<NodeListOwner>(bom);
        const Var nodes = owner ? owner->GetNodes() : Var();
        for (int k = 0; nodes.IsArray() && k < nodes.size(); ++k)
            Walk(Cast<k3::Node>(nodes.ValueAt(k)), byBom_[bom]);
    }
}

/// Nodes without instance are passed through; a branch ends where a definition was met before or must not be
/// shown.
void ShownNodes::Walk(k3::Node* root, FirstNodes& found) {
    if (!root) return;
    const auto visit = [&](k3::Node& node, bool excludedAbove) -> std::optional<bool> {
        const bool isExcluded = excludedAbove || (!IsScene(&node) && IsExcludedItself(node));
        if (const Instance* instance = CarriedInstance(node)) {
            const Reference* reference = instance->GetReference();
            if (!reference || isExcluded || !found.emplace(reference, &node).second) return std::nullopt;
        }
        return isExcluded;
    };
    const auto isExcluded = visit(*root, !IsScene(root) && IsExcluded(root->GetParent()));
    if (isExcluded) WalkBelow(*root, *isExcluded, visit);
}

k3::Node* ShownNodes::Find(const Interface* bom, const Reference* reference) const {
    const auto nodes = byBom_.find(bom ? bom : current_);
    if (nodes == byBom_.end()) return nullptr;
    const auto node = nodes->second.find(reference);
    return node == nodes->second.end() ? nullptr : node->second;
}

}  // namespace qn::graph
