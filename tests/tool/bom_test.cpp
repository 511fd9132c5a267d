// Structures of a file, through the tool.

#include "tests/tool/tool_process.h"

#include <gtest/gtest.h>

namespace assembly::tests {
namespace {

using nlohmann::json;

const std::string kLantern = ASSEMBLY_SAMPLES_DIR "/lantern.stp";

bool Contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

std::string Shown(const std::string& file) {
    return RunTool({"show", file}).out;
}

/// A folder with a file of one structure, "design".
class BomTool : public testing::Test {
protected:
    void SetUp() override {
        const ToolRun run = RunTool({"bom", "create", "design", kLantern, "-o", file_});
        ASSERT_EQ(run.exitCode, 0) << run.err;
    }
    json Boms(const std::string& file) { return ToolJson({"bom", "list", "--format", "json", file})["boms"]; }

    TemporaryFolder folder_;
    const std::string file_ = folder_.File("lantern.qn");
    const std::string other_ = folder_.File("other.qn");
};

TEST_F(BomTool, CreatesTheFirstStructureOfWhatIsShown) {
    const json boms = Boms(file_);
    ASSERT_EQ(boms.size(), 1u);
    EXPECT_EQ(boms[0]["name"], "design");
    EXPECT_EQ(boms[0]["current"], true);
    EXPECT_EQ(boms[0]["top_nodes"], 1);
    EXPECT_EQ(Shown(file_), Shown(kLantern));
}

TEST_F(BomTool, CreatesASecondOneOfCopies) {
    const ToolRun run = RunTool({"bom", "create", "service", file_, "-o", other_});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_TRUE(Contains(run.out, "* design")) << run.out;
    EXPECT_TRUE(Contains(run.out, "  service")) << run.out;
    EXPECT_EQ(Boms(other_).size(), 2u);
    EXPECT_EQ(Shown(other_), Shown(kLantern));
    EXPECT_EQ(RunTool({"bom", "show", "service", other_}).out, Shown(kLantern));
    EXPECT_EQ(Boms(file_).size(), 1u) << "the input stays";
}

TEST_F(BomTool, ActivatesAStructureAndGoesBackToTheSameTree) {
    ASSERT_EQ(RunTool({"bom", "create", "spares", "--empty", file_, "--in-place"}).exitCode, 0);
    ASSERT_EQ(RunTool({"bom", "activate", "spares", file_, "-o", other_}).exitCode, 0);
    EXPECT_EQ(Boms(other_)[1]["current"], true);
    EXPECT_EQ(Shown(other_), "");
    EXPECT_EQ(RunTool({"bom", "show", "design", other_}).out, Shown(kLantern));
    ASSERT_EQ(RunTool({"bom", "activate", "#1", other_, "--in-place"}).exitCode, 0);
    EXPECT_EQ(Shown(other_), Shown(kLantern));
}

TEST_F(BomTool, ShowLeavesTheFileAsItIs) {
    ASSERT_EQ(RunTool({"bom", "create", "spares", "--empty", file_, "--in-place"}).exitCode, 0);
    const std::string bytes = ReadAll(file_);
    const ToolRun run = RunTool({"bom", "show", "spares", file_});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.out, "");
    EXPECT_TRUE(ReadAll(file_) == bytes);
}

TEST_F(BomTool, ShowPrintsWhatShowPrints) {
    EXPECT_EQ(RunTool({"bom", "show", file_}).out, Shown(file_));
    EXPECT_EQ(RunTool({"bom", "show", "design", file_, "--depth", "2"}).out,
              RunTool({"show", "--depth", "2", file_}).out);
    EXPECT_EQ(RunTool({"bom", "show", "--format", "json", "design", file_}).out,
              RunTool({"show", "--format", "json", file_}).out);
    EXPECT_EQ(RunTool({"bom", "show", "--definitions", file_}).out,
              RunTool({"show", "--definitions", file_}).out);
}

TEST_F(BomTool, KeepsStructuresThroughOtherVerbs) {
    ASSERT_EQ(RunTool({"bom", "create", "service", file_, "--in-place"}).exitCode, 0);
    ASSERT_EQ(RunTool({"convert", file_, other_}).exitCode, 0);
    EXPECT_EQ(Boms(other_), Boms(file_));
    EXPECT_EQ(RunTool({"check", other_}).exitCode, 0);
}

TEST_F(BomTool, WritesTheSameBytesForTheSameCalls) {
    ASSERT_EQ(RunTool({"bom", "create", "service", file_, "-o", other_}).exitCode, 0);
    const std::string bytes = ReadAll(other_);
    ASSERT_EQ(RunTool({"bom", "create", "service", file_, "-o", other_}).exitCode, 0);
    EXPECT_TRUE(ReadAll(other_) == bytes);
    ASSERT_EQ(RunTool({"convert", other_, file_}).exitCode, 0);
    EXPECT_TRUE(ReadAll(file_) == bytes) << "loading and saving changes nothing";
}

TEST_F(BomTool, StaysCompactWithOneStructure) {
    ASSERT_EQ(RunTool({"convert", kLantern, other_}).exitCode, 0);
    EXPECT_LT(ReadAll(file_).size(), ReadAll(other_).size() + 1000);
}

TEST_F(BomTool, RefusesANameThatIsTaken) {
    const ToolRun run = RunTool({"bom", "create", "design", file_, "-o", other_});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_TRUE(Contains(run.err, "design")) << run.err;
    EXPECT_FALSE(std::filesystem::exists(other_));
}

TEST_F(BomTool, RefusesANameThatCannotBeCalled) {
    for (const char* name : {"", " ", " \t ", "#1", "#27", "\xff"}) {
        const ToolRun run = RunTool({"bom", "create", name, file_, "-o", other_});
        EXPECT_EQ(run.exitCode, 2) << name;
        EXPECT_TRUE(Contains(run.err, "bom create: ")) << run.err;
        EXPECT_FALSE(std::filesystem::exists(other_)) << name;
    }
}

TEST_F(BomTool, TakesANameThatOnlyBeginsLikeANumber) {
    for (const char* name : {"#", "#2a", "1", "# 2"})
        EXPECT_EQ(RunTool({"bom", "create", name, file_, "-o", other_}).exitCode, 0) << name;
}

TEST_F(BomTool, NamesTheStructuresThatThereAre) {
    for (const char* verb : {"activate", "show"}) {
        std::vector<std::string> words{"bom", verb, "desing", file_};
        if (std::string(verb) == "activate") words.insert(words.end(), {"-o", other_});
        const ToolRun run = RunTool(words);
        EXPECT_EQ(run.exitCode, 2) << verb;
        EXPECT_TRUE(Contains(run.err, "\"design\"")) << run.err;
    }
}

TEST_F(BomTool, NamesNoStructureWithRawControlCharacters) {
    ASSERT_EQ(RunTool({"bom", "create", "a\033[31mb", file_, "--in-place"}).exitCode, 0);
    const ToolRun run = RunTool({"bom", "show", "other", file_});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_FALSE(Contains(run.err, "\033")) << run.err;
}

TEST_F(BomTool, WantsToKnowWhereToWrite) {
    for (const char* verb : {"activate", "create"}) {
        const ToolRun run = RunTool({"bom", verb, "x", file_});
        EXPECT_EQ(run.exitCode, 2);
        EXPECT_TRUE(Contains(run.err, "-o")) << run.err;
    }
}

TEST(BomToolOnPlainFiles, ListsNothing) {
    const ToolRun run = RunTool({"bom", "list", kLantern});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.out, "");
    EXPECT_TRUE(Contains(run.err, "no structures")) << run.err;
    EXPECT_EQ(ToolJson({"bom", "list", "--format", "json", kLantern})["boms"], json::array());
}

TEST(BomToolOnPlainFiles, ShowsTheFile) {
    EXPECT_EQ(RunTool({"bom", "show", kLantern}).out, Shown(kLantern));
}

TEST(BomToolOnPlainFiles, AnEmptyFirstStructureRemovesAllAndSaysSo) {
    const TemporaryFolder folder;
    const std::string file = folder.File("blank.qn");
    const ToolRun run = RunTool({"bom", "create", "blank", "--empty", kLantern, "-o", file});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_TRUE(Contains(run.err, "removes all")) << run.err;
    EXPECT_EQ(Shown(file), "");
}

TEST(BomToolOnPlainFiles, AnEmptyFirstStructureIsRefusedInPlace) {
    const TemporaryFolder folder;
    const std::string file = folder.File("plain.qn");
    ASSERT_EQ(RunTool({"convert", kLantern, file}).exitCode, 0);
    const std::string bytes = ReadAll(file);
    EXPECT_EQ(RunTool({"bom", "create", "blank", "--empty", file, "--in-place"}).exitCode, 2);
    EXPECT_TRUE(ReadAll(file) == bytes);
}

TEST(BomToolOnPlainFiles, ShowWantsAFile) {
    EXPECT_EQ(RunTool({"bom", "show"}).exitCode, 2);
}

TEST(BomToolOnPlainFiles, ReportsAFileThatIsNotThere) {
    EXPECT_EQ(RunTool({"bom", "list", "nowhere.qn"}).exitCode, 3);
}

TEST(BomToolOnRealFiles, CopiesAndSwitchesWithoutLosingAnOccurrence) {
    if (DataFolder().empty()) GTEST_SKIP() << "the folder of real files is not there";
    const TemporaryFolder folder;
    const std::string step = (DataFolder() / "cax-as1" / "as1-oc-214.stp").string();
    const std::string file = folder.File("as1.qn");
    ASSERT_EQ(RunTool({"bom", "create", "design", step, "-o", file}).exitCode, 0);
    ASSERT_EQ(RunTool({"bom", "create", "service", file, "--in-place"}).exitCode, 0);
    ASSERT_EQ(RunTool({"bom", "activate", "service", file, "--in-place"}).exitCode, 0);
    const auto counts = [](const std::string& name) {
        const json all = ToolJson({"stats", "--format", "json", name});
        return std::vector<json>{all["definitions"], all["occurrences"], all["leaf_occurrences"]};
    };
    EXPECT_EQ(counts(file), counts(step));
    EXPECT_EQ(Shown(file), Shown(step));
    EXPECT_EQ(RunTool({"check", file}).exitCode, 0);
}

}  // namespace
}  // namespace assembly::tests
