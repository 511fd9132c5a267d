#include "tool/parts_lines.h"

#include "tool/structure_counts.h"

#include <algorithm>

namespace assembly::tool {
namespace {

using Kind = PartsField::Kind;

bool IsSum(const PartsField& field) {
    return field.kind == Kind::kQuantity || field.kind == Kind::kTotal;
}

}  // namespace

std::string LineGroups::KeyOf(const PartsLine& line) const {
    std::string key;
    for (const std::size_t column : columns_) {
        const std::string& text = line.cells[column].text;
        key += std::to_string(text.size()) + ":" + text;
    }
    return key;
}

void LineGroups::Add(PartsLine line) {
    const auto [entry, isNew] = known_.emplace(KeyOf(line), groups_.size());
    if (isNew)
        groups_.push_back({std::move(line), {}});
    else
        Merge(groups_[entry->second], line);
}

void LineGroups::Merge(Group& group, const PartsLine& line) const {
    group.line.quantity = AddCounts(group.line.quantity, line.quantity);
    group.line.total = AddCounts(group.line.total, line.total);
    const bool isSecond = group.texts.empty();
    group.texts.resize(fields_.size());
    for (std::size_t i = 0; i < fields_.size(); ++i) {
        if (IsSum(fields_[i])) continue;
        if (isSecond) group.texts[i].Add(group.line.cells[i].text);
        group.texts[i].Add(line.cells[i].text);
    }
}

std::vector<PartsLine> LineGroups::Take() {
    std::vector<PartsLine> lines;
    for (Group& group : groups_) {
        PartsLine& line = group.line;
        for (std::size_t i = 0; i < fields_.size(); ++i) {
            PartsCell& cell = line.cells[i];
            if (IsSum(fields_[i]))
                cell.text = std::to_string(fields_[i].kind == Kind::kQuantity ? line.quantity : line.total);
            else if (!group.texts.empty())
                cell = {group.texts[i].Text(), cell.isNumber && group.texts[i].Count() <= 1};
        }
        lines.push_back(std::move(line));
    }
    groups_.clear();
    known_.clear();
    return lines;
}

void SortLines(std::vector<PartsLine>& lines, std::size_t column, bool descending) {
    std::stable_sort(lines.begin(), lines.end(), [&](const PartsLine& left, const PartsLine& right) {
        const PartsCell& first = (descending ? right : left).cells[column];
        return first < (descending ? left : right).cells[column];
    });
}

}  // namespace assembly::tool
