#include "importers/step/step_structure.h"
#include "tests/importers/step_summary.h"
#include "tests/support/data_dir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>

namespace {

using nlohmann::json;
namespace fs = std::filesystem;

json ReadJson(const fs::path& path) {
    std::ifstream in(path);
    return json::parse(in, nullptr, false);
}

struct StepFile {
    std::string path;
    std::string expected;
};

void PrintTo(const StepFile& file, std::ostream* out) {
    *out << file.path;
}

/// The STEP files for which there is an expectation; none if the folder is not there.
std::vector<StepFile> StepFiles() {
    std::vector<StepFile> files;
    const json manifest = ReadJson(qn::test::DataDir() / "manifest.json");
    if (!manifest.is_array()) return files;
    for (const json& row : manifest) {
        const std::string path = row.value("file", "");
        const std::string ending = fs::path(path).extension();
        if (row.contains("expected") && row["expected"].is_string() &&
            (ending == ".stp" || ending == ".step"))
            files.push_back({path, row["expected"]});
    }
    return files;
}

class RealStepFile : public testing::TestWithParam<StepFile> {
protected:
    void SetUp() override {
        expected_ = ReadJson(qn::test::DataDir() / GetParam().expected);
        const auto result = qn::step::ReadStructure(qn::test::DataDir() / GetParam().path);
        ASSERT_TRUE(result.Ok()) << result.error;
        model_ = result.model;
        summary_ = SummaryOf(model_);
    }

    json expected_;
    qn::step::StepModel model_;
    json summary_;
};

TEST_P(RealStepFile, HasTheCountsOfItsProductStructure) {
    for (const char* key :
         {"definitions", "assembly_definitions", "part_definitions", "instances", "roots", "occurrences",
          "depth", "max_children", "placed_instances", "reference_designators"})
        EXPECT_EQ(summary_[key], expected_[key]) << key;
}

TEST_P(RealStepFile, HasItsNames) {
    for (const char* key : {"definition_names", "instance_names", "root_names", "schema"})
        EXPECT_EQ(summary_[key], expected_[key]) << key;
}

TEST_P(RealStepFile, HasItsUsesAndOccurrencePaths) {
    for (const char* key : {"uses", "occurrences_by_definition_name", "paths_sha256"})
        EXPECT_EQ(summary_[key], expected_[key]) << key;
    if (expected_.contains("paths")) {
        EXPECT_EQ(summary_["paths"], expected_["paths"]);
    }
}

TEST_P(RealStepFile, KeepsWhatTheFileSaysBesideTheStructure) {
    for (const char* key : {"external_files", "validation_properties", "assemblies_with_own_geometry",
                            "parts_without_geometry"})
        EXPECT_EQ(summary_[key], expected_[key]) << key;
}

TEST_P(RealStepFile, StandsWhereItSays) {
    constexpr double kTolerance = 1e-3;  // millimetres, on sums of rounded numbers
    const json& expected = expected_["world_translations_mm"]["sum_by_name"];
    for (const auto& [name, sum] : summary_["world_translations_mm"]["sum_by_name"].items())
        for (std::size_t i = 0; i < 4; ++i)
            EXPECT_NEAR(sum[i].get<double>(), expected[name][i].get<double>(), kTolerance)
                << name << " " << i;
}

TEST_P(RealStepFile, StatesItsUnit) {
    if (expected_["units_m"].empty()) return;
    EXPECT_NEAR(model_.sourceUnit, expected_["units_m"][0].get<double>(), 1e-12);
}

std::string TestName(const testing::TestParamInfo<StepFile>& info) {
    std::string name = fs::path(info.param.path).stem().string();
    std::replace_if(
        name.begin(), name.end(), [](unsigned char c) { return !std::isalnum(c); }, '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Data, RealStepFile, testing::ValuesIn(StepFiles()), TestName);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(RealStepFile);

}  // namespace
