// Instances and definitions that are made from scene nodes.

#include "frame/host/object3d.h"
#include "tests/behaviour/element_support.h"
#include "tests/behaviour/factory_support.h"
#include "tests/behaviour/foreign_table.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

/// car(axle(wheel wheel) body), nodes alone.
struct Car {
    Counted<HierarchyFactory> factory = NewFactory();
    Counted<LookupTable> table = NewTable();
    Counted<k3::Scene> scene = Make<k3::Scene>();
    k3::Node* car = AddNode(*scene, L"car");
    k3::Node* axle = AddNode(*car, L"axle");
    k3::Node* left = AddNode(*axle, L"wheel");
    k3::Node* right = AddNode(*axle, L"wheel");
    k3::Node* body = AddNode(*car, L"body");
    std::vector<k3::Node*> all{car, axle, left, right, body};
};

TEST(ReferenceFromNode, HoldsTheTreeBelow) {
    const Car c;
    const auto made = c.factory->CreateReferenceFromNode(c.car, c.table.Get());
    ASSERT_TRUE(made);
    EXPECT_EQ(Outline(*made), "car(axle(wheel wheel) body)");
}

TEST(ReferenceFromNode, IsEnteredInTheTableWithAnIdOfItsOwn) {
    const Car c;
    const auto made = c.factory->CreateReferenceFromNode(c.car, c.table.Get());
    const String id = made->GetProperty(Prop::kLocalId, 0).ToText();
    EXPECT_TRUE(id.NonEmpty());
    EXPECT_EQ(c.table->FindReferenceById(id), made);
}

TEST(ReferenceFromNode, KeepsTheMapsOfTheTableCurrent) {
    const Car c;
    const auto made = c.factory->CreateReferenceFromNode(c.car, c.table.Get());
    for (k3::Node* node : c.all) {
        const auto shown = c.table->GetInstanceOfNode(node);
        ASSERT_TRUE(shown) << node->GetName().ToUtf8();
        EXPECT_EQ(c.table->GetNodesOfInstance(shown.Get())->Find(node), 0);
        EXPECT_TRUE(node->GetParamVar(Param::kInstance).IsEmpty()) << "the table knows it";
    }
    EXPECT_EQ(UsesOf(*made), std::vector<Instance*>{c.table->GetInstanceOfNode(c.car).Get()});
}

TEST(ReferenceFromNode, WritesTheIdsOfItsPartsUnderItsOwn) {
    const Car c;
    const auto made = c.factory->CreateReferenceFromNode(c.car, c.table.Get());
    const std::string prefix = made->GetProperty(Prop::kLocalId, 0).ToText().ToUtf8() + "_n";
    for (k3::Node* node : c.all) {
        const auto id = c.table->GetInstanceOfNode(node)->GetProperty(Prop::kLocalId, 0).ToText().ToUtf8();
        EXPECT_EQ(id.compare(0, prefix.size(), prefix), 0) << id;
    }
}

TEST(ReferenceFromNode, IsNewForEachCall) {
    const Car c;
    const auto first = c.factory->CreateReferenceFromNode(c.car, c.table.Get());
    const auto second = c.factory->CreateReferenceFromNode(c.body, c.table.Get());
    EXPECT_FALSE(first == second);
    EXPECT_EQ(Outline(*second), "body");
}

TEST(ReferenceFromNode, StandsForTheObjectOfTheNode) {
    const Car c;
    const auto object = Make<k3::Object3D>();
    c.left->SetObject(object.Get());
    c.right->SetObject(object.Get());
    const auto made = c.factory->CreateReferenceFromNode(c.axle, c.table.Get());
    for (const Instance* wheel : ChildrenOf(*made))
        EXPECT_EQ(wheel->GetReference()->GetTarget(), Var(object));
    EXPECT_TRUE(made->GetTarget().IsEmpty());
}

TEST(ReferenceFromNode, TakesWhatTheNodeSays) {
    const Car c;
    const Matrix4<double> place = Shift(1, 2, 3);
    c.car->SetMatrix(&place, 0);
    c.car->SetMetadata(Cast<VarMap>(MapOf({{Var(L"a"), Var(1)}})));
    c.car->SetText(L"text");
    const auto made = c.factory->CreateReferenceFromNode(c.car, c.table.Get());
    EXPECT_EQ(made->GetProperty(Prop::kLocalMatrix, 0), Var(place));
    EXPECT_EQ(made->GetProperty(Prop::kMetadata, 0), MapOf({{Var(L"a"), Var(1)}}));
    EXPECT_EQ(made->GetProperty(Prop::kText, 0), Var(L"text"));
}

TEST(ReferenceFromNode, StoresTheLinksOfNodes) {
    const Car c;
    c.body->SetParamVar(0x6306, Var(c.right));
    c.factory->CreateReferenceFromNode(c.car, c.table.Get());
    const auto body = c.table->GetInstanceOfNode(c.body);
    auto* link = Cast<PersistentSelector>(body->GetProperty(Prop::kLink, 0));
    ASSERT_TRUE(link);
    EXPECT_EQ(LivePath(*link), (std::vector<Instance*>{c.table->GetInstanceOfNode(c.car).Get(),
                                                       c.table->GetInstanceOfNode(c.axle).Get(),
                                                       c.table->GetInstanceOfNode(c.right).Get()}));
}

TEST(ReferenceFromNode, WorksWithTheTableOfAnotherModuleWithoutItsMaps) {
    const Car c;
    const auto foreign = Make<ForeignTable>(c.table);
    const auto made = c.factory->CreateReferenceFromNode(c.car, foreign.Get());
    ASSERT_TRUE(made);
    EXPECT_EQ(Outline(*made), "car(axle(wheel wheel) body)");
    EXPECT_EQ(c.table->FindReferenceById(made->GetProperty(Prop::kLocalId, 0).ToText()), made);
    for (k3::Node* node : c.all)
        EXPECT_FALSE(c.table->GetInstanceOfNode(node));
}

TEST(StandaloneReference, HoldsTheTreeBelowOutsideOfAnyTable) {
    const Car c;
    const auto made = c.factory->CreateStandaloneReference(c.car);
    ASSERT_TRUE(made);
    EXPECT_EQ(Outline(*made), "car(axle(wheel wheel) body)");
    EXPECT_FALSE(made->GetLookupTable());
    EXPECT_TRUE(made->GetProperty(Prop::kLocalId, 0).IsEmpty());
    EXPECT_TRUE(made->GetChild(0)->GetProperty(Prop::kLocalId, 0).IsEmpty());
}

TEST(StandaloneReference, IsUsedByTheInstanceThatTheNodeKeeps) {
    const Car c;
    const auto made = c.factory->CreateStandaloneReference(c.car);
    ASSERT_TRUE(ShownBy(*c.car));
    EXPECT_EQ(DefinitionOf(*c.car), made.Get());
    EXPECT_EQ(UsesOf(*made), std::vector<Instance*>{ShownBy(*c.car)});
    EXPECT_EQ(ShownBy(*c.axle), made->GetChild(0).Get());
}

TEST(StandaloneReference, TakesWhatTheNodeSaysAndItsObject) {
    const Car c;
    const auto object = Make<k3::Object3D>();
    c.body->SetObject(object.Get());
    c.body->SetText(L"text");
    c.body->SetMetadata(Cast<VarMap>(MapOf({{Var(L"a"), Var(1)}})));
    const auto made = c.factory->CreateStandaloneReference(c.body);
    EXPECT_EQ(NameOf(*made), L"body");
    EXPECT_EQ(made->GetTarget(), Var(object));
    EXPECT_EQ(made->GetProperty(Prop::kText, 0), Var(L"text"));
    EXPECT_EQ(made->GetProperty(Prop::kMetadata, 0), MapOf({{Var(L"a"), Var(1)}}));
}

TEST(StandaloneReference, LeavesStoredSelectorsOfTheInstanceAloneAndUnread) {
    const Car c;
    const auto use = EnterInstance(*c.table, L"use");
    Selector selector = PathOf({use.Get()});
    selector.SetProperty(Prop::kText, Var(L"selector"));
    for (int i = 0; i < 3; ++i)
        use->AddSelector(selector);
    c.body->SetParamVar(Param::kInstance, Var(use));
    use->SetProperty(Prop::kName, Var(L"body"));
    const auto made = c.factory->CreateStandaloneReference(c.body);
    EXPECT_EQ(use->GetSelectorCount(), 3);
    EXPECT_TRUE(made->GetProperty(Prop::kText, 0).IsEmpty());
}

TEST(StandaloneReference, StoresTheLinksOfNodes) {
    const Car c;
    c.axle->SetParamVar(0x6306, Var(c.body));
    const auto made = c.factory->CreateStandaloneReference(c.car);
    auto* link = Cast<PersistentSelector>(ShownBy(*c.axle)->GetProperty(Prop::kLink, 0));
    ASSERT_TRUE(link);
    EXPECT_EQ(LivePath(*link), (std::vector<Instance*>{ShownBy(*c.car), ShownBy(*c.body)}));
}

TEST(InstanceFromNode, UsesADefinitionOfTheTreeBelow) {
    const Car c;
    const auto made = c.factory->CreateInstanceFromNode(c.car);
    ASSERT_TRUE(made);
    EXPECT_EQ(Outline(*made->GetReference()), "car(axle(wheel wheel) body)");
    EXPECT_EQ(NameOf(*made), L"car");
    EXPECT_EQ(ShownBy(*c.car), made.Get());
    EXPECT_FALSE(made->GetLookupTable());
    EXPECT_TRUE(made->GetProperty(Prop::kLocalId, 0).IsEmpty());
    EXPECT_EQ(UsesOf(*made->GetReference()), std::vector<Instance*>{made.Get()});
}

TEST(InstanceFromNode, KeepsWhatTheNodeSaysToItself) {
    const Car c;
    c.car->SetText(L"text");
    const auto made = c.factory->CreateInstanceFromNode(c.car);
    EXPECT_EQ(made->GetProperty(Prop::kText, 0), Var(L"text"));
    EXPECT_TRUE(made->GetReference()->GetProperty(Prop::kText, 0).IsEmpty());
}

TEST(InstanceFromNode, IsTheOneThatTheNodeShows) {
    const Car c;
    const auto use = NewUse(L"car");
    c.car->SetParamVar(Param::kInstance, Var(use));
    EXPECT_EQ(c.factory->CreateInstanceFromNode(c.car), use);
    EXPECT_EQ(Outline(*use->GetReference()), "car(axle(wheel wheel) body)");
}

TEST(InstanceFromNode, IsGivenEvenWithoutDefinition) {
    const Car c;
    const auto bare = NewInstance();
    c.car->SetParamVar(Param::kInstance, Var(bare));
    EXPECT_EQ(c.factory->CreateInstanceFromNode(c.car), bare);
    EXPECT_FALSE(bare->GetReference());
}

TEST(InstanceFromNode, StoresTheLinksOfNodes) {
    const Car c;
    c.axle->SetParamVar(0x6306, Var(c.body));
    c.factory->CreateInstanceFromNode(c.car);
    EXPECT_TRUE(Cast<PersistentSelector>(ShownBy(*c.axle)->GetProperty(Prop::kLink, 0)));
}

TEST(InstanceInTable, IsEnteredWithEverythingBelow) {
    const Car c;
    const auto made = c.factory->CreateInstanceInTable(c.car, c.table.Get());
    ASSERT_TRUE(made);
    EXPECT_EQ(made->GetLookupTable(), c.table.Get());
    EXPECT_EQ(Outline(*made->GetReference()), "car(axle(wheel wheel) body)");
    for (k3::Node* node : c.all) {
        const auto shown = c.table->GetInstanceOfNode(node);
        ASSERT_TRUE(shown);
        EXPECT_EQ(c.table->FindInstanceById(shown->GetProperty(Prop::kLocalId, 0).ToText()), shown);
    }
    EXPECT_EQ(c.table->GetInstanceOfNode(c.car), made);
}

TEST(InstanceInTable, IsMadeOutsideOfOneForANullTable) {
    const Car c;
    const auto made = c.factory->CreateInstanceInTable(c.car, nullptr);
    ASSERT_TRUE(made);
    EXPECT_FALSE(made->GetLookupTable());
    EXPECT_EQ(ShownBy(*c.car), made.Get());
}

TEST(InstanceInTable, StoresTheLinksOfNodes) {
    const Car c;
    c.axle->SetParamVar(0x6306, Var(c.body));
    c.factory->CreateInstanceInTable(c.car, c.table.Get());
    const auto axle = c.table->GetInstanceOfNode(c.axle);
    EXPECT_TRUE(Cast<PersistentSelector>(axle->GetProperty(Prop::kLink, 0)));
}

TEST(InstanceInTable, WorksWithTheTableOfAnotherModuleWithoutItsMaps) {
    const Car c;
    const auto made = c.factory->CreateInstanceInTable(c.car, Make<ForeignTable>(c.table).Get());
    ASSERT_TRUE(made);
    EXPECT_EQ(Outline(*made->GetReference()), "car(axle(wheel wheel) body)");
    EXPECT_FALSE(c.table->GetInstanceOfNode(c.car));
    EXPECT_EQ(c.table->FindInstanceById(made->GetProperty(Prop::kLocalId, 0).ToText()), made);
}

TEST(InstanceInTable, IsTheKnownOneForANodeOfTheTable) {
    const Car c;
    const auto first = c.factory->CreateInstanceInTable(c.car, c.table.Get());
    EXPECT_EQ(c.factory->CreateInstanceInTable(c.car, c.table.Get()), first);
    EXPECT_EQ(Outline(*first->GetReference()), "car(axle(wheel wheel) body)");
}

TEST(Instancing, NeverFoldsEqualNodesWithoutIds) {
    const Car c;
    c.factory->CreateInstanceInTable(c.car, c.table.Get());
    const auto left = c.table->GetInstanceOfNode(c.left), right = c.table->GetInstanceOfNode(c.right);
    EXPECT_FALSE(left == right);
    EXPECT_NE(left->GetReference(), right->GetReference());
}

TEST(Instancing, SharesTheDefinitionOfNodesWithOneServerId) {
    const Car c;
    for (k3::Node* node : {c.left, c.right})
        node->SetParamVar(Param::kBsId, Var(L"server"));
    c.factory->CreateInstanceInTable(c.car, c.table.Get());
    const auto left = c.table->GetInstanceOfNode(c.left), right = c.table->GetInstanceOfNode(c.right);
    EXPECT_FALSE(left == right);
    EXPECT_EQ(left->GetReference(), right->GetReference());
    EXPECT_EQ(c.table->FindReferenceByBsId(L"server"), left->GetReference());
}

TEST(Instancing, MakesNodesThatShowOneInstanceOne) {
    const Car c;
    const auto wheel = NewUse(L"wheel");
    for (k3::Node* node : {c.left, c.right})
        node->SetParamVar(Param::kInstance, Var(wheel));
    const auto made = c.factory->CreateInstanceInTable(c.car, c.table.Get());
    EXPECT_EQ(c.table->GetInstanceOfNode(c.left), wheel);
    EXPECT_EQ(c.table->GetInstanceOfNode(c.right), wheel);
    EXPECT_EQ(ChildrenOf(*c.table->GetInstanceOfNode(c.axle)->GetReference()),
              std::vector<Instance*>{wheel.Get()});
    EXPECT_EQ(c.table->GetNodesOfInstance(wheel.Get())->GetCount(), 2);
    EXPECT_EQ(Outline(*made->GetReference()), "car(axle(wheel) body)");
}

TEST(Instancing, FindsTheInstanceOfAServerIdInTheTable) {
    const Car c;
    const auto known = NewReferenceIn(*c.table)->CreateInstanceWithBsId(String(), L"server");
    const auto shown = NewUse(L"wheel");
    shown->SetProperty(Prop::kBsId, Var(L"server"));
    c.left->SetParamVar(Param::kInstance, Var(shown));
    c.factory->CreateInstanceInTable(c.car, c.table.Get());
    EXPECT_EQ(c.table->GetInstanceOfNode(c.left), known);
}

}  // namespace
}  // namespace qn::test
