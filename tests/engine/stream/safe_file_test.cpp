#include "engine/stream/safe_file.h"

#include "tests/support/recording_context.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace qn {
namespace {

class SafeFileTest : public testing::Test {
protected:
    std::string Path() const { return (folder_.Path() / "file").string(); }
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
    EXPECT_EQ(context_->GetFailure(), LoadFailure::kUnreadable);
}

}  // namespace
}  // namespace qn
