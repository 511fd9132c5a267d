#include "construction/hierarchy_factory_impl.h"

#include "frame/host/api.h"
#include "graph/node_traverser.h"
#include "tests/construction/construction_support.h"

#include <algorithm>

namespace qn::test {
namespace {

using namespace qn::graph;

Counted<NodeTraverser> TraverserOn(k3::Node* node, LookupTableImpl& table) {
    return Make<NodeTraverser>(&table, node, &table.nodeToInstance, &table.instanceToNodes, false);
}

/// car(chassis,wheel) as nodes.
struct CarScene {
    Counted<k3::Scene> scene = Make<k3::Scene>();
    k3::Node* car = AddNode(*scene, "car");
    k3::Node* chassis = AddNode(*car, "chassis");
    k3::Node* wheel = AddNode(*car, "wheel");
    Counted<LookupTableImpl> table = Make<LookupTableImpl>();
};

TEST(HierarchyFactory, IsMadeByKey) {
    EXPECT_TRUE(Cast<HierarchyFactory>(api->Create("QN.graph.hierarchyfactory").Get()));
}

TEST(HierarchyFactory, CanBeReachedAsNodeInstancing) {
    const auto factory = api->Create(ClassKey::kHierarchyFactory);
    EXPECT_TRUE(Cast<NodeInstancing>(factory.Get()));
}

TEST(HierarchyFactory, KnowsItsKeys) {
    const auto factory = Factory();
    EXPECT_STREQ(factory->GetInterfaceName(), "qn.graph.hierarchyfactory");
    EXPECT_TRUE(factory->IsTypeOf("QN.GRAPH.HIERARCHYFACTORY"));
    EXPECT_TRUE(factory->IsTypeOf("k3_extension"));
    EXPECT_FALSE(factory->IsTypeOf("k3_refsource"));
    EXPECT_FALSE(factory->IsTypeOf(nullptr));
}

TEST(HierarchyFactory, CopiesFromFactoriesOnly) {
    const auto factory = Factory();
    EXPECT_EQ(factory->CopyFrom(Factory().Get(), 0), ResultEnum::kSuccess);
    EXPECT_EQ(factory->CopyFrom(Make<ReferenceImpl>().Get(), 0), ResultEnum::kWrongClass);
    EXPECT_EQ(factory->CopyFrom(nullptr, 0), ResultEnum::kWrongClass);
}

TEST(HierarchyFactory, MakesEmptyTablesAndReferences) {
    EXPECT_TRUE(Factory()->CreateLookupTable());
    const auto reference = Factory()->CreateReference();
    EXPECT_EQ(reference->GetChildCount(), 0);
    EXPECT_FALSE(reference->GetLookupTable());
}

TEST(CreateReferenceFromTraverser, GivesNullForNull) {
    const CarScene nodes;
    const auto traverser = TraverserOn(nodes.car, *nodes.table);
    EXPECT_FALSE(Factory()->CreateReferenceFromTraverser(nullptr, nodes.table.Get(), L"e1"));
    EXPECT_FALSE(Factory()->CreateReferenceFromTraverser(traverser.Get(), nullptr, L"e1"));
}

TEST(CreateReferenceFromTraverser, MakesADefinitionOfANewId) {
    const CarScene nodes;
    const auto traverser = TraverserOn(nodes.car, *nodes.table);
    const auto reference =
        Factory()->CreateReferenceFromTraverser(traverser.Get(), nodes.table.Get(), L"mine");
    EXPECT_EQ(TreeOf(*reference), "car(chassis,wheel)");
    EXPECT_EQ(Utf8(reference->GetProperty(kLocalId, 0)), "mine");
    EXPECT_TRUE(nodes.table->FindReferenceById(L"mine") == reference);
    EXPECT_EQ(CarriedBy(*nodes.car), nullptr);
}

TEST(CreateReferenceFromTraverser, MakesTheInstanceUseTheNewDefinition) {
    const CarScene nodes;
    const auto traverser = TraverserOn(nodes.car, *nodes.table);
    const auto reference =
        Factory()->CreateReferenceFromTraverser(traverser.Get(), nodes.table.Get(), L"mine");
    EXPECT_EQ(nodes.table->nodeToInstance.Find(nodes.car)->GetReference(), reference.Get());
    EXPECT_EQ(reference->GetInstanceCount(), 1);
}

TEST(CreateReferenceFromTraverser, PutsTheDefinitionsIdBeforeNewIds) {
    const CarScene nodes;
    const auto traverser = TraverserOn(nodes.car, *nodes.table);
    Factory()->CreateReferenceFromTraverser(traverser.Get(), nodes.table.Get(), L"mine");
    EXPECT_TRUE(
        Utf8(nodes.table->nodeToInstance.Find(nodes.wheel)->GetProperty(kLocalId, 0)).starts_with("mine_n"));
    EXPECT_TRUE(nodes.table->GetCurrentIdPrefix().IsEmpty());
}

TEST(CreateReferenceFromTraverser, FillsAFoundLeafAndListsItsUse) {
    const CarScene nodes;
    const auto leaf = nodes.table->GetOrCreateReference(L"leaf");
    const auto use = leaf->CreateInstance();
    const auto traverser = TraverserOn(nodes.car, *nodes.table);

    const auto reference =
        Factory()->CreateReferenceFromTraverser(traverser.Get(), nodes.table.Get(), L"leaf");

    EXPECT_TRUE(reference == leaf);
    EXPECT_EQ(TreeOf(*leaf), "car(chassis,wheel)");
    EXPECT_EQ(leaf->GetInstanceCount(), 2);
    EXPECT_EQ(nodes.table->nodeToInstance.Find(nodes.car)->GetReference(), leaf.Get());
}

TEST(CreateReferenceFromTraverser, MayListTheUseOfAnUnusedLeafTwice) {
    const CarScene nodes;
    const auto leaf = nodes.table->GetOrCreateReference(L"leaf");
    const auto traverser = TraverserOn(nodes.car, *nodes.table);
    Factory()->CreateReferenceFromTraverser(traverser.Get(), nodes.table.Get(), L"leaf");
    EXPECT_EQ(leaf->GetInstanceCount(), 2);
    EXPECT_TRUE(leaf->GetInstance(0) == leaf->GetInstance(1));
}

TEST(CreateReferenceFromTraverser, GivesAFoundDefinitionWithContentUnchanged) {
    const CarScene nodes;
    const auto known = nodes.table->GetOrCreateReference(L"known");
    known->AddChild(LooseInstance().Get());
    known->SetProperty(kName, Var(L"known"));
    const auto traverser = TraverserOn(nodes.car, *nodes.table);

    const auto reference =
        Factory()->CreateReferenceFromTraverser(traverser.Get(), nodes.table.Get(), L"known");

    EXPECT_TRUE(reference == known);
    EXPECT_EQ(NameOf(known.Get()), "known");
    EXPECT_EQ(known->GetChildCount(), 1);
    EXPECT_EQ(nodes.table->nodeToInstance.Size(), 0u);
}

TEST(CreateReferenceFromTraverser, TakesSelectorsOverAndAwayFromTheInstance) {
    const CarScene nodes;
    const auto carried = nodes.table->GetOrCreateReference(String())->CreateInstanceWithId(String());
    nodes.car->SetParamVar(Param::kInstance, Var(carried));
    Selector selector;
    selector.AppendPathElement(carried.Get());
    selector.SetProperty(Prop::kText, Var(L"from the selector"));
    carried->AddSelector(selector);
    const auto traverser = TraverserOn(nodes.car, *nodes.table);

    const auto reference =
        Factory()->CreateReferenceFromTraverser(traverser.Get(), nodes.table.Get(), L"mine");

    EXPECT_EQ(Utf8(reference->GetProperty(Prop::kText, 0)), "from the selector");
    EXPECT_EQ(carried->GetSelector(0).GetPathElementCount(), 0);
}

TEST(CreateReferenceFromTraverser, GivesTheDefinitionAloneForAPositionWithoutInstance) {
    const CarScene nodes;
    const auto reference =
        Factory()->CreateReferenceFromTraverser(Make<FakeTraverser>().Get(), nodes.table.Get(), L"mine");
    ASSERT_TRUE(reference);
    EXPECT_EQ(reference->GetInstanceCount(), 0);
}

TEST(CreateReferenceFromNode, RegistersADefinitionUnderANewId) {
    const CarScene nodes;
    const auto reference = Factory()->CreateReferenceFromNode(nodes.car, nodes.table.Get());
    EXPECT_EQ(TreeOf(*reference), "car(chassis,wheel)");
    EXPECT_EQ(Utf8(reference->GetProperty(kLocalId, 0)), "e1");
    EXPECT_TRUE(nodes.table->FindReferenceById(L"e1") == reference);
}

TEST(CreateReferenceFromNode, EntersTheNodesInTheTablesMaps) {
    const CarScene nodes;
    Factory()->CreateReferenceFromNode(nodes.car, nodes.table.Get());
    EXPECT_EQ(nodes.table->nodeToInstance.Size(), 3u);
}

TEST(CreateReferenceFromNode, GivesNullForNull) {
    const CarScene nodes;
    EXPECT_FALSE(Factory()->CreateReferenceFromNode(nullptr, nodes.table.Get()));
    EXPECT_FALSE(Factory()->CreateReferenceFromNode(nodes.car, nullptr));
}

TEST(CreateReferenceFromNode, StoresTheNodesLinksAfterwards) {
    const CarScene nodes;
    nodes.chassis->SetParamVar(Param::kLinkedNode, Var(nodes.wheel, 0));
    Factory()->CreateReferenceFromNode(nodes.car, nodes.table.Get());
    const Var link = nodes.table->nodeToInstance.Find(nodes.chassis)->GetProperty(Prop::kLink, 0);
    EXPECT_TRUE(Cast<PersistentSelector>(link));
}

TEST(CreateReferenceFromNodeWithMaps, UsesTheGivenMapsAndId) {
    const CarScene nodes;
    NodeToInstance nodeMap;
    InstanceToNodes instanceMap;
    const auto reference = Factory()->CreateReferenceFromNodeWithMaps(nodes.car, nodes.table.Get(), L"file",
                                                                      nodeMap, instanceMap);
    EXPECT_EQ(Utf8(reference->GetProperty(kLocalId, 0)), "file");
    EXPECT_EQ(nodeMap.Size(), 3u);
    EXPECT_EQ(instanceMap.Size(), 3u);
    EXPECT_EQ(nodes.table->nodeToInstance.Size(), 0u);
}

TEST(CreateStandaloneReference, StaysOutsideOfTables) {
    const CarScene nodes;
    const auto reference = Factory()->CreateStandaloneReference(nodes.car);
    EXPECT_EQ(TreeOf(*reference), "car(chassis,wheel)");
    EXPECT_EQ(reference->GetLookupTable(), nullptr);
    EXPECT_TRUE(reference->GetProperty(kLocalId, 0).IsEmpty());
}

TEST(CreateStandaloneReference, LeavesTheInstanceItsSelectors) {
    const CarScene nodes;
    const auto carried = LooseInstance(Make<ReferenceImpl>().Get());
    nodes.car->SetParamVar(Param::kInstance, Var(carried));
    Selector selector;
    selector.AppendPathElement(carried.Get());
    carried->AddLocalSelector(selector);
    carried->SetProperty(kName, Var(L"car"));
    Factory()->CreateStandaloneReference(nodes.car);
    EXPECT_EQ(carried->GetSelectorCount(), 1);
}

TEST(CreateStandaloneReference, GivesNullForNull) {
    EXPECT_FALSE(Factory()->CreateStandaloneReference(nullptr));
}

TEST(CreateInstanceFromNode, KeepsTheInstanceOnTheNode) {
    const CarScene nodes;
    const auto instance = Factory()->CreateInstanceFromNode(nodes.car);
    ASSERT_TRUE(instance);
    EXPECT_EQ(CarriedBy(*nodes.car), instance.Get());
    EXPECT_EQ(instance->GetReference()->GetChildCount(), 2);
}

TEST(CreateInstanceFromNode, GivesTheSameInstanceAgain) {
    const CarScene nodes;
    const auto first = Factory()->CreateInstanceFromNode(nodes.car);
    EXPECT_TRUE(Factory()->CreateInstanceFromNode(nodes.car) == first);
}

TEST(CreateInstanceFromNode, GivesNullForNull) {
    EXPECT_FALSE(Factory()->CreateInstanceFromNode(nullptr));
    EXPECT_FALSE(Factory()->CreateInstanceInTable(nullptr, Make<LookupTableImpl>().Get()));
}

TEST(CreateInstanceInTable, RegistersTheWholeSubtree) {
    const CarScene nodes;
    const auto instance = Factory()->CreateInstanceInTable(nodes.car, nodes.table.Get());
    EXPECT_TRUE(nodes.table->FindInstanceById(instance->GetProperty(kLocalId, 0).ToText()) == instance);
    EXPECT_EQ(nodes.table->nodeToInstance.Size(), 3u);
    EXPECT_EQ(CarriedBy(*nodes.car), nullptr);
}

TEST(CreateInstanceInTable, WorksAsCreateInstanceFromNodeWithoutATable) {
    const CarScene nodes;
    const auto instance = Factory()->CreateInstanceInTable(nodes.car, nullptr);
    EXPECT_EQ(CarriedBy(*nodes.car), instance.Get());
}

TEST(CreateInstanceInTable, SharesADefinitionOfOneServerId) {
    const CarScene nodes;
    nodes.chassis->SetParamVar(Param::kBsId, Var(L"s1:1"));
    nodes.wheel->SetParamVar(Param::kBsId, Var(L"s1:1"));
    Factory()->CreateInstanceInTable(nodes.car, nodes.table.Get());
    Instance* const first = nodes.table->nodeToInstance.Find(nodes.chassis);
    Instance* const second = nodes.table->nodeToInstance.Find(nodes.wheel);
    EXPECT_NE(first, second);
    EXPECT_EQ(first->GetReference(), second->GetReference());
}

TEST(CreateInstanceInTable, SharesAnInstanceThatTwoNodesCarry) {
    const CarScene nodes;
    const auto shared = LooseInstance(Make<ReferenceImpl>().Get());
    nodes.chassis->SetParamVar(Param::kInstance, Var(shared));
    nodes.wheel->SetParamVar(Param::kInstance, Var(shared));
    const auto instance = Factory()->CreateInstanceInTable(nodes.car, nodes.table.Get());
    EXPECT_EQ(instance->GetReference()->GetChildCount(), 1);
    EXPECT_EQ(nodes.table->instanceToNodes.NodesOf(shared.Get()).size(), 2u);
}

TEST(CreateInstanceInTable, NeverFoldsEqualSubtreesWithoutIds) {
    const CarScene nodes;
    nodes.chassis->SetName(L"wheel");
    const auto instance = Factory()->CreateInstanceInTable(nodes.car, nodes.table.Get());
    ASSERT_EQ(instance->GetReference()->GetChildCount(), 2);
    EXPECT_NE(instance->GetReference()->GetChild(0)->GetReference(),
              instance->GetReference()->GetChild(1)->GetReference());
}

TEST(CreateInstanceInTable, KeepsASelectorForANodeWithAServerId) {
    const CarScene nodes;
    nodes.wheel->SetParamVar(Param::kBsId, Var(L"s1:1"));
    Factory()->CreateInstanceInTable(nodes.car, nodes.table.Get());
    EXPECT_EQ(nodes.table->nodeToInstance.Find(nodes.wheel)->GetSelectorCount(), 1);
    EXPECT_EQ(nodes.table->nodeToInstance.Find(nodes.chassis)->GetSelectorCount(), 0);
}

TEST(CreateLookupTableForScene, EntersAllTopNodesInOrder) {
    const CarScene nodes;
    AddNode(*nodes.scene, "trailer");
    const auto context = MakeContext();
    const auto table =
        CountedCast<LookupTableImpl>(Factory()->CreateLookupTableForScene(nodes.scene.Get(), context.Get()));
    EXPECT_EQ(table->scene.Get(), nodes.scene.Get());
    EXPECT_EQ(table->GetContext(), context.Get());
    EXPECT_EQ(table->nodeToInstance.Size(), 4u);
}

TEST(CreateLookupTableForScene, GivesNullForNull) {
    EXPECT_FALSE(Factory()->CreateLookupTableForScene(nullptr, MakeContext().Get()));
}

TEST(CreateLookupTableForScene, LosesPathsThatAreKnownByIdOnly) {
    const CarScene nodes;
    nodes.wheel->SetParamVar(Param::kBsId, Var(L"s1:1"));
    const auto table =
        CountedCast<LookupTableImpl>(Factory()->CreateLookupTableForScene(nodes.scene.Get(), nullptr));
    Instance* const wheel = table->nodeToInstance.Find(nodes.wheel);
    ASSERT_EQ(wheel->GetSelectorCount(), 1);
    EXPECT_EQ(wheel->GetSelector(0).GetPathElementCount(), 0);
}

TEST(GenerateNodes, GivesNullForNullAndForAnInvalidSelector) {
    const auto car = AssemblyBuilder("car").Build();
    EXPECT_FALSE(Factory()->GenerateNodes(car.Path({"car"}), nullptr));
    EXPECT_FALSE(Factory()->GenerateNodes(Selector(), Make<k3::Node>().Get()));
}

TEST(GenerateNodes, UsesTheRootItselfForTheSelector) {
    const auto car = AssemblyBuilder("car").Child("chassis").Child("wheel", 2).Under("wheel", "tyre").Build();
    const auto scene = Make<k3::Scene>();
    k3::Node* const root = scene->CreateEmptyNode(0, 0, 0);

    EXPECT_TRUE(Factory()->GenerateNodes(car.Path({"car"}), root) == root);

    EXPECT_EQ(TreeOf(*root), "car(chassis,wheel(tyre),wheel(tyre))");
    EXPECT_EQ(CarriedBy(*root), car.RootInstance());
}

TEST(GenerateNodes, KeepsTheMapsOfTheTableCurrent) {
    const auto car = AssemblyBuilder("car").Child("wheel", 2).Under("wheel", "tyre").Build();
    const auto scene = Make<k3::Scene>();
    k3::Node* const root = scene->CreateEmptyNode(0, 0, 0);
    Factory()->GenerateNodes(car.Path({"car"}), root);
    auto* const table = Cast<LookupTableImpl>(car.Table());
    EXPECT_EQ(table->nodeToInstance.Find(root), car.RootInstance());
    EXPECT_EQ(table->nodeToInstance.Size(), 5u);
    EXPECT_EQ(table->instanceToNodes.NodesOf(car.At("tyre")).size(), 2u);
}

TEST(GenerateNodes, WorksWithoutATable) {
    const auto car = AssemblyBuilder("car").Child("wheel").WithoutTable().Build();
    const auto scene = Make<k3::Scene>();
    k3::Node* const root = scene->CreateEmptyNode(0, 0, 0);
    Factory()->GenerateNodes(car.Path({"car"}), root);
    EXPECT_EQ(TreeOf(*root), "car(wheel)");
}

TEST(GenerateNodes, ShowsTheContentOfDefinitions) {
    const auto car = AssemblyBuilder("car").Child("wheel", 2).WithContent().Build();
    const auto scene = Make<k3::Scene>();
    k3::Node* const root = scene->CreateEmptyNode(0, 0, 0);
    Factory()->GenerateNodes(car.Path({"car"}), root);
    EXPECT_TRUE(root->GetFirstChild()->GetObject());
    EXPECT_EQ(root->GetFirstChild()->GetObject(), root->GetLastChild()->GetObject());
}

TEST(GenerateNodes, PlacesNodesByDefinitionAndOccurrence) {
    const auto car = AssemblyBuilder("car").Child("wheel").Build();
    car.Ref("wheel")->SetProperty(kLocalMatrix, Shift(1));
    car.At("wheel")->SetProperty(kLocalMatrix, Shift(10));
    const auto scene = Make<k3::Scene>();
    k3::Node* const root = scene->CreateEmptyNode(0, 0, 0);
    Factory()->GenerateNodes(car.Path({"car"}), root);
    EXPECT_EQ(ShiftOf(*root->GetFirstChild()), 11);
}

TEST(GenerateNodes, ClearsTheDefinitionsTransformAfterwards) {
    const auto car = AssemblyBuilder("car").Child("wheel").Build();
    car.Ref("wheel")->SetProperty(kLocalMatrix, Shift(1));
    const auto scene = Make<k3::Scene>();
    Factory()->GenerateNodes(car.Path({"car"}), scene->CreateEmptyNode(0, 0, 0));
    EXPECT_TRUE(car.Ref("wheel")->GetProperty(kLocalMatrix, 0).IsEmpty());
}

TEST(GenerateNodes, GivesNodesOfPlainInstancesNoMetadataOfTheirOwn) {
    const auto car = AssemblyBuilder("car").Child("wheel").Build();
    car.At("wheel")->SetProperty(kMetadata, MapOf(L"Mass", MapOf(L"kg", Var(7))));
    const auto scene = Make<k3::Scene>();
    k3::Node* const root = scene->CreateEmptyNode(0, 0, 0);
    Factory()->GenerateNodes(car.Path({"car"}), root);
    const VarMap* const metadata = root->GetFirstChild()->GetMetadata(false);
    EXPECT_FALSE(metadata && metadata->Lookup(Var(L"Mass")));
}

}  // namespace
}  // namespace qn::test
