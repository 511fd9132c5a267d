#include "engine/import/scene_importer.h"

#include "engine/import/import_file.h"
#include "engine/stream/scene_file.h"
#include "tests/support/assembly.h"
#include "tests/support/recording_context.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

namespace qn {
namespace {

using test::AssemblyBuilder;
using test::MakeContext;
using test::TempFolder;

class SceneImporterTest : public testing::Test {
protected:
    SceneImporterTest() {
        saved_ = Make<k3::Scene>();
        test::BuildNodes(AssemblyBuilder("car").Child("wheel", 2).Shape(), *saved_);
        scene_->CreateEmptyNode(0, 0, 0)->SetName(L"before");
    }
    String Save(std::string_view name) {
        EXPECT_TRUE(SaveSceneFile(*saved_, folder_.File(name), *context_));
        return folder_.File(name);
    }
    k3::Node* Import(const String& file) { return ImportFile(scene_.Get(), file, context_.Get(), 0, Guid()); }

    TempFolder folder_;
    Counted<test::RecordingContext> context_ = MakeContext();
    Counted<k3::Scene> saved_, scene_ = Make<k3::Scene>();
};

TEST_F(SceneImporterTest, AddsTheSavedContentAsOneTopNode) {
    const k3::Node* top = Import(Save("a.qn"));
    ASSERT_NE(top, nullptr) << context_->GetFailureText().ToUtf8();
    EXPECT_EQ(top->GetParent(), scene_.Get());
    EXPECT_EQ(scene_->GetChildCount(), 2);
    ASSERT_EQ(top->GetChildCount(), 2);
    EXPECT_EQ(top->GetChildAt(1)->GetName(), String(L"wheel"));
}

TEST_F(SceneImporterTest, KeepsTheNameThatTheTopNodeWasSavedWith) {
    EXPECT_EQ(Import(Save("other.qn"))->GetName(), String(L"car"));
}

TEST_F(SceneImporterTest, NamesATopNodeWithoutNameAfterTheFile) {
    saved_->GetFirstChild()->SetName(L"");
    EXPECT_EQ(Import(Save("größe.qn"))->GetName().ToUtf8(), "größe");
}

TEST_F(SceneImporterTest, KnowsSceneFilesByTheirContent) {
    EXPECT_NE(Import(Save("renamed.bin")), nullptr);
}

TEST_F(SceneImporterTest, LeavesTheSceneAsItWasWhenTheFileIsDamaged) {
    std::string bytes = test::ReadBytes(Save("a.qn").ToUtf8());
    bytes.resize(bytes.size() / 2);
    EXPECT_EQ(Import(folder_.Write("cut.qn", bytes)), nullptr);
    EXPECT_EQ(scene_->GetChildCount(), 1);
    EXPECT_NE(context_->GetFailure(), LoadFailure::kNone);
}

TEST_F(SceneImporterTest, RefusesAFileThatOnlyLooksLikeAScene) {
    EXPECT_EQ(Import(folder_.Write("text.qn", "no scene")), nullptr);
    EXPECT_EQ(scene_->GetChildCount(), 1);
    EXPECT_EQ(context_->GetFailure(), LoadFailure::kMalformed);
}

}  // namespace
}  // namespace qn
