#include "services/layer_check.h"
#include "tests/services/services_support.h"

namespace qn::test {
namespace {

/// A scene with two nodes, a layer that lists both, and a view with a layer of its own.
class LayerValidation : public HierarchyCheck {
protected:
    LayerValidation() {
        layer->AddNode(a);
        layer->AddNode(b);
        view->SetLayer(ofView.Get());
        ofView->SetName(L"detail");
        ofView->AddNode(a);
    }
    bool ValidateLayers() { return checker->ValidateLayers(scene.Get(), log.Get()); }
    bool RepairAll() { return checker->RepairLayersAndViewports(scene.Get(), log.Get()); }
    /// A node that was never in the scene.
    k3::Node* Stranger() {
        strangers.push_back(Make<k3::Node>());
        return strangers.back().Get();
    }
    Interface* Thing() {
        things.push_back(Make<k3::Object3D>());
        return things.back().Get();
    }
    static std::vector<Interface*> Members(const k3::Layer& of) {
        std::vector<Interface*> members;
        for (int i = 0; i < of.GetMembers()->GetCount(); ++i)
            members.push_back(of.GetMembers()->Get(i));
        return members;
    }

    k3::Node* a = scene->CreateEmptyNode(0, 0, 0);
    k3::Node* b = a->CreateChildNode(0, 0, 0);
    k3::Layer* layer = scene->CreateLayer(L"shown");
    Counted<k3::Layer> ofView = Make<k3::Layer>(scene.Get());
    k3::Viewport* view = scene->CreateViewport(L"front");
    std::vector<Counted<k3::Node>> strangers;
    std::vector<Counted<k3::Object3D>> things;
};

TEST_F(LayerValidation, AcceptsMembersAnywhereInTheScene) {
    EXPECT_TRUE(ValidateLayers());
    EXPECT_EQ(log->Texts(), Messages{});
    EXPECT_TRUE(RepairAll());
}

TEST_F(LayerValidation, AcceptsNoScene) {
    EXPECT_TRUE(checker->ValidateLayers(nullptr, log.Get()));
    EXPECT_TRUE(checker->RepairLayersAndViewports(nullptr, log.Get()));
    checker->RepairLayers(nullptr, log.Get());
}

TEST_F(LayerValidation, CountsNodesThatLeftTheScene) {
    const Counted<k3::Node> left(b);
    a->_RemoveChild(b, false);
    layer->AddNode(b);  // removal took it off the list
    layer->AddNode(Stranger());
    view->SetLayer(nullptr);
    EXPECT_FALSE(ValidateLayers());
    EXPECT_EQ(log->Texts(), Messages{"2 orphaned nodes detected in layer shown"});
    EXPECT_EQ(log->Levels(), std::vector<int>{2});
}

TEST_F(LayerValidation, CountsMembersThatAreNoNodesApart) {
    layer->AddNode(Stranger());
    layer->GetMembers()->Add(Thing());
    layer->GetMembers()->Add(Thing());
    view->SetLayer(nullptr);
    EXPECT_FALSE(ValidateLayers());
    EXPECT_EQ(log->Texts(), (Messages{"1 orphaned nodes detected in layer shown",
                                      "2 invalid nodes detected in layer shown"}));
}

TEST_F(LayerValidation, TakesTheSceneItselfForAStrayNode) {
    layer->AddNode(scene.Get());
    view->SetLayer(nullptr);
    EXPECT_FALSE(ValidateLayers());
    EXPECT_EQ(log->Texts(), Messages{"1 orphaned nodes detected in layer shown"});
}

TEST_F(LayerValidation, PassesOverDeadMembers) {
    {
        const auto brief = Make<k3::Node>();
        layer->AddNode(brief.Get());
    }
    EXPECT_TRUE(ValidateLayers());
}

TEST_F(LayerValidation, NamesALayerByItsDisplayText) {
    layer->SetDisplayName(L"visible parts");
    layer->AddNode(Stranger());
    ValidateLayers();
    EXPECT_EQ(log->Texts(), Messages{"1 orphaned nodes detected in layer visible parts"});
}

TEST_F(LayerValidation, CutsReportedNamesAt512Characters) {
    layer->SetName(std::wstring(600, L'x'));
    layer->AddNode(Stranger());
    ValidateLayers();
    EXPECT_EQ(log->Texts(), Messages{"1 orphaned nodes detected in layer " + std::string(512, 'x')});
}

TEST_F(LayerValidation, StopsAtTheFirstBrokenLayer) {
    layer->AddNode(Stranger());
    scene->CreateLayer(L"second")->AddNode(Stranger());
    ValidateLayers();
    EXPECT_EQ(log->Texts(), Messages{"1 orphaned nodes detected in layer shown"});
}

TEST_F(LayerValidation, AnswersAsTheLastLayerLookedAt) {
    layer->AddNode(Stranger());
    EXPECT_TRUE(ValidateLayers()) << "the sound layer of the view comes last";
    EXPECT_EQ(log->Texts().size(), 1u);
    view->SetLayer(nullptr);
    EXPECT_FALSE(ValidateLayers());
}

TEST_F(LayerValidation, LooksAtViewsAfterABrokenLayerAndStopsAtTheFirstBrokenOne) {
    layer->AddNode(Stranger());
    ofView->AddNode(Stranger());
    const auto third = Make<k3::Layer>(scene.Get());
    scene->CreateViewport(L"back")->SetLayer(third.Get());
    EXPECT_FALSE(ValidateLayers());
    EXPECT_EQ(log->Texts(), (Messages{"1 orphaned nodes detected in layer shown",
                                      "1 orphaned nodes detected in layer detail"}));
}

TEST_F(LayerValidation, PassesOverEntriesThatAreNoLayersAndViewsWithout) {
    scene->GetLayers()->Add(Thing());
    scene->CreateViewport(L"back");
    EXPECT_TRUE(ValidateLayers());
    EXPECT_TRUE(RepairAll());
}

TEST_F(LayerValidation, ScansNothingWithoutALog) {
    layer->AddNode(Stranger());
    ofView->AddNode(Stranger());
    EXPECT_TRUE(checker->ValidateLayers(scene.Get(), nullptr));
}

TEST_F(LayerValidation, KnowsTheNodesOfStructuresThatAreNotShown) {
    k3::Node* const stored = Stranger();
    k3::Node* const below = stored->CreateChildNode(0, 0, 0);
    layer->AddNode(below);
    view->SetLayer(nullptr);
    EXPECT_FALSE(ValidateLayers());
    const auto current = Make<ListedBom>();
    const auto idle = Make<ListedBom>(std::initializer_list<k3::Node*>{stored});
    SetBoms({current.Get(), idle.Get()}, current.Get());
    EXPECT_TRUE(ValidateLayers());
}

TEST_F(LayerValidation, RepairRemovesBothKindsAndKeepsTheRestInOrder) {
    layer->GetMembers()->Add(Thing());
    layer->AddNode(Stranger());
    layer->GetMembers()->Add(Thing());
    layer->AddNode(Stranger());
    k3::Node* const c = scene->CreateEmptyNode(0, 0, 0);
    layer->AddNode(c);
    EXPECT_FALSE(RepairAll());
    EXPECT_EQ(Members(*layer), (std::vector<Interface*>{a, b, c}));
    EXPECT_EQ(log->Texts(), (Messages{"Removed 2 orphaned nodes from layer shown",
                                      "Removed 2 invalid nodes from layer shown"}));
    EXPECT_TRUE(RepairAll());
    EXPECT_TRUE(ValidateLayers());
}

TEST_F(LayerValidation, RepairTellsOfARemovalBeforeIt) {
    layer->AddNode(Stranger());
    layer->GetMembers()->Add(Thing());
    std::vector<std::size_t> members;
    log->SetMessageFunction([&](const auto&) { members.push_back(Members(*layer).size()); });
    EXPECT_FALSE(RepairAll());
    EXPECT_EQ(members, (std::vector<std::size_t>{4, 4}));
    EXPECT_EQ(Members(*layer).size(), 2u);
}

TEST_F(LayerValidation, RepairRemovesAnOrphanAsOftenAsItIsListed) {
    k3::Node* const stray = Stranger();
    layer->AddNode(stray);
    layer->GetMembers()->Add(stray);
    EXPECT_FALSE(RepairAll());
    EXPECT_EQ(log->Texts(), Messages{"Removed 2 orphaned nodes from layer shown"});
    EXPECT_EQ(Members(*layer), (std::vector<Interface*>{a, b}));
    EXPECT_TRUE(RepairAll());
}

TEST_F(LayerValidation, RepairedLayersTakeMembersAsBefore) {
    layer->GetMembers()->Add(Thing());
    RepairAll();
    k3::Node* const c = scene->CreateEmptyNode(0, 0, 0);
    layer->AddNode(c);
    layer->AddNode(b);
    EXPECT_EQ(Members(*layer), (std::vector<Interface*>{a, b, c}));
    layer->RemoveNode(a);
    EXPECT_EQ(Members(*layer), (std::vector<Interface*>{b, c}));
}

TEST_F(LayerValidation, RepairCleansLayersAndViewsWithoutEarlyExit) {
    layer->AddNode(Stranger());
    scene->CreateLayer(L"second")->AddNode(Stranger());
    ofView->AddNode(Stranger());
    EXPECT_FALSE(RepairAll());
    EXPECT_EQ(log->Texts(), (Messages{"Removed 1 orphaned nodes from layer shown",
                                      "Removed 1 orphaned nodes from layer second",
                                      "Removed 1 orphaned nodes from layer detail"}));
    EXPECT_EQ(Members(*ofView), std::vector<Interface*>{a});
}

TEST_F(LayerValidation, RepairWithoutALogRemovesNothing) {
    layer->AddNode(Stranger());
    EXPECT_TRUE(checker->RepairLayersAndViewports(scene.Get(), nullptr));
    checker->RepairLayers(scene.Get(), nullptr);
    EXPECT_EQ(Members(*layer).size(), 3u);
}

TEST_F(LayerValidation, TheShorterRepairLeavesLayersOfViewsAlone) {
    layer->AddNode(Stranger());
    ofView->AddNode(Stranger());
    checker->RepairLayers(scene.Get(), log.Get());
    EXPECT_EQ(Members(*layer).size(), 2u);
    EXPECT_EQ(Members(*ofView).size(), 2u);
}

TEST_F(LayerValidation, LeavesALayerWithoutMembersWithoutAnArray) {
    k3::Layer* const empty = scene->CreateLayer(L"empty");
    EXPECT_TRUE(RepairAll());
    EXPECT_TRUE(ValidateLayers());
    EXPECT_EQ(empty->GetMembers(), nullptr);
}

TEST_F(LayerValidation, MakesTheLayerArrayButNoViewportArray) {
    const auto bare = Make<k3::Scene>();
    EXPECT_TRUE(checker->ValidateLayers(bare.Get(), log.Get()));
    EXPECT_TRUE(checker->RepairLayersAndViewports(bare.Get(), log.Get()));
    EXPECT_EQ(bare->GetViewports(), nullptr);
}

TEST_F(LayerValidation, TakesLongListsInLinearTime) {
    for (int i = 0; i < 50000; ++i) {
        layer->GetMembers()->Add(a);  // the same once more, which is no fault
        layer->GetMembers()->Add(ofView.Get());
    }
    EXPECT_FALSE(RepairAll());
    EXPECT_EQ(Members(*layer).size(), 50002u);
}

}  // namespace
}  // namespace qn::test
