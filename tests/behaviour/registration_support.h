#pragma once

#include "tests/behaviour/element_support.h"

namespace qn::test {

inline Counted<graph::Reference> WithServerId(const wchar_t* id) {
    auto reference = NewReference();
    reference->SetProperty(graph::Prop::kBsId, Var(id));
    return reference;
}

/// A new use of `used` that is a child of `parent`.
inline Counted<graph::Instance> AddUse(graph::Reference& parent, graph::Reference& used) {
    auto use = used.CreateInstance();
    parent.AddChild(use.Get());
    return use;
}

/// The local id.
inline Var IdOf(const graph::HierarchyElement& element) {
    return element.GetProperty(graph::Prop::kLocalId, 0);
}

inline bool IsRegistered(graph::LookupTable& table, graph::Instance* instance) {
    return table.IsSelectorPathValid(PathOf({instance}));
}

}  // namespace qn::test
