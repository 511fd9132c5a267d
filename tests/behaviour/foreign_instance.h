#pragma once

#include "graph/instance.h"

namespace qn::test {

/// An instance of another module: right class, wrong implementation.
class ForeignInstance final : public graph::Instance {
public:
    explicit ForeignInstance(graph::Reference* reference = nullptr) : reference_(reference) {}

    graph::Reference* GetReference() const override { return reference_.Get(); }
    graph::Reference* GetParentReference() const override { return nullptr; }
    int GetSelectorCount() const override { return 0; }
    graph::Selector GetSelector(int) const override { return {}; }
    void RemoveSelector(int) override {}
    void AddSelector(const graph::Selector&) override {}
    void ResolveSelectors(bool, Var*) override { ++resolved; }
    void StoreSelectors(bool, Var*) override { ++stored; }
    void ResolveSelector(graph::PersistentSelectorImpl*, String*, graph::LookupTableImpl*,
                         graph::PersistentSelectorImpl*, bool) override {}
    void AddLocalSelector(const graph::Selector&) override {}

    void SetProperty(graph::PropEnum, const Var&) override { ++written; }
    Var GetProperty(graph::PropEnum, int) const override { return {}; }
    graph::LookupTable* GetLookupTable() const override { return nullptr; }
    String ToDebugString() const override { return L"<foreign>"; }

    int resolved = 0, stored = 0, written = 0;

private:
    Counted<graph::Reference> reference_;
};

}  // namespace qn::test
