#include "frame/host/filesys.h"

#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace qn::test {
namespace {

struct PathRow {
    const wchar_t* path;
    const wchar_t* drive;
    const wchar_t* folder;
    const wchar_t* name;
    const wchar_t* ending;
};

constexpr PathRow kPaths[] = {
    {L"", L"", L"", L"", L""},
    {L"file", L"", L"", L"file", L""},
    {L"file.txt", L"", L"", L"file", L".txt"},
    {L"/folder/file.tar.gz", L"", L"/folder/", L"file.tar", L".gz"},
    {L"C:\\folder\\file.txt", L"C:", L"\\folder\\", L"file", L".txt"},
    {L"C:file", L"C:", L"", L"file", L""},
    {L"a/b\\c.d", L"", L"a/b\\", L"c", L".d"},
    {L"folder.with.dots/file", L"", L"folder.with.dots/", L"file", L""},
    {L"folder/", L"", L"folder/", L"", L""},
    {L"/.hidden", L"", L"/", L"", L".hidden"},
    {L"file.", L"", L"", L"file", L"."},
};

TEST(SplitPath, TakesAPathApart) {
    for (const PathRow& row : kPaths) {
        const PathPieces pieces = SplitPath(row.path);
        EXPECT_EQ(pieces.drive, String(row.drive)) << String(row.path).ToUtf8();
        EXPECT_EQ(pieces.folder, String(row.folder)) << String(row.path).ToUtf8();
        EXPECT_EQ(pieces.name, String(row.name)) << String(row.path).ToUtf8();
        EXPECT_EQ(pieces.ending, String(row.ending)) << String(row.path).ToUtf8();
    }
}

TEST(SplitPath, EmptiesAPieceThatDoesNotFitItsBuffer) {
    const PathPieces pieces = SplitPath(L"/abc/name.ending", {3, 6, 4, 8});
    EXPECT_EQ(pieces.folder, String(L"/abc/"));
    EXPECT_TRUE(pieces.name.IsEmpty());
    EXPECT_EQ(pieces.ending, String(L".ending"));
    EXPECT_TRUE(SplitPath(L"/abcd/name", {3, 6, 5, 8}).folder.IsEmpty());
}

TEST(GetPathFromFile, GivesTheFolderWithoutItsSlash) {
    EXPECT_EQ(filesys::GetPathFromFile(L"/a/b/c.txt"), String(L"/a/b"));
    EXPECT_EQ(filesys::GetPathFromFile(L"C:\\a\\c.txt"), String(L"C:\\a"));
    EXPECT_EQ(filesys::GetPathFromFile(L"/c.txt"), String(L"/"));
    EXPECT_TRUE(filesys::GetPathFromFile(L"c.txt").IsEmpty());
}

TEST(CreateFolder, MakesAllFoldersOfThePath) {
    const TempFolder temp;
    EXPECT_TRUE(filesys::CreateFolder(temp.File("a/b/c")));
    EXPECT_TRUE(std::filesystem::is_directory(temp.Path() / "a" / "b" / "c"));
    EXPECT_TRUE(filesys::CreateFolder(temp.File("a/b/c")));
    EXPECT_TRUE(filesys::CreateFolder(temp.File("a/d/")));
}

TEST(CreateFolder, AnswersFalseWhereAFileStands) {
    const TempFolder temp;
    const String file = temp.Write("file", "bytes");
    EXPECT_FALSE(filesys::CreateFolder(file));
    EXPECT_FALSE(filesys::CreateFolder(file + String(L"/below")));
    EXPECT_EQ(ReadBytes(temp.Path() / "file"), "bytes");
}

TEST(CreateFolder, AnswersFalseForAnEmptyText) {
    EXPECT_FALSE(filesys::CreateFolder(L""));
}

}  // namespace
}  // namespace qn::test
