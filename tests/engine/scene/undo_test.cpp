#include "tests/engine/scene/undo_fixture.h"

namespace qn::k3 {
namespace {

TEST_F(Undo, IsOffUnlessSwitchedOn) {
    EXPECT_EQ(Make<Scene>()->GetUndoRecorder(1), nullptr);
    scene_->EnableUndo(false);
    EXPECT_EQ(scene_->GetUndoRecorder(1), nullptr);
}

TEST_F(Undo, HasNothingToTakeBackAtFirst) {
    EXPECT_FALSE(undo_->Undo());
    EXPECT_FALSE(undo_->Redo());
}

TEST_F(Undo, AnItemWithoutRecordsIsNone) {
    undo_->BeginItem(L"x");
    undo_->EndItem(L"x");
    EXPECT_FALSE(undo_->Undo());
}

TEST_F(Undo, RecordsOutsideOfAnItemDoNothing) {
    undo_->RecordName(a_, 0);
    a_->SetName(L"x");
    undo_->EndItem(nullptr);
    EXPECT_FALSE(undo_->Undo());
    EXPECT_EQ(a_->GetName(), String(L"x"));
}

TEST_F(Undo, IsRefusedInsideAnItem) {
    undo_->BeginItem(L"x");
    EXPECT_FALSE(undo_->Undo());
    undo_->EndItem(nullptr);
}

TEST_F(Undo, ItemsNest) {
    undo_->BeginItem(L"outer");
    undo_->BeginItem(L"inner");
    scene_->DeleteNode(0, e_, 0);
    undo_->EndItem(nullptr);
    scene_->DeleteNode(0, d_, 0);
    undo_->EndItem(nullptr);
    EXPECT_TRUE(undo_->Undo());
    EXPECT_EQ(TreeText(*scene_), "s(a(b(c) d) e)");
    EXPECT_FALSE(undo_->Undo());
}

TEST_F(Undo, ItemsAreTakenBackInReverseOrder) {
    for (Node* node : {e_, d_, b_}) {
        undo_->BeginItem(L"");
        scene_->DeleteNode(0, node, 0);
        undo_->EndItem(nullptr);
    }
    EXPECT_EQ(TreeText(*scene_), "s(a)");
    undo_->Undo();
    EXPECT_EQ(TreeText(*scene_), "s(a(b(c)))");
    undo_->Undo();
    undo_->Undo();
    EXPECT_EQ(TreeText(*scene_), "s(a(b(c) d) e)");
    EXPECT_FALSE(undo_->Undo());
    undo_->Redo();
    undo_->Redo();
    undo_->Redo();
    EXPECT_EQ(TreeText(*scene_), "s(a)");
    EXPECT_FALSE(undo_->Redo());
}

TEST_F(Undo, TheTextAtTheEndIsTheItemsText) {
    const auto item = [&](const wchar_t* begin, const wchar_t* end) {
        undo_->BeginItem(begin);
        undo_->RecordName(a_, 0);
        undo_->EndItem(end);
    };
    item(L"one", nullptr);
    item(L"two", L"");
    item(L"three", L"four");
    EXPECT_EQ(static_cast<SceneUndo*>(undo_)->GetUndoTexts(), (std::vector<String>{L"one", L"two", L"four"}));
}

TEST_F(Undo, ANewItemEndsRedo) {
    undo_->BeginItem(L"");
    scene_->DeleteNode(0, e_, 0);
    undo_->EndItem(nullptr);
    undo_->Undo();
    undo_->BeginItem(L"");
    scene_->DeleteNode(0, d_, 0);
    undo_->EndItem(nullptr);
    EXPECT_FALSE(undo_->Redo());
}

TEST_F(Undo, TheSceneItselfCanBeRecordedWithoutHoldingItself) {
    undo_->BeginItem(L"");
    undo_->RecordName(scene_.Get(), 0);
    undo_->RecordParam(scene_.Get(), 0x100, Var());
    scene_->SetName(L"x");
    scene_->SetParamVar(0x100, Var(1));
    undo_->EndItem(nullptr);
    EXPECT_EQ(scene_->GetRefCount(), 1);
    undo_->Undo();
    EXPECT_EQ(scene_->GetName(), String(L"s"));
    EXPECT_TRUE(scene_->GetParamVar(0x100).IsEmpty());
}

TEST_F(Undo, SendsOneChangeEvent) {
    undo_->BeginItem(L"");
    scene_->DeleteNode(0, a_, 0);
    scene_->DeleteNode(0, e_, 0);
    undo_->EndItem(nullptr);
    const unsigned before = scene_->GetChangeEventCount();
    undo_->Undo();
    EXPECT_EQ(scene_->GetChangeEventCount(), before + 1);
}

}  // namespace
}  // namespace qn::k3
