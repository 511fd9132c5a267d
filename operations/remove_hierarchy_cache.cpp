#include "operations/remove_hierarchy_cache.h"

#include "frame/host/descriptor.h"
#include "graph/node_walk.h"
#include "operations/element_values.h"

namespace qn::graph {
namespace {

/// The node's metadata with those of its instance and definition, as long as it has them.
Var MergedMetadata(const k3::Node& node, const CacheRemoval& what) {
    if (!what.keepSelectorMetadata && !what.keepEntityMetadata) return Var();
    return node.GetExtendedMetadata(k3::MetadataFormatEnum::kPlain, k3::ExtendedMetadata::kAll, 0);
}

void KeepMetadata(k3::Node& node, const Var& merged, const CacheRemoval& what) {
    if (what.keepSelectorMetadata) node.SetMetadata(merged.ToMap());
    if (!what.keepEntityMetadata) return;
    k3::GetOrCreateInstanceDescriptor(&node, true);
    k3::EntityHelper(k3::GetEntityDescriptor(&node)).SetMetadata(merged.ToMap());
    if (!what.keepSelectorMetadata) node.SetMetadata(VarMap::Create().Get());
}

void RemoveFrom(k3::Node& node, const CacheRemoval& what) {
    const Var merged = MergedMetadata(node, what);
    ClearParam(node, Param::kInstance);
    if (merged.ToBool()) KeepMetadata(node, merged, what);
    if (!what.keepSelectorBsIds) ClearParam(node, Param::kBsId);
    if (!what.keepSelectorExternalIds) ClearParam(node, Param::kExternalIds);
}

}  // namespace

void RemoveHierarchyCache(k3::Node& root, const CacheRemoval& what) {
    WalkNodes(root, [&](k3::Node& node) { RemoveFrom(node, what); });
}

}  // namespace qn::graph
