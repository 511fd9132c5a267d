#include "operations/remove_ids.h"

#include "graph/node_content.h"
#include "graph/node_walk.h"
#include "operations/element_values.h"
#include "operations/layers.h"

namespace qn::graph {
namespace {

/// What a flag word asks for: any bit of a mask is enough.
struct Wanted {
    explicit Wanted(unsigned flags)
        : entityBs(flags & RemovalFlag::kEntityBsId),
          nodeBs(flags & RemovalFlag::kNodeBsId),
          selectorBs(flags & RemovalFlag::kSelectorBsId),
          entityExternal(flags & RemovalFlag::kEntityExternalId),
          nodeExternal(flags & RemovalFlag::kNodeExternalId),
          selectorExternal(flags & RemovalFlag::kSelectorExternalId) {}

    bool entityBs, nodeBs, selectorBs, entityExternal, nodeExternal, selectorExternal;
};

void ClearIds(HierarchyElement& element, bool bsId, bool externalId) {
    if (bsId) ClearProperty(element, Prop::kBsId);
    if (externalId) ClearProperty(element, Prop::kExternalIds);
}

void RemoveFrom(k3::Node& node, const Wanted& wanted) {
    if (Instance* const instance = CarriedInstance(node)) {
        if (Reference* const reference = instance->GetReference())
            ClearIds(*reference, wanted.entityBs, wanted.entityExternal);
        ClearIds(*instance, wanted.nodeBs, wanted.nodeExternal);
    }
    if (wanted.selectorBs) ClearParam(node, Param::kBsId);
    if (wanted.selectorExternal) ClearParam(node, Param::kExternalIds);
}

}  // namespace

void RemoveIds(k3::Node& root, unsigned flags) {
    const Wanted wanted(flags);
    WalkNodes(root, [&](k3::Node& node) { RemoveFrom(node, wanted); });
}

}  // namespace qn::graph
