#include "frame/host/view_updater.h"
#include "tests/engine/scene/scene_tests.h"

namespace qn::k3 {
namespace {

using test::AddNode;

TEST(Scene, MakesTheLayerArrayWhenAsked) {
    const auto scene = Make<Scene>();
    ASSERT_NE(scene->GetLayers(), nullptr);
    EXPECT_EQ(scene->GetLayers()->GetCount(), 0);
    EXPECT_TRUE(scene->GetLayers()->IsStrong());
}

TEST(Scene, HasNoViewportArrayBeforeTheFirstViewport) {
    const auto scene = Make<Scene>();
    EXPECT_EQ(scene->GetViewports(), nullptr);
    ASSERT_TRUE(scene->GetAllViewports());
    EXPECT_EQ(scene->GetAllViewports()->GetCount(), 0);
    Viewport* view = scene->CreateViewport(L"v");
    EXPECT_EQ(view->GetName(), String(L"v"));
    EXPECT_EQ(view->GetScene(), scene.Get());
    EXPECT_EQ(scene->GetViewports()->Get(0), view);
    EXPECT_EQ(scene->GetAllViewports()->Get(0), view);
}

TEST(Scene, GivesItsViewportsAsAnArrayOfItsOwn) {
    const auto scene = Make<Scene>();
    scene->CreateViewport(L"v");
    scene->GetAllViewports()->Clear();
    EXPECT_EQ(scene->GetViewports()->GetCount(), 1);
}

TEST(Scene, SharesALayerArrayThatWasSet) {
    const auto scene = Make<Scene>();
    const auto layers = InterfaceArray::CreateStrong();
    scene->SetLayers(layers.Get());
    EXPECT_EQ(scene->GetLayers(), layers.Get());
    scene->SetLayers(nullptr);
    EXPECT_NE(scene->GetLayers(), nullptr);
}

TEST(Scene, DeletesViewportsLayersAndEntities) {
    const auto scene = Make<Scene>();
    const Counted<Viewport> view(scene->CreateViewport(L"v"));
    const Counted<Layer> layer(scene->CreateLayer(L"l"));
    const auto entity = Make<Entity>(scene.Get(), kTypeDependable);
    scene->GetEntities()->Add(entity.Get());
    scene->DeleteObject(view.Get(), 0);
    scene->DeleteObject(layer.Get(), 1);
    scene->DeleteObject(entity.Get(), 0);
    scene->DeleteObject(nullptr, 0);
    EXPECT_EQ(scene->GetViewports()->GetCount(), 0);
    EXPECT_EQ(scene->GetLayers()->GetCount(), 0);
    EXPECT_EQ(scene->GetEntities()->GetCount(), 0);
    EXPECT_EQ(view->GetRefCount(), 1);
}

TEST(Scene, DeletesNodesAnywhere) {
    const auto scene = Make<Scene>();
    Node* a = AddNode(*scene, L"a");
    AddNode(*a, L"b");
    scene->DeleteNode(0, a->GetFirstChild(), 0);
    EXPECT_EQ(a->GetChildCount(), 0);
    scene->DeleteNode(0, nullptr, 0);
    scene->DeleteNode(0, scene.Get(), 0);
    EXPECT_EQ(scene->GetChildCount(), 1);
}

TEST(Scene, SendsAnEventForEachChange) {
    const auto scene = Make<Scene>();
    const unsigned before = scene->GetChangeEventCount();
    Node* node = scene->CreateEmptyNode(0, 0, 0);
    const unsigned added = scene->GetChangeEventCount();
    EXPECT_GT(added, before);
    node->SetName(L"x");
    EXPECT_EQ(scene->GetChangeEventCount(), added + 1);
}

TEST(Scene, HoldsChangeEventsBackUntilTheOutermostEnd) {
    const auto scene = Make<Scene>();
    Node* node = scene->CreateEmptyNode(0, 0, 0);
    const unsigned before = scene->GetChangeEventCount();
    scene->BeginUpdate();
    scene->BeginUpdate();
    node->SetName(L"x");
    node->SetFlags(1);
    scene->EndUpdate();
    EXPECT_EQ(scene->GetChangeEventCount(), before);
    scene->EndUpdate();
    EXPECT_EQ(scene->GetChangeEventCount(), before + 1);
}

TEST(Scene, AnUpdateWithoutChangeSendsNothing) {
    const auto scene = Make<Scene>();
    scene->BeginUpdate();
    scene->EndUpdate();
    scene->EndUpdate();
    EXPECT_EQ(scene->GetChangeEventCount(), 0u);
}

class Observer final : public ReferenceTarget {
public:
    ResultEnum OnNotify(const Message& message) override {
        codes.push_back(message.code);
        values.push_back(message.value);
        return ResultEnum::kSuccess;
    }
    using ReferenceTarget::OnNotify;
    std::vector<unsigned> codes;
    std::vector<Var> values;
};

TEST(Scene, NotificationsReachObserversAtOnce) {
    const auto scene = Make<Scene>();
    const auto observer = Make<Observer>();
    scene->AddObserver(observer.Get());
    scene->BeginUpdate();
    scene->Notify(3300, Var(0));
    EXPECT_EQ(observer->codes, (std::vector<unsigned>{3300}));
    EXPECT_EQ(observer->values[0], Var(0));
    scene->SetParamVar(0x100, Var(1));
    scene->EndUpdate();
    EXPECT_EQ(observer->codes, (std::vector<unsigned>{3300, Scene::kChangeEvent}));
    scene->RemoveObserver(observer.Get());
    scene->Notify(3300, Var(0));
    EXPECT_EQ(observer->codes.size(), 2u);
}

TEST(Scene, ADeadObserverHearsNothing) {
    const auto scene = Make<Scene>();
    auto observer = Make<Observer>();
    scene->AddObserver(observer.Get());
    observer.Reset();
    scene->Notify(3300, Var(0));
}

TEST(Scene, RecordsHostCalls) {
    const auto scene = Make<Scene>();
    scene->HostCall(10, 0);
    ASSERT_EQ(scene->GetHostCalls().size(), 1u);
    EXPECT_EQ(scene->GetHostCalls()[0].first, 10);
    Node* node = AddNode(*scene, L"a");
    EXPECT_EQ(scene->QueryCurrentNode(), nullptr);
    scene->SetCurrentNode(node);
    EXPECT_EQ(scene->QueryCurrentNode(), node);
    Cast<SceneImpl>(scene.Get())->NotifyNode(node, Var(1));
    ASSERT_EQ(scene->GetNodeNotices().size(), 1u);
    EXPECT_EQ(scene->GetNodeNotices()[0].node.Get(), node);
}

TEST(Scene, RecordsRequestsForPictures) {
    const auto scene = Make<Scene>();
    views::ViewUpdater::UpdateSceneModelViewThumbnails(scene.Get());
    views::ViewUpdater::UpdateSceneStepViewThumbnails(scene.Get());
    views::ViewUpdater::UpdateSceneDetailViewThumbnails(scene.Get());
    views::ViewUpdater::UpdateSceneDetailViewThumbnails(nullptr);
    ASSERT_EQ(scene->GetHostCalls().size(), 3u);
    EXPECT_EQ(scene->GetHostCalls()[2].first, 3);
}

TEST(Scene, DetachingTakesOutOfTheSelection) {
    const auto scene = Make<Scene>();
    EXPECT_EQ(scene->GetSelectedNodes(), nullptr);
    Node* a = AddNode(*scene, L"a");
    Node* b = AddNode(*scene, L"b");
    const auto selection = PointerArray::Create();
    selection->Add(a);
    selection->Add(b);
    scene->SetSelectedNodes(selection.Get());
    scene->_RemoveChild(a, true);
    ASSERT_EQ(scene->GetSelectedNodes()->GetCount(), 1);
    EXPECT_EQ(scene->GetSelectedNodes()->Get(0), b);
    scene->SetSelectedNodes(nullptr);
    EXPECT_EQ(scene->GetSelectedNodes(), nullptr);
}

TEST(Scene, BomHelperReadsTheParameters) {
    const auto scene = Make<Scene>();
    const BomHelper helper(scene.Get());
    EXPECT_EQ(helper.GetCurrentBom(), nullptr);
    EXPECT_EQ(helper.GetBoms(), nullptr);
    const auto bom = Make<Entity>(scene.Get(), kTypeBom);
    const auto boms = VarArray::Create();
    scene->SetParamVar(Param::kCurrentBom, Var(bom));
    scene->SetParamVar(Param::kBoms, Var(boms));
    EXPECT_EQ(helper.GetCurrentBom(), bom.Get());
    EXPECT_EQ(helper.GetBoms(), boms.Get());
    EXPECT_EQ(BomHelper(nullptr).GetBoms(), nullptr);
}

TEST(Scene, NodesOutliveIt) {
    auto scene = Make<Scene>();
    const Counted<Node> node(AddNode(*scene, L"a"));
    Node* below = AddNode(*node, L"b");
    scene->EnableUndo(true);
    scene.Reset();
    EXPECT_EQ(node->GetScene(), nullptr);
    EXPECT_EQ(below->GetScene(), nullptr);
    EXPECT_EQ(node->GetParent(), nullptr);
    node->SetName(L"x");
}

}  // namespace
}  // namespace qn::k3
