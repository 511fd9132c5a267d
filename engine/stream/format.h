#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

// The byte layout of scene files; docs/file-format.md tells the whole.
//
// Versions, newest first:
//   1.0  first layout

namespace qn::scene_file {

inline constexpr std::string_view kMagic{"\x89QN\r\n\x1a\n\0", 8};
inline constexpr std::uint16_t kMajorVersion = 1;
inline constexpr std::uint16_t kMinorVersion = 0;

inline constexpr std::size_t kHeaderSize = 48;
inline constexpr std::size_t kChecksumOffset = 40;
inline constexpr std::size_t kDirectoryRowSize = 32;
inline constexpr std::size_t kIndexRowSize = 6;
inline constexpr std::size_t kChunkHeaderSize = 6;
inline constexpr std::size_t kNumberSize = 4;  // of an object's number
inline constexpr std::size_t kBlockSize = std::size_t{1} << 20;

enum class BlockKind : std::uint32_t { kClasses = 1, kIndex = 2, kBodies = 3 };
enum class Coding : std::uint32_t { kPlain = 0, kZstd = 1 };

static_assert(std::endian::native == std::endian::little, "numbers are copied as they are");

template <class Number>
void Put(std::string& out, Number value) {
    out.append(reinterpret_cast<const char*>(&value), sizeof value);
}

template <class Number>
void PutAt(char* place, Number value) {
    std::memcpy(place, &value, sizeof value);
}

/// Expects that the bytes are there.
template <class Number>
Number GetAt(const char* place) {
    Number value;
    std::memcpy(&value, place, sizeof value);
    return value;
}

}  // namespace qn::scene_file
