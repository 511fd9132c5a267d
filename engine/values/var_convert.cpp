#include "engine/values/var_access.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>

// Conversions out of a value.

namespace qn {
namespace {

std::wstring_view WithoutLeadingBlanks(std::wstring_view text) noexcept {
    std::size_t at = 0;
    while (at < text.size() && (text[at] == L' ' || (text[at] >= L'\t' && text[at] <= L'\r')))
        ++at;
    return text.substr(at);
}

/// Leading blanks, a sign, digits; stops at the first other character, 0 if there is none. Limited to the
/// type.
template <class Integer>
Integer ParseInteger(std::wstring_view text) noexcept {
    using Limits = std::numeric_limits<Integer>;
    text = WithoutLeadingBlanks(text);
    const bool negative = !text.empty() && text.front() == L'-';
    if (negative || (!text.empty() && text.front() == L'+')) text.remove_prefix(1);
    Integer value = 0;
    for (const wchar_t letter : text) {
        if (letter < L'0' || letter > L'9') break;
        const auto digit = static_cast<Integer>(letter - L'0');
        // Gathered below zero, where the type has one value more.
        if (value < (Limits::min() + digit) / 10) return negative ? Limits::min() : Limits::max();
        value = value * 10 - digit;
    }
    if (negative) return value;
    return value == Limits::min() ? Limits::max() : -value;
}

double ParseReal(std::wstring_view text) {
    text = WithoutLeadingBlanks(text);
    if (!text.empty() && text.front() == L'+') text.remove_prefix(1);
    std::string ascii;
    for (const wchar_t letter : text) {
        if (letter <= 0 || letter >= 0x7f) break;
        ascii += static_cast<char>(letter);
    }
    double value = 0;
    const auto result = std::from_chars(ascii.data(), ascii.data() + ascii.size(), value);
    return result.ec == std::errc() ? value : 0;
}

/// Cuts towards zero; what does not fit becomes the nearest limit, "not a number" becomes 0.
template <class Integer>
Integer RealToInteger(double value) noexcept {
    using Limits = std::numeric_limits<Integer>;
    if (std::isnan(value)) return 0;
    if (value <= static_cast<double>(Limits::min())) return Limits::min();
    if (value >= static_cast<double>(Limits::max())) return Limits::max();
    return static_cast<Integer>(value);
}

template <class Integer>
bool ToInteger(const Var& value, Integer& out) {
    out = 0;
    if (VarAccess::IsInteger(value) || value.GetTag() == VarTag::kBool)
        out = static_cast<Integer>(VarAccess::Integer(value));
    else if (VarAccess::IsReal(value))
        out = RealToInteger<Integer>(VarAccess::Real(value));
    else if (value.IsText())
        out = ParseInteger<Integer>(ViewOf(VarAccess::Text(value)));
    else
        return false;
    return true;
}

bool ToReal(const Var& value, double& out) {
    out = 0;
    if (VarAccess::IsInteger(value) || value.GetTag() == VarTag::kBool)
        out = static_cast<double>(VarAccess::Integer(value));
    else if (VarAccess::IsReal(value))
        out = VarAccess::Real(value);
    else if (value.IsText())
        out = ParseReal(ViewOf(VarAccess::Text(value)));
    else
        return false;
    return true;
}

bool TextIsTrue(std::wstring_view text) noexcept {
    constexpr std::wstring_view kFalse = L"false";
    if (text.empty() || text == L"0") return false;
    if (text.size() != kFalse.size()) return true;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const wchar_t letter = text[i] >= L'A' && text[i] <= L'Z' ? text[i] - L'A' + L'a' : text[i];
        if (letter != kFalse[i]) return true;
    }
    return false;
}

/// The shortest text that reads back as the same number.
template <class Number>
String NumberText(Number value) {
    std::array<char, 64> buffer;
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr;
    return String(std::wstring(buffer.data(), end));
}

}  // namespace

bool Var::copy_to(bool& out) const {
    out = false;
    switch (tag_) {
        case VarTag::kEmpty:
            return false;
        case VarTag::kFloat:
        case VarTag::kDouble:
            out = payload_.real != 0;
            break;
        case VarTag::kText:
            out = TextIsTrue(ViewOf(payload_.text));
            break;
        case VarTag::kMatrix:
        case VarTag::kBlock:
            out = true;
            break;
        default:
            out = HoldsInterface() ? ToInterface() != nullptr : payload_.integer != 0;
    }
    return true;
}

bool Var::copy_to(int& out) const {
    // A wider integer is cut to its low bits, as flag words want it.
    return ToInteger(*this, out);
}

bool Var::copy_to(std::int64_t& out) const {
    return ToInteger(*this, out);
}

bool Var::copy_to(float& out) const {
    double value = 0;
    const bool converted = ToReal(*this, value);
    out = static_cast<float>(value);
    return converted;
}

bool Var::copy_to(double& out) const {
    return ToReal(*this, out);
}

bool Var::copy_to(String& out) const {
    out.Clear();
    switch (tag_) {
        case VarTag::kInt:
        case VarTag::kInt64:
            out = NumberText(payload_.integer);
            return true;
        case VarTag::kFloat:
            out = NumberText(static_cast<float>(payload_.real));
            return true;
        case VarTag::kDouble:
            out = NumberText(payload_.real);
            return true;
        case VarTag::kBool:
            out = payload_.integer ? L"true" : L"false";
            return true;
        case VarTag::kText:
            out.body_ = payload_.text;
            if (out.body_) out.body_->Retain();
            return true;
    }
    return false;
}

bool Var::copy_to(const char*& out) const {
    out = nullptr;
    if (!IsText()) return false;
    out = payload_.text ? payload_.text->Utf8() : "";
    return true;
}

bool Var::copy_to(Guid& out) const {
    out = Guid();
    return IsText() && Guid::Parse(ToText(), out);
}

bool Var::copy_to(Matrix4<double>& out) const {
    if (IsMatrix())
        out = payload_.matrix->Get();
    else
        std::memset(out.m, 0, sizeof out.m);
    return IsMatrix();
}

bool Var::copy_to(Interface*& out) const {
    out = ToInterface();
    return out != nullptr;
}

bool Var::copy_to(VarMap*& out) const {
    out = ToMap();
    return out != nullptr;
}

bool Var::copy_to(VarArray*& out) const {
    out = ToArray();
    return out != nullptr;
}

bool Var::ToBool() const {
    bool value;
    copy_to(value);
    return value;
}

int Var::ToInt() const {
    int value;
    copy_to(value);
    return value;
}

String Var::ToText() const {
    String text;
    copy_to(text);
    return text;
}

Var Var::to_string() const {
    return IsText() ? Var(*this) : Var(ToText());
}

}  // namespace qn
