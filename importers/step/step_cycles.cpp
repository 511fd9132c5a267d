#include "importers/step/step_cycles.h"

#include "importers/step/part21_error.h"

#include <algorithm>

namespace qn::step {
namespace {

/// So many names of a chain are shown; the rest is counted.
constexpr std::size_t kLongestChainShown = 20;

enum class Mark : unsigned char { kUnseen, kOnPath, kDone };

struct Step {
    std::size_t definition;
    std::size_t nextUse;
};

std::string NameOf(const Definition& definition) {
    return "\"" + definition.name + "\" (#" + std::to_string(definition.entity) + ")";
}

[[noreturn]] void RefuseChain(const StepModel& model, const std::vector<Step>& path, std::size_t closing) {
    const auto first =
        std::find_if(path.begin(), path.end(), [&](const Step& step) { return step.definition == closing; });
    std::string chain;
    std::size_t shown = 0;
    for (auto step = first; step != path.end() && shown < kLongestChainShown; ++step, ++shown)
        chain += NameOf(model.definitions[step->definition]) + " > ";
    const auto length = static_cast<std::size_t>(path.end() - first);
    if (length > shown) chain += "(" + std::to_string(length - shown) + " more) > ";
    throw ReadFailure("the product structure is cyclic: " + chain + NameOf(model.definitions[closing]));
}

}  // namespace

void RefuseCycles(const StepModel& model) {
    std::vector<Mark> marks(model.definitions.size(), Mark::kUnseen);
    std::vector<Step> path;
    for (std::size_t start = 0; start < marks.size(); ++start) {
        if (marks[start] != Mark::kUnseen) continue;
        marks[start] = Mark::kOnPath;
        path.push_back({start, 0});
        while (!path.empty()) {
            Step& step = path.back();
            const auto& uses = model.definitions[step.definition].uses;
            if (step.nextUse == uses.size()) {
                marks[step.definition] = Mark::kDone;
                path.pop_back();
                continue;
            }
            const std::size_t child = model.uses[uses[step.nextUse++]].child;
            if (marks[child] == Mark::kOnPath) RefuseChain(model, path, child);
            if (marks[child] == Mark::kDone) continue;
            marks[child] = Mark::kOnPath;
            path.push_back({child, 0});
        }
    }
}

}  // namespace qn::step
