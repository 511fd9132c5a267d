#include "tests/support/assembly.h"

#include "frame/host/scene.h"

#include <charconv>
#include <stdexcept>

namespace qn::test {
namespace {

constexpr const char* kServerPrefix = "s:";

String Text(std::string_view text) {
    return String::FromUtf8(text);
}

template <class T>
Counted<T> MakeByKey(const char* key) {
    auto object = CreateAs<T>(key);
    if (!object) throw std::runtime_error(std::string("nobody makes ") + key);
    return object;
}

String ServerId(const std::string& name) {
    return Text(kServerPrefix + name);
}

/// "wheel#2" as name and number; the number is 0 without "#".
std::pair<std::string_view, int> SplitStep(std::string_view step) {
    const std::size_t mark = step.find('#');
    int number = 0;
    if (mark == std::string_view::npos) return {step, number};
    std::from_chars(step.data() + mark + 1, step.data() + step.size(), number);
    return {step.substr(0, mark), number};
}

graph::Instance* FindUse(const graph::Reference& parent, const graph::Reference* definition, int number) {
    for (int i = 0; i < parent.GetChildCount(); ++i) {
        const auto child = parent.GetChild(i);
        if (child && child->GetReference() == definition && number-- == 0) return child.Get();
    }
    return nullptr;
}

}  // namespace

Assembly::Assembly(AssemblyShape shape, const AssemblyOptions& options)
    : shape_(std::move(shape)), uses_(shape_.definitions.size()) {
    if (options.table) table_ = MakeByKey<graph::LookupTable>(graph::ClassKey::kLookupTable);
    references_.reserve(shape_.definitions.size());
    for (const auto& definition : shape_.definitions)
        MakeReference(options, definition.name);
    MakeUse(options, 0);
    for (std::size_t parent = 0; parent < shape_.definitions.size(); ++parent)
        MakeUses(options, parent);
    if (!options.content) return;
    for (std::size_t i = 0; i < references_.size(); ++i) {
        if (shape_.definitions[i].children.empty()) references_[i]->SetTarget(Var(Make<k3::Object3D>()));
    }
}

Assembly::~Assembly() {
    if (references_.empty() || !IsCyclic(shape_)) return;
    for (const auto& reference : references_) {  // a ring would keep itself alive
        for (int i = reference->GetChildCount() - 1; i >= 0; --i)
            reference->RemoveChildAt(i);
    }
}

graph::Reference* Assembly::Ref(std::string_view name) const {
    const int number = Find(name);
    return number < 0 ? nullptr : references_[static_cast<std::size_t>(number)].Get();
}

graph::Instance* Assembly::At(std::string_view name, int use) const {
    const int number = Find(name);
    if (number < 0 || use < 0) return nullptr;
    const auto& uses = uses_[static_cast<std::size_t>(number)];
    return static_cast<std::size_t>(use) < uses.size() ? uses[static_cast<std::size_t>(use)].Get() : nullptr;
}

graph::Selector Assembly::Path(std::initializer_list<std::string_view> names) const {
    graph::Selector path;
    const graph::Reference* parent = nullptr;
    for (const std::string_view step : names) {
        const auto [name, number] = SplitStep(step);
        graph::Instance* use = parent ? FindUse(*parent, Ref(name), number) : RootInstance();
        path.AppendPathElement(use);
        if (!use) break;
        parent = use->GetReference();
    }
    return path;
}

int Assembly::Find(std::string_view name) const {
    if (numbers_.empty()) {
        numbers_.reserve(shape_.definitions.size());
        for (std::size_t i = 0; i < shape_.definitions.size(); ++i)
            numbers_.try_emplace(shape_.definitions[i].name, static_cast<int>(i));
    }
    const auto found = numbers_.find(std::string(name));
    return found == numbers_.end() ? -1 : found->second;
}

void Assembly::MakeReference(const AssemblyOptions& options, const std::string& name) {
    Counted<graph::Reference> reference;
    if (!options.table) {
        reference = MakeByKey<graph::Reference>(graph::ClassKey::kReference);
    } else if (options.serverIds) {
        reference = table_->GetOrCreateBsReference(String(), ServerId(name));
    } else {
        reference = table_->GetOrCreateReference(String());
    }
    reference->SetProperty(graph::Prop::kName, Var(Text(name)));
    references_.push_back(std::move(reference));
}

void Assembly::MakeUses(const AssemblyOptions& options, std::size_t parent) {
    for (const int child : shape_.definitions[parent].children) {
        references_[parent]->AddChild(MakeUse(options, static_cast<std::size_t>(child)));
    }
}

graph::Instance* Assembly::MakeUse(const AssemblyOptions& options, std::size_t definition) {
    graph::Reference& reference = *references_[definition];
    auto& uses = uses_[definition];
    if (!options.table) {
        uses.push_back(reference.CreateInstance());
    } else if (options.serverIds) {
        const std::string number = std::to_string(uses.size() + 1);
        uses.push_back(reference.CreateInstanceWithBsId(
            String(), ServerId(shape_.definitions[definition].name + "." + number)));
    } else {
        uses.push_back(reference.CreateInstanceWithId(String()));
    }
    return uses.back().Get();
}

AssemblyBuilder::AssemblyBuilder(std::string_view root) {
    Number(root);
}

AssemblyBuilder& AssemblyBuilder::Child(std::string_view name, int count) {
    return Under(shape_.definitions.front().name, name, count);
}

AssemblyBuilder& AssemblyBuilder::Under(std::string_view parent, std::string_view name, int count) {
    const std::size_t above = Number(parent);
    const int below = static_cast<int>(Number(name));
    auto& children = shape_.definitions[above].children;
    children.insert(children.end(), static_cast<std::size_t>(count), below);
    return *this;
}

AssemblyBuilder& AssemblyBuilder::WithoutTable() {
    options_.table = false;
    return *this;
}

AssemblyBuilder& AssemblyBuilder::WithServerIds() {
    options_.serverIds = true;
    return *this;
}

AssemblyBuilder& AssemblyBuilder::WithContent() {
    options_.content = true;
    return *this;
}

/// The number of a definition, added at the end if it is new.
std::size_t AssemblyBuilder::Number(std::string_view name) {
    for (std::size_t i = 0; i < shape_.definitions.size(); ++i) {
        if (shape_.definitions[i].name == name) return i;
    }
    shape_.definitions.push_back({std::string(name), {}});
    return shape_.definitions.size() - 1;
}

}  // namespace qn::test
