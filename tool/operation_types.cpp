#include "tool/operation_types.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace assembly::tool {
namespace {

using qn::Var;

std::optional<Var> ParseBool(const std::string& text) {
    if (text == "true" || text == "1") return Var(true);
    if (text == "false" || text == "0") return Var(false);
    return std::nullopt;
}

template <class Number>
std::optional<Number> ParseNumber(const std::string& text) {
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool isWhole = error == std::errc() && end == text.data() + text.size() && !text.empty();
    return isWhole ? std::optional(number) : std::nullopt;
}

std::optional<Var> ParseInteger(const std::string& text) {
    const auto number = ParseNumber<std::int64_t>(text);
    return number ? std::optional<Var>(Var(*number)) : std::nullopt;
}

std::optional<Var> ParseReal(const std::string& text) {
    const auto number = ParseNumber<double>(text);
    return number && std::isfinite(*number) ? std::optional<Var>(Var(*number)) : std::nullopt;
}

std::optional<Var> ParseText(const std::string& text) {
    return Var(qn::String::FromUtf8(text));
}

constexpr OperationType kText = {"string", "string", "a text", "TEXT", &ParseText};
constexpr OperationType kTypes[] = {
    {"bool", "boolean", "true or false", "true|false", &ParseBool},
    {"int", "integer", "an integer", "NUMBER", &ParseInteger},
    {"integer", "integer", "an integer", "NUMBER", &ParseInteger},
    {"float", "number", "a number", "NUMBER", &ParseReal},
    {"double", "number", "a number", "NUMBER", &ParseReal},
    {"filename", "string", "a file name", "FILE", &ParseText},
    {"scene", "string", "a file name", "FILE", &ParseText},
};

}  // namespace

const OperationType& TypeOf(std::string_view name) {
    const auto* found = std::find_if(std::begin(kTypes), std::end(kTypes),
                                     [&](const OperationType& type) { return type.name == name; });
    return found == std::end(kTypes) ? kText : *found;
}

}  // namespace assembly::tool
