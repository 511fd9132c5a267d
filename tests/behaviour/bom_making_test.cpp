// Structures of a scene as they are made: the first takes over what is shown, a later one gets copies.

#include "frame/host/api.h"
#include "tests/behaviour/bom_scene.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using k3::Bom;
using k3::ViewKind;
using Names = std::vector<std::string>;

Counted<Bom> FreeBom() {
    return CreateAs<Bom>(k3::kBomKey);
}

TEST(BomObject, CopiesWhatAnEntityHasAndNoStructure) {
    const BomScene s;
    s.Node(L"car");
    const auto source = s.AddBom(L"design");
    source->SetParamVar(Param::kBsId, Var(L"s1"));
    source->SetMetaValue(Var(L"key"), Var(5));
    const auto copy = FreeBom();
    EXPECT_EQ(copy->CopyFrom(source.Get(), 0), ResultEnum::kSuccess);
    EXPECT_EQ(copy->GetName(), String(L"design"));
    EXPECT_EQ(copy->GetParamVar(Param::kBsId), Var(L"s1"));
    ASSERT_TRUE(copy->GetMetadata(false));
    EXPECT_NE(copy->GetMetadata(false), source->GetMetadata(false));
    EXPECT_EQ(copy->GetScene(), nullptr);
    EXPECT_EQ(copy->GetRootNode(), nullptr);
    EXPECT_TRUE(copy->GetNodes().IsEmpty());
    EXPECT_FALSE(copy->GetLayers());
}

TEST(BomObject, KeepsItsContentWhenItCopies) {
    const BomScene s;
    s.Node(L"car");
    const auto bom = s.AddBom(L"design");
    const k3::Node* root = bom->GetRootNode();
    EXPECT_EQ(bom->CopyFrom(FreeBom().Get(), 0), ResultEnum::kSuccess);
    EXPECT_EQ(bom->GetRootNode(), root);
    EXPECT_EQ(NodesOf(*bom), "car");
    EXPECT_EQ(bom->GetScene(), s.scene.Get());
}

Bom* BomOf(const k3::Viewport* view) {
    return Cast<Bom>(view->GetParamVar(Param::kViewportOwnBom));
}

TEST(FirstBom, StartsInAnEmptyScene) {
    const BomScene s;
    const auto bom = s.AddBom(L"design");
    EXPECT_EQ(bom->GetNodes().GetTag(), VarTag::kArray);
    EXPECT_EQ(bom->GetNodes().size(), 0);
    EXPECT_EQ(s.Current(), bom.Get());
}

TEST(FirstBom, LeavesFixturesToTheSceneButTakesHiddenCamerasOfModelAndStepViews) {
    const BomScene s;
    s.Node(L"car");
    s.Fixture(L"light");
    s.View(L"model", ViewKind::kModel, s.Fixture(L"model camera"));
    s.View(L"step", ViewKind::kStep, s.Fixture(L"step camera"));
    s.View(L"detail", ViewKind::kDetail, s.Fixture(L"detail camera"));
    s.View(L"other", ViewKind::kOther, s.Fixture(L"other camera"));
    EXPECT_EQ(NodesOf(*s.AddBom(L"design")), "car model camera step camera");
}

TEST(FirstBom, ListsNodesWithAnyOtherFlag) {
    const BomScene s;
    s.Node(L"car")->SetFlags(~NodeFlag::kStopsInstancing);
    EXPECT_EQ(NodesOf(*s.AddBom(L"design")), "car");
}

TEST(FirstBom, ListsFixturesBelowATopLevelNode) {
    const BomScene s;
    s.Node(L"light", s.Node(L"car"))->SetFlags(NodeFlag::kStopsInstancing);
    EXPECT_EQ(NodesOf(*s.AddBom(L"design")), "car(light)");
}

TEST(FirstBom, TakesNeitherLayersNorViewsOfAnEmptiedScene) {
    const BomScene s;
    s.scene->CreateLayer(L"shown");
    const auto* view = s.View(L"m", ViewKind::kModel);
    const auto bom = s.AddBom(L"design", true);
    EXPECT_FALSE(bom->GetLayers());
    EXPECT_EQ(BomOf(view), nullptr);
    EXPECT_EQ(s.scene->GetLayers()->GetCount(), 1);
}

TEST(FirstBom, TakesAnyValueAsItsName) {
    const BomScene s;
    const auto number = s.NewBom(), nothing = s.NewBom();
    nothing->SetName(L"before");
    EXPECT_EQ(number->Initialize(Var(7), false), ResultEnum::kSuccess);
    EXPECT_EQ(nothing->Initialize(Var(), true), ResultEnum::kSuccess);
    EXPECT_EQ(s.Boms(), (Names{"7", ""}));
}

TEST(FirstBom, HandsAZeroOfItsOwnToTheScene) {
    const BomScene s;
    s.scene->SetParamVar(Param::kCarriedA, Var(9));
    const auto bom = s.NewBom();
    bom->SetParamVar(Param::kCarriedA, Var(0));
    bom->Initialize(Var(L"design"), false);
    EXPECT_EQ(s.scene->GetParamVar(Param::kCarriedA), Var(0));
}

/// Cannot be copied.
class SingleNode final : public k3::Node {
public:
    Counted<ReferenceSource> Clone(unsigned mode) const override {
        asked = mode;
        return {};
    }
    mutable unsigned asked = 0;
};

TEST(LaterBom, CopiesWhatTheSceneShowsNow) {
    const BomScene s;
    s.Node(L"car");
    s.AddBom(L"design");
    s.Node(L"lamp");
    EXPECT_EQ(NodesOf(*s.AddBom(L"service")), "car lamp");
}

TEST(LaterBom, CopiesNoFixturesCamerasOrNot) {
    const BomScene s;
    s.Node(L"car");
    s.Fixture(L"light");
    s.View(L"model", ViewKind::kModel, s.Fixture(L"hidden camera"));
    s.View(L"step", ViewKind::kStep, s.Node(L"camera"));
    const auto first = s.AddBom(L"design");
    EXPECT_EQ(NodesOf(*first), "car hidden camera camera");
    EXPECT_EQ(NodesOf(*s.AddBom(L"service")), "car camera");
}

TEST(LaterBom, CopiesFixturesBelowATopLevelNode) {
    const BomScene s;
    s.Node(L"light", s.Node(L"car"))->SetFlags(NodeFlag::kStopsInstancing);
    s.AddBom(L"design");
    EXPECT_EQ(NodesOf(*s.AddBom(L"service")), "car(light)");
}

TEST(LaterBom, TakesNeitherLayersNorViews) {
    const BomScene s;
    s.scene->CreateLayer(L"shown");
    s.AddBom(L"design");
    auto* view = s.View(L"m", ViewKind::kModel);
    EXPECT_FALSE(s.AddBom(L"service")->GetLayers());
    EXPECT_TRUE(view->GetParamVar(Param::kViewportOwnBom).IsEmpty());
}

TEST(LaterBom, SharesContentWithWhatItCopies) {
    const BomScene s;
    const auto object = Make<k3::Object3D>();
    s.Node(L"car")->SetObject(object.Get());
    s.AddBom(L"design");
    EXPECT_EQ(NodeAt(*s.AddBom(L"service"), 0)->GetObject(), object.Get());
}

TEST(LaterBom, FailsWhereANodeCannotBeCopied) {
    const BomScene s;
    s.Node(L"car");
    const auto single = Make<SingleNode>();
    single->AttachTo(s.scene.Get());
    s.Node(L"lamp");
    s.AddBom(L"design");
    const auto bom = s.NewBom();
    EXPECT_EQ(bom->Initialize(Var(L"service"), false), ResultEnum::kWriteFailed);
    EXPECT_EQ(single->asked, 1u);
    EXPECT_EQ(s.Boms(), Names{"design"});
    EXPECT_TRUE(bom->GetName().IsEmpty());
    EXPECT_EQ(s.BomEvents(), 1);
    EXPECT_TRUE(bom->GetParamVar(Param::kCarriedA).IsEmpty()) << "nothing was carried";
    EXPECT_EQ(Kept(*bom), "car");
}

TEST(LaterBom, DoesNotMindANodeThatCannotBeCopiedWhenItIsEmpty) {
    const BomScene s;
    const auto single = Make<SingleNode>();
    single->AttachTo(s.scene.Get());
    s.AddBom(L"design");
    EXPECT_EQ(s.NewBom()->Initialize(Var(L"service"), true), ResultEnum::kSuccess);
}

TEST(LaterBom, HandsItsNumbersToTheSceneOnlyWithCopies) {
    for (const bool empty : {false, true}) {
        const BomScene s;
        s.AddBom(L"design");
        s.scene->SetParamVar(Param::kCarriedB, Var(5));
        const auto bom = s.NewBom();
        bom->SetParamVar(Param::kCarriedA, Var(11));
        bom->Initialize(Var(L"service"), empty);
        EXPECT_EQ(s.scene->GetParamVar(Param::kCarriedA), empty ? Var() : Var(11));
        EXPECT_EQ(bom->GetParamVar(Param::kCarriedB), empty ? Var() : Var(5));
    }
}

TEST(LaterBom, IsALaterOneWhereverTheCurrentOneIsListed) {
    const BomScene s;
    s.Node(L"car");
    const auto first = s.AddBom(L"design");
    s.scene->SetParamVar(Param::kBoms, Var());
    const auto second = s.AddBom(L"service");
    EXPECT_EQ(s.Boms(), Names{"service"});
    EXPECT_EQ(s.Current(), first.Get());
    EXPECT_EQ(Kept(*second), "car");
}

TEST(LaterBom, TakesOverTheSceneWhereNoneIsCurrent) {
    const BomScene s;
    s.Node(L"car");
    const auto first = s.AddBom(L"design");
    s.scene->SetParamVar(Param::kCurrentBom, Var());
    const auto second = s.AddBom(L"service");
    EXPECT_EQ(s.Current(), second.Get());
    EXPECT_EQ(NodeAt(*second, 0), NodeAt(*first, 0));
}

}  // namespace
}  // namespace qn::test
