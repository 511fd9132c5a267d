#pragma once

#include "construction/property_copy.h"
#include "construction/selector_matches.h"
#include "frame/host/selector.h"
#include "graph/instance.h"

#include <memory>
#include <unordered_map>

namespace qn::graph {

/// What one generation remembers of an instance: its selectors, read when it is first met, and, once it is
/// met again, what a plain path to it gives a node.
class MetInstance {
public:
    explicit MetInstance(Instance* instance);

    /// Null where there are none.
    const SelectorsByPath* GetSelectors() const { return selectors_.get(); }
    /// Copies to the node of `target` what `source`, whose end this instance is, says. Values of another
    /// `state` of the hierarchy are read again.
    void CopyTo(Selector::Traverser& target, const Selector& source, unsigned state);

private:
    bool KnowsValues(unsigned state);

    Counted<Instance> instance_;
    std::unique_ptr<SelectorsByPath> selectors_;
    PropertyValues values_;
    unsigned state_ = 0;
    enum class Met { kNever, kOnce, kOften } met_ = Met::kNever;
};

/// All instances that one generation meets.
class MetInstances {
public:
    MetInstance& Of(Instance* instance) { return entries_.try_emplace(instance, instance).first->second; }

private:
    std::unordered_map<Instance*, MetInstance> entries_;
};

}  // namespace qn::graph
