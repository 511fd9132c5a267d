#pragma once

#include "engine/stream/block.h"
#include "engine/stream/container.h"

#include <string>
#include <string_view>
#include <vector>

namespace qn::test {

/// A scene file made part by part, so that each part can be wrong; checksums and sizes fit unless changed
/// afterwards.
struct FileParts {
    struct Block {
        scene_file::BlockRow row;
        std::string stored;
    };
    std::vector<Block> blocks;
    std::uint32_t objects = 0, classes = 0, root = 0;

    /// A file of one knot with this body.
    static FileParts OneKnot(std::string_view body);
    void Add(scene_file::BlockKind kind, std::string_view content);
    /// Makes checksum and stored size of a row fit its bytes.
    void Seal(std::size_t block);
    std::string Bytes() const;
};

/// One row of the index.
std::string IndexRowBytes(std::uint16_t classNumber, std::uint32_t bodyLength);
/// One row of the classes.
std::string ClassRowBytes(std::string_view key);
/// A chunk with its header.
std::string ChunkBytes(std::uint16_t id, std::string_view payload);

/// Why the file cannot be read: the context's text, empty if it can.
std::string FaultOfBytes(std::string_view bytes);

}  // namespace qn::test
