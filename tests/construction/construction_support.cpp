#include "tests/construction/construction_support.h"

#include "graph/post_processing_instruction_impl.h"
#include "tests/support/static_module.h"

namespace qn::test {

namespace {

using namespace qn::graph;

const StaticModule g_module({
    {ClassKey::kInstance, &MakeOf<InstanceImpl>},
    {ClassKey::kReference, &MakeOf<ReferenceImpl>},
    {ClassKey::kPersistentSelector, &MakeOf<PersistentSelectorImpl>},
    {ClassKey::kLookupTable, &MakeOf<LookupTableImpl>},
    {ClassKey::kPostProcessingInstruction, &MakeOf<PostProcessingInstructionImpl>},
    {ClassKey::kHierarchyFactory, &MakeOf<HierarchyFactoryImpl>},
    {ClassKey::kHierarchyGenerator, &MakeOf<HierarchyGeneratorImpl>},
});

std::string Joined(const std::string& name, const std::vector<std::string>& children) {
    if (children.empty()) return name;
    std::string text = name + "(";
    for (std::size_t i = 0; i < children.size(); ++i)
        text += (i ? "," : "") + children[i];
    return text + ")";
}

}  // namespace

double ShiftOf(const Var& matrix) {
    Matrix4<double> value;
    matrix.copy_to(value);
    return value.m[3][0];
}

double ShiftOf(const k3::Node& node) {
    Matrix4<double> value;
    node.GetMatrix(&value, 0);
    return value.m[3][0];
}

std::string NameOf(const HierarchyElement* element) {
    return element ? Utf8(element->GetProperty(Prop::kName, 0)) : "(null)";
}

Var MapOf(const wchar_t* key, const Var& value) {
    Var map;
    map.At(key) = value;
    return map;
}

k3::Node* AddNode(k3::Node& parent, const char* name) {
    k3::Node* const node = parent.CreateChildNode(0, 0, 0);
    node->SetName(String::FromUtf8(name).c_str());
    return node;
}

std::string TreeOf(const k3::Node& node) {
    std::vector<std::string> children;
    for (const k3::Node* child = node.GetFirstChild(); child; child = child->GetNextSibling())
        children.push_back(TreeOf(*child));
    return Joined(node.GetName().ToUtf8(), children);
}

std::string TreeOf(const Reference& reference) {
    std::vector<std::string> children;
    for (int i = 0; i < reference.GetChildCount(); ++i)
        children.push_back(TreeOf(*reference.GetChild(i)->GetReference()));
    return Joined(NameOf(&reference), children);
}

Instance* CarriedBy(const k3::Node& node) {
    return Cast<Instance>(node.GetParamVar(Param::kInstance));
}

Counted<InstanceImpl> LooseInstance(Reference* reference) {
    return Make<InstanceImpl>(reference);
}

bool FakeTraverser::Wrote(PropEnum id) const {
    for (const auto& [number, value] : writes)
        if (number == Key(id)) return true;
    return false;
}

Var FakeTraverser::Written(PropEnum id) const {
    Var last;
    for (const auto& [number, value] : writes)
        if (number == Key(id)) last = value;
    return last;
}

Counted<Selector::Traverser> FakeTraverser::CreateChild(Instance* shown) {
    if (refuses) return {};
    const auto child = Make<FakeTraverser>(log_);
    child->instance = Counted<Instance>(shown);
    children.push_back(child);
    if (log_) log_->push_back("make " + NameOf(shown->GetReference()));
    return child;
}

Counted<Selector::Traverser> FakeTraverser::GetChild(int index) {
    if (index < 0 || index >= GetChildCount()) return {};
    return children[static_cast<std::size_t>(index)];
}

void FakeTraverser::SetProperty(PropEnum id, const Var& value) {
    writes.emplace_back(Key(id), value);
    if (log_) log_->push_back("write " + std::to_string(Key(id)));
}

Var FakeTraverser::GetProperty(PropEnum id, int) const {
    const Var* const value = properties.Lookup(Key(id));
    return value ? *value : Var();
}

}  // namespace qn::test
