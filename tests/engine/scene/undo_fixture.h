#pragma once

#include "engine/scene/undo_recorder.h"
#include "tests/engine/scene/scene_tests.h"

namespace qn::k3 {

using test::AddNode;
using test::ChildNames;
using test::Names;
using test::TreeText;

/// A scene "(a(b(c) d) e)" with a recorder.
class Undo : public ::testing::Test {
protected:
    void SetUp() override {
        scene_->SetName(L"s");
        a_ = AddNode(*scene_, L"a");
        b_ = AddNode(*a_, L"b");
        AddNode(*b_, L"c");
        d_ = AddNode(*a_, L"d");
        e_ = AddNode(*scene_, L"e");
        scene_->EnableUndo(true);
        undo_ = scene_->GetUndoRecorder(1);
    }

    /// Runs `change` in one item, then goes back and forth and back, and compares the tree each time.
    template <class Change>
    void ExpectExact(Change&& change) {
        const std::string before = TreeText(*scene_);
        undo_->BeginItem(L"change");
        change();
        undo_->EndItem(L"change");
        const std::string after = TreeText(*scene_);
        EXPECT_TRUE(undo_->Undo());
        EXPECT_EQ(TreeText(*scene_), before);
        EXPECT_TRUE(undo_->Redo());
        EXPECT_EQ(TreeText(*scene_), after);
        EXPECT_TRUE(undo_->Undo());
        EXPECT_EQ(TreeText(*scene_), before);
        CheckChains(*scene_);
    }

    static void CheckChains(const Node& root) {
        ChildNames(root);
        for (Node* child = root.GetFirstChild(); child; child = child->GetNextSibling())
            CheckChains(*child);
    }

    const Counted<Scene> scene_ = Make<Scene>();
    Node* a_ = nullptr;
    Node* b_ = nullptr;
    Node* d_ = nullptr;
    Node* e_ = nullptr;
    UndoRecorder* undo_ = nullptr;
};

}  // namespace qn::k3
