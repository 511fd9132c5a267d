#pragma once

#include "frame/host/property_ids.h"

#include <cstdint>
#include <initializer_list>

namespace qn::graph {

/// A set of property numbers, one bit each.
class PropertySet {
public:
    constexpr PropertySet() = default;
    constexpr PropertySet(std::initializer_list<PropEnum> ids) {
        for (const PropEnum id : ids)
            bits_ |= Bit(id);
    }
    constexpr bool Has(PropEnum id) const { return (bits_ & Bit(id)) != 0; }

private:
    static constexpr std::uint64_t Bit(PropEnum id) { return std::uint64_t{1} << Key(id); }
    std::uint64_t bits_ = 0;
};

static_assert(kLastProp < 64);

/// Calls `visit(PropEnum)` for every property number in rising order, but for those in `skipped`.
template <class Visit>
void ForEachProperty(PropertySet skipped, Visit&& visit) {
    for (int number = kFirstProp; number <= kLastProp; ++number)
        if (const PropEnum id{number}; !skipped.Has(id)) visit(id);
}

}  // namespace qn::graph
