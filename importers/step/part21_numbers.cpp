#include "importers/step/part21_numbers.h"

#include "importers/step/part21_error.h"
#include "importers/step/step_limits.h"

#include <algorithm>
#include <charconv>
#include <string>

namespace qn::step {
namespace {

using step_limits::kMostDigits;

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

/// Whether the character can stand in a name, so that a digit behind it begins no number.
bool IsNameChar(char c) {
    return IsDigit(c) || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' || c == '#';
}

std::size_t SkipDigits(std::string_view text, std::size_t at) {
    while (at < text.size() && IsDigit(text[at]))
        ++at;
    return at;
}

/// The place behind the number that begins here.
std::size_t CheckNumber(std::string_view text, std::size_t first) {
    std::size_t at = SkipDigits(text, first);
    const std::size_t whole = at - first;
    if (at < text.size() && text[at] == '.') at = SkipDigits(text, at + 1);
    int exponent = 0;
    if (at + 1 < text.size() && (text[at] == 'E' || text[at] == 'e')) {
        const std::size_t digits = text[at + 1] == '+' || text[at + 1] == '-' ? at + 2 : at + 1;
        const std::size_t end = SkipDigits(text, digits);
        const auto [unused, error] = std::from_chars(text.data() + digits, text.data() + end, exponent);
        if (error == std::errc::result_out_of_range) exponent = kMostDigits + 1;
        if (text[at + 1] == '-') exponent = 0;
        at = end;
    }
    if (exponent > kMostDigits || whole > kMostDigits)
        throw ReadFailure("the number " +
                              std::string(text.substr(first, std::min<std::size_t>(at - first, 40))) +
                              " is too large",
                          Cause::kLimit);
    return at;
}

std::size_t BehindNext(std::string_view text, std::string_view what, std::size_t from) {
    const std::size_t found = text.find(what, from);
    return found == std::string_view::npos ? text.size() : found + what.size();
}

}  // namespace

void RefuseHugeNumbers(std::string_view records) {
    for (std::size_t at = 0; at < records.size();) {
        const char c = records[at];
        if (c == '\'') {
            at = BehindNext(records, "'", at + 1);
        } else if (c == '/' && records.substr(at, 2) == "/*") {
            at = BehindNext(records, "*/", at + 2);
        } else if (IsDigit(c)) {
            at = CheckNumber(records, at);
        } else if (IsNameChar(c)) {
            while (at < records.size() && IsNameChar(records[at]))
                ++at;
        } else {
            ++at;
        }
    }
}

}  // namespace qn::step
