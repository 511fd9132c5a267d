#include "tool/parts_cells.h"

#include "tool/joined_texts.h"
#include "tool/metadata_text.h"
#include "tool/show_options.h"

#include <charconv>

namespace assembly::tool {
namespace {

using Kind = PartsField::Kind;

constexpr const char* kUnit = "each";

PartsCell Number(std::uint64_t number) {
    return {std::to_string(number), true};
}

PartsCell Text(std::string text) {
    return {std::move(text), false};
}

PartsCell DesignatorsOf(const PartsRow& row) {
    if (!row.name.empty()) return Text(std::string(row.name));
    JoinedTexts names;
    for (const Use* use : row.uses)
        names.Add(use->name);
    return Text(names.Text());
}

/// What the definition says; else what its uses say.
PartsCell MetadataOf(const std::string& key, const PartsRow& row, const Definition& definition) {
    const MetadataText own = ReadMetadata(*definition.reference, key);
    if (!own.text.empty()) return {own.text, own.isNumber};
    JoinedTexts texts;
    bool isNumber = false;
    for (const Use* use : row.uses) {
        if (!use->instance) continue;
        const MetadataText text = ReadMetadata(*use->instance, key);
        texts.Add(text.text);
        if (!text.text.empty()) isNumber = text.isNumber;
    }
    return {texts.Text(), isNumber && texts.Count() == 1};
}

PartsCell ServerIdOf(const Definition& definition) {
    const qn::Var id = definition.reference->GetProperty(qn::graph::Prop::kBsId, 0);
    return Text(id.ToBool() ? id.ToText().ToUtf8() : std::string());
}

double ValueOf(const std::string& text) {
    double value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

}  // namespace

bool operator<(const PartsCell& left, const PartsCell& right) {
    if (!left.isNumber || !right.isNumber)
        return left.isNumber != right.isNumber ? left.isNumber : left.text < right.text;
    const double leftValue = ValueOf(left.text), rightValue = ValueOf(right.text);
    if (leftValue != rightValue) return leftValue < rightValue;
    // Whole numbers beyond the precision of a double differ in their digits alone.
    return left.text.size() != right.text.size() ? left.text.size() < right.text.size()
                                                 : left.text < right.text;
}

PartsCell CellOf(const PartsField& field, const PartsRow& row, const Structure& structure) {
    const Definition& definition = structure.definitions[row.definition];
    switch (field.kind) {
        case Kind::kLevel:
            return Number(row.level);
        case Kind::kName:
            return Text(definition.name);
        case Kind::kId:
            return Text(PersistentIdOf(*definition.reference));
        case Kind::kServerId:
            return ServerIdOf(definition);
        case Kind::kQuantity:
            return Number(row.quantity);
        case Kind::kTotal:
            return Number(row.total);
        case Kind::kUnit:
            return Text(kUnit);
        case Kind::kDesignators:
            return DesignatorsOf(row);
        case Kind::kFile:
            return Text(definition.file);
        case Kind::kMetadata:
            return MetadataOf(field.name, row, definition);
    }
    return {};
}

PartsLine LineOf(const std::vector<PartsField>& fields, const PartsRow& row, const Structure& structure) {
    PartsLine line;
    line.level = row.level;
    line.quantity = row.quantity;
    line.total = row.total;
    for (const PartsField& field : fields)
        line.cells.push_back(CellOf(field, row, structure));
    return line;
}

}  // namespace assembly::tool
