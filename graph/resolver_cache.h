#pragma once

#include "frame/host/extension.h"
#include "graph/graph.h"

namespace qn::graph {

/// Remembers by address what one walk has met; counts nothing, is never stored.
class ResolverCache : public Extension {
public:
    virtual bool ContainsInstance(Instance* instance) const = 0;
    virtual bool ContainsOther(void* object) const = 0;
    virtual void AddInstance(Instance* instance) = 0;
    virtual void AddOther(void* object) = 0;

    static const ClassRecord& StaticClass() {
        static const ClassRecord& record = InternClass("qn::graph::ResolverCache");
        return record;
    }
    void* CastTo(const ClassRecord& wanted) override {
        return CastThrough<ResolverCache, Extension>(this, wanted);
    }
};

}  // namespace qn::graph
