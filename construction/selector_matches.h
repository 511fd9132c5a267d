#pragma once

#include "frame/host/selector.h"
#include "graph/instance.h"

#include <map>
#include <span>
#include <utility>
#include <vector>

namespace qn::graph {

/// The persistent selectors of one instance, found by the end of a path. Read once, when made.
class SelectorsByPath {
public:
    explicit SelectorsByPath(Instance* instance);

    /// Calls `visit(const Selector&)` for each selector whose path ends `path`: the shortest path first,
    /// those of one path in the instance's order. So what says most is said last.
    template <class Visit>
    void ForEachMatch(std::span<Instance* const> path, Visit&& visit) const {
        std::size_t place = kEmptyPath;
        for (auto element = path.rbegin(); element != path.rend(); ++element) {
            const auto step = steps_.find({place, *element});
            if (step == steps_.end()) return;
            place = step->second;
            for (const Selector& selector : queues_[place])
                visit(selector);
        }
    }

private:
    static constexpr std::size_t kEmptyPath = 0;
    std::size_t PlaceOf(const Selector& selector);

    Counted<Instance> instance_;
    // Paths are read from their end. A place is a path, numbered; a step lengthens it by the element in front
    // of it.
    std::map<std::pair<std::size_t, Instance*>, std::size_t> steps_;
    std::vector<std::vector<Selector>> queues_{1};
};

}  // namespace qn::graph
