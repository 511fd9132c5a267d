#include "engine/platform/headless_platform.h"

#include <gtest/gtest.h>
#include <cstdlib>

namespace qn {
namespace {

TEST(HeadlessPlatform, IsInForceUnlessAnotherIsSet) {
    HeadlessPlatform other;
    EXPECT_EQ(&GetPlatform(), &GetHeadlessPlatform());
    SetPlatform(&other);
    EXPECT_EQ(&GetPlatform(), &other);
    SetPlatform(nullptr);
    EXPECT_EQ(&GetPlatform(), &GetHeadlessPlatform());
}

TEST(HeadlessPlatform, RecordsBoxesAndAnswersOne) {
    HeadlessPlatform platform;
    EXPECT_EQ(platform.ShowMessageBox(nullptr, L"text", L"caption", 0x2030), 1);
    ASSERT_EQ(platform.Boxes().size(), 1u);
    EXPECT_EQ(platform.Boxes()[0].text, String(L"text"));
    EXPECT_EQ(platform.Boxes()[0].caption, String(L"caption"));
    EXPECT_EQ(platform.Boxes()[0].flags, 0x2030u);
}

TEST(HeadlessPlatform, RecordsFilesInPlaceOfOpeningThem) {
    HeadlessPlatform platform;
    EXPECT_TRUE(platform.OpenFile(L"/a/log.txt"));
    ASSERT_EQ(platform.OpenedFiles().size(), 1u);
    EXPECT_EQ(platform.OpenedFiles()[0], String(L"/a/log.txt"));
    platform.ForgetRecords();
    EXPECT_TRUE(platform.OpenedFiles().empty());
    EXPECT_TRUE(platform.Boxes().empty());
}

TEST(HeadlessPlatform, TakesTheTemporaryFolderFromTheEnvironment) {
    HeadlessPlatform platform;
    const char* const before = std::getenv("TMPDIR");
    const std::string kept = before ? before : "";
    setenv("TMPDIR", "/some/where", 1);
    EXPECT_EQ(platform.TemporaryFolder(), String(L"/some/where/"));
    setenv("TMPDIR", "", 1);
    EXPECT_EQ(platform.TemporaryFolder(), String(L"/tmp/"));
    unsetenv("TMPDIR");
    EXPECT_EQ(platform.TemporaryFolder(), String(L"/tmp/"));
    platform.SetTemporaryFolder(L"/mine");
    EXPECT_EQ(platform.TemporaryFolder(), String(L"/mine/"));
    platform.SetTemporaryFolder(String());
    EXPECT_EQ(platform.TemporaryFolder(), String(L"/tmp/"));
    if (before) setenv("TMPDIR", kept.c_str(), 1);
}

TEST(HeadlessPlatform, HasAClockThatCanBeSet) {
    HeadlessPlatform platform;
    EXPECT_GE(platform.Now().year, 2024);
    platform.SetNow(LocalTime{2001, 2, 3, 4, 5, 6});
    EXPECT_EQ(platform.Now().day, 3);
    platform.SetNow({});
    EXPECT_GE(platform.Now().year, 2024);
}

TEST(HeadlessPlatform, TellsTheKindOfProcess) {
    HeadlessPlatform platform;
    SetPlatform(&platform);
    EXPECT_FALSE(MWViewerIsRunning() || BrinePublishIsRunning() || MWGeneratorIsRunning());
    platform.SetProcessKind(ProcessKind::kViewer);
    EXPECT_TRUE(MWViewerIsRunning());
    platform.SetProcessKind(ProcessKind::kPublisher);
    EXPECT_TRUE(BrinePublishIsRunning());
    EXPECT_FALSE(MWViewerIsRunning());
    platform.SetProcessKind(ProcessKind::kGenerator);
    EXPECT_TRUE(MWGeneratorIsRunning());
    SetPlatform(nullptr);
}

TEST(HeadlessPlatform, WritesShortDatesAndNothingForNoDate) {
    HeadlessPlatform platform;
    EXPECT_EQ(platform.ShortDate({2001, 2, 3}), String(L"2/3/2001"));
    EXPECT_EQ(platform.ShortDate({2024, 2, 29}), String(L"2/29/2024"));
    for (const LocalTime& time : {LocalTime{2023, 2, 29}, LocalTime{2001, 13, 1}, LocalTime{2001, 0, 1},
                                  LocalTime{2001, 4, 31}, LocalTime{0, 1, 1}, LocalTime{2001, 1, 0}})
        EXPECT_EQ(platform.ShortDate(time), String());
}

}  // namespace
}  // namespace qn
