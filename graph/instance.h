#pragma once

#include "frame/host/hierarchy_element.h"
#include "frame/host/reference_source.h"
#include "frame/host/selector.h"
#include "graph/graph.h"

namespace qn::graph {

/// One use of a definition inside another: held by one parent `Reference`, pointing at the `Reference` that
/// it uses. Class key "qn.graph.instance".
class Instance : public ReferenceSource, public HierarchyElement {
public:
    /// The definition, borrowed, or null.
    virtual Reference* GetReference() const = 0;
    /// The definition that holds this instance, borrowed; null if unset, dead, or read from a file.
    virtual Reference* GetParentReference() const = 0;
    virtual int GetSelectorCount() const = 0;
    /// An invalid selector outside the count, for a missing entry, or without a live table.
    virtual Selector GetSelector(int index) const = 0;
    /// Leaves a gap: callers remove from the end.
    virtual void RemoveSelector(int index) = 0;
    /// Through the table if it is alive, else without one. Nothing happens for an invalid selector.
    virtual void AddSelector(const Selector& selector) = 0;
    /// Turns stored id paths into live ones. With `recurse` the instance must have a reference.
    virtual void ResolveSelectors(bool recurse, Var* cache) = 0;
    /// Rebuilds id paths from live ones. With `recurse` the instance must have a reference.
    virtual void StoreSelectors(bool recurse, Var* visited) = 0;
    /// One selector and, unless `nested`, those that it links to, but not `exclude`. An id that names no live
    /// instance loses the path.
    virtual void ResolveSelector(PersistentSelectorImpl* selector, String* prefix, LookupTableImpl* table,
                                 PersistentSelectorImpl* exclude, bool nested) = 0;
    /// As `AddSelector`, never through the table.
    virtual void AddLocalSelector(const Selector& selector) = 0;

    static const ClassRecord& StaticClass() {
        static const ClassRecord& record = InternClass("qn::graph::Instance");
        return record;
    }
    void* CastTo(const ClassRecord& wanted) override {
        return CastThrough<Instance, ReferenceSource, HierarchyElement>(this, wanted);
    }
};

}  // namespace qn::graph
