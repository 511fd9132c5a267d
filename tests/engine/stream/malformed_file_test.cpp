#include "tests/engine/stream/scene_file_bytes.h"

#include "engine/stream/limits.h"
#include "engine/stream/object_file.h"
#include "tests/engine/stream/knot.h"
#include "tests/support/recording_context.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace scene_file;
using testing::HasSubstr;
using testing::StartsWith;

constexpr std::size_t kClasses = 0, kIndex = 1, kBodies = 2;  // blocks of OneKnot

FileParts Sample() {
    return FileParts::OneKnot(ChunkBytes(Knot::kNameChunk, "name"));
}

TEST(MalformedFile, TheSampleItselfIsFine) {
    EXPECT_EQ(FaultOfBytes(Sample().Bytes()), "");
}

TEST(MalformedFile, IsNoneWithoutTheMagic) {
    EXPECT_EQ(FaultOfBytes(""), "memory: byte 0: this is no scene file");
    EXPECT_EQ(FaultOfBytes("ISO-10303-21;"), "memory: byte 0: this is no scene file");
}

TEST(MalformedFile, EndsInsideItsHeader) {
    EXPECT_EQ(FaultOfBytes(Sample().Bytes().substr(0, 20)),
              "memory: byte 20: the file ends inside its header of 48 bytes");
}

TEST(MalformedFile, IsOfAnotherMajorVersion) {
    auto bytes = Sample().Bytes();
    bytes[8] = 2;
    EXPECT_EQ(FaultOfBytes(bytes), "memory: byte 8: layout version 2, this program reads version 1");
}

TEST(MalformedFile, HasAnotherSizeThanItSays) {
    EXPECT_THAT(FaultOfBytes(Sample().Bytes() + "x"), StartsWith("memory: byte 16: the file should have "));
}

TEST(MalformedFile, HasADamagedHeader) {
    auto bytes = Sample().Bytes();
    bytes[36] = 1;
    EXPECT_EQ(FaultOfBytes(bytes),
              "memory: byte 40: header or directory are damaged: their checksum is another one");
}

TEST(MalformedFile, HasADamagedBlock) {
    auto bytes = Sample().Bytes();
    bytes.back() = 'X';
    EXPECT_THAT(FaultOfBytes(bytes), HasSubstr("block 2 is damaged: its checksum is another one"));
}

TEST(MalformedFile, IsRefusedByNamedLimits) {
    const auto parts = Sample();
    const auto bytes = parts.Bytes();
    const struct {
        std::size_t offset;
        std::uint32_t value;
        const char* text;
    } kCases[] = {{12, scene_file_limits::kMostBlocks + 1, "1000001 blocks, the limit is 1000000"},
                  {24, scene_file_limits::kMostObjects + 1, "64000001 objects, the limit is 64000000"},
                  {28, scene_file_limits::kMostClasses + 1, "4097 classes, the limit is 4096"}};
    for (const auto& [offset, value, text] : kCases) {
        auto changed = bytes;
        PutAt(changed.data() + offset, value);
        const auto context = MakeContext();
        EXPECT_FALSE(LoadFromBytes(changed, *context));
        EXPECT_EQ(context->GetFailure(), LoadFailure::kLimit);
        EXPECT_THAT(context->GetFailureText().ToUtf8(), HasSubstr(text));
    }
}

TEST(MalformedFile, ClaimsMoreBlocksThanItHasRoomFor) {
    auto bytes = Sample().Bytes();
    PutAt(bytes.data() + 12, std::uint32_t{100});
    EXPECT_EQ(FaultOfBytes(bytes), "memory: byte 12: no room for a directory of 100 blocks");
}

TEST(MalformedFile, HasABlockBeyondItsEnd) {
    auto parts = Sample();
    parts.blocks[kBodies].row.storedSize += 5;
    EXPECT_THAT(FaultOfBytes(parts.Bytes()), HasSubstr("block 2 claims 15 bytes, only 10 are left"));
}

TEST(MalformedFile, HasBytesBehindTheLastBlock) {
    auto parts = Sample();
    parts.blocks[kBodies].stored += "more";
    EXPECT_THAT(FaultOfBytes(parts.Bytes()), HasSubstr("bytes stand behind the last block"));
}

TEST(MalformedFile, HasNoRoot) {
    for (const std::uint32_t root : {0u, 2u}) {
        auto parts = Sample();
        parts.root = root;
        EXPECT_THAT(FaultOfBytes(parts.Bytes()), StartsWith("memory: byte 32: the root is object "));
    }
}

TEST(MalformedFile, NamesAnUnknownCoding) {
    auto parts = Sample();
    parts.blocks[kBodies].row.coding = 9;
    EXPECT_THAT(FaultOfBytes(parts.Bytes()), HasSubstr("block 2 is stored in an unknown coding"));
}

TEST(MalformedFile, HasTwoSizesOfAPlainBlock) {
    auto parts = Sample();
    parts.blocks[kBodies].row.contentSize = 1 << 30;
    EXPECT_THAT(FaultOfBytes(parts.Bytes()), HasSubstr("block 2 is stored as it is, but with two sizes"));
}

TEST(MalformedFile, CompressesItsIndex) {
    auto parts = Sample();
    parts.blocks[kIndex].row.coding = static_cast<std::uint32_t>(Coding::kZstd);
    EXPECT_THAT(FaultOfBytes(parts.Bytes()),
                HasSubstr("block 1 is compressed, which its kind does not allow"));
}

/// A knot with a name of many equal letters, so that its block is compressed.
FileParts CompressedSample() {
    auto parts = FileParts::OneKnot(ChunkBytes(Knot::kNameChunk, std::string(1000, 'a')));
    EXPECT_EQ(parts.blocks[kBodies].row.coding, static_cast<std::uint32_t>(Coding::kZstd));
    return parts;
}

TEST(MalformedFile, ClaimsMoreContentThanItsStoredBytesAllow) {
    auto parts = CompressedSample();
    parts.blocks[kBodies].row.contentSize = 1 << 30;
    EXPECT_THAT(FaultOfBytes(parts.Bytes()),
                HasSubstr("block 2 claims more content than its stored bytes allow"));
}

TEST(MalformedFile, HasAnotherSizeInItsFrame) {
    auto parts = CompressedSample();
    --parts.blocks[kBodies].row.contentSize;
    EXPECT_THAT(FaultOfBytes(parts.Bytes()), HasSubstr("another size in its zstd frame"));
}

TEST(MalformedFile, HasBytesBehindItsFrame) {
    auto parts = CompressedSample();
    parts.blocks[kBodies].stored += 'x';
    parts.Seal(kBodies);
    EXPECT_THAT(FaultOfBytes(parts.Bytes()), HasSubstr("block 2 holds bytes behind its zstd frame"));
}

TEST(MalformedFile, HasHalfAFrame) {
    auto parts = CompressedSample();
    parts.blocks[kBodies].stored[0] = 0;
    parts.Seal(kBodies);
    EXPECT_THAT(FaultOfBytes(parts.Bytes()), HasSubstr("block 2 holds no whole zstd frame"));
}

TEST(MalformedFile, MissesABlockOrHasOneTwice) {
    auto parts = Sample();
    parts.Add(BlockKind::kClasses, ClassRowBytes("again"));
    EXPECT_THAT(FaultOfBytes(parts.Bytes()), HasSubstr("2 blocks of classes instead of one"));
    parts.blocks.pop_back();
    parts.blocks.erase(parts.blocks.begin() + kIndex);
    EXPECT_THAT(FaultOfBytes(parts.Bytes()), HasSubstr("0 indexes instead of one"));
}

TEST(MalformedFile, HasAnIndexOfAnotherLength) {
    auto parts = Sample();
    parts.objects = 2;
    EXPECT_THAT(FaultOfBytes(parts.Bytes()), HasSubstr("an index of 6 bytes does not fit 2 objects"));
}

TEST(MalformedFile, NamesAClassThatIsNotThere) {
    auto parts = Sample();
    parts.blocks[kIndex].stored = IndexRowBytes(7, 10);
    parts.Seal(kIndex);
    EXPECT_THAT(FaultOfBytes(parts.Bytes()), HasSubstr("object 1 is of class 7, there are 1"));
}

TEST(MalformedFile, HasClassesThatAreCutOrNoText) {
    const struct {
        std::string row;
        const char* text;
    } kCases[] = {{"\x05", "class 0 is cut off"},
                  {std::string("\x05\0ab", 4), "the key of class 0 is cut off"},
                  {std::string("\0\0", 2), "the key of class 0 is no text"},
                  {std::string("\x01\0\x07", 3), "the key of class 0 is no text"},
                  {ClassRowBytes(std::string(256, 'k')), "256 letters of a class key, the limit is 255"},
                  {ClassRowBytes("a") + "x", "bytes stand behind the last class"}};
    for (const auto& [row, text] : kCases) {
        auto parts = Sample();
        parts.blocks.erase(parts.blocks.begin() + kClasses);
        parts.Add(BlockKind::kClasses, row);
        EXPECT_THAT(FaultOfBytes(parts.Bytes()), HasSubstr(text));
    }
}

TEST(MalformedFile, HasABodyBeyondItsBlock) {
    auto parts = Sample();
    parts.blocks[kIndex].stored = IndexRowBytes(0, 11);
    parts.Seal(kIndex);
    EXPECT_THAT(FaultOfBytes(parts.Bytes()),
                HasSubstr("object 1 claims 11 bytes, only 10 are left in its block"));
}

TEST(MalformedFile, HasBytesBehindTheLastBody) {
    auto parts = Sample();
    parts.blocks[kIndex].stored = IndexRowBytes(0, 9);
    parts.Seal(kIndex);
    EXPECT_THAT(FaultOfBytes(parts.Bytes()), HasSubstr("bytes stand behind the last body"));
}

TEST(MalformedFile, HasAChunkThatIsTooLong) {
    auto body = ChunkBytes(Knot::kNameChunk, "name");
    PutAt(body.data() + 2, std::uint32_t{5});
    const auto bytes = FileParts::OneKnot(body).Bytes();
    EXPECT_EQ(FaultOfBytes(bytes),
              "memory: byte " + std::to_string(bytes.size() - body.size()) +
                  ": object 1 of class test.knot: a chunk claims more than the 10 bytes that are left");
}

TEST(MalformedFile, HasAChunkHeaderThatIsCut) {
    const auto body = ChunkBytes(Knot::kNameChunk, "name") + "abc";
    EXPECT_THAT(FaultOfBytes(FileParts::OneKnot(body).Bytes()),
                HasSubstr("object 1 of class test.knot: a chunk begins, but its header is cut off"));
}

TEST(MalformedFile, NamesAnObjectThatIsNotThere) {
    const auto body = ChunkBytes(Knot::kLinkChunk, std::string("\x02\0\0\0", 4));
    EXPECT_THAT(FaultOfBytes(FileParts::OneKnot(body).Bytes()),
                HasSubstr("chunk 0x1001 of object 1 of class test.knot: object 2 is named, there are 1"));
}

TEST(MalformedFile, HasAnObjectNumberThatIsCut) {
    const auto body = ChunkBytes(Knot::kLinkChunk, "\x01");
    EXPECT_THAT(FaultOfBytes(FileParts::OneKnot(body).Bytes()),
                HasSubstr("the number of an object is cut off"));
}

TEST(MalformedFile, TellsThePlaceInACompressedBlock) {
    const auto body = ChunkBytes(Knot::kNameChunk, std::string(1000, 'a')) + "abc";
    EXPECT_THAT(FaultOfBytes(FileParts::OneKnot(body).Bytes()),
                HasSubstr("byte 1006 of the compressed block there, "));
}

TEST(MalformedFile, OpensWithAnUnknownBlock) {
    auto parts = Sample();
    parts.Add(static_cast<BlockKind>(77), "of a later version");
    EXPECT_EQ(FaultOfBytes(parts.Bytes()), "");
}

TEST(MalformedFile, OpensWithALaterMinorVersion) {
    auto bytes = Sample().Bytes();
    bytes[10] = 9;
    PutAt(bytes.data() + kChecksumOffset,
          ChecksumOf(std::string_view(bytes).substr(0, kChecksumOffset),
                     std::string_view(bytes).substr(kHeaderSize, 3 * kDirectoryRowSize)));
    EXPECT_EQ(FaultOfBytes(bytes), "");
}

TEST(MalformedFile, OpensWithAChunkThatNobodyKnows) {
    const auto body = ChunkBytes(0x7777, "?") + ChunkBytes(Knot::kNameChunk, "name");
    const auto knot = CountedCast<Knot>(Loaded(FileParts::OneKnot(body).Bytes()));
    EXPECT_EQ(knot->name, "name");
}

}  // namespace
}  // namespace qn::test
