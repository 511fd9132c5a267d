#pragma once

#include "tool/terminal.h"

#include <algorithm>
#include <string>
#include <vector>

namespace assembly::tool {

/// How wide columns have to be on a terminal, and on which side their texts stand.
class ColumnWidths {
public:
    explicit ColumnWidths(std::size_t columns) : columns_(columns) {}

    void AddTitle(std::size_t column, const std::string& text) { Widen(column, Width(text)); }
    void Add(std::size_t column, const std::string& text, bool isNumber) {
        Widen(column, Width(text));
        if (text.empty()) return;
        columns_[column].hasNumbers |= isNumber;
        columns_[column].hasTexts |= !isNumber;
    }
    void Widen(std::size_t column, std::size_t width) {
        columns_[column].width = std::max(columns_[column].width, width);
    }
    std::size_t At(std::size_t column) const { return columns_[column].width; }
    bool IsRight(std::size_t column) const {
        return columns_[column].hasNumbers && !columns_[column].hasTexts;
    }
    std::string Padded(std::size_t column, const std::string& text) const {
        const std::size_t width = Width(text);
        const std::string blanks(width < At(column) ? At(column) - width : 0, ' ');
        return IsRight(column) ? blanks + text : text + blanks;
    }

private:
    struct Column {
        std::size_t width = 0;
        bool hasNumbers = false, hasTexts = false;
    };
    std::vector<Column> columns_;
};

}  // namespace assembly::tool
