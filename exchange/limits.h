#pragma once

#include <cstddef>
#include <cstdint>

/// What the files of this folder may ask for. What goes beyond a limit is refused with `LoadFailure::kLimit`.
namespace qn::exchange_limits {

inline constexpr std::uint64_t kLargestFile = std::uint64_t{256} << 20;  ///< bytes of a query or index file
inline constexpr std::size_t kMostEntries = 5'000'000;                   ///< paths, ids or boxes in one file
inline constexpr std::size_t kLongestId = 4096;                          ///< letters of a path or an id
inline constexpr std::uint64_t kMostValues = 200'000'000;                ///< metadata values in one export

}  // namespace qn::exchange_limits
