#include "importers/step/part21_codepage.h"

#include <iconv.h>

#include <array>
#include <cstddef>
#include <string>

namespace qn::step {
namespace {

/// The upper half of an eight-bit code page as Unicode.
using UpperHalf = std::array<char32_t, 128>;

/// One byte through the system's converter; the byte itself if the page does not define it.
char32_t Convert(iconv_t converter, unsigned char byte) {
    char in = static_cast<char>(byte);
    std::array<unsigned char, 4> out{};
    char* inAt = &in;
    auto* outAt = reinterpret_cast<char*>(out.data());
    std::size_t inLeft = 1;
    std::size_t outLeft = out.size();
    iconv(converter, nullptr, nullptr, nullptr, nullptr);
    if (iconv(converter, &inAt, &inLeft, &outAt, &outLeft) == static_cast<std::size_t>(-1) || outLeft != 0)
        return byte;
    return static_cast<char32_t>(out[0]) | static_cast<char32_t>(out[1]) << 8 |
           static_cast<char32_t>(out[2]) << 16 | static_cast<char32_t>(out[3]) << 24;
}

UpperHalf LoadPage(const std::string& name) {
    UpperHalf page{};
    iconv_t converter = iconv_open("UTF-32LE", name.c_str());
    const bool known = converter != reinterpret_cast<iconv_t>(-1);
    for (std::size_t i = 0; i < page.size(); ++i) {
        const auto byte = static_cast<unsigned char>(i + 0x80);
        page[i] = known ? Convert(converter, byte) : byte;
    }
    if (known) iconv_close(converter);
    return page;
}

constexpr int kFirstPart = 1;
constexpr int kLastPart = 9;

}  // namespace

char32_t FromIso8859(int part, unsigned char byte) {
    if (part <= kFirstPart || part > kLastPart || byte < 0x80) return byte;
    static const auto kPages = [] {
        std::array<UpperHalf, kLastPart + 1> pages{};
        for (int i = kFirstPart; i <= kLastPart; ++i)
            pages[static_cast<std::size_t>(i)] = LoadPage("ISO-8859-" + std::to_string(i));
        return pages;
    }();
    return kPages[static_cast<std::size_t>(part)][byte - 0x80U];
}

char32_t FromWindows1252(unsigned char byte) {
    static const UpperHalf kPage = LoadPage("CP1252");
    return byte < 0x80 ? byte : kPage[byte - 0x80U];
}

}  // namespace qn::step
