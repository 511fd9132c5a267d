#include "tool/spreadsheet_text.h"

#include <algorithm>
#include <array>

namespace assembly::tool {
namespace {

constexpr std::string_view kSplitters = ";|\t\r\n";
constexpr std::string_view kNeedQuotes = ",;|\t\r\n\"' ";
/// What may stand before a formula without keeping it from being run. The longer ones are no-break space,
/// ideographic space, zero-width space and byte order mark.
constexpr std::array<std::string_view, 7> kSkipped{" ", "\"", "'", "\u00a0", "\u3000", "\u200b", "\ufeff"};
constexpr std::array<std::string_view, 8> kFormulaStarts{"=", "+", "-", "@", "＝", "＋", "－", "＠"};

bool IsDigit(char letter) {
    return letter >= '0' && letter <= '9';
}

std::size_t DigitsAt(std::string_view text, std::size_t from) {
    std::size_t count = 0;
    while (from + count < text.size() && IsDigit(text[from + count]))
        ++count;
    return count;
}

/// A sign, digits, a fraction, an exponent: nothing that could be run.
bool IsPlainNumber(std::string_view text) {
    std::size_t at = !text.empty() && (text[0] == '-' || text[0] == '+') ? 1 : 0;
    std::size_t digits = DigitsAt(text, at);
    at += digits;
    if (at < text.size() && text[at] == '.') {
        const std::size_t fraction = DigitsAt(text, at + 1);
        digits += fraction;
        at += 1 + fraction;
    }
    if (digits == 0) return false;
    if (at < text.size() && (text[at] == 'e' || text[at] == 'E')) {
        ++at;
        if (at < text.size() && (text[at] == '-' || text[at] == '+')) ++at;
        const std::size_t exponent = DigitsAt(text, at);
        if (exponent == 0) return false;
        at += exponent;
    }
    return at == text.size();
}

template <std::size_t count>
std::size_t LengthOfAny(std::string_view text, const std::array<std::string_view, count>& starts) {
    for (const std::string_view start : starts)
        if (text.starts_with(start)) return start.size();
    return 0;
}

bool IsFormula(std::string_view piece) {
    if (IsPlainNumber(piece)) return false;
    while (const std::size_t length = LengthOfAny(piece, kSkipped))
        piece.remove_prefix(length);
    return LengthOfAny(piece, kFormulaStarts) > 0;
}

bool StartsWithBreak(std::string_view text) {
    return !text.empty() && (text[0] == '\t' || text[0] == '\r' || text[0] == '\n');
}

}  // namespace

std::string WithoutFormula(std::string_view utf8) {
    std::string result = StartsWithBreak(utf8) ? "'" : "";
    while (true) {
        const std::size_t end = std::min(utf8.find_first_of(kSplitters), utf8.size());
        const std::string_view piece = utf8.substr(0, end);
        if (IsFormula(piece)) result += '\'';
        result += piece;
        if (end == utf8.size()) return result;
        result += utf8[end];
        utf8.remove_prefix(end + 1);
    }
}

std::string CsvField(std::string_view utf8) {
    if (utf8.find_first_of(kNeedQuotes) == std::string_view::npos) return std::string(utf8);
    std::string field = "\"";
    for (const char letter : utf8) {
        if (letter == '"') field += '"';
        field += letter;
    }
    return field + "\"";
}

}  // namespace assembly::tool
