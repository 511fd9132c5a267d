#pragma once

#include "engine/stream/block.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace qn::scene_file {

/// Why a file cannot be read.
struct Fault {
    std::uint64_t offset = 0;  ///< byte of the file
    std::string cause;
    bool overLimit = false;
};

/// The class and the body length of one object.
struct IndexRow {
    std::uint16_t classNumber = 0;
    std::uint32_t bodyLength = 0;
};

/// The outer shape of a scene file: what stands around the bodies.
struct Container {
    struct Block {
        BlockRow row;
        std::uint64_t offset = 0;  ///< in the file
    };
    std::uint32_t root = 0;                   ///< number of an object
    std::vector<std::string_view> classKeys;  ///< borrowed from the file's bytes
    std::vector<IndexRow> index;
    std::vector<Block> bodies;
};

/// Reads and checks header, directory, classes and index, and the stored bytes of all blocks. The sizes of
/// all bodies are those of the blocks together. False with the fault otherwise.
bool ReadContainer(std::string_view file, bool verifyChecksums, Container& out, Fault& fault);

/// Puts a file together from blocks that are already packed, one after the other in `blocks`.
std::string WriteContainer(const std::vector<BlockRow>& rows, std::string_view blocks,
                           std::uint32_t objectCount, std::uint32_t classCount, std::uint32_t root);

}  // namespace qn::scene_file
