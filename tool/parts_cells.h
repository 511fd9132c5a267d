#pragma once

#include "tool/parts_fields.h"
#include "tool/parts_table.h"

#include <string>
#include <vector>

namespace assembly::tool {

/// One value of a parts list as it is printed.
struct PartsCell {
    std::string text;  ///< UTF-8; empty: no value
    bool isNumber = false;
};

bool operator<(const PartsCell& left, const PartsCell& right);

/// A line as it is printed: one cell for each field.
struct PartsLine {
    std::uint32_t level = 0;
    std::uint64_t quantity = 0, total = 0;
    std::vector<PartsCell> cells;
};

PartsCell CellOf(const PartsField& field, const PartsRow& row, const Structure& structure);
PartsLine LineOf(const std::vector<PartsField>& fields, const PartsRow& row, const Structure& structure);

}  // namespace assembly::tool
