#pragma once

#include "frame/host/scene_document.h"
#include "graph/instance.h"
#include "graph/lookup_table.h"
#include "graph/lookup_table_impl.h"
#include "graph/reference.h"
#include "tests/support/recording_context.h"

#include <string>
#include <vector>

namespace qn::test {

/// A scene with a table that is bound to it.
struct TableScene {
    TableScene();

    /// A new last child of `parent`, or a new top-level node without one; borrowed.
    k3::Node* Node(const wchar_t* name, k3::Node* parent = nullptr) const;
    /// The same, and the node shows the instance: parameter 0x94 and both maps of the table say so.
    k3::Node* NodeOf(graph::Instance* instance, k3::Node* parent = nullptr) const;
    /// Only the maps of the table say so.
    void EnterInMaps(k3::Node* node, graph::Instance* instance) const;
    /// The open fields of the table.
    graph::LookupTableImpl& Fields() const;

    Counted<k3::Scene> scene = Make<k3::Scene>();
    Counted<RecordingContext> context = MakeContext();
    Counted<graph::LookupTable> table;
};

/// Property 0x0f as text.
std::wstring IdOf(const graph::HierarchyElement* element);
/// The nodes of an array in its order; empty for null.
std::vector<k3::Node*> NodesIn(InterfaceArray* array);
/// In the order of the map: by address.
std::vector<k3::Node*> InSetOrder(std::vector<k3::Node*> nodes);

}  // namespace qn::test
