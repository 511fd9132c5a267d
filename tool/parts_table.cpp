#include "tool/parts_table.h"

#include "tool/occurrence_walk.h"
#include "tool/structure_counts.h"

#include <algorithm>

namespace assembly::tool {
namespace {

PartsRow RowOf(const PartGroup& group, std::uint32_t level, std::uint64_t parents) {
    PartsRow row;
    row.level = level;
    row.definition = group.definition;
    row.quantity = group.uses.size();
    row.total = MultiplyCounts(row.quantity, parents);
    row.uses = group.uses;
    return row;
}

}  // namespace

PartsTable::PartsTable(const Structure& structure, const PartsOptions& options)
    : structure_(structure), options_(options) {
    switch (options.structure) {
        case PartsStructure::kMulti:
            groups_.emplace(structure);
            break;
        case PartsStructure::kSingle:
            groups_.emplace(structure);
            AddComponentsOfTops();
            break;
        case PartsStructure::kFlat:
            options.level + 1 < structure.depth ? AddPartsDownTo(options.level) : AddParts();
            break;
        case PartsStructure::kOccurrences:
            break;
    }
}

void PartsTable::SortSiblings(const Less& less) {
    const auto sort = [&](std::span<PartGroup> groups) {
        std::stable_sort(groups.begin(), groups.end(), [&](const PartGroup& left, const PartGroup& right) {
            return less(RowOf(left, 0, 1), RowOf(right, 0, 1));
        });
    };
    sort(groups_->Roots());
    for (std::uint32_t i = 0; i < structure_.definitions.size(); ++i)
        sort(groups_->Of(i));
}

void PartsTable::Run(const Visit& visit) {
    switch (options_.structure) {
        case PartsStructure::kMulti:
            return RunMulti(visit);
        case PartsStructure::kSingle:
            return sums_->Run(1, visit);
        case PartsStructure::kFlat:
            return sums_->Run(0, visit);
        case PartsStructure::kOccurrences:
            return RunOccurrences(visit);
    }
}

void PartsTable::RunMulti(const Visit& visit) {
    std::vector<bool> shown(structure_.definitions.size());
    std::vector<Level> path{{groups_->Roots(), 0, 1}};
    while (!path.empty()) {
        Level& level = path.back();
        if (level.next == level.groups.size()) {
            path.pop_back();
            continue;
        }
        const auto depth = static_cast<std::uint32_t>(path.size() - 1);
        const PartsRow row = RowOf(level.groups[level.next++], depth, level.parents);
        if (!visit(row)) return;
        const bool again = options_.once && shown[row.definition];
        shown[row.definition] = true;
        if (depth < options_.level && !again) path.push_back({groups_->Of(row.definition), 0, row.total});
    }
}

void PartsTable::RunOccurrences(const Visit& visit) {
    OccurrenceWalk walk(structure_, options_.level + 1);
    walk.Run([&](const Occurrence& occurrence) {
        PartsRow row;
        row.level = occurrence.level - 1;
        row.definition = occurrence.use->definition;
        row.uses = std::span(&occurrence.use, 1);
        row.name = occurrence.name;
        return visit(row);
    });
}

void PartsTable::AddComponentsOfTops() {
    sums_.emplace(structure_);
    for (const PartGroup& top : groups_->Roots())
        for (const PartGroup& group : groups_->Of(top.definition))
            sums_->Add(group.definition, MultiplyCounts(top.uses.size(), group.uses.size()), group.uses);
}

void PartsTable::AddParts() {
    sums_.emplace(structure_);
    const UsesByDefinition uses(structure_);
    for (std::uint32_t i = 0; i < structure_.definitions.size(); ++i) {
        const Definition& definition = structure_.definitions[i];
        if (IsPart(definition) && definition.occurrences > 0)
            sums_->Add(i, definition.occurrences, uses.Of(i));
    }
}

/// Level by level: what is a part, or stands on the last level, counts as it is; all else gives way to its
/// components.
void PartsTable::AddPartsDownTo(std::uint32_t last) {
    sums_.emplace(structure_);
    const UsesByDefinition uses(structure_);
    std::vector<std::uint64_t> counts(structure_.definitions.size());
    std::vector<std::uint32_t> present, next;
    const auto count = [&](const Use& use, std::uint64_t quantity) {
        if (counts[use.definition] == 0) next.push_back(use.definition);
        counts[use.definition] = AddCounts(counts[use.definition], quantity);
    };
    for (const Use& root : structure_.roots)
        count(root, 1);
    for (std::uint32_t level = 0; !next.empty(); ++level) {
        present.swap(next);
        next.clear();
        std::vector<std::uint64_t> quantities;
        for (const std::uint32_t index : present)
            quantities.push_back(std::exchange(counts[index], 0));
        for (std::size_t i = 0; i < present.size(); ++i) {
            const Definition& definition = structure_.definitions[present[i]];
            if (IsPart(definition) || level == last) {
                sums_->Add(present[i], quantities[i], uses.Of(present[i]));
                continue;
            }
            for (std::uint32_t u = 0; u < definition.useCount; ++u)
                count(structure_.uses[definition.firstUse + u], quantities[i]);
        }
    }
}

void PartsTable::Sums::Add(std::uint32_t definition, std::uint64_t quantity,
                           std::span<const Use* const> uses) {
    const auto [entry, isNew] = known_.emplace(structure_.definitions[definition].reference, sums_.size());
    if (isNew) sums_.push_back({definition, 0, {}});
    Sum& sum = sums_[entry->second];
    sum.quantity = AddCounts(sum.quantity, quantity);
    // A definition comes again on another level, with the same uses.
    if (isNew || sum.uses.back() != uses.back()) sum.uses.insert(sum.uses.end(), uses.begin(), uses.end());
}

void PartsTable::Sums::Run(std::uint32_t level, const Visit& visit) const {
    for (const Sum& sum : sums_) {
        PartsRow row;
        row.level = level;
        row.definition = sum.definition;
        row.quantity = row.total = sum.quantity;
        row.uses = sum.uses;
        if (!visit(row)) return;
    }
}

}  // namespace assembly::tool
