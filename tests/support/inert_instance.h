#pragma once

#include "graph/instance.h"

namespace qn::test {

/// A use that is no `InstanceImpl`: it has a definition and does nothing.
class InertInstance : public graph::Instance {
public:
    explicit InertInstance(graph::Reference* reference = nullptr) : reference_(reference) {}

    graph::Reference* GetReference() const override { return reference_.Get(); }
    graph::Reference* GetParentReference() const override { return nullptr; }
    int GetSelectorCount() const override { return 0; }
    graph::Selector GetSelector(int) const override { return {}; }
    void RemoveSelector(int) override {}
    void AddSelector(const graph::Selector&) override {}
    void ResolveSelectors(bool, Var*) override {}
    void StoreSelectors(bool, Var*) override {}
    void ResolveSelector(graph::PersistentSelectorImpl*, String*, graph::LookupTableImpl*,
                         graph::PersistentSelectorImpl*, bool) override {}
    void AddLocalSelector(const graph::Selector&) override {}

    void SetProperty(graph::PropEnum, const Var&) override {}
    Var GetProperty(graph::PropEnum, int) const override { return {}; }
    graph::LookupTable* GetLookupTable() const override { return nullptr; }
    String ToDebugString() const override { return {}; }

protected:
    Counted<graph::Reference> reference_;
};

}  // namespace qn::test
