#pragma once

#include "construction/hierarchy_factory_impl.h"
#include "construction/hierarchy_generator_impl.h"
#include "frame/host/scene.h"
#include "graph/instance_impl.h"
#include "graph/lookup_table_impl.h"
#include "graph/persistent_selector_impl.h"
#include "graph/reference_impl.h"
#include "tests/support/assembly.h"
#include "tests/support/recording_context.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace qn::test {

using graph::Prop::kBsId;
using graph::Prop::kLocalId;
using graph::Prop::kLocalMatrix;
using graph::Prop::kMetadata;
using graph::Prop::kName;

inline Var Shift(double x) {
    return Matrix4<double>::Translation(x, 0, 0);
}
/// The x that a `Shift` moves by.
double ShiftOf(const Var& matrix);
double ShiftOf(const k3::Node& node);

inline std::string Utf8(const Var& value) {
    return value.ToText().ToUtf8();
}
std::string NameOf(const graph::HierarchyElement* element);

/// A map of one entry.
Var MapOf(const wchar_t* key, const Var& value);

/// A new factory.
inline Counted<graph::HierarchyFactoryImpl> Factory() {
    return Make<graph::HierarchyFactoryImpl>();
}

/// A child of `parent` (a scene for a top node) with that name, borrowed.
k3::Node* AddNode(k3::Node& parent, const char* name);

/// "car(chassis,wheel(tyre))": the names of a subtree.
std::string TreeOf(const k3::Node& node);
/// The same of the definitions below a reference, by the names of its children's definitions.
std::string TreeOf(const graph::Reference& reference);

/// The instance that a node carries, borrowed.
graph::Instance* CarriedBy(const k3::Node& node);

/// An instance of a definition with that name, away from tables.
Counted<graph::InstanceImpl> LooseInstance(graph::Reference* reference = nullptr);

/// A position that writes down what it is asked to do.
class FakeTraverser final : public graph::Selector::Traverser {
public:
    explicit FakeTraverser(std::vector<std::string>* log = nullptr) : log_(log) {}

    Counted<graph::Instance> instance;
    std::vector<Counted<FakeTraverser>> children;
    Var properties;        ///< property number to value
    bool refuses = false;  ///< makes no children
    /// Values in the order of writing.
    std::vector<std::pair<int, Var>> writes;
    bool Wrote(graph::PropEnum id) const;
    /// The last value written, empty if there was none.
    Var Written(graph::PropEnum id) const;

    Counted<graph::Instance> GetInstance() override { return instance; }
    Counted<Traverser> CreateChild(graph::Instance* shown) override;
    Counted<Traverser> GetParent() override { return {}; }
    int GetChildCount() const override { return static_cast<int>(children.size()); }
    Counted<Traverser> GetChild(int index) override;
    bool IsValid() const override { return true; }
    void ApplyElementChanges(k3::Node*, const String&, std::map<graph::PersistentSelector*, k3::Node*>&,
                             std::map<graph::PersistentSelector*, k3::Node*>&) override {}
    void StoreElementChanges(k3::Node*) override {}
    void SetProperty(graph::PropEnum id, const Var& value) override;
    Var GetProperty(graph::PropEnum id, int inherit) const override;
    graph::LookupTable* GetLookupTable() const override { return nullptr; }
    String ToDebugString() const override { return String(); }

private:
    std::vector<std::string>* log_;
};

}  // namespace qn::test
