// Assemblies through glTF and back: the same trees, files that the format's own validator takes, and nothing
// half written.

#include "engine/stream/scene_file.h"
#include "frame/entry.h"
#include "frame/host/scene.h"
#include "tests/support/data_dir.h"
#include "tests/support/generated_scene.h"
#include "tests/support/static_module.h"
#include "tests/tool/tool_process.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <map>

namespace assembly::tests {
namespace {

using nlohmann::json;
using qn::test::AssemblyShape;
namespace fs = std::filesystem;

constexpr int kLevels = 10'000;
constexpr int kChildren = 100'000;

/// Of the script that runs the validator.
constexpr int kNoErrors = 0, kNoPackage = 3, kNoProgram = 127;

enum class Verdict { kValid, kInvalid, kNotAsked };

/// What the format's own validator says. `options` go to Node.js.
Verdict Validate(const std::vector<std::string>& files, std::vector<std::string> options = {}) {
    options.push_back(std::string(ASSEMBLY_SOURCE_DIR) + "/tests/tool/gltf_validate.cjs");
    options.insert(options.end(), files.begin(), files.end());
    const ToolRun run = RunProgram("node", options);
    if (run.exitCode == kNoPackage || run.exitCode == kNoProgram) return Verdict::kNotAsked;
    EXPECT_EQ(run.exitCode, kNoErrors) << run.err;
    return run.exitCode == kNoErrors ? Verdict::kValid : Verdict::kInvalid;
}

/// The files are made only if there is a validator.
#define EXPECT_VALID_GLTF(...)                                                             \
    if (Validate({}) == Verdict::kNotAsked || Validate(__VA_ARGS__) == Verdict::kNotAsked) \
    GTEST_SKIP() << "Node.js or its package gltf-validator is not there (see CONTRIBUTING.md)"

std::string Convert(const std::string& from, const std::string& to,
                    const std::vector<std::string>& options = {}) {
    std::vector<std::string> arguments{"convert"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    arguments.insert(arguments.end(), {from, to});
    const ToolRun run = RunTool(arguments);
    EXPECT_EQ(run.exitCode, 0) << run.err;
    return to;
}

std::string Tree(const std::string& file) {
    const ToolRun run = RunTool({"show", "--format", "json", "--ids", file});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_NE(run.out, "");
    return run.out;
}

/// The JSON of a .glb.
json TextOf(const std::string& file) {
    constexpr std::size_t kHead = 20, kSizeAt = 12;
    const std::string bytes = ReadAll(file);
    std::uint32_t size = 0;
    if (bytes.size() >= kHead) std::memcpy(&size, bytes.data() + kSizeAt, sizeof(size));
    return json::parse(bytes.substr(std::min(kHead, bytes.size()), size), nullptr, false);
}

class GltfExport : public testing::Test {
protected:
    std::string File(const std::string& name) const { return folder_.File(name); }
    /// A scene file with the assembly of that shape.
    std::string Keep(const std::string& name, const AssemblyShape& shape) {
        const qn::test::EntryModule module(&K3DLLFunc);
        const qn::test::Assembly made(shape);
        const auto context = qn::api->CreateContext(0, 0);
        WriteAll(File(name), qn::SaveSceneToBytes(*qn::test::GeneratedScene(made), *context));
        return File(name);
    }
    std::string Sample() const { return std::string(ASSEMBLY_SAMPLES_DIR) + "/lantern.stp"; }
    TemporaryFolder folder_;
};

class GltfExportOfStep : public GltfExport, public testing::WithParamInterface<fs::path> {};

TEST_P(GltfExportOfStep, GivesTheSameTreeBackWithAndWithoutGeometry) {
    const std::string scene = Convert(GetParam().string(), File("a.qn"));
    const std::string full = Convert(scene, File("full.glb"));
    const std::string bare = Convert(scene, File("bare.glb"), {"--structure-only"});
    const std::string tree = Tree(scene);
    EXPECT_EQ(Tree(full), tree);
    EXPECT_EQ(Tree(bare), tree);
    EXPECT_FALSE(TextOf(bare).contains("meshes"));
}

TEST_P(GltfExportOfStep, SatisfiesTheFormatsOwnValidator) {
    const std::string file = GetParam().string();
    EXPECT_VALID_GLTF(
        {Convert(file, File("full.glb")), Convert(file, File("bare.glb"), {"--structure-only"})});
}

TEST_P(GltfExportOfStep, SaysAllAgainThatItSaidOfTheFile) {
    const std::string first = Convert(GetParam().string(), File("first.glb"));
    const std::string second = Convert(first, File("second.glb"));
    EXPECT_TRUE(ReadAll(first) == ReadAll(second));
}

INSTANTIATE_TEST_SUITE_P(Files, GltfExportOfStep,
                         testing::ValuesIn(qn::test::QuickDataFiles({".stp", ".step"})),
                         [](const auto& info) { return qn::test::TestNameOf(info.param); });
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(GltfExportOfStep);

TEST_F(GltfExport, WritesTheSameBytesForTheSameInput) {
    EXPECT_EQ(ReadAll(Convert(Sample(), File("a.glb"))), ReadAll(Convert(Sample(), File("b.glb"))));
}

TEST_F(GltfExport, WritesAMeshOnceHoweverOftenItIsShown) {
    const json text = TextOf(Convert(Sample(), File("a.glb")));
    const json stats = ToolJson({"stats", "--format", "json", Sample()});
    std::map<int, int> uses;
    for (const json& node : text["nodes"])
        if (node.contains("mesh")) ++uses[node["mesh"].get<int>()];
    EXPECT_EQ(text["nodes"].size(), stats["occurrences"].get<std::size_t>() + 1);
    EXPECT_EQ(uses.size(), text["meshes"].size());
    EXPECT_GT(std::max_element(uses.begin(), uses.end(),
                               [](auto& left, auto& right) { return left.second < right.second; })
                  ->second,
              1);
}

TEST_F(GltfExport, PutsTheBufferOfATextFileBesideIt) {
    const std::string file = Convert(Sample(), File("two words.gltf"));
    const json text = json::parse(ReadAll(file));
    EXPECT_EQ(text["buffers"][0]["uri"], "two%20words.bin");
    EXPECT_EQ(fs::file_size(File("two words.bin")), text["buffers"][0]["byteLength"].get<std::uintmax_t>());
    EXPECT_EQ(Tree(file), Tree(Sample()));
}

TEST_F(GltfExport, SatisfiesTheFormatsOwnValidator) {
    const std::string wide =
        Keep("wide.qn", AssemblyShape{{{"root", std::vector<int>(kChildren, 1)}, {"part", {}}}});
    const std::string shared = Keep("shared.qn", qn::test::SharedShape(11'111));
    const std::string lone = Keep("lone.qn", AssemblyShape{{{"", {}}}});
    EXPECT_VALID_GLTF({Convert(Sample(), File("a.gltf")), Convert(wide, File("wide.glb")),
                       Convert(shared, File("shared.glb")), Convert(lone, File("lone.glb"))});
}

/// Places of all kinds: sheared, flat, huge, tiny, mirrored.
TEST_F(GltfExport, PlacesThatTheFormatCannotSayInOneNodeSatisfyItsValidator) {
    json text = json::parse(ReadAll(
        Convert(Keep("a.qn", AssemblyShape{{{"root", {1, 1, 1, 1, 1}}, {"part", {}}}}), File("a.gltf"))));
    const json places[] = {{1, 0, 0, 0, 0.5, 1, 0, 0, 0, 0, 1, 0, 1, 2, 3, 1},
                           {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1},
                           {6e3, 8e3, 0, 0, -8e3, 6e3, 0, 0, 0, 0, 1e4, 0, 0, 0, 0, 1},
                           {1e-9, 0, 0, 0, 0, 1e-9, 0, 0, 0, 0, 1e-9, 0, 0, 0, 0, 1},
                           {-1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}};
    for (std::size_t i = 0; i < std::size(places); ++i) {
        text["extras"]["assembly"]["uses"][i + 1]["matrix"] = places[i];
    }
    WriteAll(File("a.gltf"), text.dump());
    const std::string placed = Convert(File("a.gltf"), File("b.glb"));
    EXPECT_EQ(Tree(placed), Tree(File("a.gltf")));
    EXPECT_EQ(TextOf(placed)["nodes"].size(), 1u + 6 + 2);
    EXPECT_VALID_GLTF({placed});
}

TEST_F(GltfExport, TurnsZUpByTheFrameAlone) {
    const json turned = TextOf(Convert(Sample(), File("z.glb")));
    const json straight = TextOf(Convert(Sample(), File("y.glb"), {"--up", "y"}));
    EXPECT_TRUE(turned["nodes"][0].contains("rotation"));
    EXPECT_FALSE(straight["nodes"][0].contains("rotation"));
    EXPECT_EQ(turned["nodes"][0]["scale"], json({0.001, 0.001, 0.001}));
    EXPECT_EQ(turned["nodes"][2], straight["nodes"][2]);
    EXPECT_EQ(Tree(File("z.glb")), Tree(File("y.glb")));
}

TEST_F(GltfExport, KeepsYUpOfAFileThatHasIt) {
    WriteAll(File("up.gltf"), R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[0]}],
                                  "nodes":[{"name":"n","translation":[0,1,0]}]})");
    EXPECT_FALSE(TextOf(Convert(File("up.gltf"), File("up.glb")))["nodes"][0].contains("rotation"));
    EXPECT_EQ(Tree(File("up.glb")), Tree(File("up.gltf")));
}

TEST_F(GltfExport, TenThousandLevelsComeBack) {
    const std::string scene = Keep("deep.qn", qn::test::DeepShape(kLevels));
    const std::string file = Convert(scene, File("deep.glb"));
    EXPECT_EQ(Tree(file), Tree(scene));
}

TEST_F(GltfExport, TenThousandLevelsNeedNoDeepStack) {
    const std::string scene = Keep("deep.qn", qn::test::DeepShape(kLevels));
    // KiB: about a hundred bytes for each level.
    const ToolRun run = RunProgram(
        "sh", {"-c", "ulimit -s 1024; exec \"$@\"", "sh", ASSEMBLY_TOOL, "convert", scene, File("deep.glb")});
    EXPECT_EQ(run.exitCode, 0) << run.err;
}

TEST_F(GltfExport, AHundredThousandChildrenComeBack) {
    AssemblyShape shape{{{"root", std::vector<int>(kChildren, 1)}, {"part", {}}}};
    const std::string scene = Keep("wide.qn", shape);
    const std::string file = Convert(scene, File("wide.glb"));
    EXPECT_EQ(Tree(file), Tree(scene));
}

TEST_F(GltfExport, HeavySharingComesBackAsSharing) {
    const std::string scene = Keep("shared.qn", qn::test::SharedShape(111'111));
    const std::string file = Convert(scene, File("shared.glb"));
    const json text = TextOf(file);
    EXPECT_EQ(text["nodes"].size(), 111'112u);
    EXPECT_EQ(text["extras"]["assembly"]["definitions"].size(), 51u);
    EXPECT_EQ(Tree(file), Tree(scene));
}

TEST_F(GltfExport, MoreNodesThanTheLimitAreRefusedAndNothingIsLeft) {
    AssemblyShape shape;
    for (int level = 0; level < 30; ++level)
        shape.definitions.push_back({"level " + std::to_string(level), {level + 1, level + 1}});
    shape.definitions.push_back({"part", {}});
    const std::string scene = Keep("huge.qn", shape);
    const ToolRun run = RunTool({"convert", scene, File("huge.glb")});
    EXPECT_EQ(run.exitCode, 7) << run.err;
    EXPECT_FALSE(fs::exists(File("huge.glb")));
}

TEST_F(GltfExport, WhatAnotherProgramChangedIsReadFromTheNodes) {
    json text = json::parse(ReadAll(Convert(Sample(), File("a.gltf"))));
    text["nodes"][0]["children"].push_back(text["nodes"].size());
    text["nodes"].push_back({{"name", "added"}});
    WriteAll(File("a.gltf"), text.dump());
    const ToolRun run = RunTool({"show", File("a.gltf")});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_NE(run.err.find("changed after it was written"), std::string::npos) << run.err;
    EXPECT_NE(run.out.find("added"), std::string::npos) << run.out;
}

TEST_F(GltfExport, AMovedNodeOfASharedUseIsReadFromTheNodes) {
    const std::string scene = Keep("shared.qn", qn::test::SharedShape(1'111));
    json text = json::parse(ReadAll(Convert(scene, File("a.gltf"))));
    text["nodes"].back()["translation"] = {1, 2, 3};
    WriteAll(File("a.gltf"), text.dump());
    const ToolRun run = RunTool({"show", File("a.gltf")});
    EXPECT_NE(run.err.find("changed after it was written"), std::string::npos) << run.err;
}

TEST_F(GltfExport, WhatOneOccurrenceSaysGoesThroughAStoredSceneToo) {
    json text = json::parse(ReadAll(Convert(Sample(), File("a.gltf"))));
    const int inner = text["nodes"][1]["children"][0];
    const int use = text["nodes"][inner]["extras"]["assembly"]["use"];
    text["extras"]["assembly"]["overrides"] =
        json::array({{{"use", use}, {"path", {0, use}}, {"attributes", {{"name", "spare"}}}}});
    WriteAll(File("a.gltf"), text.dump());
    const std::string scene = Convert(File("a.gltf"), File("a.qn"));
    json back = TextOf(Convert(scene, File("b.glb")));
    const json overrides = back["extras"]["assembly"]["overrides"];
    ASSERT_EQ(overrides.size(), 1u);
    EXPECT_EQ(overrides[0]["use"], use);
    EXPECT_EQ(overrides[0]["attributes"], json({{"name", "spare"}}));
    EXPECT_EQ(back["nodes"][inner]["name"], "spare");
    EXPECT_EQ(Tree(File("b.glb")), Tree(File("a.gltf")));
}

TEST_F(GltfExport, AFolderInTheWayIsFourAndStays) {
    fs::create_directory(File("a.glb"));
    const ToolRun run = RunTool({"convert", Sample(), File("a.glb")});
    EXPECT_EQ(run.exitCode, 4) << run.err;
    EXPECT_TRUE(fs::is_directory(File("a.glb")));
}

TEST_F(GltfExport, AFolderInTheBuffersPlaceLeavesTheTextUnwritten) {
    fs::create_directory(File("a.bin"));
    const ToolRun run = RunTool({"convert", Sample(), File("a.gltf")});
    EXPECT_EQ(run.exitCode, 4) << run.err;
    EXPECT_FALSE(fs::exists(File("a.gltf")));
}

TEST_F(GltfExport, TheBufferOfAnotherFileStaysAsItIs) {
    WriteAll(File("a.bin"), "other");
    const ToolRun run = RunTool({"convert", Sample(), File("a.gltf")});
    EXPECT_EQ(run.exitCode, 4) << run.err;
    EXPECT_EQ(ReadAll(File("a.bin")), "other");
    EXPECT_FALSE(fs::exists(File("a.gltf")));
}

TEST_F(GltfExport, ItsOwnBufferIsWrittenAnew) {
    ASSERT_EQ(RunTool({"convert", Sample(), File("a.gltf")}).exitCode, 0);
    const std::string buffer = ReadAll(File("a.bin"));
    ASSERT_EQ(RunTool({"convert", Sample(), File("a.gltf")}).exitCode, 0);
    EXPECT_TRUE(ReadAll(File("a.bin")) == buffer);
}

TEST_F(GltfExport, AMissingFolderIsFour) {
    const ToolRun run = RunTool({"convert", Sample(), File("none/a.glb")});
    EXPECT_EQ(run.exitCode, 4) << run.err;
}

TEST_F(GltfExport, ADiskThatIsFullLeavesTheOldFileAlone) {
    WriteAll(File("a.glb"), "old");
    // Files may have one block; the signal that would come with it is ignored.
    const ToolRun run = RunProgram("sh", {"-c", "trap '' XFSZ; ulimit -f 1; exec \"$@\"", "sh", ASSEMBLY_TOOL,
                                          "convert", Sample(), File("a.glb")});
    EXPECT_EQ(run.exitCode, 4) << run.err;
    EXPECT_EQ(ReadAll(File("a.glb")), "old");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder_.Path()), fs::directory_iterator()), 1);
}

TEST_F(GltfExport, WordsThatDoNotFitTheFormatAreUsage) {
    EXPECT_EQ(RunTool({"convert", "--expand", Sample(), File("a.glb")}).exitCode, 2);
    EXPECT_EQ(RunTool({"convert", "--up", "z", Sample(), File("a.qn")}).exitCode, 2);
    EXPECT_EQ(RunTool({"convert", "--up", "x", Sample(), File("a.glb")}).exitCode, 2);
    EXPECT_FALSE(fs::exists(File("a.glb")));
}

}  // namespace
}  // namespace assembly::tests
