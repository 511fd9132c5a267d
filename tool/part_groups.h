#pragma once

#include "tool/structure.h"

#include <cstdint>
#include <span>
#include <vector>

namespace assembly::tool {

/// The uses of one definition within one parent.
struct PartGroup {
    std::uint32_t definition = 0;
    std::span<const Use* const> uses;  ///< in the order of the parent; their count is the quantity
};

/// The uses within each definition, put together by definition, in the order of the first use. Costs by
/// definitions and uses.
class PartGroups {
public:
    /// Borrows the structure.
    explicit PartGroups(const Structure& structure);

    std::span<PartGroup> Roots() { return Span(spans_.size() - 1); }
    std::span<PartGroup> Of(std::uint32_t definition) { return Span(definition); }

private:
    struct Range {
        std::size_t first = 0, count = 0;
    };
    std::span<PartGroup> Span(std::size_t parent) {
        return std::span(groups_).subspan(spans_[parent].first, spans_[parent].count);
    }
    void Add(const Use* uses, std::size_t count);

    std::vector<const Use*> uses_;  // never grows beyond what it reserved: groups point into it
    std::vector<PartGroup> groups_;
    std::vector<Range> spans_;          // for each definition, then for the roots
    std::vector<std::uint32_t> group_;  // of each definition in the present parent
    std::vector<std::size_t> counts_;   // of each group of the present parent
};

/// All uses of each definition, roots included, in the order of the structure.
class UsesByDefinition {
public:
    explicit UsesByDefinition(const Structure& structure);

    std::span<const Use* const> Of(std::uint32_t definition) const {
        return std::span(uses_).subspan(first_[definition], first_[definition + 1] - first_[definition]);
    }

private:
    std::vector<const Use*> uses_;
    std::vector<std::size_t> first_;
};

}  // namespace assembly::tool
