// Which of several nodes a selector means.

#include "graph/element_changes.h"
#include "tests/graph/element_changes_fixture.h"

#include <functional>

namespace qn::test {
namespace {

class NearestNode : public ElementChanges {
protected:
    k3::Node* Find(const Selector& selector, const k3::Node* near) {
        return FindNodeNear(selector, table->instanceToNodes, *near);
    }
    /// Two assemblies of one instance with a part of one instance each.
    void MakeTwins() {
        left = Top();
        right = Top();
        const auto assembly = Known(L"n1"), part = Known(L"n2");
        Show(left, assembly.Get());
        Show(right, assembly.Get());
        leftPart = Below(left);
        rightPart = Below(right);
        Show(leftPart, part.Get());
        Show(rightPart, part.Get());
    }
    Selector TwinPath() {
        return PathOf({table->nodeToInstance.Find(left), table->nodeToInstance.Find(leftPart)});
    }

    k3::Node* left = nullptr;
    k3::Node* right = nullptr;
    k3::Node* leftPart = nullptr;
    k3::Node* rightPart = nullptr;
};

TEST_F(NearestNode, IsNoneForAnEmptyPathOrANullStart) {
    k3::Node* node = ShownBelow(Top(), L"n1");
    EXPECT_EQ(Find(Selector(), node), nullptr);
    EXPECT_EQ(Find(PathOf({nullptr, Carried(node)}), node), nullptr);
    EXPECT_EQ(Find(PathOf({Known(L"n9").Get()}), node), nullptr);
}

TEST_F(NearestNode, IsTheOnlyOneWhereverOneAsks) {
    k3::Node* node = ShownBelow(Top(), L"n1");
    EXPECT_EQ(Find(PathOf({Carried(node)}), Top()), node);
}

TEST_F(NearestNode, IsBelowTheAncestorThatShowsTheStart) {
    MakeTwins();
    EXPECT_EQ(Find(TwinPath(), leftPart), leftPart);
    EXPECT_EQ(Find(TwinPath(), rightPart), rightPart);
    EXPECT_EQ(Find(TwinPath(), right), rightPart);
}

TEST_F(NearestNode, MayStartAtADescendant) {
    MakeTwins();
    k3::Node* group = Top();
    right->AttachTo(group);
    EXPECT_EQ(Find(TwinPath(), group), rightPart);
}

TEST_F(NearestNode, IsNoneIfTheNearOneLeadsNowhere) {
    MakeTwins();
    rightPart->SetParamVar(Param::kInstance, Var());
    EXPECT_EQ(Find(TwinPath(), rightPart), nullptr);
}

TEST_F(NearestNode, IsTheFirstThatLeadsAnywhereIfNoneIsNear) {
    MakeTwins();
    k3::Node* elsewhere = Top();
    const bool leftIsFirst = std::less<k3::Node*>()(left, right);
    k3::Node* first = leftIsFirst ? leftPart : rightPart;
    k3::Node* second = leftIsFirst ? rightPart : leftPart;
    EXPECT_EQ(Find(TwinPath(), elsewhere), first);
    first->SetParamVar(Param::kInstance, Var());
    EXPECT_EQ(Find(TwinPath(), elsewhere), second);
}

}  // namespace
}  // namespace qn::test
