// Which nodes are checked where a scene has several structures.

#include "frame/host/api.h"
#include "product/bom.h"
#include "tests/behaviour/checker_scene.h"
#include "tests/behaviour/element_support.h"
#include "tests/behaviour/factory_support.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using k3::Bom;

/// A car that two structures show, the first now.
struct TwoStructures : CheckedCar {
    TwoStructures() {
        first = Add(L"design");
        second = Add(L"service");
        copy = Cast<k3::Node>(second->GetNodes().ValueAt(0));
    }
    Counted<Bom> Add(const wchar_t* name, bool empty = false) const {
        auto bom = CreateAs<Bom>(k3::kBomKey);
        bom->SetScene(scene.Get());
        EXPECT_EQ(bom->Initialize(Var(name), empty), ResultEnum::kSuccess);
        return bom;
    }
    void SetBoms(const Var& boms) const { scene->SetParamVar(Param::kBoms, boms); }
    Counted<Bom> first, second;
    k3::Node* copy;
};

void Break(k3::Node* top, const wchar_t* name) {
    top->GetChildAt(1)->DeleteParam(Param::kInstance);
    top->GetChildAt(1)->SetName(name);
}

std::string NoInstance(const std::string& name) {
    return "Node ['" + name + "'] does not have an associated instance.";
}

TEST(CheckerStructures, AreRepairedThoughTheyAreNotShown) {
    const TwoStructures s;
    Break(s.copy, L"copied lamp");
    EXPECT_FALSE(s.checker->RepairTopLevelNodes(s.scene.Get(), s.log.Get()));
    EXPECT_EQ(s.Log(), (Lines{NoInstance("copied lamp"), MetadataLost("car")}));
    EXPECT_FALSE(ShownBy(*s.copy));
    EXPECT_TRUE(ShownBy(*s.car));
    EXPECT_TRUE(s.checker->RepairTopLevelNodes(s.scene.Get(), s.log.Get()));
}

TEST(CheckerStructures, OfTheSceneAreWhatItShowsNowNotWhatWasListed) {
    const TwoStructures s;
    k3::Node* late = ShowUse(*s.scene, *s.use);
    late->SetFlags(NodeFlag::kStopsInstancing);
    Break(late, L"late lamp");
    EXPECT_FALSE(s.Sound());
    EXPECT_EQ(s.Log(), Lines{NoInstance("late lamp")}) << "also what belongs to no structure";
    const Counted<k3::Node> held(late);
    s.scene->_RemoveChild(late, true);
    EXPECT_TRUE(s.Sound());
}

TEST(CheckerStructures, LeaveTheSceneOutWhereTheCurrentOneIsNotListed) {
    const TwoStructures s;
    Break(s.car, L"shown lamp");
    s.SetBoms(ArrayOf({Var(s.second)}));
    EXPECT_TRUE(s.Sound());
    s.scene->SetParamVar(Param::kCurrentBom, Var());
    EXPECT_TRUE(s.Sound());
}

TEST(CheckerStructures, MayBeEmptyOrUnmade) {
    const TwoStructures s;
    s.Add(L"empty", true);
    s.SetBoms(ArrayOf({Var(s.first), Var(CreateAs<Bom>(k3::kBomKey)), Var(s.second)}));
    EXPECT_TRUE(s.Sound());
    Break(s.copy, L"copied lamp");
    EXPECT_FALSE(s.Sound());
}

TEST(CheckerStructures, KeepTheirNodesInTheLayers) {
    const TwoStructures s;
    k3::Layer* layer = s.scene->CreateLayer(L"shown");
    layer->AddNode(s.copy);
    layer->AddNode(s.copy->GetChildAt(0));
    EXPECT_TRUE(s.LayersSound());
    layer->AddNode(s.second->GetRootNode());
    EXPECT_FALSE(s.LayersSound()) << "the root itself is no node of the scene";
}

}  // namespace
}  // namespace qn::test
