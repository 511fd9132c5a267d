#include "tests/support/assembly_shape.h"

#include "frame/host/scene.h"
#include "tests/support/assembly.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

std::int64_t CountNodes(const k3::Node* top) {
    std::int64_t nodes = 0;
    std::vector<const k3::Node*> pending{top};
    while (!pending.empty()) {
        const k3::Node* node = pending.back();
        pending.pop_back();
        ++nodes;
        for (const k3::Node* child = node->GetFirstChild(); child; child = child->GetNextSibling()) {
            pending.push_back(child);
        }
    }
    return nodes;
}

TEST(AssemblyShape, SharesMuchOrNothing) {
    EXPECT_EQ(CountOccurrences(SharedShape(1'111'111)), 1'111'111);
    EXPECT_EQ(CountUses(SharedShape(1'111'111)), 510);
    EXPECT_EQ(CountOccurrences(SharedShape(1000)), 111);
    EXPECT_EQ(CountOccurrences(SharedShape(1)), 11);
    EXPECT_EQ(CountOccurrences(FlatShape(1000)), 1000);
    EXPECT_EQ(CountUses(FlatShape(1000)), 999);
    EXPECT_EQ(CountOccurrences(DeepShape(1000)), 1000);
}

TEST(AssemblyShape, CountsWhatABuilderDescribes) {
    const AssemblyShape car =
        AssemblyBuilder("car").Child("chassis").Child("wheel", 4).Under("wheel", "tyre").Shape();
    EXPECT_EQ(car.definitions.size(), 4u);
    EXPECT_EQ(CountOccurrences(car), 10);
    EXPECT_EQ(CountUses(car), 6);
    EXPECT_FALSE(IsCyclic(car));
}

TEST(AssemblyShape, KnowsRings) {
    EXPECT_TRUE(IsCyclic(AssemblyBuilder("a").Child("b").Under("b", "a").Shape()));
    EXPECT_TRUE(IsCyclic(AssemblyBuilder("a").Child("a").Shape()));
}

TEST(BuildNodes, MakesOneNodeForEachOccurrence) {
    const auto scene = Make<k3::Scene>();
    const AssemblyShape shape =
        AssemblyBuilder("car").Child("chassis").Child("wheel", 2).Under("wheel", "tyre").Shape();
    const k3::Node* top = BuildNodes(shape, *scene);
    EXPECT_EQ(CountNodes(top), CountOccurrences(shape));
    EXPECT_EQ(top->GetName(), String(L"car"));
    const k3::Node* second = top->GetChildAt(2);
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(second->GetName(), String(L"wheel"));
    Matrix4<double> place;
    second->GetMatrix(&place, 0);
    EXPECT_EQ(place, Matrix4<double>::Translation(3, 0, 0));
}

TEST(BuildNodes, SharesTheObjectOfADefinitionWithoutChildren) {
    const auto scene = Make<k3::Scene>();
    const k3::Node* top = BuildNodes(AssemblyBuilder("car").Child("wheel", 2).Shape(), *scene);
    EXPECT_EQ(top->GetObject(), nullptr);
    ASSERT_NE(top->GetChildAt(0)->GetObject(), nullptr);
    EXPECT_EQ(top->GetChildAt(0)->GetObject(), top->GetChildAt(1)->GetObject());
}

TEST(BuildNodes, BuildsAnyDepth) {
    const auto scene = Make<k3::Scene>();
    EXPECT_EQ(CountNodes(BuildNodes(DeepShape(20'000), *scene)), 20'000);
}

}  // namespace
}  // namespace qn::test
