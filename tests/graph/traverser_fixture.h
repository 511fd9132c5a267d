#pragma once

#include "graph/node_traverser.h"
#include "tests/graph/table_fixture.h"

namespace qn::test {

/// A scene, a table, maps and traversers on its nodes.
class TraverserFixture : public TableFixture {
protected:
    k3::Node* Top(const wchar_t* name = L"top") { return Named(scene->CreateEmptyNode(0, 0, 0), name); }
    static k3::Node* Below(k3::Node* parent, const wchar_t* name = L"part") {
        return Named(parent->CreateChildNode(0, 0, 0), name);
    }
    static k3::Node* Named(k3::Node* node, const wchar_t* name) {
        node->SetName(name);
        return node;
    }
    /// With the table's maps.
    Counted<NodeTraverser> On(k3::Node* node, bool createNodes = false) {
        return Make<NodeTraverser>(table.Get(), node, &table->nodeToInstance, &table->instanceToNodes,
                                   createNodes);
    }
    /// Without table, with maps of the fixture.
    Counted<NodeTraverser> FreeOn(k3::Node* node, bool createNodes = false) {
        return Make<NodeTraverser>(nullptr, node, &nodeMap, &instanceMap, createNodes);
    }
    void Show(k3::Node* node, Instance* instance) {
        node->SetParamVar(Param::kInstance, Var(instance, 1));
        table->nodeToInstance.Set(node, instance);
        table->instanceToNodes.Add(instance, node);
    }
    static Instance* Carried(const k3::Node* node) {
        return Cast<Instance>(node->GetParamVar(Param::kInstance));
    }
    static Var Metadata(const wchar_t* group, const wchar_t* key, const Var& value) {
        Var metadata;
        metadata.At(group).At(key) = value;
        return metadata;
    }
    static Var MetadataOf(const Extension* object, const wchar_t* group, const wchar_t* key) {
        const Var metadata(object->GetMetadata(false), 1);
        const Var* entries = metadata.Lookup(group);
        const Var* value = entries ? entries->Lookup(key) : nullptr;
        return value ? *value : Var();
    }

    Counted<k3::Scene> scene = Make<k3::Scene>();
    NodeToInstance nodeMap;
    InstanceToNodes instanceMap;
};

}  // namespace qn::test
