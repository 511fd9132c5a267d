#pragma once

#include "frame/host/object3d.h"
#include "graph/instance.h"
#include "graph/lookup_table.h"
#include "graph/reference.h"
#include "tests/support/assembly_shape.h"

#include <string_view>
#include <unordered_map>

namespace qn::k3 {
class Node;
class Scene;
}  // namespace qn::k3

namespace qn::test {

/// How a shape becomes a graph.
struct AssemblyOptions {
    bool table = true;       ///< elements are made through a lookup table, which gives them local ids
    bool serverIds = false;  ///< with a table: definitions get "s:NAME", uses "s:NAME.N" with N from 1
    bool content = false;    ///< definitions without children get an object as target
};

/// A graph of references and instances that was made for a test, by class key. All names are UTF-8. Expects
/// that the keys of the graph are registered (`StaticModule`, `EntryModule` or the loaded module).
class Assembly {
public:
    Assembly(AssemblyShape shape, const AssemblyOptions& options = {});
    Assembly(Assembly&&) = default;
    ~Assembly();

    const AssemblyShape& Shape() const { return shape_; }
    /// Null if it was made without one.
    graph::LookupTable* Table() const { return table_.Get(); }
    graph::Reference* Root() const { return references_[0].Get(); }
    /// The use of the root with which paths start; child of nothing.
    graph::Instance* RootInstance() const { return uses_[0][0].Get(); }
    /// A definition by name; null if there is none.
    graph::Reference* Ref(std::string_view name) const;
    /// The `use`-th use of a definition, counted from 0 in the order of making; null if there is none.
    graph::Instance* At(std::string_view name, int use = 0) const;
    /// The path of definition names from the root on: `Path({"car", "wheel", "tyre"})`. "wheel#2" takes the
    /// third use among the parent's uses of that definition. A name that leads nowhere ends the path with
    /// null.
    graph::Selector Path(std::initializer_list<std::string_view> names) const;

private:
    int Find(std::string_view name) const;
    void MakeReference(const AssemblyOptions& options, const std::string& name);
    void MakeUses(const AssemblyOptions& options, std::size_t parent);
    graph::Instance* MakeUse(const AssemblyOptions& options, std::size_t definition);

    AssemblyShape shape_;
    Counted<graph::LookupTable> table_;
    std::vector<Counted<graph::Reference>> references_;
    std::vector<std::vector<Counted<graph::Instance>>> uses_;
    mutable std::unordered_map<std::string, int>
        numbers_;  // of the definitions by name, made when first asked for
};

/// Describes an assembly as one would say it; `Child` adds below the definition named last in the constructor
/// or `Under`:
///
///     const auto car = AssemblyBuilder("car").Child("chassis").Child("wheel", 4).Under("wheel",
///     "tyre").Build();
class AssemblyBuilder {
public:
    explicit AssemblyBuilder(std::string_view root);
    /// `count` uses of one definition below the root.
    AssemblyBuilder& Child(std::string_view name, int count = 1);
    /// `count` uses of one definition below another. Either is made if it is not there yet; rings are
    /// possible.
    AssemblyBuilder& Under(std::string_view parent, std::string_view name, int count = 1);
    AssemblyBuilder& WithoutTable();
    AssemblyBuilder& WithServerIds();
    AssemblyBuilder& WithContent();

    const AssemblyShape& Shape() const { return shape_; }
    Assembly Build() const { return Assembly(shape_, options_); }

private:
    std::size_t Number(std::string_view name);
    AssemblyShape shape_;
    AssemblyOptions options_;
};

/// The expanded tree of a shape as nodes below a new top node of the scene, borrowed. Nodes have the names of
/// their definitions; child I stands at x = I + 1 in its parent. Nodes of one definition without children
/// share one object.
k3::Node* BuildNodes(const AssemblyShape& shape, k3::Scene& scene);

}  // namespace qn::test
