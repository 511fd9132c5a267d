#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace assembly::tool {

/// Seconds since 1970-01-01 UTC of "2026-03-31" (its first second) or "2026-03-31T08:30:00Z"; nothing for any
/// other text and for days that no calendar has. Years have four digits.
std::optional<std::int64_t> ParseDate(std::string_view text);

/// The shortest text that `ParseDate` reads as this second; seconds outside of its years as a plain number.
std::string DateText(std::int64_t seconds);

}  // namespace assembly::tool
