#include "tool/column_widths.h"
#include "tool/parts_writer.h"

#include <algorithm>

namespace assembly::tool {
namespace {

constexpr std::uint32_t kIndentedLevels = 64;  // deeper levels stand as far in as this one
constexpr const char* kGap = "  ";

class Writer final : public PartsWriter {
public:
    Writer(Output& output, std::vector<PartsField> fields, bool indented)
        : output_(output), fields_(std::move(fields)), indented_(indented), widths_(fields_.size()) {
        for (std::size_t i = 0; i < fields_.size(); ++i)
            widths_.AddTitle(i, Printable(fields_[i].name));
    }

    bool Measures() const override { return true; }
    void Measure(const PartsLine& line) override {
        for (std::size_t i = 0; i < fields_.size(); ++i)
            widths_.Add(i, CellText(line, i), line.cells[i].isNumber);
    }
    void Begin() override {
        std::string text;
        for (std::size_t i = 0; i < fields_.size(); ++i)
            Append(text, i, Printable(fields_[i].name));
        Finish(text);
    }
    void Write(const PartsLine& line) override {
        std::string text;
        for (std::size_t i = 0; i < fields_.size(); ++i)
            Append(text, i, CellText(line, i));
        Finish(text);
    }

private:
    std::string CellText(const PartsLine& line, std::size_t column) const {
        const bool isName = fields_[column].kind == PartsField::Kind::kName;
        const std::size_t indent = indented_ && isName ? std::min(line.level, kIndentedLevels) : 0;
        return std::string(2 * indent, ' ') + Printable(line.cells[column].text);
    }
    void Append(std::string& text, std::size_t column, const std::string& cell) const {
        if (column > 0) text += kGap;
        text += widths_.Padded(column, cell);
    }
    void Finish(std::string& text) {
        text.erase(text.find_last_not_of(' ') + 1);
        output_.Line(text);
    }

    Output& output_;
    std::vector<PartsField> fields_;
    bool indented_;
    ColumnWidths widths_;
};

}  // namespace

std::unique_ptr<PartsWriter> MakePartsTableWriter(Output& output, std::vector<PartsField> fields,
                                                  bool indented) {
    return std::make_unique<Writer>(output, std::move(fields), indented);
}

}  // namespace assembly::tool
