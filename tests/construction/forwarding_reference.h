#pragma once

#include "graph/instance_impl.h"
#include "graph/post_processing_instruction.h"
#include "graph/reference_impl.h"

#include <functional>

namespace qn::test {

/// A definition that counts how often it is reloaded and asked for links, and can bring something when
/// reloaded. All else is an inner definition's. It is no `ReferenceImpl`, as a definition of another module
/// would be.
class ForwardingReference final : public graph::Reference {
    using Instance = graph::Instance;
    using Selector = graph::Selector;
    using PropEnum = graph::PropEnum;
    using LookupTable = graph::LookupTable;

public:
    const Counted<graph::ReferenceImpl> inner = Make<graph::ReferenceImpl>();
    int reloads = 0;
    mutable int linkQuestions = 0;  ///< how often it was asked whether its target is a link
    /// What a reload does besides being counted.
    std::function<void()> onReload;

    void ReloadExternalTarget() override {
        ++reloads;
        if (onReload) onReload();
    }

    Counted<Instance> CreateInstance() override { return Make<graph::InstanceImpl>(this); }
    Counted<Instance> CreateInstanceWithId(const String& id) override {
        return inner->CreateInstanceWithId(id);
    }
    Counted<Instance> CreateInstanceWithBsId(const String& id, const String& bsId) override {
        return inner->CreateInstanceWithBsId(id, bsId);
    }
    int GetChildCount() const override { return inner->GetChildCount(); }
    Counted<Instance> GetChild(int index) const override { return inner->GetChild(index); }
    void AddChild(Instance* instance) override { inner->AddChild(instance); }
    bool HasChild(Instance* instance) const override { return inner->HasChild(instance); }
    Counted<Reference> CreateCopy() override { return inner->CreateCopy(); }
    void RemoveChild(Instance* instance) override { inner->RemoveChild(instance); }
    void RemoveChildAt(int index) override { inner->RemoveChildAt(index); }
    int GetInstanceCount() const override { return inner->GetInstanceCount(); }
    Counted<Instance> GetInstance(int index) const override { return inner->GetInstance(index); }
    int GetSelectorCount() const override { return inner->GetSelectorCount(); }
    Selector GetSelector(int index) const override { return inner->GetSelector(index); }
    Var GetSelectorPath(int index) const override { return inner->GetSelectorPath(index); }
    void RemoveSelector(int index) override { inner->RemoveSelector(index); }
    void AddSelectorPath(const Var& path) override { inner->AddSelectorPath(path); }
    void AddSelector(const Selector& selector) override { inner->AddSelector(selector); }
    void ResolveSelectors(bool recurse, Var* cache) override { inner->ResolveSelectors(recurse, cache); }
    void StoreSelectors(bool recurse, Var* visited) override { inner->StoreSelectors(recurse, visited); }
    Var GetTarget() const override { return inner->GetTarget(); }
    void SetTarget(const Var& target) override { inner->SetTarget(target); }
    bool HasNoTargetLink() const override {
        ++linkQuestions;
        return inner->HasNoTargetLink();
    }
    Counted<Reference> ResolveTarget(const Var& key) override { return inner->ResolveTarget(key); }
    void CopyContentFrom(Reference* source) override { inner->CopyContentFrom(source); }
    bool IsLeaf() const override { return inner->IsLeaf(); }
    int GetInstructionCount() const override { return inner->GetInstructionCount(); }
    Counted<PostProcessingInstruction> GetInstruction(int index) const override {
        return inner->GetInstruction(index);
    }
    void RemoveInstruction(int index) override { inner->RemoveInstruction(index); }
    Counted<PostProcessingInstruction> AddInstruction() override { return inner->AddInstruction(); }
    void RunInstructions(Extension* target, Context* context) override {
        inner->RunInstructions(target, context);
    }
    void RunAllInstructions(Extension* target, Context* context) override {
        inner->RunAllInstructions(target, context);
    }
    Var CreateResolverCache() override { return inner->CreateResolverCache(); }
    Reference* RegisterInTable(LookupTable* table) override { return inner->RegisterInTable(table); }
    void RunInstructionsRecursive(Extension* target, Context* context,
                                  std::set<Reference*>& visited) override {
        inner->RunInstructionsRecursive(target, context, visited);
    }
    void SetInstanceReference(Instance* instance) override { inner->SetInstanceReference(instance); }
    void ClearInstances() override { inner->ClearInstances(); }
    void AddInstances(const std::vector<Instance*>& instances) override { inner->AddInstances(instances); }

    void SetProperty(PropEnum id, const Var& value) override { inner->SetProperty(id, value); }
    Var GetProperty(PropEnum id, int inherit) const override { return inner->GetProperty(id, inherit); }
    LookupTable* GetLookupTable() const override { return inner->GetLookupTable(); }
    String ToDebugString() const override { return inner->ToDebugString(); }
};

}  // namespace qn::test
