// Names of files lead to the same files from wherever a scene is written to.

#include "frame/entry.h"
#include "tests/support/file_assembly.h"
#include "tests/support/static_module.h"
#include "tests/tool/tool_process.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace assembly::tests {
namespace {

using nlohmann::json;
using qn::test::FileAssembly;
using qn::test::FilePart;
namespace fs = std::filesystem;

class MovedNames : public testing::Test {
protected:
    MovedNames() { fs::create_directory(File("out")); }
    std::string File(const std::string& name) const { return folder_.File(name); }
    void Write(const std::string& name, const std::string& root, const std::vector<FilePart>& parts) {
        fs::create_directories(fs::path(File(name)).parent_path());
        WriteAll(File(name), FileAssembly(root, parts));
    }
    /// "in/a.qn" names "in/b.qn" and, through "in/sub/c.qn", "in/sub/deep/d.qn".
    void WriteAssembly() {
        Write("in/a.qn", "A", {{"b", "b.qn", 2}, {"c", ".\\sub\\c.qn"}});
        Write("in/b.qn", "B", {});
        Write("in/sub/c.qn", "C", {{"d", "deep/d.qn"}});
        Write("in/sub/deep/d.qn", "D", {});
    }
    ToolRun Convert(const std::string& from, const std::string& to, std::vector<std::string> options = {}) {
        options.insert(options.begin(), {"convert", File(from), File(to)});
        ToolRun run = RunTool(options);
        EXPECT_EQ(run.exitCode, 0) << run.err;
        return run;
    }
    /// The names that a file holds, in the order of its definitions.
    std::vector<std::string> NamesIn(const std::string& name) {
        std::vector<std::string> names;
        const json shown = ToolJson({"show", "--format", "json", File(name)});
        for (const json& row : shown["definitions"])
            if (row.contains("file")) names.push_back(row["file"]);
        return names;
    }
    std::string Tree(const std::string& name) {
        return RunTool({"show", "--load", "all", "--allow", File("in"), File(name)}).out;
    }
    const qn::test::EntryModule module_{&K3DLLFunc};
    TemporaryFolder folder_;
};

using Names = std::vector<std::string>;

TEST_F(MovedNames, LeadFromAnotherFolderToTheSameFiles) {
    WriteAssembly();
    for (const char* output : {"out/x.qn", "out/x.glb"}) {
        Convert("in/a.qn", output);
        EXPECT_EQ(NamesIn(output), (Names{"../in/b.qn", "../in/sub/c.qn"})) << output;
        EXPECT_EQ(Tree(output), Tree("in/a.qn")) << output;
    }
}

TEST_F(MovedNames, AreToldOfIfAReaderHasToAllowThem) {
    WriteAssembly();
    const ToolRun run = Convert("in/a.qn", "out/x.qn");
    EXPECT_EQ(run.err, "assembly: " + File("out/x.qn") +
                           ": names files outside of its folder, \"../in/b.qn\" first; reading them takes "
                           "--allow " +
                           File("in") + "; convert --load all takes in their content\n");
    EXPECT_EQ(RunTool({"stats", "--load", "all", File("out/x.qn")}).exitCode, 3);
}

TEST_F(MovedNames, NeedNoLeaveInAFolderAbove) {
    WriteAssembly();
    EXPECT_EQ(Convert("in/a.qn", "x.qn").err, "");
    EXPECT_EQ(NamesIn("x.qn"), (Names{"in/b.qn", "in/sub/c.qn"}));
    EXPECT_EQ(RunTool({"stats", "--load", "all", File("x.qn")}).exitCode, 0);
}

TEST_F(MovedNames, StayAsTheyAreInTheSameFolder) {
    WriteAssembly();
    EXPECT_EQ(Convert("in/a.qn", "in/x.qn").err, "");
    EXPECT_EQ(ReadAll(File("in/x.qn")), ReadAll(File("in/a.qn")));
    Convert("in/a.qn", "in/../in/sub/../x.qn");
    EXPECT_EQ(ReadAll(File("in/x.qn")), ReadAll(File("in/a.qn")));
}

TEST_F(MovedNames, OfFilesThatCameInLeadFromTheFolderOfTheWhole) {
    WriteAssembly();
    Convert("in/a.qn", "in/x.qn", {"--load", "1"});
    EXPECT_EQ(NamesIn("in/x.qn"), Names{"sub/deep/d.qn"});
    EXPECT_EQ(RunTool({"show", "--load", "all", File("in/x.qn")}).out, Tree("in/a.qn"));
    Convert("in/a.qn", "out/x.qn", {"--load", "1"});
    EXPECT_EQ(NamesIn("out/x.qn"), Names{"../in/sub/deep/d.qn"});
}

TEST_F(MovedNames, OfMissingFilesLeadWhereTheyWereLookedFor) {
    WriteAssembly();
    fs::remove(File("in/sub/deep/d.qn"));
    const ToolRun run = RunTool({"convert", "--load", "all", File("in/a.qn"), File("in/x.qn")});
    EXPECT_EQ(run.exitCode, 5);
    EXPECT_EQ(NamesIn("in/x.qn"), Names{"sub/deep/d.qn"});
}

TEST_F(MovedNames, OfARootThatNamesAFileItself) {
    Write("in/a.qn", "A", {{"b", "sub/b.qn"}});
    fs::create_directories(File("in/sub"));
    WriteAll(File("in/sub/b.qn"), FileAssembly("B", {}, {}, "c.qn"));
    Convert("in/a.qn", "in/x.qn", {"--load", "1"});
    EXPECT_EQ(NamesIn("in/x.qn"), Names{"sub/c.qn"});
}

TEST_F(MovedNames, ThatLedOutOfTheFolderLeadThereStill) {
    Write("in/a.qn", "A", {{"b", "../lib/b.qn"}, {"c", "../out/c.qn"}});
    const ToolRun run = Convert("in/a.qn", "out/x.qn");
    EXPECT_EQ(NamesIn("out/x.qn"), (Names{"../lib/b.qn", "c.qn"}));
    EXPECT_EQ(run.err, "") << "the name that leads out is as it was";
    EXPECT_EQ(Convert("in/a.qn", "x.qn").err, "");
    EXPECT_EQ(NamesIn("x.qn"), (Names{"lib/b.qn", "out/c.qn"}));
    fs::create_directories(File("out/deep"));
    const std::string told = Convert("in/a.qn", "out/deep/x.qn").err;
    EXPECT_NE(told.find("--allow " + File("lib") + " --allow " + File("out") + ";"), std::string::npos)
        << told;
}

TEST_F(MovedNames, ThatHangOnNoFolderStayAsTheyAre) {
    const Names names = {"/cad/b.qn", "C:/cad/b.qn", "file:///b.qn", "a\tb.qn"};
    Write("in/a.qn", "A", {{"1", names[0]}, {"2", names[1]}, {"3", names[2]}, {"4", names[3]}});
    EXPECT_EQ(Convert("in/a.qn", "out/x.qn").err, "");
    EXPECT_EQ(NamesIn("out/x.qn"), names);
}

TEST_F(MovedNames, ThatCannotBeSaidLeaveNothingWritten) {
    for (const char* folder : {"back\\slash", "tab\tstop"}) {
        Write(std::string(folder) + "/a.qn", "A", {{"part", "b.qn"}});
        const ToolRun run = RunTool({"convert", File(std::string(folder) + "/a.qn"), File("out/x.qn")});
        EXPECT_EQ(run.exitCode, 4) << folder;
        EXPECT_NE(run.err.find("no name leads there from the new folder"), std::string::npos) << run.err;
        EXPECT_FALSE(fs::exists(File("out/x.qn")));
        EXPECT_EQ(Convert(std::string(folder) + "/a.qn", std::string(folder) + "/x.qn").err, "");
    }
}

TEST_F(MovedNames, NeverLeadToTheFileThatHoldsThem) {
    WriteAssembly();
    const std::string part = ReadAll(File("in/b.qn"));
    fs::create_symlink("b.qn", File("in/link.qn"));
    for (const char* output : {"in/b.qn", "in/link.qn"})
        for (const char* levels : {"none", "all"}) {
            const ToolRun run = RunTool({"convert", "--load", levels, File("in/a.qn"), File(output)});
            EXPECT_EQ(run.exitCode, 2) << output << levels;
            EXPECT_NE(run.err.find(File(output) + ": "), std::string::npos) << run.err;
            EXPECT_EQ(ReadAll(File("in/b.qn")), part) << "the part is as it was";
        }
    Write("in/self.qn", "S", {{"s", "self.qn"}});
    EXPECT_EQ(RunTool({"convert", File("in/self.qn"), File("in/self.qn")}).exitCode, 0);
}

TEST_F(MovedNames, AreThoseOfStoredNodesToo) {
    WriteAssembly();
    Convert("in/a.qn", "in/nodes.qn", {"--expand"});
    Convert("in/nodes.qn", "x.qn");
    EXPECT_EQ(NamesIn("x.qn"), (Names{"in/b.qn", "in/sub/c.qn"}));
}

TEST_F(MovedNames, AreThoseOfEveryVerbThatWrites) {
    WriteAssembly();
    const std::string in = File("in/a.qn"), out = File("x.qn");
    const std::vector<std::vector<std::string>> verbs = {
        {"run", "generate_bs_ids", in, "generate_node_bs_id=true", "prefix_string=s", "suffix_string=", "-o",
         out},
        {"bom", "create", "service", in, "-o", out},
        {"effectivity", "add", in, "--lines", "1-2", "--occurrence", "A/b.1", "-o", out},
        {"repair", in, "-o", out}};
    for (const auto& verb : verbs) {
        fs::remove(out);
        const ToolRun run = RunTool(verb);
        EXPECT_EQ(run.exitCode, 0) << verb.front() << run.err;
        EXPECT_EQ(NamesIn("x.qn"), (Names{"in/b.qn", "in/sub/c.qn"})) << verb.front();
    }
}

}  // namespace
}  // namespace assembly::tests
