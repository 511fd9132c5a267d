// Bills of materials of real files, against what an independent reader found in their text.

#include "tests/support/data_dir.h"
#include "tests/tool/tool_process.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <set>

namespace assembly::tests {
namespace {

using nlohmann::json;

const std::string kLantern = ASSEMBLY_SAMPLES_DIR "/lantern.stp";

/// The STEP files of which is known what they hold.
std::vector<std::filesystem::path> KnownFiles() {
    std::vector<std::filesystem::path> files = qn::test::QuickDataFiles({".stp", ".step"});
    std::erase_if(files, [](const std::filesystem::path& file) {
        return qn::test::LoadExpected(file.filename().string()).is_null();
    });
    return files;
}

class PartsOfFiles : public testing::TestWithParam<std::filesystem::path> {
protected:
    void SetUp() override { expected_ = qn::test::LoadExpected(GetParam().filename().string()); }
    static json Rows(const std::vector<std::string>& options) {
        std::vector<std::string> arguments{"parts", "--format", "json"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        arguments.push_back(GetParam().string());
        return ToolJson(arguments)["rows"];
    }
    json expected_;
};

std::uint64_t SumOf(const json& rows) {
    std::uint64_t sum = 0;
    for (const json& row : rows)
        sum += row["quantity"].get<std::uint64_t>();
    return sum;
}

std::map<std::string, std::uint64_t> ByName(const json& rows) {
    std::map<std::string, std::uint64_t> quantities;
    for (const json& row : rows)
        quantities[row["name"].is_null() ? "" : row["name"].get<std::string>()] +=
            row["quantity"].get<std::uint64_t>();
    return quantities;
}

TEST_P(PartsOfFiles, AddUpToTheLeafOccurrences) {
    const json flat = Rows({"--structure", "flat"});
    EXPECT_EQ(SumOf(flat), expected_["leaf_occurrences"]);
    EXPECT_EQ(flat.size(), expected_["part_definitions"]);
}

TEST_P(PartsOfFiles, AreAsManyAsEachPartOccurs) {
    std::set<std::string> assemblies;
    for (const json& use : expected_["uses"])
        assemblies.insert(use[0].get<std::string>());
    for (const auto& [name, quantity] : ByName(Rows({"--structure", "flat"}))) {
        if (!assemblies.contains(name)) {
            EXPECT_EQ(quantity, expected_["occurrences_by_definition_name"][name]) << name;
        }
    }
}

TEST_P(PartsOfFiles, HaveARowForEachOccurrenceWhereAsked) {
    const json rows = Rows({"--structure", "occurrences", "--fields", "level,name,quantity"});
    EXPECT_EQ(rows.size(), expected_["occurrences"]);
    EXPECT_EQ(json(ByName(rows)), expected_["occurrences_by_definition_name"]);
}

TEST_P(PartsOfFiles, TellWhatEachAssemblyUses) {
    std::map<std::pair<std::string, std::string>, std::uint64_t> uses;
    std::vector<std::string> path;
    for (const json& row : Rows({"--once"})) {
        path.resize(row["level"].get<std::size_t>());
        path.push_back(row["name"].is_null() ? "" : row["name"].get<std::string>());
        if (path.size() > 1)
            uses[{path[path.size() - 2], path.back()}] += row["quantity"].get<std::uint64_t>();
    }
    json counted = json::array();
    for (const auto& [ends, count] : uses)
        counted.push_back({ends.first, ends.second, count});
    EXPECT_EQ(counted, expected_["uses"]);
}

INSTANTIATE_TEST_SUITE_P(Step, PartsOfFiles, testing::ValuesIn(KnownFiles()),
                         [](const auto& info) { return qn::test::TestNameOf(info.param); });
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(PartsOfFiles);

TEST(Parts, AlignsColumnsByWhatLettersTake) {
    const ToolRun run = RunTool({"parts", "--structure", "single", "--fields", "name,quantity", kLantern});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.out, "name     quantity\nGehäuse         1\nランプ          1\n");
}

TEST(Parts, WritesCsvWithCarriageReturns) {
    const ToolRun run =
        RunTool({"parts", "--structure", "single", "--format", "csv", "--fields", "name,quantity", kLantern});
    EXPECT_EQ(run.out, "name,quantity\r\nGehäuse,1\r\nランプ,1\r\n");
}

TEST(Parts, WritesMarkdownTables) {
    const ToolRun run =
        RunTool({"parts", "--structure", "single", "--format", "md", "--fields", "name,quantity", kLantern});
    EXPECT_EQ(run.out,
              "| name    | quantity |\n| ------- | -------: |\n| Gehäuse |        1 |\n"
              "| ランプ  |        1 |\n");
}

TEST(Parts, RefusesAnUnknownFieldWithAListOfAll) {
    const ToolRun run = RunTool({"parts", "--fields", "name,weight", kLantern});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_NE(run.err.find("weight"), std::string::npos) << run.err;
    for (const char* known : {"level", "server_id", "designators", "$QN.STEP/"})
        EXPECT_NE(run.err.find(known), std::string::npos) << run.err;
}

TEST(Parts, TakesFieldsByTheEndOfTheirKeysAndInAnySpelling) {
    const json rows =
        ToolJson({"parts", "--format", "json", "--fields", "Server-Id,Definition Id", kLantern});
    EXPECT_TRUE(rows["rows"][0].contains("server_id"));
    EXPECT_TRUE(rows["rows"][0].contains("$QN.STEP/Definition Id"));
}

TEST(Parts, SortsComponentsWithinTheirAssembly) {
    const json sorted =
        ToolJson({"parts", "--format", "json", "--sort-field", "quantity", "--descending", kLantern})["rows"];
    const json plain = ToolJson({"parts", "--format", "json", kLantern})["rows"];
    EXPECT_EQ(sorted.size(), plain.size());
    for (std::size_t i = 1; i < sorted.size(); ++i)
        if (sorted[i]["level"] == sorted[i - 1]["level"]) {
            EXPECT_LE(sorted[i]["quantity"], sorted[i - 1]["quantity"]);
        }
}

TEST(Parts, GroupsLinesThatAgree) {
    const json rows = ToolJson({"parts", "--format", "json", "--structure", "occurrences", "--group-by",
                                "level", "--fields", "level,quantity", kLantern})["rows"];
    EXPECT_EQ(rows[0], (json{{"level", 0}, {"quantity", 1}}));
    EXPECT_EQ(rows[1], (json{{"level", 1}, {"quantity", 2}}));
    EXPECT_EQ(SumOf(rows), 29u);
}

TEST(Parts, RefusesWhatCannotBe) {
    const std::vector<std::vector<std::string>> kCalls = {
        {"--group-by", "name"}, {"--level", "0"},          {"--as-of", "yesterday"}, {"--as-of", ""},
        {"--line", "many"},     {"--fields", "name,name"}, {"--structure", "round"}, {"--descending"}};
    for (const auto& call : kCalls) {
        std::vector<std::string> arguments{"parts", kLantern};
        arguments.insert(arguments.end(), call.begin(), call.end());
        const ToolRun run = RunTool(arguments);
        EXPECT_EQ(run.exitCode, 2) << call[0] << run.err;
        EXPECT_TRUE(run.out.empty()) << call[0];
    }
}

TEST(Parts, WithoutRangesAreAlwaysValid) {
    EXPECT_EQ(RunTool({"parts", "--as-of", "2026-03-31", "--line", "7", kLantern}).out,
              RunTool({"parts", kLantern}).out);
}

}  // namespace
}  // namespace assembly::tests
