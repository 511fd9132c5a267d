#include "construction/reference_building.h"

#include "tests/construction/construction_support.h"

namespace qn::test {
namespace {

using namespace qn::graph;

TEST(FillReference, GivesNullWithoutAnInstance) {
    EXPECT_FALSE(FillReference(Selector(), nullptr));
}

TEST(FillReference, GivesTheInstanceOfTheSelector) {
    const auto car = AssemblyBuilder("car").Child("wheel").Build();
    EXPECT_TRUE(FillReference(car.Path({"car"}), nullptr) == car.RootInstance());
}

TEST(FillReference, CopiesTheTransformsThatAreMatricesOntoTheInstance) {
    const auto car = AssemblyBuilder("car").Build();
    Selector selector = car.Path({"car"});
    selector.SetProperty(kLocalMatrix, Shift(2));
    selector.SetProperty(Prop::kOwnMatrix, Shift(3));
    selector.SetProperty(Prop::kThirdMatrix, Var(4));

    FillReference(selector, nullptr);

    EXPECT_EQ(ShiftOf(car.RootInstance()->GetProperty(kLocalMatrix, 0)), 2);
    EXPECT_EQ(ShiftOf(car.RootInstance()->GetProperty(Prop::kOwnMatrix, 0)), 3);
    EXPECT_TRUE(car.RootInstance()->GetProperty(Prop::kThirdMatrix, 0).IsEmpty());
}

TEST(FillReference, DoesNotInheritTransforms) {
    const auto car = AssemblyBuilder("car").Build();
    car.Root()->SetProperty(kLocalMatrix, Shift(5));
    FillReference(car.Path({"car"}), nullptr);
    EXPECT_TRUE(car.RootInstance()->GetProperty(kLocalMatrix, 0).IsEmpty());
}

TEST(FillReference, TakesTheContentOverToTheTarget) {
    const auto part = AssemblyBuilder("part").WithContent().Build();
    const auto target = Make<ReferenceImpl>();
    FillReference(part.Path({"part"}), target.Get());
    EXPECT_TRUE(target->GetTarget().IsSet());
    EXPECT_EQ(target->GetTarget(), part.Root()->GetTarget());
}

TEST(FillReference, MergesMetadataIntoThatOfTheTarget) {
    const auto part = AssemblyBuilder("part").Build();
    part.Root()->SetProperty(kMetadata, MapOf(L"Colour", Var(L"red")));
    const auto target = Make<ReferenceImpl>();
    target->SetProperty(kMetadata, MapOf(L"Mass", Var(7)));
    const VarMap* const before = target->GetMetadata(false);

    FillReference(part.Path({"part"}), target.Get());

    EXPECT_EQ(target->GetMetadata(false), before);
    EXPECT_EQ(Utf8(*before->Lookup(Var(L"Colour"))), "red");
    EXPECT_EQ(before->Lookup(Var(L"Mass"))->ToInt(), 7);
}

TEST(FillReference, LetsTheSourceWinWhereMetadataMeets) {
    const auto part = AssemblyBuilder("part").Build();
    part.Root()->SetProperty(kMetadata, MapOf(L"Mass", Var(8)));
    const auto target = Make<ReferenceImpl>();
    target->SetProperty(kMetadata, MapOf(L"Mass", Var(7)));
    FillReference(part.Path({"part"}), target.Get());
    EXPECT_EQ(target->GetMetadata(false)->Lookup(Var(L"Mass"))->ToInt(), 8);
}

TEST(FillReference, SharesMetadataWithATargetThatHasNone) {
    const auto part = AssemblyBuilder("part").Build();
    part.Root()->SetProperty(kMetadata, MapOf(L"Mass", Var(8)));
    const auto target = Make<ReferenceImpl>();
    FillReference(part.Path({"part"}), target.Get());
    EXPECT_EQ(target->GetMetadata(false), part.Root()->GetMetadata(false));
}

TEST(FillReference, TakesTheFlagOverEvenWhereTheSourceHasNone) {
    const auto part = AssemblyBuilder("part").Build();
    const auto target = Make<ReferenceImpl>();
    target->SetProperty(Prop::kFlag8000, Var(true));
    FillReference(part.Path({"part"}), target.Get());
    EXPECT_TRUE(target->GetProperty(Prop::kFlag8000, 0).IsEmpty());
}

TEST(FillReference, AddsTheChildrenToTheTargetAndLeavesThemInTheSource) {
    const auto car = AssemblyBuilder("car").Child("chassis").Child("wheel", 2).Build();
    const auto target = Make<ReferenceImpl>();

    FillReference(car.Path({"car"}), target.Get());

    EXPECT_EQ(TreeOf(*target), "(chassis,wheel,wheel)");
    EXPECT_EQ(TreeOf(*car.Root()), "car(chassis,wheel,wheel)");
    EXPECT_EQ(car.At("chassis")->GetParentReference(), target.Get());
}

TEST(FillReference, PassesOverPlacesWithoutAnInstance) {
    const auto top = Make<FakeTraverser>();
    const auto reference = Make<ReferenceImpl>();
    top->instance = LooseInstance(reference.Get());
    top->children = {Make<FakeTraverser>(), Make<FakeTraverser>()};
    const auto part = Make<ReferenceImpl>();
    top->children[1]->instance = LooseInstance(part.Get());
    Selector selector;
    selector.AssignTraverser(top.Get());

    FillReference(selector, nullptr);

    EXPECT_EQ(reference->GetChildCount(), 1);
}

TEST(FillReference, KeepsASelectorForAChildWithIdsOfItsOwn) {
    const auto top = Make<FakeTraverser>();
    const auto reference = Make<ReferenceImpl>();
    const auto part = Make<ReferenceImpl>();
    top->instance = LooseInstance(reference.Get());
    top->children = {Make<FakeTraverser>(), Make<FakeTraverser>()};
    top->children[0]->instance = LooseInstance(part.Get());
    top->children[1]->instance = LooseInstance(part.Get());
    top->children[1]->properties.At(Key(kBsId)) = Var(L"s1:2");
    Selector selector;
    selector.AssignTraverser(top.Get());

    FillReference(selector, nullptr);

    EXPECT_EQ(top->children[0]->instance->GetSelectorCount(), 0);
    EXPECT_EQ(top->children[1]->instance->GetSelectorCount(), 1);
}

TEST(FillReference, GivesAnUnusedDefinitionToTheInstance) {
    const auto source = Make<ReferenceImpl>();
    const auto instance = LooseInstance(source.Get());
    const auto target = Make<ReferenceImpl>();
    Selector selector;
    selector.AppendPathElement(instance.Get());

    FillReference(selector, target.Get());

    EXPECT_EQ(instance->GetReference(), target.Get());
    EXPECT_EQ(target->GetInstanceCount(), 1);
    EXPECT_TRUE(target->GetInstance(0) == instance.Get());
}

TEST(FillReference, LeavesAUsedDefinitionToItsUses) {
    const auto source = Make<ReferenceImpl>();
    const auto instance = LooseInstance(source.Get());
    const auto target = Make<ReferenceImpl>();
    const auto use = target->CreateInstance();
    Selector selector;
    selector.AppendPathElement(instance.Get());

    FillReference(selector, target.Get());

    EXPECT_EQ(instance->GetReference(), source.Get());
    EXPECT_EQ(target->GetInstanceCount(), 1);
}

TEST(FillReference, SeesNoChildrenBelowAnInstanceWithoutDefinition) {
    const auto top = Make<FakeTraverser>();
    top->instance = LooseInstance();
    top->children = {Make<FakeTraverser>()};
    const auto part = Make<ReferenceImpl>();
    top->children[0]->instance = LooseInstance(part.Get());
    const auto target = Make<ReferenceImpl>();
    Selector selector;
    selector.AssignTraverser(top.Get());

    EXPECT_TRUE(FillReference(selector, target.Get()) == top->instance);
    EXPECT_EQ(target->GetChildCount(), 0);
    EXPECT_EQ(top->instance->GetReference(), target.Get());
}

TEST(FillReference, GoesDownAChainOfTenThousandLevels) {
    const Assembly chain(DeepShape(10'000));
    const auto target = Make<ReferenceImpl>();
    FillReference(chain.Path({chain.Shape().definitions[0].name}), target.Get());
    EXPECT_EQ(target->GetChildCount(), 1);
}

TEST(TransferInstanceProperties, TakesWhatIsSetButNotTheLocalId) {
    const auto source = Make<ReferenceImpl>();
    const auto instance = LooseInstance(source.Get());
    instance->SetProperty(kName, Var(L"left wheel"));
    instance->SetProperty(kBsId, Var(L"s1:1"));
    instance->SetProperty(kLocalId, Var(L"n1"));
    const auto target = Make<ReferenceImpl>();
    target->SetProperty(Prop::kText, Var(L"kept"));

    TransferInstanceProperties(*instance, *target);

    EXPECT_EQ(NameOf(target.Get()), "left wheel");
    EXPECT_EQ(Utf8(target->GetProperty(kBsId, 0)), "s1:1");
    EXPECT_TRUE(target->GetProperty(kLocalId, 0).IsEmpty());
    EXPECT_EQ(Utf8(target->GetProperty(Prop::kText, 0)), "kept");
}

TEST(TransferInstanceProperties, TakesInheritedValues) {
    const auto source = Make<ReferenceImpl>();
    source->SetProperty(kName, Var(L"wheel"));
    const auto instance = LooseInstance(source.Get());
    const auto target = Make<ReferenceImpl>();
    TransferInstanceProperties(*instance, *target);
    EXPECT_EQ(NameOf(target.Get()), "wheel");
}

TEST(TransferInstanceProperties, MergesMetadataInTheMapThatTheTargetShares) {
    const auto source = Make<ReferenceImpl>();
    const auto instance = LooseInstance(source.Get());
    instance->SetProperty(kMetadata, MapOf(L"Colour", Var(L"red")));
    const auto target = Make<ReferenceImpl>();
    const Var shared = MapOf(L"Mass", Var(7));
    target->SetProperty(kMetadata, shared);

    TransferInstanceProperties(*instance, *target);

    EXPECT_EQ(target->GetMetadata(false), shared.ToMap());
    EXPECT_EQ(shared.size(), 2);
}

TEST(TransferInstanceProperties, SharesMetadataWithATargetThatHasNone) {
    const auto source = Make<ReferenceImpl>();
    const auto instance = LooseInstance(source.Get());
    instance->SetProperty(kMetadata, MapOf(L"Colour", Var(L"red")));
    const auto target = Make<ReferenceImpl>();
    TransferInstanceProperties(*instance, *target);
    EXPECT_EQ(target->GetMetadata(false), instance->GetMetadata(false));
}

/// An instance in a table, with `count` selectors that name it "selector 0" and so on.
Assembly WithSelectors(int count) {
    auto part = AssemblyBuilder("part").Build();
    for (int i = 0; i < count; ++i) {
        Selector selector = part.Path({"part"});
        selector.SetProperty(kName, Var(String::FromUtf8("selector " + std::to_string(i))));
        selector.SetProperty(Prop::kExternalIds, Var(L"x"));
        selector.SetProperty(kBsId, Var(L"s1:1"));
        part.RootInstance()->AddSelector(selector);
    }
    return part;
}

TEST(TransferSelectors, TakesTheirValuesButNoIds) {
    const auto part = WithSelectors(1);
    const auto target = Make<ReferenceImpl>();
    TransferSelectors(*part.RootInstance(), *target);
    EXPECT_EQ(NameOf(target.Get()), "selector 0");
    EXPECT_TRUE(target->GetProperty(Prop::kExternalIds, 0).IsEmpty());
    EXPECT_TRUE(target->GetProperty(kBsId, 0).IsEmpty());
    EXPECT_TRUE(target->GetProperty(kLocalId, 0).IsEmpty());
}

TEST(TransferSelectors, LetsTheLastOneWin) {
    const auto part = WithSelectors(2);
    const auto target = Make<ReferenceImpl>();
    TransferSelectors(*part.RootInstance(), *target);
    EXPECT_EQ(NameOf(target.Get()), "selector 1");
}

TEST(TransferSelectors, RemovesByRisingIndexSoTheThirdOfThreeSurvives) {
    const auto part = WithSelectors(3);
    const auto target = Make<ReferenceImpl>();

    TransferSelectors(*part.RootInstance(), *target);

    const Var& left = Cast<InstanceImpl>(part.RootInstance())->Selectors();
    EXPECT_EQ(left.size(), 1);
    EXPECT_EQ(left.KeyAt(0).ToInt(), 2);
}

TEST(TransferSelectors, RemovesAnOnlySelector) {
    const auto part = WithSelectors(1);
    const auto target = Make<ReferenceImpl>();
    TransferSelectors(*part.RootInstance(), *target);
    EXPECT_EQ(part.RootInstance()->GetSelectorCount(), 0);
}

}  // namespace
}  // namespace qn::test
