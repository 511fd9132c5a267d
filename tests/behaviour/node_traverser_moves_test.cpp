#include "tests/behaviour/traverser_support.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

/// top > first, second, third.
struct Family : Stage {
    k3::Node* top = Node(L"top");
    k3::Node* first = Node(L"first", top);
    k3::Node* second = Node(L"second", top);
    k3::Node* third = Node(L"third", top);
};

TEST(NodeTraverserMoves, CountTheChildrenOfTheNode) {
    const Family f;
    EXPECT_EQ(f.On(f.top)->GetChildCount(), 3);
    EXPECT_EQ(f.On(f.first)->GetChildCount(), 0);
}

TEST(NodeTraverserMoves, GoToChildrenInSiblingOrder) {
    const Family f;
    f.first->AttachTo(f.top);  // now the last
    const auto at = f.On(f.top);
    EXPECT_EQ(NodeAt(at->GetChild(0)), f.second);
    EXPECT_EQ(NodeAt(at->GetChild(1)), f.third);
    EXPECT_EQ(NodeAt(at->GetChild(2)), f.first);
}

TEST(NodeTraverserMoves, GoNowherePastTheLastChild) {
    const Family f;
    EXPECT_FALSE(f.On(f.top)->GetChild(3));
    EXPECT_FALSE(f.On(f.top)->GetChild(100));
    EXPECT_FALSE(f.On(f.first)->GetChild(0));
}

TEST(NodeTraverserMoves, MakeNewTraversers) {
    const Family f;
    const auto at = f.On(f.top);
    const auto child = at->GetChild(0), again = at->GetChild(0);
    EXPECT_NE(child.Get(), again.Get());
    EXPECT_EQ(child->GetRefCount(), 1);
    const auto parent = child->GetParent();
    EXPECT_NE(parent.Get(), at.Get());
    EXPECT_EQ(NodeAt(parent), f.top);
    EXPECT_EQ(at->GetNode(), f.top) << "the traverser itself stays";
}

TEST(NodeTraverserMoves, GoAboveTheTopToNothing) {
    const Family f;
    const auto scene = f.On(f.top)->GetParent();
    EXPECT_EQ(NodeAt(scene), f.scene.Get());
    const auto above = scene->GetParent();
    ASSERT_TRUE(above);
    EXPECT_EQ(NodeAt(above), nullptr);
}

TEST(NodeTraverserMoves, AreValidEverywhere) {
    const Family f;
    EXPECT_TRUE(f.On(f.top)->IsValid());
    EXPECT_TRUE(f.On(nullptr)->IsValid());
    EXPECT_TRUE(f.On(f.scene.Get())->GetParent()->IsValid());
}

TEST(NodeTraverserMoves, TakeTheTableAlong) {
    const Family f;
    const auto at = f.On(f.top);
    EXPECT_EQ(at->GetLookupTable(), f.table.Get());
    EXPECT_EQ(at->GetChild(0)->GetLookupTable(), f.table.Get());
    EXPECT_EQ(at->GetParent()->GetLookupTable(), f.table.Get());
}

TEST(NodeTraverserMoves, TakeTheMapsAlong) {
    Family f;
    const auto at = f.Free(f.top);
    const auto child = at->GetChild(1)->GetInstance();
    EXPECT_EQ(f.nodes.Find(f.second), child.Get());
    const auto top = at->GetChild(0)->GetParent()->GetInstance();
    EXPECT_EQ(f.nodes.Find(f.top), top.Get());
    EXPECT_EQ(f.Fields().nodeToInstance.Size(), 0u);
}

TEST(NodeTraverserMoves, TakeTheModeAlong) {
    const Family f;
    const auto instance = EnterInstance(*f.table, L"a");
    const auto maker = f.On(f.top, true)->GetChild(0);
    EXPECT_EQ(NodeAt(maker->CreateChild(instance.Get()))->GetParent(), f.first);
    const auto climber = f.On(f.first, true)->GetParent();
    EXPECT_EQ(NodeAt(climber->CreateChild(instance.Get()))->GetParent(), f.top);
    const auto reader = f.On(f.top)->GetChild(0);
    EXPECT_EQ(reader->CreateChild(instance.Get()).Get(), reader.Get());
}

TEST(NodeTraverserMoves, WatchTheTable) {
    Family f;
    const auto at = f.Free(f.top);
    EXPECT_EQ(at->GetLookupTable(), nullptr);
    const auto bound = Make<NodeTraverser>(f.table.Get(), f.top, &f.nodes, &f.instances, false);
    EXPECT_EQ(f.table->GetRefCount(), 1);
    f.table.Reset();
    EXPECT_EQ(bound->GetLookupTable(), nullptr);
}

TEST(NodeTraverserMoves, KeepTheirNode) {
    const Family f;
    const Weak<k3::Node> watched(f.first);
    auto at = f.On(f.first);
    f.scene->DeleteNode(0, f.first, 0);
    EXPECT_TRUE(watched);
    at.Reset();
    EXPECT_FALSE(watched);
}

TEST(NodeTraverserMoves, HaveNoDebugText) {
    const Family f;
    EXPECT_TRUE(f.On(f.top)->ToDebugString().IsEmpty());
}

TEST(NodeTraverserMoves, ServeASelectorOnThem) {
    const Family f;
    Selector selector;
    selector.AssignTraverser(f.On(f.top).Get());
    EXPECT_TRUE(selector.IsValid());
    EXPECT_EQ(selector.GetChildCount(), 3);
    const Selector child = selector.GetChild(1);
    const auto path = ElementsOf(child);
    EXPECT_EQ(path, (std::vector<Instance*>{f.table->GetInstanceOfNode(f.top).Get(),
                                            f.table->GetInstanceOfNode(f.second).Get()}));
    EXPECT_EQ(child.GetInstance(), path.back());
}

}  // namespace
}  // namespace qn::test
