#include "graph/metadata_filter.h"

#include "frame/host/collections.h"

#include <vector>

namespace qn::graph {

namespace {

std::vector<Var> RepeatedKeys(const VarMap& group, const VarMap& base) {
    std::vector<Var> keys;
    for (int i = 0; i < group.GetCount(); ++i) {
        const Var* known = base.Lookup(group.KeyAt(i));
        if (known && *known == group.ValueAt(i)) keys.push_back(group.KeyAt(i));
    }
    return keys;
}

}  // namespace

bool RemoveRepeatedMetadata(Var& metadata, const Var& base) {
    const VarMap* groups = metadata.ToMap();
    const VarMap* baseGroups = base.ToMap();
    if (!groups || !baseGroups) return false;
    Var filtered;
    for (int i = 0; i < groups->GetCount(); ++i) {
        const VarMap* group = groups->ValueAt(i).ToMap();
        const Var* baseValue = baseGroups->Lookup(groups->KeyAt(i));
        const VarMap* baseGroup = baseValue ? baseValue->ToMap() : nullptr;
        if (!group || !baseGroup) continue;
        for (const Var& key : RepeatedKeys(*group, *baseGroup)) {
            if (filtered.IsEmpty()) filtered = metadata, filtered.MakeUnique(1);
            filtered.At(groups->KeyAt(i)).Remove(key);
        }
    }
    if (filtered.IsEmpty()) return false;
    metadata = filtered;
    return true;
}

}  // namespace qn::graph
