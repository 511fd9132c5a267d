#pragma once

#include "tool/validity.h"

#include <cstdint>
#include <unordered_map>
#include <vector>

namespace assembly::tool {

/// The occurrences whose nodes are not valid, as paths of uses that share their beginnings.
class InvalidPaths {
public:
    static constexpr std::uint32_t kNone = 0;  ///< a place below which nothing is marked

    /// Looks at every node of the scene that the structure was read from.
    InvalidPaths(const Structure& structure, qn::k3::Scene& scene, const Validity& validity);

    /// The place of a root, by its number in the structure.
    std::uint32_t OfRoot(std::size_t root) const { return roots_[root]; }
    /// The place of a use below another place.
    std::uint32_t Below(std::uint32_t place, const qn::graph::Instance* instance) const;
    bool IsInvalid(std::uint32_t place) const { return places_[place].invalid; }

private:
    using Path = std::vector<const qn::graph::Instance*>;
    struct Place {
        bool invalid = false;
        std::unordered_map<const qn::graph::Instance*, std::uint32_t> below;
    };
    void Mark(const Structure& structure, qn::k3::Node& node);
    void MarkBelowRoot(std::size_t root, const Path& path);

    std::vector<Place> places_;
    std::vector<std::uint32_t> roots_;
    std::unordered_map<const qn::k3::Node*, std::vector<std::size_t>> rootsOfTop_;
    std::unordered_map<const qn::graph::Instance*, std::size_t> rootInContainer_;
};

}  // namespace assembly::tool
