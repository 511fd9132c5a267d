#include "importers/step/part21_record.h"

#include "importers/step/part21_lexer.h"
#include "importers/step/part21_text.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace qn::step {
namespace {

const Param* At(const Params& params, std::size_t index) {
    return index < params.size() ? &params[index] : nullptr;
}

RecordPart ParsePart(Lexer& lexer) {
    RecordPart part;
    lexer.SkipBlanks();
    part.keyword = lexer.Keyword();
    if (part.keyword.empty()) lexer.Fail("a type name expected");
    part.params = lexer.ParameterList(1);
    return part;
}

}  // namespace

const Params* Record::Find(std::string_view keyword) const {
    const auto found = std::find_if(parts.begin(), parts.end(),
                                    [&](const RecordPart& part) { return part.keyword == keyword; });
    return found == parts.end() ? nullptr : &found->params;
}

Params Record::Attributes(std::initializer_list<std::string_view> partsOfComplex) const& {
    return Record(*this).Attributes(partsOfComplex);
}

Params Record::Attributes(std::initializer_list<std::string_view> partsOfComplex) && {
    if (parts.empty()) return {};
    if (parts.size() == 1) return std::move(parts.front().params);
    Params all;
    for (const std::string_view keyword : partsOfComplex)
        for (RecordPart& part : parts)
            if (part.keyword == keyword)
                std::move(part.params.begin(), part.params.end(), std::back_inserter(all));
    return all;
}

Record ParseRecord(std::string_view text, std::size_t at) {
    Lexer lexer(text, at);
    Record record;
    if (!lexer.Accept('(')) {
        record.parts.push_back(ParsePart(lexer));
        return record;
    }
    while (!lexer.Accept(')'))
        record.parts.push_back(ParsePart(lexer));
    return record;
}

EntityId ReferenceAt(const Params& params, std::size_t index) {
    const Param* param = At(params, index);
    return param && param->kind == ParamKind::kReference ? param->id : kNoEntity;
}

std::string TextAt(const Params& params, std::size_t index) {
    const Param* param = At(params, index);
    if (param && param->kind == ParamKind::kTyped) return TextAt(param->items, 0);
    return param && param->kind == ParamKind::kText ? DecodeText(param->text) : std::string();
}

bool IsSet(const Params& params, std::size_t index) {
    const Param* param = At(params, index);
    return param && param->kind != ParamKind::kUnset;
}

const Params& ListAt(const Params& params, std::size_t index) {
    static const Params kNone;
    const Param* param = At(params, index);
    return param && param->kind == ParamKind::kList ? param->items : kNone;
}

double NumberAt(const Params& params, std::size_t index, double ifMissing) {
    const Param* param = At(params, index);
    if (!param) return ifMissing;
    if (param->kind == ParamKind::kTyped) return NumberAt(param->items, 0, ifMissing);
    const bool isNumber = param->kind == ParamKind::kInteger || param->kind == ParamKind::kReal;
    return isNumber ? param->number : ifMissing;
}

std::string_view EnumAt(const Params& params, std::size_t index) {
    const Param* param = At(params, index);
    return param && param->kind == ParamKind::kEnum ? param->text : std::string_view();
}

}  // namespace qn::step
