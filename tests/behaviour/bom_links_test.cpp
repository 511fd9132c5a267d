// How nodes of several structures know that they are one.

#include "frame/host/meta.h"
#include "tests/behaviour/bom_scene.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

constexpr const wchar_t* kLinkKey = L"$QN.BOM.LINK";
using Nodes = std::vector<k3::Node*>;

Var LinkOf(const k3::Node* node) {
    return GetMeta(node, Var(kLinkKey), 0);
}

InterfaceArray* ArrayOf(const k3::Node* node) {
    const Var link = LinkOf(node);
    const Var* links = link.Lookup(L"Links");
    return links ? Cast<InterfaceArray>(*links) : nullptr;
}

Nodes LinksOf(const k3::Node* node) {
    Nodes nodes;
    const InterfaceArray* array = ArrayOf(node);
    for (int i = 0; array && i < array->GetCount(); ++i)
        nodes.push_back(Cast<k3::Node>(array->Get(i)));
    return nodes;
}

void SetLink(k3::Node* node, const Var& value) {
    SetMeta(node, Var(kLinkKey), value);
}

TEST(BomLinks, AreNoneForTheFirstStructure) {
    const BomScene s;
    const k3::Node* car = s.Node(L"car");
    s.AddBom(L"design");
    s.AddBom(L"service", true);
    EXPECT_TRUE(LinkOf(car).IsEmpty());
}

TEST(BomLinks, TieNoFixtures) {
    const BomScene s;
    k3::Node *light = s.Fixture(L"light"), *car = s.Node(L"car");
    s.AddBom(L"design");
    const auto bom = s.AddBom(L"service");
    EXPECT_TRUE(LinkOf(light).IsEmpty());
    EXPECT_EQ(LinksOf(car), (Nodes{car, NodeAt(*bom, 0)}));
}

TEST(BomLinks, GrowFromACopyThatIsShown) {
    const BomScene s;
    k3::Node* car = s.Node(L"car");
    s.AddBom(L"design");
    const auto second = s.AddBom(L"service");
    EXPECT_EQ(second->Activate(), ResultEnum::kSuccess);
    const auto third = s.AddBom(L"sales");
    const Nodes all{car, NodeAt(*second, 0), NodeAt(*third, 0)};
    for (const k3::Node* node : all)
        EXPECT_EQ(LinksOf(node), all);
}

TEST(BomLinks, StayAsTheyAreOnANodeThatLeftItsTree) {
    const BomScene s;
    k3::Node* car = s.Node(L"car");
    s.AddBom(L"design");
    const auto second = s.AddBom(L"service"), third = s.AddBom(L"sales");
    const Counted<k3::Node> gone(NodeAt(*second, 0));
    k3::Node* copy = NodeAt(*third, 0);
    Var old, other;
    old.InitMap(), other.InitMap();
    old.At(L"mine") = Var(1);
    SetLink(gone.Get(), old);
    SetLink(copy, other);
    gone->AttachTo(nullptr);
    k3::Node* last = NodeAt(*s.AddBom(L"stock"), 0);
    EXPECT_EQ(LinkOf(gone.Get()), old);
    EXPECT_EQ(LinksOf(copy), (Nodes{car, gone.Get(), copy, last})) << "it has a parent";
    EXPECT_EQ(LinksOf(last), LinksOf(car));
}

TEST(BomLinks, TakeThePlaceOfAValueThatIsNoMap) {
    const BomScene s;
    k3::Node* car = s.Node(L"car");
    SetLink(car, Var(5));
    s.AddBom(L"design");
    k3::Node* copy = NodeAt(*s.AddBom(L"service"), 0);
    EXPECT_EQ(LinksOf(car), (Nodes{car, copy}));
    EXPECT_EQ(LinksOf(copy), (Nodes{car, copy}));
}

}  // namespace
}  // namespace qn::test
