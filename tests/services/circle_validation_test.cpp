#include "construction/hierarchy_factory.h"
#include "tests/services/services_support.h"
#include "tests/support/inert_api.h"
#include "tests/support/static_module.h"

namespace qn::test {
namespace {

/// A node that carries a use of the root of an assembly, and shows nothing of it.
void Show(k3::Scene& scene, const Assembly& assembly) {
    Carry(*scene.CreateEmptyNode(0, 0, 0), assembly.RootInstance());
}

TEST_F(HierarchyCheck, RefusesADefinitionInsideItself) {
    const auto ring = AssemblyBuilder("car").Child("wheel").Under("wheel", "car").Build();
    Show(*scene, ring);
    EXPECT_FALSE(Validate());
    ASSERT_EQ(log->Texts().size(), 1u);
    EXPECT_EQ(log->Texts()[0].rfind("Invalid instance/reference hierarchy - found circular reference", 0),
              0u);
}

TEST_F(HierarchyCheck, RefusesACircleWithoutLogAsWell) {
    const auto ring = AssemblyBuilder("car").Child("wheel").Under("wheel", "wheel").Build();
    Show(*scene, ring);
    EXPECT_FALSE(checker->ValidateHierarchy(scene.Get(), nullptr));
}

TEST_F(HierarchyCheck, AcceptsADefinitionThatIsUsedTwice) {
    const auto shared = AssemblyBuilder("car").Child("wheel", 2).Under("wheel", "bolt", 5).Build();
    Show(*scene, shared);
    EXPECT_TRUE(Validate());
}

TEST_F(HierarchyCheck, LooksForCirclesOnlyWhereTheNodesAreSound) {
    const auto ring = AssemblyBuilder("car").Child("wheel").Under("wheel", "car").Build();
    Show(*scene, ring);
    scene->GetFirstChild()->CreateChildNode(0, 0, 0)->SetName(L"wheel");
    EXPECT_FALSE(Validate());
    EXPECT_EQ(log->Texts(), Messages{"Node ['wheel'] does not have an associated instance."});
}

TEST_F(HierarchyCheck, AcceptsInstancesWithoutDefinition) {
    Carry(*scene->CreateEmptyNode(0, 0, 0), CreateAs<graph::Instance>(graph::ClassKey::kInstance).Get());
    EXPECT_TRUE(Validate());
}

TEST_F(HierarchyCheck, RefusesAHierarchyThatNoFactoryCanLookInto) {
    const SoundCar car(*scene);
    const InertApi nobody;
    EXPECT_FALSE(Validate());
    EXPECT_EQ(log->Texts(), Messages{});
}

TEST_F(HierarchyCheck, NeedsNoFactoryWithoutInstances) {
    scene->CreateEmptyNode(0, 0, 0);
    const InertApi nobody;
    EXPECT_TRUE(Validate());
}

}  // namespace
}  // namespace qn::test
