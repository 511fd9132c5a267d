#pragma once

#include "tests/support/inert_instance.h"

namespace qn::test {

/// An instance of another module: right class, wrong implementation. Counts what it is asked to do.
class ForeignInstance final : public InertInstance {
public:
    using InertInstance::InertInstance;

    void ResolveSelectors(bool, Var*) override { ++resolved; }
    void StoreSelectors(bool, Var*) override { ++stored; }
    void SetProperty(graph::PropEnum, const Var&) override { ++written; }
    String ToDebugString() const override { return L"<foreign>"; }

    int resolved = 0, stored = 0, written = 0;
};

}  // namespace qn::test
