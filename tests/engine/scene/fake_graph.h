#pragma once

#include "frame/host/node.h"
#include "graph/lookup_table.h"
#include "graph/post_processing_instruction.h"
#include "graph/reference.h"
#include "tests/support/inert_instance.h"

#include <map>
#include <vector>

namespace qn::test {

/// A use with properties in a map; what it does not have it inherits from its definition.
class FakeInstance final : public InertInstance {
public:
    using InertInstance::InertInstance;

    void SetProperty(graph::PropEnum id, const Var& value) override { properties_[graph::Key(id)] = value; }
    Var GetProperty(graph::PropEnum id, int inherit) const override {
        const auto own = properties_.find(graph::Key(id));
        if (own != properties_.end()) return own->second;
        return inherit && reference_ ? reference_->GetProperty(id, 0) : Var();
    }
    graph::LookupTable* GetLookupTable() const override {
        return reference_ ? reference_->GetLookupTable() : nullptr;
    }

private:
    std::map<int, Var> properties_;
};

/// A definition with children and properties.
class FakeReference final : public graph::Reference {
public:
    Counted<graph::Instance> CreateInstance() override { return Make<FakeInstance>(this); }
    Counted<graph::Instance> CreateInstanceWithId(const String&) override { return CreateInstance(); }
    Counted<graph::Instance> CreateInstanceWithBsId(const String&, const String&) override {
        return CreateInstance();
    }
    int GetChildCount() const override { return static_cast<int>(children_.size()); }
    Counted<graph::Instance> GetChild(int index) const override {
        return index < GetChildCount() ? children_[static_cast<std::size_t>(index)]
                                       : Counted<graph::Instance>();
    }
    void AddChild(graph::Instance* instance) override { children_.emplace_back(instance); }
    bool HasChild(graph::Instance*) const override { return false; }
    Counted<graph::Reference> CreateCopy() override { return {}; }
    void RemoveChild(graph::Instance*) override {}
    void RemoveChildAt(int) override {}
    int GetInstanceCount() const override { return 0; }
    Counted<graph::Instance> GetInstance(int) const override { return {}; }
    int GetSelectorCount() const override { return 0; }
    graph::Selector GetSelector(int) const override { return {}; }
    Var GetSelectorPath(int) const override { return {}; }
    void RemoveSelector(int) override {}
    void AddSelectorPath(const Var&) override {}
    void AddSelector(const graph::Selector&) override {}
    void ResolveSelectors(bool, Var*) override {}
    void StoreSelectors(bool, Var*) override {}
    Var GetTarget() const override { return {}; }
    void SetTarget(const Var&) override {}
    bool HasNoTargetLink() const override { return true; }
    Counted<graph::Reference> ResolveTarget(const Var&) override { return {}; }
    void CopyContentFrom(graph::Reference*) override {}
    void ReloadExternalTarget() override {}
    bool IsLeaf() const override { return children_.empty(); }
    int GetInstructionCount() const override { return 0; }
    Counted<PostProcessingInstruction> GetInstruction(int) const override { return {}; }
    void RemoveInstruction(int) override {}
    Counted<PostProcessingInstruction> AddInstruction() override { return {}; }
    void RunInstructions(Extension*, Context*) override {}
    void RunAllInstructions(Extension*, Context*) override {}
    Var CreateResolverCache() override { return {}; }
    graph::Reference* RegisterInTable(graph::LookupTable*) override { return this; }
    void RunInstructionsRecursive(Extension*, Context*, std::set<graph::Reference*>&) override {}
    void SetInstanceReference(graph::Instance*) override {}
    void ClearInstances() override {}
    void AddInstances(const std::vector<graph::Instance*>&) override {}
    void SetProperty(graph::PropEnum id, const Var& value) override { properties_[graph::Key(id)] = value; }
    Var GetProperty(graph::PropEnum id, int) const override {
        const auto own = properties_.find(graph::Key(id));
        return own == properties_.end() ? Var() : own->second;
    }
    graph::LookupTable* GetLookupTable() const override { return nullptr; }
    String ToDebugString() const override { return String(); }

private:
    std::vector<Counted<graph::Instance>> children_;
    std::map<int, Var> properties_;
};

/// Walks an endless tree: each position has `width` children. Counts how often it was asked for an instance.
class FakeTraverser final : public graph::Selector::Traverser {
public:
    explicit FakeTraverser(int width, int* asked = nullptr) : width_(width), asked_(asked) {}

    Counted<graph::Instance> GetInstance() override {
        if (asked_) ++*asked_;
        if (!instance_) instance_ = Make<FakeInstance>();
        return instance_;
    }
    Counted<Traverser> CreateChild(graph::Instance*) override { return {}; }
    Counted<Traverser> GetParent() override { return {}; }
    int GetChildCount() const override { return width_; }
    Counted<Traverser> GetChild(int index) override {
        return index < width_ ? Counted<Traverser>(Make<FakeTraverser>(width_, asked_))
                              : Counted<Traverser>();
    }
    bool IsValid() const override { return valid; }
    void ApplyElementChanges(k3::Node*, const String&, std::map<graph::PersistentSelector*, k3::Node*>&,
                             std::map<graph::PersistentSelector*, k3::Node*>&) override {}
    void StoreElementChanges(k3::Node*) override {}
    void SetProperty(graph::PropEnum id, const Var& value) override { properties[graph::Key(id)] = value; }
    Var GetProperty(graph::PropEnum id, int) const override {
        const auto own = properties.find(graph::Key(id));
        return own == properties.end() ? Var() : own->second;
    }
    graph::LookupTable* GetLookupTable() const override { return nullptr; }
    String ToDebugString() const override { return String(); }

    bool valid = true;
    std::map<int, Var> properties;

private:
    int width_;
    int* asked_;
    Counted<graph::Instance> instance_;
};

}  // namespace qn::test
