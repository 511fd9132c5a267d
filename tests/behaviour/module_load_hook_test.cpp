// What the module does with a scene that was just read.

#include "engine/runtime/session.h"
#include "frame/entry.h"
#include "frame/host/meta.h"
#include "frame/host/scene_document.h"
#include "frame/host/translate.h"
#include "services/hierarchy_checker.h"
#include "tests/behaviour/recording_api.h"
#include "tests/support/recording_platform.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace qn::test {
namespace {

constexpr unsigned kSceneLoaded = 0x1009;
constexpr const char* kChecker = "qn.graph.hierarchychecker";
constexpr const wchar_t* kRepairedKey = L"$QN/InstanceReferenceHierarchyRepaired";

using PassLog = std::vector<std::pair<std::string, std::pair<k3::Scene*, Context*>>>;

/// Answers what it is told to, and writes down who asked.
class PlannedChecker final : public graph::HierarchyChecker {
public:
    PlannedChecker(PassLog& log, bool first, bool second) : log_(&log), first_(first), second_(second) {}
    bool ValidateHierarchy(k3::Scene* s, Context* c) override {
        return Note("ValidateHierarchy", s, c, true);
    }
    bool ValidateLayers(k3::Scene* s, Context* c) override { return Note("ValidateLayers", s, c, true); }
    bool RepairHierarchy(k3::Scene* s, Context* c) override { return Note("RepairHierarchy", s, c, true); }
    void RepairLayers(k3::Scene* s, Context* c) override { Note("RepairLayers", s, c, true); }
    bool RepairTopLevelNodes(k3::Scene* s, Context* c) override { return Note("top", s, c, first_); }
    bool RepairLayersAndViewports(k3::Scene* s, Context* c) override { return Note("views", s, c, second_); }

private:
    bool Note(const char* pass, k3::Scene* scene, Context* context, bool answer) {
        log_->push_back({pass, {scene, context}});
        return answer;
    }
    PassLog* log_;
    bool first_, second_;
};

/// A scene, a host and a platform; the checker finds trouble unless told otherwise.
struct Opening {
    Opening() {
        api.makers[kChecker] = [this] {
            auto checker = Make<PlannedChecker>(passes, clean, viewsClean);
            watch = Weak<Interface>(checker.Get());
            return Counted<Interface>(checker);
        };
        GetSession().userData = VarMap::Create();
        api.mainWindow = &api;
    }
    ~Opening() { GetSession() = former; }

    std::uintptr_t Open(std::uintptr_t merged = 0) {
        return K3DLLFunc(kSceneLoaded, scene.Get(), reinterpret_cast<void*>(merged));
    }
    std::vector<std::string> Passes() const {
        std::vector<std::string> names;
        for (const auto& pass : passes)
            names.push_back(pass.first);
        return names;
    }
    Var Mark() const { return GetMeta(scene.Get(), Var(kRepairedKey), 0); }

    Session former = GetSession();
    RecordingPlatform platform;
    RecordingApi api;
    bool clean = false, viewsClean = true;
    PassLog passes;
    Weak<Interface> watch;
    Counted<k3::Scene> scene = Make<k3::Scene>();
};

using Names = std::vector<std::string>;

TEST(LoadHook, DoesNothingWithoutScene) {
    Opening o;
    EXPECT_EQ(K3DLLFunc(kSceneLoaded, nullptr, nullptr), 1u);
    EXPECT_TRUE(o.api.created.empty());
    EXPECT_TRUE(o.api.contextRequests.empty());
}

TEST(LoadHook, SparesScenesOfTheIdentifierExtension) {
    Opening o;
    const auto extension = Make<TolvaExt>();
    o.scene->SetParamVar(Param::kTolvaExt, Var(extension));
    EXPECT_EQ(o.Open(), 1u);
    EXPECT_TRUE(o.api.created.empty());
    EXPECT_TRUE(o.passes.empty());
}

TEST(LoadHook, ChecksScenesWithAnythingElseInItsPlace) {
    Opening o;
    o.scene->SetParamVar(Param::kTolvaExt, Var(Make<k3::Object3D>()));
    o.Open();
    EXPECT_EQ(o.Passes(), (Names{"top", "views"}));
}

TEST(LoadHook, EndsWithoutValidator) {
    Opening o;
    o.api.makers[kChecker] = [] { return Counted<Interface>(); };
    EXPECT_EQ(o.Open(), 1u);
    EXPECT_EQ(o.api.created, Names{kChecker});
    EXPECT_TRUE(o.api.contextRequests.empty());
}

TEST(LoadHook, EndsWithAValidatorOfAnotherClass) {
    Opening o;
    o.api.makers[kChecker] = [&] {
        auto object = Make<k3::Object3D>();
        o.watch = Weak<Interface>(object.Get());
        return Counted<Interface>(object);
    };
    EXPECT_EQ(o.Open(), 1u);
    EXPECT_FALSE(o.watch) << "it is released";
    EXPECT_TRUE(o.api.contextRequests.empty());
    EXPECT_TRUE(o.api.boxes.empty());
}

TEST(LoadHook, RunsBothPassesOnTheSceneWithAContextOfItsOwn) {
    Opening o;
    EXPECT_EQ(o.Open(), 1u);
    EXPECT_EQ(o.api.contextRequests, (std::vector<RecordingApi::ContextRequest>{{1, 0}}));
    EXPECT_EQ(o.Passes(), (Names{"top", "views"}));
    for (const auto& pass : o.passes) {
        EXPECT_EQ(pass.second.first, o.scene.Get());
        EXPECT_EQ(pass.second.second, o.passes[0].second.second);
        EXPECT_TRUE(pass.second.second);
    }
    EXPECT_FALSE(o.api.contexts.at(0)) << "the context is released";
    EXPECT_FALSE(o.watch) << "the validator is released";
}

TEST(LoadHook, ShowsNothingAfterACleanPassAndRunsTheSecondAllTheSame) {
    for (const ProcessKind kind : {ProcessKind::kAuthor, ProcessKind::kViewer, ProcessKind::kPublisher}) {
        Opening o;
        o.platform.kind = kind;
        o.clean = true;
        EXPECT_EQ(o.Open(), 1u);
        EXPECT_EQ(o.Passes(), (Names{"top", "views"}));
        EXPECT_TRUE(o.api.boxes.empty());
        EXPECT_TRUE(o.Mark().IsEmpty());
    }
}

TEST(LoadHook, IgnoresWhatTheSecondPassAnswers) {
    Opening o;
    o.clean = true;
    o.viewsClean = false;
    EXPECT_EQ(o.Open(), 1u);
    EXPECT_TRUE(o.api.boxes.empty());
    EXPECT_TRUE(o.Mark().IsEmpty());
}

TEST(LoadHook, WarnsAboutARepairedFile) {
    Opening o;
    EXPECT_EQ(o.Open(), 1u);
    ASSERT_EQ(o.api.boxes.size(), 1u);
    const RecordingApi::Box& box = o.api.boxes[0];
    EXPECT_EQ(box.caption.ToUtf8(), "File Validation Issue");
    EXPECT_EQ(box.text.ToUtf8(),
              "Issues were found and repaired in the scene hierarchy when loading the file. However, some "
              "CAD metadata "
              "may have been lost.\nIf this came from a CAD file, please reimport it with the 'Import Mode' "
              "option set "
              "to Asset.");
    EXPECT_EQ(box.flags, 0x2030u);
    EXPECT_EQ(box.window, o.api.mainWindow);
    EXPECT_EQ(o.api.windowRequests, std::vector<int>{0});
    EXPECT_TRUE(o.Mark().IsEmpty());
}

TEST(LoadHook, WarnsAboutARepairedMergeForAnyOtherNumber) {
    for (const std::uintptr_t merged : {std::uintptr_t(1), std::uintptr_t(2), ~std::uintptr_t(0)}) {
        Opening o;
        GetSession().productName = L"Workshop";
        EXPECT_EQ(o.Open(merged), 1u);
        ASSERT_EQ(o.api.boxes.size(), 1u);
        const RecordingApi::Box& box = o.api.boxes[0];
        EXPECT_EQ(box.caption.ToUtf8(), "File Merge Issue");
        EXPECT_EQ(box.text.ToUtf8(),
                  "The file you are trying to merge has issues with scene hierarchy. Workshop has repaired "
                  "the inbound "
                  "data, however some of it's CAD metadata may be lost. If the inbound file was a CAD file, "
                  "please undo "
                  "the merge and merge it again with the 'Import Mode' option set to Asset.");
        EXPECT_EQ(box.flags, 0x2030u);
        EXPECT_EQ(box.window, o.api.mainWindow);
    }
}

TEST(LoadHook, TranslatesItsWarningsUnderAKindOfTheirOwn) {
    static Names kinds;
    for (const std::uintptr_t merged : {std::uintptr_t(0), std::uintptr_t(1)}) {
        Opening o;
        kinds.clear();
        SetTranslateHook([](const char* catalogue, const char* source, const char* kind) {
            kinds.push_back(std::string(catalogue) + "|" + kind);
            return String(L"%1: ") + String::FromUtf8(source);
        });
        GetSession().productName = L"Workshop";
        o.Open(merged);
        SetTranslateHook(nullptr);
        std::sort(kinds.begin(), kinds.end());
        EXPECT_EQ(kinds, (Names{"assembly|XCAP: message box title", "assembly|YMSG: Error message"}));
        ASSERT_EQ(o.api.boxes.size(), 1u);
        EXPECT_EQ(o.api.boxes[0].text.View().substr(0, 4), merged ? L"Work" : L"%1: ");
        EXPECT_EQ(o.api.boxes[0].caption.View().substr(0, 4), L"%1: ");
    }
}

TEST(LoadHook, MarksTheSceneInViewersAndPublishers) {
    for (const ProcessKind kind : {ProcessKind::kViewer, ProcessKind::kPublisher}) {
        for (const std::uintptr_t merged : {std::uintptr_t(0), std::uintptr_t(1)}) {
            Opening o;
            o.platform.kind = kind;
            o.Open(merged);
            EXPECT_TRUE(o.api.boxes.empty());
            EXPECT_EQ(o.Mark(), Var(1));
            EXPECT_EQ(o.Mark().GetTag(), VarTag::kInt);
            EXPECT_EQ(o.Passes(), (Names{"top", "views"}));
        }
    }
}

TEST(LoadHook, IsSilentInGenerators) {
    Opening o;
    o.platform.kind = ProcessKind::kGenerator;
    EXPECT_EQ(o.Open(), 1u);
    EXPECT_TRUE(o.api.boxes.empty());
    EXPECT_TRUE(o.Mark().IsEmpty());
    EXPECT_EQ(o.Passes(), (Names{"top", "views"}));
}

TEST(LoadHook, IsSilentInJobs) {
    for (const Var& value : {Var(true), Var(1), Var(L"yes")}) {
        Opening o;
        GetSession().userData->At(Var(L"isqnjob")) = value;
        o.Open();
        EXPECT_TRUE(o.api.boxes.empty());
        EXPECT_TRUE(o.Mark().IsEmpty());
        EXPECT_EQ(o.Passes(), (Names{"top", "views"}));
    }
}

TEST(LoadHook, WarnsOutsideOfJobs) {
    for (const Var& value : {Var(false), Var(0), Var(L"false"), Var(L"0"), Var()}) {
        Opening o;
        GetSession().userData->At(Var(L"isqnjob")) = value;
        o.Open();
        EXPECT_EQ(o.api.boxes.size(), 1u);
    }
    Opening o;
    GetSession().userData.Reset();
    o.Open();
    EXPECT_EQ(o.api.boxes.size(), 1u) << "there are no session data at all";
}

TEST(LoadHook, LeavesTheSessionDataAsTheyAre) {
    Opening o;
    o.Open();
    EXPECT_EQ(GetSession().userData->GetCount(), 0);
}

TEST(LoadHook, MarksTheSceneOfAJobInAViewer) {
    Opening o;
    o.platform.kind = ProcessKind::kViewer;
    GetSession().userData->At(Var(L"isqnjob")) = Var(true);
    o.Open();
    EXPECT_EQ(o.Mark(), Var(1));
}

}  // namespace
}  // namespace qn::test
