#include "tests/behaviour/factory_support.h"

#include "tests/behaviour/element_support.h"

#include <algorithm>

namespace qn::test {

using namespace graph;

namespace {

/// "name" or "name(first second)".
std::string WithParts(const String& name, const std::vector<std::string>& parts) {
    std::string text = name.ToUtf8();
    for (std::size_t i = 0; i < parts.size(); ++i)
        text += (i == 0 ? "(" : " ") + parts[i];
    return parts.empty() ? text : text + ")";
}

std::string OutlineBelow(const Reference& reference, std::vector<const Reference*>& descent) {
    std::vector<std::string> parts;
    const bool ring = std::find(descent.begin(), descent.end(), &reference) != descent.end();
    descent.push_back(&reference);
    for (int i = 0; !ring && i < reference.GetChildCount(); ++i) {
        const auto child = reference.GetChild(i);
        const Reference* used = child ? child->GetReference() : nullptr;
        parts.push_back(used ? OutlineBelow(*used, descent) : "-");
    }
    descent.pop_back();
    return WithParts(NameOf(reference), parts);
}

}  // namespace

Counted<HierarchyFactory> NewFactory() {
    return CreateAs<HierarchyFactory>(ClassKey::kHierarchyFactory);
}

k3::Node* AddNode(k3::Node& parent, const wchar_t* name) {
    k3::Node* node = parent.CreateChildNode(0, 0, 0);
    node->SetName(name);
    return node;
}

k3::Node* AddNode(k3::Node& parent, const wchar_t* name, Instance* shown) {
    k3::Node* node = AddNode(parent, name);
    node->SetParamVar(Param::kInstance, Var(shown));
    return node;
}

Instance* ShownBy(const k3::Node& node) {
    return Cast<Instance>(node.GetParamVar(Param::kInstance));
}

Reference* DefinitionOf(const k3::Node& node) {
    const Instance* shown = ShownBy(node);
    return shown ? shown->GetReference() : nullptr;
}

std::string Outline(const k3::Node& node) {
    std::vector<std::string> parts;
    for (const k3::Node* child = node.GetFirstChild(); child; child = child->GetNextSibling())
        parts.push_back(Outline(*child));
    return WithParts(node.GetName(), parts);
}

std::string Outline(const Reference& reference) {
    std::vector<const Reference*> descent;
    return OutlineBelow(reference, descent);
}

Matrix4<double> Shift(double x, double y, double z) {
    return Matrix4<double>::Translation(x, y, z);
}

double PlaceOf(const k3::Node& node) {
    Matrix4<double> matrix;
    node.GetMatrix(&matrix, 0);
    return matrix.m[3][0];
}

String NameOf(const HierarchyElement& element) {
    return element.GetProperty(Prop::kName, 0).ToText();
}

Counted<Instance> NewUse(const wchar_t* name) {
    const auto definition = NewReference();
    definition->SetProperty(Prop::kName, Var(name));
    auto use = definition->CreateInstance();
    use->SetProperty(Prop::kName, Var(name));
    return use;
}

std::vector<Instance*> ChildrenOf(const Reference& reference) {
    std::vector<Instance*> children;
    for (int i = 0; i < reference.GetChildCount(); ++i)
        children.push_back(reference.GetChild(i).Get());
    return children;
}

std::vector<Instance*> UsesOf(const Reference& reference) {
    std::vector<Instance*> uses;
    for (int i = 0; i < reference.GetInstanceCount(); ++i)
        uses.push_back(reference.GetInstance(i).Get());
    return uses;
}

}  // namespace qn::test
