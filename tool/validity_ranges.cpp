#include "tool/validity_ranges.h"

#include "frame/host/parameter_ids.h"
#include "graph/node_content.h"
#include "tool/dates.h"
#include "tool/occurrence_path.h"

#include <unordered_set>

namespace assembly::tool {
namespace {

using qn::graph::Instance;
using qn::graph::Reference;
using qn::k3::Effectivity;
using qn::k3::Node;

/// The path of the first occurrence of each definition and use.
class FirstPaths {
public:
    explicit FirstPaths(const Structure& structure)
        : structure_(structure), paths_(structure), above_(structure.definitions.size()) {
        for (const Use& root : structure.roots)
            if (!above_[root.definition].use) above_[root.definition] = {&root, kNone};
        for (const std::uint32_t index : structure.order)
            for (std::uint32_t u = 0; u < structure.definitions[index].useCount; ++u) {
                const Use& use = structure.uses[structure.definitions[index].firstUse + u];
                if (!above_[use.definition].use) above_[use.definition] = {&use, index};
            }
    }

    std::string Of(const Use& use, std::uint32_t parent) {
        std::vector<const Use*> uses{&use};
        while (parent != kNone) {
            uses.push_back(above_[parent].use);
            parent = above_[parent].parent;
        }
        return paths_.PathOf({uses.rbegin(), uses.rend()});
    }

    static constexpr std::uint32_t kNone = ~std::uint32_t{0};

private:
    struct Above {
        const Use* use = nullptr;
        std::uint32_t parent = kNone;
    };
    const Structure& structure_;
    OccurrencePaths paths_;
    std::vector<Above> above_;
};

/// Calls `visit(use, parent definition or kNone, occurrences)` for each use.
template <class Visit>
void ForEachUse(const Structure& structure, Visit&& visit) {
    for (const Use& root : structure.roots)
        visit(root, FirstPaths::kNone, std::uint64_t{1});
    for (std::uint32_t index = 0; index < structure.definitions.size(); ++index) {
        const Definition& definition = structure.definitions[index];
        for (std::uint32_t u = 0; u < definition.useCount; ++u)
            visit(structure.uses[definition.firstUse + u], index, definition.occurrences);
    }
}

const Effectivity* RangesOfUse(const Use& use) {
    return use.instance ? EffectivityOf(*use.instance) : nullptr;
}

/// Calls `visit(Node&)` for each node that the scene shows.
template <class Visit>
void ForEachNode(const qn::k3::Scene& scene, Visit&& visit) {
    for (Node* top = scene.GetFirstChild(); top; top = top->GetNextSibling()) {
        const auto call = [](Node* node, qn::ParamWord argument) {
            (*reinterpret_cast<std::remove_reference_t<Visit>*>(argument))(*node);
            return true;
        };
        top->Visit(0, call, reinterpret_cast<qn::ParamWord>(&visit));
    }
}

const Reference* DefinitionOf(const Node& node) {
    const Instance* instance = qn::graph::CarriedInstance(node);
    return instance ? instance->GetReference() : nullptr;
}

bool HasRanges(const Node& node) {
    if (EffectivityOf(node)) return true;
    const Instance* instance = qn::graph::CarriedInstance(node);
    return instance && EffectivityOf(*instance);
}

void AddUsesWithout(const Structure& structure, std::vector<RangeHolder>& holders) {
    FirstPaths paths(structure);
    for (std::uint32_t index = 0; index < structure.definitions.size(); ++index) {
        const Definition& definition = structure.definitions[index];
        const Use* const first = structure.uses.data() + definition.firstUse;
        std::unordered_set<std::uint32_t> limited;
        for (std::uint32_t u = 0; u < definition.useCount; ++u)
            if (RangesOfUse(first[u])) limited.insert(first[u].definition);
        for (std::uint32_t u = 0; u < definition.useCount && !limited.empty(); ++u)
            if (!RangesOfUse(first[u]) && limited.contains(first[u].definition))
                holders.push_back({true, paths.Of(first[u], index), definition.occurrences, nullptr});
    }
}

/// Of siblings that show one definition, those without, where a node has ranges of its own.
void AddNodesWithout(const qn::k3::Scene& scene, std::vector<RangeHolder>& holders) {
    NodePaths paths;
    std::unordered_set<const Node*> seen;
    ForEachNode(scene, [&](const Node& limited) {
        const Node* const parent = limited.GetParent();
        if (!EffectivityOf(limited) || !DefinitionOf(limited) || !seen.insert(parent).second) return;
        std::unordered_set<const Reference*> definitions;
        for (const Node* node = parent->GetFirstChild(); node; node = node->GetNextSibling())
            if (EffectivityOf(*node) && DefinitionOf(*node)) definitions.insert(DefinitionOf(*node));
        for (const Node* node = parent->GetFirstChild(); node; node = node->GetNextSibling())
            if (!HasRanges(*node) && definitions.contains(DefinitionOf(*node)))
                holders.push_back({false, paths.PathOf(*node), 1, nullptr});
    });
}

std::vector<std::string> DateTexts(const Effectivity& ranges, unsigned index) {
    std::vector<std::string> texts;
    for (unsigned i = 0; i < ranges.GetDateStringCount(index); ++i)
        texts.push_back(ranges.GetDateString(index, i).ToUtf8());
    return texts;
}

std::vector<std::string> LineTexts(const Effectivity& ranges, unsigned index) {
    std::vector<std::string> texts;
    for (unsigned i = 0; i < ranges.GetLineStringCount(index); ++i)
        texts.push_back(ranges.GetLineString(index, i).ToUtf8());
    return texts;
}

}  // namespace

const char* WordOf(ValidityRange::Kind kind) {
    return kind == ValidityRange::Kind::kDate ? "date" : "line";
}

std::string EndText(ValidityRange::Kind kind, std::int64_t end) {
    return kind == ValidityRange::Kind::kDate ? DateText(end) : std::to_string(end);
}

std::vector<ValidityRange> RangesOf(const Effectivity* ranges) {
    std::vector<ValidityRange> all;
    if (!ranges) return all;
    for (unsigned i = 0; i < ranges->GetDateCount(); ++i)
        all.push_back({ValidityRange::Kind::kDate, ranges->GetDateStart(i), ranges->GetDateEnd(i),
                       DateTexts(*ranges, i)});
    for (unsigned i = 0; i < ranges->GetLineCount(); ++i)
        all.push_back({ValidityRange::Kind::kLine, ranges->GetLineStart(i), ranges->GetLineEnd(i),
                       LineTexts(*ranges, i)});
    return all;
}

Effectivity* EffectivityOf(const qn::Extension& holder) {
    return qn::Cast<Effectivity>(holder.GetParamObject(qn::Param::kEffectivity));
}

std::vector<RangeHolder> RangeHolders(const Structure& structure, const qn::k3::Scene& scene) {
    std::vector<RangeHolder> holders;
    FirstPaths paths(structure);
    ForEachUse(structure, [&](const Use& use, std::uint32_t parent, std::uint64_t occurrences) {
        if (const Effectivity* ranges = RangesOfUse(use))
            holders.push_back({true, paths.Of(use, parent), occurrences, ranges});
    });
    NodePaths nodePaths;
    ForEachNode(scene, [&](const Node& node) {
        if (const Effectivity* ranges = EffectivityOf(node))
            holders.push_back({false, nodePaths.PathOf(node), 1, ranges});
    });
    return holders;
}

std::vector<RangeHolder> HoldersWithout(const Structure& structure, const qn::k3::Scene& scene) {
    std::vector<RangeHolder> holders;
    AddUsesWithout(structure, holders);
    AddNodesWithout(scene, holders);
    return holders;
}

}  // namespace assembly::tool
