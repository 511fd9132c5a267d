#include "importers/step/part21_lexer.h"

#include "importers/step/step_limits.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace qn::step {
namespace {

bool IsBlank(char c) {
    return static_cast<unsigned char>(c) <= ' ';
}
bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

bool IsKeywordStart(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' || c == '!';
}

bool IsKeywordChar(char c) {
    return IsKeywordStart(c) || IsDigit(c) || c == '-';
}

bool IsNumberChar(char c) {
    return IsDigit(c) || c == '+' || c == '-' || c == '.' || c == 'E' || c == 'e' || c == 'D' || c == 'd';
}

std::string Shown(char c) {
    if (static_cast<unsigned char>(c) < 0x20 || static_cast<unsigned char>(c) > 0x7e) return "a strange byte";
    return std::string("'") + c + "'";
}

constexpr std::size_t kLongestNumber = 128;
constexpr std::size_t kUsualParameters = 4;  ///< room made at once

}  // namespace

void Lexer::FailAt(std::size_t position, const std::string& text, Cause cause) const {
    const auto end = text_.begin() + static_cast<std::ptrdiff_t>(std::min(position, text_.size()));
    const auto line = 1 + std::count(text_.begin(), end, '\n');
    throw ReadFailure("line " + std::to_string(line) + ": " + text, cause);
}

void Lexer::Fail(const std::string& cause) const {
    FailAt(at_, cause);
}

bool Lexer::SkipComment() {
    const std::size_t end = text_.find("*/", at_ + 2);
    if (end == std::string_view::npos) return false;
    at_ = end + 2;
    return true;
}

void Lexer::SkipBlanks() {
    while (at_ < text_.size()) {
        if (IsBlank(text_[at_])) {
            ++at_;
        } else if (text_[at_] == '/' && text_.substr(at_, 2) == "/*") {
            if (!SkipComment()) Fail("a comment is not closed");
        } else if (text_[at_] == '\\' &&
                   (text_.substr(at_, 3) == "\\N\\" || text_.substr(at_, 3) == "\\F\\")) {
            at_ += 3;
        } else {
            return;
        }
    }
}

bool Lexer::Accept(char c) {
    SkipBlanks();
    if (Peek() != c || AtEnd()) return false;
    ++at_;
    return true;
}

void Lexer::Expect(char c, std::string_view where) {
    if (Accept(c)) return;
    const std::string wanted = std::string("'") + c + "' expected " + std::string(where);
    Fail(AtEnd() ? wanted + ", but the file ends" : wanted + ", found " + Shown(Peek()));
}

std::string_view Lexer::Keyword() {
    const std::size_t start = at_;
    if (!AtEnd() && IsKeywordStart(Peek()))
        while (at_ < text_.size() && IsKeywordChar(text_[at_]))
            ++at_;
    return text_.substr(start, at_ - start);
}

EntityId Lexer::Number() {
    const char* first = text_.data() + at_;
    EntityId id = kNoEntity;
    const auto [end, error] = std::from_chars(first, text_.data() + text_.size(), id);
    if (error != std::errc() || id == kNoEntity) Fail("'#' is not followed by an entity number");
    at_ += static_cast<std::size_t>(end - first);
    return id;
}

bool Lexer::SkipString(char quote) {
    // A doubled quote reads as two strings side by side, which is as good for skipping.
    const std::size_t end = text_.find(quote, at_ + 1);
    at_ = end == std::string_view::npos ? text_.size() : end + 1;
    return end != std::string_view::npos;
}

bool Lexer::SkipTo(char wanted) {
    for (; at_ < text_.size();) {
        const char c = text_[at_];
        if (c == wanted) {
            ++at_;
            return true;
        }
        if (c == '\'') {
            if (!SkipString(c)) return false;
        } else if (c == '/' && text_.substr(at_, 2) == "/*") {
            if (!SkipComment()) return false;
        } else {
            ++at_;
        }
    }
    return false;
}

bool Lexer::SkipParentheses() {
    int depth = 0;
    for (; at_ < text_.size();) {
        const char c = text_[at_];
        if (c == '\'') {
            if (!SkipString(c)) return false;
            continue;
        }
        if (c == '/' && text_.substr(at_, 2) == "/*") {
            if (!SkipComment()) return false;
            continue;
        }
        ++at_;
        if (c == '(') ++depth;
        if (c == ')' && --depth <= 0) return true;
        if (c == ';') return false;
    }
    return false;
}

Param Lexer::Quoted() {
    const char quote = Peek();
    const std::size_t start = at_;
    do {
        const std::size_t position = at_;
        if (!SkipString(quote)) FailAt(position, "a string is not closed");
    } while (Peek() == quote && !AtEnd());
    Param param;
    param.kind = quote == '\'' ? ParamKind::kText : ParamKind::kBinary;
    param.text = text_.substr(start + 1, at_ - start - 2);
    return param;
}

Param Lexer::Numeric() {
    const std::size_t start = at_;
    while (at_ < text_.size() && IsNumberChar(text_[at_]))
        ++at_;
    if (at_ - start > kLongestNumber) FailAt(start, "a number is too long");
    std::string digits(text_.substr(start, at_ - start));
    const bool isReal = digits.find_first_not_of("+-0123456789") != std::string::npos;
    std::replace_if(
        digits.begin(), digits.end(), [](char c) { return c == 'D' || c == 'd'; }, 'E');
    const char* first = digits.data() + (digits.front() == '+' ? 1 : 0);
    const char* last = digits.data() + digits.size();
    Param param;
    param.kind = isReal ? ParamKind::kReal : ParamKind::kInteger;
    const auto [end, error] = std::from_chars(first, last, param.number);
    if (error == std::errc::result_out_of_range) return param;
    // "1.E" and the like: what could be read stands, as long as there was a number at all.
    if (error != std::errc() || end == first) FailAt(start, "'" + digits + "' is no number");
    return param;
}

Param Lexer::Enumeration() {
    const std::size_t start = at_ + 1;
    std::size_t end = start;
    while (end < text_.size() && (IsKeywordStart(text_[end]) || IsDigit(text_[end])))
        ++end;
    if (end == start || end >= text_.size() || text_[end] != '.') Fail("an enumeration value is malformed");
    Param param;
    param.kind = ParamKind::kEnum;
    param.text = text_.substr(start, end - start);
    at_ = end + 1;
    return param;
}

Param Lexer::Parameter(int depth) {
    SkipBlanks();
    const char c = Peek();
    Param param;
    if (c == '$' || c == '*') {
        ++at_;
        param.kind = c == '$' ? ParamKind::kUnset : ParamKind::kDerived;
    } else if (c == '#') {
        ++at_;
        param.kind = ParamKind::kReference;
        param.id = Number();
    } else if (c == '\'' || c == '"') {
        param = Quoted();
    } else if (c == '(') {
        param.kind = ParamKind::kList;
        param.items = ParameterList(depth + 1);
    } else if (IsKeywordStart(c)) {
        param.kind = ParamKind::kTyped;
        param.text = Keyword();
        param.items = ParameterList(depth + 1);
    } else if (c == '.' && at_ + 1 < text_.size() && IsKeywordStart(text_[at_ + 1])) {
        param = Enumeration();
    } else if (IsNumberChar(c)) {
        param = Numeric();
    } else {
        Fail(AtEnd() ? "the file ends inside a record" : "a parameter expected, found " + Shown(c));
    }
    return param;
}

Params Lexer::ParameterList(int depth) {
    constexpr int kDeepest = step_limits::kDeepestParentheses;
    if (depth > kDeepest)
        FailAt(at_, "parentheses are nested deeper than " + std::to_string(kDeepest) + " levels",
               Cause::kLimit);
    Expect('(', "before parameters");
    Params params;
    if (Accept(')')) return params;
    params.reserve(kUsualParameters);
    do {
        params.push_back(Parameter(depth));
    } while (Accept(','));
    Expect(')', "after parameters");
    return params;
}

}  // namespace qn::step
