#include "graph/lookup_table_impl.h"
#include "graph/node_matching.h"
#include "graph/node_traverser.h"

#include <map>

namespace qn::graph {

namespace {

constexpr int kDumpRuleLength = 76;
constexpr int kDumpNameBuffer = 260;  ///< characters, the terminator included

void Collect(Counted<InterfaceArray>& nodes, k3::Node* node) {
    if (!nodes) nodes = InterfaceArray::CreateStrong();
    nodes->Add(node);
}

}  // namespace

Counted<InterfaceArray> LookupTableImpl::GetNodesOfInstance(Instance* instance) {
    Counted<InterfaceArray> nodes;
    if (!instance) return nodes;
    for (k3::Node* node : instanceToNodes.NodesOf(instance))
        Collect(nodes, node);
    return nodes;
}

Counted<InterfaceArray> LookupTableImpl::GetNodesOfSelector(const Selector& selector, bool exact) {
    Counted<InterfaceArray> nodes;
    if (!selector.IsValid()) return nodes;
    const Instance* first = selector.GetPathElement(0);
    if (!first) return nodes;
    for (k3::Node* start : instanceToNodes.NodesOf(first)) {
        k3::Node* found = exact ? MatchPath(start, selector, nodeToInstance) : MatchPath(start, selector);
        if (found) Collect(nodes, found);
    }
    return nodes;
}

Counted<Instance> LookupTableImpl::GetInstanceOfNode(k3::Node* node) {
    return Counted<Instance>(node ? nodeToInstance.Find(node) : nullptr);
}

void LookupTableImpl::ApplyElementChanges(k3::Node* node) {
    const auto traverser = Make<NodeTraverser>(this, node, &nodeToInstance, &instanceToNodes, false);
    std::map<PersistentSelector*, k3::Node*> answers;
    std::map<PersistentSelector*, k3::Node*> reserved;
    if (traverser) traverser->ApplyElementChanges(node, String(), answers, reserved);
}

String LookupTableImpl::DumpNodeMap() const {
    const std::wstring rule = std::wstring(kDumpRuleLength, L'-') + L"\n";
    std::wstring text = rule;
    nodeToInstance.ForEach([&](const k3::Node* node, const Instance* instance) {
        text += L'{';
        text += node->GetName().SubString(0, kDumpNameBuffer - 1).View();
        text += L" -> ";
        if (instance) text += instance->GetProperty(Prop::kLocalId, 0).ToText().View();
        text += L"}\n";
    });
    return text + rule;
}

}  // namespace qn::graph
