#pragma once

#include "tool/structure.h"

#include <cstdint>
#include <limits>
#include <string_view>
#include <vector>

namespace assembly::tool {

/// One node of the expanded tree, valid during the visit.
struct Occurrence {
    const Use* use = nullptr;
    const Definition* definition = nullptr;
    std::string_view name;                       ///< of the occurrence; may be empty
    const qn::Matrix4<double>* world = nullptr;  ///< occurrence to scene, millimetres
    std::uint32_t level = 1;                     ///< a root has 1
    bool lastSibling = false;
    std::uint64_t number = 0;  ///< running number, 0 for the first
    std::uint64_t parent = 0;  ///< number of the parent; a root's own number
};

/// Goes over the expanded tree, parents first, siblings in order, without holding more of it than one path.
class OccurrenceWalk {
public:
    static constexpr std::uint32_t kAllLevels = std::numeric_limits<std::uint32_t>::max();

    explicit OccurrenceWalk(const Structure& structure, std::uint32_t levels = kAllLevels)
        : structure_(structure), levels_(levels) {}

    /// Calls `visit(const Occurrence&)` until it answers false.
    template <class Visit>
    void Run(Visit&& visit) {
        Open(structure_.roots.data(), structure_.roots.size());
        while (!path_.empty()) {
            Level& level = path_.back();
            if (level.next == level.count) {
                path_.pop_back();
                continue;
            }
            const Occurrence occurrence = Enter(level);
            if (!visit(occurrence)) return;
            const Definition& definition = *occurrence.definition;
            if (occurrence.level < levels_ && definition.useCount > 0)
                Open(structure_.uses.data() + definition.firstUse, definition.useCount);
        }
    }
    /// Whether the last visited occurrences at each level above were last siblings (for drawing), roots
    /// first.
    bool IsLastAt(std::uint32_t level) const { return path_[level - 1].next == path_[level - 1].count; }

private:
    struct Level {
        const Use* first;
        std::size_t count;
        std::size_t next = 0;
        const Use* current = nullptr;
        qn::Matrix4<double> world;
        std::uint64_t number = 0;
    };
    void Open(const Use* first, std::size_t count) { path_.push_back({first, count, 0, nullptr, {}, 0}); }
    Occurrence Enter(Level& level);
    /// The most specific override of the present path, or null.
    const Override* FindName(const Use& use) const;
    const Override* FindPlace(const Use& use) const;
    bool Matches(const Override& override) const;

    const Structure& structure_;
    std::uint32_t levels_;
    std::uint64_t next_ = 0;
    std::vector<Level> path_;
};

}  // namespace assembly::tool
