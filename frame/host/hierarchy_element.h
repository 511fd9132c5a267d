#pragma once

#include "frame/host/property_ids.h"
#include "frame/host/var.h"

namespace qn::graph {

class LookupTable;

/// What instances, references, selectors and traversers have in common: properties by number.
class HierarchyElement {
public:
    virtual void SetProperty(PropEnum id, const Var& value) = 0;
    /// A copy; empty if missing. What `inherit` (0 or 1) does is the class's own matter.
    virtual Var GetProperty(PropEnum id, int inherit) const = 0;
    /// Borrowed, or null.
    virtual LookupTable* GetLookupTable() const = 0;
    virtual String ToDebugString() const = 0;

    static const ClassRecord& StaticClass() {
        static const ClassRecord& record = InternClass("qn::graph::HierarchyElement");
        return record;
    }
    virtual void* CastTo(const ClassRecord& wanted) { return &wanted == &StaticClass() ? this : nullptr; }

protected:
    ~HierarchyElement() = default;
};

}  // namespace qn::graph
