#include "graph/node_maps.h"

#include <algorithm>
#include <functional>

namespace qn::graph {

namespace {

/// Out of order members wait until they are as many as this, and as those in order: sorting then costs little
/// each.
constexpr std::size_t kUnsortedAtMost = 64;

}  // namespace

Instance* NodeToInstance::Find(const k3::Node* node) const {
    const auto found = entries_.find(node);
    return found != entries_.end() && found->second.watch ? found->second.instance.Get() : nullptr;
}

void NodeToInstance::Set(k3::Node* node, Instance* instance) {
    if (!node) return;
    Entry& entry = entries_[node];
    if (!entry.watch) entry.watch = Weak<k3::Node>(node);
    entry.instance = Counted<Instance>(instance);
}

std::vector<NodeToInstance::Row> NodeToInstance::Sorted() const {
    std::vector<Row> rows;
    rows.reserve(entries_.size());
    for (const auto& [address, entry] : entries_)
        if (auto node = entry.watch.Lock()) rows.emplace_back(std::move(node), entry.instance);
    std::sort(rows.begin(), rows.end(), [](const Row& left, const Row& right) {
        return std::less<k3::Node*>()(left.first.Get(), right.first.Get());
    });
    return rows;
}

void NodeSet::Add(k3::Node* node) {
    const std::less<const k3::Node*> before;
    const bool inOrder = sorted_ == members_.size();
    if (inOrder && (members_.empty() || before(members_.back().address, node))) {
        members_.push_back({node, Weak<k3::Node>(node)});
        ++sorted_;
        return;
    }
    const auto end = members_.begin() + static_cast<std::ptrdiff_t>(sorted_);
    const auto place = std::lower_bound(
        members_.begin(), end, node,
        [&](const Member& member, const k3::Node* wanted) { return before(member.address, wanted); });
    if (place != end && place->address == node) {
        if (!place->watch) place->watch = Weak<k3::Node>(node);
        return;
    }
    members_.push_back({node, Weak<k3::Node>(node)});
    if (members_.size() - sorted_ >= std::max(kUnsortedAtMost, sorted_)) Sort();
}

void NodeSet::Sort() const {
    if (sorted_ == members_.size()) return;
    std::stable_sort(members_.begin(), members_.end(), [](const Member& left, const Member& right) {
        return std::less<const k3::Node*>()(left.address, right.address);
    });
    // Of those at one address the last one came last: it replaces the others.
    const auto last =
        std::unique(members_.rbegin(), members_.rend(),
                    [](const Member& left, const Member& right) { return left.address == right.address; });
    members_.erase(members_.begin(), last.base());
    sorted_ = members_.size();
}

std::vector<k3::Node*> NodeSet::Live() const {
    Sort();
    std::vector<k3::Node*> nodes;
    nodes.reserve(members_.size());
    for (const Member& member : members_)
        if (k3::Node* node = member.watch.Get()) nodes.push_back(node);
    return nodes;
}

void InstanceToNodes::Add(Instance* instance, k3::Node* node) {
    if (!instance || !node) return;
    Entry& entry = entries_[instance];
    if (!entry.instance) entry.instance = Counted<Instance>(instance);
    entry.nodes.Add(node);
}

std::vector<k3::Node*> InstanceToNodes::NodesOf(const Instance* instance) const {
    const auto found = entries_.find(instance);
    return found == entries_.end() ? std::vector<k3::Node*>() : found->second.nodes.Live();
}

}  // namespace qn::graph
