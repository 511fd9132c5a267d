// Listing anew what a scene shows, and switching between its structures.

#include "tests/behaviour/bom_scene.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using k3::Bom;
using k3::ViewKind;

TEST(BomUpdate, ListsWhatCameAndWentInTheOrderOfTheScene) {
    const BomScene s;
    k3::Node* car = s.Node(L"car");
    s.Node(L"lamp");
    const auto bom = s.AddBom(L"design");
    s.Node(L"valve");
    car->AttachTo(s.scene.Get());
    s.scene->_RemoveChild(s.scene->GetFirstChild(), true);
    EXPECT_EQ(NodesOf(*bom), "car lamp") << "nobody asked yet";
    EXPECT_EQ(bom->Update(), ResultEnum::kSuccess);
    EXPECT_EQ(NodesOf(*bom), "valve car");
}

TEST(BomUpdate, LeavesFixturesButTakesHiddenCameras) {
    const BomScene s;
    const auto bom = s.AddBom(L"design");
    s.Fixture(L"light");
    s.View(L"model", ViewKind::kModel, s.Fixture(L"camera"));
    s.Node(L"car");
    bom->Update();
    EXPECT_EQ(NodesOf(*bom), "camera car");
}

TEST(BomUpdate, TakesTheLayersThatTheSceneHasNow) {
    const BomScene s;
    const auto bom = s.AddBom(L"design");
    const auto layers = InterfaceArray::CreateStrong();
    s.scene->SetLayers(layers.Get());
    bom->Update();
    EXPECT_EQ(bom->GetLayers().Get(), layers.Get());
}

TEST(BomUpdate, FillsTheListsOfAStructureThatTookAnEmptiedScene) {
    const BomScene s;
    const auto bom = s.AddBom(L"design", true);
    s.Node(L"car");
    bom->Update();
    EXPECT_EQ(NodesOf(*bom), "car");
    EXPECT_EQ(bom->GetLayers().Get(), s.scene->GetLayers());
}

/// Two structures of a car with a wheel; the first is shown.
struct TwoBoms : BomScene {
    TwoBoms() {
        car = Node(L"car");
        wheel = Node(L"wheel", car);
        light = Fixture(L"light");
        first = AddBom(L"design");
        second = AddBom(L"service");
        NodeAt(*second, 0)->SetName(L"copy");
        ear->heard.clear();
    }
    k3::Node *car, *wheel, *light;
    Counted<Bom> first, second;
};

TEST(BomActivate, LeavesAloneWhatWasTakenOutOfTheScene) {
    const TwoBoms s;
    const Counted<k3::Node> car(s.car);
    s.scene->_RemoveChild(s.car, true);
    s.second->Activate();
    EXPECT_EQ(car->GetParent(), nullptr);
    EXPECT_EQ(NodesOf(*s.first), "");
}

TEST(BomActivate, GivesTheSceneTheLayersOfTheStructure) {
    const TwoBoms s;
    s.scene->CreateLayer(L"of the first");
    InterfaceArray* layers = s.scene->GetLayers();
    s.second->Activate();
    EXPECT_NE(s.scene->GetLayers(), layers);
    EXPECT_EQ(s.scene->GetLayers()->GetCount(), 0) << "it has none yet";
    EXPECT_EQ(s.first->GetLayers().Get(), layers);
    s.scene->CreateLayer(L"of the second");
    s.first->Activate();
    EXPECT_EQ(s.scene->GetLayers(), layers);
    ASSERT_EQ(s.second->GetLayers()->GetCount(), 1);
    EXPECT_EQ(Cast<k3::Layer>(s.second->GetLayers()->Get(0))->GetName(), String(L"of the second"));
}

TEST(BomActivate, DoesNothingForTheCurrentOne) {
    const TwoBoms s;
    s.Node(L"lamp");
    s.ear->heard.clear();
    s.first->SetParamVar(Param::kCarriedA, Var(7));
    EXPECT_EQ(s.first->Activate(), ResultEnum::kSuccess);
    EXPECT_TRUE(s.ear->heard.empty());
    EXPECT_TRUE(s.scene->GetHostCalls().empty());
    EXPECT_EQ(NodesOf(*s.first), "car(wheel)") << "it is not listed anew";
    EXPECT_FALSE(s.scene->GetParamVar(Param::kCarriedA) == Var(7));
}

TEST(BomActivate, FailsBeforeTheStructureWasMade) {
    const TwoBoms s;
    const auto bom = s.NewBom();
    EXPECT_EQ(bom->Activate(), ResultEnum::kWriteFailed);
    EXPECT_EQ(s.Shown(), "car(wheel) light");
    EXPECT_EQ(s.Current(), s.first.Get());
    s.scene->SetParamVar(Param::kCurrentBom, Var(bom));
    EXPECT_EQ(bom->Activate(), ResultEnum::kWriteFailed) << "even if it is called current";
    EXPECT_TRUE(s.scene->GetHostCalls().empty());
}

TEST(BomActivate, GoesRoundThreeStructures) {
    const TwoBoms s;
    const auto third = s.AddBom(L"sales");
    NodeAt(*third, 0)->SetName(L"model");
    for (int round = 0; round < 2; ++round) {
        third->Activate();
        EXPECT_EQ(s.Shown(), "light model(wheel)");
        s.second->Activate();
        EXPECT_EQ(s.Shown(), "light copy(wheel)");
        s.first->Activate();
        EXPECT_EQ(s.Shown(), "light car(wheel)");
    }
    EXPECT_EQ(Kept(*third), "model(wheel)");
}

}  // namespace
}  // namespace qn::test
