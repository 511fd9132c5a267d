#pragma once

#include "construction/hierarchy_factory.h"
#include "frame/host/scene_document.h"
#include "graph/instance.h"
#include "graph/reference.h"

#include <string>
#include <vector>

namespace qn::test {

/// The factory by class key.
Counted<graph::HierarchyFactory> NewFactory();

/// A new last child, borrowed. A scene makes top-level nodes.
k3::Node* AddNode(k3::Node& parent, const wchar_t* name);
/// The same, showing the instance: parameter 0x94.
k3::Node* AddNode(k3::Node& parent, const wchar_t* name, graph::Instance* shown);
/// What parameter 0x94 of the node holds, borrowed.
graph::Instance* ShownBy(const k3::Node& node);
graph::Reference* DefinitionOf(const k3::Node& node);

/// Names of a node and all below it: "car(wheel(tyre) wheel)".
std::string Outline(const k3::Node& node);
/// Names of a definition and all below it, one for each use; stops at a definition that contains itself.
std::string Outline(const graph::Reference& reference);

Matrix4<double> Shift(double x, double y = 0, double z = 0);
/// Where matrix 0 puts the node's origin in its parent, along x.
double PlaceOf(const k3::Node& node);
String NameOf(const graph::HierarchyElement& element);

/// A use of a new definition that has no table; both have the name.
Counted<graph::Instance> NewUse(const wchar_t* name);
/// The children of a definition in order.
std::vector<graph::Instance*> ChildrenOf(const graph::Reference& reference);
/// The uses that a definition lists in order, null for a dead one.
std::vector<graph::Instance*> UsesOf(const graph::Reference& reference);

}  // namespace qn::test
