// What an assembly of many files tells of them, and what it costs.

#include "frame/entry.h"
#include "tests/support/file_assembly.h"
#include "tests/support/static_module.h"
#include "tests/tool/tool_process.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace assembly::tests {
namespace {

using nlohmann::json;
using qn::test::FileAssembly;
using qn::test::FilePart;

class Deps : public testing::Test {
protected:
    std::string File(const std::string& name) const { return folder_.File(name); }
    void Write(const std::string& name, const std::vector<FilePart>& parts) {
        WriteAll(File(name), FileAssembly(name, parts));
    }
    /// A car of two axles and a spare wheel; each axle of two wheels.
    void WriteCar() {
        Write("car.qn", {{"axle", "axle.qn", 2}, {"spare", "wheel.qn"}});
        Write("axle.qn", {{"wheel", "wheel.qn", 2}, {"rod", "rod.qn"}});
        Write("wheel.qn", {{"tyre", "tyre.qn"}});
        Write("rod.qn", {});
        Write("tyre.qn", {});
    }
    const qn::test::EntryModule module_{&K3DLLFunc};
    TemporaryFolder folder_;
};

TEST_F(Deps, ShowsEachFileBelowThoseThatNameIt) {
    WriteCar();
    const ToolRun run = RunTool({"deps", File("car.qn")});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.out, File("car.qn") +
                           "\n"
                           "├─ axle.qn (2 uses)\n"
                           "│  ├─ wheel.qn (2 uses)\n"
                           "│  │  └─ tyre.qn (1 use)\n"
                           "│  └─ rod.qn (1 use)\n"
                           "└─ wheel.qn (1 use) as above\n");
}

TEST_F(Deps, CountsUsesAndOccurrencesOfEachFile) {
    WriteCar();
    const json deps = ToolJson({"deps", "--format", "json", File("car.qn")});
    ASSERT_EQ(deps["files"].size(), 5u);
    EXPECT_TRUE(deps["missing"].empty());
    EXPECT_EQ(deps["files"][0]["path"], File("car.qn"));
    const json& wheel = deps["files"][2];
    EXPECT_EQ(wheel["path"], File("wheel.qn"));
    EXPECT_EQ(wheel["state"], "read");
    EXPECT_EQ(wheel["level"], 1);
    EXPECT_EQ(wheel["uses"], 3);
    EXPECT_EQ(wheel["occurrences"], 5);
    EXPECT_EQ(wheel["names"][0]["name"], "tyre.qn");
    EXPECT_EQ(deps["files"][wheel["names"][0]["file"].get<std::size_t>()]["occurrences"], 5);
}

TEST_F(Deps, TellsWhatIsMissingAndAnswersFive) {
    WriteCar();
    std::filesystem::remove(File("tyre.qn"));
    const ToolRun tree = RunTool({"deps", File("car.qn")});
    EXPECT_EQ(tree.exitCode, 5);
    EXPECT_NE(tree.out.find("tyre.qn (1 use) missing\n"), std::string::npos) << tree.out;
    const ToolRun missing = RunTool({"deps", "--missing", File("car.qn")});
    EXPECT_EQ(missing.exitCode, 5);
    EXPECT_EQ(missing.out, "car.qn -> wheel.qn -> tyre.qn\n");
    EXPECT_EQ(missing.err, "assembly: missing file \"tyre.qn\": named by definition \"tyre\" in " +
                               File("wheel.qn") + ", looked for at " + File("tyre.qn") + "\n");
    const json told = json::parse(RunTool({"deps", "--missing", "--format", "json", File("car.qn")}).out);
    EXPECT_FALSE(told.contains("files"));
    EXPECT_EQ(told["missing"][0]["chain"], "car.qn -> wheel.qn -> tyre.qn");
}

TEST_F(Deps, TellsNothingWhereNothingIsMissing) {
    WriteCar();
    const ToolRun run = RunTool({"deps", "--missing", File("car.qn")});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.out + run.err, "");
}

TEST_F(Deps, OfALoneFileAreThatFile) {
    Write("part.qn", {});
    EXPECT_EQ(RunTool({"deps", File("part.qn")}).out, File("part.qn") + "\n");
}

TEST_F(Deps, AreMissingUnderNamesThatNoFileCanHave) {
    Write("part.qn", {});
    const std::string letters(300, 'n');
    for (const std::string& name :
         {letters, letters + "/b.qn", "x/" + letters, std::string("part.qn/b.qn")}) {
        Write("top.qn", {{"part", name}});
        const ToolRun run = RunTool({"deps", File("top.qn")});
        EXPECT_EQ(run.exitCode, 5) << name << ": " << run.err;
        EXPECT_NE(run.out.find(name + " (1 use) missing\n"), std::string::npos) << run.out;
    }
}

/// So many files, each used a hundred times below one top.
class ManyFiles : public Deps, public testing::WithParamInterface<int> {
protected:
    static constexpr int kUses = 100;
};

TEST_P(ManyFiles, AreReadOnceEachAndShownForEachUse) {
    std::vector<FilePart> parts;
    for (int i = 0; i < GetParam(); ++i) {
        const std::string name = "part" + std::to_string(i) + ".qn";
        Write(name, {});
        parts.push_back({name, name, kUses});
    }
    Write("top.qn", parts);
    const json stats = ToolJson({"stats", "--load", "all", "--format", "json", File("top.qn")});
    EXPECT_EQ(stats["files_named"], GetParam());
    EXPECT_EQ(stats["files_read"], GetParam());
    EXPECT_EQ(stats["definitions"], GetParam() + 1);
    EXPECT_EQ(stats["occurrences"], GetParam() * kUses + 1);
    const ToolRun shown = RunTool({"show", "--load", "all", File("top.qn")});
    EXPECT_EQ(std::count(shown.out.begin(), shown.out.end(), '\n'), GetParam() * kUses + 1);
}

INSTANTIATE_TEST_SUITE_P(Of, ManyFiles, testing::Values(10, 1'000));

}  // namespace
}  // namespace assembly::tests
