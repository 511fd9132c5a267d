#pragma once

#include "frame/host/selector.h"
#include "graph/instance.h"

#include <memory>

namespace qn::graph {

/// One element of a path. Steps are shared: a selector and those made from it have all steps but the last in
/// common, so going down costs one step. `jump` leads far up, so that any element is reached in a logarithm
/// of the path's length.
struct Selector::Step {
    Step(std::shared_ptr<Step> above, Instance* instance);
    Step(std::shared_ptr<Step> above, Traverser* traverser);
    ~Step();
    Step(const Step&) = delete;
    Step& operator=(const Step&) = delete;

    /// The element, borrowed, or null; asks the traverser the first time.
    Instance* Ask();
    /// The step of the element at `index`, which must be on the path.
    Step* At(int index);
    /// Whether no element from the first one to this is null; each step finds out once.
    bool IsComplete();

    std::shared_ptr<Step> above;
    Step* jump;
    Counted<Instance> instance;
    Counted<Traverser> pending;         // to be asked; null once it was
    const Traverser* origin = nullptr;  // compared, never used
    int depth;                          // of the first element: 0
    enum class Complete : char { kUnknown, kYes, kNo } complete = Complete::kUnknown;

private:
    void LinkUp();
};

}  // namespace qn::graph
