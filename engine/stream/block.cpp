#include "engine/stream/block.h"

#include "engine/stream/limits.h"

#include <algorithm>
#include <memory>

#include <xxhash.h>
#include <zstd.h>

namespace qn::scene_file {
namespace {

constexpr int kStructureLevel = 3;  // objects: small and full of repetition
constexpr int kBulkLevel = 1;       // one large body: geometry, which hardly shrinks further at higher levels
constexpr std::uint64_t kLeastGain = 8;  // compressed if that saves at least a part in so many

struct FreeCompressor {
    void operator()(ZSTD_CCtx* context) const { ZSTD_freeCCtx(context); }
};

/// The frame appended to `out`; its size, 0 on failure.
std::size_t Compress(std::string_view content, std::string& out) {
    static thread_local const std::unique_ptr<ZSTD_CCtx, FreeCompressor> compressor(ZSTD_createCCtx());
    const std::size_t start = out.size();
    const std::size_t room = ZSTD_compressBound(content.size());
    out.resize(start + room);
    const int level = content.size() > 2 * kBlockSize ? kBulkLevel : kStructureLevel;
    const std::size_t size = compressor ? ZSTD_compressCCtx(compressor.get(), out.data() + start, room,
                                                            content.data(), content.size(), level)
                                        : 0;
    const bool done = size != 0 && !ZSTD_isError(size);
    out.resize(start + (done ? size : 0));
    return done ? size : 0;
}

std::uint64_t LeastStoredSize(std::uint64_t contentSize) {
    return (contentSize + scene_file_limits::kLargestRatio - 1) / scene_file_limits::kLargestRatio;
}

bool IsZero(std::string_view bytes) {
    return std::all_of(bytes.begin(), bytes.end(), [](char byte) { return byte == 0; });
}

const char* FaultOfFrame(const BlockRow& row, std::string_view stored) {
    const std::size_t frame = ZSTD_findFrameCompressedSize(stored.data(), stored.size());
    if (ZSTD_isError(frame)) return "holds no whole zstd frame";
    if (!IsZero(stored.substr(frame))) return "holds bytes behind its zstd frame";
    if (ZSTD_getFrameContentSize(stored.data(), stored.size()) != row.contentSize)
        return "has another size in its zstd frame than in the directory";
    return nullptr;
}

}  // namespace

void BlockRow::AppendTo(std::string& out) const {
    Put(out, kind);
    Put(out, coding);
    Put(out, storedSize);
    Put(out, contentSize);
    Put(out, checksum);
}

BlockRow BlockRow::From(const char* bytes) {
    return {GetAt<std::uint32_t>(bytes), GetAt<std::uint32_t>(bytes + 4), GetAt<std::uint64_t>(bytes + 8),
            GetAt<std::uint64_t>(bytes + 16), GetAt<std::uint64_t>(bytes + 24)};
}

std::uint64_t ChecksumOf(std::string_view bytes) {
    return XXH3_64bits(bytes.data(), bytes.size());
}

std::uint64_t ChecksumOf(std::string_view first, std::string_view second) {
    std::string whole;
    whole.reserve(first.size() + second.size());
    whole.append(first).append(second);
    return ChecksumOf(whole);
}

BlockRow PackBlock(BlockKind kind, std::string_view content, std::string& out) {
    const std::size_t start = out.size();
    auto coding = Coding::kPlain;
    if (kind == BlockKind::kBodies) {
        const std::size_t size = Compress(content, out);
        if (size != 0 && size <= content.size() - content.size() / kLeastGain) coding = Coding::kZstd;
    }
    if (coding == Coding::kPlain)
        out.resize(start), out.append(content);
    else
        out.resize(std::max<std::size_t>(out.size(), start + LeastStoredSize(content.size())));
    const std::string_view stored = std::string_view(out).substr(start);
    return {static_cast<std::uint32_t>(kind), static_cast<std::uint32_t>(coding), stored.size(),
            content.size(), ChecksumOf(stored)};
}

const char* FaultOf(const BlockRow& row, std::string_view stored, bool verifyChecksum) {
    if (verifyChecksum && ChecksumOf(stored) != row.checksum)
        return "is damaged: its checksum is another one";
    if (row.kind < static_cast<std::uint32_t>(BlockKind::kClasses) ||
        row.kind > static_cast<std::uint32_t>(BlockKind::kBodies))
        return nullptr;  // will be skipped
    if (row.coding == static_cast<std::uint32_t>(Coding::kPlain))
        return row.storedSize == row.contentSize ? nullptr : "is stored as it is, but with two sizes";
    if (row.coding != static_cast<std::uint32_t>(Coding::kZstd)) return "is stored in an unknown coding";
    if (row.kind != static_cast<std::uint32_t>(BlockKind::kBodies))
        return "is compressed, which its kind does not allow";
    if (row.storedSize < LeastStoredSize(row.contentSize))
        return "claims more content than its stored bytes allow";
    return FaultOfFrame(row, stored);
}

bool UnpackBlock(const BlockRow& row, std::string_view stored, std::string& buffer,
                 std::string_view& content) {
    if (row.coding == static_cast<std::uint32_t>(Coding::kPlain)) {
        content = stored;
        return true;
    }
    buffer.resize(row.contentSize);
    const std::size_t frame = ZSTD_findFrameCompressedSize(stored.data(), stored.size());
    const std::size_t size = ZSTD_decompress(buffer.data(), buffer.size(), stored.data(), frame);
    content = buffer;
    return !ZSTD_isError(size) && size == row.contentSize;
}

}  // namespace qn::scene_file
