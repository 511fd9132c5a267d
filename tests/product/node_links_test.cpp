#include "product/node_links.h"

#include "frame/host/meta.h"
#include "tests/product/product_support.h"

namespace qn::test {
namespace {

using k3::LinkNodes;
using k3::Node;

constexpr const wchar_t* kGroup = L"$QN.BOM.LINK";

Var GroupOf(const Node& node) {
    return GetMeta(&node, Var(kGroup), 0);
}

InterfaceArray* LinksOf(const Node& node) {
    const Var group = GroupOf(node);
    const Var* links = group.IsMap() ? group.Lookup(L"Links") : nullptr;
    return links ? Cast<InterfaceArray>(links->ToInterface()) : nullptr;
}

/// The linked nodes by name.
std::string LinkText(const Node& node) {
    std::string text;
    const InterfaceArray* links = LinksOf(node);
    for (int i = 0; links && i < links->GetCount(); ++i) {
        const auto* linked = Cast<Node>(links->Get(i));
        text += (text.empty() ? "" : " ") + (linked ? linked->GetName().ToUtf8() : "-");
    }
    return text;
}

class NodeLinks : public testing::Test {
protected:
    const Counted<Node> left_ = Make<Node>(), right_ = Make<Node>();
};

TEST_F(NodeLinks, TieTwoNodesWithOneSharedMap) {
    Node* a = AddNode(*left_, "a");
    Node* b = AddNode(*right_, "b");
    LinkNodes(a, b);
    EXPECT_EQ(LinkText(*a), "a b");
    EXPECT_EQ(LinkText(*b), "a b");
    EXPECT_EQ(GroupOf(*a).ToInterface(), GroupOf(*b).ToInterface());
    EXPECT_FALSE(LinksOf(*a)->IsStrong());
}

TEST_F(NodeLinks, GrowWithEachStructure) {
    Node* a = AddNode(*left_, "a");
    Node* b = AddNode(*right_, "b");
    Node* c = AddNode(*right_, "c");
    LinkNodes(a, b);
    LinkNodes(a, c);
    for (const Node* node : {a, b, c})
        EXPECT_EQ(LinkText(*node), "a b c");
}

TEST_F(NodeLinks, SkipAMemberThatWasTakenOutOfItsTree) {
    Node* a = AddNode(*left_, "a");
    const Counted<Node> gone(AddNode(*right_, "gone"));
    Node* c = AddNode(*right_, "c");
    LinkNodes(a, gone.Get());
    SetMeta(gone.Get(), Var(kGroup), Var(7));
    gone->AttachTo(nullptr);
    LinkNodes(a, c);
    EXPECT_EQ(LinkText(*a), "a gone c");
    EXPECT_EQ(LinkText(*c), "a gone c");
    EXPECT_EQ(GroupOf(*gone), Var(7)) << "it keeps what it had";
}

TEST_F(NodeLinks, SkipRootsForTheyHaveNoParent) {
    LinkNodes(left_.Get(), right_.Get());
    EXPECT_FALSE(GroupOf(*left_).IsSet());
    EXPECT_FALSE(GroupOf(*right_).IsSet());
}

TEST_F(NodeLinks, GoDownBothTreesInStep) {
    Node* a = AddNode(*left_, "a");
    Node* below = AddNode(*a, "below");
    Node* b = AddNode(*right_, "b");
    Node* alike = AddNode(*b, "alike");
    AddNode(*b, "more");
    LinkNodes(a, b);
    EXPECT_EQ(LinkText(*below), "below alike");
    EXPECT_EQ(LinkText(*alike), "below alike");
    EXPECT_EQ(LinkText(*b->GetLastChild()), "") << "the shorter chain ends the walk";
}

TEST_F(NodeLinks, GoOnAlongTheSiblings) {
    Node* a = AddNode(*left_, "a");
    AddNode(*left_, "a2");
    Node* b = AddNode(*right_, "b");
    Node* b2 = AddNode(*right_, "b2");
    LinkNodes(a, b);
    EXPECT_EQ(LinkText(*b2), "a2 b2");
}

TEST_F(NodeLinks, MakeANewListWhereTheOldIsUnusable) {
    Node* a = AddNode(*left_, "a");
    Node* b = AddNode(*right_, "b");
    Var group;
    group.At(L"Links") = Var(L"no list");
    SetMeta(a, Var(kGroup), group);
    LinkNodes(a, b);
    EXPECT_EQ(LinkText(*b), "b") << "the first node is not in it";
    EXPECT_EQ(LinkText(*a), "b") << "both share the map";
}

TEST_F(NodeLinks, KeepTheOtherKeysOfTheMap) {
    Node* a = AddNode(*left_, "a");
    Node* b = AddNode(*right_, "b");
    Var group;
    group.At(L"x") = Var(1);
    SetMeta(a, Var(kGroup), group);
    LinkNodes(a, b);
    EXPECT_EQ(*GroupOf(*b).Lookup(L"x"), Var(1));
}

TEST_F(NodeLinks, OfNothingAreNone) {
    LinkNodes(nullptr, left_.Get());
    LinkNodes(left_.Get(), nullptr);
    EXPECT_EQ(left_->GetMetadata(false), nullptr);
}

TEST_F(NodeLinks, HoldForTenThousandLevels) {
    Node* left = left_.Get();
    Node* right = right_.Get();
    for (int i = 0; i < 10'000; ++i) {
        left = AddNode(*left, "l");
        right = AddNode(*right, "r");
    }
    LinkNodes(left_.Get(), right_.Get());
    EXPECT_EQ(LinkText(*right), "l r");
}

TEST(NodeLinksOfStructures, TieCopiesToTheirSources) {
    const auto scene = Make<k3::Scene>();
    Node* a = AddNode(*scene, "a");
    AddNode(*a, "b");
    AddNode(*scene, "d");
    AddBom(*scene, L"design");
    const auto service = AddBom(*scene, L"service");
    const auto third = AddBom(*scene, L"third");
    const Node* copy = service->GetRootNode()->GetFirstChild();
    EXPECT_EQ(LinkText(*a), "a a a");
    EXPECT_EQ(LinksOf(*a)->Get(1), static_cast<const Interface*>(copy));
    EXPECT_EQ(LinkText(*copy->GetFirstChild()), "b b b");
    EXPECT_EQ(LinkText(*third->GetRootNode()->GetLastChild()), "d d d");
    EXPECT_EQ(LinksOf(*copy), LinksOf(*a));
}

}  // namespace
}  // namespace qn::test
