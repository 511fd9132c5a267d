#pragma once

#include "frame/host/counted.h"
#include "graph/instance.h"

#include <memory>
#include <unordered_map>
#include <vector>

namespace qn::graph {

/// The instances inside a definition, in order, counted. Asking whether one is there takes constant time in
/// long lists: fresh objects have rising addresses, and for others an index is built.
class ChildList {
public:
    int GetCount() const { return static_cast<int>(entries_.size()); }
    /// Null outside.
    Instance* Get(int index) const;
    bool Contains(const Instance* instance) const;
    /// The first place of the instance, -1 if there is none.
    int Find(const Instance* instance) const;
    /// No test for doubles.
    void Append(Instance* instance);
    /// Nothing happens outside.
    void RemoveAt(int index);

private:
    /// How often each entry is in the list; there for long lists only.
    using Index = std::unordered_map<const Instance*, int>;
    void BuildIndex() const;

    std::vector<Counted<Instance>> entries_;
    const Instance* highest_ = nullptr;  // no entry ever had a higher address
    mutable std::unique_ptr<Index> index_;
};

}  // namespace qn::graph
