#pragma once

#include "frame/host/property_ids.h"
#include "frame/host/var.h"

namespace qn {
class Extension;
}

// How instances and references keep their properties: some live in the host's parameter table, the metadata
// is the host's map, all others stand in a map from property number to value.

namespace qn::graph {

/// The parameter that stands for a property, or null if the property has a place of its own.
const int* ForwardedParameter(PropEnum id);

/// The value under the property's number; empty if missing.
Var StoredProperty(const Var& properties, PropEnum id);
/// Stores the value, empty or not; an empty `properties` becomes a map.
void StoreProperty(Var& properties, PropEnum id, const Var& value);

/// Writes the map as chunk 0x1000. The local id stays out of the file unless the element is marked to keep
/// it; asking for both creates their keys, and a local id that was left out moves to the end of the map.
void SaveProperties(Var& properties, Stream* stream, Context* context);

/// Chunk of the property map, the same on both classes.
inline constexpr int kPropertiesChunk = 0x1000;

}  // namespace qn::graph
