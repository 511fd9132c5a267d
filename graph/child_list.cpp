#include "graph/child_list.h"

#include <algorithm>
#include <functional>

namespace qn::graph {

namespace {

/// Up to here a look through the list is cheaper than an index.
constexpr std::size_t kIndexedFrom = 32;

}  // namespace

Instance* ChildList::Get(int index) const {
    return index >= 0 && index < GetCount() ? entries_[static_cast<std::size_t>(index)].Get() : nullptr;
}

bool ChildList::Contains(const Instance* instance) const {
    if (std::less<>()(highest_, instance)) return false;
    if (entries_.size() < kIndexedFrom) return Find(instance) >= 0;
    if (!index_) BuildIndex();
    return index_->count(instance) != 0;
}

int ChildList::Find(const Instance* instance) const {
    const auto place = std::find(entries_.begin(), entries_.end(), instance);
    return place == entries_.end() ? -1 : static_cast<int>(place - entries_.begin());
}

void ChildList::Append(Instance* instance) {
    entries_.emplace_back(instance);
    highest_ = std::max<const Instance*>(highest_, instance, std::less<>());
    if (index_) ++(*index_)[instance];
}

void ChildList::RemoveAt(int index) {
    if (!Get(index)) return;
    const auto place = entries_.begin() + index;
    if (index_) {
        const auto entry = index_->find(place->Get());
        if (--entry->second == 0) index_->erase(entry);
    }
    const Counted<Instance> last = *place;  // may be its last holder: the list is whole before it goes
    entries_.erase(place);
}

void ChildList::BuildIndex() const {
    index_ = std::make_unique<Index>();
    index_->reserve(entries_.size());
    for (const auto& entry : entries_)
        ++(*index_)[entry.Get()];
}

}  // namespace qn::graph
