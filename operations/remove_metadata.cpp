#include "operations/remove_metadata.h"

#include "graph/node_walk.h"
#include "operations/element_values.h"
#include "operations/layers.h"
#include "services/hierarchy_operation.h"

#include <vector>

namespace qn::graph {
namespace {

constexpr wchar_t kSystemMark = L'$';
constexpr int kDefinitionEntry = 0;  // of the array that stands in for an instance

bool IsSystemKey(const Var& key) {
    return key.IsText() && key.ToText().At(0) == kSystemMark;
}

void RemoveFromElement(HierarchyElement& element, bool keepSystem) {
    const Var metadata = element.GetProperty(Prop::kMetadata, 0);
    if (!metadata.ToBool()) return;
    if (keepSystem)
        PurgeMetadata(metadata);
    else
        element.SetProperty(Prop::kMetadata, Var());
}

/// Purges what there is, or gives the object an empty map.
void RemoveFromObject(Extension& object, bool keepSystem) {
    if (keepSystem)
        PurgeMetadata(Var(object.GetMetadata(false), 1));
    else
        object.SetMetadata(VarMap::Create().Get());
}

void RemoveFromInstance(Instance& instance, unsigned flags, bool keepSystem) {
    Reference* const reference = instance.GetReference();
    if (reference && (flags & LayerFlag::kEntity)) RemoveFromElement(*reference, keepSystem);
    if (flags & LayerFlag::kNode) RemoveFromElement(instance, keepSystem);
}

/// `carried` stands where an instance would: a collection, whose first element stands for the definition.
void RemoveFromCollection(const Var& carried, unsigned flags, bool keepSystem) {
    if (flags & LayerFlag::kEntity) {
        const Var* const definition = carried.Lookup(kDefinitionEntry);
        auto* const object = definition ? Cast<Extension>(*definition) : nullptr;
        if (object) RemoveFromObject(*object, keepSystem);
    }
    if (flags & LayerFlag::kNode)
        if (auto* const object = Cast<Extension>(carried)) RemoveFromObject(*object, keepSystem);
}

}  // namespace

void PurgeMetadata(Var metadata) {
    if (!metadata.IsMap()) return;
    std::vector<Var> doomed;
    for (int i = 0; i < metadata.size(); ++i)
        if (const Var key = metadata.KeyAt(i); !IsSystemKey(key)) doomed.push_back(key);
    for (const Var& key : doomed)
        metadata.Remove(key);
}

void RemoveMetadata(k3::Node& node, unsigned flags, bool keepSystem) {
    const Var carried = node.GetParamVar(Param::kInstance);
    if (auto* const instance = Cast<Instance>(carried))
        RemoveFromInstance(*instance, flags, keepSystem);
    else if (carried.ToBool())
        RemoveFromCollection(carried, flags, keepSystem);
    if ((flags & LayerFlag::kSelector) && node.GetMetadata(false)) RemoveFromObject(node, keepSystem);
}

void RemoveMetadataTree(HierarchyOperation& operation, k3::Node& root, unsigned flags, unsigned reserved,
                        bool keepSystem) {
    WalkNodes(root,
              [&](k3::Node& node) { operation.RemoveNodeMetadata(&node, flags, reserved, keepSystem); });
}

}  // namespace qn::graph
