#pragma once

#include "frame/host/counted.h"
#include "frame/host/node.h"
#include "frame/host/selector.h"
#include "graph/graph.h"
#include "graph/instance.h"

#include <functional>
#include <map>
#include <set>

namespace qn::graph {

/// A node as key of an ordered container: the plain address decides, a weak holder beside it tells whether it is alive.
struct NodeKey {
    k3::Node* address = nullptr;
    Weak<k3::Node> live;

    explicit NodeKey(k3::Node* node) : address(node), live(node) {}
};

/// Address order; works on keys and plain pointers.
struct NodeKeyLess {
    using is_transparent = void;
    static const k3::Node* Address(const NodeKey& key) { return key.address; }
    static const k3::Node* Address(const k3::Node* node) { return node; }
    template <class A, class B>
    bool operator()(const A& left, const B& right) const {
        return std::less<const k3::Node*>()(Address(left), Address(right));
    }
};

/// The nodes that show one instance, in address order; dead ones count as absent.
using NodeSet = std::set<NodeKey, NodeKeyLess>;

/// One instance per node. A dead node's entry counts as absent; an insert at a reused address replaces it.
class NodeToInstance {
public:
    /// Borrowed, or null.
    Instance* Find(const k3::Node* node) const;
    void Set(k3::Node* node, Instance* instance);
    void Clear() { entries_.clear(); }
    std::size_t Size() const { return entries_.size(); }
    /// Live entries in address order: `visit(Node*, Instance*)`.
    template <class Visit>
    void ForEach(Visit&& visit) const {
        for (const auto& [key, instance] : entries_)
            if (k3::Node* node = key.live.Get()) visit(node, instance.Get());
    }

private:
    std::map<NodeKey, Counted<Instance>, NodeKeyLess> entries_;
};

/// The nodes of each instance.
class InstanceToNodes {
public:
    void Add(Instance* instance, k3::Node* node);
    /// The live nodes in address order; empty if there is no entry.
    std::vector<k3::Node*> NodesOf(Instance* instance) const;
    /// Whether there is an entry, even one of dead nodes.
    bool Contains(Instance* instance) const;
    void Clear() { entries_.clear(); }

private:
    struct Less {
        bool operator()(const Counted<Instance>& left, const Counted<Instance>& right) const {
            return std::less<Instance*>()(left.Get(), right.Get());
        }
    };
    std::map<Counted<Instance>, NodeSet, Less> entries_;
};

}  // namespace qn::graph
