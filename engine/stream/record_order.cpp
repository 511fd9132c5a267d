#include "engine/stream/record_order.h"

namespace qn::scene_file {

std::vector<std::uint32_t> OrderFrom(const ReferenceGraph& graph, std::uint32_t root) {
    struct Step {
        std::uint32_t object;
        std::uint32_t next;  // the target to look at
    };
    std::vector<std::uint32_t> order;
    order.reserve(graph.GetCount());
    std::vector<bool> entered(graph.GetCount());
    std::vector<Step> walk{{root, 0}};
    entered[root] = true;
    while (!walk.empty()) {
        Step& step = walk.back();
        const auto targets = graph.TargetsOf(step.object);
        while (step.next < targets.size() && entered[targets[step.next]])
            ++step.next;
        if (step.next == targets.size()) {
            order.push_back(step.object);
            walk.pop_back();
        } else {
            const std::uint32_t target = targets[step.next++];
            entered[target] = true;
            walk.push_back({target, 0});
        }
    }
    return order;
}

}  // namespace qn::scene_file
