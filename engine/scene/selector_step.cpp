#include "engine/scene/selector_step.h"

#include <utility>
#include <vector>

namespace qn::graph {

Selector::Step::Step(std::shared_ptr<Step> up, Instance* element) : above(std::move(up)), instance(element) {
    LinkUp();
}

Selector::Step::Step(std::shared_ptr<Step> up, Traverser* traverser)
    : above(std::move(up)), pending(traverser), origin(traverser) {
    LinkUp();
}

// Paths may be as long as an assembly is deep: the steps above are dropped one after the other.
Selector::Step::~Step() {
    std::shared_ptr<Step> up = std::move(above);
    while (up && up.use_count() == 1) {
        std::shared_ptr<Step> next = std::move(up->above);
        up = std::move(next);
    }
}

void Selector::Step::LinkUp() {
    if (!above) {
        depth = 0;
        jump = this;
        return;
    }
    depth = above->depth + 1;
    const Step& far = *above->jump;
    jump = above->depth - far.depth == far.depth - far.jump->depth ? far.jump : above.get();
}

Instance* Selector::Step::Ask() {
    if (const Counted<Traverser> traverser = std::exchange(pending, {})) instance = traverser->GetInstance();
    return instance.Get();
}

Selector::Step* Selector::Step::At(int index) {
    Step* step = this;
    while (step->depth > index)
        step = step->jump->depth >= index ? step->jump : step->above.get();
    return step;
}

bool Selector::Step::IsComplete() {
    std::vector<Step*> open;
    for (Step* step = this; step && step->complete == Complete::kUnknown; step = step->above.get())
        open.push_back(step);
    while (!open.empty()) {
        Step* step = open.back();
        open.pop_back();
        const bool aboveComplete = !step->above || step->above->complete == Complete::kYes;
        step->complete = aboveComplete && step->Ask() ? Complete::kYes : Complete::kNo;
    }
    return complete == Complete::kYes;
}

}  // namespace qn::graph
