#include "tests/product/product_support.h"

namespace qn::test {
namespace {

using k3::BomHelper;
using k3::BomImpl;
using k3::Node;
using k3::ViewKind;

using BomInitialize = BomScene;

TEST_F(BomInitialize, FirstTakesOverWhatTheSceneShows) {
    const auto bom = AddBom(*scene_, L"design");
    EXPECT_EQ(Shown(), "a(b c) d");
    EXPECT_EQ(NodesOf(*bom), "a(b c) d");
    EXPECT_EQ(bom->GetNodes().ValueAt(0).ToInterface(), static_cast<Interface*>(a_));
    EXPECT_EQ(Current(), bom.Get());
}

TEST_F(BomInitialize, FirstEmptyOneEmptiesTheScene) {
    const auto bom = AddBom(*scene_, L"blank", true);
    EXPECT_EQ(Shown(), "");
    EXPECT_EQ(NodesOf(*bom), "");
    EXPECT_EQ(Current(), bom.Get());
}

TEST_F(BomInitialize, FirstEmptyOneLeavesNodesThatStopInstancing) {
    d_->SetFlags(NodeFlag::kStopsInstancing);
    AddBom(*scene_, L"blank", true);
    EXPECT_EQ(Shown(), "d");
}

TEST_F(BomInitialize, FirstEmptyOneTakesTheCamerasOfModelViewsToo) {
    AddCamera(*scene_, "camera", ViewKind::kModel);
    AddCamera(*scene_, "detail", ViewKind::kDetail);
    AddBom(*scene_, L"blank", true);
    EXPECT_EQ(Shown(), "detail");
}

TEST_F(BomInitialize, FirstEmptyOneTakesNodesOutOfLayers) {
    k3::Layer* layer = scene_->CreateLayer(L"l");
    layer->AddNode(b_);
    AddBom(*scene_, L"blank", true);
    EXPECT_EQ(layer->GetMembers()->GetCount(), 0);
}

TEST_F(BomInitialize, SecondGetsCopies) {
    const auto first = AddBom(*scene_, L"design");
    const auto second = AddBom(*scene_, L"service");
    EXPECT_EQ(NodesOf(*second), "a(b c) d");
    EXPECT_EQ(ShownBy(*second->GetRootNode()), "a(b c) d");
    EXPECT_NE(second->GetNodes().ValueAt(0).ToInterface(), static_cast<Interface*>(a_));
    EXPECT_EQ(Current(), first.Get());
    EXPECT_EQ(Shown(), "a(b c) d");
}

TEST_F(BomInitialize, SecondEmptyOneGetsNothing) {
    AddBom(*scene_, L"design");
    const auto second = AddBom(*scene_, L"service", true);
    EXPECT_EQ(NodesOf(*second), "");
    EXPECT_EQ(Shown(), "a(b c) d");
    EXPECT_EQ(second->GetParamType(Param::kCarriedA), 0) << "nothing was carried either";
}

TEST_F(BomInitialize, CopiesNoCameraThoughTheSceneListsIt) {
    AddCamera(*scene_, "camera", ViewKind::kStep);
    const auto first = AddBom(*scene_, L"design");
    const auto second = AddBom(*scene_, L"service");
    EXPECT_EQ(NodesOf(*first), "a(b c) d camera");
    EXPECT_EQ(NodesOf(*second), "a(b c) d");
}

TEST_F(BomInitialize, ListsNoCameraOfADetailView) {
    AddCamera(*scene_, "detail", ViewKind::kDetail);
    EXPECT_EQ(NodesOf(*AddBom(*scene_, L"design")), "a(b c) d");
}

TEST_F(BomInitialize, FailsWithoutAScene) {
    const auto bom = Make<BomImpl>();
    EXPECT_EQ(ToInt(bom->Initialize(Var(L"n"), false)), -11);
    EXPECT_EQ(bom->GetRootNode(), nullptr);
    EXPECT_FALSE(bom->GetNodes().IsSet());
}

TEST_F(BomInitialize, FailsTheSecondTimeAndChangesNothing) {
    const auto bom = AddBom(*scene_, L"design");
    const Node* root = bom->GetRootNode();
    EXPECT_EQ(ToInt(bom->Initialize(Var(L"again"), true)), -11);
    EXPECT_EQ(bom->GetRootNode(), root);
    EXPECT_EQ(bom->GetName(), String(L"design"));
    EXPECT_EQ(Shown(), "a(b c) d");
    EXPECT_EQ(BomHelper(scene_.Get()).GetBoms()->GetCount(), 1);
}

TEST_F(BomInitialize, FailsWithoutMemoryForTheRoot) {
    const auto boms = VarArray::Create();
    scene_->SetParamObject(Param::kBoms, boms.Get());
    const auto bom = Make<BomImpl>(scene_.Get());
    mem::FailAllocations(1, 1);  // the list of nodes comes first
    EXPECT_EQ(ToInt(bom->Initialize(Var(L"n"), false)), -8);
    mem::FailAllocations(0, 0);
    EXPECT_EQ(boms->GetCount(), 0);
    EXPECT_EQ(Current(), nullptr);
    EXPECT_TRUE(bom->GetNodes().IsSet());
    EXPECT_EQ(ToInt(bom->Initialize(Var(L"n"), false)), -11) << "the list of nodes stays";
}

TEST_F(BomInitialize, FailsWhereACopyFails) {
    AddBom(*scene_, L"design");
    const auto boms = BomHelper(scene_.Get()).GetBoms();
    const auto bom = Make<BomImpl>(scene_.Get());
    mem::FailAllocations(2, 1);  // behind the list and the root: the first copy
    EXPECT_EQ(ToInt(bom->Initialize(Var(L"n"), false)), -8);
    mem::FailAllocations(0, 0);
    EXPECT_EQ(boms->GetCount(), 1);
    EXPECT_EQ(bom->GetName(), String(L""));
    EXPECT_NE(bom->GetRootNode(), nullptr);
    EXPECT_TRUE(bom->GetNodes().IsSet());
    EXPECT_EQ(ToInt(bom->Initialize(Var(L"n"), false)), -11) << "what was made stays";
}

TEST_F(BomInitialize, TakesItsNameAsText) {
    const auto bom = Make<BomImpl>(scene_.Get());
    bom->Initialize(Var(12), false);
    EXPECT_EQ(bom->GetName(), String(L"12"));
}

TEST_F(BomInitialize, JoinsTheListOfTheScene) {
    const auto first = AddBom(*scene_, L"design");
    const auto second = AddBom(*scene_, L"service", true);
    const VarArray* boms = BomHelper(scene_.Get()).GetBoms();
    ASSERT_EQ(boms->GetCount(), 2);
    EXPECT_EQ(boms->Get(0).ToInterface(), static_cast<Interface*>(first.Get()));
    EXPECT_EQ(boms->Get(1).ToInterface(), static_cast<Interface*>(second.Get()));
}

TEST_F(BomInitialize, JoinsTheVeryListThatWasThere) {
    const auto boms = VarArray::Create();
    boms->Add(Var(7));
    scene_->SetParamObject(Param::kBoms, boms.Get());
    const auto bom = AddBom(*scene_, L"design");
    EXPECT_EQ(BomHelper(scene_.Get()).GetBoms(), boms.Get());
    ASSERT_EQ(boms->GetCount(), 2);
    EXPECT_EQ(boms->Get(0), Var(7));
    EXPECT_EQ(boms->Get(1).ToInterface(), static_cast<Interface*>(bom.Get()));
}

TEST_F(BomInitialize, IsCompleteWhenObserversHearOfIt) {
    const auto bom = Make<BomImpl>(scene_.Get());
    int heard = 0;
    const auto probe = Make<BomEventProbe>([&] {
        ++heard;
        EXPECT_EQ(Current(), bom.Get());
        EXPECT_EQ(bom->GetName(), String(L"design"));
        const VarArray* boms = BomHelper(scene_.Get()).GetBoms();
        ASSERT_EQ(boms->GetCount(), 1);
        EXPECT_EQ(boms->Get(0).ToInterface(), static_cast<Interface*>(bom.Get()));
    });
    scene_->AddObserver(probe.Get());
    bom->Initialize(Var(L"design"), false);
    EXPECT_EQ(heard, 1);
}

TEST_F(BomInitialize, TellsTheScenesObserversOnce) {
    const auto observer = Make<SceneObserver>();
    scene_->AddObserver(observer.Get());
    AddBom(*scene_, L"design");
    EXPECT_EQ(observer->BomEvents(), 1);
}

TEST_F(BomInitialize, ItsRootIsOutsideOfTheScene) {
    const auto bom = AddBom(*scene_, L"design");
    EXPECT_EQ(bom->GetRootNode()->GetParent(), nullptr);
    EXPECT_EQ(bom->GetRootNode()->GetScene(), nullptr);
}

TEST_F(BomInitialize, FirstClaimsViewsThatBelongToNone) {
    k3::Viewport* model = AddCamera(*scene_, "model", ViewKind::kModel);
    k3::Viewport* detail = AddCamera(*scene_, "detail", ViewKind::kDetail);
    k3::Viewport* step = AddCamera(*scene_, "step", ViewKind::kStep);
    k3::Viewport* other = AddCamera(*scene_, "other", ViewKind::kOther);
    k3::Viewport* taken = AddCamera(*scene_, "taken", ViewKind::kStep);
    const auto stranger = Make<BomImpl>();
    taken->SetParamObject(Param::kViewportOwnBom, stranger.Get());
    const auto bom = AddBom(*scene_, L"design");
    Interface* const self = bom.Get();
    EXPECT_EQ(model->GetParamObject(Param::kViewportOwnBom), self);
    EXPECT_EQ(step->GetParamObject(Param::kViewportOwnBom), self);
    EXPECT_EQ(detail->GetParamObject(Param::kViewportOwnBom), self);
    EXPECT_EQ(other->GetParamObject(Param::kViewportOwnBom), nullptr);
    EXPECT_EQ(taken->GetParamObject(Param::kViewportOwnBom), static_cast<Interface*>(stranger.Get()));
}

TEST_F(BomInitialize, FirstSharesTheScenesLayers) {
    scene_->CreateLayer(L"l");
    EXPECT_EQ(AddBom(*scene_, L"design")->GetLayers(), scene_->GetLayers());
}

TEST_F(BomInitialize, CopiesHaveNoLayers) {
    scene_->CreateLayer(L"l");
    AddBom(*scene_, L"design");
    EXPECT_FALSE(AddBom(*scene_, L"service")->GetLayers());
}

TEST_F(BomInitialize, HandsItsOwnIntegersToTheScene) {
    const auto bom = Make<BomImpl>(scene_.Get());
    bom->SetParamVar(Param::kCarriedA, Var(7));
    scene_->SetParamVar(Param::kCarriedA, Var(1));
    scene_->SetParamVar(Param::kCarriedB, Var(2));
    bom->Initialize(Var(L"design"), false);
    EXPECT_EQ(scene_->GetParamVar(Param::kCarriedA), Var(7));
    EXPECT_EQ(bom->GetParamVar(Param::kCarriedB), Var(2));
}

TEST_F(BomInitialize, FirstEmptyOneCarriesItsIntegersToo) {
    const auto bom = Make<BomImpl>(scene_.Get());
    bom->SetParamVar(Param::kCarriedA, Var(7));
    scene_->SetParamVar(Param::kCarriedB, Var(2));
    bom->Initialize(Var(L"blank"), true);
    EXPECT_EQ(scene_->GetParamVar(Param::kCarriedA), Var(7));
    EXPECT_EQ(bom->GetParamVar(Param::kCarriedB), Var(2));
}

TEST_F(BomInitialize, TakesDefaultsWhereTheSceneHasNone) {
    const auto bom = AddBom(*scene_, L"design");
    EXPECT_EQ(bom->GetParamVar(Param::kCarriedA), Var(4));
    EXPECT_EQ(bom->GetParamVar(Param::kCarriedB), Var(0));
    EXPECT_FALSE(scene_->GetParamVar(Param::kCarriedA).IsSet());
}

}  // namespace
}  // namespace qn::test
