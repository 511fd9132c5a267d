#include "tool/parts_writer.h"

namespace assembly::tool {
namespace {

class Writer final : public PartsWriter {
public:
    Writer(Output& output, std::vector<PartsField> fields, std::string structure)
        : output_(output), fields_(std::move(fields)), structure_(std::move(structure)) {
        for (const PartsField& field : fields_)
            keys_.push_back(Quoted(field.name) + ": ");
    }

    void Begin() override { output_.Write("{\n  \"structure\": " + Quoted(structure_) + ",\n  \"rows\": ["); }
    void Write(const PartsLine& line) override {
        std::string text = isFirst_ ? "\n    {" : ",\n    {";
        isFirst_ = false;
        for (std::size_t i = 0; i < fields_.size(); ++i) {
            const PartsCell& cell = line.cells[i];
            text += (i > 0 ? ", " : "") + keys_[i];
            text += cell.text.empty() ? "null" : cell.isNumber ? cell.text : Quoted(cell.text);
        }
        output_.Write(text + "}");
    }
    void End() override { output_.Line(isFirst_ ? "]\n}" : "\n  ]\n}"); }

private:
    Output& output_;
    std::vector<PartsField> fields_;
    std::string structure_;
    std::vector<std::string> keys_;
    bool isFirst_ = true;
};

}  // namespace

std::unique_ptr<PartsWriter> MakePartsJsonWriter(Output& output, std::vector<PartsField> fields,
                                                 std::string structure) {
    return std::make_unique<Writer>(output, std::move(fields), std::move(structure));
}

}  // namespace assembly::tool
