#pragma once

namespace qn::chunk {

// Chunks that the engine's own classes write. An id never changes its meaning and is never reused.
inline constexpr int kParams = 0x01;       ///< of any source: count, then id and value for each parameter
inline constexpr int kMetadata = 0x02;     ///< of any source: the metadata map as an object
inline constexpr int kMapRows = 0x10;      ///< of a map: count, then key and value for each row
inline constexpr int kArrayValues = 0x11;  ///< of an array: count, then the values

}  // namespace qn::chunk
