#include "frame/host/translate.h"
#include "tests/services/services_support.h"

namespace qn::test {
namespace {

/// What the translation was asked for, as "catalogue|text|kind".
Messages g_asked;

class CheckTranslation : public HierarchyCheck {
protected:
    void SetUp() override {
        g_asked.clear();
        SetTranslateHook([](const char* catalogue, const char* source, const char* kind) {
            g_asked.push_back(std::string(catalogue) + "|" + source + "|" + kind);
            return String(L"kaputt: %1");
        });
    }
    void TearDown() override { SetTranslateHook(nullptr); }
    static std::string Asked(const char* text) {
        return "assembly|" + std::string(text) + "|XMSG: Error message";
    }
    SoundCar car{*scene};
};

constexpr const char* kNoInstance = "Node ['%1'] does not have an associated instance.";

TEST_F(CheckTranslation, IsWhatTheLogGets) {
    car.At({0})->DeleteParam(Param::kInstance);
    Validate();
    EXPECT_EQ(g_asked, Messages{Asked(kNoInstance)});
    EXPECT_EQ(log->Texts(), Messages{"kaputt: chassis"});
}

TEST_F(CheckTranslation, IsAskedForTheOtherFaultsOfNodes) {
    car.At({0})->SetObject(nullptr);
    Validate();
    car.assembly.Ref("chassis")->SetTarget(Var());
    car.top->CreateChildNode(0, 0, 0);
    Validate();
    EXPECT_EQ(
        g_asked,
        (Messages{Asked("Different geometry objects: ['%1'] node, ['%2'] instance and ['%3'] reference. "
                        "The object links are broken."),
                  Asked("Node ['%1'] has different number of children than implied by the associated "
                        "instance")}));
}

TEST_F(CheckTranslation, IsAskedForWhatMayBeLost) {
    car.At({0})->DeleteParam(Param::kInstance);
    Repair();
    EXPECT_EQ(g_asked, (Messages{Asked(kNoInstance),
                                 Asked("Metadata instancing errors for the ['%1'] top-level node. Some "
                                       "metadata may have been lost.")}));
}

TEST_F(CheckTranslation, IsAskedForFindingsAndRemovalsInLayers) {
    const auto orphan = Make<k3::Node>();
    const auto thing = Make<k3::Object3D>();
    k3::Layer* const layer = scene->CreateLayer(L"shown");
    layer->AddNode(orphan.Get());
    layer->GetMembers()->Add(thing.Get());
    checker->ValidateLayers(scene.Get(), log.Get());
    checker->RepairLayersAndViewports(scene.Get(), log.Get());
    EXPECT_EQ(g_asked, (Messages{Asked("%1 orphaned nodes detected in layer %2"),
                                 Asked("%1 invalid nodes detected in layer %2"),
                                 Asked("Removed %1 orphaned nodes from layer %2"),
                                 Asked("Removed %1 invalid nodes from layer %2")}));
}

}  // namespace
}  // namespace qn::test
