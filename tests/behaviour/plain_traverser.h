#pragma once

#include "frame/host/selector.h"
#include "graph/instance.h"

#include <functional>
#include <map>
#include <utility>
#include <vector>

namespace qn::test {

/// A place of a tree without nodes: it says what it is told to say and remembers what is written to it.
class PlainTraverser final : public graph::Selector::Traverser {
public:
    explicit PlainTraverser(graph::Instance* instance = nullptr) : instance_(instance) {}

    /// A new last child, borrowed.
    PlainTraverser* Add(graph::Instance* instance);
    /// What `GetProperty` answers.
    PlainTraverser& Say(graph::PropEnum id, const Var& value);
    PlainTraverser* Child(std::size_t index) const { return children_[index].Get(); }
    std::size_t Children() const { return children_.size(); }
    graph::Instance* Shown() const { return instance_.Get(); }
    /// All that was written under the number, in order.
    std::vector<Var> Written(graph::PropEnum id) const;
    /// The numbers that were written, in order.
    std::vector<int> WrittenIds() const;

    Counted<graph::Instance> GetInstance() override;
    /// A new last child for the instance, unless `refuses`.
    Counted<graph::Selector::Traverser> CreateChild(graph::Instance* instance) override;
    Counted<graph::Selector::Traverser> GetParent() override { return {}; }
    int GetChildCount() const override { return static_cast<int>(children_.size()); }
    Counted<graph::Selector::Traverser> GetChild(int index) override;
    bool IsValid() const override { return true; }
    void ApplyElementChanges(k3::Node*, const String&, std::map<graph::PersistentSelector*, k3::Node*>&,
                             std::map<graph::PersistentSelector*, k3::Node*>&) override {}
    void StoreElementChanges(k3::Node*) override {}
    void SetProperty(graph::PropEnum id, const Var& value) override { written_.emplace_back(Key(id), value); }
    Var GetProperty(graph::PropEnum id, int inherit) const override;
    graph::LookupTable* GetLookupTable() const override { return nullptr; }
    String ToDebugString() const override { return {}; }

    bool refuses = false;
    std::function<void()> onAsked;                    ///< before `GetInstance` answers
    std::function<void(graph::Instance*)> onCreated;  ///< after a child was made here or below

private:
    Counted<graph::Instance> instance_;
    std::map<int, Var> said_;
    std::vector<Counted<PlainTraverser>> children_;
    std::vector<std::pair<int, Var>> written_;
};

}  // namespace qn::test
