#include "frame/host/translate.h"
#include "tests/operations/operations_support.h"
#include "tests/support/temp_folder.h"

#include <filesystem>

#include <gmock/gmock.h>

namespace qn::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kNoFile = "Output file name for metadata file must be specified";
constexpr const char* kNoFolder = "Output folder name for metadata blob files must be specified";

class MetadataExport : public OperationTest {
protected:
    int RunExport(const String& file, const String& folder, bool topLevelOnly = false) {
        return Run(14, {{1, Var(file)}, {2, Var(folder)}, {3, Var(topLevelOnly)}}, context.Get());
    }

    /// A file in a folder whose path, its final slash included, has this many characters.
    String FileInFolderOf(std::size_t length) const {
        const std::size_t missing = length - temp.Path().string().size() - 2;
        return temp.File(std::string(missing, 'd') + "/m.json");
    }
    bool HasFolderOf(std::size_t length) const {
        return std::filesystem::is_directory(
            std::filesystem::path(FileInFolderOf(length).ToUtf8()).parent_path());
    }

    const TempFolder temp;
};

/// The current folder of the process while it lives.
class CurrentFolder {
public:
    explicit CurrentFolder(const std::filesystem::path& folder) { std::filesystem::current_path(folder); }
    ~CurrentFolder() { std::filesystem::current_path(former_); }
    CurrentFolder(const CurrentFolder&) = delete;
    CurrentFolder& operator=(const CurrentFolder&) = delete;

private:
    const std::filesystem::path former_ = std::filesystem::current_path();
};

TEST_F(MetadataExport, MakesBothFoldersAndAnswersOne) {
    const String file = temp.File("out/deep/metadata.json"), folder = temp.File("blobs/deep");
    EXPECT_EQ(RunExport(file, folder), 1);
    EXPECT_TRUE(std::filesystem::is_directory(temp.Path() / "out" / "deep"));
    EXPECT_TRUE(std::filesystem::is_directory(temp.Path() / "blobs" / "deep"));
    EXPECT_FALSE(std::filesystem::exists(temp.Path() / "out" / "deep" / "metadata.json"));
    EXPECT_THAT(context->Texts(), IsEmpty());
}

TEST_F(MetadataExport, PassesItsArgumentsOn) {
    const String file = temp.File("m.json"), folder = temp.File("b");
    RunExport(file, folder, true);
    RunExport(file, folder, false);
    const std::string call = "Export scene|" + file.ToUtf8() + "|" + folder.ToUtf8();
    EXPECT_THAT(ThePartners().calls, ElementsAre(call + "|top with context", call + "|all with context"));
}

TEST_F(MetadataExport, AnswersZeroIfTheExporterRefuses) {
    ThePartners().answer = false;
    EXPECT_EQ(RunExport(temp.File("m.json"), temp.File("b")), 0);
}

TEST_F(MetadataExport, WithoutExporterAnswersZeroAndReportsNothing) {
    ThePartners().canBeMade = false;
    EXPECT_EQ(RunExport(L"", L""), 0);
    EXPECT_THAT(context->Texts(), IsEmpty());
    EXPECT_EQ(RunExport(temp.File("x/m.json"), temp.File("b")), 0);
    EXPECT_FALSE(std::filesystem::exists(temp.Path() / "x"));
}

TEST_F(MetadataExport, ReportsAMissingFileAndRunsAllTheSame) {
    EXPECT_EQ(RunExport(L"", temp.File("b")), 1);
    EXPECT_THAT(context->Texts(), ElementsAre(kNoFile));
    EXPECT_THAT(context->Levels(), ElementsAre(2));
    EXPECT_EQ(ThePartners().calls.size(), 1u);
}

TEST_F(MetadataExport, ReportsAMissingFolderAndRunsAllTheSame) {
    EXPECT_EQ(RunExport(temp.File("m.json"), L""), 1);
    EXPECT_THAT(context->Texts(), ElementsAre(kNoFolder));
}

TEST_F(MetadataExport, ReportsBothInOrder) {
    EXPECT_EQ(RunExport(L"", L""), 1);
    EXPECT_THAT(context->Texts(), ElementsAre(kNoFile, kNoFolder));
}

TEST_F(MetadataExport, AnswersTheFailureIfTheExporterRefusesAfterAReport) {
    ThePartners().answer = false;
    EXPECT_EQ(RunExport(L"", temp.File("b")), -8);
    EXPECT_EQ(RunExport(temp.File("m.json"), L""), -8);
    EXPECT_EQ(RunExport(L"", L""), -8);
}

TEST_F(MetadataExport, StaysSilentWithoutContext) {
    ThePartners().answer = false;
    EXPECT_EQ(Run(14), -8);
}

TEST_F(MetadataExport, TakesAFileWithoutFolder) {
    EXPECT_EQ(RunExport(L"m.json", temp.File("b")), 1);
    EXPECT_FALSE(std::filesystem::exists("m.json"));
}

constexpr std::size_t kFolderBuffer = 0x104;  // characters, the terminator included

TEST_F(MetadataExport, MakesAFolderThatJustFitsTheBuffer) {
    EXPECT_EQ(RunExport(FileInFolderOf(kFolderBuffer - 1), temp.File("b")), 1);
    EXPECT_TRUE(HasFolderOf(kFolderBuffer - 1));
}

TEST_F(MetadataExport, MakesNoFolderThatIsTooLongAndExportsAllTheSame) {
    for (const std::size_t length : {kFolderBuffer, kFolderBuffer + 1}) {
        EXPECT_EQ(RunExport(FileInFolderOf(length), temp.File("b")), 1);
        EXPECT_FALSE(HasFolderOf(length)) << length;
    }
    EXPECT_EQ(ThePartners().calls.size(), 2u);
    EXPECT_THAT(context->Texts(), IsEmpty());
}

TEST_F(MetadataExport, JoinsDriveAndFolder) {
    const CurrentFolder inTemp(temp.Path());
    EXPECT_EQ(RunExport(L"Q:out/deep/m.json", temp.File("b")), 1);
    EXPECT_TRUE(std::filesystem::is_directory(temp.Path() / "Q:out" / "deep"));
    EXPECT_EQ(RunExport(L"R:/out/m.json", temp.File("b")), 1);
    EXPECT_TRUE(std::filesystem::is_directory(temp.Path() / "R:" / "out"));
}

TEST_F(MetadataExport, MakesTheDriveAloneWhereItsFolderIsMissingOrTooLong) {
    const CurrentFolder inTemp(temp.Path());
    EXPECT_EQ(RunExport(L"Q:m.json", temp.File("b")), 1);
    EXPECT_TRUE(std::filesystem::is_directory(temp.Path() / "Q:"));
    const std::string tooLong = "R:/" + std::string(kFolderBuffer, 'd') + "/m.json";
    EXPECT_EQ(RunExport(String::FromUtf8(tooLong), temp.File("b")), 1);
    EXPECT_TRUE(std::filesystem::is_empty(temp.Path() / "R:"));
}

std::string g_asked;

TEST_F(MetadataExport, TranslatesItsMessages) {
    SetTranslateHook([](const char* catalogue, const char* source, const char* kind) {
        g_asked = std::string(catalogue) + "|" + source + "|" + kind;
        return String(L"translated");
    });
    RunExport(L"", temp.File("b"));
    SetTranslateHook(nullptr);
    EXPECT_EQ(g_asked, std::string("assembly|") + kNoFile + "|XMSG: Error message");
    EXPECT_THAT(context->Texts(), ElementsAre("translated"));
}

}  // namespace
}  // namespace qn::test
