#include "tests/engine/scene/scene_tests.h"

namespace qn::k3 {
namespace {

using test::AddNode;

std::vector<Interface*> Members(const Layer& layer) {
    std::vector<Interface*> members;
    const PointerArray* array = layer.GetMembers();
    for (int i = 0; array && i < array->GetCount(); ++i)
        members.push_back(array->Get(i));
    return members;
}

using Nodes = std::vector<Interface*>;

TEST(Layer, HasNoArrayBeforeTheFirstMember) {
    const auto layer = Make<Layer>();
    EXPECT_EQ(layer->GetMembers(), nullptr);
    layer->DeleteAll();
    EXPECT_EQ(layer->GetMembers(), nullptr);
}

TEST(Layer, KeepsMembersOnceInOrder) {
    const auto layer = Make<Layer>();
    const auto a = Make<Node>(), b = Make<Node>();
    layer->AddNode(b.Get());
    layer->AddNode(a.Get());
    layer->AddNode(b.Get());
    layer->AddNode(nullptr);
    EXPECT_EQ(Members(*layer), (Nodes{b.Get(), a.Get()}));
}

TEST(Layer, DoesNotCountItsMembers) {
    const auto layer = Make<Layer>();
    const auto node = Make<Node>();
    layer->AddNode(node.Get());
    EXPECT_EQ(node->GetRefCount(), 1);
}

TEST(Layer, LosesRemovedMembers) {
    const auto layer = Make<Layer>();
    const auto a = Make<Node>(), b = Make<Node>(), c = Make<Node>();
    for (const auto& node : {a, b, c})
        layer->AddNode(node.Get());
    layer->RemoveNode(b.Get());
    layer->RemoveNode(b.Get());
    EXPECT_EQ(Members(*layer), (Nodes{a.Get(), c.Get()}));
    layer->AddNode(b.Get());
    EXPECT_EQ(Members(*layer), (Nodes{a.Get(), c.Get(), b.Get()}));
    layer->DeleteAll();
    EXPECT_EQ(Members(*layer), (Nodes{}));
    EXPECT_NE(layer->GetMembers(), nullptr);
}

TEST(Layer, RemovalInOneGoKeepsTheOrderOfTheRest) {
    const auto layer = Make<Layer>();
    std::vector<Counted<Node>> nodes;
    for (int i = 0; i < 6; ++i)
        layer->AddNode(nodes.emplace_back(Make<Node>()).Get());
    for (const int gone : {4, 0, 3})
        layer->RemoveNode(nodes[static_cast<std::size_t>(gone)].Get());
    EXPECT_EQ(Members(*layer), (Nodes{nodes[1].Get(), nodes[2].Get(), nodes[5].Get()}));
}

TEST(Layer, ANodeThatOthersListedAgainGoesOnceWithEachRemoval) {
    const auto layer = Make<Layer>();
    const auto a = Make<Node>(), b = Make<Node>();
    layer->AddNode(a.Get());
    layer->GetMembers()->Add(b.Get());
    layer->GetMembers()->Add(a.Get());
    layer->GetMembers()->Add(a.Get());
    layer->RemoveNode(a.Get());
    EXPECT_EQ(Members(*layer), (Nodes{b.Get(), a.Get(), a.Get()}));
    layer->RemoveNode(a.Get());
    layer->RemoveNode(a.Get());
    EXPECT_EQ(Members(*layer), Nodes{b.Get()});
    layer->RemoveNode(a.Get());
    EXPECT_EQ(Members(*layer), Nodes{b.Get()});
}

TEST(Layer, TwinsOfADeadMemberAreNoMembersEither) {
    const auto layer = Make<Layer>();
    const auto a = Make<Node>();
    {
        const auto brief = Make<Node>();
        layer->AddNode(brief.Get());
        layer->GetMembers()->Add(brief.Get());
        layer->GetMembers()->Add(a.Get());
        layer->RemoveNode(brief.Get());
    }
    const auto next = Make<Node>();  // where the dead one was, as the storage goes
    layer->RemoveNode(next.Get());
    EXPECT_EQ(Members(*layer), (Nodes{nullptr, a.Get()}));
    layer->AddNode(next.Get());
    layer->RemoveNode(next.Get());
    layer->RemoveNode(next.Get());
    EXPECT_EQ(Members(*layer), (Nodes{nullptr, a.Get()}));
}

TEST(Layer, AThousandfoldMemberGoesInLinearTime) {
    constexpr int kTimes = 100'000;
    const auto layer = Make<Layer>();
    const auto a = Make<Node>();
    layer->AddNode(a.Get());
    PointerArray* members = layer->GetMembers();
    for (int i = 1; i < kTimes; ++i)
        members->Add(a.Get());
    for (int i = 0; i < kTimes; ++i)
        layer->RemoveNode(a.Get());
    EXPECT_EQ(Members(*layer), Nodes{});
}

TEST(Layer, ADeadMemberReadsNullAndStaysListed) {
    const auto layer = Make<Layer>();
    auto a = Make<Node>();
    const auto b = Make<Node>(), c = Make<Node>();
    for (const auto& node : {a, b, c})
        layer->AddNode(node.Get());
    a.Reset();
    EXPECT_EQ(Members(*layer), (Nodes{nullptr, b.Get(), c.Get()}));
    layer->RemoveNode(b.Get());
    EXPECT_EQ(Members(*layer), (Nodes{nullptr, c.Get()}));
}

TEST(Layer, ANodeThatLeftTheSceneStaysListed) {
    const auto scene = Make<Scene>();
    Layer* layer = scene->CreateLayer(L"l");
    const Counted<Node> node(AddNode(*scene, L"a"));
    layer->AddNode(node.Get());
    node->Remove(0);
    EXPECT_EQ(Members(*layer), (Nodes{node.Get()}));
}

TEST(Layer, ADetachedSubtreeIsTakenOut) {
    const auto scene = Make<Scene>();
    Layer* layer = scene->CreateLayer(L"l");
    const Counted<Node> a(AddNode(*scene, L"a"));
    Node* b = AddNode(*a, L"b");
    Node* other = AddNode(*scene, L"c");
    for (Node* node : {a.Get(), b, other})
        layer->AddNode(node);
    scene->_RemoveChild(a.Get(), true);
    EXPECT_EQ(Members(*layer), (Nodes{other}));
}

TEST(Layer, ANodeRemovedWithoutDetachingStaysListed) {
    const auto scene = Make<Scene>();
    Layer* layer = scene->CreateLayer(L"l");
    const Counted<Node> a(AddNode(*scene, L"a"));
    layer->AddNode(a.Get());
    scene->_RemoveChild(a.Get(), false);
    EXPECT_EQ(Members(*layer), (Nodes{a.Get()}));
}

TEST(Layer, DetachingReachesTheLayersOfViewports) {
    const auto scene = Make<Scene>();
    const auto layer = Make<Layer>(scene.Get());
    scene->CreateViewport(L"v")->SetLayer(layer.Get());
    Node* a = AddNode(*scene, L"a");
    layer->AddNode(a);
    scene->_RemoveChild(a, true);
    EXPECT_EQ(Members(*layer), (Nodes{}));
}

TEST(Layer, ClassNames) {
    const auto layer = Make<Layer>();
    EXPECT_TRUE(layer->IsTypeOf("k3_layer"));
    EXPECT_TRUE(layer->IsTypeOf("qn.k3.entity"));
    EXPECT_TRUE(layer->IsTypeOf("k3_refsource"));
    EXPECT_FALSE(layer->IsTypeOf("k3_viewport"));
    EXPECT_TRUE(layer->IsTypeOf(kTypeEntity));
}

}  // namespace
}  // namespace qn::k3
