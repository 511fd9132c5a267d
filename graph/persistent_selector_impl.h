#pragma once

#include "frame/host/collections.h"
#include "frame/host/counted.h"
#include "frame/host/selector.h"
#include "graph/instance.h"
#include "graph/persistent_selector.h"

#include <vector>

namespace qn::graph {

/// The stored form of a selector: live (`path` not empty), stored (only `idPath`) or lost (neither), and in
/// every case the attributes. The graph's walks move the path from one form to the other, so the fields are
/// open to them.
class PersistentSelectorImpl final : public PersistentSelector {
public:
    Var GetProperty(PropEnum id, int inherit) const override;
    /// Always null: it belongs to no table.
    LookupTable* GetLookupTable() const override { return nullptr; }
    String ToDebugString() const override { return String(); }
    void SetProperty(PropEnum id, const Var& value) override;
    /// Rebuilds `idPath` from the local ids of the live path elements. One without id leaves it empty; dead
    /// ones are passed over.
    void StorePath();

    /// Attributes in chunk 0x1000, the live elements of `path` in chunk 0x1001; `idPath` has no chunk.
    ResultEnum Save(Stream* stream, Context* context) override;
    ResultEnum HandleChunk(int id, Stream* stream, Context* context) override;
    /// Parameters and metadata of another persistent selector; its path and attributes stay behind.
    ResultEnum CopyFrom(const Interface* source, unsigned flags) override;
    const char* GetInterfaceName() const override { return ClassKey::kPersistentSelector; }
    bool IsTypeOf(const char* name) const override;
    static const ClassRecord& StaticClass() {
        static const ClassRecord& record = InternClass("qn::graph::PersistentSelectorImpl");
        return record;
    }
    void* CastTo(const ClassRecord& wanted) override {
        return CastThrough<PersistentSelectorImpl, PersistentSelector>(this, wanted);
    }

    Var attributes;                    ///< empty, or a map from property number to value
    Var idPath;                        ///< empty, or an array of local ids, first path element first
    std::vector<Weak<Instance>> path;  ///< first path element first
};

/// The selector with the attributes (shared) and the live path of `source`, dead elements as null; ids are
/// not read. Without path or attributes if `source` is null or foreign.
Selector SelectorFromPersistent(PersistentSelector* source);

/// The path as weak links, and a private copy of every property that the selector itself answers. Null for an
/// empty path.
Counted<PersistentSelector> PersistentFromSelector(const Selector& selector);

/// The selector that an element's property 9 holds, counted, or null.
Counted<PersistentSelectorImpl> LinkOf(const HierarchyElement& element);

/// The selectors at element 0 of the entries of an element's property 0x19, in order, doubles included, nulls
/// left out.
std::vector<Counted<PersistentSelectorImpl>> ListedLinksOf(const HierarchyElement& element);

}  // namespace qn::graph
