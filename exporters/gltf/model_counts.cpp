#include "exporters/gltf/model_counts.h"

namespace qn::gltf_export {
namespace {

/// Definitions with users before used (Kahn's order).
std::vector<std::uint32_t> OrderOf(const ExportModel& model) {
    std::vector<std::uint32_t> pending(model.definitions.size()), order;
    for (const UseRow& use : model.uses)
        if (use.parent != kNone) ++pending[use.definition];
    for (std::uint32_t i = 0; i < pending.size(); ++i)
        if (pending[i] == 0) order.push_back(i);
    for (std::size_t at = 0; at < order.size(); ++at) {
        const DefinitionRow& definition = model.definitions[order[at]];
        for (std::uint32_t u = 0; u < definition.useCount; ++u) {
            const std::uint32_t used = model.uses[definition.firstUse + u].definition;
            if (--pending[used] == 0) order.push_back(used);
        }
    }
    if (order.size() != model.definitions.size())
        throw ExportFailure(Outcome::kUnsayable, "a definition contains itself");
    return order;
}

class Counter {
public:
    explicit Counter(std::uint64_t most) : most_(most) {}

    /// `left + right`, as long as that is no more than is allowed.
    std::uint64_t Sum(std::uint64_t left, std::uint64_t right) const {
        if (left > most_ || right > most_ - left)
            throw ExportFailure(Outcome::kLimit, "the tree has more nodes than the limit of " +
                                                     std::to_string(most_) + " (occurrences)");
        return left + right;
    }

private:
    std::uint64_t most_;
};

}  // namespace

void CountNodes(ExportModel& model, std::uint64_t mostNodes) {
    const Counter counter(mostNodes);
    const std::vector<std::uint32_t> order = OrderOf(model);
    const auto nodesOf = [&](const UseRow& use) {
        return counter.Sum(model.definitions[use.definition].nodes, use.isTwoNodes ? 1 : 0);
    };
    for (auto at = order.rbegin(); at != order.rend(); ++at) {
        DefinitionRow& definition = model.definitions[*at];
        definition.nodes = 1;
        for (std::uint32_t u = 0; u < definition.useCount; ++u)
            definition.nodes = counter.Sum(definition.nodes, nodesOf(model.uses[definition.firstUse + u]));
    }
    for (std::uint32_t i = 0; i < model.rootCount; ++i) {
        const UseRow& root = model.uses[i];
        ++model.definitions[root.definition].occurrences;
        model.nodes = counter.Sum(model.nodes, nodesOf(root));
    }
    for (const std::uint32_t index : order) {
        const DefinitionRow& definition = model.definitions[index];
        for (std::uint32_t u = 0; u < definition.useCount; ++u)
            model.definitions[model.uses[definition.firstUse + u].definition].occurrences +=
                definition.occurrences;
    }
}

}  // namespace qn::gltf_export
