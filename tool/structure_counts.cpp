#include "tool/structure_counts.h"

#include "tool/failure.h"

#include <algorithm>
#include <limits>
#include <string>
#include <vector>

namespace assembly::tool {
namespace {

constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();

[[noreturn]] void FailOnCount() {
    throw Failure(ExitCode::kLimit, "the assembly has more occurrences than can be counted (2^64 - 1)");
}

[[noreturn]] void FailOnRing(const Structure& structure, const std::vector<std::uint32_t>& pending) {
    std::string names;
    for (std::size_t i = 0; i < structure.definitions.size(); ++i)
        if (pending[i] > 0 && structure.definitions[i].useCount > 0)
            names += (names.empty() ? "" : ", ") + ("\"" + structure.definitions[i].name + "\"");
    throw Failure(ExitCode::kUnreadable, "a definition contains itself; the ring stands among " + names);
}

/// Definitions with users before used (Kahn's order).
void SortDefinitions(Structure& structure) {
    std::vector<std::uint32_t> pending(structure.definitions.size());
    for (const Use& use : structure.uses)
        ++pending[use.definition];
    for (std::uint32_t i = 0; i < pending.size(); ++i)
        if (pending[i] == 0) structure.order.push_back(i);
    for (std::size_t at = 0; at < structure.order.size(); ++at) {
        const Definition& definition = structure.definitions[structure.order[at]];
        for (std::uint32_t u = 0; u < definition.useCount; ++u) {
            const std::uint32_t used = structure.uses[definition.firstUse + u].definition;
            if (--pending[used] == 0) structure.order.push_back(used);
        }
    }
    if (structure.order.size() != structure.definitions.size()) FailOnRing(structure, pending);
}

void CountBelow(Structure& structure) {
    for (auto at = structure.order.rbegin(); at != structure.order.rend(); ++at) {
        Definition& definition = structure.definitions[*at];
        definition.expanded = 1, definition.depth = 1;
        for (std::uint32_t u = 0; u < definition.useCount; ++u) {
            const Definition& used =
                structure.definitions[structure.uses[definition.firstUse + u].definition];
            definition.expanded = AddCounts(definition.expanded, used.expanded);
            definition.depth = std::max(definition.depth, used.depth + 1);
        }
        structure.widest = std::max(structure.widest, definition.useCount);
    }
}

void CountOccurrences(Structure& structure) {
    for (const Use& root : structure.roots) {
        Definition& definition = structure.definitions[root.definition];
        ++definition.occurrences;
        structure.occurrences = AddCounts(structure.occurrences, definition.expanded);
        structure.depth = std::max(structure.depth, definition.depth);
    }
    for (const std::uint32_t index : structure.order) {
        const Definition& definition = structure.definitions[index];
        for (std::uint32_t u = 0; u < definition.useCount; ++u) {
            Definition& used = structure.definitions[structure.uses[definition.firstUse + u].definition];
            used.occurrences = AddCounts(used.occurrences, definition.occurrences);
        }
        if (IsPart(definition)) structure.leafOccurrences += definition.occurrences;
    }
    structure.instances = structure.uses.size();
}

}  // namespace

std::uint64_t AddCounts(std::uint64_t left, std::uint64_t right) {
    if (right > kMost - left) FailOnCount();
    return left + right;
}

std::uint64_t MultiplyCounts(std::uint64_t left, std::uint64_t right) {
    if (right != 0 && left > kMost / right) FailOnCount();
    return left * right;
}

void CountStructure(Structure& structure) {
    SortDefinitions(structure);
    CountBelow(structure);
    CountOccurrences(structure);
}

}  // namespace assembly::tool
