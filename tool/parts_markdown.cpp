#include "tool/column_widths.h"
#include "tool/markdown_text.h"
#include "tool/parts_writer.h"

namespace assembly::tool {
namespace {

constexpr std::size_t kShortestRule = 3;  // "---", "--:"

class Writer final : public PartsWriter {
public:
    Writer(Output& output, std::vector<PartsField> fields)
        : output_(output), fields_(std::move(fields)), widths_(fields_.size()) {
        for (std::size_t i = 0; i < fields_.size(); ++i) {
            widths_.AddTitle(i, MarkdownCell(fields_[i].name));
            widths_.Widen(i, kShortestRule);
        }
    }

    bool Measures() const override { return true; }
    void Measure(const PartsLine& line) override {
        for (std::size_t i = 0; i < fields_.size(); ++i)
            widths_.Add(i, MarkdownCell(line.cells[i].text), line.cells[i].isNumber);
    }
    void Begin() override {
        WriteRow([&](std::size_t i) { return MarkdownCell(fields_[i].name); });
        WriteRow([&](std::size_t i) {
            std::string rule(widths_.At(i), '-');
            if (widths_.IsRight(i)) rule.back() = ':';
            return rule;
        });
    }
    void Write(const PartsLine& line) override {
        WriteRow([&](std::size_t i) { return MarkdownCell(line.cells[i].text); });
    }

private:
    template <class CellText>
    void WriteRow(const CellText& cellText) {
        std::string text = "|";
        for (std::size_t i = 0; i < fields_.size(); ++i)
            text += " " + widths_.Padded(i, cellText(i)) + " |";
        output_.Line(text);
    }

    Output& output_;
    std::vector<PartsField> fields_;
    ColumnWidths widths_;
};

}  // namespace

std::unique_ptr<PartsWriter> MakePartsMarkdownWriter(Output& output, std::vector<PartsField> fields) {
    return std::make_unique<Writer>(output, std::move(fields));
}

}  // namespace assembly::tool
