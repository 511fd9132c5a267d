#include "tool/validity.h"

#include "frame/host/parameter_ids.h"
#include "product/effectivity.h"
#include "tool/invalid_paths.h"
#include "tool/structure_counts.h"

#include <map>

namespace assembly::tool {
namespace {

using qn::k3::Effectivity;

bool ContainsDate(const Effectivity& ranges, std::int64_t date) {
    const unsigned count = ranges.GetDateCount();
    for (unsigned i = 0; i < count; ++i)
        if (ranges.GetDateStart(i) <= date && date <= ranges.GetDateEnd(i)) return true;
    return count == 0;
}

bool ContainsLine(const Effectivity& ranges, std::int32_t line) {
    const unsigned count = ranges.GetLineCount();
    for (unsigned i = 0; i < count; ++i)
        if (ranges.GetLineStart(i) <= line && line <= ranges.GetLineEnd(i)) return true;
    return count == 0;
}

/// Copies what is valid, definitions in the order in which a walk meets them.
class Filter {
public:
    Filter(const Structure& from, const InvalidPaths& paths, const Validity& validity)
        : from_(from), paths_(paths), validity_(validity) {
        to_.table = from.table;
        to_.sources = from.sources;
    }

    Structure Run() {
        for (std::size_t i = 0; i < from_.roots.size(); ++i) {
            if (!CopyUse(from_.roots[i], paths_.OfRoot(i), to_.roots)) continue;
            to_.tops.push_back(from_.tops[i]);
        }
        for (std::size_t read = 0; read < sources_.size(); ++read)
            CopyUses(read);
        CountStructure(to_);
        return std::move(to_);
    }

private:
    /// A definition of the old structure, seen from one marked place or from everywhere else.
    using Source = std::pair<std::uint32_t, std::uint32_t>;

    std::uint32_t IndexOf(const Source& source) {
        const auto [entry, isNew] =
            known_.emplace(source, static_cast<std::uint32_t>(to_.definitions.size()));
        if (isNew) {
            const Definition& old = from_.definitions[source.first];
            Definition& copy = to_.definitions.emplace_back(old);
            copy.firstUse = copy.useCount = 0;
            copy.usedBy = copy.occurrences = 0;
            sources_.push_back(source);
        }
        return entry->second;
    }

    bool CopyUse(const Use& use, std::uint32_t place, std::vector<Use>& uses) {
        if (paths_.IsInvalid(place) || (use.instance && !validity_.Allows(*use.instance))) return false;
        Use copy = use;
        copy.definition = IndexOf({use.definition, place});
        uses.push_back(std::move(copy));
        return true;
    }

    void CopyUses(std::size_t index) {
        const auto [source, place] = sources_[index];
        const Definition& old = from_.definitions[source];
        const auto first = static_cast<std::uint32_t>(to_.uses.size());
        for (std::uint32_t u = 0; u < old.useCount; ++u) {
            const Use& use = from_.uses[old.firstUse + u];
            if (CopyUse(use, paths_.Below(place, use.instance), to_.uses))
                ++to_.definitions[to_.uses.back().definition].usedBy;
        }
        Definition& definition = to_.definitions[index];
        definition.firstUse = first;
        definition.useCount = static_cast<std::uint32_t>(to_.uses.size()) - first;
        definition.emptied = definition.useCount == 0 && old.useCount > 0;
    }

    const Structure& from_;
    const InvalidPaths& paths_;
    const Validity& validity_;
    Structure to_;
    std::vector<Source> sources_;  // of each new definition
    std::map<Source, std::uint32_t> known_;
};

}  // namespace

bool Validity::Allows(const qn::Extension& holder) const {
    const auto* ranges = qn::Cast<Effectivity>(holder.GetParamVar(qn::Param::kEffectivity));
    if (!ranges) return true;
    return (!date || ContainsDate(*ranges, *date)) && (!line || ContainsLine(*ranges, *line));
}

Structure OnlyValid(const Structure& structure, qn::k3::Scene& scene, const Validity& validity) {
    const InvalidPaths paths(structure, scene, validity);
    return Filter(structure, paths, validity).Run();
}

}  // namespace assembly::tool
