#include "engine/values/utf8.h"

#include <cstdint>

namespace qn::utf8 {
namespace {

constexpr std::uint32_t kReplacement = 0xfffd;

struct Decoded {
    std::uint32_t letter;
    std::size_t bytes;
};

/// What a first byte asks for: how many bytes follow, and the range of the second one, which keeps out
/// overlong forms, surrogates and what lies above U+10FFFF.
struct Lead {
    int following;
    std::uint8_t secondFrom;
    std::uint8_t secondTo;
};

Lead LeadOf(std::uint8_t first) noexcept {
    if (first >= 0xc2 && first <= 0xdf) return {1, 0x80, 0xbf};
    if (first == 0xe0) return {2, 0xa0, 0xbf};
    if (first == 0xed) return {2, 0x80, 0x9f};
    if (first >= 0xe1 && first <= 0xef) return {2, 0x80, 0xbf};
    if (first == 0xf0) return {3, 0x90, 0xbf};
    if (first >= 0xf1 && first <= 0xf3) return {3, 0x80, 0xbf};
    if (first == 0xf4) return {3, 0x80, 0x8f};
    return {0, 0, 0};
}

/// Expects at least one byte.
Decoded DecodeOne(const char* text, std::size_t size) noexcept {
    const auto byte = [text](std::size_t i) { return static_cast<std::uint8_t>(text[i]); };
    if (byte(0) < 0x80) return {byte(0), 1};
    const Lead lead = LeadOf(byte(0));
    if (lead.following == 0) return {kReplacement, 1};
    std::uint32_t letter = byte(0) & (0x3fu >> lead.following);
    for (std::size_t i = 1; i <= static_cast<std::size_t>(lead.following); ++i) {
        const std::uint8_t from = i == 1 ? lead.secondFrom : 0x80;
        const std::uint8_t to = i == 1 ? lead.secondTo : 0xbf;
        if (i >= size || byte(i) < from || byte(i) > to) return {kReplacement, i};
        letter = letter << 6 | (byte(i) & 0x3fu);
    }
    return {letter, static_cast<std::size_t>(lead.following) + 1};
}

std::uint32_t Encodable(wchar_t wide) noexcept {
    const auto letter = static_cast<std::uint32_t>(wide);
    const bool surrogate = letter >= 0xd800 && letter <= 0xdfff;
    return surrogate || letter > 0x10ffff ? kReplacement : letter;
}

}  // namespace

std::size_t CountCharacters(std::string_view text) noexcept {
    std::size_t count = 0;
    for (std::size_t at = 0; at < text.size(); ++count)
        at += DecodeOne(text.data() + at, text.size() - at).bytes;
    return count;
}

std::size_t Decode(std::string_view text, wchar_t* out) noexcept {
    std::size_t count = 0;
    for (std::size_t at = 0; at < text.size();) {
        const Decoded decoded = DecodeOne(text.data() + at, text.size() - at);
        out[count++] = static_cast<wchar_t>(decoded.letter);
        at += decoded.bytes;
    }
    return count;
}

std::size_t CountBytes(std::wstring_view text) noexcept {
    std::size_t bytes = 0;
    for (const wchar_t wide : text) {
        const std::uint32_t letter = Encodable(wide);
        bytes += letter < 0x80 ? 1 : letter < 0x800 ? 2 : letter < 0x10000 ? 3 : 4;
    }
    return bytes;
}

std::size_t Encode(std::wstring_view text, char* out) noexcept {
    const char* const start = out;
    for (const wchar_t wide : text) {
        const std::uint32_t letter = Encodable(wide);
        if (letter < 0x80) {
            *out++ = static_cast<char>(letter);
            continue;
        }
        const int following = letter < 0x800 ? 1 : letter < 0x10000 ? 2 : 3;
        const std::uint32_t mark = 0xff00u >> (following + 1) & 0xffu;
        *out++ = static_cast<char>(mark | letter >> (6 * following));
        for (int i = following - 1; i >= 0; --i)
            *out++ = static_cast<char>(0x80 | (letter >> (6 * i) & 0x3f));
    }
    return static_cast<std::size_t>(out - start);
}

}  // namespace qn::utf8
