// Every glTF file of the data folder through the tool, against what an independent reader found in it.

#include "tests/tool/shown_paths.h"
#include "tests/tool/tool_process.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <ostream>

namespace assembly::tests {
namespace {

using nlohmann::json;

struct GltfFile {
    const char* folder;
    const char* name;
    bool hasBuffers = true;
};

constexpr GltfFile kFiles[] = {
    {"gltf-milk-truck", "CesiumMilkTruck.glb"},
    {"gltf-truck-town", "truck_town-2022-08-25.glb"},
    {"gltf-truck-town", "truck_town-2022-10-07.glb"},
    {"gltf-badge-board", "board.glb"},
    {"gltf-recursive", "RecursiveSkeletons.glb"},
    {"gltf-mirror", "NegativeScaleTest.glb"},
    {"gltf-gpu-instancing", "SimpleInstancing.glb"},
    {"gltf-gpu-instancing", "composite.gltf", false},
    {"gltf-scenes", "MultipleScenes.gltf"},
    {"gltf-uri-spaces", "Box With Spaces.gltf"},
    {"gltf-unicode", "Unicode❤♻Test.glb"},
    {"gltf-unicode", "Unicode❤♻Test.gltf"},
    {"gltf-spheres", "MetalRoughSpheresNoTextures.glb"},
    {"gltf-chess", "ABeautifulGame.gltf", false},
    {"gltf-many-cubes", "many-cubes.gltf"},
};

void PrintTo(const GltfFile& file, std::ostream* out) {
    *out << file.name;
}

constexpr const char* kUnnamed = "None";  // as the expectations have it

class GltfFiles : public testing::TestWithParam<GltfFile> {
protected:
    void SetUp() override {
        if (DataFolder().empty()) GTEST_SKIP() << "the data folder is not there";
        expected_ = json::parse(
            ReadAll((DataFolder() / "expected" / (std::string(GetParam().name) + ".json")).string()));
    }
    static std::string File() { return (DataFolder() / GetParam().folder / GetParam().name).string(); }
    int Expected(const char* key) const { return expected_[key].get<int>(); }
    /// Copies of nodes are occurrences here, and only counted as mesh uses there.
    int Copies() const { return Expected("gpu_instances"); }
    json expected_;
};

std::string NameOf(const json& occurrence, const char* otherwise) {
    return occurrence.contains("name") ? occurrence["name"].get<std::string>() : otherwise;
}

TEST_P(GltfFiles, AreCountedAsTheirNodesStand) {
    const json stats = ToolJson({"stats", "--format", "json", File()});
    const int levelOfCopies = Copies() ? 1 : 0;
    EXPECT_EQ(stats["occurrences"], Expected("nodes") + Copies());
    EXPECT_EQ(stats["roots"], Expected("roots"));
    EXPECT_EQ(stats["depth"], Expected("depth") + levelOfCopies);
    EXPECT_EQ(stats["max_children"], std::max(Expected("max_children"), Copies()));
    EXPECT_EQ(stats["leaf_occurrences"],
              Expected("leaf_occurrences") - Expected("gpu_instancing_nodes") + Copies());
}

TEST_P(GltfFiles, UseTheirMeshesAsOftenAsTheirNodesShowThem) {
    const json stats = ToolJson({"stats", "--format", "json", File()});
    const int leavesWithout = Expected("empty_leaves") + Expected("cameras");
    const int uses = stats["leaf_occurrences"].get<int>() - leavesWithout + Expected("groups_with_mesh");
    EXPECT_EQ(uses, Expected("mesh_uses"));
}

TEST_P(GltfFiles, ShareADefinitionBetweenTheNodesOfAMesh) {
    if (Expected("empty_leaves") || Expected("groups_with_mesh"))
        GTEST_SKIP() << "not every leaf of this file is the use of a mesh, and the reverse";
    const json shown = ToolJson({"show", "--format", "json", File()});
    std::map<std::string, int> uses;
    int meshes = 0;
    for (const json& definition : shown["definitions"]) {
        if (definition["kind"] != "part") continue;
        const std::string name = definition["name"];
        uses[name.empty() ? kUnnamed : name] += definition["occurrences"].get<int>();
        ++meshes;
    }
    EXPECT_EQ(json(uses), expected_["mesh_use_by_name"]);
    EXPECT_EQ(meshes, Expected("meshes") - Expected("unused_meshes"));
}

TEST_P(GltfFiles, ShowTheNamesOfTheirNodes) {
    const json shown = ToolJson({"show", "--format", "json", File()});
    std::map<std::string, int> names;
    for (const json& occurrence : shown["occurrences"])
        ++names[NameOf(occurrence, kUnnamed)];
    if (Copies()) names[kUnnamed] -= Copies();
    EXPECT_EQ(json(names), expected_["node_names"]);
}

TEST_P(GltfFiles, ShowAPathForEachNode) {
    if (Copies()) GTEST_SKIP() << "copies have paths, too";
    ExpectPaths(ToolJson({"show", "--format", "json", File()}), expected_,
                [](const json& occurrence) { return NameOf(occurrence, "#"); });
}

TEST_P(GltfFiles, PlaceTheirNodesInMillimetres) {
    if (Copies()) GTEST_SKIP() << "copies have places, too";
    const json shown = ToolJson({"show", "--format", "json", File()});
    std::array<double, 3> sum{}, least{}, most{};
    least.fill(HUGE_VAL), most.fill(-HUGE_VAL);
    for (const json& occurrence : shown["occurrences"])
        for (std::size_t axis = 0; axis < 3; ++axis) {
            const double value = occurrence["origin_mm"][axis].get<double>() / 1000;
            sum[axis] += value;
            least[axis] = std::min(least[axis], value), most[axis] = std::max(most[axis], value);
        }
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const auto near = [&](double value, const char* key) {
            const double wanted = expected_[key][axis];
            EXPECT_NEAR(value, wanted, 1e-4 + 1e-6 * std::abs(wanted)) << key << " axis " << axis;
        };
        near(sum[axis], "world_translation_sum");
        near(least[axis], "world_translation_min");
        near(most[axis], "world_translation_max");
    }
}

TEST_P(GltfFiles, KeepTheirTreeInASceneFile) {
    const TemporaryFolder folder;
    const std::string first = folder.File("first.qn"), second = folder.File("second.qn"),
                      saved = folder.File("saved.qn");
    for (const std::string& target : {first, second})
        ASSERT_EQ(RunTool({"convert", "--structure-only", File(), target}).exitCode, 0);
    ASSERT_EQ(RunTool({"convert", first, saved}).exitCode, 0);

    EXPECT_EQ(RunTool({"show", "--format", "json", "--ids", first}).out,
              RunTool({"show", "--format", "json", "--ids", File()}).out);
    EXPECT_EQ(ReadAll(first), ReadAll(second)) << "converted twice";
    EXPECT_EQ(ReadAll(first), ReadAll(saved)) << "loaded and saved";
}

TEST_P(GltfFiles, KeepTheirTreeWithGeometryAndNodes) {
    if (!GetParam().hasBuffers) GTEST_SKIP() << "the buffers of this file are not there";
    const TemporaryFolder folder;
    const std::string compact = folder.File("compact.qn"), expanded = folder.File("expanded.qn");
    ASSERT_EQ(RunTool({"convert", File(), compact}).exitCode, 0);
    ASSERT_EQ(RunTool({"convert", "--expand", compact, expanded}).exitCode, 0);
    const std::string shown = RunTool({"show", File()}).out;
    EXPECT_EQ(RunTool({"show", compact}).out, shown);
    EXPECT_EQ(RunTool({"show", expanded}).out, shown);
}

INSTANTIATE_TEST_SUITE_P(All, GltfFiles, testing::ValuesIn(kFiles), [](const auto& info) {
    std::string name = info.param.name;
    std::replace_if(
        name.begin(), name.end(), [](unsigned char c) { return !std::isalnum(c); }, '_');
    return name;
});

class GltfTool : public testing::Test {
protected:
    void SetUp() override {
        if (DataFolder().empty()) GTEST_SKIP() << "the data folder is not there";
    }
};

TEST_F(GltfTool, AnswersWithFiveWhenTheBufferOfAFileIsMissing) {
    const TemporaryFolder folder;
    const std::string file = (DataFolder() / "gltf-chess" / "ABeautifulGame.gltf").string();
    const ToolRun run = RunTool({"convert", file, folder.File("chess.qn")});
    EXPECT_EQ(run.exitCode, 5);
    EXPECT_NE(run.err.find("/buffers/0: the file \"ABeautifulGame.bin\": there is no such file"),
              std::string::npos)
        << run.err;
}

TEST_F(GltfTool, ShowsTheStructureOfAFileWhoseBufferIsMissing) {
    const std::string file = (DataFolder() / "gltf-chess" / "ABeautifulGame.gltf").string();
    const ToolRun run = RunTool({"show", file});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err, "");
}

TEST_F(GltfTool, PlacesEachCopyOfANode) {
    const std::string file = (DataFolder() / "gltf-gpu-instancing" / "SimpleInstancing.glb").string();
    const json shown = ToolJson({"show", "--format", "json", file});
    std::map<std::string, int> places;
    for (const json& occurrence : shown["occurrences"])
        if (occurrence["level"] == 2) ++places[occurrence["origin_mm"].dump()];
    EXPECT_EQ(places.size(), 125u) << "five in each direction, none twice";
}

/// What the tool says of a glTF text.
ToolRun Show(const std::string& text) {
    const TemporaryFolder folder;
    WriteAll(folder.File("bad.gltf"), text);
    return RunTool({"show", folder.File("bad.gltf")});
}

TEST(DamagedGltfFiles, AreRefusedByNameAndPlace) {
    const ToolRun run = Show(R"({"asset":{"version":"2.0"},"nodes":[{},{"children":[0,7]}]})");
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_NE(run.err.find("bad.gltf: /nodes/1/children/1: expected one of the 2 nodes, found 7"),
              std::string::npos)
        << run.err;
    EXPECT_EQ(run.out, "");
}

TEST(DamagedGltfFiles, BeyondALimitAnswerWithSeven) {
    const std::string deep = std::string(100, '[') + std::string(100, ']');
    EXPECT_EQ(Show(R"({"asset":{"version":"2.0"},"extras":)" + deep + "}").exitCode, 7);
}

TEST(DamagedGltfFiles, ThatNeedAnUnknownExtensionNameIt) {
    const ToolRun run = Show(R"({"asset":{"version":"2.0"},"extensionsRequired":["VND_secret"]})");
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_NE(run.err.find("\"VND_secret\""), std::string::npos) << run.err;
}

}  // namespace
}  // namespace assembly::tests
