// Nodes that are made for a hierarchy.

#include "frame/host/object3d.h"
#include "tests/behaviour/element_support.h"
#include "tests/behaviour/factory_support.h"
#include "tests/support/assembly.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

AssemblyBuilder CarBuilder() {
    return AssemblyBuilder("car").Child("axle", 2).Under("axle", "wheel", 2);
}

struct Stage {
    Counted<HierarchyFactory> factory = NewFactory();
    Counted<k3::Scene> scene = Make<k3::Scene>();
    k3::Node* root = AddNode(*scene, L"root");
};

TEST(GeneratedNodes, StandForOneOccurrenceEach) {
    const Assembly car = CarBuilder().Build();
    const Stage s;
    EXPECT_EQ(s.factory->GenerateNodes(car.Path({"car"}), s.root).Get(), s.root);
    EXPECT_EQ(Outline(*s.root), "car(axle(wheel wheel) axle(wheel wheel))");
}

TEST(GeneratedNodes, ShowTheirInstances) {
    const Assembly car = CarBuilder().Build();
    const Stage s;
    s.factory->GenerateNodes(car.Path({"car"}), s.root);
    EXPECT_EQ(ShownBy(*s.root), car.RootInstance());
    const k3::Node* first = s.root->GetFirstChild();
    const k3::Node* second = first->GetNextSibling();
    EXPECT_EQ(ShownBy(*first), car.At("axle", 0));
    EXPECT_EQ(ShownBy(*second), car.At("axle", 1));
    for (const k3::Node* axle : {first, second}) {
        EXPECT_EQ(ShownBy(*axle->GetFirstChild()), car.At("wheel", 0)) << "both axles hold the same uses";
        EXPECT_EQ(ShownBy(*axle->GetLastChild()), car.At("wheel", 1));
    }
}

TEST(GeneratedNodes, EnterTheMapsOfTheTable) {
    const Assembly car = CarBuilder().Build();
    const Stage s;
    s.factory->GenerateNodes(car.Path({"car"}), s.root);
    EXPECT_EQ(car.Table()->GetInstanceOfNode(s.root).Get(), car.RootInstance());
    EXPECT_EQ(car.Table()->GetInstanceOfNode(s.root->GetFirstChild()).Get(), car.At("axle", 0));
    EXPECT_EQ(car.Table()->GetNodesOfInstance(car.RootInstance())->GetCount(), 1);
    EXPECT_EQ(car.Table()->GetNodesOfInstance(car.At("wheel", 1))->GetCount(), 2);
}

TEST(GeneratedNodes, AreMadeWithoutTableToo) {
    const Assembly car = CarBuilder().WithoutTable().Build();
    const Stage s;
    EXPECT_EQ(s.factory->GenerateNodes(car.Path({"car"}), s.root).Get(), s.root);
    EXPECT_EQ(Outline(*s.root), "car(axle(wheel wheel) axle(wheel wheel))");
    EXPECT_EQ(ShownBy(*s.root), car.RootInstance());
}

TEST(GeneratedNodes, JoinTheChildrenThatTheRootHasAlready) {
    const Assembly car = AssemblyBuilder("car").Child("wheel").Build();
    const Stage s;
    AddNode(*s.root, L"former");
    s.factory->GenerateNodes(car.Path({"car"}), s.root);
    EXPECT_EQ(Outline(*s.root), "car(former wheel)");
}

TEST(GeneratedNodes, ComeAgainWithEachCall) {
    const Assembly car = AssemblyBuilder("car").Child("wheel").Build();
    const Stage s;
    k3::Node* other = AddNode(*s.scene, L"other");
    s.factory->GenerateNodes(car.Path({"car"}), s.root);
    s.factory->GenerateNodes(car.Path({"car"}), other);
    EXPECT_EQ(Outline(*other), "car(wheel)");
    EXPECT_EQ(car.Table()->GetNodesOfInstance(car.RootInstance())->GetCount(), 2);
}

TEST(GeneratedNodes, TakeObjectsPlacesAndTexts) {
    const Assembly car = AssemblyBuilder("car").Child("wheel", 2).WithContent().Build();
    const Stage s;
    car.At("wheel", 1)->SetProperty(Prop::kLocalMatrix, Var(Shift(7)));
    car.At("wheel", 1)->SetProperty(Prop::kName, Var(L"spare"));
    car.Ref("wheel")->SetProperty(Prop::kText, Var(L"round"));
    s.factory->GenerateNodes(car.Path({"car"}), s.root);
    const k3::Node* first = s.root->GetFirstChild();
    const k3::Node* second = first->GetNextSibling();
    EXPECT_EQ(Var(first->GetObject()), car.Ref("wheel")->GetTarget());
    EXPECT_EQ(first->GetObject(), second->GetObject());
    EXPECT_EQ(PlaceOf(*first), 0);
    EXPECT_EQ(PlaceOf(*second), 7);
    EXPECT_EQ(second->GetName(), L"spare");
    EXPECT_EQ(first->GetText(), L"round");
}

TEST(GeneratedNodes, HaveNoMetadataOfTheirOwnWithoutStoredSelectors) {
    const Assembly car = AssemblyBuilder("car").Child("wheel").Build();
    const Stage s;
    car.At("wheel")->SetProperty(Prop::kMetadata, MapOf({{Var(L"group"), MapOf({{Var(L"a"), Var(1)}})}}));
    s.factory->GenerateNodes(car.Path({"car"}), s.root);
    EXPECT_FALSE(s.root->GetFirstChild()->GetMetadata(false));
}

TEST(GeneratedNodes, HaveMetadataOfStoredSelectors) {
    const Assembly car = AssemblyBuilder("car").Child("wheel").Build();
    const Stage s;
    const Var metadata = MapOf({{Var(L"group"), MapOf({{Var(L"a"), Var(1)}})}});
    Selector selector = car.Path({"car", "wheel"});
    selector.SetProperty(Prop::kMetadata, metadata);
    car.At("wheel")->AddSelector(selector);
    s.factory->GenerateNodes(car.Path({"car"}), s.root);
    EXPECT_EQ(Var(s.root->GetFirstChild()->GetMetadata(false)), metadata);
}

TEST(GeneratedNodes, DifferByOccurrenceWhereSelectorsSaySo) {
    const Assembly car = CarBuilder().Build();
    const Stage s;
    Selector selector = car.Path({"car", "axle#1", "wheel"});
    selector.SetProperty(Prop::kName, Var(L"flat"));
    car.At("wheel")->AddSelector(selector);
    s.factory->GenerateNodes(car.Path({"car"}), s.root);
    EXPECT_EQ(Outline(*s.root), "car(axle(wheel wheel) axle(flat wheel))");
}

TEST(GeneratedNodes, CanStartInTheMiddleOfAHierarchy) {
    const Assembly car = CarBuilder().Build();
    const Stage s;
    Selector selector = car.Path({"car", "axle#1", "wheel"});
    selector.SetProperty(Prop::kName, Var(L"flat"));
    car.At("wheel")->AddSelector(selector);
    s.factory->GenerateNodes(car.Path({"car", "axle#1"}), s.root);
    EXPECT_EQ(Outline(*s.root), "axle(flat wheel)");
    EXPECT_EQ(ShownBy(*s.root), car.At("axle", 1));
}

TEST(GeneratedNodes, EndWhereADefinitionContainsItself) {
    const Assembly ring = AssemblyBuilder("car").Child("box").Under("box", "car").Build();
    const Stage s;
    s.factory->GenerateNodes(ring.Path({"car"}), s.root);
    EXPECT_EQ(Outline(*s.root), "car(box(car))");
}

TEST(GeneratedNodes, AreJoinedByTheLinksOfTheirInstances) {
    const Assembly car = AssemblyBuilder("car").Child("wheel").Child("spare").Build();
    const Stage s;
    const auto link = LiveSelector({car.RootInstance(), car.At("spare")});
    car.At("wheel")->SetProperty(Prop::kLink, Var(link));
    s.factory->GenerateNodes(car.Path({"car"}), s.root);
    const k3::Node* wheel = s.root->GetFirstChild();
    EXPECT_EQ(Cast<k3::Node>(wheel->GetParamVar(0x6306)), wheel->GetNextSibling());
}

TEST(GeneratedNodes, TakeTheTransformOfTheDefinitionAwayFromIt) {
    const Assembly car = AssemblyBuilder("car").Child("wheel", 2).Build();
    const Stage s;
    car.Ref("wheel")->SetProperty(Prop::kLocalMatrix, Var(Shift(10)));
    car.At("wheel", 1)->SetProperty(Prop::kLocalMatrix, Var(Shift(1)));
    s.factory->GenerateNodes(car.Path({"car"}), s.root);
    EXPECT_EQ(PlaceOf(*s.root->GetFirstChild()), 10);
    EXPECT_EQ(PlaceOf(*s.root->GetLastChild()), 11);
    EXPECT_TRUE(car.Ref("wheel")->GetProperty(Prop::kLocalMatrix, 0).IsEmpty());
}

TEST(GeneratedNodes, OfALinkedDefinitionHangOnTheRootToo) {
    const Assembly car = AssemblyBuilder("car").Child("wheel").Build();
    const Stage s;
    car.Root()->SetTarget(ArrayOf({Var(L"elsewhere")}));
    EXPECT_EQ(s.factory->GenerateNodes(car.Path({"car"}), s.root).Get(), s.root);
    EXPECT_EQ(Outline(*s.root), "car(wheel)");
    EXPECT_EQ(ShownBy(*s.root), car.RootInstance());
}

TEST(GeneratedNodes, ReachTenThousandLevels) {
    constexpr int kLevels = 10000;
    const Assembly chain(DeepShape(kLevels));
    const Stage s;
    EXPECT_FALSE(s.factory->HasCircularReference(chain.Root(), nullptr));
    s.factory->GenerateNodes(PathOf({chain.RootInstance()}), s.root);
    int levels = 0;
    k3::Node* last = nullptr;
    for (k3::Node* node = s.root; node; node = node->GetFirstChild(), ++levels)
        last = node;
    EXPECT_EQ(levels, kLevels);
    EXPECT_EQ(s.factory->SelectorFromInstance(ShownBy(*last)).GetPathElementCount(), kLevels);

    const auto table = NewTable();
    const auto again = s.factory->CreateInstanceInTable(s.root, table.Get());
    EXPECT_EQ(again.Get(), chain.RootInstance());
    EXPECT_TRUE(table->GetInstanceOfNode(last));
    s.factory->ApplyNodeToInstance(s.root);
    EXPECT_EQ(NameOf(*ShownBy(*last)), last->GetName());
}

TEST(GeneratedNodes, StandInOneRowOfManyThousands) {
    constexpr int kParts = 20000;
    const Assembly row(FlatShape(kParts + 1));
    const Stage s;
    s.factory->GenerateNodes(PathOf({row.RootInstance()}), s.root);
    EXPECT_EQ(s.root->GetChildCount(), kParts);
    const auto table = NewTable();
    s.factory->CreateInstanceInTable(s.root, table.Get());
    EXPECT_EQ(table->GetInstanceOfNode(s.root->GetLastChild()).Get(), ShownBy(*s.root->GetLastChild()));
}

TEST(GeneratedNodes, AgreeWithTheNodesThatTheHierarchyWasMadeFrom) {
    const Stage s;
    k3::Node* original = BuildNodes(CarBuilder().Shape(), *s.scene);
    const auto table = NewTable();
    const auto use = s.factory->CreateInstanceInTable(original, table.Get());
    s.factory->GenerateNodes(PathOf({use.Get()}), s.root);
    EXPECT_EQ(Outline(*s.root), Outline(*original));
    const k3::Node* axle = original->GetFirstChild()->GetNextSibling();
    const k3::Node* again = s.root->GetFirstChild()->GetNextSibling();
    EXPECT_EQ(PlaceOf(*again), PlaceOf(*axle));
    EXPECT_EQ(again->GetLastChild()->GetObject(), axle->GetLastChild()->GetObject());
    EXPECT_EQ(PlaceOf(*again->GetLastChild()), PlaceOf(*axle->GetLastChild()));
}

}  // namespace
}  // namespace qn::test
