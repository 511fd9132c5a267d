#include "exporters/gltf/override_index.h"

namespace qn::gltf_export {

OverrideIndex::OverrideIndex(const ExportModel& model) : stems_(1) {
    for (const OverrideRow& row : model.overrides) {
        std::uint32_t stem = 0;
        for (auto use = row.path.rbegin(); use != row.path.rend(); ++use) {
            const auto [branch, isNew] =
                branches_.emplace(BranchOf(stem, *use), static_cast<std::uint32_t>(stems_.size()));
            if (isNew) stems_.emplace_back();
            stem = branch->second;
        }
        if (!row.name.empty()) stems_[stem].name = &row;
        if (row.isMoved) stems_[stem].place = &row;
    }
}

OverridesOfOne OverrideIndex::Find(std::span<const std::uint32_t> path) const {
    OverridesOfOne found;
    if (branches_.empty()) return found;
    std::uint32_t stem = 0;
    for (auto use = path.rbegin(); use != path.rend(); ++use) {
        const auto branch = branches_.find(BranchOf(stem, *use));
        if (branch == branches_.end()) break;
        stem = branch->second;
        if (stems_[stem].name) found.name = stems_[stem].name;
        if (stems_[stem].place) found.place = stems_[stem].place;
    }
    return found;
}

}  // namespace qn::gltf_export
