#include "tests/engine/stream/scene_file_bytes.h"

#include "engine/stream/object_file.h"
#include "tests/engine/stream/knot.h"
#include "tests/support/recording_context.h"

namespace qn::test {

using namespace scene_file;

FileParts FileParts::OneKnot(std::string_view body) {
    FileParts parts;
    parts.objects = parts.classes = parts.root = 1;
    parts.Add(BlockKind::kClasses, ClassRowBytes(Knot::kKey));
    parts.Add(BlockKind::kIndex, IndexRowBytes(0, static_cast<std::uint32_t>(body.size())));
    parts.Add(BlockKind::kBodies, body);
    return parts;
}

void FileParts::Add(BlockKind kind, std::string_view content) {
    Block block;
    block.row = PackBlock(kind, content, block.stored);
    blocks.push_back(std::move(block));
}

void FileParts::Seal(std::size_t block) {
    blocks[block].row.storedSize = blocks[block].stored.size();
    blocks[block].row.checksum = ChecksumOf(blocks[block].stored);
}

std::string FileParts::Bytes() const {
    std::vector<BlockRow> rows;
    std::string stored;
    for (const Block& block : blocks) {
        rows.push_back(block.row);
        stored += block.stored;
    }
    return WriteContainer(rows, stored, objects, classes, root);
}

std::string IndexRowBytes(std::uint16_t classNumber, std::uint32_t bodyLength) {
    std::string row;
    Put(row, classNumber);
    Put(row, bodyLength);
    return row;
}

std::string ClassRowBytes(std::string_view key) {
    std::string row;
    Put(row, static_cast<std::uint16_t>(key.size()));
    return row.append(key);
}

std::string ChunkBytes(std::uint16_t id, std::string_view payload) {
    std::string chunk;
    Put(chunk, id);
    Put(chunk, static_cast<std::uint32_t>(payload.size()));
    return chunk.append(payload);
}

std::string FaultOfBytes(std::string_view bytes) {
    MakeKnot();  // known from now on
    const auto context = MakeContext();
    LoadFromBytes(bytes, *context);
    return context->GetFailureText().ToUtf8();
}

}  // namespace qn::test
