#pragma once

#include "graph/persistent_selector_impl.h"
#include "tests/behaviour/element_support.h"

#include <vector>

namespace qn::test {

inline Counted<graph::PersistentSelector> NewStoredSelector() {
    return CreateAs<graph::PersistentSelector>(graph::ClassKey::kPersistentSelector);
}

/// The open fields of a stored selector.
inline graph::PersistentSelectorImpl& FieldsOf(graph::PersistentSelector& selector) {
    return *Cast<graph::PersistentSelectorImpl>(&selector);
}

inline graph::PersistentSelectorImpl& FieldsOf(const Counted<graph::PersistentSelector>& selector) {
    return FieldsOf(*selector);
}

/// The live path with null for each dead element.
inline std::vector<graph::Instance*> PathIn(graph::PersistentSelector& selector) {
    std::vector<graph::Instance*> path;
    for (const auto& element : FieldsOf(selector).path)
        path.push_back(element.Get());
    return path;
}

/// A stored selector of another module: right class, wrong implementation.
class ForeignSelector final : public graph::PersistentSelector {
public:
    void SetProperty(graph::PropEnum, const Var&) override {}
    Var GetProperty(graph::PropEnum, int) const override { return Var(L"foreign"); }
    graph::LookupTable* GetLookupTable() const override { return nullptr; }
    String ToDebugString() const override { return String(); }
};

}  // namespace qn::test
