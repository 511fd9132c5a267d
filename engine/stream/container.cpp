#include "engine/stream/container.h"

#include "engine/stream/limits.h"

#include <algorithm>

#include <fmt/format.h>

namespace qn::scene_file {
namespace {

namespace limits = scene_file_limits;

constexpr std::size_t kVersionAt = 8, kBlockCountAt = 12, kFileSizeAt = 16, kObjectCountAt = 24,
                      kClassCountAt = 28, kRootAt = 32;

/// Reads the parts of one file in order; each step answers false once the fault is set.
class Reader {
public:
    Reader(std::string_view file, bool verifyChecksums, Container& out, Fault& fault)
        : file_(file), verify_(verifyChecksums), out_(out), fault_(fault) {}

    bool Run() { return ReadHeader() && ReadDirectory() && ReadClasses() && ReadIndex() && CompareSizes(); }

private:
    bool Fail(std::uint64_t offset, std::string cause) {
        fault_ = {offset, std::move(cause), false};
        return false;
    }
    bool Exceeds(std::uint64_t offset, std::string_view what, std::uint64_t value, std::uint64_t limit) {
        fault_ = {offset, fmt::format("{} {}, the limit is {}", value, what, limit), true};
        return false;
    }

    bool ReadHeader();
    bool ReadCounts();
    bool ReadDirectory();
    bool TakeBlock(const BlockRow& row, std::uint64_t offset, std::uint32_t number);
    bool ReadClasses();
    bool ReadIndex();
    bool CompareSizes();

    std::string_view StoredBytes(const Container::Block& block) const {
        return file_.substr(block.offset, block.row.storedSize);
    }

    const std::string_view file_;
    const bool verify_;
    Container& out_;
    Fault& fault_;
    std::uint32_t blockCount_ = 0, objectCount_ = 0, classCount_ = 0;
    std::vector<Container::Block> classBlocks_, indexBlocks_;
};

bool Reader::ReadHeader() {
    const auto magic = file_.substr(0, kMagic.size());
    if (magic != kMagic.substr(0, magic.size()) || file_.empty()) return Fail(0, "this is no scene file");
    if (file_.size() < kHeaderSize)
        return Fail(file_.size(), fmt::format("the file ends inside its header of {} bytes", kHeaderSize));
    const auto version = GetAt<std::uint16_t>(file_.data() + kVersionAt);
    if (version != kMajorVersion)
        return Fail(kVersionAt,
                    fmt::format("layout version {}, this program reads version {}", version, kMajorVersion));
    const auto size = GetAt<std::uint64_t>(file_.data() + kFileSizeAt);
    if (size != file_.size())
        return Fail(kFileSizeAt, fmt::format("the file should have {} bytes, it has {}", size, file_.size()));
    return ReadCounts();
}

bool Reader::ReadCounts() {
    blockCount_ = GetAt<std::uint32_t>(file_.data() + kBlockCountAt);
    objectCount_ = GetAt<std::uint32_t>(file_.data() + kObjectCountAt);
    classCount_ = GetAt<std::uint32_t>(file_.data() + kClassCountAt);
    out_.root = GetAt<std::uint32_t>(file_.data() + kRootAt);
    if (file_.size() > limits::kLargestFile) return Exceeds(0, "bytes", file_.size(), limits::kLargestFile);
    if (blockCount_ > limits::kMostBlocks)
        return Exceeds(kBlockCountAt, "blocks", blockCount_, limits::kMostBlocks);
    if (objectCount_ > limits::kMostObjects)
        return Exceeds(kObjectCountAt, "objects", objectCount_, limits::kMostObjects);
    if (classCount_ > limits::kMostClasses)
        return Exceeds(kClassCountAt, "classes", classCount_, limits::kMostClasses);
    if (out_.root == 0 || out_.root > objectCount_)
        return Fail(kRootAt, fmt::format("the root is object {} of {}", out_.root, objectCount_));
    return true;
}

bool Reader::ReadDirectory() {
    const std::uint64_t size = std::uint64_t{blockCount_} * kDirectoryRowSize;
    if (size > file_.size() - kHeaderSize)
        return Fail(kBlockCountAt, fmt::format("no room for a directory of {} blocks", blockCount_));
    const auto directory = file_.substr(kHeaderSize, size);
    if (verify_ && ChecksumOf(file_.substr(0, kChecksumOffset), directory) !=
                       GetAt<std::uint64_t>(file_.data() + kChecksumOffset))
        return Fail(kChecksumOffset, "header or directory are damaged: their checksum is another one");
    std::uint64_t offset = kHeaderSize + size;
    for (std::uint32_t i = 0; i < blockCount_; ++i) {
        const auto row = BlockRow::From(directory.data() + i * kDirectoryRowSize);
        if (!TakeBlock(row, offset, i)) return false;
        offset += row.storedSize;
    }
    if (offset != file_.size()) return Fail(offset, "bytes stand behind the last block");
    return true;
}

bool Reader::TakeBlock(const BlockRow& row, std::uint64_t offset, std::uint32_t number) {
    if (row.storedSize > file_.size() - offset)
        return Fail(kHeaderSize + number * kDirectoryRowSize,
                    fmt::format("block {} claims {} bytes, only {} are left", number, row.storedSize,
                                file_.size() - offset));
    const Container::Block block{row, offset};
    if (const char* fault = FaultOf(row, StoredBytes(block), verify_))
        return Fail(offset, fmt::format("block {} {}", number, fault));
    switch (static_cast<BlockKind>(row.kind)) {
        case BlockKind::kClasses:
            classBlocks_.push_back(block);
            break;
        case BlockKind::kIndex:
            indexBlocks_.push_back(block);
            break;
        case BlockKind::kBodies:
            out_.bodies.push_back(block);
            break;
    }
    return true;
}

bool Reader::ReadClasses() {
    if (classBlocks_.size() != 1)
        return Fail(kHeaderSize, fmt::format("{} blocks of classes instead of one", classBlocks_.size()));
    const auto& block = classBlocks_.front();
    std::string_view rest = StoredBytes(block);
    for (std::uint32_t i = 0; i < classCount_; ++i) {
        const std::uint64_t offset = block.offset + block.row.storedSize - rest.size();
        if (rest.size() < sizeof(std::uint16_t)) return Fail(offset, fmt::format("class {} is cut off", i));
        const auto length = GetAt<std::uint16_t>(rest.data());
        rest.remove_prefix(sizeof length);
        if (length > limits::kLongestClassKey)
            return Exceeds(offset, "letters of a class key", length, limits::kLongestClassKey);
        if (length > rest.size()) return Fail(offset, fmt::format("the key of class {} is cut off", i));
        const auto key = rest.substr(0, length);
        if (key.empty() || !std::all_of(key.begin(), key.end(), [](char c) { return c > ' ' && c < 0x7f; }))
            return Fail(offset, fmt::format("the key of class {} is no text", i));
        out_.classKeys.push_back(key);
        rest.remove_prefix(length);
    }
    if (!rest.empty()) return Fail(block.offset, "bytes stand behind the last class");
    return true;
}

bool Reader::ReadIndex() {
    if (indexBlocks_.size() != 1)
        return Fail(kHeaderSize, fmt::format("{} indexes instead of one", indexBlocks_.size()));
    const auto& block = indexBlocks_.front();
    if (block.row.storedSize != std::uint64_t{objectCount_} * kIndexRowSize)
        return Fail(block.offset, fmt::format("an index of {} bytes does not fit {} objects",
                                              block.row.storedSize, objectCount_));
    out_.index.reserve(objectCount_);
    for (std::uint32_t i = 0; i < objectCount_; ++i) {
        const char* row = file_.data() + block.offset + std::uint64_t{i} * kIndexRowSize;
        const IndexRow entry{GetAt<std::uint16_t>(row), GetAt<std::uint32_t>(row + 2)};
        if (entry.classNumber >= classCount_)
            return Fail(
                block.offset + std::uint64_t{i} * kIndexRowSize,
                fmt::format("object {} is of class {}, there are {}", i + 1, entry.classNumber, classCount_));
        out_.index.push_back(entry);
    }
    return true;
}

bool Reader::CompareSizes() {
    std::uint64_t left = 0;  // of the present block
    std::size_t next = 0;
    for (std::size_t i = 0; i < out_.index.size(); ++i) {
        const std::uint64_t length = out_.index[i].bodyLength;
        if (length == 0) continue;
        while (left == 0 && next < out_.bodies.size())
            left = out_.bodies[next++].row.contentSize;
        if (length > left)
            return Fail(
                indexBlocks_.front().offset + i * kIndexRowSize,
                fmt::format("object {} claims {} bytes, only {} are left in its block", i + 1, length, left));
        left -= length;
    }
    while (left == 0 && next < out_.bodies.size())
        left = out_.bodies[next++].row.contentSize;
    if (left != 0) return Fail(out_.bodies[next - 1].offset, "bytes stand behind the last body");
    return true;
}

}  // namespace

bool ReadContainer(std::string_view file, bool verifyChecksums, Container& out, Fault& fault) {
    return Reader(file, verifyChecksums, out, fault).Run();
}

std::string WriteContainer(const std::vector<BlockRow>& rows, std::string_view blocks,
                           std::uint32_t objectCount, std::uint32_t classCount, std::uint32_t root) {
    std::string directory;
    for (const BlockRow& row : rows)
        row.AppendTo(directory);
    std::string file(kMagic);
    file.reserve(kHeaderSize + directory.size() + blocks.size());
    Put(file, kMajorVersion);
    Put(file, kMinorVersion);
    Put(file, static_cast<std::uint32_t>(rows.size()));
    Put(file, static_cast<std::uint64_t>(kHeaderSize + directory.size() + blocks.size()));
    Put(file, objectCount);
    Put(file, classCount);
    Put(file, root);
    Put(file, std::uint32_t{0});
    Put(file, ChecksumOf(file, directory));
    return file.append(directory).append(blocks);
}

}  // namespace qn::scene_file
