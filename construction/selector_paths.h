#pragma once

#include "frame/host/collections.h"
#include "frame/host/node.h"
#include "frame/host/selector.h"
#include "graph/instance.h"

namespace qn::graph {

/// The instance in a node's own parameter, counted, or null.
Counted<Instance> InstanceIn(const k3::Node& node);

/// The node at the end of the selector's path, which starts at `root`; null if there is none. Of several
/// children that show one instance only the first is gone into.
k3::Node* FindNodeForSelector(k3::Node* root, const Selector& selector);

/// The path from the topmost instance down to this one, through the first use of each definition. A climb
/// that meets an instance again ends there.
Selector SelectorFromInstance(Instance* instance);

/// The first of the nodes, in pointer order, that is an ancestor or descendant of `node` or the node itself;
/// or null. The scene is nobody's ancestor here.
k3::Node* FindRelatedNode(const InterfaceArray* nodes, k3::Node* node);

}  // namespace qn::graph
