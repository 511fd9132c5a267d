#include "tool/placeholder_nodes.h"

#include "construction/hierarchy_factory.h"
#include "engine/scene/named_targets.h"
#include "frame/host/api.h"
#include "frame/host/generator.h"
#include "frame/host/parameter_ids.h"
#include "frame/host/property_ids.h"
#include "graph/lookup_table.h"
#include "graph/reference.h"
#include "services/top_level_nodes.h"
#include "tool/failure.h"

#include <algorithm>
#include <list>

namespace assembly::tool {
namespace {

using qn::Counted;
using qn::Matrix4;
using qn::Var;
using qn::graph::Instance;
using qn::graph::LookupTable;
using qn::graph::PropEnum;
using qn::graph::Reference;
using qn::k3::Node;
namespace Param = qn::Param;
namespace Prop = qn::graph::Prop;

Instance* InstanceOf(const Node& node) {
    return qn::Cast<Instance>(node.GetParamObject(Param::kInstance));
}

Reference* DefinitionOf(const Node& node) {
    const Instance* const instance = InstanceOf(node);
    return instance ? instance->GetReference() : nullptr;
}

std::vector<Counted<Instance>> PathOf(const Node& node) {
    std::vector<Counted<Instance>> path;
    for (const Node* at = &node; at; at = at->GetParent())
        if (Instance* const instance = InstanceOf(*at)) path.emplace_back(instance);
    std::reverse(path.begin(), path.end());
    return path;
}

Matrix4<double> MatrixOf(const Var& value) {
    Matrix4<double> matrix;
    value.copy_to(matrix);
    return matrix;
}

struct OwnValue {
    PropEnum id;
    void (*write)(Node& node, const Var& value);
};

/// What `SelectorHasOwnAttributes` finds, but the local transform.
constexpr OwnValue kOwnValues[] = {
    {Prop::kBlockA, [](Node& node, const Var& value) { node.SetParamVar(Param::kBlockA, value); }},
    {Prop::kBlockB, [](Node& node, const Var& value) { node.SetParamVar(Param::kBlockB, value); }},
    {Prop::kInteger, [](Node& node, const Var& value) { node.SetIntegerAttribute(value.ToInt(), 0); }},
    {Prop::kName, [](Node& node, const Var& value) { node.SetName(value.ToText().c_str()); }},
    {Prop::kOwnMatrix,
     [](Node& node, const Var& value) {
         const Matrix4<double> matrix = MatrixOf(value);
         node.SetMatrix(&matrix, 1);
     }},
    {Prop::kShortValue,
     [](Node& node, const Var& value) { node.SetShortValue(static_cast<std::int16_t>(value.ToInt())); }},
    {Prop::kThirdMatrix, [](Node& node, const Var& value) { node.SetThirdMatrix(MatrixOf(value)); }},
    {Prop::kParam8a, [](Node& node, const Var& value) { node.SetParamVar(Param::kParam8a, value); }},
};

const Var* Find(const Var& values, PropEnum id) {
    return values.IsMap() ? values.Lookup(qn::graph::Key(id)) : nullptr;
}

Var OwnValuesOf(Node& node) {
    qn::graph::SelectorData data;
    qn::graph::SelectorHasOwnAttributes(&node, data, nullptr, false);
    return data.attributes;
}

/// A transform of the node's own stands in place of that of the use: what the definition brought with its
/// content goes first.
void PlaceNode(Node& node, const Var& local) {
    Matrix4<double> matrix = MatrixOf(local);
    const Var brought = DefinitionOf(node)->GetProperty(Prop::kLocalMatrix, 0);
    if (brought.IsMatrix()) matrix.SetMul(MatrixOf(brought), MatrixOf(local));
    node.SetMatrix(&matrix, 0);
}

void WriteOwnValues(Node& node, const Var& values) {
    for (const OwnValue& own : kOwnValues)
        if (const Var* const value = Find(values, own.id)) own.write(node, *value);
    if (const Var* const local = Find(values, Prop::kLocalMatrix)) PlaceNode(node, *local);
}

}  // namespace

PlaceholderNodes::PlaceholderNodes(qn::k3::Scene& scene) {
    for (Node* const top : qn::graph::TopLevelNodes(&scene))
        if (top->GetFirstChild()) top->Visit(0, &Note, reinterpret_cast<qn::ParamWord>(this));
}

bool PlaceholderNodes::Note(Node* node, qn::ParamWord self) {
    const Reference* const definition = DefinitionOf(*node);
    if (node->GetFirstChild() || !definition || !definition->GetTarget().IsText()) return true;
    auto& nodes = reinterpret_cast<PlaceholderNodes*>(self)->nodes_;
    nodes.push_back({Counted<Node>(node), PathOf(*node), OwnValuesOf(*node)});
    return true;
}

void PlaceholderNodes::Fill(Session& session, qn::k3::Scene& scene) const {
    std::vector<const Placeholder*> filled;
    std::vector<Counted<LookupTable>> tables;
    for (const Placeholder& placeholder : nodes_) {
        const Reference& definition = *DefinitionOf(*placeholder.node);
        if (definition.GetTarget().IsText()) continue;
        filled.push_back(&placeholder);
        const Counted<LookupTable> table(definition.GetLookupTable());
        if (table && std::find(tables.begin(), tables.end(), table) == tables.end()) tables.push_back(table);
    }
    std::list<qn::k3::NamedTargetsAside> aside;
    for (Node* const top : qn::graph::TopLevelNodes(&scene))
        aside.emplace_back(*top);
    for (const Placeholder* const placeholder : filled)
        FillOne(*placeholder);
    for (const Counted<LookupTable>& table : tables)
        table->ApplyPendingBindings();
    const qn::LoadFailure failure = session.GetContext().GetFailure();
    if (failure != qn::LoadFailure::kNone)
        throw Failure(CodeOf(failure), session.FailureText("", "the nodes of the assembly were not made"));
}

void PlaceholderNodes::FillOne(const Placeholder& placeholder) const {
    const auto factory = qn::CreateAs<qn::graph::HierarchyFactory>(qn::graph::ClassKey::kHierarchyFactory);
    if (!factory) throw Failure(ExitCode::kDefect, "the module makes no nodes");
    qn::graph::Selector selector;
    for (const Counted<Instance>& instance : placeholder.path)
        selector.AppendPathElement(instance.Get());
    factory->GenerateNodes(selector, placeholder.node.Get());
    WriteOwnValues(*placeholder.node, placeholder.own);
}

}  // namespace assembly::tool
