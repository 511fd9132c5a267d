#include "tests/engine/scene/undo_fixture.h"

namespace qn::k3 {
namespace {

TEST_F(Undo, ADeletedNodeComesBackToItsPlace) {
    ExpectExact([&] { scene_->DeleteNode(0, a_, 0); });
}

TEST_F(Undo, ADeletedNodeIsTheSameObjectAgain) {
    const Weak<Node> node(b_);
    undo_->BeginItem(L"");
    scene_->DeleteNode(0, b_, 0);
    undo_->EndItem(nullptr);
    ASSERT_TRUE(node);
    EXPECT_EQ(b_->GetScene(), nullptr);
    undo_->Undo();
    EXPECT_EQ(a_->GetFirstChild(), b_);
    EXPECT_EQ(b_->GetFirstChild()->GetScene(), scene_.Get());
}

TEST_F(Undo, DeletionsOfNeighboursAndOfParentsComeBack) {
    ExpectExact([&] {
        scene_->DeleteNode(0, d_, 0);
        scene_->DeleteNode(0, b_, 0);
        scene_->DeleteNode(0, a_, 0);
        scene_->DeleteNode(0, e_, 0);
    });
}

TEST_F(Undo, ANodeAttachedAndRecordedIsTakenOut) {
    ExpectExact([&] {
        const auto copy = CountedCast<Node>(b_->Clone(0));
        copy->AttachTo(a_);
        undo_->RecordNodeAdded(copy.Get(), 0);
    });
}

TEST_F(Undo, ANodeAddedBeforeTheItemIsTakenOutWhenRecordedAsAdded) {
    AddNode(*a_, L"late");
    undo_->BeginItem(L"");
    undo_->RecordNodeAdded(a_->GetLastChild(), 0);
    undo_->EndItem(nullptr);
    undo_->Undo();
    EXPECT_EQ(ChildNames(*a_), (Names{"b", "d"}));
    undo_->Redo();
    EXPECT_EQ(ChildNames(*a_), (Names{"b", "d", "late"}));
}

TEST_F(Undo, ANodeRecordedAsAddedBeforeItIsAttachedIsTakenOut) {
    ExpectExact([&] {
        const auto node = Make<Node>();
        undo_->RecordNodeAdded(node.Get(), 0);
        node->AttachTo(b_);
    });
}

TEST_F(Undo, AMovedNodeGoesBack) {
    ExpectExact([&] { e_->AttachTo(b_); });
}

TEST_F(Undo, NodesThatChangedPlacesGoBack) {
    ExpectExact([&] {
        a_->AttachTo(e_);
        b_->AttachTo(scene_.Get());
        e_->AttachTo(b_);
    });
}

TEST_F(Undo, ANodeTakenOutOfTheSceneGoesBack) {
    const auto root = Make<Node>();
    undo_->BeginItem(L"");
    a_->AttachTo(root.Get());
    undo_->EndItem(nullptr);
    undo_->Undo();
    EXPECT_EQ(TreeText(*scene_), "s(a(b(c) d) e)");
    EXPECT_EQ(root->GetChildCount(), 0);
    undo_->Redo();
    EXPECT_EQ(TreeText(*scene_), "s(e)");
    EXPECT_EQ(a_->GetParent(), root.Get());
}

}  // namespace
}  // namespace qn::k3
