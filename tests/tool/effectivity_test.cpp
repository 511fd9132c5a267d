// Validity ranges of a file, through the tool.

#include "tests/tool/tool_process.h"

#include "engine/stream/scene_file.h"
#include "frame/host/api.h"
#include "frame/host/parameter_ids.h"
#include "frame/host/scene.h"
#include "product/effectivity.h"
#include "tool/occurrence_path.h"

#include <gtest/gtest.h>

namespace assembly::tests {
namespace {

using nlohmann::json;

const std::string kLantern = ASSEMBLY_SAMPLES_DIR "/lantern.stp";
const std::string kTop = "Laterne „Größe M“";
const std::string kHousing = kTop + "/Gehäuse";
const std::string kBolt = kHousing + "/Vis 1";

bool Contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

/// A folder with a file to which ranges can be added.
class EffectivityTool : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(RunTool({"convert", "--structure-only", kLantern, file_}).exitCode, 0);
    }
    ToolRun Add(const std::string& path, std::vector<std::string> words) {
        words.insert(words.begin(), {"effectivity", "add", file_, "--in-place", "--occurrence", path});
        return RunTool(words);
    }
    /// As another program may have written it: nothing is looked at.
    void StoreLines(const std::string& path, int first, int last) {
        const auto context = qn::api->CreateContext(0, 0);
        const auto scene = qn::Make<qn::k3::Scene>();
        const auto name = qn::String::FromUtf8(file_);
        ASSERT_TRUE(qn::LoadSceneFile(name, *scene, *context));
        const tool::Structure structure = tool::ReadStructure(*scene, *context);
        const auto ranges = qn::CreateAs<qn::k3::Effectivity>(qn::k3::kEffectivityKey);
        ranges->AddLineRange(first, last);
        const tool::Use& use = *tool::OccurrencePaths(structure).Find(path).back();
        use.instance->SetParamObject(qn::Param::kEffectivity, ranges.Get());
        ASSERT_TRUE(qn::SaveSceneFile(*scene, name, *context));
    }
    json Show() { return ToolJson({"effectivity", "show", "--format", "json", file_})["effectivity"]; }
    /// "CODE PATH" of each finding.
    std::vector<std::string> Lint() {
        const ToolRun run = RunTool({"effectivity", "lint", "--format", "json", file_});
        std::vector<std::string> all;
        const json result = json::parse(run.out);
        for (const json& finding : result["files"][0]["findings"])
            all.push_back(finding["code"].get<std::string>() + " " + finding["path"].get<std::string>());
        EXPECT_EQ(run.exitCode, all.empty() ? 0 : 1) << run.err;
        EXPECT_EQ(result["findings"], all.size());
        return all;
    }

    TemporaryFolder folder_;
    const std::string file_ = folder_.File("lantern.qn");
};

TEST_F(EffectivityTool, ShowsNothingWhereThereIsNothing) {
    EXPECT_EQ(Show(), json::array());
    EXPECT_EQ(RunTool({"effectivity", "show", file_}).out, "");
    EXPECT_EQ(RunTool({"effectivity", "show", kLantern}).exitCode, 0);
}

TEST_F(EffectivityTool, AddsDatesWithWholeDaysAndTexts) {
    const ToolRun run =
        Add(kBolt, {"--from", "2026-01-01", "--to", "2026-06-30", "--text", "a", "--text", "b"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.out, kBolt + ": holds for 1 occurrence\n");
    const json expected = json::parse(R"([{"kind": "date", "from": "2026-01-01", "to": "2026-06-30T23:59:59Z",
                                           "texts": ["a", "b"]}])");
    const json shown = Show();
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0]["path"], kBolt);
    EXPECT_EQ(shown[0]["holder"], "use");
    EXPECT_EQ(shown[0]["ranges"], expected);
}

TEST_F(EffectivityTool, AddsLinesBehindWhatIsThere) {
    ASSERT_EQ(Add(kBolt, {"--lines", "120-180"}).exitCode, 0);
    ASSERT_EQ(Add(kBolt, {"--lines", "7"}).exitCode, 0);
    const json ranges = Show()[0]["ranges"];
    ASSERT_EQ(ranges.size(), 2u);
    EXPECT_EQ(ranges[0]["from"], 120);
    EXPECT_EQ(ranges[0]["to"], 180);
    EXPECT_EQ(ranges[1]["from"], 7);
    EXPECT_EQ(ranges[1]["to"], 7);
}

TEST_F(EffectivityTool, AUseInASharedDefinitionHoldsForAllOccurrences) {
    const ToolRun run = Add(kTop + "/Lampe/Vis B/Schaft", {"--lines", "1-2"});
    EXPECT_EQ(run.out, kTop + "/Lampe/Vis B/Schaft: holds for 6 occurrences\n") << run.err;
    const json shown = Show();
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0]["path"], kBolt + "/Schaft") << "the first occurrence";
    EXPECT_EQ(shown[0]["occurrences"], 6);
}

TEST_F(EffectivityTool, OneOccurrenceMayHaveRangesAlone) {
    ASSERT_EQ(Add(kBolt + "/Schaft", {"--lines", "1-2", "--only-here"}).exitCode, 0);
    const json shown = Show();
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0]["path"], kBolt + "/Schaft");
    EXPECT_EQ(shown[0]["holder"], "occurrence");
    EXPECT_EQ(shown[0]["occurrences"], 1);
}

TEST_F(EffectivityTool, TheTopKeepsItsRangesWithItsNode) {
    ASSERT_EQ(Add(kTop, {"--from", "2026-01-01"}).exitCode, 0);
    const json shown = Show();
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0]["path"], kTop);
    EXPECT_EQ(shown[0]["ranges"][0]["to"], "9999-12-31T23:59:59Z");
}

TEST_F(EffectivityTool, WhatIsAddedCountsForPartsLists) {
    ASSERT_EQ(Add(kBolt, {"--lines", "10-20"}).exitCode, 0);
    const auto parts = [&](const std::string& line) {
        return RunTool({"parts", "--structure", "flat", "--line", line, file_}).out;
    };
    EXPECT_EQ(parts("15"), RunTool({"parts", "--structure", "flat", file_}).out);
    EXPECT_NE(parts("21"), parts("15"));
}

TEST_F(EffectivityTool, ATableHasALineForEachRange) {
    Add(kBolt, {"--from", "2026-01-01", "--to", "2026-06-30", "--lines", "3-4", "--text", "after refit"});
    const std::string out = RunTool({"effectivity", "show", file_}).out;
    EXPECT_EQ(std::count(out.begin(), out.end(), '\n'), 3) << out;
    EXPECT_TRUE(Contains(out, "2026-06-30T23:59:59Z  after refit")) << out;
    EXPECT_TRUE(Contains(out, "line  3 ")) << out;
}

TEST_F(EffectivityTool, DefinitionNamesServeInPathsToo) {
    EXPECT_EQ(Add(kHousing + "/Vis à tête hexagonale[1]", {"--lines", "1"}).exitCode, 0);
    EXPECT_EQ(Show()[0]["path"], kBolt);
}

TEST_F(EffectivityTool, RefusesPathsAndTextsThatMeanNothing) {
    const std::vector<std::pair<std::string, std::vector<std::string>>> calls{
        {kTop + "/nowhere", {"--lines", "1"}},
        {kHousing + "/Vis à tête hexagonale", {"--lines", "1"}},
        {kHousing + "/Vis à tête hexagonale[9]", {"--lines", "1"}},
        {kHousing + "/Vis à tête hexagonale[x]", {"--lines", "1"}},
        {kBolt, {"--lines", "1-x"}},
        {kBolt, {"--lines", "99999999999"}},
        {kBolt, {"--lines", "2147483648"}},
        {kBolt, {"--lines", "-1"}},
        {kBolt, {"--lines", "-5-3"}},
        {kBolt, {"--lines", "3--5"}},
        {kBolt, {"--lines", "3-"}},
        {kBolt, {"--from", "2026-02-30"}},
        {kBolt, {"--text", "alone"}}};
    const std::string bytes = ReadAll(file_);
    for (const auto& [path, words] : calls) {
        const ToolRun run = Add(path, words);
        EXPECT_EQ(run.exitCode, 2) << path << " " << words[1] << "\n" << run.err;
    }
    EXPECT_TRUE(ReadAll(file_) == bytes);
}

TEST_F(EffectivityTool, RefusesARangeThatEndsBeforeItStarts) {
    const std::string bytes = ReadAll(file_);
    for (const std::vector<std::string>& words :
         {std::vector<std::string>{"--lines", "9-1"},
          {"--from", "2026-02-01", "--to", "2026-01-31"},
          {"--lines", "1-9", "--from", "2026-02-01", "--to", "2026-01-31"}}) {
        const ToolRun run = Add(kBolt, words);
        EXPECT_EQ(run.exitCode, 2);
        EXPECT_TRUE(Contains(run.err, "ends before it starts")) << run.err;
    }
    EXPECT_TRUE(ReadAll(file_) == bytes);
}

TEST_F(EffectivityTool, RefusesATextThatMeansNothingBeforeTheFileIsRead) {
    const ToolRun run = RunTool({"effectivity", "add", "nowhere.qn", "--occurrence", "x", "--lines", "x",
                                 "-o", folder_.File("out.qn")});
    EXPECT_EQ(run.exitCode, 2) << run.err;
}

TEST_F(EffectivityTool, TakesLinesFromNoughtOn) {
    ASSERT_EQ(Add(kBolt, {"--lines", "0-2147483647"}).exitCode, 0);
    EXPECT_EQ(Show()[0]["ranges"][0]["to"], 2147483647);
}

TEST_F(EffectivityTool, LintGoesOnBehindAFileThatCannotBeRead) {
    const ToolRun run = RunTool({"effectivity", "lint", "--format", "json", folder_.File("none.qn"), file_});
    EXPECT_EQ(run.exitCode, 3) << run.err;
    const json result = json::parse(run.out);
    ASSERT_EQ(result["files"].size(), 2u);
    EXPECT_EQ(result["files"][0]["exit_code"], 3);
    EXPECT_EQ(result["files"][1]["findings"], json::array());
}

TEST_F(EffectivityTool, LintFindsNothingInPlainFiles) {
    EXPECT_EQ(Lint(), std::vector<std::string>());
    EXPECT_EQ(RunTool({"effectivity", "lint", kLantern}).exitCode, 0);
}

TEST_F(EffectivityTool, LintFindsInvertedOverlappingAndMissingStretches) {
    StoreLines(kHousing, 9, 1);
    EXPECT_EQ(Lint(), (std::vector<std::string>{"inverted-range " + kHousing}));
    Add(kHousing, {"--lines", "1-5"});
    Add(kHousing, {"--lines", "5-7"});
    Add(kHousing, {"--lines", "9-10"});
    EXPECT_EQ(Lint(),
              (std::vector<std::string>{"inverted-range " + kHousing, "overlapping-ranges " + kHousing,
                                        "gap-between-ranges " + kHousing}));
}

TEST_F(EffectivityTool, LintFindsSiblingsWithoutRanges) {
    Add(kTop + "/Lampe/Vis A", {"--lines", "1-5"});
    EXPECT_EQ(Lint(), (std::vector<std::string>{"missing-ranges " + kTop + "/Lampe/Vis B"}));
    Add(kTop + "/Lampe/Vis B", {"--lines", "6-9"});
    EXPECT_EQ(Lint(), std::vector<std::string>());
}

TEST_F(EffectivityTool, LintFindsSiblingsOfASingleOccurrence) {
    Add(kTop + "/Lampe/Vis A", {"--lines", "1-5", "--only-here"});
    EXPECT_EQ(Lint(), (std::vector<std::string>{"missing-ranges " + kTop + "/Lampe/Vis B"}));
}

TEST_F(EffectivityTool, LintTakesDaysThatFollowEachOtherForWhole) {
    Add(kHousing, {"--from", "2026-01-01", "--to", "2026-01-31T00:00:00Z"});
    Add(kHousing, {"--from", "2026-02-01", "--to", "2026-02-28"});
    EXPECT_EQ(Lint(), std::vector<std::string>());
    Add(kHousing, {"--from", "2026-03-02", "--to", "2026-03-05"});
    EXPECT_EQ(Lint(), (std::vector<std::string>{"gap-between-ranges " + kHousing}));
}

TEST_F(EffectivityTool, LintLooksAtSeveralFiles) {
    StoreLines(kHousing, 9, 1);
    const ToolRun run = RunTool({"effectivity", "lint", kLantern, file_});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(Contains(run.out, "error: line 9 to 1 ends before it starts [inverted-range]")) << run.out;
    EXPECT_TRUE(Contains(run.err, "1 finding")) << run.err;
}

TEST(EffectivityToolOnRealFiles, KeepsRangesInEveryOne) {
    if (DataFolder().empty()) GTEST_SKIP() << "the folder of real files is not there";
    const TemporaryFolder folder;
    const std::string step = (DataFolder() / "cax-as1" / "as1-oc-214.stp").string();
    const std::string file = folder.File("as1.qn");
    const ToolRun run =
        RunTool({"effectivity", "add", step, "--occurrence", "as1/l-bracket-assembly_2/nut-bolt-assembly_1",
                 "--from", "2026-01-01", "-o", file});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    const json shown = ToolJson({"effectivity", "show", "--format", "json", file})["effectivity"];
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0]["path"], "as1/l-bracket-assembly_1/nut-bolt-assembly_1");
    EXPECT_EQ(shown[0]["occurrences"], 2);
    const ToolRun lint = RunTool({"effectivity", "lint", file});
    EXPECT_EQ(lint.exitCode, 1) << "the other two have none";
    EXPECT_EQ(std::count(lint.out.begin(), lint.out.end(), '\n'), 2) << lint.out;
}

}  // namespace
}  // namespace assembly::tests
