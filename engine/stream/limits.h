#pragma once

#include <cstddef>
#include <cstdint>

/// What a scene file may ask for. A file beyond a limit is refused with `LoadFailure::kLimit`.
namespace qn::scene_file_limits {

inline constexpr std::uint64_t kLargestFile = std::uint64_t{64} << 30;  ///< bytes
inline constexpr std::uint32_t kMostObjects = 64'000'000;
inline constexpr std::uint32_t kMostClasses = 4096;
inline constexpr std::size_t kLongestClassKey = 255;  ///< letters
inline constexpr std::uint32_t kMostBlocks = 1'000'000;
inline constexpr std::uint64_t kLargestBody = 0xffff'ffff;  ///< bytes of one object
inline constexpr std::uint64_t kLargestRatio = 32;          ///< content of a block to its stored bytes
inline constexpr std::size_t kDeepestChunk = 64;            ///< nested in one body

}  // namespace qn::scene_file_limits
