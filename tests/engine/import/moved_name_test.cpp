#include "engine/import/moved_name.h"

#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace qn::test {
namespace {

namespace fs = std::filesystem;

class MovedName : public testing::Test {
protected:
    MovedName() {
        for (const char* name : {"old/parts/deep", "new", "c:odd", "back\\slash"})
            fs::create_directories(folder_.Path() / name);
    }
    std::string Path(const std::string& name) const { return (folder_.Path() / name).string(); }
    std::string Move(const std::string& name, const std::string& from, const std::string& to) const {
        return MovedNames(Path(from), Path(to)).Move(name).value_or("(none)");
    }
    TempFolder folder_;
};

TEST_F(MovedName, LeadsFromTheNewFolderToTheSameFile) {
    EXPECT_EQ(Move("b.qn", "old/a.qn", "new/a.qn"), "../old/b.qn");
    EXPECT_EQ(Move("parts\\b.qn", "old/a.qn", "new/a.qn"), "../old/parts/b.qn");
    EXPECT_EQ(Move("b.qn", "old/a.qn", "a.qn"), "old/b.qn");
    EXPECT_EQ(Move("c.qn", "old/parts/b.qn", "old/a.qn"), "parts/c.qn");
    EXPECT_EQ(Move("../new/./x.qn", "old/a.qn", "new/a.qn"), "x.qn");
    EXPECT_EQ(Move("nowhere/b.qn", "old/a.qn", "new/a.qn"), "../old/nowhere/b.qn");
}

TEST_F(MovedName, StaysAsItIsInTheSameFolder) {
    for (const char* name : {"parts\\b.qn", "./b.qn", "x/../b.qn", ""}) {
        EXPECT_EQ(Move(name, "old/a.qn", "old/b.qn"), name);
        EXPECT_EQ(Move(name, "old/a.qn", "new/../old/b.qn"), name);
    }
    fs::create_symlink("old", folder_.Path() / "link");
    EXPECT_EQ(Move("parts\\b.qn", "old/a.qn", "link/b.qn"), "parts\\b.qn");
}

TEST_F(MovedName, StaysAsItIsIfItHangsOnNoFolder) {
    for (const char* name : {"", "/etc/b.qn", "C:\\b.qn", "file:///b.qn", "a\tb"})
        EXPECT_EQ(Move(name, "old/a.qn", "new/a.qn"), name);
}

TEST_F(MovedName, GoesThroughTheLinksThatItWentThroughBefore) {
    fs::create_symlink("parts/deep", folder_.Path() / "old/link");
    EXPECT_EQ(Move("link/b.qn", "old/a.qn", "new/a.qn"), "../old/link/b.qn");
    EXPECT_EQ(Move("link/../b.qn", "old/a.qn", "new/a.qn"), "./../old/link/../b.qn");
}

TEST_F(MovedName, NeverLooksLikeADrive) {
    EXPECT_EQ(Move("b.qn", "c:odd/a.qn", "a.qn"), "./c:odd/b.qn");
}

TEST_F(MovedName, IsNoneWhereNoNameLeads) {
    EXPECT_EQ(Move("b.qn", "back\\slash/a.qn", "a.qn"), "(none)");
    EXPECT_EQ(Move("b.qn", "old/a.qn", "back\\slash/a.qn"), "../old/b.qn");
}

TEST_F(MovedName, TellsWhetherItLeadsOutOfTheNewFolder) {
    for (const char* name : {"../old/b.qn", "./../old/link/../b.qn", ".."})
        EXPECT_TRUE(MovedNames::LeadsOut(name)) << name;
    for (const char* name : {"b.qn", "old/../b.qn", "/b.qn", "..b.qn", ""})
        EXPECT_FALSE(MovedNames::LeadsOut(name)) << name;
}

TEST_F(MovedName, TellsWhetherItLeadsToAFile) {
    fs::create_symlink("parts", folder_.Path() / "old/folder");
    fs::create_symlink("parts/b.qn", folder_.Path() / "old/link.qn");
    folder_.Write("old/parts/b.qn", "x");
    const MovedNames names(Path("old/a.qn"), Path("new/a.qn"));
    const std::string path = CanonicalPath(Path("old/parts")) + "/b.qn";
    for (const char* name : {"parts\\b.qn", "folder/b.qn", "link.qn", "../old/parts/b.qn"})
        EXPECT_TRUE(names.LeadsTo(name, path)) << name;
    for (const char* name : {"b.qn", "parts/c.qn", path.c_str(), ""})
        EXPECT_FALSE(names.LeadsTo(name, path)) << name;
}

}  // namespace
}  // namespace qn::test
