#pragma once

#include "tests/graph/traverser_fixture.h"

#include <vector>

namespace qn::test {

/// Nodes that show instances of one table, and what a traverser writes to either.
class ElementChanges : public TraverserFixture {
protected:
    ~ElementChanges() override {
        for (const auto& element : linked_) {  // an instance whose link leads to a selector on its own path
            element->SetProperty(Prop::kLink, Var());
            element->SetProperty(Prop::kLinkList, Var());
        }
    }
    /// A node below `parent` that shows a new instance.
    k3::Node* ShownBelow(k3::Node* parent, const wchar_t* id) {
        k3::Node* node = parent->CreateChildNode(0, 0, 0);
        Show(node, Known(id).Get());
        return node;
    }
    void Link(const k3::Node* node, const Counted<PersistentSelectorImpl>& target) {
        linked_.emplace_back(Carried(node));
        Carried(node)->SetProperty(Prop::kLink, Var(target));
    }
    void LinkAll(const k3::Node* node, const Var& list) {
        linked_.emplace_back(Carried(node));
        Carried(node)->SetProperty(Prop::kLinkList, list);
    }
    static k3::Node* LinkedNode(const k3::Node* node) {
        return Cast<k3::Node>(node->GetParamVar(Param::kLinkedNode));
    }
    static Counted<PersistentSelectorImpl> PathTo(const k3::Node* node) {
        return StoredPath({Carried(node)});
    }
    void Apply(k3::Node* node) { table->ApplyElementChanges(node); }
    void Store(k3::Node* node) { On(node)->StoreElementChanges(node); }

private:
    std::vector<Counted<Instance>> linked_;
};

}  // namespace qn::test
