#pragma once

#include "frame/host/extension.h"

namespace qn {

namespace k3 {
class Node;
}

/// One flat metadata value of the object, empty if it has none; the last argument means nothing.
Var GetMeta(const Extension* object, const Var& key, int reserved);
/// Stores one flat metadata value.
void SetMeta(Extension* object, const Var& key, const Var& value);

namespace meta {
/// Own metadata of the node's instance or reference, or of the element passed, borrowed; made if missing and
/// `create`.
VarMap* AccessInstanceMetadata(Extension* object, bool create);
VarMap* AccessReferenceMetadata(Extension* object, bool create);
/// The key's value in the merge of reference, instance and node metadata (later wins).
Var GetAllExistingMetadata(k3::Node* node, const Var& key);
}  // namespace meta

}  // namespace qn
