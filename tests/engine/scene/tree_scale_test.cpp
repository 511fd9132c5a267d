#include "tests/engine/scene/scene_tests.h"

namespace qn::k3 {
namespace {

constexpr int kWide = 100'000;
constexpr int kDeep = 200'000;

void AddMany(Node& parent, int count) {
    for (int i = 0; i < count; ++i)
        parent.CreateChildNode(0, 0, 0);
}

Node* AddChain(Node& top, int depth) {
    Node* node = &top;
    for (int i = 0; i < depth; ++i)
        node = node->CreateChildNode(0, 0, 0);
    return node;
}

// Each of these would take minutes, or the whole stack, if it were quadratic or recursive.

TEST(TreeScale, RemovingTheFirstChildUntilNoneIsLeft) {
    const auto scene = Make<Scene>();
    AddMany(*scene, kWide);
    while (Node* child = scene->GetFirstChild())
        scene->_RemoveChild(child, true);
    EXPECT_EQ(scene->GetChildCount(), 0);
}

TEST(TreeScale, RemovingTheFirstChildByIndexUntilNoneIsLeft) {
    const auto scene = Make<Scene>();
    AddMany(*scene, kWide);
    while (scene->GetChildCount() > 3) {
        scene->GetChildAt(2);
        scene->_RemoveChild(scene->GetChildAt(0), true);
    }
    EXPECT_EQ(scene->GetChildCount(), 3);
}

TEST(TreeScale, RemovingEverySecondChildByIndex) {
    const auto scene = Make<Scene>();
    AddMany(*scene, kWide);
    for (int i = 0; i < scene->GetChildCount(); ++i)
        scene->_RemoveChild(scene->GetChildAt(i), true);
    EXPECT_EQ(scene->GetChildCount(), kWide / 2);
}

TEST(TreeScale, AChainIsBuiltAskedClonedAndDestroyed) {
    const auto scene = Make<Scene>();
    Node* deepest = AddChain(*scene, kDeep);
    EXPECT_EQ(deepest->GetScene(), scene.Get());
    EXPECT_TRUE(deepest->GetWorldMatrix().IsIdentity(0.0));
    const auto copy = CountedCast<Node>(scene->GetFirstChild()->Clone(1));
    int depth = 0;
    for (Node* node = copy.Get(); node; node = node->GetFirstChild())
        ++depth;
    EXPECT_EQ(depth, kDeep);
}

TEST(TreeScale, ARemovedChainLosesItsScene) {
    const auto scene = Make<Scene>();
    const Counted<Node> deepest(AddChain(*scene, kDeep));
    scene->GetFirstChild()->Remove(0);
    EXPECT_EQ(deepest->GetScene(), nullptr);
    EXPECT_EQ(deepest->GetParent(), nullptr);
}

TEST(TreeScale, NodesOfALayerAreRemovedOneByOne) {
    const auto scene = Make<Scene>();
    AddMany(*scene, kWide);
    Layer* layer = scene->CreateLayer(L"all");
    for (Node* node = scene->GetFirstChild(); node; node = node->GetNextSibling())
        layer->AddNode(node);
    EXPECT_EQ(layer->GetMembers()->GetCount(), kWide);
    while (Node* child = scene->GetFirstChild())
        scene->_RemoveChild(child, true);
    EXPECT_EQ(layer->GetMembers()->GetCount(), 0);
}

TEST(TreeScale, OneUndoItemTakesBackManyDeletions) {
    const auto scene = Make<Scene>();
    AddMany(*scene, kWide);
    scene->EnableUndo(true);
    UndoRecorder* undo = scene->GetUndoRecorder(1);
    undo->BeginItem(L"");
    while (Node* child = scene->GetFirstChild())
        scene->DeleteNode(0, child, 0);
    undo->EndItem(nullptr);
    EXPECT_EQ(scene->GetChildCount(), 0);
    EXPECT_TRUE(undo->Undo());
    EXPECT_EQ(scene->GetChildCount(), kWide);
}

}  // namespace
}  // namespace qn::k3
