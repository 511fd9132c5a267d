#pragma once

#include "graph/node_traverser.h"
#include "tests/behaviour/element_support.h"
#include "tests/behaviour/table_scene.h"

namespace qn::test {

/// A scene, a table and traversers on its nodes.
struct Stage : TableScene {
    Counted<graph::NodeTraverser> On(k3::Node* node, bool createNodes = false) const {
        return Make<graph::NodeTraverser>(table.Get(), node, &Fields().nodeToInstance,
                                          &Fields().instanceToNodes, createNodes);
    }
    /// One without table, on maps of its own.
    Counted<graph::NodeTraverser> Free(k3::Node* node, bool createNodes = false) {
        return Make<graph::NodeTraverser>(nullptr, node, &nodes, &instances, createNodes);
    }
    /// The instance of a node as a fresh traverser gives it.
    Counted<graph::Instance> InstanceOf(k3::Node* node) const { return On(node)->GetInstance(); }
    Counted<graph::Instance> FreeInstanceOf(k3::Node* node) { return Free(node)->GetInstance(); }
    /// A node below `parent` that carries the instance in parameter 0x94 and stands in no map.
    k3::Node* NodeWith(graph::Instance* instance, k3::Node* parent = nullptr) const {
        k3::Node* node = Node(L"", parent);
        node->SetParamVar(Param::kInstance, Var(instance));
        return node;
    }

    graph::NodeToInstance nodes;
    graph::InstanceToNodes instances;
};

inline k3::Node* NodeAt(const Counted<graph::Selector::Traverser>& traverser) {
    const auto* at = Cast<graph::NodeTraverser>(traverser.Get());
    return at ? at->GetNode() : nullptr;
}

inline Matrix4<double> Shift(double x) {
    return Matrix4<double>::Translation(x, 0, 0);
}

}  // namespace qn::test
