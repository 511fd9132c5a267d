#pragma once

#include "frame/host/counted.h"
#include "frame/host/node.h"
#include "graph/graph.h"
#include "graph/instance.h"

#include <cstddef>
#include <unordered_map>
#include <utility>
#include <vector>

namespace qn::graph {

/// One instance per node. Nodes are not counted: a dead node's entry counts as absent, and an entry for a new
/// node at its address replaces it.
class NodeToInstance {
public:
    /// Borrowed, or null.
    Instance* Find(const k3::Node* node) const;
    /// Overwrites; a null node does nothing, a null instance stays as an entry that counts as absent.
    void Set(k3::Node* node, Instance* instance);
    void Clear() { entries_.clear(); }
    void Reserve(std::size_t count) { entries_.reserve(count); }
    /// Dead entries included.
    std::size_t Size() const { return entries_.size(); }
    /// Live entries in address order: `visit(Node*, Instance*)`. The visitor may change the map.
    template <class Visit>
    void ForEach(Visit&& visit) const {
        for (const auto& [node, instance] : Sorted())
            visit(node.Get(), instance.Get());
    }

private:
    struct Entry {
        Weak<k3::Node> watch;
        Counted<Instance> instance;
    };
    using Row = std::pair<Counted<k3::Node>, Counted<Instance>>;
    std::vector<Row> Sorted() const;

    std::unordered_map<const k3::Node*, Entry> entries_;  // asked far more often than walked
};

/// The nodes that show one instance, in address order, each once. Not counted; dead ones count as absent.
class NodeSet {
public:
    void Add(k3::Node* node);
    /// The live nodes in address order, borrowed.
    std::vector<k3::Node*> Live() const;

private:
    struct Member {
        const k3::Node* address;
        Weak<k3::Node> watch;
    };
    void Sort() const;

    // Nodes mostly come in rising order: they are appended, and what came out of order is sorted in when
    // needed.
    mutable std::vector<Member> members_;
    mutable std::size_t sorted_ = 0;  // so many from the start are in order, without doubles
};

/// The nodes of each instance.
class InstanceToNodes {
public:
    /// Nothing happens if either is null.
    void Add(Instance* instance, k3::Node* node);
    /// The live nodes in address order; empty if there is no entry.
    std::vector<k3::Node*> NodesOf(const Instance* instance) const;
    /// Whether there is an entry, even one of dead nodes.
    bool Contains(const Instance* instance) const { return entries_.find(instance) != entries_.end(); }
    void Clear() { entries_.clear(); }
    void Reserve(std::size_t count) { entries_.reserve(count); }
    std::size_t Size() const { return entries_.size(); }

private:
    struct Entry {
        Counted<Instance> instance;
        NodeSet nodes;
    };
    std::unordered_map<const Instance*, Entry> entries_;
};

}  // namespace qn::graph
