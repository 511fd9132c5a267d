#include "exchange/json_writer.h"

#include <charconv>
#include <cmath>
#include <utility>

namespace qn::exchange {
namespace {

constexpr std::size_t kIndent = 2;

/// The letter as JSON wants it inside quotes, or the empty text if it stands for itself.
std::string_view EscapeOf(char letter) {
    switch (letter) {
        case '"':
            return "\\\"";
        case '\\':
            return "\\\\";
        case '\n':
            return "\\n";
        case '\r':
            return "\\r";
        case '\t':
            return "\\t";
        default:
            return {};
    }
}

void AppendQuoted(std::string& out, std::string_view utf8) {
    constexpr char kDigits[] = "0123456789abcdef";
    out += '"';
    for (const char letter : utf8) {
        const auto code = static_cast<unsigned char>(letter);
        if (const std::string_view escape = EscapeOf(letter); !escape.empty()) {
            out += escape;
        } else if (code < ' ') {
            out += "\\u00";
            out += kDigits[code >> 4];
            out += kDigits[code & 0xf];
        } else {
            out += letter;
        }
    }
    out += '"';
}

}  // namespace

void JsonWriter::Key(std::string_view utf8) {
    Separate();
    AppendQuoted(text_, utf8);
    text_ += ": ";
    afterKey_ = true;
}

void JsonWriter::Text(std::string_view utf8) {
    Separate();
    AppendQuoted(text_, utf8);
}

void JsonWriter::Number(double value) {
    if (!std::isfinite(value)) return Null();
    char digits[32];
    const double plain = value == 0 ? 0 : value;  // no "-0"
    Put({digits,
         static_cast<std::size_t>(std::to_chars(digits, digits + sizeof digits, plain).ptr - digits)});
}

void JsonWriter::Integer(std::int64_t value) {
    char digits[24];
    Put({digits,
         static_cast<std::size_t>(std::to_chars(digits, digits + sizeof digits, value).ptr - digits)});
}

void JsonWriter::Bool(bool value) {
    Put(value ? "true" : "false");
}

void JsonWriter::Null() {
    Put("null");
}

std::string JsonWriter::Take() {
    text_ += '\n';
    afterKey_ = false;
    hasEntries_.clear();
    return std::exchange(text_, std::string());
}

void JsonWriter::Open(char bracket) {
    Put({&bracket, 1});
    hasEntries_.push_back(false);
}

void JsonWriter::Close(char bracket) {
    const bool hadEntries = hasEntries_.back();
    const bool onLines = hasEntries_.size() <= lineLevels_;
    hasEntries_.pop_back();
    if (hadEntries && onLines) NewLine();
    text_ += bracket;
}

void JsonWriter::Separate() {
    if (std::exchange(afterKey_, false) || hasEntries_.empty()) return;
    const bool onLine = hasEntries_.size() <= lineLevels_;
    if (hasEntries_.back()) text_ += onLine ? "," : ", ";
    hasEntries_.back() = true;
    if (onLine) NewLine();
}

void JsonWriter::NewLine() {
    text_ += '\n';
    text_.append(hasEntries_.size() * kIndent, ' ');
}

void JsonWriter::Put(std::string_view raw) {
    Separate();
    text_ += raw;
}

}  // namespace qn::exchange
