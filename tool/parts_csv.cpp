#include "tool/parts_writer.h"
#include "tool/spreadsheet_text.h"

namespace assembly::tool {
namespace {

constexpr const char* kLineEnd = "\r\n";

class Writer final : public PartsWriter {
public:
    Writer(Output& output, std::vector<PartsField> fields) : output_(output), fields_(std::move(fields)) {}

    void Begin() override {
        for (std::size_t i = 0; i < fields_.size(); ++i)
            Cell(i, CsvField(WithoutFormula(fields_[i].name)));
        output_.Write(kLineEnd);
    }
    void Write(const PartsLine& line) override {
        for (std::size_t i = 0; i < fields_.size(); ++i) {
            const PartsCell& cell = line.cells[i];
            Cell(i, cell.isNumber ? cell.text : CsvField(WithoutFormula(cell.text)));
        }
        output_.Write(kLineEnd);
    }

private:
    void Cell(std::size_t column, const std::string& text) {
        if (column > 0) output_.Write(",");
        output_.Write(text);
    }

    Output& output_;
    std::vector<PartsField> fields_;
};

}  // namespace

std::unique_ptr<PartsWriter> MakePartsCsvWriter(Output& output, std::vector<PartsField> fields) {
    return std::make_unique<Writer>(output, std::move(fields));
}

}  // namespace assembly::tool
