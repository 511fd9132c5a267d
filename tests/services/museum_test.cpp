#include "tests/support/museum.h"

#include "engine/stream/scene_file.h"
#include "tests/services/services_support.h"
#include "tests/support/accepted_leaks.h"

#include <ostream>

namespace qn::test {

static void PrintTo(const Exhibit& exhibit, std::ostream* out) {
    *out << exhibit.name;
}

namespace {

/// A scene as it comes out of a file that nobody checked.
Counted<k3::Scene> Stored(k3::Scene& scene) {
    const auto context = MakeContext();
    auto read = Make<k3::Scene>();
    EXPECT_TRUE(LoadSceneFromBytes(SaveSceneToBytes(scene, *context), L"museum", *read, *context));
    return read;
}

class MuseumOfScenes : public HierarchyCheck, public testing::WithParamInterface<Exhibit> {
protected:
    void SetUp() override { scene = Stored(*GetParam().make()); }
    bool IsSound() {
        const bool nodes = checker->ValidateHierarchy(scene.Get(), log.Get());
        return checker->ValidateLayers(scene.Get(), log.Get()) && nodes;
    }
    bool ValidatorSeesIt() const { return *GetParam().validator != '\0'; }

    AcceptedLeaks circles;
};

TEST_P(MuseumOfScenes, IsFoundAndNamedByTheValidator) {
    EXPECT_EQ(IsSound(), !ValidatorSeesIt());
    if (!ValidatorSeesIt()) return;
    ASSERT_EQ(log->Texts().size(), 1u);
    EXPECT_EQ(log->Texts()[0].rfind(GetParam().validator, 0), 0u) << log->Texts()[0];
}

TEST_P(MuseumOfScenes, IsSoundAfterARepair) {
    const bool nodes = checker->RepairTopLevelNodes(scene.Get(), log.Get());
    const bool layers = checker->RepairLayersAndViewports(scene.Get(), log.Get());
    EXPECT_EQ(nodes && layers, !ValidatorSeesIt());
    EXPECT_TRUE(IsSound());
    EXPECT_TRUE(checker->RepairTopLevelNodes(scene.Get(), log.Get()));
    EXPECT_TRUE(checker->RepairLayersAndViewports(scene.Get(), log.Get()));
}

INSTANTIATE_TEST_SUITE_P(, MuseumOfScenes, testing::ValuesIn(Museum()),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_F(HierarchyCheck, FindsNothingInTheMuseumsSoundScenes) {
    for (const auto& make : {&SoundNodes, &SoundDefinitions}) {
        scene = Stored(*make());
        EXPECT_TRUE(Validate());
        EXPECT_TRUE(checker->ValidateLayers(scene.Get(), log.Get()));
    }
}

}  // namespace
}  // namespace qn::test
