#include "engine/runtime/byte_stream.h"

#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

namespace qn {
namespace {

using test::TempFolder;

TEST(ByteStream, ReadsWholeItemsOnly) {
    const auto stream = ByteStream::FromBytes("abcdefg");
    char buffer[8] = {};
    EXPECT_EQ(stream->ReadData(buffer, 3, 5), 2);
    EXPECT_STREQ(buffer, "abcdef");
    EXPECT_EQ(stream->Remaining(), 1u);
    EXPECT_EQ(stream->ReadData(buffer, 3, 1), 0);
    EXPECT_EQ(stream->ReadData(buffer, 1, 5), 1);
}

TEST(ByteStream, ReadsNothingForSillySizes) {
    const auto stream = ByteStream::FromBytes("abc");
    char buffer[4] = {};
    EXPECT_EQ(stream->ReadData(buffer, 0, 3), 0);
    EXPECT_EQ(stream->ReadData(buffer, 1, -1), 0);
    EXPECT_EQ(stream->ReadData(nullptr, 1, 1), 0);
    EXPECT_EQ(stream->Remaining(), 3u);
}

TEST(ByteStream, ReadsIntegersLowestByteFirst) {
    const auto stream = ByteStream::FromBytes(std::string("\x01\x02\x00\xff\x05", 5));
    int value = 0;
    ASSERT_TRUE(stream->ReadInt(value));
    EXPECT_EQ(value, static_cast<int>(0xff000201));
    EXPECT_FALSE(stream->ReadInt(value));
}

TEST(ByteStream, RefusesToWrite) {
    const auto stream = ByteStream::FromBytes("");
    EXPECT_FALSE(stream->BeginChunk(0x1000));
    EXPECT_FALSE(stream->WriteInt(1));
    EXPECT_FALSE(stream->WriteData("a", 1, 1));
    EXPECT_FALSE(stream->WriteObjectChunk(nullptr, nullptr, 1));
    EXPECT_FALSE(stream->WriteObjectNumber(nullptr, nullptr, false));
    stream->EndChunk();
}

TEST(ByteStream, HasNoChunksAndNoObjects) {
    const auto stream = ByteStream::FromBytes("abcdefgh");
    EXPECT_FALSE(stream->NextChunk());
    EXPECT_EQ(stream->GetChunkId(), 0);
    EXPECT_FALSE(stream->ReadObject(nullptr));
    EXPECT_FALSE(stream->ReadObjectNumber(nullptr));
    EXPECT_EQ(stream->Remaining(), 8u);
}

TEST(ByteStream, KeepsItsFirstFailure) {
    const auto stream = ByteStream::FromBytes("");
    EXPECT_FALSE(stream->HasFailed());
    EXPECT_FALSE(stream->Fail(L"first"));
    EXPECT_FALSE(stream->Fail(L"second"));
    EXPECT_TRUE(stream->HasFailed());
    EXPECT_EQ(stream->GetFailureText(), String(L"first"));
}

TEST(ByteStream, OpensFilesAndNothingElse) {
    const TempFolder folder;
    const auto stream = ByteStream::OpenFile(folder.Write("❤ name.bin", std::string("a\0b", 3)));
    ASSERT_TRUE(stream);
    EXPECT_EQ(stream->Rest(), std::string_view("a\0b", 3));
    EXPECT_FALSE(ByteStream::OpenFile(folder.File("missing")));
    EXPECT_FALSE(ByteStream::OpenFile(String::FromUtf8(folder.Path().string())));
}

TEST(ByteStream, IsReadToItsEndInBlocks) {
    const std::string bytes(200'000, 'x');
    const auto stream = ByteStream::FromBytes(bytes);
    char first = 0;
    stream->ReadData(&first, 1, 1);
    EXPECT_EQ(ReadToEnd(*stream).size(), bytes.size() - 1);
    EXPECT_EQ(ReadToEnd(*stream), "");
}

}  // namespace
}  // namespace qn
