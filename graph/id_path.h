#pragma once

#include "frame/host/string.h"
#include "frame/host/var.h"
#include "graph/graph.h"

// From stored id paths to live ones.

namespace qn::graph {

/// What stands before each id of a path while files are loaded: the table's prefix with "_", or nothing.
String IdPathPrefix(const LookupTable* table);
/// The path with the prefix before each id; the path itself, shared, if either is empty.
Var PrefixedIdPath(const Var& idPath, const String& prefix);
/// Makes `path` from the ids. The first id without a live instance empties it again; an unknown id leaves a
/// null entry in the table.
void FollowIdPath(const Var& ids, LookupTableImpl& table, PersistentSelectorImpl& selector);

}  // namespace qn::graph
