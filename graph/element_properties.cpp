#include "graph/element_properties.h"

#include "frame/host/collections.h"
#include "frame/host/parameter_ids.h"
#include "frame/host/stream.h"

#include <utility>

namespace qn::graph {

namespace {

struct ForwardedProperty {
    PropEnum property;
    int parameter;
};

constexpr ForwardedProperty kForwarded[] = {
    {Prop::kExternalIds, Param::kExternalIds},
    {Prop::kBsId, Param::kBsId},
    {Prop::kAttachedIdentifier, Param::kAttachedIdentifier},
    {Prop::kPrimaryIdentifier, Param::kPrimaryIdentifier},
};

}  // namespace

const int* ForwardedParameter(PropEnum id) {
    for (const ForwardedProperty& row : kForwarded)
        if (row.property == id) return &row.parameter;
    return nullptr;
}

Var StoredProperty(const Var& properties, PropEnum id) {
    const Var* stored = properties.Lookup(Key(id));
    return stored ? *stored : Var();
}

void StoreProperty(Var& properties, PropEnum id, const Var& value) {
    Var copy(value);  // the value may stand in this very map, whose rows move
    properties.At(Key(id)) = std::move(copy);
}

void SaveProperties(Var& properties, Stream* stream, Context* context) {
    const Var localId = properties.At(Key(Prop::kLocalId));
    const bool leftOut = localId.IsSet() && properties.At(Key(Prop::kKeepLocalId)).IsEmpty();
    if (leftOut) properties.Remove(Var(Key(Prop::kLocalId)));
    // The stream writes the map as it is now.
    if (properties.IsMap()) stream->WriteObjectChunk(properties.ToMap(), context, kPropertiesChunk);
    if (localId.IsSet()) StoreProperty(properties, Prop::kLocalId, localId);
}

}  // namespace qn::graph
