#include "importers/gltf/gltf_container.h"

#include "importers/gltf/document_reader.h"
#include "importers/gltf/gltf_error.h"
#include "importers/gltf/gltf_limits.h"

#include <cstring>

namespace qn::gltf {
namespace {

constexpr char kMagic[] = {'g', 'l', 'T', 'F'};
constexpr std::uint32_t kVersion = 2;
constexpr std::uint32_t kTextChunk = 0x4e4f534a;    // "JSON"
constexpr std::uint32_t kBinaryChunk = 0x004e4942;  // "BIN" and a zero
constexpr std::uint64_t kHeaderSize = 12;
constexpr std::uint64_t kChunkHeaderSize = 8;
constexpr char kByteOrderMark[] = {'\xef', '\xbb', '\xbf'};

std::uint32_t WordAt(const unsigned char* bytes) {
    return static_cast<std::uint32_t>(bytes[0]) | static_cast<std::uint32_t>(bytes[1]) << 8 |
           static_cast<std::uint32_t>(bytes[2]) << 16 | static_cast<std::uint32_t>(bytes[3]) << 24;
}

struct Chunk {
    std::uint32_t type = 0;
    std::uint64_t offset = 0;
    std::uint64_t length = 0;
};

Chunk ReadChunk(const FileSource& file, std::uint64_t offset, std::uint64_t end) {
    const std::string place = "byte " + std::to_string(offset) + ": ";
    if (end - offset < kChunkHeaderSize)
        throw GltfError(place + "expected a chunk of 8 bytes or more, " + std::to_string(end - offset) +
                        " are left");
    unsigned char header[kChunkHeaderSize];
    file.Read(offset, header, sizeof(header));
    const Chunk chunk{WordAt(header + 4), offset + kChunkHeaderSize, WordAt(header)};
    if (chunk.length > end - chunk.offset)
        throw GltfError(place + "the chunk claims " + std::to_string(chunk.length) + " bytes, " +
                        std::to_string(end - chunk.offset) + " are left");
    return chunk;
}

void ReadText(const FileSource& file, std::uint64_t offset, std::uint64_t length, Container& out) {
    if (length >= gltf_limits::kLargestText)
        throw GltfError("the JSON text has " + std::to_string(length) + " bytes, fewer than " +
                            std::to_string(gltf_limits::kLargestText) + " are read",
                        LoadFailure::kLimit);
    if (length >= sizeof(kByteOrderMark)) {
        char head[sizeof(kByteOrderMark)];
        file.Read(offset, head, sizeof(head));
        if (std::memcmp(head, kByteOrderMark, sizeof(head)) == 0)
            offset += sizeof(head), length -= sizeof(head);
    }
    out.textLength = static_cast<std::size_t>(length);
    out.textCapacity = out.textLength + DocumentReader::kPadding;
    out.text = std::make_unique_for_overwrite<char[]>(out.textCapacity);
    file.Read(offset, out.text.get(), out.textLength);
    std::memset(out.text.get() + out.textLength, ' ', DocumentReader::kPadding);
}

Container ReadBinaryFile(const FileSource& file, const unsigned char* header) {
    if (WordAt(header + 4) != kVersion)
        throw GltfError("byte 4: version 2 of the container is read, this is version " +
                        std::to_string(WordAt(header + 4)));
    const std::uint64_t length = WordAt(header + 8);
    if (length > file.GetSize())
        throw GltfError("byte 8: the file claims " + std::to_string(length) + " bytes, it has " +
                        std::to_string(file.GetSize()));
    if (length < kHeaderSize) throw GltfError("byte 8: the file claims to be shorter than its header");
    Container container;
    const Chunk text = ReadChunk(file, kHeaderSize, length);
    if (text.type != kTextChunk) throw GltfError("byte 16: expected the chunk \"JSON\" first");
    ReadText(file, text.offset, text.length, container);
    for (std::uint64_t next = text.offset + text.length; next < length;) {
        const Chunk chunk = ReadChunk(file, next, length);
        next = chunk.offset + chunk.length;
        if (chunk.type != kBinaryChunk || container.hasBinary) continue;  // of others nothing is known
        container.hasBinary = true;
        container.binaryOffset = chunk.offset;
        container.binaryLength = chunk.length;
    }
    return container;
}

}  // namespace

Container ReadContainer(const FileSource& file) {
    unsigned char header[kHeaderSize] = {};
    const std::uint64_t size = file.GetSize();
    if (size == 0) throw GltfError("the file is empty");
    file.Read(0, header, static_cast<std::size_t>(size < kHeaderSize ? size : kHeaderSize));
    if (std::memcmp(header, kMagic, sizeof(kMagic)) == 0) {
        if (size < kHeaderSize) throw GltfError("the file ends in its header of 12 bytes");
        return ReadBinaryFile(file, header);
    }
    Container container;
    ReadText(file, 0, size, container);
    return container;
}

}  // namespace qn::gltf
