#include "engine/runtime/session.h"
#include "frame/entry.h"
#include "frame/host/meta.h"
#include "frame/host/module_code.h"
#include "frame/host/parameter_ids.h"
#include "frame/host/scene_document.h"
#include "frame/host/translate.h"
#include "tests/frame/fake_checker.h"
#include "tests/support/recording_platform.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using Calls = std::vector<std::string>;
constexpr const wchar_t* kRepairedKey = L"$QN/InstanceReferenceHierarchyRepaired";
const Calls kBothPasses = {"RepairTopLevelNodes", "RepairLayersAndViewports"};

void* const kLoaded = nullptr;
void* const kMerged = reinterpret_cast<void*>(1);

class PostLoadHook : public testing::Test {
protected:
    ~PostLoadHook() override { GetSession().userData = VarMap::Create(); }
    std::uintptr_t Run(void* second = kLoaded) {
        return K3DLLFunc(ModuleCode::kPostLoad, scene_.Get(), second);
    }
    void SayIsJob(const Var& value) {
        GetSession().userData = VarMap::Create();
        GetSession().userData->At(Var(L"isqnjob")) = value;
    }
    bool SceneIsMarked() const { return GetMeta(scene_.Get(), Var(kRepairedKey), 0) == Var(1); }

    FakeCheckerModule module_;
    RecordingPlatform platform_;
    Counted<k3::Scene> scene_ = Make<k3::Scene>();
};

TEST_F(PostLoadHook, LeavesANullSceneAlone) {
    EXPECT_EQ(K3DLLFunc(ModuleCode::kPostLoad, nullptr, kLoaded), 1u);
    EXPECT_EQ(Script().made, 0);
}

TEST_F(PostLoadHook, DoesNotCheckScenesWithTheIdentifierExtension) {
    const auto extension = Make<TolvaExt>();
    scene_->SetParamObject(Param::kTolvaExt, extension.Get());
    EXPECT_EQ(Run(), 1u);
    EXPECT_EQ(Script().made, 0);
}

TEST_F(PostLoadHook, ChecksScenesThatKeepAnotherObjectInTheExtensionsPlace) {
    const auto other = Make<k3::Generic>();
    scene_->SetParamObject(Param::kTolvaExt, other.Get());
    Run();
    EXPECT_EQ(Script().calls, kBothPasses);
}

TEST_F(PostLoadHook, PassesTheSceneAndAContext) {
    Run();
    EXPECT_EQ(Script().scene, scene_.Get());
    EXPECT_TRUE(Script().hadContext);
}

TEST_F(PostLoadHook, RunsTheSecondPassAfterACleanFirstOneAndSaysNothing) {
    EXPECT_EQ(Run(), 1u);
    EXPECT_EQ(Script().calls, kBothPasses);
    EXPECT_TRUE(platform_.boxes.empty());
    EXPECT_FALSE(SceneIsMarked());
}

TEST_F(PostLoadHook, IgnoresTheResultOfTheSecondPass) {
    Script().layersAreSound = false;
    EXPECT_EQ(Run(), 1u);
    EXPECT_TRUE(platform_.boxes.empty());
    EXPECT_FALSE(SceneIsMarked());
}

TEST_F(PostLoadHook, WarnsOfARepairedFile) {
    Script().nodesAreSound = false;
    EXPECT_EQ(Run(), 1u);
    ASSERT_EQ(platform_.boxes.size(), 1u);
    EXPECT_EQ(platform_.boxes[0].flags, 0x2030u);
    EXPECT_EQ(platform_.boxes[0].caption, String(L"File Validation Issue"));
    EXPECT_EQ(
        platform_.boxes[0].text,
        String(
            L"Issues were found and repaired in the scene hierarchy when loading the file. However, some CAD "
            L"metadata may have been lost.\nIf this came from a CAD file, please reimport it with the "
            L"'Import "
            L"Mode' option set to Asset."));
    EXPECT_FALSE(SceneIsMarked());
    EXPECT_EQ(Script().calls, kBothPasses);
}

TEST_F(PostLoadHook, WarnsOfARepairedMergeWithTheProductsNameAndTheTextAsItIs) {
    Script().nodesAreSound = false;
    GetSession().productName = L"Plate 7";
    Run(kMerged);
    GetSession().productName = L"assembly";
    ASSERT_EQ(platform_.boxes.size(), 1u);
    EXPECT_EQ(platform_.boxes[0].caption, String(L"File Merge Issue"));
    EXPECT_EQ(platform_.boxes[0].text,
              String(L"The file you are trying to merge has issues with scene hierarchy. Plate 7 has "
                     L"repaired the inbound "
                     L"data, however some of it's CAD metadata may be lost. If the inbound file was a CAD "
                     L"file, please "
                     L"undo the merge and merge it again with the 'Import Mode' option set to Asset."));
}

TEST_F(PostLoadHook, TakesAnyOtherValueForAMerge) {
    Script().nodesAreSound = false;
    Run(reinterpret_cast<void*>(0x7000));
    ASSERT_EQ(platform_.boxes.size(), 1u);
    EXPECT_EQ(platform_.boxes[0].caption, String(L"File Merge Issue"));
}

std::vector<std::string> askedKinds;

String KindRecorder(const char*, const char* source, const char* kind) {
    askedKinds.emplace_back(kind ? kind : "");
    return String::FromUtf8(source);
}

TEST_F(PostLoadHook, TranslatesItsTextsWithAKindThatBeginsWithY) {
    Script().nodesAreSound = false;
    askedKinds.clear();
    SetTranslateHook(&KindRecorder);
    Run();
    SetTranslateHook(nullptr);
    EXPECT_EQ(askedKinds, (Calls{"XCAP: message box title", "YMSG: Error message"}));
}

TEST_F(PostLoadHook, MarksTheSceneInAViewer) {
    Script().nodesAreSound = false;
    platform_.kind = ProcessKind::kViewer;
    Run();
    EXPECT_TRUE(SceneIsMarked());
    EXPECT_TRUE(platform_.boxes.empty());
}

TEST_F(PostLoadHook, MarksTheSceneInAPublisher) {
    Script().nodesAreSound = false;
    platform_.kind = ProcessKind::kPublisher;
    Run();
    EXPECT_TRUE(SceneIsMarked());
    EXPECT_TRUE(platform_.boxes.empty());
}

TEST_F(PostLoadHook, NeitherMarksNorWarnsInAGenerator) {
    Script().nodesAreSound = false;
    platform_.kind = ProcessKind::kGenerator;
    Run();
    EXPECT_FALSE(SceneIsMarked());
    EXPECT_TRUE(platform_.boxes.empty());
    EXPECT_EQ(Script().calls, kBothPasses);
}

TEST_F(PostLoadHook, NeitherMarksNorWarnsInAJob) {
    Script().nodesAreSound = false;
    SayIsJob(Var(true));
    Run();
    EXPECT_FALSE(SceneIsMarked());
    EXPECT_TRUE(platform_.boxes.empty());
}

TEST_F(PostLoadHook, MarksTheSceneInAViewerThatRunsAJob) {
    Script().nodesAreSound = false;
    platform_.kind = ProcessKind::kViewer;
    SayIsJob(Var(true));
    Run();
    EXPECT_TRUE(SceneIsMarked());
}

TEST_F(PostLoadHook, WarnsWhereTheSessionSaysThatItIsNoJob) {
    Script().nodesAreSound = false;
    SayIsJob(Var(L"false"));
    Run();
    EXPECT_EQ(platform_.boxes.size(), 1u);
}

TEST_F(PostLoadHook, WarnsWithoutSessionData) {
    Script().nodesAreSound = false;
    GetSession().userData = nullptr;
    Run();
    EXPECT_EQ(platform_.boxes.size(), 1u);
}

TEST_F(PostLoadHook, AnswersOneEvenIfTheValidatorThrows) {
    Script().throws = true;
    EXPECT_EQ(Run(), 1u);
}

TEST(PostLoadHookWithoutValidator, AnswersOne) {
    const auto scene = Make<k3::Scene>();
    EXPECT_EQ(K3DLLFunc(ModuleCode::kPostLoad, scene.Get(), nullptr), 1u);
}

}  // namespace
}  // namespace qn::test
