// A generator stays with its node when the nodes get another hierarchy, or lose theirs. What is saved and
// loaded is what the nodes say.

#include "engine/scene/generated_content.h"
#include "engine/stream/scene_file.h"
#include "frame/host/api.h"
#include "frame/host/params.h"
#include "frame/host/scene.h"
#include "services/hierarchy_checker.h"
#include "tests/support/assembly.h"
#include "tests/support/generated_scene.h"
#include "tests/support/recording_context.h"
#include "tests/support/recording_platform.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

constexpr int kRemoveCache = 2;
constexpr int kGenerateHierarchy = 15;

class ReplacedHierarchy : public testing::TestWithParam<const char*> {
protected:
    /// A scene whose only top node was generated from a graph: a car, or a single part.
    ReplacedHierarchy() : assembly_(Builder().Build()), scene_(GeneratedScene(assembly_)) {
        EXPECT_EQ(k3::GenerateMissing(*scene_, context_.Get()), 1);
    }
    static AssemblyBuilder Builder() {
        AssemblyBuilder builder(GetParam());
        return GetParam() == std::string("car") ? builder.Child("wheel", 2).Under("wheel", "tyre") : builder;
    }
    void Run(int method) {
        const auto operation = CreateAs<Extension>("qn.graph.hierarchyoperation");
        const auto params = Params::Create();
        params->SetParamObject(0, scene_.Get());
        EXPECT_EQ(operation->Invoke(method, params.Get(), context_.Get()), 1);
    }
    Counted<k3::Scene> SavedAndLoaded(k3::Scene& scene) {
        const std::string bytes = SaveSceneToBytes(scene, *context_);
        auto loaded = Make<k3::Scene>();
        EXPECT_TRUE(LoadSceneFromBytes(bytes, L"test", *loaded, *context_));
        EXPECT_EQ(k3::GenerateMissing(*loaded, context_.Get()), 0)
            << "nothing is made in place of what was stored";
        EXPECT_TRUE(SaveSceneToBytes(*loaded, *context_) == bytes) << "saved again";
        return loaded;
    }
    static graph::Instance* CarriedByTop(const k3::Scene& scene) {
        return Cast<graph::Instance>(scene.GetFirstChild()->GetParamObject(Param::kInstance));
    }

    RecordingPlatform platform_;
    Counted<RecordingContext> context_ = MakeContext();
    Assembly assembly_;
    Counted<k3::Scene> scene_;
};

TEST_P(ReplacedHierarchy, ComesBackWithItsIds) {
    Run(kGenerateHierarchy);
    const Var id = CarriedByTop(*scene_)->GetProperty(graph::Prop::kBsId, 0);
    const auto loaded = SavedAndLoaded(*scene_);
    ASSERT_NE(CarriedByTop(*loaded), nullptr);
    EXPECT_EQ(CarriedByTop(*loaded)->GetProperty(graph::Prop::kBsId, 0), id);
}

TEST_P(ReplacedHierarchy, IsSoundWhenItComesBack) {
    Run(kGenerateHierarchy);
    const auto loaded = SavedAndLoaded(*scene_);
    const auto checker = CreateAs<graph::HierarchyChecker>(graph::ClassKey::kHierarchyChecker);
    EXPECT_TRUE(checker->ValidateHierarchy(loaded.Get(), context_.Get()));
}

TEST_P(ReplacedHierarchy, StaysAwayOnceItWasRemoved) {
    Run(kRemoveCache);
    const auto loaded = SavedAndLoaded(*scene_);
    EXPECT_TRUE(loaded->GetFirstChild()->GetParamVar(Param::kInstance).IsEmpty());
    EXPECT_EQ(loaded->GetFirstChild()->GetChildCount(), scene_->GetFirstChild()->GetChildCount());
}

INSTANTIATE_TEST_SUITE_P(Of, ReplacedHierarchy, testing::Values("car", "part"),
                         [](const auto& info) { return std::string(info.param); });

}  // namespace
}  // namespace qn::test
