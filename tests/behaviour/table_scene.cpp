#include "tests/behaviour/table_scene.h"

#include "tests/behaviour/element_support.h"

#include <algorithm>
#include <functional>

namespace qn::test {

TableScene::TableScene() : table(NewTable()) {
    table->SetSceneAndContext(scene.Get(), context.Get());
}

k3::Node* TableScene::Node(const wchar_t* name, k3::Node* parent) const {
    k3::Node* node = parent ? parent->CreateChildNode(0, 0, 0) : scene->CreateEmptyNode(0, 0, 0);
    node->SetName(name);
    return node;
}

k3::Node* TableScene::NodeOf(graph::Instance* instance, k3::Node* parent) const {
    k3::Node* node = Node(IdOf(instance).c_str(), parent);
    node->SetParamVar(Param::kInstance, Var(instance));
    EnterInMaps(node, instance);
    return node;
}

void TableScene::EnterInMaps(k3::Node* node, graph::Instance* instance) const {
    Fields().nodeToInstance.Set(node, instance);
    Fields().instanceToNodes.Add(instance, node);
}

graph::LookupTableImpl& TableScene::Fields() const {
    return *Cast<graph::LookupTableImpl>(table.Get());
}

std::wstring IdOf(const graph::HierarchyElement* element) {
    return element ? element->GetProperty(graph::Prop::kLocalId, 0).ToText().c_str() : L"";
}

std::vector<k3::Node*> NodesIn(InterfaceArray* array) {
    std::vector<k3::Node*> nodes;
    for (int i = 0; array && i < array->GetCount(); ++i)
        nodes.push_back(Cast<k3::Node>(array->Get(i)));
    return nodes;
}

std::vector<k3::Node*> InSetOrder(std::vector<k3::Node*> nodes) {
    std::sort(nodes.begin(), nodes.end(), std::less<k3::Node*>());
    return nodes;
}

}  // namespace qn::test
