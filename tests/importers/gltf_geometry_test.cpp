#include "importers/gltf/gltf_document.h"
#include "importers/gltf/gltf_error.h"
#include "importers/gltf/gltf_uri.h"
#include "importers/gltf/mesh_reader.h"
#include "tests/importers/gltf_parts.h"
#include "tests/support/temp_folder.h"

#include <draco/compression/encode.h>
#include <draco/mesh/triangle_soup_mesh_builder.h>
#include <gtest/gtest.h>
#include <meshoptimizer.h>

#include <algorithm>

namespace {

using namespace qn;
using namespace qn::gltf;
using test::BytesOf;
using test::GlbFile;
using test::GltfParts;
using test::GltfText;
using test::ReadMesh;
using Floats = std::vector<float>;
using Read = test::MeshRead;
using Indices = std::vector<std::uint32_t>;

const Floats kSquare = {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0};
const Floats kSquareInMillimetres = {0, 0, 0, 1000, 0, 0, 1000, 1000, 0, 0, 1000, 0};

TEST(GltfMesh, ReadsTrianglesInMillimetres) {
    GltfParts parts;
    parts.Positions(kSquare);
    parts.Corners({0, 1, 2, 0, 2, 3});
    const Read read = ReadMesh(parts.File(R"({"attributes":{"POSITION":0},"indices":1})"));
    ASSERT_TRUE(read.mesh) << read.error;
    EXPECT_EQ(read.mesh->GetPositions(), kSquareInMillimetres);
    EXPECT_EQ(read.mesh->GetIndices(), (Indices{0, 1, 2, 0, 2, 3}));
}

TEST(GltfMesh, NumbersTheCornersItselfWhereThereAreNoIndices) {
    GltfParts parts;
    parts.Positions({0, 0, 0, 1, 0, 0, 0, 1, 0});
    EXPECT_EQ(ReadMesh(parts.File(R"({"attributes":{"POSITION":0}})")).mesh->GetIndices(),
              (Indices{0, 1, 2}));
}

TEST(GltfMesh, TakesStripsAndFansApart) {
    GltfParts parts;
    parts.Positions({0, 0, 0, 1, 0, 0, 0, 1, 0, 1, 1, 0, 0, 2, 0});
    const auto corners = [&](int mode) {
        return ReadMesh(parts.File(R"({"attributes":{"POSITION":0},"mode":)" + std::to_string(mode) + "}"))
            .mesh->GetIndices();
    };
    EXPECT_EQ(corners(5), (Indices{0, 1, 2, 2, 1, 3, 2, 3, 4}));
    EXPECT_EQ(corners(6), (Indices{0, 1, 2, 0, 2, 3, 0, 3, 4}));
}

TEST(GltfMesh, LeavesOutPointsAndLines) {
    GltfParts parts;
    parts.Positions({0, 0, 0, 1, 0, 0});
    const Read read = ReadMesh(parts.File(R"({"attributes":{"POSITION":0},"mode":1})"));
    EXPECT_FALSE(read.mesh);
    EXPECT_EQ(read.error, "");
    EXPECT_EQ(read.skipped, 1u);
}

TEST(GltfMesh, GivesEachMaterialASlot) {
    GltfParts parts;
    parts.Positions({0, 0, 0, 1, 0, 0, 0, 1, 0});
    const Read read = ReadMesh(parts.File(
        R"({"attributes":{"POSITION":0},"material":1},{"attributes":{"POSITION":0}},{"attributes":{"POSITION":0},"material":1})",
        R"(,"materials":[{},{"name":"red","pbrMetallicRoughness":{"baseColorFactor":[1,0,0,0.5]}}])"));
    ASSERT_TRUE(read.mesh) << read.error;
    ASSERT_EQ(read.mesh->GetSlotCount(), 2);
    EXPECT_EQ(read.mesh->GetSlot(0)->GetMaterial()->GetName(), String(L"red"));
    EXPECT_EQ(read.mesh->GetSlot(0)->GetMaterial()->GetColour(), (std::array<float, 4>{1, 0, 0, 1}))
        << "alpha means nothing where nothing is blended";
    EXPECT_FALSE(read.mesh->GetSlot(1)->GetMaterial());
    ASSERT_EQ(read.mesh->GetGroups().size(), 3u);
    EXPECT_EQ(read.mesh->GetGroups()[2].slot, 0u);
    EXPECT_EQ(read.mesh->GetPositions().size(), 9u) << "shared vertices are stored once";
}

TEST(GltfMesh, DropsNormalsThatSomeOfItsVerticesDoNotHave) {
    GltfParts parts;
    parts.Positions({0, 0, 0, 1, 0, 0, 0, 1, 0});
    parts.Positions({0, 0, 1, 0, 0, 1, 0, 0, 1});
    const std::string with = R"({"attributes":{"POSITION":0,"NORMAL":1}})";
    EXPECT_EQ(ReadMesh(parts.File(with)).mesh->GetNormals().size(), 9u);
    EXPECT_TRUE(ReadMesh(parts.File(with + R"(,{"attributes":{"POSITION":0}})")).mesh->GetNormals().empty());
}

TEST(GltfMesh, ReadsQuantisedPositions) {
    GltfParts parts;
    const std::vector<std::int16_t> shorts = {0, 0, 0, 0, 32767, 0, 0, 0, -32768, 0, 0, 0};
    const int view = parts.View(BytesOf(shorts), R"(,"byteStride":8)");
    parts.Accessor(view, 5122, 3, "VEC3", R"(,"normalized":true)");
    parts.Accessor(view, 5122, 3, "VEC3");
    const Read normalized = ReadMesh(parts.File(R"({"attributes":{"POSITION":0}})"));
    ASSERT_TRUE(normalized.mesh) << normalized.error;
    EXPECT_EQ(normalized.mesh->GetPositions(), (Floats{0, 0, 0, 1000, 0, 0, -1000, 0, 0}));
    EXPECT_EQ(ReadMesh(parts.File(R"({"attributes":{"POSITION":1}})")).mesh->GetPositions()[3], 32767000.0f);
}

TEST(GltfMesh, PutsSparseValuesIn) {
    GltfParts parts;
    const int base = parts.View(BytesOf<float>({0, 0, 0, 1, 0, 0, 0, 1, 0}));
    const int indices = parts.View(BytesOf<std::uint8_t>({2}));
    const int values = parts.View(BytesOf<float>({0, 5, 0}));
    const std::string sparse = R"(,"sparse":{"count":1,"indices":{"bufferView":)" + std::to_string(indices) +
                               R"(,"componentType":5121},"values":{"bufferView":)" + std::to_string(values) +
                               "}}";
    parts.Accessor(base, 5126, 3, "VEC3", sparse);
    parts.Accessor(R"("componentType":5126,"count":3,"type":"VEC3")" + sparse);
    EXPECT_EQ(ReadMesh(parts.File(R"({"attributes":{"POSITION":0}})")).mesh->GetPositions()[7], 5000);
    EXPECT_EQ(ReadMesh(parts.File(R"({"attributes":{"POSITION":1}})")).mesh->GetPositions(),
              (Floats{0, 0, 0, 0, 0, 0, 0, 5000, 0}))
        << "zeros without a view";
}

TEST(GltfMesh, UnpacksViewsOfMeshopt) {
    std::vector<unsigned char> vertices(meshopt_encodeVertexBufferBound(4, 12));
    vertices.resize(meshopt_encodeVertexBuffer(vertices.data(), vertices.size(), kSquare.data(), 4, 12));
    const Indices corners = {0, 1, 2, 0, 2, 3};
    std::vector<unsigned char> packed(meshopt_encodeIndexBufferBound(6, 4));
    packed.resize(meshopt_encodeIndexBuffer(packed.data(), packed.size(), corners.data(), 6));
    const auto extension = [](std::size_t offset, std::size_t length, int stride, int count,
                              const char* mode) {
        return R"(,"extensions":{"EXT_meshopt_compression":{"buffer":0,"byteOffset":)" +
               std::to_string(offset) + R"(,"byteLength":)" + std::to_string(length) + R"(,"byteStride":)" +
               std::to_string(stride) + R"(,"count":)" + std::to_string(count) + R"(,"mode":")" + mode +
               "\"}}";
    };
    GltfParts parts;
    parts.View(BytesOf(vertices), extension(0, vertices.size(), 12, 4, "ATTRIBUTES"));
    const std::size_t second = (vertices.size() + 3) / 4 * 4;
    parts.View(BytesOf(packed), extension(second, packed.size(), 4, 6, "TRIANGLES"));
    parts.Accessor(0, 5126, 4, "VEC3");
    parts.Accessor(1, 5125, 6, "SCALAR");
    const Read read = ReadMesh(parts.File(R"({"attributes":{"POSITION":0},"indices":1})"));
    ASSERT_TRUE(read.mesh) << read.error;
    EXPECT_EQ(read.mesh->GetPositions(), kSquareInMillimetres);
    EXPECT_EQ(read.mesh->GetIndices().size(), 6u);
}

TEST(GltfMesh, RefusesDamagedViewsOfMeshopt) {
    GltfParts parts;
    parts.View(
        std::string(40, 'x'),
        R"(,"extensions":{"EXT_meshopt_compression":{"buffer":0,"byteLength":40,"byteStride":12,"count":3,)"
        R"("mode":"ATTRIBUTES"}})");
    parts.Accessor(0, 5126, 3, "VEC3");
    EXPECT_EQ(ReadMesh(parts.File(R"({"attributes":{"POSITION":0}})")).error,
              "/bufferViews/0/extensions/EXT_meshopt_compression: the packed bytes are damaged");
}

std::string PackedByDraco() {
    draco::TriangleSoupMeshBuilder builder;
    builder.Start(1);
    const int positions = builder.AddAttribute(draco::GeometryAttribute::POSITION, 3, draco::DT_FLOAT32);
    const float corners[3][3] = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
    builder.SetAttributeValuesForFace(positions, draco::FaceIndex(0), corners[0], corners[1], corners[2]);
    const auto mesh = builder.Finalize();
    draco::Encoder encoder;
    draco::EncoderBuffer packed;
    EXPECT_TRUE(encoder.EncodeMeshToBuffer(*mesh, &packed).ok());
    return {packed.data(), packed.size()};
}

constexpr const char* kDracoPrimitive =
    R"({"attributes":{"POSITION":0},"indices":1,"extensions":{"KHR_draco_mesh_compression":)"
    R"({"bufferView":0,"attributes":{"POSITION":0}}}})";

TEST(GltfMesh, UnpacksPrimitivesOfDraco) {
    GltfParts parts;
    parts.View(PackedByDraco());
    parts.Accessor(R"("componentType":5126,"count":3,"type":"VEC3")");
    parts.Accessor(R"("componentType":5125,"count":3,"type":"SCALAR")");
    const Read read = ReadMesh(parts.File(kDracoPrimitive));
    ASSERT_TRUE(read.mesh) << read.error;
    EXPECT_EQ(read.mesh->GetIndices().size(), 3u);
    Floats numbers = read.mesh->GetPositions();
    std::sort(numbers.begin(), numbers.end());
    EXPECT_EQ(numbers, (Floats{0, 0, 0, 0, 0, 0, 0, 1000, 1000}));
}

TEST(GltfMesh, RefusesDamagedPrimitivesOfDraco) {
    GltfParts parts;
    parts.View("no draco at all");
    parts.Accessor(R"("componentType":5126,"count":3,"type":"VEC3")");
    parts.Accessor(R"("componentType":5125,"count":3,"type":"SCALAR")");
    const std::string place = "/meshes/0/primitives/0/extensions/KHR_draco_mesh_compression: ";
    EXPECT_EQ(ReadMesh(parts.File(kDracoPrimitive)).error.substr(0, place.size()), place);
}

TEST(DamagedGltfBuffers, TellsWhatIsMissing) {
    const auto errorOf = [](const std::string& buffers) {
        GltfParts parts;
        std::string file =
            GltfText(buffers + R"(,"bufferViews":[{"buffer":0,"byteLength":36}],"accessors":[{)"
                               R"("bufferView":0,"componentType":5126,"count":3,"type":"VEC3"}],)"
                               R"("meshes":[{"primitives":[{"attributes":{"POSITION":0}}]}])");
        return ReadMesh(file, std::filesystem::temp_directory_path());
    };
    EXPECT_EQ(errorOf(R"("buffers":[{"byteLength":36}])").error,
              "/buffers/0: has no uri, and the file has no binary part");
    const Read missing = errorOf(R"("buffers":[{"byteLength":36,"uri":"no%20such.bin"}])");
    EXPECT_EQ(missing.error, "/buffers/0: the file \"no%20such.bin\": there is no such file");
    EXPECT_EQ(missing.kind, LoadFailure::kMissing);
    EXPECT_EQ(errorOf(R"("buffers":[{"byteLength":36,"uri":"data:;base64,AAAA"}])").error,
              "/buffers/0: byteLength: the buffer claims 36 bytes, 3 are there");
    EXPECT_EQ(errorOf(R"("buffers":[{"byteLength":36,"uri":"data:;base64,A*AA"}])").error,
              "/buffers/0: letter 1 of the base64 text is none of its 64 letters");
}

TEST(DamagedGltfBuffers, ComparesEveryRangeWithTheBytesThatAreThere) {
    const auto errorOf = [](const std::string& views, const std::string& accessor) {
        return ReadMesh(GlbFile(GltfText(R"("buffers":[{"byteLength":36}],"bufferViews":[)" + views +
                                         R"(],"accessors":[)" + accessor +
                                         R"(],"meshes":[{"primitives":[{"attributes":{"POSITION":0}}]}])"),
                                std::string(36, '\0')))
            .error;
    };
    const std::string view = R"({"buffer":0,"byteLength":36})";
    EXPECT_EQ(errorOf(R"({"buffer":0,"byteOffset":4,"byteLength":36})",
                      R"({"bufferView":0,"componentType":5126,"count":3,"type":"VEC3"})"),
              "/bufferViews/0: expected a piece of the 36 bytes of its buffer, found bytes 4 to 40");
    EXPECT_EQ(errorOf(view, R"({"bufferView":0,"componentType":5126,"count":4,"type":"VEC3"})"),
              "/accessors/0: 4 elements need 48 bytes from byte 0 on, the buffer view has 36");
    EXPECT_EQ(
        errorOf(view,
                R"({"bufferView":0,"byteOffset":8589934592,"componentType":5126,"count":3,"type":"VEC3"})"),
        "/accessors/0: 3 elements need 36 bytes from byte 8589934592 on, the buffer view has 36");
    EXPECT_EQ(errorOf(view, R"({"bufferView":0,"componentType":5126,"count":3,"type":"VEC2"})"),
              "/accessors/0/type: expected 3 components, found 2");
    EXPECT_EQ(errorOf(view, R"({"bufferView":0,"componentType":7,"count":3,"type":"VEC3"})"),
              "/accessors/0/componentType: expected 5120 to 5123, 5125 or 5126, found 7");
    EXPECT_EQ(errorOf(view, R"({"componentType":5126,"count":250001,"type":"VEC3"})"),
              "/accessors/0/count: expected at most 250000 elements in the whole file that none of its "
              "bytes stand for, with this it is 250001");
}

TEST(DamagedGltfBuffers, RefusesCornersBeyondTheVertices) {
    GltfParts parts;
    parts.Positions(kSquare);
    parts.Corners({0, 1, 4});
    EXPECT_EQ(ReadMesh(parts.File(R"({"attributes":{"POSITION":0},"indices":1})")).error,
              "/meshes/0/primitives/0/indices: expected indices below 4, found 4");
}

TEST(DamagedGltfBuffers, RefusesCornersBeyondVerticesThatAreUsedAgain) {
    GltfParts parts;
    parts.Positions({0, 0, 0, 1, 0, 0, 0, 1, 0});
    parts.Positions(kSquare);
    parts.Corners({0, 1, 2});
    parts.Corners({3, 4, 5});
    const std::string triangle = R"({"attributes":{"POSITION":0},"indices":2})";
    const std::string square = R"({"attributes":{"POSITION":1},"indices":2})";
    const std::string beyond = R"({"attributes":{"POSITION":0},"indices":3})";
    EXPECT_EQ(ReadMesh(parts.File(triangle + "," + square + "," + beyond)).error,
              "/meshes/0/primitives/2/indices: expected indices below 3, found 3");
}

TEST(DamagedGltfBuffers, RefusesVerticesThatAreNotFiniteInMillimetres) {
    GltfParts parts;
    parts.Positions({0, 0, 0, 1e38f, 0, 0, 0, 1, 0});
    EXPECT_EQ(ReadMesh(parts.File(R"({"attributes":{"POSITION":0}})")).error,
              "/accessors/0: a vertex has a coordinate that is not finite in millimetres");
}

TEST(GltfUri, FindsFilesByPercentEncodedNames) {
    const test::TempFolder folder;
    EXPECT_EQ(ResolveUri("a%20b.bin", folder.Path()).filename(), "a b.bin");
    EXPECT_EQ(ResolveUri("%E2%9D%A4.bin", folder.Path()).filename(), "❤.bin");
    EXPECT_EQ(ResolveUri("100%.bin", folder.Path()).filename(), "100%.bin");
    EXPECT_EQ(ResolveUri("below/../c.bin", folder.Path()).filename(), "c.bin");
}

TEST(GltfUri, RefusesFilesThatAreNotBelowTheFolder) {
    const test::TempFolder folder;
    for (const char* uri : {"../a.bin", "/etc/passwd", "%2e%2e/a.bin", "x/../../a.bin", "", ".",
                            "http://host/a.bin", "file:///etc/passwd", "C:a.bin"})
        EXPECT_THROW(ResolveUri(uri, folder.Path()), GltfError) << uri;
}

TEST(GltfUri, FollowsNoLinkOutOfTheFolder) {
    const test::TempFolder folder;
    std::filesystem::create_symlink("/etc/passwd", folder.Path() / "link.bin");
    EXPECT_THROW(ResolveUri("link.bin", folder.Path()), GltfError);
}

TEST(GltfUri, DecodesDataInBase64AndPlain) {
    EXPECT_EQ(DecodeDataUri("data:application/octet-stream;base64,AQID/w=="),
              (std::vector<std::uint8_t>{1, 2, 3, 255}));
    EXPECT_EQ(DecodeDataUri("data:text/plain,a%00b"), (std::vector<std::uint8_t>{'a', 0, 'b'}));
}

}  // namespace
