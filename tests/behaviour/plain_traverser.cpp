#include "tests/behaviour/plain_traverser.h"

namespace qn::test {

using namespace graph;

PlainTraverser* PlainTraverser::Add(Instance* instance) {
    children_.push_back(Make<PlainTraverser>(instance));
    return children_.back().Get();
}

PlainTraverser& PlainTraverser::Say(PropEnum id, const Var& value) {
    said_[Key(id)] = value;
    return *this;
}

std::vector<Var> PlainTraverser::Written(PropEnum id) const {
    std::vector<Var> values;
    for (const auto& [key, value] : written_) {
        if (key == Key(id)) values.push_back(value);
    }
    return values;
}

std::vector<int> PlainTraverser::WrittenIds() const {
    std::vector<int> ids;
    for (const auto& [key, value] : written_)
        ids.push_back(key);
    return ids;
}

Counted<Instance> PlainTraverser::GetInstance() {
    if (onAsked) onAsked();
    return instance_;
}

Counted<Selector::Traverser> PlainTraverser::CreateChild(Instance* instance) {
    if (refuses) return {};
    PlainTraverser* child = Add(instance);
    child->onCreated = onCreated;
    if (onCreated) onCreated(instance);
    return Counted<Selector::Traverser>(child);
}

Counted<Selector::Traverser> PlainTraverser::GetChild(int index) {
    const bool inside = index >= 0 && index < GetChildCount();
    return inside ? Counted<Selector::Traverser>(children_[static_cast<std::size_t>(index)]) : nullptr;
}

Var PlainTraverser::GetProperty(PropEnum id, int) const {
    const auto found = said_.find(Key(id));
    return found == said_.end() ? Var() : found->second;
}

}  // namespace qn::test
