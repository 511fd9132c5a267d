#include "frame/host/guid.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <random>

namespace qn {
namespace {

// Where each pair of digits of the text goes: the first three groups stand in memory with their low byte
// first.
constexpr std::array<int, 16> kByteOfPair{3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
constexpr std::size_t kTextLength = 36;
constexpr wchar_t kDigits[] = L"0123456789abcdef";

constexpr bool HyphenBeforePair(std::size_t pair) {
    return pair == 4 || pair == 6 || pair == 8 || pair == 10;
}

std::uint64_t g_seed = 0;  // 0: the system's randomness

/// One step of a generator that needs no more state than its counter.
std::uint64_t NextSeeded() noexcept {
    g_seed += 0x9e3779b97f4a7c15u;
    std::uint64_t bits = g_seed;
    bits = (bits ^ bits >> 30) * 0xbf58476d1ce4e5b9u;
    bits = (bits ^ bits >> 27) * 0x94d049bb133111ebu;
    return bits ^ bits >> 31;
}

/// Starts from 256 bits of the system, asked for once: its source is slow.
std::mt19937_64 StartedBySystem() {
    std::random_device device;
    std::array<std::uint32_t, 8> words;
    std::generate(words.begin(), words.end(), std::ref(device));
    std::seed_seq seeds(words.begin(), words.end());
    return std::mt19937_64(seeds);
}

std::uint64_t NextRandom() {
    if (g_seed) return NextSeeded();
    static std::mt19937_64 random = StartedBySystem();
    return random();
}

int DigitValue(wchar_t digit) noexcept {
    if (digit >= L'0' && digit <= L'9') return digit - L'0';
    if (digit >= L'a' && digit <= L'f') return digit - L'a' + 10;
    if (digit >= L'A' && digit <= L'F') return digit - L'A' + 10;
    return -1;
}

}  // namespace

Guid Guid::Create() {
    Guid result;
    const std::uint64_t halves[2] = {NextRandom(), NextRandom()};
    std::memcpy(result.bytes_.data(), halves, sizeof halves);
    result.bytes_[7] = static_cast<std::uint8_t>((result.bytes_[7] & 0x0f) | 0x40);  // version 4
    result.bytes_[8] = static_cast<std::uint8_t>((result.bytes_[8] & 0x3f) | 0x80);
    return result;
}

bool Guid::Parse(const String& text, Guid& out) {
    out = Guid();
    std::wstring_view digits = text.View();
    if (digits.size() == kTextLength + 2 && digits.front() == L'{' && digits.back() == L'}')
        digits = digits.substr(1, kTextLength);
    if (digits.size() != kTextLength) return false;
    Guid read;
    std::size_t at = 0;
    for (std::size_t pair = 0; pair < kByteOfPair.size(); ++pair) {
        if (HyphenBeforePair(pair) && digits[at++] != L'-') return false;
        const int high = DigitValue(digits[at]), low = DigitValue(digits[at + 1]);
        if (high < 0 || low < 0) return false;
        read.bytes_[static_cast<std::size_t>(kByteOfPair[pair])] = static_cast<std::uint8_t>(high << 4 | low);
        at += 2;
    }
    out = read;
    return true;
}

int Guid::Compare(const Guid& other) const noexcept {
    return std::memcmp(bytes_.data(), other.bytes_.data(), bytes_.size());
}

bool Guid::IsZero() const noexcept {
    return *this == Guid();
}

String Guid::ToText() const {
    std::wstring text;
    text.reserve(kTextLength);
    for (std::size_t pair = 0; pair < kByteOfPair.size(); ++pair) {
        if (HyphenBeforePair(pair)) text += L'-';
        const std::uint8_t byte = bytes_[static_cast<std::size_t>(kByteOfPair[pair])];
        text += kDigits[byte >> 4];
        text += kDigits[byte & 15];
    }
    return String(text);
}

void SeedGuids(std::uint64_t seed) {
    g_seed = seed;
}

}  // namespace qn
