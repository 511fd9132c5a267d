#include "tool/occurrence_walk.h"

namespace assembly::tool {

Occurrence OccurrenceWalk::Enter(Level& level) {
    const Use& use = level.first[level.next++];
    const bool isRoot = path_.size() == 1;
    const Level* above = isRoot ? nullptr : &path_[path_.size() - 2];
    level.current = &use;
    level.number = next_++;

    const Override* place = use.overrides.empty() ? nullptr : FindPlace(use);
    const Override* name = use.overrides.empty() ? nullptr : FindName(use);
    const qn::Matrix4<double>& local = place ? place->local : use.local;
    if (above)
        level.world.SetMul(local, above->world);
    else
        level.world = local;

    Occurrence occurrence;
    occurrence.use = &use;
    occurrence.definition = &structure_.definitions[use.definition];
    occurrence.name = name ? name->name : use.name;
    occurrence.world = &level.world;
    occurrence.level = static_cast<std::uint32_t>(path_.size());
    occurrence.lastSibling = level.next == level.count;
    occurrence.number = level.number;
    occurrence.parent = above ? above->number : level.number;
    return occurrence;
}

bool OccurrenceWalk::Matches(const Override& override) const {
    if (override.path.size() > path_.size()) return false;
    auto level = path_.rbegin();
    for (auto wanted = override.path.rbegin(); wanted != override.path.rend(); ++wanted, ++level)
        if (!level->current || level->current->instance != *wanted) return false;
    return true;
}

const Override* OccurrenceWalk::FindName(const Use& use) const {
    const Override* best = nullptr;
    for (const Override& candidate : use.overrides)
        if (!candidate.name.empty() && (!best || candidate.path.size() >= best->path.size()) &&
            Matches(candidate))
            best = &candidate;
    return best;
}

const Override* OccurrenceWalk::FindPlace(const Use& use) const {
    const Override* best = nullptr;
    for (const Override& candidate : use.overrides)
        if (candidate.moved && (!best || candidate.path.size() >= best->path.size()) && Matches(candidate))
            best = &candidate;
    return best;
}

}  // namespace assembly::tool
