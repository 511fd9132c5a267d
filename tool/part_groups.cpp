#include "tool/part_groups.h"

#include <limits>

namespace assembly::tool {
namespace {

constexpr std::uint32_t kNone = std::numeric_limits<std::uint32_t>::max();

}  // namespace

PartGroups::PartGroups(const Structure& structure) {
    uses_.reserve(structure.uses.size() + structure.roots.size());
    group_.assign(structure.definitions.size(), kNone);
    spans_.reserve(structure.definitions.size() + 1);
    for (const Definition& definition : structure.definitions)
        Add(structure.uses.data() + definition.firstUse, definition.useCount);
    Add(structure.roots.data(), structure.roots.size());
}

void PartGroups::Add(const Use* uses, std::size_t count) {
    const std::size_t first = groups_.size();
    counts_.clear();
    for (std::size_t i = 0; i < count; ++i) {
        std::uint32_t& group = group_[uses[i].definition];
        if (group == kNone) {
            group = static_cast<std::uint32_t>(counts_.size());
            groups_.push_back({uses[i].definition, {}});
            counts_.push_back(0);
        }
        ++counts_[group];
    }
    std::size_t place = uses_.size();
    uses_.resize(place + count);
    for (std::size_t g = 0; g < counts_.size(); ++g) {
        groups_[first + g].uses = std::span(uses_.data() + place, counts_[g]);
        const std::size_t next = place + counts_[g];
        counts_[g] = place;
        place = next;
    }
    for (std::size_t i = 0; i < count; ++i)
        uses_[counts_[group_[uses[i].definition]]++] = &uses[i];
    for (std::size_t g = first; g < groups_.size(); ++g)
        group_[groups_[g].definition] = kNone;
    spans_.push_back({first, groups_.size() - first});
}

UsesByDefinition::UsesByDefinition(const Structure& structure) : first_(structure.definitions.size() + 1) {
    const auto each = [&](auto&& visit) {
        for (const Use& use : structure.roots)
            visit(use);
        for (const Use& use : structure.uses)
            visit(use);
    };
    each([&](const Use& use) { ++first_[use.definition + 1]; });
    for (std::size_t i = 1; i < first_.size(); ++i)
        first_[i] += first_[i - 1];
    uses_.resize(first_.back());
    std::vector<std::size_t> next(first_.begin(), first_.end() - 1);
    each([&](const Use& use) { uses_[next[use.definition]++] = &use; });
}

}  // namespace assembly::tool
