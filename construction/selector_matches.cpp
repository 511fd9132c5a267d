#include "construction/selector_matches.h"

namespace qn::graph {

SelectorsByPath::SelectorsByPath(Instance* instance) : instance_(instance) {
    const int count = instance->GetSelectorCount();
    for (int index = 0; index < count; ++index) {
        Selector selector = instance->GetSelector(index);
        if (const std::size_t place = PlaceOf(selector); place != kEmptyPath)
            queues_[place].push_back(std::move(selector));
    }
}

/// A selector without path matches nothing, and has the place of the empty path.
std::size_t SelectorsByPath::PlaceOf(const Selector& selector) {
    std::size_t place = kEmptyPath;
    for (int index = selector.GetPathElementCount() - 1; index >= 0; --index) {
        Instance* const element = selector.GetPathElement(static_cast<unsigned>(index));
        const auto [step, isNew] = steps_.try_emplace({place, element}, queues_.size());
        if (isNew) queues_.emplace_back();
        place = step->second;
    }
    return place;
}

}  // namespace qn::graph
