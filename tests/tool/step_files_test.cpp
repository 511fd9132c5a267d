// Every STEP file of the data folder through the tool, against what an independent reader found in its text.

#include "tests/tool/shown_paths.h"
#include "tests/tool/tool_process.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <map>
#include <ostream>

namespace assembly::tests {
namespace {

using nlohmann::json;

struct StepFile {
    const char* folder;
    const char* name;
    const char* expected = nullptr;  ///< name of what was found, if it is not that of the file
    bool isFollowed = false;         ///< with the files that it names
};

constexpr StepFile kFiles[] = {
    {"cax-as1", "as1-oc-214.stp"},
    {"cax-as1", "as1-tu-203.stp"},
    {"cax-dm1", "dm1-id-214.stp"},
    {"cax-s1-external", "s1-c5-214.stp"},
    {"cax-s1-external", "s1-c5-214.stp", "s1-c5-214.followed", true},
    {"klicky-probe", "KlickyProbe-2021-05-12.step"},
    {"klicky-probe", "KlickyProbe-2021-05-21.step"},
    {"seedmint", "SeedMint-2021-06-17.step"},
    {"seedmint", "SeedMint-2021-08-03.step"},
    {"drive-board", "PCB_v3.3.step"},
    {"drive-board", "PCB_v3.4.step"},
    {"dissonance", "dissonance-assembly.step"},
    {"expansion-card", "ExpansionCard_SelfTapping.stp"},
    {"expansion-card", "ExpansionCard_ThreadedInsert.stp"},
    {"apex-robot", "apexrobot-assembly.step"},
    {"daylight", "Daylight_XXL.step"},
    {"small", "abstract_pca.step"},
    {"small", "nested.step"},
    {"small", "red_cube_blue_cylinder.step"},
    {"small", "eight_cyl.stp"},
};

void PrintTo(const StepFile& file, std::ostream* out) {
    *out << file.name << (file.isFollowed ? " with its files" : "");
}

class StepFiles : public testing::TestWithParam<StepFile> {
protected:
    void SetUp() override {
        if (DataFolder().empty()) GTEST_SKIP() << "the data folder is not there";
        const std::string name = GetParam().expected ? GetParam().expected : GetParam().name;
        expected_ = json::parse(ReadAll((DataFolder() / "expected" / (name + ".json")).string()));
    }
    /// The words of a call, with what asks for the files that this one names.
    static std::vector<std::string> Call(std::vector<std::string> words) {
        if (GetParam().isFollowed) words.insert(words.end(), {"--load", "all"});
        return words;
    }
    static json Shown() { return ToolJson(Call({"show", "--format", "json", File()})); }
    static std::string File() { return (DataFolder() / GetParam().folder / GetParam().name).string(); }
    /// The file itself if its parts have to be beside it, else a copy: names are shown as they are in its
    /// folder.
    static std::string FileIn(const TemporaryFolder& folder) {
        if (GetParam().isFollowed) return File();
        std::filesystem::copy_file(File(), folder.File(GetParam().name));
        return folder.File(GetParam().name);
    }
    static std::string DefinitionName(const json& shown, const json& element) {
        return shown["definitions"][element["definition"].get<std::size_t>()]["name"];
    }
    json expected_;
};

TEST_P(StepFiles, AreCountedAsTheirTextStates) {
    const json stats = ToolJson(Call({"stats", "--format", "json", File()}));
    EXPECT_EQ(stats["definitions"], expected_["definitions"]);
    EXPECT_EQ(stats["assemblies"], expected_["assembly_definitions"]);
    EXPECT_EQ(stats["parts"], expected_["part_definitions"]);
    EXPECT_EQ(stats["instances"], expected_["instances"]);
    EXPECT_EQ(stats["occurrences"], expected_["occurrences"]);
    EXPECT_EQ(stats["leaf_occurrences"], expected_["leaf_occurrences"]);
    EXPECT_EQ(stats["roots"], expected_["roots"]);
    EXPECT_EQ(stats["depth"], expected_["depth"]);
    EXPECT_EQ(stats["max_children"], expected_["max_children"]);
}

TEST_P(StepFiles, ShowTheirDefinitionsUnderTheirNames) {
    const json shown = Shown();
    std::map<std::string, int> names, occurrences;
    for (const json& definition : shown["definitions"]) {
        ++names[definition["name"]];
        occurrences[definition["name"]] += definition["occurrences"].get<int>();
    }
    EXPECT_EQ(json(names), expected_["definition_names"]);
    EXPECT_EQ(json(occurrences), expected_["occurrences_by_definition_name"]);
}

TEST_P(StepFiles, ShowTheirUses) {
    const json shown = Shown();
    std::map<std::string, int> names;
    std::map<std::pair<std::string, std::string>, int> uses;
    for (const json& instance : shown["instances"]) {
        ++names[instance["name"]];
        const std::string parent = shown["definitions"][instance["parent"].get<std::size_t>()]["name"];
        ++uses[{parent, DefinitionName(shown, instance)}];
    }
    json counted = json::array();
    for (const auto& [ends, count] : uses)
        counted.push_back({ends.first, ends.second, count});
    EXPECT_EQ(json(names), expected_["instance_names"]);
    EXPECT_EQ(counted, expected_["uses"]);
}

TEST_P(StepFiles, ShowAPathForEachOccurrence) {
    const json shown = Shown();
    ExpectPaths(shown, expected_, [&](const json& occurrence) { return DefinitionName(shown, occurrence); });
}

TEST_P(StepFiles, PlaceTheirOccurrencesInMillimetres) {
    const json shown = Shown();
    std::map<std::string, std::array<double, 4>> sums;
    for (const json& occurrence : shown["occurrences"]) {
        auto& sum = sums[DefinitionName(shown, occurrence)];
        sum[0] += 1;
        for (std::size_t axis = 0; axis < 3; ++axis)
            sum[axis + 1] += occurrence["origin_mm"][axis].get<double>();
    }
    const json& wanted = expected_["world_translations_mm"]["sum_by_name"];
    ASSERT_EQ(sums.size(), wanted.size());
    for (const auto& [name, sum] : sums)
        for (std::size_t i = 0; i < 4; ++i) {
            const double value = wanted[name][i];
            EXPECT_NEAR(sum[i], value, 1e-4 + 1e-6 * std::abs(value)) << name << " column " << i;
        }
}

TEST_P(StepFiles, KeepTheirTreeInASceneFile) {
    const TemporaryFolder folder;
    const std::string file = FileIn(folder);
    const std::string first = folder.File("first.qn"), second = folder.File("second.qn"),
                      saved = folder.File("saved.qn");
    for (const std::string& target : {first, second})
        ASSERT_EQ(RunTool(Call({"convert", "--structure-only", file, target})).exitCode, 0);
    ASSERT_EQ(RunTool({"convert", first, saved}).exitCode, 0);

    const std::vector<std::string> show = {"show", "--ids", file};
    EXPECT_EQ(RunTool({"show", "--ids", first}).out, RunTool(Call(show)).out);
    if (!GetParam().isFollowed) {  // else definitions tell which file they came from
        EXPECT_EQ(RunTool({"show", "--format", "json", "--ids", first}).out,
                  RunTool({"show", "--format", "json", "--ids", file}).out);
    }
    EXPECT_EQ(ReadAll(first), ReadAll(second)) << "converted twice";
    EXPECT_EQ(ReadAll(first), ReadAll(saved)) << "loaded and saved";
}

TEST_P(StepFiles, KeepTheirTreeWithGeometryAndNodes) {
    const TemporaryFolder folder;
    const std::string file = FileIn(folder);
    const std::string compact = folder.File("compact.qn"), expanded = folder.File("expanded.qn");
    ASSERT_EQ(RunTool(Call({"convert", file, compact})).exitCode, 0);
    ASSERT_EQ(RunTool({"convert", "--expand", compact, expanded}).exitCode, 0);
    const std::string shown = RunTool(Call({"show", file})).out;
    EXPECT_EQ(RunTool({"show", compact}).out, shown);
    EXPECT_EQ(RunTool({"show", expanded}).out, shown);
}

INSTANTIATE_TEST_SUITE_P(All, StepFiles, testing::ValuesIn(kFiles), [](const auto& info) {
    std::string name = info.param.expected ? info.param.expected : info.param.name;
    std::replace_if(
        name.begin(), name.end(), [](unsigned char c) { return !std::isalnum(c); }, '_');
    return name;
});

}  // namespace
}  // namespace assembly::tests
