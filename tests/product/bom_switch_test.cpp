#include "tests/product/product_support.h"

namespace qn::test {
namespace {

using k3::BomHelper;
using k3::BomImpl;
using k3::Node;
using k3::ViewKind;

/// A scene that shows "a(b c) d" as "design" and keeps "other" as "service".
class BomSwitch : public BomScene {
protected:
    void SetUp() override {
        Node* copy = AddNode(*service_->GetRootNode(), "other");
        service_->GetNodes().ToArray()->Add(Var(copy));
        scene_->AddObserver(observer_.Get());
    }
    static int HowManyListed(const Node& node) {
        int count = node.IsInGlobalList() ? 1 : 0;
        for (const Node* child = node.GetFirstChild(); child; child = child->GetNextSibling())
            count += HowManyListed(*child);
        return count;
    }

    const Counted<BomImpl> design_ = AddBom(*scene_, L"design");
    const Counted<BomImpl> service_ = AddBom(*scene_, L"service", true);
    const Counted<SceneObserver> observer_ = Make<SceneObserver>();
};

TEST_F(BomSwitch, ShowsTheOtherStructureAndKeepsTheFirst) {
    EXPECT_EQ(service_->Activate(), ResultEnum::kSuccess);
    EXPECT_EQ(Shown(), "other");
    EXPECT_EQ(Current(), service_.Get());
    EXPECT_EQ(ShownBy(*design_->GetRootNode()), "a(b c) d");
    EXPECT_EQ(ShownBy(*service_->GetRootNode()), "");
    EXPECT_EQ(a_->GetScene(), nullptr);
}

TEST_F(BomSwitch, BackShowsTheSameNodes) {
    service_->Activate();
    EXPECT_EQ(design_->Activate(), ResultEnum::kSuccess);
    EXPECT_EQ(Shown(), "a(b c) d");
    EXPECT_EQ(scene_->GetFirstChild(), a_);
    EXPECT_EQ(b_->GetScene(), scene_.Get());
}

TEST_F(BomSwitch, KeepsWhatWasChangedMeanwhile) {
    AddNode(*scene_, "e");
    scene_->_RemoveChild(d_, true);
    service_->Activate();
    EXPECT_EQ(NodesOf(*design_), "a(b c) e");
    design_->Activate();
    EXPECT_EQ(Shown(), "a(b c) e");
}

TEST_F(BomSwitch, LeavesNodesThatStopInstancing) {
    d_->SetFlags(NodeFlag::kStopsInstancing);
    service_->Activate();
    EXPECT_EQ(Shown(), "d other");
}

TEST_F(BomSwitch, TakesTheCamerasOfItsViewsAlong) {
    AddCamera(*scene_, "camera", ViewKind::kModel);
    service_->Activate();
    EXPECT_EQ(Shown(), "other");
    design_->Activate();
    EXPECT_EQ(Shown(), "a(b c) d camera");
}

TEST_F(BomSwitch, ToTheCurrentOneIsFineAndSaysNothing) {
    EXPECT_EQ(design_->Activate(), ResultEnum::kSuccess);
    EXPECT_TRUE(observer_->messages.empty());
    EXPECT_TRUE(scene_->GetHostCalls().empty());
}

TEST_F(BomSwitch, FailsWithoutAScene) {
    EXPECT_EQ(ToInt(Make<BomImpl>()->Activate()), -11);
}

TEST_F(BomSwitch, FailsBeforeItIsInitialised) {
    EXPECT_EQ(ToInt(Make<BomImpl>(scene_.Get())->Activate()), -8);
    EXPECT_EQ(Shown(), "a(b c) d");
}

TEST_F(BomSwitch, FailsWithoutACurrentOne) {
    scene_->DeleteParam(Param::kCurrentBom);
    EXPECT_EQ(ToInt(service_->Activate()), -8);
    EXPECT_EQ(Shown(), "a(b c) d");
}

TEST_F(BomSwitch, TellsOfStructureFirstAndOfTheChangeOnceAtTheEnd) {
    service_->Activate();
    std::vector<unsigned> codes;
    for (const Message& message : observer_->messages)
        codes.push_back(message.code);
    EXPECT_EQ(codes, (std::vector<unsigned>{3300, k3::Scene::kChangeEvent}));
    EXPECT_EQ(observer_->messages[0].value, Var(0));
}

TEST_F(BomSwitch, MakesItsHostCallAfterwards) {
    service_->Activate();
    ASSERT_EQ(scene_->GetHostCalls().size(), 1u);
    EXPECT_EQ(scene_->GetHostCalls()[0].first, 10);
    EXPECT_EQ(scene_->GetHostCalls()[0].second, 0);
}

TEST_F(BomSwitch, TellsTheHostWhichNodeIsWorkedOn) {
    scene_->SetCurrentNode(d_);
    service_->Activate();
    ASSERT_EQ(scene_->GetNodeNotices().size(), 1u);
    EXPECT_EQ(scene_->GetNodeNotices()[0].node.Get(), d_);
    EXPECT_EQ(scene_->GetNodeNotices()[0].value.ToInterface(), static_cast<Interface*>(d_));
}

TEST_F(BomSwitch, SaysNothingOfAWorkedOnNodeThatStopsInstancing) {
    d_->SetFlags(NodeFlag::kStopsInstancing);
    scene_->SetCurrentNode(d_);
    service_->Activate();
    EXPECT_TRUE(scene_->GetNodeNotices().empty());
}

TEST_F(BomSwitch, MovesWholeTreesOutOfTheGlobalListAndInto) {
    service_->Activate();
    EXPECT_EQ(HowManyListed(*a_) + HowManyListed(*d_), 0);
    EXPECT_EQ(HowManyListed(*scene_->GetFirstChild()), 1);
    design_->Activate();
    EXPECT_EQ(HowManyListed(*a_) + HowManyListed(*d_), 4);
}

TEST_F(BomSwitch, PutsTheLayersAway) {
    const Counted<InterfaceArray> before(scene_->GetLayers());
    k3::Layer* layer = scene_->CreateLayer(L"l");
    layer->AddNode(b_);
    service_->Activate();
    EXPECT_EQ(scene_->GetLayers()->GetCount(), 0);
    EXPECT_EQ(design_->GetLayers(), before);
    design_->Activate();
    EXPECT_EQ(scene_->GetLayers(), before.Get());
    EXPECT_EQ(layer->GetMembers()->Get(0), static_cast<Interface*>(b_)) << "members are not touched";
}

TEST_F(BomSwitch, LeavesTheViewsToTheScene) {
    AddCamera(*scene_, "detail", ViewKind::kDetail);
    service_->Activate();
    EXPECT_EQ(scene_->GetAllViewports()->GetCount(), 1);
    EXPECT_FALSE(scene_->GetAllViewports()->Get(0) == nullptr);
}

/// The old structure carries its integers after the new one did.
TEST_F(BomSwitch, LeavesTheIntegersOfTheOldStructureInTheScene) {
    design_->SetParamVar(Param::kCarriedA, Var(1));
    service_->SetParamVar(Param::kCarriedA, Var(2));
    service_->SetParamVar(Param::kCarriedB, Var(3));
    service_->Activate();
    EXPECT_EQ(scene_->GetParamVar(Param::kCarriedA), Var(1));
    EXPECT_EQ(scene_->GetParamVar(Param::kCarriedB), Var(0));
}

TEST_F(BomSwitch, ANewStructureWithoutIntegersTakesThoseOfTheScene) {
    scene_->SetParamVar(Param::kCarriedA, Var(9));
    service_->Activate();
    EXPECT_EQ(service_->GetParamVar(Param::kCarriedA), Var(9));
}

TEST_F(BomSwitch, KeepsTheSelectionAndTheFilesOfOthers) {
    const auto selection = PointerArray::Create();
    selection->Add(d_);
    scene_->SetSelectedNodes(selection.Get());
    service_->Activate();
    ASSERT_NE(scene_->GetSelectedNodes(), nullptr);
    EXPECT_EQ(scene_->GetSelectedNodes()->Get(0), static_cast<Interface*>(d_));
}

TEST_F(BomSwitch, IsTakenBackExactlyByUndo) {
    scene_->EnableUndo(true);
    k3::UndoRecorder* undo = scene_->GetUndoRecorder(1);
    const Counted<InterfaceArray> layers(scene_->GetLayers());
    undo->BeginItem(L"switch");
    service_->Activate();
    undo->EndItem(L"switch");
    ASSERT_TRUE(undo->Undo());
    EXPECT_EQ(Shown(), "a(b c) d");
    EXPECT_EQ(ShownBy(*service_->GetRootNode()), "other");
    EXPECT_EQ(Current(), design_.Get());
    EXPECT_EQ(HowManyListed(*a_), 3);
    EXPECT_EQ(scene_->GetLayers(), layers.Get());
    ASSERT_TRUE(undo->Redo());
    EXPECT_EQ(Shown(), "other");
    EXPECT_EQ(Current(), service_.Get());
    EXPECT_EQ(HowManyListed(*a_), 0);
}

TEST_F(BomSwitch, AddsNothingToUndoByItself) {
    scene_->EnableUndo(true);
    service_->Activate();
    EXPECT_FALSE(scene_->GetUndoRecorder(1)->Undo());
    EXPECT_EQ(Shown(), "other");
}

using BomUpdate = BomSwitch;

TEST_F(BomUpdate, ListsTheNodesAnew) {
    AddNode(*scene_, "e");
    EXPECT_EQ(NodesOf(*design_), "a(b c) d");
    EXPECT_EQ(design_->Update(), ResultEnum::kSuccess);
    EXPECT_EQ(NodesOf(*design_), "a(b c) d e");
    EXPECT_EQ(observer_->BomEvents(), 1);
}

TEST_F(BomUpdate, RefillsTheSharedList) {
    const Var nodes = design_->GetNodes();
    AddNode(*scene_, "e");
    design_->Update();
    EXPECT_EQ(nodes.size(), 3);
}

TEST_F(BomUpdate, PutsRightWhatOthersWroteIntoTheList) {
    const Var list = design_->GetNodes();
    VarArray& nodes = *list.ToArray();
    k3::Node* const first = scene_->GetFirstChild();
    nodes.Set(0, Var(first, 0));
    nodes.Set(1, Var(L"text"));
    nodes.Add(Var(first));
    design_->Update();
    EXPECT_EQ(NodesOf(*design_), "a(b c) d");
    EXPECT_FALSE(nodes.Get(0).IsWeak());
}

TEST_F(BomUpdate, LeavesViewsAlone) {
    const k3::Viewport* viewport = AddCamera(*scene_, "model", ViewKind::kModel);
    design_->Update();
    EXPECT_EQ(viewport->GetParamObject(Param::kViewportOwnBom), nullptr);
}

TEST_F(BomUpdate, CarriesTheIntegers) {
    design_->SetParamVar(Param::kCarriedB, Var(5));
    design_->Update();
    EXPECT_EQ(scene_->GetParamVar(Param::kCarriedB), Var(5));
}

TEST_F(BomUpdate, FailsForOneThatIsNotCurrent) {
    EXPECT_EQ(ToInt(service_->Update()), -8);
    EXPECT_EQ(NodesOf(*service_), "other");
    EXPECT_EQ(observer_->BomEvents(), 0);
}

TEST_F(BomUpdate, FailsBeforeItIsInitialisedAndWithoutAScene) {
    EXPECT_EQ(ToInt(Make<BomImpl>(scene_.Get())->Update()), -8);
    EXPECT_EQ(ToInt(Make<BomImpl>()->Update()), -11);
}

}  // namespace
}  // namespace qn::test
