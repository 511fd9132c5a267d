// What a user sees when a damaged file is opened, from the file to the message box.

#include "engine/stream/scene_file.h"
#include "frame/host/meta.h"
#include "frame/host/scene.h"
#include "graph/graph.h"
#include "services/hierarchy_checker.h"
#include "tests/support/accepted_leaks.h"
#include "tests/support/assembly.h"
#include "tests/support/generated_scene.h"
#include "tests/support/museum.h"
#include "tests/support/recording_context.h"
#include "tests/support/recording_platform.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string_view>

namespace qn::test {
namespace {

const Exhibit& Named(std::string_view name) {
    for (const Exhibit& exhibit : Museum())
        if (exhibit.name == name) return exhibit;
    throw std::runtime_error("no such exhibit");
}

/// Whether the damage is to nodes, which users hear of; layers are repaired silently.
bool IsOfNodes(const Exhibit& exhibit) {
    return *exhibit.validator && !std::strstr(exhibit.code, "layer-member");
}

class OpeningAFile : public testing::Test {
protected:
    Counted<k3::Scene> Open(k3::Scene& damaged) {
        const TempFolder folder;
        const String file = folder.File("damaged.qn");
        EXPECT_TRUE(SaveSceneFile(damaged, file, *context_));
        auto scene = Make<k3::Scene>();
        EXPECT_TRUE(LoadSceneFile(file, *scene, *context_));
        return scene;
    }
    bool IsSound(k3::Scene& scene) {
        const auto checker = CreateAs<graph::HierarchyChecker>(graph::ClassKey::kHierarchyChecker);
        const bool nodes = checker->ValidateHierarchy(&scene, context_.Get());
        return checker->ValidateLayers(&scene, context_.Get()) && nodes;
    }
    static bool IsMarked(k3::Scene& scene) {
        return GetMeta(&scene, Var(L"$QN/InstanceReferenceHierarchyRepaired"), 0) == Var(1);
    }

    AcceptedLeaks circles_;
    RecordingPlatform platform_;
    Counted<RecordingContext> context_ = MakeContext();
};

TEST_F(OpeningAFile, RepairsEveryDamageThatTheValidatorSees) {
    for (const Exhibit& exhibit : Museum()) {
        platform_.boxes.clear();
        const auto scene = Open(*exhibit.make());
        EXPECT_TRUE(IsSound(*scene)) << exhibit.name;
        EXPECT_EQ(platform_.boxes.size(), IsOfNodes(exhibit) ? 1u : 0u) << exhibit.name;
    }
}

/// Nodes that a generator made and that are stored, one of which shows something else.
Counted<k3::Scene> BrokenGeneratedNodes() {
    const Assembly car = AssemblyBuilder("car").Child("wheel", 2).WithContent().Build();
    auto scene = GeneratedScene(car);
    k3::Node* const top = scene->GetFirstChild();
    k3::Generator::Get(top)->Generate(top, nullptr);
    top->GetChildAt(1)->SetObject(Make<k3::Object3D>().Get());
    return scene;
}

TEST_F(OpeningAFile, RepairsItOnceAndForAll) {
    for (const auto& make : {Named("wrong_object").make, &BrokenGeneratedNodes}) {
        platform_.boxes.clear();
        const auto first = Open(*make());
        EXPECT_EQ(platform_.boxes.size(), 1u);
        const auto second = Open(*first);
        EXPECT_EQ(platform_.boxes.size(), 1u);
        EXPECT_TRUE(IsSound(*second));
        EXPECT_EQ(second->GetFirstChild()->GetChildCount(), first->GetFirstChild()->GetChildCount());
    }
}

TEST_F(OpeningAFile, SaysNothingAboutASoundOne) {
    for (const auto& make : {&SoundNodes, &SoundDefinitions}) {
        const auto scene = Open(*make());
        EXPECT_TRUE(platform_.boxes.empty());
        EXPECT_FALSE(IsMarked(*scene));
    }
}

TEST_F(OpeningAFile, WarnsAnAuthorOnce) {
    const auto scene = Open(*Named("wrong_instance").make());
    ASSERT_EQ(platform_.boxes.size(), 1u);
    EXPECT_EQ(platform_.boxes[0].caption, String(L"File Validation Issue"));
    EXPECT_EQ(platform_.boxes[0].flags, 0x2030u);
    EXPECT_FALSE(IsMarked(*scene));
}

TEST_F(OpeningAFile, MarksTheSceneInAViewerAndAPublisher) {
    for (const ProcessKind kind : {ProcessKind::kViewer, ProcessKind::kPublisher}) {
        platform_.kind = kind;
        EXPECT_TRUE(IsMarked(*Open(*Named("wrong_instance").make())));
    }
    EXPECT_TRUE(platform_.boxes.empty());
}

TEST_F(OpeningAFile, IsSilentInAGenerator) {
    platform_.kind = ProcessKind::kGenerator;
    EXPECT_FALSE(IsMarked(*Open(*Named("wrong_instance").make())));
    EXPECT_TRUE(platform_.boxes.empty());
}

TEST_F(OpeningAFile, WarnsOfAMergeInItsOwnWords) {
    const TempFolder folder;
    const String file = folder.File("damaged.qn");
    ASSERT_TRUE(SaveSceneFile(*Named("wrong_object").make(), file, *context_));
    const auto scene = Make<k3::Scene>();
    ASSERT_NE(scene->LoadFile(file.c_str(), context_.Get(), 0, Guid()), nullptr);
    ASSERT_EQ(platform_.boxes.size(), 1u);
    EXPECT_EQ(platform_.boxes[0].caption, String(L"File Merge Issue"));
    EXPECT_TRUE(IsSound(*scene));
}

TEST_F(OpeningAFile, RepairsLayersWithoutAWord) {
    const auto scene = Open(*Named("foreign_member").make());
    EXPECT_TRUE(platform_.boxes.empty());
    EXPECT_EQ(Cast<k3::Layer>(scene->GetLayers()->Get(0))->GetMembers()->GetCount(), 1);
}

}  // namespace
}  // namespace qn::test
