#include "engine/import/import_file.h"

#include "engine/runtime/module_folder.h"
#include "frame/host/importer.h"
#include "frame/host/scene.h"
#include "tests/support/recording_context.h"
#include "tests/support/static_module.h"
#include "tests/support/temp_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>

namespace qn {
namespace {

using test::MakeContext;
using test::StaticModule;
using test::TempFolder;
using testing::ElementsAre;
using testing::HasSubstr;

enum class Behaviour { kFill, kFailSilently, kFailWithCause, kThrow, kBeCancelled };
Behaviour g_behaviour = Behaviour::kFill;

/// Makes one child, then does what the test wants.
class FakeImporter final : public Importer {
public:
    ResultEnum Import(const String& file, k3::Scene* scene, k3::Node* top, Context* context) override {
        top->CreateChildNode(0, 0, 0)->SetName(L"child");
        EXPECT_EQ(top->GetScene(), scene);
        switch (g_behaviour) {
            case Behaviour::kFill:
                return ResultEnum::kSuccess;
            case Behaviour::kFailSilently:
                return ResultEnum::kNothing;
            case Behaviour::kFailWithCause:
                context->Fail(LoadFailure::kMissing, file + L": a part is missing");
                return ResultEnum::kWrongState;
            case Behaviour::kThrow:
                throw std::runtime_error("surprise");
            case Behaviour::kBeCancelled:
                return context->ReportProgress(0.5) ? ResultEnum::kWrongState : ResultEnum::kSuccess;
        }
        return ResultEnum::kNothing;
    }
};

class ImportFileTest : public testing::Test {
protected:
    ImportFileTest() : module_({{"test.importer", &MakeOf<FakeImporter>}}), context_(MakeContext()) {
        g_behaviour = Behaviour::kFill;
        std::filesystem::create_symlink(ASSEMBLY_LIB_DIR "/assembly.so", modules_.Path() / "test.so");
        modules_.Write("test.importer",
                       "key=test.importer\nmodule=test.so\nname=Test\nendings=.test\nmagic=TEST");
        SetModuleFolder(String::FromUtf8(modules_.Path().string()));
        scene_->CreateEmptyNode(0, 0, 0)->SetName(L"before");
    }
    ~ImportFileTest() override { SetModuleFolder(String()); }

    k3::Node* Import(const String& file) {
        return ImportFile(scene_.Get(), file, context_.Get(), 0x800002a, Guid());
    }
    /// Expects that nothing was added and gives the only message, without the folder of the file.
    std::string Refused(const String& file) {
        EXPECT_EQ(Import(file), nullptr);
        EXPECT_EQ(scene_->GetChildCount(), 1);
        EXPECT_EQ(context_->Texts().size(), 1u);
        std::string text = context_->Texts().empty() ? "" : context_->Texts().front();
        const std::string folder = files_.Path().string() + "/";
        if (text.rfind(folder, 0) == 0) text.erase(0, folder.size());
        return text;
    }

    TempFolder modules_, files_;
    StaticModule module_;
    Counted<test::RecordingContext> context_;
    Counted<k3::Scene> scene_ = Make<k3::Scene>();
};

TEST_F(ImportFileTest, AddsOneTopNodeWithTheNameOfTheFile) {
    k3::Node* top = Import(files_.Write("größe ❤.v2.test", "TEST"));
    ASSERT_NE(top, nullptr);
    EXPECT_EQ(top->GetName().ToUtf8(), "größe ❤.v2");
    EXPECT_EQ(top->GetParent(), scene_.Get());
    EXPECT_EQ(scene_->GetChildCount(), 2);
    ASSERT_EQ(top->GetChildCount(), 1);
    EXPECT_EQ(context_->GetFailure(), LoadFailure::kNone);
}

TEST_F(ImportFileTest, ServesSceneLoadFile) {
    const String file = files_.Write("a.test", "TEST");
    EXPECT_NE(scene_->LoadFile(file.c_str(), context_.Get(), 0x800002a, Guid()), nullptr);
}

TEST_F(ImportFileTest, NeedsNoContext) {
    EXPECT_NE(ImportFile(scene_.Get(), files_.Write("a.test", "TEST"), nullptr, 0, Guid()), nullptr);
    EXPECT_EQ(ImportFile(scene_.Get(), files_.File("none.test"), nullptr, 0, Guid()), nullptr);
}

TEST_F(ImportFileTest, DoesNothingWithoutScene) {
    EXPECT_EQ(ImportFile(nullptr, files_.Write("a.test", "TEST"), context_.Get(), 0, Guid()), nullptr);
}

TEST_F(ImportFileTest, TellsThatThereIsNoSuchFile) {
    EXPECT_EQ(Refused(files_.File("none.test")), "none.test: no such file");
    EXPECT_EQ(context_->GetFailure(), LoadFailure::kUnreadable);
}

TEST_F(ImportFileTest, TellsThatItIsAFolder) {
    std::filesystem::create_directory(files_.Path() / "folder.test");
    EXPECT_EQ(Refused(files_.File("folder.test")), "folder.test: is a folder, not a file");
}

TEST_F(ImportFileTest, DoesNotWaitAtAPipe) {
    ASSERT_EQ(mkfifo((files_.Path() / "pipe.test").c_str(), 0600), 0);
    EXPECT_EQ(Refused(files_.File("pipe.test")), "pipe.test: is no regular file");
}

TEST_F(ImportFileTest, TellsThatTheFileIsEmpty) {
    EXPECT_EQ(Refused(files_.Write("a.test", "")), "a.test: the file is empty");
    EXPECT_EQ(context_->GetFailure(), LoadFailure::kMalformed);
}

TEST_F(ImportFileTest, TellsWhatAnUnknownFileIsAndWhichFormatsAreKnown) {
    EXPECT_EQ(Refused(files_.Write("a.bin", "PK\x03what")),
              "a.bin: unknown format, it starts with \"PK.what\"; known formats: scene (.qn), Test (.test)");
    EXPECT_EQ(context_->GetFailure(), LoadFailure::kUnreadable);
}

TEST_F(ImportFileTest, KnowsAFileByItsContentWhateverItsName) {
    EXPECT_NE(Import(files_.Write("a.bin", "TEST")), nullptr);
}

TEST_F(ImportFileTest, LeavesTheSceneAsItWasWhenTheImporterFails) {
    g_behaviour = Behaviour::kFailWithCause;
    EXPECT_EQ(Refused(files_.Write("a.test", "TEST")), "a.test: a part is missing");
    EXPECT_EQ(context_->GetFailure(), LoadFailure::kMissing);
}

TEST_F(ImportFileTest, GivesACauseWhenTheImporterGivesNone) {
    g_behaviour = Behaviour::kFailSilently;
    EXPECT_EQ(Refused(files_.Write("a.test", "TEST")), "a.test: cannot be read as Test");
    EXPECT_EQ(context_->GetFailure(), LoadFailure::kMalformed);
}

TEST_F(ImportFileTest, LetsNothingThrownThrough) {
    g_behaviour = Behaviour::kThrow;
    EXPECT_EQ(Refused(files_.Write("a.test", "TEST")), "a.test: the importer broke off: surprise");
    EXPECT_EQ(context_->GetFailure(), LoadFailure::kDefect);
}

TEST_F(ImportFileTest, LeavesTheSceneAsItWasWhenTheUserCancels) {
    g_behaviour = Behaviour::kBeCancelled;
    context_->CancelAtReport(1);
    EXPECT_EQ(Refused(files_.Write("a.test", "TEST")), "a.test: cancelled");
    EXPECT_EQ(context_->GetFailure(), LoadFailure::kCancelled);
}

TEST_F(ImportFileTest, StartsNothingWhenItIsCancelledAlready) {
    context_->Cancel();
    EXPECT_EQ(Refused(files_.File("none.test")), "none.test: cancelled");
}

TEST_F(ImportFileTest, TellsThatAModuleIsMissing) {
    std::filesystem::remove(modules_.Path() / "test.so");
    EXPECT_THAT(Refused(files_.Write("a.test", "TEST")), HasSubstr("test.so: no such module"));
    EXPECT_EQ(context_->GetFailure(), LoadFailure::kDefect);
}

TEST_F(ImportFileTest, TellsThatNobodyMakesTheImporter) {
    modules_.Write("other.importer", "key=test.other\nmodule=test.so\nname=Other\nendings=.other");
    EXPECT_EQ(Refused(files_.Write("a.other", "x")), "a.other: the importer for Other cannot be made");
}

}  // namespace
}  // namespace qn
