// Assemblies of many files: definitions that name files, and what becomes of them.

#include "frame/entry.h"
#include "tests/support/file_assembly.h"
#include "tests/support/static_module.h"
#include "tests/tool/tool_process.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <filesystem>
#include <sstream>

namespace assembly::tests {
namespace {

using nlohmann::json;
using qn::test::FileAssembly;
using qn::test::FilePart;
namespace fs = std::filesystem;

const std::string kLantern = ASSEMBLY_SAMPLES_DIR "/lantern.stp";

bool Contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

class ExternalFiles : public testing::Test {
protected:
    std::string File(const std::string& name) const { return folder_.File(name); }
    void Write(const std::string& name, const std::string& root, const std::vector<FilePart>& parts,
               const std::string& serverId = {}) {
        fs::create_directories(fs::path(File(name)).parent_path());
        WriteAll(File(name), FileAssembly(root, parts, serverId));
    }
    /// A top file "a.qn" with one definition that names `file`, and what `stats --load all` says of it.
    ToolRun FollowOne(const std::string& file, const std::vector<std::string>& more = {}) {
        Write("a.qn", "A", {{"part", file}});
        std::vector<std::string> arguments{"stats", "--load", "all", File("a.qn")};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return RunTool(arguments);
    }
    json Stats(const std::string& levels, const std::string& name) {
        return ToolJson({"stats", "--load", levels, "--format", "json", File(name)});
    }
    /// The tree of a file with all of its files is the same once these were written into one.
    void ExpectConvertedWhole(const std::string& name) {
        const ToolRun run = RunTool({"convert", "--load", "all", File(name), File("whole.qn")});
        ASSERT_EQ(run.exitCode, 0) << run.err;
        EXPECT_EQ(RunTool({"show", File("whole.qn")}).out,
                  RunTool({"show", "--load", "all", File(name)}).out);
        EXPECT_EQ(ToolJson({"stats", "--format", "json", File("whole.qn")})["files_named"], 0);
    }
    const qn::test::EntryModule module_{&K3DLLFunc};
    TemporaryFolder folder_;
};

TEST_F(ExternalFiles, AreNamesUntilTheirLoadIsAskedFor) {
    Write("a.qn", "A", {{"bolt", "bolt.qn", 3}});
    const ToolRun shown = RunTool({"show", File("a.qn")});
    EXPECT_EQ(shown.exitCode, 0);
    EXPECT_TRUE(Contains(shown.out, "bolt \"bolt.1\" (3 uses) → bolt.qn\n")) << shown.out;
    const json stats = Stats("none", "a.qn");
    EXPECT_EQ(stats["files_named"], 1);
    EXPECT_EQ(stats["files_read"], 0);
    EXPECT_EQ(stats["files_missing"], 0);
}

TEST_F(ExternalFiles, PutTheirRootInThePlaceOfTheDefinitionThatNamesThem) {
    Write("a.qn", "A", {{"sub", "parts/b.qn", 2}});
    Write("parts/b.qn", "B", {{"bolt", "c.qn", 3}});
    Write("parts/c.qn", "C", {});
    const ToolRun shown = RunTool({"show", "--load", "all", File("a.qn")});
    EXPECT_EQ(shown.exitCode, 0) << shown.err;
    EXPECT_EQ(shown.out,
              "A\n"
              "├─ B \"sub.1\" (2 uses)\n│  ├─ C \"bolt.1\" (3 uses)\n│  ├─ C \"bolt.2\" (3 uses)\n"
              "│  └─ C \"bolt.3\" (3 uses)\n"
              "└─ B \"sub.2\" (2 uses)\n   ├─ C \"bolt.1\" (3 uses)\n   ├─ C \"bolt.2\" (3 uses)\n"
              "   └─ C \"bolt.3\" (3 uses)\n");
    const json stats = Stats("all", "a.qn");
    EXPECT_EQ(stats["definitions"], 3);
    EXPECT_EQ(stats["instances"], 5);
    EXPECT_EQ(stats["occurrences"], 9);
}

TEST_F(ExternalFiles, AreOfAnyFormatThatIsKnown) {
    fs::copy_file(kLantern, File("lantern.stp"));
    Write("a.qn", "A", {{"lamp", "lantern.stp"}});
    const json whole = Stats("all", "a.qn");
    const json lantern = ToolJson({"stats", "--format", "json", kLantern});
    EXPECT_EQ(whole["definitions"].get<int>(), lantern["definitions"].get<int>() + 1);
    EXPECT_EQ(whole["occurrences"].get<int>(), lantern["occurrences"].get<int>() + 1);
    EXPECT_EQ(whole["depth"].get<int>(), lantern["depth"].get<int>() + 1);
}

TEST_F(ExternalFiles, MayBeGltf) {
    if (DataFolder().empty()) GTEST_SKIP() << "the data folder is not there";
    fs::copy_file(DataFolder() / "gltf-milk-truck/CesiumMilkTruck.glb", File("truck.glb"));
    Write("a.qn", "A", {{"truck", "truck.glb", 2}});
    const json whole = Stats("all", "a.qn");
    const json truck = ToolJson({"stats", "--format", "json", File("truck.glb")});
    EXPECT_EQ(whole["definitions"].get<int>(), truck["definitions"].get<int>() + 2) << "roots have a place";
    EXPECT_EQ(whole["occurrences"].get<int>(), (truck["occurrences"].get<int>() + 1) * 2 + 1);
    ExpectConvertedWhole("a.qn");
}

TEST_F(ExternalFiles, OfSeveralRootsStandBelowTheDefinitionThatNamesThem) {
    if (DataFolder().empty()) GTEST_SKIP() << "the data folder is not there";
    fs::copy_file(DataFolder() / "small/red_cube_blue_cylinder.step", File("two.step"));
    Write("a.qn", "A", {{"pair", "two.step"}, {"again", "./two.step", 2}});
    const json stats = Stats("all", "a.qn");
    EXPECT_EQ(stats["definitions"], 4);
    EXPECT_EQ(stats["occurrences"], 1 + 3 * 3);
    EXPECT_EQ(stats["files_read"], 1);
    EXPECT_TRUE(Contains(RunTool({"show", "--load", "all", File("a.qn")}).out, "└─ pair \"again.2\""));
}

TEST_F(ExternalFiles, MayNameAnotherFileByTheirRoot) {
    Write("a.qn", "A", {{"b", "b.qn", 2}});
    WriteAll(File("b.qn"), FileAssembly("B", {}, {}, "c.qn"));
    Write("c.qn", "C", {{"d", "d.qn"}});
    Write("d.qn", "D", {});
    EXPECT_EQ(Stats("all", "a.qn")["occurrences"], 5);
    EXPECT_EQ(Stats("all", "b.qn")["occurrences"], 2);
    EXPECT_EQ(Stats("all", "b.qn")["definitions"], 2);
    ExpectConvertedWhole("a.qn");
    ExpectConvertedWhole("b.qn");
}

TEST_F(ExternalFiles, ComeIntoAConvertedFileOnceEach) {
    Write("a.qn", "A", {{"b", "b.qn"}, {"c", "c.qn"}, {"bolt", "x/bolt.qn"}, {"screw", "./x/bolt.qn", 2}});
    Write("b.qn", "B", {{"bolt of b", "x/bolt.qn", 4}});
    Write("c.qn", "C", {{"bolt of c", "x\\bolt.qn", 5}});
    Write("x/bolt.qn", "bolt", {{"head", "head.qn"}});
    Write("x/head.qn", "head", {});
    ExpectConvertedWhole("a.qn");
    EXPECT_EQ(ToolJson({"stats", "--format", "json", File("whole.qn")})["definitions"], 5);
}

TEST_F(ExternalFiles, OfSeveralRootsComeIntoAConvertedFile) {
    if (DataFolder().empty()) GTEST_SKIP() << "the data folder is not there";
    fs::copy_file(DataFolder() / "small/red_cube_blue_cylinder.step", File("two.step"));
    Write("a.qn", "A", {{"pair", "two.step"}, {"again", "./two.step", 2}});
    ExpectConvertedWhole("a.qn");
}

TEST_F(ExternalFiles, StayNamesInAConvertedFileUnlessTheirLoadIsAskedFor) {
    Write("a.qn", "A", {{"b", "b.qn"}});
    Write("b.qn", "B", {{"c", "x\\c.qn"}});
    for (const char* option : {"--structure-only", "--expand"}) {
        ASSERT_EQ(RunTool({"convert", option, File("a.qn"), File("names.qn")}).exitCode, 0);
        EXPECT_TRUE(Contains(RunTool({"show", File("names.qn")}).out, "→ b.qn")) << option;
    }
    ASSERT_EQ(RunTool({"convert", "--load", "1", File("a.qn"), File("one.qn")}).exitCode, 0);
    EXPECT_TRUE(Contains(RunTool({"show", File("one.qn")}).out, "→ x/c.qn"));
}

TEST_F(ExternalFiles, ThatAreMissingStayNamesInAConvertedFile) {
    Write("a.qn", "A", {{"b", "b.qn"}, {"c", "c.qn"}});
    Write("c.qn", "C", {{"d", "d.qn"}});
    Write("d.qn", "D", {});
    const ToolRun run = RunTool({"convert", "--load", "all", File("a.qn"), File("whole.qn")});
    EXPECT_EQ(run.exitCode, 5);
    EXPECT_TRUE(Contains(run.err, "missing file \"b.qn\"")) << run.err;
    const ToolRun shown = RunTool({"show", File("whole.qn")});
    EXPECT_TRUE(Contains(shown.out, "b \"b.1\" → b.qn\n")) << shown.out;
    EXPECT_TRUE(Contains(shown.out, "D \"d.1\"\n")) << shown.out;
}

TEST_F(ExternalFiles, AreReadOnceHoweverOftenTheyAreNamed) {
    Write("a.qn", "A",
          {{"b", "b.qn"}, {"c", "c.qn"}, {"bolt", "x/bolt.qn"}, {"screw", "./x/../x/bolt.qn", 2}});
    Write("b.qn", "B", {{"bolt of b", "x/bolt.qn", 4}});
    Write("c.qn", "C", {{"bolt of c", "x\\bolt.qn", 5}});
    Write("x/bolt.qn", "bolt", {});
    const json stats = Stats("all", "a.qn");
    EXPECT_EQ(stats["files_named"], 3);
    EXPECT_EQ(stats["files_read"], 3);
    EXPECT_EQ(stats["definitions"], 4) << "the bolt is one definition";
    EXPECT_EQ(stats["occurrences"], 1 + 2 + 1 + 2 + 4 + 5);
}

TEST_F(ExternalFiles, OfOneServerIdAreOneDefinition) {
    Write("a.qn", "A", {{"left", "l.qn"}, {"right", "r.qn"}});
    Write("l.qn", "wheel", {{"tyre", "t.qn"}}, "s1:wheel");
    Write("r.qn", "other wheel", {{"tyre", "t.qn"}}, "s1:wheel");
    Write("t.qn", "tyre", {});
    const json stats = Stats("all", "a.qn");
    EXPECT_EQ(stats["definitions"], 3);
    EXPECT_EQ(stats["occurrences"], 5);
}

TEST_F(ExternalFiles, AreNotReadForAServerIdThatHasContentAlready) {
    Write("b.qn", "B", {{"tyre", "t.qn"}}, "s1:b");
    Write("t.qn", "tyre", {});
    Write("c.qn", "C", {{"b again", "gone.qn", 1, "s1:b"}});
    Write("a.qn", "A", {{"b", "b.qn"}, {"c", "c.qn"}});
    const json stats = Stats("all", "a.qn");
    EXPECT_EQ(stats["files_named"], 3) << "b, c and t";
    EXPECT_EQ(stats["occurrences"], 6);
}

TEST_F(ExternalFiles, AreReadAsManyLevelsDownAsAskedFor) {
    Write("a.qn", "A", {{"b", "b.qn"}});
    Write("b.qn", "B", {{"c", "c.qn"}});
    Write("c.qn", "C", {{"d", "d.qn"}});
    Write("d.qn", "D", {});
    EXPECT_EQ(Stats("0", "a.qn")["files_read"], 0);
    EXPECT_EQ(Stats("1", "a.qn")["files_read"], 1);
    EXPECT_EQ(Stats("1", "a.qn")["occurrences"], 3);
    EXPECT_EQ(Stats("2", "a.qn")["files_read"], 2);
    EXPECT_EQ(Stats("all", "a.qn")["files_read"], 3);
    EXPECT_TRUE(Contains(RunTool({"show", "--load", "1", File("a.qn")}).out, "c \"c.1\" → c.qn"));
}

TEST_F(ExternalFiles, AreOneProgress) {
    Write("a.qn", "A", {{"b", "b.qn"}, {"c", "c.qn"}});
    Write("b.qn", "B", {{"c", "c.qn"}});
    Write("c.qn", "C", {});
    const ToolRun run = RunTool({"show", "--progress", "json", "--load", "all", File("a.qn")});
    double last = 0;
    std::istringstream lines(run.err);
    for (std::string line; std::getline(lines, line);) {
        const double progress = json::parse(line)["progress"];
        EXPECT_GE(progress, last) << run.err;
        last = progress;
    }
    EXPECT_EQ(last, 1) << run.err;
}

TEST_F(ExternalFiles, TakeNoOtherWordForTheLevels) {
    for (const char* word : {"some", "-1", "1x", ""})
        EXPECT_EQ(RunTool({"stats", "--load", word, kLantern}).exitCode, 2) << word;
}

TEST_F(ExternalFiles, ThatAreMissingLeaveAPlaceholderAndTheRest) {
    Write("a.qn", "A", {{"bolt", "parts\\bolt.qn", 2}, {"nut", "n.qn"}, {"screw", "parts/bolt.qn"}});
    Write("n.qn", "nut", {});
    const ToolRun run = RunTool({"show", "--load", "all", File("a.qn")});
    EXPECT_EQ(run.exitCode, 5);
    EXPECT_TRUE(Contains(run.out, "├─ bolt \"bolt.1\" (3 uses) → parts/bolt.qn (missing)\n")) << run.out;
    EXPECT_TRUE(Contains(run.out, "├─ nut")) << run.out;
    EXPECT_EQ(run.err, "assembly: missing file \"parts/bolt.qn\": named by definition \"bolt\" in " +
                           File("a.qn") + " and by 1 more, looked for at " + File("parts/bolt.qn") + "\n");
    const ToolRun stats = RunTool({"stats", "--load", "all", "--format", "json", File("a.qn")});
    EXPECT_EQ(stats.exitCode, 5);
    EXPECT_EQ(json::parse(stats.out)["files_missing"], 1);
    EXPECT_EQ(json::parse(stats.out)["occurrences"], 5);
}

TEST_F(ExternalFiles, ThatAreMissingMayBeThereUnderASimilarName) {
    Write("a.qn", "A", {{"bolt", "parts\\LONG%20BOLT.QN"}});
    Write("Parts/long bolt.qn", "bolt", {});
    const ToolRun run = RunTool({"deps", File("a.qn")});
    EXPECT_EQ(run.exitCode, 5);
    EXPECT_TRUE(Contains(run.err, "looked for at " + File("parts/LONG%20BOLT.QN") + "; there is " +
                                      File("Parts/long bolt.qn") + "\n"))
        << run.err;
}

TEST_F(ExternalFiles, AreToldByStateInJson) {
    Write("a.qn", "A", {{"bolt", "bolt.qn"}, {"nut", "n.qn"}});
    Write("n.qn", "nut", {});
    const json shown = json::parse(RunTool({"show", "--load", "all", "--format", "json", File("a.qn")}).out);
    EXPECT_FALSE(shown["definitions"][0].contains("file"));
    EXPECT_EQ(shown["definitions"][1]["file_state"], "missing");
    EXPECT_EQ(shown["definitions"][1]["file"], "bolt.qn");
    EXPECT_EQ(shown["definitions"][2]["file_state"], "read");
}

TEST_F(ExternalFiles, ThatNameThemselvesAreRefusedWithTheChain) {
    const ToolRun direct = FollowOne("a.qn");
    EXPECT_EQ(direct.exitCode, 3);
    EXPECT_TRUE(Contains(direct.err, "a file names itself: a.qn -> a.qn\n")) << direct.err;
    EXPECT_TRUE(direct.out.empty());

    Write("x/b.qn", "B", {{"c", "c.qn"}});
    Write("x/c.qn", "C", {{"b", "b.qn"}});
    const ToolRun ring = FollowOne("x/b.qn");
    EXPECT_EQ(ring.exitCode, 3);
    EXPECT_TRUE(Contains(ring.err, "a file names itself: a.qn -> x/b.qn -> c.qn -> b.qn\n")) << ring.err;
}

TEST_F(ExternalFiles, ThatNameThemselvesByALinkAreRefused) {
    fs::create_symlink("a.qn", File("link.qn"));
    const ToolRun run = FollowOne("link.qn");
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_TRUE(Contains(run.err, "a.qn -> link.qn")) << run.err;
}

TEST_F(ExternalFiles, ThatContainEachOtherByServerIdAreRefused) {
    Write("b.qn", "B", {{"c", "c.qn", 1, "s1:c"}}, "s1:b");
    Write("c.qn", "C", {{"b again", "b.qn", 1, "s1:b"}}, "s1:c");
    const ToolRun run = FollowOne("b.qn");
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_TRUE(Contains(run.err, "contains itself")) << run.err;
    EXPECT_EQ(RunTool({"convert", "--load", "all", File("a.qn"), File("out.qn")}).exitCode, 3);
}

struct Refused {
    const char* name;
    const char* reason;
};

TEST_F(ExternalFiles, AreNotOpenedUnderNamesThatLeadElsewhere) {
    const Refused kNames[] = {{"../b.qn", "leads out of the folder"},
                              {"x/../../b.qn", "leads out of the folder"},
                              {"..\\b.qn", "leads out of the folder"},
                              {".", "leads out of the folder"},
                              {"/etc/passwd", "is absolute"},
                              {"\\\\server\\share\\b.qn", "is absolute"},
                              {"C:\\cad\\b.qn", "is absolute"},
                              {"file:///etc/passwd", "is absolute"},
                              {"", "is empty"},
                              {"a\nb.qn", "is no name that a file can have"}};
    for (const Refused& refused : kNames) {
        const ToolRun run = FollowOne(refused.name);
        EXPECT_EQ(run.exitCode, 3) << refused.name;
        EXPECT_TRUE(Contains(run.err, refused.reason)) << refused.name << ": " << run.err;
        EXPECT_TRUE(Contains(run.err, "definition \"part\" names the file")) << run.err;
        EXPECT_TRUE(run.out.empty());
        EXPECT_EQ(RunTool({"stats", File("a.qn")}).exitCode, 0) << "a name alone does no harm";
    }
}

TEST_F(ExternalFiles, AreNotOpenedThroughLinksThatLeadOutOfTheFolder) {
    const TemporaryFolder outside;
    WriteAll(outside.File("b.qn"), FileAssembly("B", {}));
    fs::create_symlink(outside.File("b.qn"), File("link.qn"));
    fs::create_directory_symlink(outside.Path(), File("folder"));
    fs::create_symlink("/dev/zero", File("zero"));
    for (const char* name : {"link.qn", "folder/b.qn", "folder/missing.qn", "zero"}) {
        const ToolRun run = FollowOne(name);
        EXPECT_EQ(run.exitCode, 3) << name;
        EXPECT_TRUE(Contains(run.err, "leads out of the folder")) << run.err;
    }
    EXPECT_EQ(FollowOne("link.qn", {"--allow", outside.Path().string()}).exitCode, 0);
    EXPECT_EQ(FollowOne("folder/b.qn", {"--allow", outside.Path().string() + "/"}).exitCode, 0);
}

TEST_F(ExternalFiles, MayLieInFoldersThatAreAllowed) {
    Write("top/a.qn", "A", {{"b", "../parts/b.qn"}});
    Write("parts/b.qn", "B", {});
    EXPECT_EQ(RunTool({"stats", "--load", "all", File("top/a.qn")}).exitCode, 3);
    EXPECT_EQ(RunTool({"stats", "--load", "all", "--allow", File("parts"), File("top/a.qn")}).exitCode, 0);
    EXPECT_EQ(RunTool({"stats", "--load", "all", "--allow", File("part"), File("top/a.qn")}).exitCode, 3)
        << "a folder whose name only starts the same";
}

TEST_F(ExternalFiles, ThatAreNoFilesAreRefused) {
    fs::create_directory(File("folder.qn"));
    ASSERT_EQ(::mkfifo(File("pipe.qn").c_str(), 0600), 0);
    fs::create_symlink("loop.qn", File("loop.qn"));
    EXPECT_TRUE(Contains(FollowOne("folder.qn").err, "is a folder"));
    EXPECT_TRUE(Contains(FollowOne("pipe.qn").err, "is no regular file"));
    EXPECT_EQ(FollowOne("folder.qn").exitCode, 3);
    EXPECT_EQ(FollowOne("pipe.qn").exitCode, 3);
    EXPECT_EQ(FollowOne("loop.qn").exitCode, 3);
}

TEST_F(ExternalFiles, ThatMayNotBeReadAreRefused) {
    if (::geteuid() == 0) GTEST_SKIP() << "the administrator may read everything";
    Write("b.qn", "B", {});
    fs::permissions(File("b.qn"), fs::perms::none);
    EXPECT_EQ(FollowOne("b.qn").exitCode, 3);
}

TEST_F(ExternalFiles, ThatAreDamagedAreToldWithTheChain) {
    Write("x/b.qn", "B", {{"c", "c.qn"}});
    Write("x/c.qn", "C", {});
    std::string bytes = ReadAll(File("x/c.qn"));
    bytes.resize(bytes.size() / 2);
    WriteAll(File("x/c.qn"), bytes);
    const ToolRun run = FollowOne("x/b.qn");
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_TRUE(Contains(run.err, File("x/c.qn"))) << run.err;
    EXPECT_TRUE(Contains(run.err, "(a.qn -> x/b.qn -> c.qn)")) << run.err;
    EXPECT_TRUE(run.out.empty());
    EXPECT_EQ(RunTool({"convert", "--load", "all", File("a.qn"), File("out.qn")}).exitCode, 3);
    EXPECT_FALSE(fs::exists(File("out.qn")));
}

TEST_F(ExternalFiles, OfTooManyLevelsAreRefusedWithTheLimit) {
    constexpr int kFiles = 1'100;
    const auto name = [](int number) { return std::to_string(number) + ".qn"; };
    for (int i = 0; i < kFiles; ++i)
        WriteAll(File(name(i)), FileAssembly("level", {{"next", name(i + 1)}}));
    const ToolRun run = RunTool({"stats", "--load", "all", File(name(0))});
    EXPECT_EQ(run.exitCode, 7);
    EXPECT_TRUE(Contains(run.err, "more than 1000 levels of files")) << run.err;
    EXPECT_EQ(RunTool({"convert", "--load", "all", File(name(0)), File("out.qn")}).exitCode, 7);
    EXPECT_FALSE(fs::exists(File("out.qn")));
    EXPECT_EQ(RunTool({"deps", File(name(0))}).exitCode, 7);
    WriteAll(File(name(1000)), FileAssembly("last", {}));
    EXPECT_EQ(Stats("all", name(0))["depth"], 1001);
}

}  // namespace
}  // namespace assembly::tests
