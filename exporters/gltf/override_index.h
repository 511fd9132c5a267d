#pragma once

#include "exporters/gltf/export_model.h"

#include <cstdint>
#include <span>
#include <unordered_map>
#include <vector>

namespace qn::gltf_export {

/// What overrides say of an occurrence; null where they say nothing. Borrowed from the model.
struct OverridesOfOne {
    const OverrideRow* name = nullptr;
    const OverrideRow* place = nullptr;
};

/// Finds the overrides that fit an occurrence without going through all of them: their paths, read upwards,
/// are a tree whose branches are uses.
class OverrideIndex {
public:
    explicit OverrideIndex(const ExportModel& model);

    /// `path`: uses from a root's down to that of the occurrence. Of the overrides that fit it the one with
    /// the longest path counts, of those as long the last.
    OverridesOfOne Find(std::span<const std::uint32_t> path) const;

private:
    using Branch = std::uint64_t;  ///< number of a stem and, in the low half, the use above it

    static Branch BranchOf(std::uint32_t stem, std::uint32_t use) { return Branch{stem} << 32 | use; }

    std::vector<OverridesOfOne> stems_;  ///< overrides whose paths end here; the first stem has none
    std::unordered_map<Branch, std::uint32_t> branches_;  ///< to the stem that begins there
};

}  // namespace qn::gltf_export
