#include "graph/reference_impl.h"

#include "tests/graph/graph_support.h"

namespace qn::test {

namespace {

class ReferenceChildren : public testing::Test {
protected:
    std::vector<Instance*> Children(const Reference& reference) {
        std::vector<Instance*> children;
        for (int i = 0; i < reference.GetChildCount(); ++i)
            children.push_back(reference.GetChild(i).Get());
        return children;
    }

    Counted<ReferenceImpl> car = MakeReference();
    Counted<ReferenceImpl> bus = MakeReference();
    Counted<InstanceImpl> wheel = MakeInstance();
    Counted<InstanceImpl> door = MakeInstance();
};

/// An instance of another make.
class ForeignInstance final : public Instance {
public:
    Reference* GetReference() const override { return nullptr; }
    Reference* GetParentReference() const override { return nullptr; }
    int GetSelectorCount() const override { return 0; }
    Selector GetSelector(int) const override { return Selector(); }
    void RemoveSelector(int) override {}
    void AddSelector(const Selector&) override {}
    void ResolveSelectors(bool, Var*) override {}
    void StoreSelectors(bool, Var*) override {}
    void ResolveSelector(PersistentSelectorImpl*, String*, LookupTableImpl*, PersistentSelectorImpl*,
                         bool) override {}
    void AddLocalSelector(const Selector&) override {}
    void SetProperty(PropEnum, const Var&) override {}
    Var GetProperty(PropEnum, int) const override { return Var(); }
    LookupTable* GetLookupTable() const override { return nullptr; }
    String ToDebugString() const override { return String(); }
};

}  // namespace

TEST(Reference, AnswersItsKeyAndThoseOfItsAncestors) {
    const auto reference = MakeReference();
    EXPECT_STREQ(reference->GetInterfaceName(), "qn.graph.reference");
    for (const char* name : {"qn.graph.reference", "k3_refsource", "k3_reftarget", "k3_extension"})
        EXPECT_TRUE(reference->IsTypeOf(name)) << name;
    EXPECT_FALSE(reference->IsTypeOf("qn.graph.instance"));
}

TEST(Reference, CopyFromTakesParametersAndMetadataOnly) {
    const auto source = MakeReference();
    source->SetProperty(Prop::kName, Var(L"door"));
    source->SetProperty(Prop::kBsId, Var(L"s:1"));
    source->SetTarget(Var(L"door.qn"));
    const auto copy = MakeReference();
    EXPECT_EQ(copy->CopyFrom(source.Get(), 0), ResultEnum::kSuccess);
    EXPECT_EQ(copy->GetProperty(Prop::kBsId, 0), Var(L"s:1"));
    EXPECT_TRUE(copy->GetProperty(Prop::kName, 0).IsEmpty());
    EXPECT_TRUE(copy->GetTarget().IsEmpty());
}

TEST(Reference, CopyFromRefusesAnotherClass) {
    EXPECT_EQ(MakeReference()->CopyFrom(MakeInstance().Get(), 0), ResultEnum::kWrongClass);
}

TEST(Reference, KeepsItsTableWeakly) {
    auto table = Make<LookupTableImpl>();
    const auto reference = MakeReference(table.Get());
    EXPECT_EQ(reference->GetLookupTable(), table.Get());
    EXPECT_EQ(table->GetRefCount(), 1);
    table.Reset();
    EXPECT_EQ(reference->GetLookupTable(), nullptr);
}

TEST(Reference, CreateInstanceListsTheNewUseOnly) {
    const auto reference = MakeReference();
    const auto instance = reference->CreateInstance();
    EXPECT_EQ(instance->GetReference(), reference.Get());
    EXPECT_EQ(reference->GetInstanceCount(), 1);
    EXPECT_EQ(reference->GetInstance(0), instance.Get());
    EXPECT_EQ(reference->GetChildCount(), 0);
    EXPECT_EQ(instance->GetParentReference(), nullptr);
}

TEST(Reference, CountsDeadUsesAndGivesNullForThem) {
    const auto reference = MakeReference();
    reference->CreateInstance();
    EXPECT_EQ(reference->GetInstanceCount(), 1);
    EXPECT_FALSE(reference->GetInstance(0));
    EXPECT_FALSE(reference->GetInstance(1));
    EXPECT_FALSE(reference->GetInstance(-1));
}

TEST(Reference, CreateInstanceWithIdEntersANewUse) {
    const auto table = Make<LookupTableImpl>();
    const auto reference = MakeReference(table.Get());
    const auto instance = reference->CreateInstanceWithId(L"n7");
    EXPECT_EQ(table->FindInstanceById(L"n7"), instance.Get());
    EXPECT_EQ(table->instances.count(instance), 1u);
    EXPECT_EQ(instance->GetProperty(Prop::kLocalId, 0), Var(L"n7"));
    EXPECT_EQ(reference->GetInstance(0), instance.Get());
}

TEST(Reference, CreateInstanceWithIdGivesAnotherReferencesInstanceUnchanged) {
    const auto table = Make<LookupTableImpl>();
    const auto first = MakeReference(table.Get());
    const auto second = MakeReference(table.Get());
    const auto instance = first->CreateInstanceWithId(L"n7");
    EXPECT_EQ(second->CreateInstanceWithId(L"n7"), instance.Get());
    EXPECT_EQ(instance->GetReference(), first.Get());
    EXPECT_EQ(second->GetInstanceCount(), 0);
}

TEST(Reference, CreateInstanceWithAnEmptyIdGeneratesOne) {
    const auto table = Make<LookupTableImpl>();
    const auto reference = MakeReference(table.Get());
    const auto instance = reference->CreateInstanceWithId(String());
    EXPECT_EQ(instance->GetProperty(Prop::kLocalId, 0), Var(L"n1"));
}

TEST(Reference, WithoutTableAnIdMeansNothing) {
    const auto reference = MakeReference();
    EXPECT_TRUE(reference->CreateInstanceWithId(L"n7")->GetProperty(Prop::kLocalId, 0).IsEmpty());
    EXPECT_TRUE(reference->CreateInstanceWithId(String()));
}

TEST(Reference, AServerIdWithoutTableGivesNull) {
    EXPECT_FALSE(MakeReference()->CreateInstanceWithBsId(L"n1", L"s:1"));
    EXPECT_TRUE(MakeReference()->CreateInstanceWithBsId(L"n1", String()));
}

TEST(Reference, AKnownServerIdGivesItsInstance) {
    const auto table = Make<LookupTableImpl>();
    const auto first = MakeReference(table.Get());
    const auto instance = first->CreateInstanceWithBsId(L"n1", L"s:1");
    EXPECT_EQ(MakeReference(table.Get())->CreateInstanceWithBsId(L"n2", L"s:1"), instance.Get());
    EXPECT_FALSE(table->FindInstanceById(L"n2"));
}

TEST(Reference, ANewServerIdEntersBothIds) {
    const auto table = Make<LookupTableImpl>();
    const auto instance = MakeReference(table.Get())->CreateInstanceWithBsId(String(), L"s:1");
    EXPECT_EQ(table->FindInstanceByBsId(L"s:1"), instance.Get());
    EXPECT_EQ(table->FindInstanceById(L"n1"), instance.Get());
    EXPECT_EQ(instance->GetParamVar(0x9e), Var(L"s:1"));
    EXPECT_EQ(table->instances.count(instance), 1u);
}

TEST(Reference, ANewServerIdOverwritesATakenLocalId) {
    const auto table = Make<LookupTableImpl>();
    const auto reference = MakeReference(table.Get());
    const auto former = reference->CreateInstanceWithId(L"n7");
    const auto instance = reference->CreateInstanceWithBsId(L"n7", L"s:1");
    EXPECT_NE(instance, former.Get());
    EXPECT_EQ(table->FindInstanceById(L"n7"), instance.Get());
}

TEST(Reference, AnEmptyServerIdFallsBackToTheLocalOne) {
    const auto table = Make<LookupTableImpl>();
    const auto instance = MakeReference(table.Get())->CreateInstanceWithBsId(L"n7", String());
    EXPECT_EQ(table->FindInstanceById(L"n7"), instance.Get());
}

TEST_F(ReferenceChildren, AddingSetsTheParent) {
    AddChildren(*car, {wheel.Get(), door.Get()});
    EXPECT_EQ(Children(*car), (std::vector<Instance*>{wheel.Get(), door.Get()}));
    EXPECT_EQ(wheel->GetParentReference(), car.Get());
    EXPECT_TRUE(car->HasChild(door.Get()));
    EXPECT_FALSE(car->HasChild(nullptr));
    EXPECT_FALSE(bus->HasChild(door.Get()));
}

TEST_F(ReferenceChildren, AddingTwiceKeepsOneAndItsParent) {
    car->AddChild(wheel.Get());
    bus->AddChild(wheel.Get());
    car->AddChild(wheel.Get());
    EXPECT_EQ(car->GetChildCount(), 1);
    EXPECT_EQ(wheel->GetParentReference(), bus.Get());
}

TEST_F(ReferenceChildren, NullAndForeignInstancesAreNotAdded) {
    car->AddChild(nullptr);
    car->AddChild(Make<ForeignInstance>().Get());
    EXPECT_EQ(car->GetChildCount(), 0);
}

TEST_F(ReferenceChildren, RemovingKeepsTheOrderAndResetsTheParent) {
    const auto seat = MakeInstance();
    AddChildren(*car, {wheel.Get(), door.Get(), seat.Get()});
    car->RemoveChild(door.Get());
    EXPECT_EQ(Children(*car), (std::vector<Instance*>{wheel.Get(), seat.Get()}));
    EXPECT_EQ(door->GetParentReference(), nullptr);
    car->RemoveChildAt(0);
    EXPECT_EQ(Children(*car), std::vector<Instance*>{seat.Get()});
    EXPECT_EQ(wheel->GetParentReference(), nullptr);
}

TEST_F(ReferenceChildren, RemovingResetsTheParentAlsoWhenItIsAnother) {
    car->AddChild(wheel.Get());
    bus->AddChild(wheel.Get());
    car->RemoveChild(wheel.Get());
    EXPECT_EQ(wheel->GetParentReference(), nullptr);
    EXPECT_TRUE(bus->HasChild(wheel.Get()));
}

TEST_F(ReferenceChildren, RemovingWhatIsNotThereDoesNothing) {
    car->AddChild(wheel.Get());
    car->RemoveChild(nullptr);
    car->RemoveChild(door.Get());
    car->RemoveChildAt(1);
    car->RemoveChildAt(-1);
    EXPECT_EQ(car->GetChildCount(), 1);
    EXPECT_FALSE(car->GetChild(1));
    EXPECT_FALSE(car->GetChild(-1));
}

TEST_F(ReferenceChildren, ALongListStillKnowsWhatItHolds) {
    std::vector<Counted<InstanceImpl>> many;
    for (int i = 0; i < 100'000; ++i) {
        many.push_back(MakeInstance());
        car->AddChild(many.back().Get());
    }
    car->AddChild(many.front().Get());
    EXPECT_EQ(car->GetChildCount(), 100'000);
    car->RemoveChild(many[1].Get());
    EXPECT_FALSE(car->HasChild(many[1].Get()));
    car->AddChild(many[1].Get());
    EXPECT_TRUE(car->HasChild(many[1].Get()));
    EXPECT_EQ(car->GetChild(99'999), many[1].Get());
}

TEST_F(ReferenceChildren, MovingAnInstanceTakesItOutOfItsParentsListOfUses) {
    const auto use = car->CreateInstance();
    car->AddChild(use.Get());  // used by and child of the same definition
    bus->SetInstanceReference(use.Get());
    EXPECT_EQ(use->GetReference(), bus.Get());
    EXPECT_EQ(car->GetInstanceCount(), 0);
    EXPECT_EQ(bus->GetInstance(0), use.Get());
}

TEST_F(ReferenceChildren, MovingAnInstanceLeavesItInTheListOfItsFormerReference) {
    const auto part = MakeReference();
    const auto use = part->CreateInstance();
    car->AddChild(use.Get());
    bus->SetInstanceReference(use.Get());
    EXPECT_EQ(part->GetInstance(0), use.Get());
    EXPECT_EQ(bus->GetInstance(0), use.Get());
}

TEST_F(ReferenceChildren, MovingNothingDoesNothing) {
    bus->SetInstanceReference(nullptr);
    EXPECT_EQ(bus->GetInstanceCount(), 0);
}

TEST_F(ReferenceChildren, TheListOfUsesCanBeClearedAndFilled) {
    const auto use = car->CreateInstance();
    car->ClearInstances();
    EXPECT_EQ(car->GetInstanceCount(), 0);
    car->AddInstances({use.Get(), use.Get()});
    EXPECT_EQ(car->GetInstanceCount(), 2);
}

TEST_F(ReferenceChildren, AnInstanceInAListIsKeptAliveByIt) {
    car->AddChild(wheel.Get());
    InstanceImpl* borrowed = wheel.Get();
    wheel.Reset();
    EXPECT_EQ(borrowed->GetRefCount(), 1);
    EXPECT_EQ(borrowed->GetParentReference(), car.Get());
}

}  // namespace qn::test
