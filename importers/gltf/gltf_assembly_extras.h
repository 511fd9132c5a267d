#pragma once

#include "frame/host/counted.h"
#include "frame/host/var.h"
#include "graph/instance.h"
#include "graph/lookup_table.h"
#include "graph/reference.h"

namespace qn::gltf {

/// Key in the extras of a node or of the asset under which a file that was written from an assembly says what
/// the format itself has no place for; see docs/gltf.md.
inline constexpr const wchar_t* kAssemblyExtras = L"assembly";

/// The part of the extras that is ours, borrowed; null if there is none.
const Var* AssemblyPart(const Var& extras);

/// Text by which nodes of one definition know each other; empty if the node tells none. The first node of a
/// key brings the content of the definition, the nodes below all others of it are passed over.
String DefinitionKeyOf(const Var& extras);

/// A new definition in the table with name, ids and metadata as the extras say. Expects `AssemblyPart`.
Counted<graph::Reference> CreateDefinition(graph::LookupTable& table, const Var& extras);

/// A new use of the definition with name, ids and metadata as the extras say. Expects `AssemblyPart`.
Counted<graph::Instance> CreateUse(graph::Reference& definition, const Var& extras);

/// The extras without our part; empty if nothing else is there.
Var ForeignExtras(const Var& extras);

}  // namespace qn::gltf
