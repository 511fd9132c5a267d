#pragma once

#include "engine/stream/format.h"

namespace qn::scene_file {

/// A row of the directory.
struct BlockRow {
    std::uint32_t kind = 0;
    std::uint32_t coding = 0;
    std::uint64_t storedSize = 0;
    std::uint64_t contentSize = 0;
    std::uint64_t checksum = 0;

    void AppendTo(std::string& out) const;
    /// Expects `kDirectoryRowSize` bytes.
    static BlockRow From(const char* bytes);
};

/// XXH3, 64 bits.
std::uint64_t ChecksumOf(std::string_view bytes);
/// The checksum of two pieces as if they were one.
std::uint64_t ChecksumOf(std::string_view first, std::string_view second);

/// Appends the content to `out`, compressed where that pays, and gives its row.
BlockRow PackBlock(BlockKind kind, std::string_view content, std::string& out);

/// What of a block is wrong, null if nothing. Looks at the row and the stored bytes, allocates nothing.
const char* FaultOf(const BlockRow& row, std::string_view stored, bool verifyChecksum);

/// The content of a block without fault: the stored bytes themselves, or unpacked into `buffer`. Gives false
/// if the compressed bytes are damaged.
bool UnpackBlock(const BlockRow& row, std::string_view stored, std::string& buffer,
                 std::string_view& content);

}  // namespace qn::scene_file
