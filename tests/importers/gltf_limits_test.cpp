#include "importers/gltf/gltf_limits.h"

#include "importers/gltf/gltf_document.h"
#include "importers/gltf/gltf_error.h"
#include "tests/importers/gltf_parts.h"
#include "tests/support/temp_folder.h"

#include <draco/core/encoder_buffer.h>
#include <draco/core/varint_encoding.h>
#include <gtest/gtest.h>
#include <meshoptimizer.h>

namespace {

using namespace qn;
using namespace qn::gltf;
using test::BytesOf;
using test::GltfParts;
using test::GltfText;
using test::ReadMesh;

constexpr const char* kPlain = R"({"attributes":{"POSITION":0}})";

std::string Times(int count, const std::string& text) {
    std::string all;
    for (int i = 0; i < count; ++i)
        all += (i ? "," : "") + text;
    return all;
}

/// The memory that a mesh needs, to the byte: the least with which it is read. 0 if it is not read at all.
std::uint64_t MemoryOf(const std::string& file) {
    std::uint64_t least = 0, most = 1 << 20;
    if (!ReadMesh(file, {}, most).mesh) return 0;
    while (most - least > 1) {
        const std::uint64_t middle = (least + most) / 2;
        (ReadMesh(file, {}, middle).mesh ? most : least) = middle;
    }
    return most;
}

GltfParts Triangle() {
    GltfParts parts;
    parts.Positions({0, 0, 0, 1, 0, 0, 0, 1, 0});
    parts.Corners({0, 1, 2});
    return parts;
}

constexpr std::uint64_t kPositions = 3 * 3 * sizeof(float), kCorners = 3 * sizeof(std::uint32_t);

TEST(GltfAllowance, IsTheFreePartAndAShareOfTheFile) {
    Allowance allowance;
    allowance.Grant(10);
    allowance.Take(gltf_limits::kFreeMemory, "/a");
    allowance.Take(10 * gltf_limits::kMemoryRatio, "/b");
    try {
        allowance.Take(1, "/c");
        FAIL() << "more than was granted";
    } catch (const GltfError& error) {
        EXPECT_EQ(error.Kind(), LoadFailure::kLimit);
        EXPECT_STREQ(error.what(),
                     "/c: expected content that takes at most 67113984 bytes of memory for a file of 10 "
                     "bytes, with this it is 67113985");
    }
}

TEST(GltfAllowance, CountsEachPrimitiveThatGetsCornersOfItsOwn) {
    EXPECT_EQ(MemoryOf(Triangle().File(kPlain)), kPositions + kCorners);
    EXPECT_EQ(MemoryOf(Triangle().File(Times(4, kPlain))), kPositions + 4 * kCorners);
    const std::string indexed = R"({"attributes":{"POSITION":0},"indices":1})";
    EXPECT_EQ(MemoryOf(Triangle().File(Times(4, indexed))), kPositions + 4 * kCorners);
}

TEST(GltfAllowance, CountsTheTrianglesOfStripsAndFans) {
    EXPECT_EQ(MemoryOf(Triangle().File(R"({"attributes":{"POSITION":0},"mode":5})")),
              kPositions + 4 * kCorners);
}

TEST(GltfAllowance, CountsNormals) {
    EXPECT_EQ(MemoryOf(Triangle().File(R"({"attributes":{"POSITION":0,"NORMAL":0}})")),
              2 * kPositions + kCorners);
}

TEST(GltfAllowance, NamesThePlaceThatAsksForTooMuch) {
    const auto read = ReadMesh(Triangle().File(Times(3, kPlain)), {}, kPositions + 2 * kCorners);
    EXPECT_EQ(read.kind, LoadFailure::kLimit);
    EXPECT_EQ(read.error.substr(0, 24), "/meshes/0/primitives/2: ");
    EXPECT_EQ(ReadMesh(Triangle().File(kPlain), {}, 1).error.substr(0, 14), "/accessors/0: ");
}

TEST(GltfAllowance, CountsElementsWithoutBytesOfAllAccessorsTogether) {
    const auto read =
        ReadMesh(GltfText(R"("accessors":[{"componentType":5126,"count":3,"type":"VEC3"},)"
                          R"({"componentType":5126,"count":249998,"type":"VEC3"}],"meshes":[{"primitives":[)"
                          R"({"attributes":{"POSITION":0}},{"attributes":{"POSITION":1}}]}])"));
    EXPECT_EQ(read.kind, LoadFailure::kLimit);
    EXPECT_EQ(read.error,
              "/accessors/1/count: expected at most 250000 elements in the whole file that none of its "
              "bytes stand for, with this it is 250001");
}

/// A view of those bytes, packed.
std::string PackedView(std::size_t length, int stride, std::size_t count, const char* mode) {
    return R"(,"extensions":{"EXT_meshopt_compression":{"buffer":0,"byteLength":)" + std::to_string(length) +
           R"(,"byteStride":)" + std::to_string(stride) + R"(,"count":)" + std::to_string(count) +
           R"(,"mode":")" + mode + "\"}}";
}

TEST(GltfAllowance, TakesViewsOfMeshoptThatArePackedAsTightlyAsCanBe) {
    const std::vector<float> zeros(3 * 3 * 4096);
    std::vector<unsigned char> packed(meshopt_encodeVertexBufferBound(zeros.size() / 3, 12));
    packed.resize(
        meshopt_encodeVertexBuffer(packed.data(), packed.size(), zeros.data(), zeros.size() / 3, 12));
    ASSERT_GT(zeros.size() * sizeof(float), 60 * packed.size());
    GltfParts parts;
    parts.View(BytesOf(packed), PackedView(packed.size(), 12, zeros.size() / 3, "ATTRIBUTES"));
    parts.Accessor(0, 5126, zeros.size() / 3, "VEC3");
    const std::string file = parts.File(kPlain);
    EXPECT_TRUE(ReadMesh(file).mesh) << ReadMesh(file).error;
    EXPECT_EQ(MemoryOf(file), 2 * zeros.size() * sizeof(float) + zeros.size() / 3 * sizeof(std::uint32_t));
}

TEST(GltfAllowance, RefusesViewsOfMeshoptThatClaimMoreThanTheCodecCanPack) {
    const struct {
        const char* mode;
        int stride;
        std::size_t most;  ///< bytes, of 48 packed ones
    } rows[] = {{"ATTRIBUTES", 16, 3072}, {"TRIANGLES", 4, 576}, {"INDICES", 4, 192}};
    for (const auto& row : rows) {
        const auto stride = static_cast<std::size_t>(row.stride);
        const std::size_t step = row.mode[0] == 'T' ? 3 : 1;
        const auto read = [&](std::size_t count) {
            GltfParts parts;
            parts.View(std::string(48, '\0'), PackedView(48, row.stride, count, row.mode));
            parts.Accessor(0, 5126, 3, "VEC3");
            return ReadMesh(parts.File(kPlain));
        };
        EXPECT_EQ(read(row.most / stride).kind, LoadFailure::kMalformed) << row.mode;
        EXPECT_EQ(read(row.most / stride + step).kind, LoadFailure::kLimit) << row.mode;
        EXPECT_EQ(read(row.most / stride + step).error,
                  "/bufferViews/0/extensions/EXT_meshopt_compression: 48 bytes of the mode " +
                      std::string(row.mode) + " unpack to at most " + std::to_string(row.most) +
                      ", these claim " + std::to_string(row.most + step * stride));
    }
}

/// The head of triangles packed by Draco, by the method: 0 one after the other, 1 by their edges.
std::string DracoHead(std::uint8_t method, std::uint8_t minorVersion, std::uint32_t faces) {
    draco::EncoderBuffer head;
    head.Encode("DRACO", 5);
    for (const std::uint8_t byte : {std::uint8_t{2}, minorVersion, std::uint8_t{1}, method})
        head.Encode(byte);
    head.Encode(std::uint16_t{0});
    if (method == 1) {
        head.Encode(std::uint8_t{0});
        draco::EncodeVarint(faces / 2 + 2, &head);
    }
    draco::EncodeVarint(faces, &head);
    if (method == 0) draco::EncodeVarint(faces / 2 + 2, &head);
    head.Encode(std::uint8_t{0});
    if (method == 1) draco::EncodeVarint(faces, &head);
    head.Encode(std::uint64_t{0});
    return {head.data(), head.size()};
}

test::MeshRead ReadPacked(const std::string& packed) {
    GltfParts parts;
    parts.View(packed);
    return ReadMesh(parts.File(R"({"extensions":{"KHR_draco_mesh_compression":)"
                               R"({"bufferView":0,"attributes":{"POSITION":0}}}})"));
}

TEST(GltfAllowance, CountsTheTrianglesThatDracoClaimsBeforeItUnpacksThem) {
    const std::string place = "/meshes/0/primitives/0/extensions/KHR_draco_mesh_compression: ";
    for (const std::uint8_t method : {0, 1}) {
        const auto read = ReadPacked(DracoHead(method, 2, 100'000'000));
        EXPECT_EQ(read.kind, LoadFailure::kLimit) << read.error;
        EXPECT_EQ(read.error.substr(0, place.size() + 8), place + "expected") << int{method};
        EXPECT_EQ(ReadPacked(DracoHead(method, 2, 10)).kind, LoadFailure::kMalformed);
    }
}

TEST(DamagedGltfBuffers, NameTheVersionOfDracoThatIsNotRead) {
    EXPECT_EQ(ReadPacked(DracoHead(1, 1, 10)).error,
              "/meshes/0/primitives/0/extensions/KHR_draco_mesh_compression: version 2.2 of Draco is read, "
              "this is version 2.1");
}

TEST(GltfBuffers, ReadAFileOnceHoweverManyNameIt) {
    const test::TempFolder folder;
    folder.Write("a.bin", "abcdefgh");
    const std::string text =
        GltfText(R"("buffers":[{"uri":"a.bin","byteLength":3},{"uri":"./%61.bin","byteLength":8}])");
    const auto source = SourceOf(text);
    const Document document = ReadDocument(*source);
    BufferStore store(document.model, *source, document.container, folder.Path());
    EXPECT_EQ(store.GetBuffer(0).size(), 3u);
    EXPECT_EQ(store.GetBuffer(1).size(), 8u);
    EXPECT_EQ(store.GetBuffer(0).data(), store.GetBuffer(1).data());
}

TEST(DamagedGltf, ABufferThatIsTooLargeExceedsALimit) {
    try {
        ReadDocument(*SourceOf(GltfText(R"("buffers":[{"byteLength":8589934593}])")));
        FAIL() << "it was read";
    } catch (const GltfError& error) {
        EXPECT_EQ(error.Kind(), LoadFailure::kLimit);
        EXPECT_STREQ(error.what(), "/buffers/0/byteLength: expected at most 8589934592, found 8589934593");
    }
}

}  // namespace
