#include "construction/selector_paths.h"

#include "tests/construction/construction_support.h"

#include <algorithm>

namespace qn::test {
namespace {

using namespace qn::graph;

void Carry(k3::Node& node, Instance* instance) {
    node.SetParamVar(Param::kInstance, Var(instance, 1));
}

/// Nodes car(axle(wheel,wheel)) that carry the instances of an assembly of that shape.
struct CarNodes {
    CarNodes() {
        Carry(*top, car.At("car"));
        Carry(*axle, car.At("axle"));
        Carry(*left, car.At("wheel", 0));
        Carry(*right, car.At("wheel", 1));
    }
    Assembly car = AssemblyBuilder("car").Child("axle").Under("axle", "wheel", 2).Build();
    Counted<k3::Scene> scene = Make<k3::Scene>();
    k3::Node* top = AddNode(*scene, "car");
    k3::Node* axle = AddNode(*top, "axle");
    k3::Node* left = AddNode(*axle, "left");
    k3::Node* right = AddNode(*axle, "right");
};

TEST(FindNodeForSelector, GivesTheRootForAPathOfOne) {
    const CarNodes nodes;
    EXPECT_TRUE(Factory()->FindNodeForSelector(nodes.top, nodes.car.Path({"car"})) == nodes.top);
}

TEST(FindNodeForSelector, GoesDownThePath) {
    const CarNodes nodes;
    EXPECT_TRUE(Factory()->FindNodeForSelector(nodes.top, nodes.car.Path({"car", "axle", "wheel#1"})) ==
                nodes.right);
}

TEST(FindNodeForSelector, GivesNullWhereThePathStartsElsewhere) {
    const CarNodes nodes;
    EXPECT_FALSE(Factory()->FindNodeForSelector(nodes.axle, nodes.car.Path({"car", "axle"})));
}

TEST(FindNodeForSelector, GivesNullForAMissingStep) {
    const CarNodes nodes;
    nodes.right->Remove(0);
    EXPECT_FALSE(Factory()->FindNodeForSelector(nodes.top, nodes.car.Path({"car", "axle", "wheel#1"})));
}

TEST(FindNodeForSelector, GivesNullForNullAndForAnEmptyPath) {
    const CarNodes nodes;
    EXPECT_FALSE(Factory()->FindNodeForSelector(nullptr, nodes.car.Path({"car"})));
    EXPECT_FALSE(Factory()->FindNodeForSelector(nodes.top, Selector()));
    EXPECT_FALSE(Factory()->FindNodeForSelector(nodes.scene.Get(), Selector()));
}

TEST(FindNodeForSelector, PassesOverANullPathElement) {
    const CarNodes nodes;
    Selector selector;
    selector.AppendPathElement(nullptr);
    AddNode(*nodes.scene, "bare");
    EXPECT_FALSE(Factory()->FindNodeForSelector(nodes.scene->GetLastChild(), selector));
}

TEST(FindNodeForSelector, GoesIntoTheFirstOfTwoSiblingsOnly) {
    const CarNodes nodes;
    k3::Node* const twin = AddNode(*nodes.top, "twin");
    Carry(*twin, nodes.car.At("axle"));
    nodes.left->AttachTo(twin);
    EXPECT_FALSE(Factory()->FindNodeForSelector(nodes.top, nodes.car.Path({"car", "axle", "wheel"})));
    EXPECT_TRUE(Factory()->FindNodeForSelector(nodes.top, nodes.car.Path({"car", "axle", "wheel#1"})) ==
                nodes.right);
}

TEST(SelectorFromInstance, GivesThePathFromTheTop) {
    const auto car = AssemblyBuilder("car").Child("axle").Under("axle", "wheel", 2).Build();
    const Selector path = Factory()->SelectorFromInstance(car.At("wheel", 1));
    ASSERT_EQ(path.GetPathElementCount(), 3);
    EXPECT_EQ(path.GetPathElement(0), car.At("car"));
    EXPECT_EQ(path.GetPathElement(1), car.At("axle"));
    EXPECT_EQ(path.GetPathElement(2), car.At("wheel", 1));
}

TEST(SelectorFromInstance, FollowsTheFirstUseOfADefinitionOnly) {
    const auto car = AssemblyBuilder("car").Child("axle", 2).Under("axle", "wheel").Build();
    const Selector path = Factory()->SelectorFromInstance(car.At("wheel"));
    EXPECT_EQ(path.GetPathElement(1), car.At("axle", 0));
}

TEST(SelectorFromInstance, IsTheInstanceAloneWithoutAParent) {
    const auto instance = LooseInstance();
    EXPECT_EQ(Factory()->SelectorFromInstance(instance.Get()).GetPathElementCount(), 1);
}

TEST(SelectorFromInstance, IsEmptyForNull) {
    EXPECT_FALSE(Factory()->SelectorFromInstance(nullptr).IsValid());
}

TEST(SelectorFromInstance, EndsWhereAClimbMeetsItselfAgain) {
    const auto reference = Make<ReferenceImpl>();
    const auto instance = reference->CreateInstance();
    reference->AddChild(instance.Get());
    EXPECT_EQ(Factory()->SelectorFromInstance(instance.Get()).GetPathElementCount(), 1);
    reference->RemoveChildAt(0);
}

TEST(SelectorFromInstance, ClimbsTenThousandLevels) {
    const Assembly chain(DeepShape(10'000));
    Instance* const last = chain.At(chain.Shape().definitions.back().name);
    EXPECT_EQ(Factory()->SelectorFromInstance(last).GetPathElementCount(), 10'000);
}

TEST(SelectorFromPersistent, CopiesPathAndAttributes) {
    const auto car = AssemblyBuilder("car").Child("wheel").Build();
    Selector selector = car.Path({"car", "wheel"});
    selector.SetProperty(kName, Var(L"front"));
    const auto stored = Factory()->PersistentFromSelector(selector);

    const Selector back = Factory()->SelectorFromPersistent(stored.Get());

    EXPECT_EQ(back.GetPathElementCount(), 2);
    EXPECT_EQ(back.GetInstance(), car.At("wheel"));
    EXPECT_EQ(Utf8(back.GetProperty(kName, 0)), "front");
}

TEST(SelectorFromPersistent, KeepsADeadPathElementAsNull) {
    const auto stored = Make<PersistentSelectorImpl>();
    {
        const auto gone = LooseInstance();
        stored->path.push_back(Weak<Instance>(gone.Get()));
    }
    const Selector selector = Factory()->SelectorFromPersistent(stored.Get());
    EXPECT_EQ(selector.GetPathElementCount(), 1);
    EXPECT_FALSE(selector.IsValid());
}

TEST(SelectorFromPersistent, NeverReadsIds) {
    const auto car = AssemblyBuilder("car").Build();
    const auto stored = Make<PersistentSelectorImpl>();
    stored->idPath.InitArray(1);
    stored->idPath.At(0) = car.RootInstance()->GetProperty(kLocalId, 0);
    EXPECT_EQ(Factory()->SelectorFromPersistent(stored.Get()).GetPathElementCount(), 0);
}

TEST(PersistentFromSelector, GivesNullForAnEmptyPath) {
    EXPECT_FALSE(Factory()->PersistentFromSelector(Selector()));
}

TEST(PersistentFromSelector, KeepsPrivateCopiesOfItsOwnValues) {
    const auto car = AssemblyBuilder("car").Build();
    Selector selector = car.Path({"car"});
    const Var metadata = MapOf(L"Mass", Var(7));
    selector.SetProperty(kMetadata, metadata);
    const auto stored = Factory()->PersistentFromSelector(selector);
    metadata.ToMap()->At(Var(L"Mass")) = Var(8);
    EXPECT_EQ(stored->GetProperty(kMetadata, 0).Lookup(L"Mass")->ToInt(), 7);
}

Counted<InterfaceArray> ArrayOf(std::initializer_list<Interface*> nodes) {
    auto array = InterfaceArray::CreateStrong();
    for (Interface* const node : nodes)
        array->Add(node);
    return array;
}

TEST(FindRelatedNode, FindsAnAncestor) {
    const CarNodes nodes;
    EXPECT_TRUE(Factory()->FindRelatedNode(ArrayOf({nodes.top}).Get(), nodes.left) == nodes.top);
}

TEST(FindRelatedNode, FindsTheNodeItself) {
    const CarNodes nodes;
    EXPECT_TRUE(Factory()->FindRelatedNode(ArrayOf({nodes.left}).Get(), nodes.left) == nodes.left);
}

TEST(FindRelatedNode, FindsADescendant) {
    const CarNodes nodes;
    EXPECT_TRUE(Factory()->FindRelatedNode(ArrayOf({nodes.left}).Get(), nodes.top) == nodes.left);
}

TEST(FindRelatedNode, GivesNullForStrangers) {
    const CarNodes nodes;
    k3::Node* const other = AddNode(*nodes.scene, "other");
    EXPECT_FALSE(Factory()->FindRelatedNode(ArrayOf({nodes.left, other}).Get(), nodes.right));
}

TEST(FindRelatedNode, TestsInPointerOrder) {
    const CarNodes nodes;
    k3::Node* const first = std::min({nodes.axle, nodes.left, nodes.right}, std::less<k3::Node*>());
    EXPECT_TRUE(Factory()->FindRelatedNode(ArrayOf({nodes.right, nodes.left, nodes.axle}).Get(), nodes.top) ==
                first);
    EXPECT_TRUE(Factory()->FindRelatedNode(ArrayOf({nodes.axle, nodes.left, nodes.right}).Get(), nodes.top) ==
                first);
}

TEST(FindRelatedNode, GivesNullForNothing) {
    const CarNodes nodes;
    EXPECT_FALSE(Factory()->FindRelatedNode(ArrayOf({}).Get(), nodes.top));
    EXPECT_FALSE(Factory()->FindRelatedNode(ArrayOf({nodes.top}).Get(), nullptr));
    EXPECT_FALSE(Factory()->FindRelatedNode(nullptr, nodes.top));
}

TEST(FindRelatedNode, PassesOverMembersThatAreNoNodes) {
    const CarNodes nodes;
    EXPECT_FALSE(Factory()->FindRelatedNode(ArrayOf({nodes.car.At("car")}).Get(), nodes.top));
}

}  // namespace
}  // namespace qn::test
