#include "engine/stream/file_io.h"

#include "engine/stream/object_file.h"
#include "tests/engine/stream/knot.h"
#include "tests/support/recording_context.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <csignal>

namespace qn::test {
namespace {

namespace fs = std::filesystem;

std::size_t FilesIn(const TempFolder& folder) {
    return static_cast<std::size_t>(
        std::distance(fs::directory_iterator(folder.Path()), fs::directory_iterator()));
}

TEST(SafeSave, WritesANewFile) {
    const TempFolder folder;
    const auto context = MakeContext();

    EXPECT_TRUE(WriteFileSafely(folder.File("new.qn"), "bytes", *context));

    EXPECT_EQ(ReadBytes(folder.Path() / "new.qn"), "bytes");
    EXPECT_EQ(FilesIn(folder), 1u);
}

TEST(SafeSave, ReplacesAFileAndKeepsItsPermissions) {
    const TempFolder folder;
    const auto context = MakeContext();
    const auto path = folder.Write("old.qn", "old");
    fs::permissions(folder.Path() / "old.qn", fs::perms(0640));

    EXPECT_TRUE(WriteFileSafely(path, "new", *context));

    EXPECT_EQ(ReadBytes(folder.Path() / "old.qn"), "new");
    EXPECT_EQ(fs::status(folder.Path() / "old.qn").permissions(), fs::perms(0640));
}

TEST(SafeSave, FollowsALink) {
    const TempFolder folder;
    const auto context = MakeContext();
    folder.Write("file.qn", "old");
    fs::create_symlink("file.qn", folder.Path() / "link.qn");

    EXPECT_TRUE(WriteFileSafely(folder.File("link.qn"), "new", *context));

    EXPECT_TRUE(fs::is_symlink(folder.Path() / "link.qn"));
    EXPECT_EQ(ReadBytes(folder.Path() / "file.qn"), "new");
}

TEST(SafeSave, FailsWhereThereIsNoFolder) {
    const TempFolder folder;
    const auto context = MakeContext();

    EXPECT_FALSE(WriteFileSafely(folder.File("none/x.qn"), "bytes", *context));

    EXPECT_EQ(context->GetFailure(), LoadFailure::kNotWritten);
}

TEST(SafeSave, RefusesToReplaceAFolder) {
    const TempFolder folder;
    const auto context = MakeContext();
    fs::create_directory(folder.Path() / "x.qn");

    EXPECT_FALSE(WriteFileSafely(folder.File("x.qn"), "bytes", *context));

    EXPECT_TRUE(fs::is_directory(folder.Path() / "x.qn"));
    EXPECT_EQ(FilesIn(folder), 1u);
}

TEST(SafeSave, LeavesTheOldFileWhenTheNewOneCannotBeMade) {
    const TempFolder folder;
    const auto context = MakeContext();
    const auto path = folder.Write("old.qn", "old");
    for (int i = 0; i < 100; ++i)  // all names for the new file are taken
        folder.Write(".assembly." + std::to_string(getpid()) + "." + std::to_string(i) + ".tmp", "");

    EXPECT_FALSE(WriteFileSafely(path, "new", *context));

    EXPECT_EQ(ReadBytes(folder.Path() / "old.qn"), "old");
}

TEST(SafeSave, LeavesTheOldFileWhenTheDiskIsFull) {
    const TempFolder folder;
    const auto context = MakeContext();
    const auto path = folder.Write("old.qn", "old");
    const pid_t child = fork();
    if (child == 0) {  // a limit on the size of files stands for the full disk
        rlimit limit{1000, 1000};
        setrlimit(RLIMIT_FSIZE, &limit);
        signal(SIGXFSZ, SIG_IGN);
        _exit(WriteFileSafely(path, std::string(5000, 'x'), *context) ? 1 : 0);
    }
    int status = -1;
    waitpid(child, &status, 0);

    EXPECT_EQ(status, 0);
    EXPECT_EQ(ReadBytes(folder.Path() / "old.qn"), "old");
    EXPECT_EQ(FilesIn(folder), 1u);
}

TEST(SafeSave, LeavesTheOldFileWhenAnObjectCannotBeSaved) {
    const TempFolder folder;
    const auto context = MakeContext();
    const auto path = folder.Write("old.qn", "old");
    const auto root = MakeKnot("root");
    root->saveExtra = [](Stream&) { return ResultEnum::kWriteFailed; };

    EXPECT_FALSE(SaveObjectFile(*root, path, *context));

    EXPECT_EQ(ReadBytes(folder.Path() / "old.qn"), "old");
}

TEST(WholeFile, CannotBeReadIfItIsNotThereOrNoFile) {
    const TempFolder folder;
    std::string bytes;
    for (const char* name : {"none.qn", "."}) {
        const auto context = MakeContext();
        EXPECT_FALSE(ReadWholeFile(folder.File(name), bytes, *context));
        EXPECT_EQ(context->GetFailure(), LoadFailure::kUnreadable);
    }
}

TEST(WholeFile, BringsObjectsBackUnderANameOutsideAscii) {
    const TempFolder folder;
    const auto context = MakeContext();
    const auto path = folder.File("g\u00fcnther \u6f22.qn");

    ASSERT_TRUE(SaveObjectFile(*MakeKnot("root"), path, *context));

    EXPECT_EQ(CountedCast<Knot>(LoadObjectFile(path, *context))->name, "root");
}

TEST(WholeFile, IsNamedInMessages) {
    const TempFolder folder;
    const auto context = MakeContext();
    const auto path = folder.Write("bad.qn", "no scene");

    EXPECT_FALSE(LoadObjectFile(path, *context));

    EXPECT_EQ(context->GetFailureText(), path + String(L": byte 0: this is no scene file"));
}

}  // namespace
}  // namespace qn::test
