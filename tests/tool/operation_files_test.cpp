// A hierarchy with ids is generated, checked and taken away again on every file of the data folder.

#include "tests/tool/tool_process.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <set>

namespace assembly::tests {
namespace {

using nlohmann::json;

constexpr std::size_t kIdLength = 35;  // "s1:" and 32 digits

/// Files of formats that the tool reads, by their place below the data folder.
std::vector<std::string> DataFiles() {
    // Structure only, its side files are missing on purpose.
    const std::string kIncomplete = "ABeautifulGame.gltf";
    std::vector<std::string> files;
    for (const auto& file : qn::test::QuickDataFiles({".stp", ".step", ".glb", ".gltf"}))
        if (file.filename() != kIncomplete) files.push_back(file.lexically_relative(DataFolder()).string());
    return files;
}

bool IsGeneratedId(const json& row) {
    const std::string id = row.value("bs_id", "");
    return id.size() == kIdLength && id.rfind("s1:", 0) == 0 &&
           id.find_first_not_of("0123456789abcdef", 3) == std::string::npos;
}

/// What the metadata export tells of a scene file.
json MetadataOf(const TemporaryFolder& folder, const std::string& scene) {
    const std::string file = folder.File("metadata.json");
    const ToolRun run =
        RunTool({"run", "internal_export_scene_metadata", scene, "output_file=" + file,
                 "output_blob_folder=" + folder.File("blobs"), "top_level_metadata_only=false"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    return json::parse(ReadAll(file), nullptr, false);
}

std::vector<json> NamesAndMetadata(const json& exported) {
    std::vector<json> rows;
    for (const json& row : exported["selectors"])
        rows.push_back({row["parent"], row["name"], row.value("metadata", json())});
    return rows;
}

class OperationFiles : public testing::TestWithParam<std::string> {
protected:
    void SetUp() override {
        const std::string source = (DataFolder() / GetParam()).string();
        plain_ = folder_.File("plain.qn"), filled_ = folder_.File("filled.qn");
        const ToolRun run = RunTool({"convert", "--structure-only", source, plain_});
        ASSERT_EQ(run.exitCode, 0) << run.err;
        const ToolRun generated = RunTool(
            {"run", "generate_scene_instance_reference_hierarchy", plain_, "-o", filled_, "--seed", "5"});
        ASSERT_EQ(generated.exitCode, 0) << generated.err;
    }
    TemporaryFolder folder_;
    std::string plain_, filled_;
};

TEST_P(OperationFiles, GetAnIdForEachElementOfTheirHierarchy) {
    const json exported = MetadataOf(folder_, filled_);
    ASSERT_FALSE(exported["selectors"].empty());
    std::set<std::string> ids;
    std::size_t rows = 0;
    for (const char* list : {"selectors", "nodes", "entities"}) {
        EXPECT_EQ(exported[list].size(), exported["selectors"].size()) << "nothing is shared in " << list;
        for (const json& row : exported[list]) {
            EXPECT_TRUE(IsGeneratedId(row)) << row;
            ids.insert(row.value("bs_id", ""));
            ++rows;
        }
    }
    EXPECT_EQ(ids.size(), rows);
}

TEST_P(OperationFiles, AreValidAfterwards) {
    const ToolRun run = RunTool({"run", "validate_scene_hierarchy", filled_});
    EXPECT_EQ(run.exitCode, 0) << run.err;
}

TEST_P(OperationFiles, LoseTheHierarchyAndTheIdsButNotTheirMetadata) {
    const std::string removed = folder_.File("removed.qn");
    const ToolRun run = RunTool({"run", "remove_qfxml_hierarchy_cache", filled_, "-o", removed});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    const json before = MetadataOf(folder_, filled_), after = MetadataOf(folder_, removed);
    EXPECT_TRUE(after["nodes"].empty());
    EXPECT_TRUE(after["entities"].empty());
    for (const json& row : after["selectors"])
        EXPECT_FALSE(row.contains("bs_id") || row.contains("external_ids")) << row;
    EXPECT_EQ(NamesAndMetadata(after), NamesAndMetadata(before));
}

INSTANTIATE_TEST_SUITE_P(All, OperationFiles, testing::ValuesIn(DataFiles()), [](const auto& info) {
    std::string name = info.param;
    std::replace_if(
        name.begin(), name.end(), [](unsigned char c) { return !std::isalnum(c) || c > 127; }, '_');
    return name;
});
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(OperationFiles);

TEST(OperationGolden, IsWhatTheGeneratedHierarchyOfANestLooksLike) {
    if (DataFolder().empty()) GTEST_SKIP() << "the data folder is not there";
    const TemporaryFolder folder;
    const std::string source = (DataFolder() / "small" / "nested.step").string(),
                      filled = folder.File("filled.qn"), file = folder.File("metadata.json");
    ASSERT_EQ(RunTool({"run", "15", source, "-o", filled, "--seed", "5"}).exitCode, 0);
    MetadataOf(folder, filled);
    const std::string golden = ASSEMBLY_SOURCE_DIR "/tests/tool/golden/nested_generated.json";
    EXPECT_EQ(ReadAll(file), ReadAll(golden));
}

}  // namespace
}  // namespace assembly::tests
