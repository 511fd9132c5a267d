#pragma once

#include "graph/instance_impl.h"
#include "graph/reference_impl.h"

#include <unordered_set>
#include <vector>

namespace qn::graph {

/// The recursive part of resolving and storing selectors: parents first, children in order, with a stack of
/// its own.
///
/// `Work` gives `Own(InstanceImpl&)` and `Own(ReferenceImpl&)`, the work on one element;
/// `Foreign(Reference&)` for a definition of another class; and `Meet(Instance*)`, true for an instance that
/// was not met before, which it marks. A definition is worked on for each use that is met; its children are
/// looked through once it was finished no more, since all of them have been met.
template <class Work>
class SelectorWalk {
public:
    explicit SelectorWalk(Work& work) : work_(work) {}

    /// The children of `root` and all below; not `root`'s own work.
    void Below(ReferenceImpl& root) {
        Push(root);
        while (!stack_.empty())
            Step();
    }

private:
    struct Frame {
        Counted<ReferenceImpl> reference;
        int next = 0;
    };

    void Push(ReferenceImpl& reference) {
        if (reference.GetChildCount() > 0 && finished_.count(&reference) == 0)
            stack_.push_back({Counted<ReferenceImpl>(&reference)});
    }

    void Step() {
        Frame& frame = stack_.back();
        const Counted<Instance> child(frame.reference->PeekChild(frame.next++));
        if (!child) {
            finished_.insert(frame.reference.Get());
            stack_.pop_back();
            return;
        }
        if (!work_.Meet(child.Get())) return;
        auto* instance = Cast<InstanceImpl>(child.Get());
        if (!instance) return;
        work_.Own(*instance);
        Enter(instance->GetReference());
    }

    void Enter(Reference* reference) {
        if (auto* impl = Cast<ReferenceImpl>(reference)) {
            work_.Own(*impl);
            Push(*impl);
        } else if (reference) {
            work_.Foreign(*reference);
        }
    }

    Work& work_;
    std::vector<Frame> stack_;
    std::unordered_set<const ReferenceImpl*> finished_;
};

}  // namespace qn::graph
