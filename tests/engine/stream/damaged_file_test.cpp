#include "engine/stream/object_file.h"
#include "engine/stream/stream_reader.h"
#include "tests/engine/stream/allocation_count.h"
#include "tests/engine/stream/knot.h"
#include "tests/engine/stream/scene_file_bytes.h"
#include "tests/support/accepted_leaks.h"
#include "tests/support/recording_context.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

constexpr std::size_t kFixedCost = 16'000;  // bytes: the reader, tables, messages
constexpr std::size_t kCostPerByte = 100;   // compressed bytes may stand for many

/// A little of everything that a body can hold.
std::string SmallFile() {
    const auto root = MakeKnot("root"), shared = MakeKnot("shared");
    root->SetParamVar(1, Var(1.5)), root->SetParamVar(2, Var(L"t\u00e9xt")), root->SetParamVar(3, Var(true));
    root->SetParamVar(4, Var(Matrix4<double>())), root->SetParamVar(5, Var::Block("bytes", 5));
    root->SetParamVar(6, Var(shared.Get(), 0)), root->SetParamVar(7, Var(std::int64_t{1} << 40));
    root->SetMetaValue(Var("map"), Var(VarMap::Create().Get(), 1));
    root->SetMetaValue(Var("array"), Var(VarArray::Create(3).Get(), 1));
    shared->SetMetaValue(Var(7), Var("seven"));
    root->Link(shared.Get()).Link(MakeKnot("leaf").Get()).Link(shared.Get()).Link(nullptr);
    root->weakLinks.emplace_back(shared.Get());
    return Saved(*root);
}

/// Reads it, to whatever end, and compares what was allocated with the size.
void ReadWithinBounds(std::string_view bytes, bool verifyChecksums) {
    const AcceptedLeaks rings;
    const auto context = MakeContext();
    const AllocationCount allocations;
    const auto reader = Make<StreamReader>("damaged", bytes, *context, verifyChecksums);
    const bool read = reader->Read();
    EXPECT_EQ(read, context->GetFailure() == LoadFailure::kNone);
    EXPECT_LT(allocations.GetTotal(), kFixedCost + kCostPerByte * bytes.size());
}

TEST(DamagedFile, IsRefusedWhenCutAtAnyLength) {
    const auto bytes = SmallFile();
    for (std::size_t length = 0; length < bytes.size(); ++length)
        EXPECT_NE(FaultOfBytes(std::string_view(bytes).substr(0, length)), "") << length;
}

TEST(DamagedFile, IsRefusedWhenAnyByteChanged) {
    auto bytes = SmallFile();
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const char before = bytes[i];
        for (const int change : {0x01, 0x80, 0xff}) {
            bytes[i] = static_cast<char>(before ^ change);
            EXPECT_NE(FaultOfBytes(bytes), "") << i;
        }
        bytes[i] = before;
    }
}

TEST(DamagedFile, IsReadOrRefusedWithinBoundsWhenItsChecksumsFit) {
    auto bytes = SmallFile();
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const char before = bytes[i];
        for (const int value : {0x00, 0x01, 0x7f, 0x80, 0xff, before + 1, before - 1}) {
            bytes[i] = static_cast<char>(value);
            ReadWithinBounds(bytes, false);
        }
        bytes[i] = before;
    }
}

/// Small scenes, with their nodes or without.
std::vector<std::string> SceneFiles() {
    std::vector<std::string> files;
    const std::filesystem::path folder = ASSEMBLY_SOURCE_DIR "/fuzz/corpus/scene_file";
    for (const char* name :
         {"scene.qn", "scene_plain.qn", "values_plain.qn", "expanded_plain.qn", "compact.qn"})
        files.push_back(ReadBytes(folder / name));
    return files;
}

TEST(DamagedFile, OfAWholeSceneIsRefusedWhenCutOrChanged) {
    for (std::string bytes : SceneFiles()) {
        ASSERT_EQ(FaultOfBytes(bytes), "");
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            EXPECT_NE(FaultOfBytes(std::string_view(bytes).substr(0, i)), "") << i;
            bytes[i] = static_cast<char>(bytes[i] ^ 0x10);
            EXPECT_NE(FaultOfBytes(bytes), "") << i;
            bytes[i] = static_cast<char>(bytes[i] ^ 0x10);
        }
    }
}

TEST(DamagedFile, OfAWholeSceneIsReadOrRefusedWithinBoundsWhenItsChecksumsFit) {
    for (std::string bytes : SceneFiles())
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            const char before = bytes[i];
            for (const int value : {0x00, 0x01, 0x7f, 0xff, before + 1, before - 1}) {
                bytes[i] = static_cast<char>(value);
                ReadWithinBounds(bytes, false);
            }
            bytes[i] = before;
        }
}

TEST(DamagedFile, IsReadOrRefusedWithinBoundsWhenOneBodyChangesAnywhere) {
    std::string body = ChunkBytes(1, std::string("\x01\0\0\0\x05\0\0\0\x05\x03\0\0\0abc", 16));
    body += ChunkBytes(Knot::kLinkChunk, std::string("\x01\0\0\0", 4));
    for (std::size_t i = 0; i < body.size(); ++i) {
        const char before = body[i];
        for (int value = 0; value < 256; ++value) {
            body[i] = static_cast<char>(value);
            ReadWithinBounds(FileParts::OneKnot(body).Bytes(), true);
        }
        body[i] = before;
    }
}

TEST(DamagedFile, DoesNotLeadToAllocationsThatItDoesNotPayFor) {
    MakeKnot();
    const auto parts = FileParts::OneKnot(ChunkBytes(Knot::kNameChunk, std::string(100'000, 'a')));
    auto bytes = parts.Bytes();
    ReadWithinBounds(bytes, true);
    for (const std::size_t place : {12u, 24u, 28u, 32u}) {  // counts of the header
        auto changed = bytes;
        scene_file::PutAt(changed.data() + place, std::uint32_t{0x0001'0000});
        ReadWithinBounds(changed, false);
    }
}

}  // namespace
}  // namespace qn::test
