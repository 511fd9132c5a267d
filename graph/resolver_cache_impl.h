#pragma once

#include "graph/resolver_cache.h"

#include <functional>
#include <set>

namespace qn::graph {

/// The class behind "qn.graph.resolvercache", which is in no catalogue.
class ResolverCacheImpl final : public ResolverCache {
public:
    bool ContainsInstance(Instance* instance) const override;
    bool ContainsOther(void* object) const override;
    void AddInstance(Instance* instance) override;
    void AddOther(void* object) override;

    /// Copies neither set.
    ResultEnum CopyFrom(const Interface* source, unsigned flags) override;
    const char* GetInterfaceName() const override { return ClassKey::kResolverCache; }
    bool IsTypeOf(const char* name) const override;

    static const ClassRecord& StaticClass();
    void* CastTo(const ClassRecord& wanted) override {
        return CastThrough<ResolverCacheImpl, ResolverCache>(this, wanted);
    }

private:
    std::set<Instance*, std::less<>> instances_;
    std::set<void*, std::less<>> others_;
};

}  // namespace qn::graph
