#include "tests/support/sha256.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>

namespace qn::test {
namespace {

using Words = std::array<std::uint32_t, 64>;

/// The first 32 bits of the fraction of the `power`-th root of the first primes.
Words PrimeRoots(double power) {
    Words words{};
    std::size_t count = 0;
    for (unsigned candidate = 2; count < words.size(); ++candidate) {
        bool isPrime = true;
        for (unsigned divisor = 2; divisor * divisor <= candidate; ++divisor)
            isPrime = isPrime && candidate % divisor != 0;
        if (!isPrime) continue;
        const long double root = std::pow(static_cast<long double>(candidate), 1.0L / power);
        words[count++] = static_cast<std::uint32_t>((root - std::floor(root)) * 4294967296.0L);
    }
    return words;
}

void Mix(std::array<std::uint32_t, 8>& state, const unsigned char* block) {
    static const Words kRounds = PrimeRoots(3);
    Words w{};
    for (std::size_t i = 0; i < 16; ++i)
        w[i] = static_cast<std::uint32_t>(block[4 * i] << 24 | block[4 * i + 1] << 16 |
                                          block[4 * i + 2] << 8 | block[4 * i + 3]);
    for (std::size_t i = 16; i < w.size(); ++i) {
        const auto low = std::rotr(w[i - 15], 7) ^ std::rotr(w[i - 15], 18) ^ (w[i - 15] >> 3);
        const auto high = std::rotr(w[i - 2], 17) ^ std::rotr(w[i - 2], 19) ^ (w[i - 2] >> 10);
        w[i] = w[i - 16] + low + w[i - 7] + high;
    }
    auto [a, b, c, d, e, f, g, h] = state;
    for (std::size_t i = 0; i < w.size(); ++i) {
        const auto sumE = std::rotr(e, 6) ^ std::rotr(e, 11) ^ std::rotr(e, 25);
        const auto sumA = std::rotr(a, 2) ^ std::rotr(a, 13) ^ std::rotr(a, 22);
        const auto first = h + sumE + ((e & f) ^ (~e & g)) + kRounds[i] + w[i];
        const auto second = sumA + ((a & b) ^ (a & c) ^ (b & c));
        h = g;
        g = f;
        f = e;
        e = d + first;
        d = c;
        c = b;
        b = a;
        a = first + second;
    }
    const std::array<std::uint32_t, 8> mixed = {a, b, c, d, e, f, g, h};
    for (std::size_t i = 0; i < state.size(); ++i)
        state[i] += mixed[i];
}

}  // namespace

std::string Sha256(std::string_view bytes) {
    const Words start = PrimeRoots(2);
    std::array<std::uint32_t, 8> state{};
    for (std::size_t i = 0; i < state.size(); ++i)
        state[i] = start[i];
    std::string padded(bytes);
    padded += '\x80';
    while (padded.size() % 64 != 56)
        padded += '\0';
    for (int shift = 56; shift >= 0; shift -= 8)
        padded += static_cast<char>((static_cast<std::uint64_t>(bytes.size()) * 8) >> shift);
    for (std::size_t at = 0; at < padded.size(); at += 64)
        Mix(state, reinterpret_cast<const unsigned char*>(padded.data()) + at);
    std::string hex;
    for (const std::uint32_t word : state)
        for (int shift = 28; shift >= 0; shift -= 4)
            hex += "0123456789abcdef"[word >> shift & 15];
    return hex;
}

std::string Sha256OfLines(const std::vector<std::string>& lines) {
    std::string all;
    for (const std::string& line : lines)
        all += (&line == &lines.front() ? "" : "\n") + line;
    return Sha256(all);
}

}  // namespace qn::test
