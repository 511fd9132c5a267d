#pragma once

#include "frame/host/collections.h"
#include "frame/host/node.h"
#include "graph/lookup_table_impl.h"

// What file loads left for the time when nodes exist again: layers, views, marks of loaded references.

namespace qn::graph {

/// The live nodes of the selector of that instance alone, in order; empty for null.
std::vector<k3::Node*> NodesOfInstanceAlone(LookupTableImpl& table, Instance* instance);

/// The "UNIQUEID" of the "$CADMetadata" of metadata, or null; and storing one in a node's metadata.
const Var* CadUniqueId(const Var& metadata);
void SetCadUniqueId(k3::Node& node, const Var& id);

/// The bits of "EntityType" in a "$QN.CAD.ENTITYTYPE" group, 0 if it is missing.
int EntityTypeOf(const Var& group);
inline constexpr int kHiddenEntityType = 0x200;
inline constexpr const wchar_t* kEntityTypeGroup = L"$QN.CAD.ENTITYTYPE";

/// Points the viewports that wait at the nodes of their definitions, and fits their layers.
void BindPendingViewports(LookupTableImpl& table, k3::Scene& scene);

}  // namespace qn::graph
