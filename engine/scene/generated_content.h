#pragma once

#include "frame/host/node.h"

namespace qn {

class Context;

namespace k3 {

class Scene;

// Nodes that a generator makes need not be stored: the generator makes them again from the graph. This holds
// only while the nodes carry nothing that the graph does not say. Every node is stamped with the present
// epoch when it changes, so that "changed since generation" is one comparison for each node, made when the
// scene is saved. Values that can be edited in place, metadata and container parameters, go into a
// fingerprint.

/// Notes that what stands below the node is what its generator makes.
void MarkGenerated(Node& node);

/// Whether the node has a generator for a definition, but stands for something else than what that generates
/// from: it carries an instance of another definition, or none although its content is there.
bool HasOtherHierarchy(const Node& node);

/// Whether the node's children need not be stored: its generator has something to make them from, they were
/// not changed since, and no layer and no viewport points at them. True as well before anything was
/// generated.
bool CanGenerateChildren(const Node& node);

/// Whether the node's generator has not made its children yet.
bool AwaitsGeneration(const Node& node);

/// Has the node's generator make its children, which the next save may leave out again. False if the
/// generator refused, or broke off with a failure in the context.
bool GenerateChildren(Node& node, Context* context);

/// Generates the children of every node of the scene that awaits it, those of generated nodes included. Files
/// that definitions name are not opened: such a definition shows as it is, and keeps the name. The
/// number of nodes that got their content; -1, with the walk ended, if a generator
/// refused or left a failure in the context.
int GenerateMissing(Scene& scene, Context* context);

}  // namespace k3
}  // namespace qn
