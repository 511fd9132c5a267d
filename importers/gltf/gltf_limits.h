#pragma once

#include <cstdint>

/// What a glTF file may ask for at most.
namespace qn::gltf_limits {

inline constexpr std::uint64_t kLargestText = std::uint64_t{4} << 30;    ///< bytes of JSON, exclusive
inline constexpr std::uint64_t kMostNodes = 20'000'000;                  ///< nodes and copies together
inline constexpr std::uint64_t kMostOthers = 10'000'000;                 ///< meshes, accessors, views, ...
inline constexpr std::uint64_t kLargestBuffer = std::uint64_t{8} << 30;  ///< bytes of one buffer
inline constexpr std::uint64_t kMostVertices = 200'000'000;              ///< of one mesh, indices too
/// Of all uses of accessors without bytes of their own together.
inline constexpr std::uint64_t kMostUnbackedElements = 250'000;
/// Bytes of memory that vertices, corners, copies and unpacked views may take together in any file, ...
inline constexpr std::uint64_t kFreeMemory = std::uint64_t{64} << 20;
/// ... and how many more for each byte of the file and of the buffers that it names.
inline constexpr std::uint64_t kMemoryRatio = 512;
inline constexpr std::uint64_t kLargestRatio = 64;  ///< unpacked size of a view to its packed size
inline constexpr int kDeepestExtras = 64;           ///< values nested in extras
/// Maps and arrays nested in metadata that is written: extras, and the four around those of a scene.
inline constexpr int kDeepestMetadata = kDeepestExtras + 4;
/// Values nested in the tables of a file of ours: each map or array of metadata may take five, and stands
/// five deep.
inline constexpr int kDeepestTables = 5 * kDeepestMetadata + 6;

}  // namespace qn::gltf_limits
