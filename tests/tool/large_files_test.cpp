// Assemblies at the edges: very deep, very wide, very much shared.

#include "engine/stream/scene_file.h"
#include "frame/entry.h"
#include "frame/host/scene.h"
#include "samples/generator/step_writer.h"
#include "tests/support/generated_scene.h"
#include "tests/support/static_module.h"
#include "tests/tool/tool_process.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace assembly::tests {
namespace {

using nlohmann::json;
using qn::test::AssemblyShape;

constexpr int kLevels = 10'000;
constexpr int kChildren = 100'000;

/// A scene file whose top node carries a generator for the assembly.
std::string SceneBytes(const AssemblyShape& shape) {
    const qn::test::EntryModule module(&K3DLLFunc);
    const qn::test::Assembly made(shape);
    const auto context = qn::api->CreateContext(0, 0);
    return qn::SaveSceneToBytes(*qn::test::GeneratedScene(made), *context);
}

std::string DeepStep() {
    samples::StepWriter file("deep.stp");
    auto below = file.AddPart("P", "part", "", samples::Rectangle(1, 1), 1, {1, 0, 0});
    for (int level = 1; level < kLevels; ++level) {
        const std::string number = std::to_string(level);
        const auto above = file.AddAssembly("A" + number, "assembly " + number, "");
        file.AddUse(above, below, number, "use " + number, "", {1, 0, 0});
        below = above;
    }
    return file.Text();
}

std::string WideStep() {
    samples::StepWriter file("wide.stp");
    const auto part = file.AddPart("P", "part", "", samples::Rectangle(1, 1), 1, {1, 0, 0});
    const auto root = file.AddAssembly("A", "wide", "");
    for (int i = 0; i < kChildren; ++i)
        file.AddUse(root, part, std::to_string(i), "", "", {double(i), 0, 0});
    return file.Text();
}

void ExpectCounts(const std::string& file, std::uint64_t definitions, std::uint64_t instances,
                  std::uint64_t occurrences, std::uint64_t depth) {
    const json stats = ToolJson({"stats", "--format", "json", file});
    EXPECT_EQ(stats["definitions"], definitions);
    EXPECT_EQ(stats["instances"], instances);
    EXPECT_EQ(stats["occurrences"], occurrences);
    EXPECT_EQ(stats["depth"], depth);
}

std::int64_t LinesOf(const std::string& file) {
    const ToolRun run = RunTool({"show", file});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    return std::count(run.out.begin(), run.out.end(), '\n');
}

class LargeFiles : public testing::Test {
protected:
    std::string Keep(const std::string& name, const std::string& bytes) {
        WriteAll(folder_.File(name), bytes);
        return folder_.File(name);
    }
    std::string Convert(const std::string& file, const std::string& name,
                        const std::vector<std::string>& options = {}) {
        std::vector<std::string> arguments{"convert"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        arguments.insert(arguments.end(), {file, folder_.File(name)});
        const ToolRun run = RunTool(arguments);
        EXPECT_EQ(run.exitCode, 0) << run.err;
        return folder_.File(name);
    }
    TemporaryFolder folder_;
};

TEST_F(LargeFiles, TenThousandLevelsAreImportedSavedLoadedAndShown) {
    const std::string step = Keep("deep.stp", DeepStep());
    ExpectCounts(step, kLevels, kLevels - 1, kLevels, kLevels);
    const std::string compact = Convert(step, "deep.qn");
    const std::string expanded = Convert(compact, "expanded.qn", {"--expand"});
    EXPECT_EQ(ReadAll(Convert(compact, "again.qn")), ReadAll(compact));
    for (const std::string& file : {compact, expanded}) {
        ExpectCounts(file, kLevels, kLevels - 1, kLevels, kLevels);
        EXPECT_EQ(LinesOf(file), kLevels);
    }
}

TEST_F(LargeFiles, AHundredThousandChildrenAreImportedSavedLoadedAndShown) {
    const std::string step = Keep("wide.stp", WideStep());
    ExpectCounts(step, 2, kChildren, kChildren + 1, 2);
    const std::string compact = Convert(step, "wide.qn");
    const std::string expanded = Convert(compact, "expanded.qn", {"--expand"});
    EXPECT_EQ(ReadAll(Convert(compact, "again.qn")), ReadAll(compact));
    for (const std::string& file : {compact, expanded}) {
        ExpectCounts(file, 2, kChildren, kChildren + 1, 2);
        EXPECT_EQ(LinesOf(file), kChildren + 1);
    }
}

TEST_F(LargeFiles, AMillionOccurrencesOfFewDefinitionsAreCountedAndShownWithoutMakingThem) {
    const std::string file = Keep("shared.qn", SceneBytes(qn::test::SharedShape(1'111'111)));
    ExpectCounts(file, 61, 510, 1'111'111, 7);
    EXPECT_LT(ReadAll(file).size(), 100'000u);
    EXPECT_EQ(LinesOf(file), 1'111'111);
}

TEST_F(LargeFiles, MoreOccurrencesThan64BitsCountAreRefused) {
    AssemblyShape shape;
    for (int level = 0; level < 70; ++level)
        shape.definitions.push_back({"level " + std::to_string(level), {level + 1, level + 1}});
    shape.definitions.push_back({"part", {}});

    const std::string file = Keep("huge.qn", SceneBytes(shape));
    const ToolRun run = RunTool({"stats", file});
    EXPECT_EQ(run.exitCode, 7);
    EXPECT_NE(run.err.find("more occurrences than can be counted"), std::string::npos) << run.err;
}

/// Twelve levels of ten: a file of a few thousand bytes that means a million million occurrences.
AssemblyShape BeyondTheLimit() {
    AssemblyShape shape;
    for (int level = 0; level < 12; ++level)
        shape.definitions.push_back({"level " + std::to_string(level), std::vector<int>(10, level + 1)});
    shape.definitions.push_back({"part", {}});
    return shape;
}

class BeyondTheLimitOfOccurrences : public LargeFiles {
protected:
    const std::string file_ = Keep("large.qn", SceneBytes(BeyondTheLimit()));
    const std::string out_ = folder_.File("out.qn");
    void ExpectDone(const std::vector<std::string>& call) {
        const ToolRun run = RunTool(call);
        EXPECT_EQ(run.exitCode, 0) << call[0] << " " << call[1] << ": " << run.err;
    }
    void ExpectLimit(const std::vector<std::string>& call) {
        std::filesystem::remove(out_);
        const ToolRun run = RunTool(call);
        EXPECT_EQ(run.exitCode, 7) << call[0] << " " << call[1] << ": " << run.err;
        EXPECT_NE(run.err.find("20000000"), std::string::npos) << run.err;
        EXPECT_FALSE(std::filesystem::exists(out_));
    }
};

TEST_F(BeyondTheLimitOfOccurrences, WhatGoesByUsesIsDone) {
    ExpectDone({"convert", file_, out_});
    ExpectDone({"bom", "create", "first", file_, "-o", out_});
    ExpectDone({"bom", "create", "second", "--empty", out_, "--in-place"});
    ExpectDone({"bom", "activate", "second", out_, "--in-place"});
    ExpectDone({"bom", "show", "first", "--depth", "2", out_});
    ExpectDone(
        {"effectivity", "add", file_, "--occurrence", "level 0/level 1[2]", "--lines", "1", "-o", out_});
    ExpectDone({"check", out_});
    ExpectDone({"repair", out_, "--in-place"});
}

TEST_F(BeyondTheLimitOfOccurrences, WhatWantsANodeForEachIsRefusedBeforeOneIsMade) {
    ExpectLimit({"convert", "--expand", file_, out_});
    ExpectLimit({"run", "validate_scene_hierarchy", file_, "-o", out_});
    ExpectLimit({"effectivity", "add", file_, "--only-here", "--occurrence", "level 0/level 1[2]", "--lines",
                 "1", "-o", out_});
    const std::string first = folder_.File("first.qn");
    ExpectDone({"bom", "create", "first", file_, "-o", first});
    ExpectLimit({"bom", "create", "second", first, "-o", out_});
}

}  // namespace
}  // namespace assembly::tests
