#include "graph/resolver_cache_impl.h"

namespace qn::graph {

const ClassRecord& ResolverCacheImpl::StaticClass() {
    static const ClassRecord& record = InternClass("qn::graph::ResolverCacheImpl");
    return record;
}

bool ResolverCacheImpl::ContainsInstance(Instance* instance) const {
    return instances_.count(instance) != 0;
}

bool ResolverCacheImpl::ContainsOther(void* object) const {
    return others_.count(object) != 0;
}

void ResolverCacheImpl::AddInstance(Instance* instance) {
    instances_.insert(instance);
}

void ResolverCacheImpl::AddOther(void* object) {
    others_.insert(object);
}

ResultEnum ResolverCacheImpl::CopyFrom(const Interface* source, unsigned flags) {
    const auto* other = Cast<ResolverCache>(source);
    return other ? Interface::CloneFrom(*other, flags) : ResultEnum::kWrongClass;
}

bool ResolverCacheImpl::IsTypeOf(const char* name) const {
    return EqualKeys(name, ClassKey::kResolverCache) || Extension::IsTypeOf(name);
}

}  // namespace qn::graph
