#include "tests/engine/scene/undo_fixture.h"

namespace qn::k3 {
namespace {

TEST_F(Undo, LayersAndSelectionComeBack) {
    Layer* layer = scene_->CreateLayer(L"l");
    layer->AddNode(e_);
    layer->AddNode(b_);
    layer->AddNode(a_);
    const auto selection = PointerArray::Create();
    selection->Add(b_);
    scene_->SetSelectedNodes(selection.Get());
    undo_->BeginItem(L"");
    scene_->_RemoveChild(a_, true);
    undo_->EndItem(nullptr);
    EXPECT_EQ(layer->GetMembers()->GetCount(), 1);
    EXPECT_EQ(scene_->GetSelectedNodes()->GetCount(), 0);
    undo_->Undo();
    ASSERT_EQ(layer->GetMembers()->GetCount(), 3);
    EXPECT_EQ(layer->GetMembers()->Get(1), b_);
    ASSERT_EQ(scene_->GetSelectedNodes()->GetCount(), 1);
    EXPECT_EQ(scene_->GetSelectedNodes()->Get(0), b_);
    undo_->Redo();
    EXPECT_EQ(layer->GetMembers()->GetCount(), 1);
    EXPECT_EQ(scene_->GetSelectedNodes()->GetCount(), 0);
}

TEST_F(Undo, LayerEditsAreTakenBack) {
    Layer* layer = scene_->CreateLayer(L"l");
    layer->AddNode(a_);
    undo_->BeginItem(L"");
    layer->DeleteAll();
    layer->AddNode(e_);
    undo_->EndItem(nullptr);
    undo_->Undo();
    ASSERT_EQ(layer->GetMembers()->GetCount(), 1);
    EXPECT_EQ(layer->GetMembers()->Get(0), a_);
}

TEST_F(Undo, ADeletedViewportComesBackToItsPlace) {
    const Weak<Viewport> first(scene_->CreateViewport(L"1"));
    scene_->CreateViewport(L"2");
    undo_->BeginItem(L"");
    scene_->DeleteObject(first.Get(), 0);
    scene_->CreateLayer(L"l");
    undo_->EndItem(nullptr);
    undo_->Undo();
    ASSERT_EQ(scene_->GetViewports()->GetCount(), 2);
    EXPECT_EQ(scene_->GetViewports()->Get(0), first.Get());
    EXPECT_EQ(scene_->GetLayers()->GetCount(), 0);
    undo_->Redo();
    EXPECT_EQ(scene_->GetViewports()->GetCount(), 1);
    EXPECT_EQ(scene_->GetLayers()->GetCount(), 1);
}

}  // namespace
}  // namespace qn::k3
