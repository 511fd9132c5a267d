// The tool as a person or a script meets it.

#include "tests/tool/tool_process.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace assembly::tests {
namespace {

using nlohmann::json;

const std::string kLantern = ASSEMBLY_SAMPLES_DIR "/lantern.stp";

constexpr const char* kVerbs[] = {"show", "stats",       "convert", "check", "repair", "deps",  "parts",
                                  "bom",  "effectivity", "ops",     "run",   "module", "limits"};

bool Contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

TEST(Usage, HelpNamesEveryVerbAndAnswersZero) {
    const ToolRun run = RunTool({"--help"});
    EXPECT_EQ(run.exitCode, 0);
    for (const char* verb : kVerbs)
        EXPECT_TRUE(Contains(run.out, verb)) << verb;
    EXPECT_TRUE(Contains(run.out, "Exit codes"));
}

TEST(Usage, HelpGivesEachVerbOneLine) {
    const ToolRun run = RunTool({"--help"});
    EXPECT_FALSE(Contains(run.out, "Examples:"));
    EXPECT_TRUE(Contains(run.out, "\n  limits       Prints what a file may ask for at most")) << run.out;
}

TEST(Usage, HelpOfAVerbShowsExamplesFirst) {
    for (const char* verb : kVerbs) {
        const ToolRun run = RunTool({verb, "--help"});
        EXPECT_EQ(run.exitCode, 0);
        EXPECT_EQ(run.out.rfind("Examples:", 0), 0u) << run.out;
    }
}

TEST(Usage, TellsItsVersion) {
    const ToolRun run = RunTool({"--version"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.out.rfind("assembly ", 0), 0u) << run.out;
}

TEST(Usage, WrongWordsAreRefusedWithTwoAndNothingOnStdout) {
    const std::vector<std::vector<std::string>> kCalls = {{},
                                                          {"show"},
                                                          {"frobnicate"},
                                                          {"show", "--depth", "0", kLantern},
                                                          {"show", "--format", "xml", kLantern},
                                                          {"convert", kLantern},
                                                          {"convert", kLantern, "out.stp"},
                                                          {"stats", kLantern, "--nonsense"}};
    for (const auto& call : kCalls) {
        const ToolRun run = RunTool(call);
        EXPECT_EQ(run.exitCode, 2) << run.err;
        EXPECT_TRUE(run.out.empty()) << run.out;
        EXPECT_TRUE(Contains(run.err, "assembly:")) << run.err;
    }
}

TEST(Usage, AMissingFileIsNamed) {
    const ToolRun run = RunTool({"show", "nowhere.stp"});
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_TRUE(Contains(run.err, "nowhere.stp")) << run.err;
    EXPECT_TRUE(run.out.empty());
}

TEST(Usage, AnUnknownFormatIsNamedWithTheKnownOnes) {
    const TemporaryFolder folder;
    WriteAll(folder.File("notes.txt"), "just some notes\n");
    const ToolRun run = RunTool({"stats", folder.File("notes.txt")});
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_TRUE(Contains(run.err, "notes.txt")) << run.err;
    EXPECT_TRUE(Contains(run.err, "STEP")) << run.err;
}

TEST(Usage, ABrokenFileIsNamedWithTheCause) {
    const TemporaryFolder folder;
    WriteAll(folder.File("broken.stp"), ReadAll(kLantern).substr(0, 5000));
    const ToolRun run = RunTool({"show", folder.File("broken.stp")});
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_TRUE(Contains(run.err, "broken.stp")) << run.err;
}

TEST(Usage, AShapeWithANumberBeyondTheLimitIsSeven) {
    const TemporaryFolder folder;
    std::string text = ReadAll(kLantern);
    const std::string point = "CARTESIAN_POINT('',(";
    const std::size_t place = text.rfind(point, text.find("VERTEX_POINT")) + point.size();
    text.replace(place, text.find(',', place) - place, "1.E+40");
    WriteAll(folder.File("huge.stp"), text);
    const ToolRun run = RunTool({"convert", folder.File("huge.stp"), folder.File("huge.qn")});
    EXPECT_EQ(run.exitCode, 7) << run.err;
    EXPECT_TRUE(Contains(run.err, "1.E+40")) << run.err;
    EXPECT_EQ(RunTool({"stats", folder.File("huge.stp")}).exitCode, 0);
}

TEST(Usage, AnOutputThatCannotBeWrittenIsFourAndLeavesNothing) {
    const TemporaryFolder folder;
    const ToolRun run = RunTool({"convert", "--structure-only", kLantern, folder.File("missing/out.qn")});
    EXPECT_EQ(run.exitCode, 4);
    EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
}

TEST(Usage, AnswersFourWhereStdoutCannotTakeAll) {
    if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "no device that is full";
    for (const char* verb : {"show", "stats", "parts", "limits"}) {
        std::vector<std::string> words{"-c", "exec \"$@\" > /dev/full", "sh", ASSEMBLY_TOOL, verb};
        if (verb != std::string("limits")) words.push_back(kLantern);
        const ToolRun run = RunProgram("sh", words);
        EXPECT_EQ(run.exitCode, 4) << verb;
        EXPECT_TRUE(Contains(run.err, "the output could not be written")) << verb << run.err;
    }
}

TEST(Usage, AReaderThatHasEnoughIsNoFailure) {
    const ToolRun run = RunProgram("sh", {"-c", "{ \"$@\"; echo $? >&2; } | true", "sh", ASSEMBLY_TOOL,
                                          "show", "--format", "json", kLantern});
    EXPECT_EQ(run.err, "0\n");
}

TEST(Usage, AFailedConversionLeavesTheOldOutput) {
    const TemporaryFolder folder;
    WriteAll(folder.File("out.qn"), "old");
    EXPECT_EQ(RunTool({"convert", folder.File("nowhere.stp"), folder.File("out.qn")}).exitCode, 3);
    EXPECT_EQ(ReadAll(folder.File("out.qn")), "old");
}

TEST(Usage, FileNamesOutsideAsciiWork) {
    const TemporaryFolder folder;
    const std::string step = folder.File("Größe ❤.stp"), scene = folder.File("ランプ.qn");
    WriteAll(step, ReadAll(kLantern));
    ASSERT_EQ(RunTool({"convert", "--structure-only", step, scene}).exitCode, 0);
    EXPECT_EQ(RunTool({"show", scene}).out, RunTool({"show", kLantern}).out);
}

TEST(Usage, ProgressIsToldInJsonWhereAsked) {
    const TemporaryFolder folder;
    const std::vector<std::vector<std::string>> kCalls = {
        {"show", kLantern},
        {"stats", kLantern},
        {"parts", kLantern},
        {"convert", "--structure-only", kLantern, folder.File("lantern.qn")}};
    for (std::vector<std::string> call : kCalls) {
        EXPECT_TRUE(RunTool(call).err.empty()) << call[0];
        call.insert(call.end(), {"--progress", "json"});
        const ToolRun run = RunTool(call);
        EXPECT_EQ(run.exitCode, 0) << run.err;
        EXPECT_TRUE(json::parse(run.err.substr(0, run.err.find('\n'))).contains("progress")) << run.err;
    }
}

TEST(Show, PrintsTheTreeWithNamesOutsideAsciiAndUses) {
    const ToolRun run = RunTool({"show", kLantern});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.out.rfind("Laterne „Größe M“\n├─ Gehäuse\n│  ├─ Platte \"Platte unten\" (2 uses)\n", 0), 0u)
        << run.out;
    EXPECT_TRUE(Contains(run.out, "   ├─ 電球\n")) << run.out;
    EXPECT_FALSE(Contains(run.out, "\x1b[")) << "colour without a terminal";
}

TEST(Show, StopsAtTheWantedDepthAndTellsWhatIsBelow) {
    EXPECT_EQ(RunTool({"show", "--depth", "2", kLantern}).out,
              "Laterne „Größe M“\n├─ Gehäuse + 18 below\n└─ ランプ \"Lampe\" + 8 below\n");
}

TEST(Show, ListsDefinitionsWithTheirUses) {
    const ToolRun run = RunTool({"show", "--definitions", "--ids", kLantern});
    EXPECT_EQ(std::count(run.out.begin(), run.out.end(), '\n'), 11);
    EXPECT_TRUE(Contains(run.out, "STEP:L-22")) << run.out;
}

TEST(Show, WritesJsonThatNamesParentsByIndex) {
    const json shown = ToolJson({"show", "--format", "json", kLantern});
    EXPECT_EQ(shown["definitions"].size(), 10u);
    EXPECT_EQ(shown["instances"].size(), 18u);
    ASSERT_EQ(shown["occurrences"].size(), 29u);
    EXPECT_TRUE(shown["occurrences"][0]["parent"].is_null());
    for (std::size_t i = 1; i < shown["occurrences"].size(); ++i)
        EXPECT_LT(shown["occurrences"][i]["parent"].get<std::size_t>(), i);
}

TEST(Show, WritesDefinitionsAloneWhereAsked) {
    const json shown = ToolJson({"show", "--definitions", "--format", "json", kLantern});
    EXPECT_FALSE(shown.contains("occurrences"));
    EXPECT_EQ(shown["definitions"][0]["name"], "Laterne „Größe M“");
}

TEST(Stats, TellsNoTimesUnlessAsked) {
    EXPECT_FALSE(ToolJson({"stats", "--format", "json", kLantern}).contains("load_seconds"));
    const json timed = ToolJson({"stats", "--timing", "--format", "json", kLantern});
    EXPECT_TRUE(timed.contains("load_seconds"));
    EXPECT_TRUE(timed.contains("peak_memory_kib"));
}

TEST(Stats, PrintsTheSameTwice) {
    EXPECT_EQ(RunTool({"stats", kLantern}).out, RunTool({"stats", kLantern}).out);
}

TEST(Module, TellsVersionsIdentifierAndClassesInOrder) {
    const json module = ToolJson({"module", "--format", "json"});
    EXPECT_EQ(module["version"], "9.0.0.35737");
    EXPECT_EQ(module["interface_version"], 0x910);
    EXPECT_EQ(module["identifier"], "66d411a4-fc53-4ace-849c-1da033ee6b7a");
    ASSERT_FALSE(module["classes"].empty());
    EXPECT_EQ(module["classes"][0]["key"], "qn.k3.bom");
    EXPECT_EQ(module["classes"][0]["value"], 0x10000000);
}

TEST(Limits, AreNamedWithTheirValues) {
    const json limits = ToolJson({"limits", "--format", "json"});
    EXPECT_EQ(limits["occurrences"], 20'000'000);
    EXPECT_EQ(RunTool({"limits"}).exitCode, 0);
}

TEST(Samples, AreWhatTheirProgramWrites) {
    const TemporaryFolder folder;
    ASSERT_EQ(RunProgram(ASSEMBLY_BIN_DIR "/make_samples", {folder.Path().string()}).exitCode, 0);
    EXPECT_TRUE(ReadAll(folder.File("lantern.stp")) == ReadAll(kLantern));
}

}  // namespace
}  // namespace assembly::tests
