#pragma once

#include <cstdint>

/// What a glTF file may ask for at most.
namespace qn::gltf_limits {

inline constexpr std::uint64_t kLargestText = std::uint64_t{4} << 30;    ///< bytes of JSON, exclusive
inline constexpr std::uint64_t kMostNodes = 20'000'000;                  ///< nodes and copies together
inline constexpr std::uint64_t kMostOthers = 10'000'000;                 ///< meshes, accessors, views, ...
inline constexpr std::uint64_t kLargestBuffer = std::uint64_t{8} << 30;  ///< bytes of one buffer
inline constexpr std::uint64_t kMostVertices = 200'000'000;              ///< of one mesh, indices too
inline constexpr std::uint64_t kMostUnbackedElements =
    1'000'000;                                          ///< of an accessor without bytes of its own
inline constexpr std::uint64_t kLargestRatio = 10'000;  ///< unpacked size of a view to its packed size
inline constexpr int kDeepestExtras = 64;               ///< values nested in extras

}  // namespace qn::gltf_limits
