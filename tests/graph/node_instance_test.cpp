#include "graph/node_instance.h"
#include "tests/graph/traverser_fixture.h"

namespace qn::test {
namespace {

class InstanceOfNode : public TraverserFixture {
protected:
    Counted<Instance> WithTable(k3::Node* node) { return InstanceForNode(*node, table.Get(), *On(node)); }
    Counted<Instance> Free(k3::Node* node) { return InstanceForNode(*node, nullptr, *FreeOn(node)); }
    /// A node that carries a new instance of a new reference; neither is known to a table.
    k3::Node* CarryingNode(k3::Node* parent, const Counted<InstanceImpl>& instance) {
        k3::Node* node = parent->CreateChildNode(0, 0, 0);
        node->SetParamVar(Param::kInstance, Var(instance));
        node->SetName(instance->GetProperty(Prop::kName, 1).ToText().c_str());
        return node;
    }
    static Counted<InstanceImpl> Loose() {
        auto instance = Make<InstanceImpl>(Make<ReferenceImpl>().Get());
        instance->GetReference()->SetProperty(Prop::kName, Var(L"loose"));
        return instance;
    }
    static String IdOf(const HierarchyElement* element) {
        return element->GetProperty(Prop::kLocalId, 0).ToText();
    }
};

using NewInstance = InstanceOfNode;

TEST_F(NewInstance, IsMadeOnANewReferenceWithGeneratedIds) {
    const auto instance = WithTable(Top());
    ASSERT_TRUE(instance);
    EXPECT_EQ(IdOf(instance.Get()), L"n1");
    EXPECT_EQ(IdOf(instance->GetReference()), L"e1");
    EXPECT_EQ(table->FindInstanceById(L"n1"), instance);
    EXPECT_EQ(instance->GetReference()->GetInstance(0), instance);
}

TEST_F(NewInstance, IsNotKeptOnTheNodeWhenThereIsATable) {
    k3::Node* node = Top();
    WithTable(node);
    EXPECT_EQ(Carried(node), nullptr);
}

TEST_F(NewInstance, HasNoIdsAndIsKeptOnTheNodeWithoutTable) {
    k3::Node* node = Top();
    const auto instance = Free(node);
    ASSERT_TRUE(instance);
    EXPECT_EQ(Carried(node), instance.Get());
    EXPECT_TRUE(instance->GetProperty(Prop::kLocalId, 0).IsEmpty());
    EXPECT_EQ(instance->GetLookupTable(), nullptr);
    ASSERT_NE(instance->GetReference(), nullptr);
}

TEST_F(NewInstance, UsesTheReferenceOfTheNodesServerId) {
    k3::Node* first = Top();
    k3::Node* second = Top();
    first->SetParamVar(Param::kBsId, Var(L"s1"));
    second->SetParamVar(Param::kBsId, Var(L"s1"));
    const auto one = WithTable(first), two = WithTable(second);
    EXPECT_FALSE(one == two);
    EXPECT_EQ(one->GetReference(), two->GetReference());
    EXPECT_EQ(table->FindReferenceByBsId(L"s1"), one->GetReference());
}

TEST_F(NewInstance, NeverTakesTheNodesServerIdForItself) {
    k3::Node* node = Top();
    node->SetParamVar(Param::kBsId, Var(L"s1"));
    const auto instance = WithTable(node);
    EXPECT_TRUE(instance->GetProperty(Prop::kBsId, 0).IsEmpty());
    EXPECT_FALSE(table->FindInstanceByBsId(L"s1"));
}

TEST_F(NewInstance, NamesItselfAndAReferenceWithoutName) {
    k3::Node* first = Top(L"left wheel");
    k3::Node* second = Top(L"right wheel");
    first->SetParamVar(Param::kBsId, Var(L"s1"));
    second->SetParamVar(Param::kBsId, Var(L"s1"));
    const auto one = WithTable(first), two = WithTable(second);
    EXPECT_EQ(one->GetProperty(Prop::kName, 0).ToText(), L"left wheel");
    EXPECT_EQ(two->GetProperty(Prop::kName, 0).ToText(), L"right wheel");
    EXPECT_EQ(one->GetReference()->GetProperty(Prop::kName, 0).ToText(), L"left wheel");
}

TEST_F(NewInstance, StoresEmptyValuesAndSoInheritsNothing) {
    const auto instance = WithTable(Top());
    instance->GetReference()->SetProperty(Prop::kText, Var(L"of the reference"));
    EXPECT_TRUE(instance->GetProperty(Prop::kText, 1).IsEmpty());
}

TEST_F(NewInstance, TakesMetadataOnlyIfThereIsAny) {
    k3::Node* node = Top();
    EXPECT_EQ(WithTable(node)->GetMetadata(false), nullptr);
    k3::Node* other = Top();
    other->SetMetadata(Metadata(L"group", L"key", Var(1)).ToMap());
    EXPECT_EQ(MetadataOf(WithTable(other).Get(), L"group", L"key"), Var(1));
}

TEST_F(NewInstance, GivesTheNodesObjectToAReferenceMadeHere) {
    k3::Node* first = Top();
    k3::Node* second = Top();
    const auto object = Make<k3::Object3D>(), other = Make<k3::Object3D>();
    first->SetObject(object.Get());
    second->SetObject(other.Get());
    first->SetParamVar(Param::kBsId, Var(L"s1"));
    second->SetParamVar(Param::kBsId, Var(L"s1"));
    EXPECT_EQ(Cast<k3::Object3D>(WithTable(first)->GetReference()->GetTarget()), object.Get());
    EXPECT_EQ(Cast<k3::Object3D>(WithTable(second)->GetReference()->GetTarget()), object.Get());
}

TEST_F(NewInstance, IsMadeForANodeThatCarriesSomethingElse) {
    k3::Node* node = Top();
    node->SetParamVar(Param::kInstance, Var(Make<ReferenceImpl>()));
    EXPECT_TRUE(WithTable(node));
    Var noDescription;
    noDescription.At(4) = Var(L"name");
    node->SetParamVar(Param::kInstance, noDescription);
    const auto instance = WithTable(node);
    ASSERT_TRUE(instance);
    EXPECT_EQ(instance->GetProperty(Prop::kName, 0).ToText(), L"top");
}

// A carried instance.

using CarriedInstance = InstanceOfNode;

TEST_F(CarriedInstance, IsTheResultAndGetsIdsFromTheTable) {
    const auto loose = Loose();
    k3::Node* node = CarryingNode(scene.Get(), loose);
    EXPECT_EQ(WithTable(node), loose.Get());
    EXPECT_EQ(table->FindInstanceById(L"n1"), loose.Get());
    EXPECT_EQ(table->FindReferenceById(L"e1"), loose->GetReference());
}

TEST_F(CarriedInstance, IsTheResultAsItIsWithoutTable) {
    const auto loose = Loose();
    k3::Node* node = CarryingNode(scene.Get(), loose);
    EXPECT_EQ(Free(node), loose.Get());
    EXPECT_TRUE(loose->GetProperty(Prop::kLocalId, 0).IsEmpty());
    EXPECT_EQ(Carried(node), loose.Get());
}

TEST_F(CarriedInstance, KeepsIdsUnderWhichTheTableKnowsItBelowATopNode) {
    k3::Node* top = Top();
    const auto known = Known(L"mine");
    const String referenceId = IdOf(known->GetReference());
    k3::Node* node = CarryingNode(top, known);
    WithTable(node);
    EXPECT_EQ(IdOf(known.Get()), L"mine");
    EXPECT_EQ(IdOf(known->GetReference()), referenceId);
}

TEST_F(CarriedInstance, GetsNewIdsOnATopNodeEvenIfKnown) {
    const auto known = Known(L"mine");
    k3::Node* node = CarryingNode(scene.Get(), known);
    WithTable(node);
    EXPECT_EQ(IdOf(known.Get()), L"n1");
    EXPECT_EQ(IdOf(known->GetReference()), L"e2");
    EXPECT_EQ(table->FindInstanceById(L"n1"), known.Get());
    EXPECT_EQ(table->FindInstanceById(L"mine"), known.Get());
}

TEST_F(CarriedInstance, GetsANewIdIfTheTableKnowsAnotherUnderItsOwn) {
    Known(L"mine");
    const auto loose = Loose();
    loose->SetProperty(Prop::kLocalId, Var(L"mine"));
    WithTable(CarryingNode(Top(), loose));
    EXPECT_EQ(IdOf(loose.Get()), L"n1");
}

TEST_F(CarriedInstance, GivesWayToTheKnownOneOfItsServerId) {
    const auto known = Loose();
    known->SetParamVar(Param::kBsId, Var(L"s1"));
    known->SetProperty(Prop::kLocalId, Var(L"mine"));
    table->RegisterInstanceWithBsId(known.Get());
    const auto loose = Loose();
    loose->SetParamVar(Param::kBsId, Var(L"s1"));
    loose->GetReference()->SetParamVar(Param::kBsId, Var(L"s2"));
    k3::Node* node = CarryingNode(scene.Get(), loose);
    EXPECT_EQ(WithTable(node), known.Get());
    EXPECT_EQ(IdOf(known.Get()), L"mine");
    EXPECT_FALSE(table->FindReferenceByBsId(L"s2"));
    EXPECT_EQ(Carried(node), loose.Get());
}

TEST_F(CarriedInstance, IsRegisteredUnderAServerIdThatIsNew) {
    const auto loose = Loose();
    loose->SetParamVar(Param::kBsId, Var(L"s1"));
    loose->GetReference()->SetParamVar(Param::kBsId, Var(L"s2"));
    WithTable(CarryingNode(Top(), loose));
    EXPECT_EQ(table->FindInstanceByBsId(L"s1"), loose.Get());
    EXPECT_EQ(table->FindReferenceByBsId(L"s2"), loose->GetReference());
    EXPECT_EQ(IdOf(loose.Get()), L"n1");
    EXPECT_EQ(IdOf(loose->GetReference()), L"e1");
}

TEST_F(CarriedInstance, KeepsItsOwnReferenceWhenOneOfItsServerIdIsKnown) {
    const auto known = table->GetOrCreateBsReference(L"mine", L"s2");
    const auto loose = Loose();
    Reference* own = loose->GetReference();
    own->SetParamVar(Param::kBsId, Var(L"s2"));
    EXPECT_EQ(WithTable(CarryingNode(scene.Get(), loose)), loose.Get());
    EXPECT_EQ(loose->GetReference(), own);
    EXPECT_EQ(table->FindReferenceByBsId(L"s2"), known);
    EXPECT_TRUE(loose->GetProperty(Prop::kLocalId, 0).IsEmpty());
}

TEST_F(CarriedInstance, StaysAsItIsWhenItsReferenceIsKnown) {
    table->GetOrCreateBsReference(L"mine", L"s2");
    const auto loose = Loose();
    loose->GetReference()->SetParamVar(Param::kBsId, Var(L"s2"));
    loose->GetReference()->SetProperty(Prop::kText, Var(L"inherited"));
    WithTable(CarryingNode(scene.Get(), loose));
    EXPECT_EQ(loose->GetProperty(Prop::kText, 1).ToText(), L"inherited");
    EXPECT_TRUE(loose->GetProperty(Prop::kText, 0).IsEmpty());
}

TEST_F(CarriedInstance, FillsAKnownLeafFromItsOwnReference) {
    const auto known = table->GetOrCreateBsReference(L"mine", L"s2");
    const auto loose = Loose();
    Reference* own = loose->GetReference();
    own->SetParamVar(Param::kBsId, Var(L"s2"));
    own->AddChild(Loose().Get());
    WithTable(CarryingNode(scene.Get(), loose));
    EXPECT_EQ(known->GetChildCount(), 1);
    WithTable(CarryingNode(scene.Get(), loose));
    EXPECT_EQ(known->GetChildCount(), 1);
}

// What a node says beyond its instance.

using NodeOverrides = InstanceOfNode;

TEST_F(NodeOverrides, AreNoneWhereTheNodeSaysWhatTheInstanceSays) {
    const auto loose = Loose();
    loose->SetProperty(Prop::kName, Var(L"wheel"));
    WithTable(CarryingNode(Top(), loose));
    EXPECT_EQ(loose->GetSelectorCount(), 0);
}

TEST_F(NodeOverrides, AreComparedWithWhatTheInstanceInherits) {
    const auto loose = Loose();
    loose->GetReference()->SetProperty(Prop::kName, Var(L"wheel"));
    WithTable(CarryingNode(Top(), loose));
    EXPECT_EQ(loose->GetSelectorCount(), 0);
}

TEST_F(NodeOverrides, BecomeASelectorWithTheNodesPath) {
    k3::Node* top = Top();
    const auto above = Known(L"n7");
    Show(top, above.Get());
    const auto loose = Loose();
    k3::Node* node = CarryingNode(top, loose);
    node->SetText(L"left");
    WithTable(node);
    ASSERT_EQ(loose->GetSelectorCount(), 1);
    const auto* stored = Cast<PersistentSelectorImpl>(loose->Selectors().ValueAt(0));
    ASSERT_NE(stored, nullptr);
    ASSERT_EQ(stored->path.size(), 2u);
    EXPECT_EQ(stored->path[0].Get(), above.Get());
    EXPECT_EQ(stored->path[1].Get(), loose.Get());
    EXPECT_EQ(stored->GetProperty(Prop::kText, 0).ToText(), L"left");
    EXPECT_EQ(stored->attributes.size(), 1);
}

TEST_F(NodeOverrides, EndTheirPathAtANodeWithoutInstance) {
    k3::Node* top = Top();
    Show(top, Known(L"n7").Get());
    k3::Node* gap = Below(top);
    const auto loose = Loose();
    k3::Node* node = CarryingNode(gap, loose);
    node->SetText(L"left");
    WithTable(node);
    const auto* stored = Cast<PersistentSelectorImpl>(loose->Selectors().ValueAt(0));
    ASSERT_NE(stored, nullptr);
    EXPECT_EQ(stored->path.size(), 1u);
}

TEST_F(NodeOverrides, FindTheInstancesAboveOnTheNodesWithoutTable) {
    k3::Node* top = Top();
    const auto above = Loose();
    top->SetParamVar(Param::kInstance, Var(above));
    const auto loose = Loose();
    k3::Node* node = CarryingNode(top, loose);
    node->SetText(L"left");
    Free(node);
    const auto* stored = Cast<PersistentSelectorImpl>(loose->Selectors().ValueAt(0));
    ASSERT_NE(stored, nullptr);
    ASSERT_EQ(stored->path.size(), 2u);
    EXPECT_EQ(stored->path[0].Get(), above.Get());
}

TEST_F(NodeOverrides, CountMetadataAsDifferentEvenIfEqual) {
    const auto loose = Loose();
    const Var metadata = Metadata(L"group", L"key", Var(1));
    loose->SetProperty(Prop::kMetadata, metadata);
    k3::Node* node = CarryingNode(Top(), loose);
    node->SetMetadata(metadata.ToMap());
    WithTable(node);
    EXPECT_EQ(loose->GetSelectorCount(), 1);
}

TEST_F(NodeOverrides, LeaveIdsOut) {
    const auto loose = Loose();
    k3::Node* node = CarryingNode(Top(), loose);
    node->SetParamVar(Param::kBsId, Var(L"s9"));
    node->SetParamVar(Param::kExternalIds, Var(L"x"));
    WithTable(node);
    EXPECT_EQ(loose->GetSelectorCount(), 0);
}

TEST_F(NodeOverrides, CountTheEmptyNameOfANodeAsAName) {
    const auto loose = Loose();
    loose->GetReference()->SetProperty(Prop::kName, Var());
    k3::Node* node = CarryingNode(Top(), loose);
    node->SetName(L"");
    WithTable(node);
    EXPECT_EQ(loose->GetSelectorCount(), 1);
}

TEST_F(NodeOverrides, AreNoneForANewInstance) {
    k3::Node* node = Top();
    node->SetText(L"left");
    EXPECT_EQ(WithTable(node)->GetSelectorCount(), 0);
}

// A description in place of an instance.

class DescribedInstance : public InstanceOfNode {
protected:
    /// Entry 1 of the definition is `origin`; both the definition and a map origin carry parameters of their
    /// own.
    k3::Node* DescribedNode(const Var& origin) {
        definition.InitMap();
        definition.At(1) = origin;
        definition.At(4) = Var(L"Wheel");
        definition.ToMap()->SetParamVar(Param::kBsId, Var(L"s1"));
        definition.ToMap()->SetMetadata(Metadata(L"use", L"key", Var(1)).ToMap());
        description.InitMap();
        description.At(0) = definition;
        description.At(4) = Var(L"left wheel");
        description.At(6) = Var(Matrix4<double>::Translation(1, 0, 0));
        description.At(9) = Var(5);
        k3::Node* node = Top(L"node");
        node->SetParamVar(Param::kInstance, description);
        return node;
    }
    static Var Origin(bool isMap) {
        Var origin = isMap ? Var(VarMap::Create()) : Var(Make<ReferenceImpl>());
        auto* object = Cast<Extension>(origin);
        object->SetParamVar(Param::kBsId, Var(L"s2"));
        object->SetMetadata(Metadata(L"part", L"key", Var(2)).ToMap());
        return origin;
    }
    Var definition;
    Var description;
};

TEST_F(DescribedInstance, TakesIdsNamesAndMetadataFromTheDescription) {
    const auto instance = WithTable(DescribedNode(Origin(false)));
    ASSERT_TRUE(instance);
    EXPECT_EQ(table->FindInstanceByBsId(L"s1"), instance);
    EXPECT_EQ(instance->GetProperty(Prop::kBsId, 0).ToText(), L"s1");
    EXPECT_EQ(instance->GetProperty(Prop::kName, 0).ToText(), L"left wheel");
    EXPECT_EQ(MetadataOf(instance.Get(), L"use", L"key"), Var(1));
    Reference* reference = instance->GetReference();
    EXPECT_EQ(table->FindReferenceByBsId(L"s2"), reference);
    EXPECT_EQ(reference->GetProperty(Prop::kName, 0).ToText(), L"Wheel");
    EXPECT_EQ(MetadataOf(reference, L"part", L"key"), Var(2));
}

TEST_F(DescribedInstance, FillsPropertiesFromTheOuterMap) {
    k3::Node* node = DescribedNode(Origin(false));
    const Var blockA = Var::Block("a", 1), blockB = Var::Block("b", 1);
    description.At(7) = Var(Matrix4<double>::Translation(2, 0, 0));
    description.At(8) = Var(Matrix4<double>::Translation(3, 0, 0));
    description.At(0x0b) = blockA;
    description.At(0x0c) = blockB;
    description.At(0x0a) = Var(L"link");
    description.At(1) = Var(L"origin");
    const auto instance = WithTable(node);
    EXPECT_EQ(instance->GetProperty(Prop::kLocalMatrix, 0), Var(Matrix4<double>::Translation(1, 0, 0)));
    EXPECT_EQ(instance->GetProperty(Prop::kOwnMatrix, 0), Var(Matrix4<double>::Translation(2, 0, 0)));
    EXPECT_EQ(instance->GetProperty(Prop::kThirdMatrix, 0), Var(Matrix4<double>::Translation(3, 0, 0)));
    EXPECT_EQ(instance->GetProperty(Prop::kInteger, 0), Var(5));
    EXPECT_EQ(instance->GetProperty(Prop::kBlockA, 0), blockA);
    EXPECT_EQ(instance->GetProperty(Prop::kBlockB, 0), blockB);
    EXPECT_EQ(instance->GetProperty(Prop::kLink, 0), Var(L"link"));
    EXPECT_EQ(instance->GetProperty(Prop::kOrigin, 0), Var(L"origin"));
}

TEST_F(DescribedInstance, TakesTheNodesShortValueUnlessZero) {
    k3::Node* node = DescribedNode(Origin(false));
    node->SetShortValue(7);
    EXPECT_EQ(WithTable(node)->GetProperty(Prop::kShortValue, 0), Var(7));
}

TEST_F(DescribedInstance, GetsACopyOfTheReferenceWhereTheOriginIsAMap) {
    const auto known = table->GetOrCreateBsReference(L"mine", L"s2");
    const auto instance = WithTable(DescribedNode(Origin(true)));
    ASSERT_TRUE(instance);
    EXPECT_NE(instance->GetReference(), known.Get());
    EXPECT_EQ(instance->GetReference()->GetProperty(Prop::kOrigin, 0).ToText(), L"s2");
    EXPECT_EQ(table->FindReferenceByBsId(L"s2"), known);
}

TEST_F(DescribedInstance, IsAPlainNewOneWithoutTableIfItHasAServerId) {
    const auto instance = Free(DescribedNode(Origin(false)));
    ASSERT_TRUE(instance);
    EXPECT_EQ(instance->GetProperty(Prop::kName, 0).ToText(), L"node");
    EXPECT_TRUE(instance->GetProperty(Prop::kBsId, 0).IsEmpty());
}

TEST_F(DescribedInstance, IsMadeFromTheDescriptionWithoutTableIfItHasNone) {
    k3::Node* node = DescribedNode(Origin(false));
    definition.ToMap()->SetParamVar(Param::kBsId, Var());
    EXPECT_EQ(Free(node)->GetProperty(Prop::kName, 0).ToText(), L"left wheel");
}

}  // namespace
}  // namespace qn::test
