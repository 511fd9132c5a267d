#include "importers/step/part21_text.h"

#include "importers/step/part21_codepage.h"

#include <algorithm>
#include <cstdint>

namespace qn::step {
namespace {

constexpr char32_t kReplacement = 0xfffd;

void AppendUtf8(std::string& out, char32_t c) {
    if (c > 0x10ffff || (c >= 0xd800 && c < 0xe000)) c = kReplacement;
    if (c < 0x80) {
        out += static_cast<char>(c);
    } else if (c < 0x800) {
        out += static_cast<char>(0xc0 | (c >> 6));
        out += static_cast<char>(0x80 | (c & 0x3f));
    } else if (c < 0x10000) {
        out += static_cast<char>(0xe0 | (c >> 12));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3f));
        out += static_cast<char>(0x80 | (c & 0x3f));
    } else {
        out += static_cast<char>(0xf0 | (c >> 18));
        out += static_cast<char>(0x80 | ((c >> 12) & 0x3f));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3f));
        out += static_cast<char>(0x80 | (c & 0x3f));
    }
}

int HexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

/// The number of the `count` hex digits at `at`; false if they are not all there.
bool ReadHex(std::string_view text, std::size_t at, std::size_t count, char32_t& value) {
    if (at > text.size() || text.size() - at < count) return false;
    value = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const int digit = HexDigit(text[at + i]);
        if (digit < 0) return false;
        value = value * 16 + static_cast<char32_t>(digit);
    }
    return true;
}

bool IsLayout(char c) {
    return static_cast<unsigned char>(c) < 0x20 && c != '\t';
}

/// The text without line breaks, so that no escape is split by one.
std::string WithoutLayout(std::string_view raw) {
    std::string text;
    text.reserve(raw.size());
    std::copy_if(raw.begin(), raw.end(), std::back_inserter(text), [](char c) { return !IsLayout(c); });
    return text;
}

/// Walks through one string, escape by escape.
class Decoder {
public:
    explicit Decoder(std::string_view text) : text_(text), utf8_(IsUtf8(text)) {}

    std::string Run() {
        while (at_ < text_.size()) {
            const char c = text_[at_];
            if (c == '\\' && Escape()) continue;
            if (c == '\'' && StartsWith("''")) ++at_;
            Plain(c);
            ++at_;
        }
        return std::move(out_);
    }

private:
    bool StartsWith(std::string_view piece) const { return text_.substr(at_, piece.size()) == piece; }

    void Plain(char c) {
        const auto byte = static_cast<unsigned char>(c);
        if (utf8_ || byte < 0x80)
            out_ += c;
        else
            AppendUtf8(out_, FromWindows1252(byte));
    }

    bool Escape() {
        if (StartsWith("\\\\")) return Take(2, U'\\');
        if (StartsWith("\\N\\") || StartsWith("\\F\\")) return Skip(3);
        if (StartsWith("\\S\\")) return EightBit();
        if (StartsWith("\\P")) return CodePage();
        if (StartsWith("\\X\\")) return OneByte();
        if (StartsWith("\\X2\\")) return Wide(4);
        if (StartsWith("\\X4\\")) return Wide(8);
        return false;
    }

    bool Skip(std::size_t length) {
        at_ += length;
        return true;
    }

    bool Take(std::size_t length, char32_t c) {
        AppendUtf8(out_, c);
        return Skip(length);
    }

    bool EightBit() {
        if (at_ + 3 >= text_.size()) return false;
        const auto low = static_cast<unsigned char>(text_[at_ + 3]);
        if (low < 0x20 || low > 0x7f) return false;
        return Take(4, FromIso8859(page_, static_cast<unsigned char>(low | 0x80)));
    }

    bool CodePage() {
        if (at_ + 3 >= text_.size() || text_[at_ + 3] != '\\') return false;
        const char letter = text_[at_ + 2];
        if (letter < 'A' || letter > 'I') return false;
        page_ = letter - 'A' + 1;
        return Skip(4);
    }

    bool OneByte() {
        char32_t value = 0;
        return ReadHex(text_, at_ + 3, 2, value) && Take(5, value);
    }

    /// \X2\ and \X4\: groups of hex digits up to \X0\. Surrogate pairs are joined.
    bool Wide(std::size_t digits) {
        std::size_t at = at_ + 4;
        char32_t high = 0;
        char32_t value = 0;
        while (ReadHex(text_, at, digits, value)) {
            at += digits;
            const bool isHigh = value >= 0xd800 && value < 0xdc00;
            const bool isLow = value >= 0xdc00 && value < 0xe000;
            if (high != 0 && !isLow) AppendUtf8(out_, kReplacement);
            if (high != 0 && isLow) value = 0x10000 + ((high - 0xd800) << 10) + (value - 0xdc00);
            high = isHigh ? value : 0;
            if (!isHigh) AppendUtf8(out_, value);
        }
        if (high != 0) AppendUtf8(out_, kReplacement);
        if (at == at_ + 4) return false;
        at_ = at;
        if (StartsWith("\\X0\\")) at_ += 4;
        return true;
    }

    std::string_view text_;
    bool utf8_;
    int page_ = 1;
    std::size_t at_ = 0;
    std::string out_;
};

/// Length of the UTF-8 sequence that `lead` begins, 0 if it begins none.
std::size_t SequenceLength(unsigned char lead) {
    if (lead < 0x80) return 1;
    if (lead >= 0xc2 && lead < 0xe0) return 2;
    if (lead >= 0xe0 && lead < 0xf0) return 3;
    if (lead >= 0xf0 && lead < 0xf5) return 4;
    return 0;
}

/// Whether the second byte keeps the sequence out of overlong forms, surrogates and beyond U+10FFFF.
bool SecondByteFits(unsigned char lead, unsigned char second) {
    switch (lead) {
        case 0xe0:
            return second >= 0xa0;
        case 0xed:
            return second < 0xa0;
        case 0xf0:
            return second >= 0x90;
        case 0xf4:
            return second < 0x90;
        default:
            return true;
    }
}

}  // namespace

bool IsUtf8(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        const auto lead = static_cast<unsigned char>(text[at]);
        const std::size_t length = SequenceLength(lead);
        if (length == 0 || length > text.size() - at) return false;
        for (std::size_t i = 1; i < length; ++i)
            if ((static_cast<unsigned char>(text[at + i]) & 0xc0) != 0x80) return false;
        if (length > 1 && !SecondByteFits(lead, static_cast<unsigned char>(text[at + 1]))) return false;
        at += length;
    }
    return true;
}

std::string DecodeText(std::string_view raw) {
    const auto isPlain = [](char c) {
        return !IsLayout(c) && c != '\\' && c != '\'' && static_cast<unsigned char>(c) < 0x80;
    };
    if (std::all_of(raw.begin(), raw.end(), isPlain)) return std::string(raw);
    const std::string text = WithoutLayout(raw);
    return Decoder(text).Run();
}

}  // namespace qn::step
