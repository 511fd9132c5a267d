#pragma once

#include "tool/joined_texts.h"
#include "tool/parts_cells.h"

#include <string>
#include <unordered_map>
#include <vector>

namespace assembly::tool {

/// Puts lines together that agree in some columns. Quantities and totals are summed; of every other column
/// the different values are listed.
class LineGroups {
public:
    /// `columns` are those that decide, by position in `fields`.
    LineGroups(std::vector<PartsField> fields, std::vector<std::size_t> columns)
        : fields_(std::move(fields)), columns_(std::move(columns)) {}

    /// Fails with kLimit if a sum outgrows 64 bits.
    void Add(PartsLine line);
    std::size_t Count() const { return groups_.size(); }
    /// The lines in the order of their first members.
    std::vector<PartsLine> Take();

private:
    struct Group {
        PartsLine line;
        std::vector<JoinedTexts> texts;  // for each field, once there is a second member
    };
    std::string KeyOf(const PartsLine& line) const;
    void Merge(Group& group, const PartsLine& line) const;

    std::vector<PartsField> fields_;
    std::vector<std::size_t> columns_;
    std::vector<Group> groups_;
    std::unordered_map<std::string, std::size_t> known_;
};

/// Orders lines by one column; lines that agree keep their order.
void SortLines(std::vector<PartsLine>& lines, std::size_t column, bool descending);

}  // namespace assembly::tool
