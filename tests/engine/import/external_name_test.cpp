#include "engine/import/external_name.h"

#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace qn::test {
namespace {

namespace fs = std::filesystem;

class ExternalName : public testing::Test {
protected:
    ExternalName() {
        fs::create_directories(folder_.Path() / "top/parts");
        fs::create_directories(folder_.Path() / "toplevel");
    }
    std::string Path(const std::string& name) const { return (folder_.Path() / name).string(); }
    ExternalPath Resolve(const std::string& name, const std::vector<std::string>& allowed = {}) const {
        return ExternalFolder(Path("top/a.qn"), allowed).Resolve(name);
    }
    NameFault FaultOf(const std::string& name, const std::vector<std::string>& allowed = {}) const {
        return Resolve(name, allowed).fault;
    }
    TempFolder folder_;
};

TEST_F(ExternalName, LeadsToAFileInTheFolderOfTheNamingFile) {
    const ExternalPath path = Resolve("parts/b.qn");
    EXPECT_EQ(path.fault, NameFault::kNone);
    EXPECT_EQ(path.path, fs::canonical(folder_.Path()).string() + "/top/parts/b.qn");
    EXPECT_EQ(path.shown, Path("top/parts/b.qn"));
}

TEST_F(ExternalName, IsShownAsTheNamingFileIs) {
    EXPECT_EQ(ExternalFolder("a.qn", {}).Resolve("x/./b.qn").shown, "x/b.qn");
    EXPECT_EQ(ExternalFolder("../a.qn", {}).Resolve("b.qn").shown, "../b.qn");
}

TEST_F(ExternalName, OfOneFileGivesOnePathHoweverItIsWritten) {
    fs::create_symlink("parts", folder_.Path() / "top/link");
    const std::string path = Resolve("parts/b.qn").path;
    for (const char* name : {"parts\\b.qn", "./parts//b.qn", "parts/../parts/b.qn", "link/b.qn"})
        EXPECT_EQ(Resolve(name).path, path) << name;
}

TEST_F(ExternalName, OpensTheFileThatWasCheckedAlsoBehindALink) {
    fs::create_directories(folder_.Path() / "top/parts/deep");
    fs::create_symlink("parts/deep", folder_.Path() / "top/link");
    const ExternalPath path = Resolve("link/../b.qn");
    EXPECT_EQ(path.fault, NameFault::kNone);
    EXPECT_EQ(path.path, fs::canonical(folder_.Path()).string() + "/top/parts/b.qn");
    EXPECT_EQ(CanonicalPath(path.shown), path.path);
}

TEST_F(ExternalName, NeedNotBeThatOfAFileThatIsThere) {
    EXPECT_EQ(FaultOf("nowhere/nothing.qn"), NameFault::kNone);
}

TEST_F(ExternalName, IsRefusedIfEmptyOrUnusable) {
    EXPECT_EQ(FaultOf(""), NameFault::kEmpty);
    EXPECT_EQ(FaultOf("a\tb"), NameFault::kUnusable);
    EXPECT_EQ(FaultOf(std::string("a\0b", 3)), NameFault::kUnusable);
    EXPECT_EQ(FaultOf(std::string(5000, 'a')), NameFault::kUnusable);
}

TEST_F(ExternalName, IsRefusedIfAbsoluteOnAnySystem) {
    for (const char* name : {"/b.qn", "\\b.qn", "//server/b.qn", "\\\\server\\b.qn", "C:/b.qn", "c:b.qn",
                             "file:///b.qn", "https://example.invalid/b.qn"})
        EXPECT_EQ(FaultOf(name), NameFault::kAbsolute) << name;
    EXPECT_EQ(FaultOf("plan 3: b.qn"), NameFault::kNone) << "a colon alone is a letter like others";
}

TEST_F(ExternalName, IsRefusedIfItLeavesTheFolder) {
    for (const char* name :
         {"..", "../b.qn", "parts/../../b.qn", "..\\b.qn", ".", "parts/..", "../toplevel/b.qn"})
        EXPECT_EQ(FaultOf(name), NameFault::kOutside) << name;
    EXPECT_EQ(FaultOf("parts/../b.qn"), NameFault::kNone);
    EXPECT_EQ(FaultOf("..b.qn"), NameFault::kNone);
}

TEST_F(ExternalName, IsRefusedIfALinkLeavesTheFolder) {
    fs::create_symlink("../toplevel", folder_.Path() / "top/out");
    fs::create_symlink("/dev/null", folder_.Path() / "top/null");
    EXPECT_EQ(FaultOf("out/b.qn"), NameFault::kOutside);
    EXPECT_EQ(FaultOf("null"), NameFault::kOutside);
}

TEST_F(ExternalName, MayLeadIntoAnAllowedFolder) {
    EXPECT_EQ(FaultOf("../toplevel/b.qn", {Path("toplevel")}), NameFault::kNone);
    EXPECT_EQ(FaultOf("../toplevel/b.qn", {Path("toplevel/")}), NameFault::kNone);
    EXPECT_EQ(FaultOf("../toplevel/b.qn", {Path("top"), Path("toplevel")}), NameFault::kNone);
    EXPECT_EQ(FaultOf("../toplevel/b.qn", {Path("toplev")}), NameFault::kOutside);
    EXPECT_EQ(FaultOf("../toplevel/b.qn", {"/"}), NameFault::kNone);
}

TEST_F(ExternalName, OfAnAllowedFolderMayNotBeAbsoluteEither) {
    EXPECT_EQ(FaultOf(Path("toplevel/b.qn"), {Path("toplevel")}), NameFault::kAbsolute);
}

}  // namespace
}  // namespace qn::test
