#pragma once

#include "frame/host/string.h"

#include <array>
#include <cstdint>

namespace qn {

/// 16 bytes in memory order. Text form: 8-4-4-4-12 hexadecimal digits of the usual mixed-endian notation.
class Guid {
public:
    Guid() = default;
    explicit Guid(const std::array<std::uint8_t, 16>& bytes) : bytes_(bytes) {}

    /// A new random id (version 4), from the generator that `SeedGuids` can fix.
    static Guid Create();
    /// Reads 8-4-4-4-12 digits, braces optional, any case; on failure false and the zero id.
    static bool Parse(const String& text, Guid& out);
    /// Below 0, 0 or above 0, by bytes.
    int Compare(const Guid& other) const noexcept;
    bool IsZero() const noexcept;
    const std::array<std::uint8_t, 16>& Bytes() const noexcept { return bytes_; }
    /// Lower-case text with hyphens, without braces.
    String ToText() const;
    friend bool operator==(const Guid&, const Guid&) = default;
    friend auto operator<=>(const Guid&, const Guid&) = default;

private:
    std::array<std::uint8_t, 16> bytes_{};
};

/// Makes `Guid::Create` repeatable; 0 goes back to the system's randomness.
void SeedGuids(std::uint64_t seed);

}  // namespace qn
