#pragma once

#include "frame/host/var.h"

namespace qn::k3 {

class Node;

/// What the host knows about the object that a node shows: a map with metadata of its own, shared by all
/// nodes that show the object. Empty if there is none.
Var GetEntityDescriptor(Node* node);
/// What the host knows about the node itself, made if missing. With `withEntity` the node's object gets its
/// descriptor, too. Empty for null.
Var GetOrCreateInstanceDescriptor(Node* node, bool withEntity);
/// Gives the node a fresh copy of its own descriptor, if it has one.
void ChangeInstanceDescriptor(Node* node);

/// Works on a descriptor; does nothing on an empty one.
class EntityHelper {
public:
    explicit EntityHelper(const Var& descriptor) : descriptor_(descriptor) {}
    /// Shares the map; null clears.
    void SetMetadata(VarMap* map);
    /// Borrowed, or null.
    VarMap* GetMetadata() const;

private:
    Var descriptor_;
};

}  // namespace qn::k3
