#include "importers/gltf/gltf_document.h"
#include "importers/gltf/gltf_error.h"
#include "tests/importers/gltf_text.h"

#include <gtest/gtest.h>

namespace {

using namespace qn;
using namespace qn::gltf;
using test::GlbFile;
using test::GltfText;

/// What is wrong with a file; empty if nothing is.
std::string ErrorOf(const std::string& bytes) {
    try {
        ReadDocument(*SourceOf(bytes));
    } catch (const GltfError& error) {
        return error.what();
    }
    return {};
}

std::string ErrorIn(const std::string& members) {
    return ErrorOf(GltfText(members));
}

LoadFailure KindIn(const std::string& members) {
    try {
        ReadDocument(*SourceOf(GltfText(members)));
    } catch (const GltfError& error) {
        return error.Kind();
    }
    return LoadFailure::kNone;
}

TEST(DamagedGltf, AcceptsTheLeastFile) {
    EXPECT_EQ(ErrorIn(""), "");
    EXPECT_EQ(ErrorOf("\xef\xbb\xbf" + GltfText("")), "") << "behind a byte order mark";
    EXPECT_EQ(ErrorOf(GlbFile(GltfText(""), "")), "");
}

TEST(DamagedGltf, SaysThatAnEmptyFileIsEmpty) {
    EXPECT_EQ(ErrorOf(""), "the file is empty");
}

TEST(DamagedGltf, AsksForAVersionThatItReads) {
    EXPECT_EQ(ErrorOf("{}"), "/asset: expected a version, found none");
    EXPECT_EQ(ErrorOf(R"({"asset":{}})"), "/asset: expected a version, found none");
    EXPECT_EQ(ErrorOf(R"({"asset":{"version":"1.0"}})"), "/asset: version 2.0 is read, this is version 1.0");
    EXPECT_EQ(ErrorOf(R"({"asset":{"version":"2.3","minVersion":"2.1"}})"),
              "/asset: needs a reader of version 2.1, this is 2.0");
    EXPECT_EQ(ErrorOf(R"({"asset":{"version":"2.3","minVersion":"2.0"}})"), "");
}

TEST(DamagedGltf, NamesTheExtensionThatItDoesNotRead) {
    EXPECT_EQ(
        ErrorIn(R"("extensionsRequired":["KHR_mesh_quantization","VND_secret"])"),
        "/extensionsRequired/1: the file requires the extension \"VND_secret\", which is not read here");
    EXPECT_EQ(ErrorIn(R"("extensionsUsed":["VND_secret"])"), "") << "used is not required";
    EXPECT_EQ(ErrorIn(R"("extensionsRequired":["KHR_materials_unlit","KHR_texture_transform"])"), "");
}

TEST(DamagedGltf, TellsWhereATypeIsWrong) {
    EXPECT_EQ(ErrorIn(R"("nodes":7)"), "/nodes: expected an array, found a number");
    EXPECT_EQ(ErrorIn(R"("nodes":[{},[]])"), "/nodes/1: expected an object, found an array");
    EXPECT_EQ(ErrorIn(R"("nodes":[{"mesh":"a"}])"), "/nodes/0/mesh: expected a number, found a text");
    EXPECT_EQ(ErrorIn(R"("nodes":[{"name":null}])"), "/nodes/0/name: expected a text, found null");
    EXPECT_EQ(ErrorIn(R"("nodes":[{"children":[0,{}]}])"),
              "/nodes/0/children/1: expected a number, found an object");
    EXPECT_EQ(ErrorIn(R"("accessors":[{"normalized":1}])"),
              "/accessors/0/normalized: expected true or false, found a number");
}

TEST(DamagedGltf, RefusesIndicesThatLeadNowhere) {
    EXPECT_EQ(ErrorIn(R"("nodes":[{"mesh":0}])"), "/nodes/0/mesh: expected one of the 0 meshes, found 0");
    EXPECT_EQ(ErrorIn(R"("nodes":[{"children":[1]},{"children":[2]}])"),
              "/nodes/1/children/0: expected one of the 2 nodes, found 2");
    EXPECT_EQ(ErrorIn(R"("nodes":[{"camera":3}])"),
              "/nodes/0/camera: expected one of the 0 cameras, found 3");
    EXPECT_EQ(ErrorIn(R"("scene":1,"scenes":[{}])"), "/scene: expected one of the 1 scenes, found 1");
    EXPECT_EQ(ErrorIn(R"("scenes":[{"nodes":[0]}])"),
              "/scenes/0/nodes/0: expected one of the 0 nodes, found 0");
    EXPECT_EQ(ErrorIn(R"("bufferViews":[{"buffer":0}])"),
              "/bufferViews/0/buffer: expected one of the 0 buffers, found 0");
    EXPECT_EQ(ErrorIn(R"("accessors":[{"bufferView":5}])"),
              "/accessors/0/bufferView: expected one of the 0 buffer views, found 5");
    EXPECT_EQ(ErrorIn(R"("meshes":[{"primitives":[{"attributes":{"POSITION":1}}]}])"),
              "/meshes/0/primitives/0/attributes/POSITION: expected one of the 0 accessors, found 1");
}

TEST(DamagedGltf, RefusesNumbersThatAreNoIndex) {
    for (const char* number : {"-1", "1.5", "1e30", "18446744073709551616"})
        EXPECT_NE(ErrorIn(R"("nodes":[{"mesh":)" + std::string(number) + "}]"), "") << number;
    EXPECT_EQ(ErrorIn(R"("nodes":[{"mesh":4294967295}])"),
              "/nodes/0/mesh: expected at most 4294967294, found 4294967295");
    EXPECT_EQ(ErrorIn(R"("nodes":[{"children":[1.0]},{}])"), "") << "whole, if written with a fraction";
}

TEST(DamagedGltf, RefusesNumbersTooLargeToHold) {
    EXPECT_EQ(ErrorIn(R"("nodes":[{"translation":[0,1e999,0]}])"),
              "/nodes/0/translation/1: expected a number that a 64-bit floating point value holds");
}

TEST(DamagedGltf, RefusesANodeWithTwoParents) {
    EXPECT_EQ(ErrorIn(R"("nodes":[{"children":[2]},{"children":[2]},{}])"),
              "/nodes/1/children/0: node 2 has two parents; a node is the child of one other at most");
    EXPECT_EQ(ErrorIn(R"("nodes":[{"children":[1,1]},{}])"),
              "/nodes/0/children/1: node 1 has two parents; a node is the child of one other at most");
}

TEST(DamagedGltf, RefusesRingsOfNodes) {
    const std::string cause = ": the node contains itself, by its children or theirs";
    EXPECT_EQ(ErrorIn(R"("nodes":[{"children":[0]}])"), "/nodes/0" + cause);
    EXPECT_EQ(ErrorIn(R"("nodes":[{},{"children":[2]},{"children":[3]},{"children":[1]}])"),
              "/nodes/1" + cause);
}

TEST(DamagedGltf, RefusesAChildAsTheRootOfAScene) {
    EXPECT_EQ(ErrorIn(R"("nodes":[{"children":[1]},{}],"scenes":[{"nodes":[0,1]}])"),
              "/scenes/0/nodes/1: node 1 is the child of another node; scenes list nodes without parent");
}

TEST(DamagedGltf, RefusesAMatrixBesideItsParts) {
    EXPECT_EQ(ErrorIn(R"("nodes":[{"matrix":[1,0,0,0,0,1,0,0,0,0,1,0,0,0,0,1],"scale":[1,1,1]}])"),
              "/nodes/0: expected either a matrix or translation, rotation and scale, found both");
}

TEST(DamagedGltf, CountsTheNumbersOfAPlace) {
    EXPECT_EQ(ErrorIn(R"("nodes":[{"translation":[1,2]}])"),
              "/nodes/0/translation: expected 3 numbers, found 2");
    EXPECT_EQ(ErrorIn(R"("nodes":[{"rotation":[1,2,3,4,5]}])"),
              "/nodes/0/rotation: expected 4 numbers, found more");
}

TEST(DamagedGltf, RefusesWhatIsGivenTwice) {
    EXPECT_EQ(ErrorIn(R"("nodes":[{}],"nodes":[{}])"), "/nodes: is given twice");
    EXPECT_EQ(ErrorIn(R"("nodes":[{"scale":[1,1,1],"scale":[2,2,2]}])"), "/nodes/0/scale: is given twice");
}

TEST(DamagedGltf, BoundsTheNestingOfExtras) {
    const std::string deep = std::string(100'000, '[') + std::string(100'000, ']');
    EXPECT_NE(ErrorIn("\"extras\":" + deep).find("values are nested deeper than 64 levels"),
              std::string::npos);
    EXPECT_EQ(KindIn("\"extras\":" + deep), LoadFailure::kLimit);
    EXPECT_EQ(ErrorIn("\"other\":" + deep), "") << "passed over, without a walk";
}

TEST(DamagedGltf, TakesNodesAsDeepAsTheyCome) {
    std::string nodes = "{}";
    constexpr int kLevels = 100'000;
    for (int i = 1; i < kLevels; ++i)
        nodes += R"(,{"children":[)" + std::to_string(i - 1) + "]}";
    EXPECT_EQ(ErrorIn("\"nodes\":[" + nodes + "]"), "");
}

TEST(DamagedGltf, TellsCopiesOfDifferentCount) {
    const std::string accessors = R"("accessors":[{"count":2,"type":"VEC3"},{"count":3,"type":"VEC3"}],)";
    EXPECT_EQ(
        ErrorIn(accessors + R"("nodes":[{"extensions":{"EXT_mesh_gpu_instancing":{"attributes":)"
                            R"({"TRANSLATION":0,"SCALE":1}}}}])"),
        "/nodes/0/extensions/EXT_mesh_gpu_instancing/attributes: expected accessors of one count, found 2 "
        "and 3");
}

TEST(DamagedGltf, BoundsTheNumberOfCopies) {
    EXPECT_EQ(KindIn(R"("accessors":[{"count":4000000000,"type":"VEC3"}],"nodes":[{"extensions":)"
                     R"({"EXT_mesh_gpu_instancing":{"attributes":{"TRANSLATION":0}}}}])"),
              LoadFailure::kLimit);
}

TEST(DamagedGltf, SaysWhereTheTextIsDamaged) {
    const std::string error = ErrorOf(R"({"asset":{"version":"2.0"},"nodes":[{"name":"a"},{"name":)");
    EXPECT_NE(error.find("the JSON text is damaged"), std::string::npos) << error;
    EXPECT_NE(ErrorOf(GltfText("") + "x"), "") << "something behind the end";
}

TEST(DamagedGltf, NeverCrashesWhereverItIsCut) {
    const std::string text =
        GltfText(test::TriangleMeshes(2) + R"(,"nodes":[{"mesh":0,"extras":{"a":[1,"b"]}},)"
                                           R"({"children":[0],"matrix":[1,0,0,0,0,1,0,0,0,0,1,0,5,6,7,1]}])");
    for (std::size_t length = 0; length < text.size(); ++length)
        EXPECT_NE(ErrorOf(text.substr(0, length)), "") << length;
    const std::string binary = GlbFile(text, "abcd");
    for (std::size_t length = 0; length < binary.size(); ++length)
        EXPECT_NE(ErrorOf(binary.substr(0, length)), "") << length;
}

TEST(DamagedGltf, NeverCrashesWhateverByteChanges) {
    const std::string text =
        GltfText(test::TriangleMeshes(1) + R"(,"nodes":[{"mesh":0,"translation":[1,2,3]}])");
    for (std::size_t at = 0; at < text.size(); ++at)
        for (const char byte : {'\0', '{', ']', '"', ',', '9', '\\', '\xff'}) {
            std::string changed = text;
            changed[at] = byte;
            ErrorOf(changed);
        }
}

TEST(DamagedGlb, NamesTheByteOfTheDamage) {
    const std::string file = GlbFile(GltfText(""), "abcd");
    EXPECT_EQ(ErrorOf(file.substr(0, 8)), "the file ends in its header of 12 bytes");
    EXPECT_NE(ErrorOf(file.substr(0, file.size() - 1)).find("byte 8: the file claims "), std::string::npos);
    std::string changed = file;
    changed[4] = 1;
    EXPECT_EQ(ErrorOf(changed), "byte 4: version 2 of the container is read, this is version 1");
    changed = file;
    changed[15] = 1;
    EXPECT_NE(ErrorOf(changed).find("byte 12: the chunk claims "), std::string::npos);
    changed = file;
    changed[16] = 'X';
    EXPECT_EQ(ErrorOf(changed), "byte 16: expected the chunk \"JSON\" first");
}

}  // namespace
