#include "engine/scene/tree_walk.h"
#include "tests/engine/scene/scene_tests.h"

namespace qn::k3 {
namespace {

using test::AddNode;
using test::ChildNames;
using test::Names;

TEST(NodeTree, ASceneIsItsOwnScene) {
    const auto scene = Make<Scene>();
    EXPECT_EQ(scene->GetScene(), scene.Get());
    EXPECT_EQ(scene->GetParent(), nullptr);
}

TEST(NodeTree, NewChildrenComeLast) {
    const auto scene = Make<Scene>();
    AddNode(*scene, L"a");
    AddNode(*scene, L"b");
    EXPECT_EQ(ChildNames(*scene), (Names{"a", "b"}));
}

TEST(NodeTree, AParentCountsItsChildren) {
    const auto scene = Make<Scene>();
    Node* child = scene->CreateEmptyNode(0, 0, 0);
    EXPECT_EQ(child->GetRefCount(), 1);
}

TEST(NodeTree, ARemovedNodeThatIsHeldLivesOnWithoutParentAndScene) {
    const auto scene = Make<Scene>();
    const Counted<Node> child(AddNode(*scene, L"a"));
    Node* below = AddNode(*child, L"b");
    child->Remove(0);
    EXPECT_EQ(child->GetParent(), nullptr);
    EXPECT_EQ(child->GetScene(), nullptr);
    EXPECT_EQ(below->GetScene(), nullptr);
    EXPECT_EQ(below->GetParent(), child.Get());
    EXPECT_EQ(child->GetRefCount(), 1);
}

TEST(NodeTree, ARemovedNodeThatNobodyHoldsIsGone) {
    const auto scene = Make<Scene>();
    const Weak<Node> child(AddNode(*scene, L"a"));
    child.Get()->Remove(0);
    EXPECT_FALSE(child);
}

TEST(NodeTree, AttachToMovesToTheEnd) {
    const auto scene = Make<Scene>();
    Node* a = AddNode(*scene, L"a");
    Node* b = AddNode(*scene, L"b");
    AddNode(*b, L"c");
    a->AttachTo(b);
    EXPECT_EQ(ChildNames(*scene), (Names{"b"}));
    EXPECT_EQ(ChildNames(*b), (Names{"c", "a"}));
}

TEST(NodeTree, AttachToTheSameParentMovesToTheEnd) {
    const auto scene = Make<Scene>();
    Node* a = AddNode(*scene, L"a");
    AddNode(*scene, L"b");
    a->AttachTo(scene.Get());
    EXPECT_EQ(ChildNames(*scene), (Names{"b", "a"}));
}

TEST(NodeTree, AttachToNullTakesOutOfTheScene) {
    const auto scene = Make<Scene>();
    const Counted<Node> a(AddNode(*scene, L"a"));
    a->AttachTo(nullptr);
    EXPECT_EQ(a->GetScene(), nullptr);
    EXPECT_EQ(scene->GetChildCount(), 0);
}

TEST(NodeTree, AttachToSomethingBelowDoesNothing) {
    const auto scene = Make<Scene>();
    Node* a = AddNode(*scene, L"a");
    Node* b = AddNode(*a, L"b");
    a->AttachTo(b);
    a->AttachTo(a);
    scene->AttachTo(b);
    EXPECT_EQ(ChildNames(*scene), (Names{"a"}));
    EXPECT_EQ(ChildNames(*a), (Names{"b"}));
}

TEST(NodeTree, AnAttachedSubtreeTakesTheScene) {
    const auto scene = Make<Scene>();
    const auto root = Make<Node>();
    Node* below = AddNode(*root, L"b");
    root->AttachTo(scene.Get());
    EXPECT_EQ(root->GetScene(), scene.Get());
    EXPECT_EQ(below->GetScene(), scene.Get());
}

TEST(NodeTree, OnlyOwnChildrenAreRemoved) {
    const auto scene = Make<Scene>();
    Node* a = AddNode(*scene, L"a");
    Node* b = AddNode(*a, L"b");
    scene->_RemoveChild(b, true);
    scene->_RemoveChild(nullptr, true);
    EXPECT_EQ(ChildNames(*a), (Names{"b"}));
}

TEST(NodeTree, IndexesFollowTheChain) {
    const auto scene = Make<Scene>();
    for (const wchar_t* name : {L"a", L"b", L"c", L"d", L"e"})
        AddNode(*scene, name);
    const auto names = [&] {
        Names found;
        for (int i = 0; i < scene->GetChildCount(); ++i)
            found.push_back(scene->GetChildAt(i)->GetName().ToUtf8());
        return found;
    };
    EXPECT_EQ(names(), (Names{"a", "b", "c", "d", "e"}));
    scene->_RemoveChild(scene->GetChildAt(2), true);
    EXPECT_EQ(names(), (Names{"a", "b", "d", "e"}));
    scene->_RemoveChild(scene->GetChildAt(0), true);
    EXPECT_EQ(names(), (Names{"b", "d", "e"}));
    scene->_RemoveChild(scene->GetChildAt(2), true);
    EXPECT_EQ(names(), (Names{"b", "d"}));
    AddNode(*scene, L"f");
    AddNode(*scene, L"g");
    EXPECT_EQ(names(), (Names{"b", "d", "f", "g"}));
    scene->_RemoveChild(scene->GetFirstChild()->GetNextSibling(), true);
    EXPECT_EQ(names(), (Names{"b", "f", "g"}));
    EXPECT_EQ(scene->GetChildAt(-1), nullptr);
    EXPECT_EQ(scene->GetChildAt(3), nullptr);
}

TEST(NodeTree, WorldMatrixAppliesTheOwnMatrixFirst) {
    const auto scene = Make<Scene>();
    Node* a = AddNode(*scene, L"a");
    Node* b = AddNode(*a, L"b");
    Matrix4<double> turn;  // x to y, y to -x
    turn.m[0][0] = 0, turn.m[0][1] = 1, turn.m[1][0] = -1, turn.m[1][1] = 0;
    const auto move = Matrix4<double>::Translation(1, 0, 0);
    a->SetMatrix(&turn, 0);
    b->SetMatrix(&move, 0);
    EXPECT_EQ(b->GetWorldMatrix().m[3][0], 0);
    EXPECT_EQ(b->GetWorldMatrix().m[3][1], 1);
}

bool Collect(Node* node, ParamWord argument) {
    auto& names = *reinterpret_cast<Names*>(argument);
    names.push_back(node->GetName().ToUtf8());
    return names.back() != "stop";
}

TEST(NodeTree, VisitGoesParentsFirstInSiblingOrderUntilFalse) {
    const auto root = Make<Node>();
    root->SetName(L"r");
    AddNode(*AddNode(*root, L"a"), L"b");
    AddNode(*root, L"c");
    Names names;
    root->Visit(0x200, &Collect, reinterpret_cast<ParamWord>(&names));
    EXPECT_EQ(names, (Names{"r", "a", "b", "c"}));
    root->GetFirstChild()->SetName(L"stop");
    names.clear();
    root->Visit(0x200, &Collect, reinterpret_cast<ParamWord>(&names));
    EXPECT_EQ(names, (Names{"r", "stop"}));
}

TEST(NodeTree, VisitStaysBelowItsStart) {
    const auto root = Make<Node>();
    Node* a = AddNode(*root, L"a");
    AddNode(*root, L"beside");
    Names names;
    a->Visit(0, &Collect, reinterpret_cast<ParamWord>(&names));
    EXPECT_EQ(names, (Names{"a"}));
}

TEST(NodeTree, AGlobalListCallMarksTheNode) {
    const auto node = Make<Node>();
    EXPECT_TRUE(node->IsInGlobalList());
    EXPECT_TRUE(__RemoveFromGlobalList(node.Get(), 0));
    EXPECT_FALSE(node->IsInGlobalList());
    bool argument = false;
    EXPECT_TRUE(__AddToGlobalList(node.Get(), reinterpret_cast<ParamWord>(&argument)));
    EXPECT_TRUE(node->IsInGlobalList());
}

}  // namespace
}  // namespace qn::k3
