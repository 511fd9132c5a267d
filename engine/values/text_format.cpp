#include "engine/values/text_format.h"

#include "frame/host/string.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdarg>
#include <cstdint>
#include <cstring>
#include <cwchar>
#include <limits>
#include <string_view>

namespace qn {
namespace {

constexpr int kMostWidth = 1 << 16;
constexpr int kMostPrecision = 1 << 10;
constexpr int kOctal = 8, kDecimal = 10, kHexadecimal = 16;

enum class Length { kHalfHalf, kHalf, kInt, kLong, kLongLong };

struct Conversion {
    bool left = false, plus = false, blank = false, zero = false, marked = false;
    int width = 0;
    int precision = -1;
    Length length = Length::kInt;
    wchar_t letter = 0;
};

const wchar_t* SignOf(bool negative, const Conversion& conversion) {
    return negative ? L"-" : conversion.plus ? L"+" : conversion.blank ? L" " : L"";
}

/// Of digits and of words like "nan", all lower case.
void MakeUpper(std::wstring& digits) {
    for (wchar_t& digit : digits)
        if (digit >= L'a') digit = static_cast<wchar_t>(digit - L'a' + L'A');
}

/// Reads one pattern and its arguments from left to right.
class Formatter {
public:
    Formatter(const wchar_t* pattern, __builtin_va_list arguments) : at_(pattern) {
        va_copy(arguments_, arguments);
    }
    Formatter(const Formatter&) = delete;
    Formatter& operator=(const Formatter&) = delete;
    ~Formatter() { va_end(arguments_); }

    std::wstring Run() {
        while (*at_) {
            if (*at_ != L'%') {
                out_ += *at_++;
                continue;
            }
            const wchar_t* const start = at_++;
            const Conversion conversion = ReadConversion();
            if (!Convert(conversion)) out_.append(start, at_);
        }
        return std::move(out_);
    }

private:
    Conversion ReadConversion();
    int ReadNumber(int most);
    Length ReadLength();
    /// False, with nothing written, for a letter that says nothing.
    bool Convert(const Conversion& conversion);
    std::int64_t NextSigned(Length length);
    std::uint64_t NextUnsigned(Length length);
    void PutPercent(const Conversion&) { out_ += L'%'; }
    void PutSigned(const Conversion& conversion);
    void PutUnsigned(const Conversion& conversion);
    void PutAddress(const Conversion& conversion);
    void PutInteger(const Conversion& conversion, std::uint64_t value, int base, const wchar_t* sign);
    void PutReal(const Conversion& conversion);
    void PutLetter(const Conversion& conversion);
    void PutString(const Conversion& conversion);
    void PutWide(const Conversion& conversion);
    void PutNarrow(const Conversion& conversion);
    /// Sign, padding and digits in the order that the flags ask for.
    void PutNumber(const Conversion& conversion, const std::wstring& prefix, std::wstring digits,
                   bool zeroPads);
    void PutText(const Conversion& conversion, std::wstring_view text);

    const wchar_t* at_;
    va_list arguments_;
    std::wstring out_;
};

Conversion Formatter::ReadConversion() {
    Conversion read;
    for (;; ++at_) {
        if (*at_ == L'-')
            read.left = true;
        else if (*at_ == L'+')
            read.plus = true;
        else if (*at_ == L' ')
            read.blank = true;
        else if (*at_ == L'0')
            read.zero = true;
        else if (*at_ == L'#')
            read.marked = true;
        else
            break;
    }
    read.width = ReadNumber(kMostWidth);
    if (read.width < 0) read.left = true, read.width = -read.width;
    if (*at_ == L'.') {
        ++at_;
        read.precision = ReadNumber(kMostPrecision);
    }
    read.length = ReadLength();
    read.letter = *at_;
    if (*at_) ++at_;
    return read;
}

int Formatter::ReadNumber(int most) {
    if (*at_ == L'*') {
        ++at_;
        return std::clamp(va_arg(arguments_, int), -most, most);
    }
    int number = 0;
    for (; *at_ >= L'0' && *at_ <= L'9'; ++at_)
        number = std::min(most, number * 10 + (*at_ - L'0'));
    return number;
}

Length Formatter::ReadLength() {
    static constexpr struct {
        const wchar_t* text;
        Length length;
    } kLengths[] = {{L"hh", Length::kHalfHalf}, {L"h", Length::kHalf},       {L"ll", Length::kLongLong},
                    {L"l", Length::kLong},      {L"I64", Length::kLongLong}, {L"z", Length::kLong},
                    {L"t", Length::kLong},      {L"j", Length::kLong}};
    for (const auto& row : kLengths) {
        const std::size_t size = std::wcslen(row.text);
        if (std::wcsncmp(at_, row.text, size) != 0) continue;
        at_ += size;
        return row.length;
    }
    return Length::kInt;
}

bool Formatter::Convert(const Conversion& conversion) {
    static constexpr struct {
        std::wstring_view letters;
        void (Formatter::*put)(const Conversion& conversion);
    } kConversions[] = {
        {L"%", &Formatter::PutPercent}, {L"di", &Formatter::PutSigned},   {L"uoxX", &Formatter::PutUnsigned},
        {L"p", &Formatter::PutAddress}, {L"fFeEgG", &Formatter::PutReal}, {L"c", &Formatter::PutLetter},
        {L"s", &Formatter::PutString},  {L"S", &Formatter::PutNarrow},
    };
    for (const auto& row : kConversions) {
        if (row.letters.find(conversion.letter) == std::wstring_view::npos) continue;
        (this->*row.put)(conversion);
        return true;
    }
    return false;
}

std::int64_t Formatter::NextSigned(Length length) {
    switch (length) {
        case Length::kHalfHalf:
            return static_cast<signed char>(va_arg(arguments_, int));
        case Length::kHalf:
            return static_cast<short>(va_arg(arguments_, int));
        case Length::kInt:
            return va_arg(arguments_, int);
        case Length::kLong:
            return va_arg(arguments_, long);
        case Length::kLongLong:
            return va_arg(arguments_, long long);
    }
    return 0;
}

std::uint64_t Formatter::NextUnsigned(Length length) {
    switch (length) {
        case Length::kHalfHalf:
            return static_cast<unsigned char>(va_arg(arguments_, unsigned));
        case Length::kHalf:
            return static_cast<unsigned short>(va_arg(arguments_, unsigned));
        case Length::kInt:
            return va_arg(arguments_, unsigned);
        case Length::kLong:
            return va_arg(arguments_, unsigned long);
        case Length::kLongLong:
            return va_arg(arguments_, unsigned long long);
    }
    return 0;
}

void Formatter::PutSigned(const Conversion& conversion) {
    const std::int64_t value = NextSigned(conversion.length);
    const auto bits = static_cast<std::uint64_t>(value);
    PutInteger(conversion, value < 0 ? 0 - bits : bits, kDecimal, SignOf(value < 0, conversion));
}

void Formatter::PutUnsigned(const Conversion& conversion) {
    const std::uint64_t value = NextUnsigned(conversion.length);
    const wchar_t letter = conversion.letter;
    const bool marked = conversion.marked && value != 0;
    if (letter == L'u') return PutInteger(conversion, value, kDecimal, L"");
    if (letter == L'o') return PutInteger(conversion, value, kOctal, marked ? L"0" : L"");
    PutInteger(conversion, value, kHexadecimal, !marked ? L"" : letter == L'X' ? L"0X" : L"0x");
}

void Formatter::PutAddress(const Conversion& conversion) {
    const auto address = reinterpret_cast<std::uintptr_t>(va_arg(arguments_, void*));
    PutInteger(conversion, address, kHexadecimal, L"0x");
}

void Formatter::PutInteger(const Conversion& conversion, std::uint64_t value, int base, const wchar_t* sign) {
    std::array<char, 64> buffer;
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, base).ptr;
    std::wstring digits(buffer.data(), end);
    if (conversion.letter == L'X') MakeUpper(digits);
    if (conversion.precision == 0 && value == 0) digits.clear();
    if (conversion.precision > static_cast<int>(digits.size()))
        digits.insert(0, static_cast<std::size_t>(conversion.precision) - digits.size(), L'0');
    PutNumber(conversion, sign, std::move(digits), conversion.precision < 0);
}

void Formatter::PutReal(const Conversion& conversion) {
    const double value = va_arg(arguments_, double);
    const bool upper = conversion.letter < L'a';
    const wchar_t kind = upper ? static_cast<wchar_t>(conversion.letter - L'A' + L'a') : conversion.letter;
    const auto form = kind == L'f'   ? std::chars_format::fixed
                      : kind == L'e' ? std::chars_format::scientific
                                     : std::chars_format::general;
    std::array<char, std::numeric_limits<double>::max_exponent10 + kMostPrecision + 16> buffer;
    const int precision = conversion.precision < 0 ? 6 : conversion.precision;
    const auto end =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), std::fabs(value), form, precision).ptr;
    std::wstring digits(buffer.data(), end);
    if (upper) MakeUpper(digits);
    PutNumber(conversion, SignOf(std::signbit(value), conversion), std::move(digits), std::isfinite(value));
}

void Formatter::PutLetter(const Conversion& conversion) {
    const auto letter = static_cast<wchar_t>(va_arg(arguments_, int));
    PutText(conversion, std::wstring_view(&letter, 1));
}

void Formatter::PutString(const Conversion& conversion) {
    conversion.length == Length::kHalf ? PutNarrow(conversion) : PutWide(conversion);
}

void Formatter::PutWide(const Conversion& conversion) {
    const wchar_t* text = va_arg(arguments_, const wchar_t*);
    if (!text) return PutText(conversion, L"(null)");
    if (conversion.precision < 0) return PutText(conversion, text);
    // With a precision the text need not end: look no further than it allows.
    const auto most = static_cast<std::size_t>(conversion.precision);
    const wchar_t* end = most ? std::wmemchr(text, 0, most) : text;
    PutText(conversion, std::wstring_view(text, end ? static_cast<std::size_t>(end - text) : most));
}

void Formatter::PutNarrow(const Conversion& conversion) {
    const char* text = va_arg(arguments_, const char*);
    PutText(conversion, String::FromUtf8(text ? text : "(null)").View());
}

void Formatter::PutNumber(const Conversion& conversion, const std::wstring& prefix, std::wstring digits,
                          bool zeroPads) {
    const auto width = static_cast<std::size_t>(conversion.width);
    const std::size_t size = prefix.size() + digits.size();
    const std::size_t padding = width > size ? width - size : 0;
    const bool zeros = conversion.zero && !conversion.left && zeroPads;
    if (!zeros && !conversion.left) out_.append(padding, L' ');
    out_ += prefix;
    if (zeros) out_.append(padding, L'0');
    out_ += digits;
    if (conversion.left) out_.append(padding, L' ');
}

void Formatter::PutText(const Conversion& conversion, std::wstring_view text) {
    if (conversion.precision >= 0) text = text.substr(0, static_cast<std::size_t>(conversion.precision));
    const auto width = static_cast<std::size_t>(conversion.width);
    const std::size_t padding = width > text.size() ? width - text.size() : 0;
    if (!conversion.left) out_.append(padding, L' ');
    out_ += text;
    if (conversion.left) out_.append(padding, L' ');
}

}  // namespace

std::wstring FormatText(const wchar_t* pattern, __builtin_va_list arguments) {
    return pattern ? Formatter(pattern, arguments).Run() : std::wstring();
}

int k3vsprintf(wchar_t* buffer, int size, const wchar_t* pattern, __builtin_va_list arguments) {
    const std::wstring text = FormatText(pattern, arguments);
    if (buffer && size > 0) {
        const std::size_t kept = std::min(text.size(), static_cast<std::size_t>(size) - 1);
        std::wmemcpy(buffer, text.data(), kept);
        buffer[kept] = 0;
    }
    return static_cast<int>(text.size());
}

}  // namespace qn
