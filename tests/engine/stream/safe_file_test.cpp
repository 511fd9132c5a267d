#include "engine/stream/safe_file.h"

#include "tests/support/recording_context.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace qn {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLongestName = 255;  // bytes, in the usual file systems

class SafeFileTest : public testing::Test {
protected:
    std::string Path() const { return At("file"); }
    std::string At(const std::string& name) const { return (folder_.Path() / name).string(); }
    auto FileCount() const { return std::distance(fs::directory_iterator(folder_.Path()), {}); }
    /// Whether all went well; the cause is in the context.
    bool Write(const std::string& path, std::string_view bytes) {
        SafeFile file(*context_);
        return file.Open(path) && file.Write(bytes) && file.Flush() && file.Commit();
    }
    std::string FailureText() const { return context_->GetFailureText().ToUtf8(); }

    test::TempFolder folder_;
    Counted<test::RecordingContext> context_ = Make<test::RecordingContext>();
};

TEST_F(SafeFileTest, AppearsWholeWhenItIsPutInPlace) {
    SafeFile file(*context_);
    ASSERT_TRUE(file.Open(Path()));
    EXPECT_TRUE(file.Write("size .... body"));
    EXPECT_TRUE(file.WriteAt(5, "0014"));
    EXPECT_FALSE(std::filesystem::exists(Path()));
    EXPECT_TRUE(file.Flush());
    EXPECT_TRUE(file.Commit());
    EXPECT_EQ(test::ReadBytes(Path()), "size 0014 body");
}

TEST_F(SafeFileTest, LeavesNothingWhereItIsGivenUp) {
    folder_.Write("file", "old");
    {
        SafeFile file(*context_);
        ASSERT_TRUE(file.Open(Path()));
        EXPECT_TRUE(file.Write("new"));
    }
    EXPECT_EQ(test::ReadBytes(Path()), "old");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder_.Path()), {}), 1);
}

TEST_F(SafeFileTest, RefusesAFolderInItsPlace) {
    std::filesystem::create_directory(Path());
    SafeFile file(*context_);
    EXPECT_FALSE(file.Open(Path()));
    EXPECT_EQ(context_->GetFailure(), LoadFailure::kNotWritten);
}

TEST_F(SafeFileTest, TakesANameAsLongAsNamesCanBe) {
    const std::string path = At(std::string(kLongestName, 'n'));
    EXPECT_TRUE(Write(path, "bytes")) << FailureText();
    EXPECT_EQ(test::ReadBytes(path), "bytes");
}

TEST_F(SafeFileTest, FollowsALinkToAFileThatIsNotThereYet) {
    fs::create_directory(At("folder"));
    fs::create_symlink("folder/next", At("link"));
    fs::create_symlink("real", At("folder/next"));
    EXPECT_TRUE(Write(At("link"), "bytes")) << FailureText();
    EXPECT_TRUE(fs::is_symlink(At("link")));
    EXPECT_TRUE(fs::is_symlink(At("folder/next")));
    EXPECT_EQ(test::ReadBytes(At("folder/real")), "bytes");
}

TEST_F(SafeFileTest, KeepsALinkWhoseFolderIsMissing) {
    fs::create_symlink("none/real", At("link"));
    EXPECT_FALSE(Write(At("link"), "bytes"));
    EXPECT_TRUE(fs::is_symlink(At("link")));
}

TEST_F(SafeFileTest, RefusesLinksThatLeadToEachOther) {
    fs::create_symlink("second", At("first"));
    fs::create_symlink("first", At("second"));
    EXPECT_FALSE(Write(At("first"), "bytes"));
    EXPECT_TRUE(fs::is_symlink(At("first")));
    EXPECT_EQ(FileCount(), 2);
}

TEST_F(SafeFileTest, NamesAFileInMessagesAsItWasGiven) {
    fs::create_directory(At("folder"));
    fs::create_symlink("folder", At("link"));
    EXPECT_FALSE(Write(At("link"), "bytes"));
    EXPECT_EQ(FailureText(), At("link") + ": cannot be written: it is no file");
}

TEST_F(SafeFileTest, NamesAFileThatCannotBePutInPlaceAsItWasGiven) {
    folder_.Write("file", "old");
    const std::string path = fs::relative(Path()).string();
    SafeFile file(*context_);
    ASSERT_TRUE(file.Open(path));
    fs::remove(Path());
    fs::create_directory(Path());
    EXPECT_FALSE(file.Commit());
    EXPECT_EQ(FailureText().substr(0, path.size() + 1), path + ":");
}

/// Two files that belong together, written and flushed but not in place.
class TwoSafeFiles : public SafeFileTest {
protected:
    void SetUp() override { folder_.Write("second", "old second"); }
    void Open() {
        for (SafeFile* file : {&first_, &second_}) {
            ASSERT_TRUE(file->Open(At(file == &first_ ? "first" : "second")));
            ASSERT_TRUE(file->Write("new") && file->Flush());
        }
    }
    /// The second can no longer be put in place.
    void BlockSecond() {
        fs::remove(At("second"));
        fs::create_directory(At("second"));
    }
    SafeFile first_{*context_}, second_{*context_};
};

TEST_F(TwoSafeFiles, ArePutInPlaceTogether) {
    folder_.Write("first", "old first");
    Open();
    EXPECT_TRUE(SafeFile::CommitBoth(first_, second_)) << FailureText();
    EXPECT_EQ(test::ReadBytes(At("first")), "new");
    EXPECT_EQ(test::ReadBytes(At("second")), "new");
    EXPECT_EQ(FileCount(), 2);
}

TEST_F(TwoSafeFiles, KeepTheOldFirstWhereTheSecondCannotBePutInPlace) {
    folder_.Write("first", "old first");
    Open();
    BlockSecond();
    EXPECT_FALSE(SafeFile::CommitBoth(first_, second_));
    EXPECT_EQ(FailureText().substr(0, At("second").size()), At("second"));
    EXPECT_EQ(test::ReadBytes(At("first")), "old first");
}

TEST_F(TwoSafeFiles, LeaveNoFirstWhereThereWasNone) {
    Open();
    BlockSecond();
    EXPECT_FALSE(SafeFile::CommitBoth(first_, second_));
    EXPECT_FALSE(fs::exists(At("first")));
}

TEST_F(TwoSafeFiles, LeaveTheSecondAloneWhereTheFirstCannotBePutInPlace) {
    Open();
    fs::create_directory(At("first"));
    EXPECT_FALSE(SafeFile::CommitBoth(first_, second_));
    EXPECT_EQ(test::ReadBytes(At("second")), "old second");
    EXPECT_TRUE(fs::is_directory(At("first")));
}

}  // namespace
}  // namespace qn
