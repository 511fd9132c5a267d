#include "graph/instance_impl.h"

#include "tests/graph/graph_support.h"

namespace qn::test {

TEST(Instance, FreshOneHasNothing) {
    const auto instance = MakeInstance();
    EXPECT_EQ(instance->GetReference(), nullptr);
    EXPECT_EQ(instance->GetParentReference(), nullptr);
    EXPECT_EQ(instance->GetLookupTable(), nullptr);
    EXPECT_EQ(instance->GetSelectorCount(), 0);
    EXPECT_TRUE(instance->GetProperty(Prop::kName, 0).IsEmpty());
}

TEST(Instance, CountsTheReferenceThatItWasMadeWith) {
    const auto reference = MakeReference();
    const auto instance = MakeInstance(reference.Get());
    EXPECT_EQ(instance->GetReference(), reference.Get());
    EXPECT_EQ(reference->GetRefCount(), 2);
}

TEST(Instance, SetReferenceTakesTheNewOneAndLetsTheOldOneGo) {
    const auto first = MakeReference();
    const auto second = MakeReference();
    const auto instance = MakeInstance(first.Get());
    instance->SetReference(second.Get());
    EXPECT_EQ(first->GetRefCount(), 1);
    EXPECT_EQ(second->GetRefCount(), 2);
    instance->SetReference(second.Get());
    EXPECT_EQ(second->GetRefCount(), 2);
}

TEST(Instance, AnswersTheTableOfItsReference) {
    const auto table = Make<LookupTableImpl>();
    const auto reference = MakeReference(table.Get());
    EXPECT_EQ(MakeInstance(reference.Get())->GetLookupTable(), table.Get());
}

TEST(Instance, AnswersItsKeyAndThoseOfItsAncestors) {
    const auto instance = MakeInstance();
    EXPECT_STREQ(instance->GetInterfaceName(), "qn.graph.instance");
    for (const char* name :
         {"qn.graph.instance", "QN.Graph.Instance", "k3_refsource", "k3_reftarget", "k3_extension"})
        EXPECT_TRUE(instance->IsTypeOf(name)) << name;
    EXPECT_FALSE(instance->IsTypeOf("qn.graph.reference"));
    EXPECT_FALSE(instance->IsTypeOf(nullptr));
}

TEST(Instance, CopyFromTakesParametersAndMetadataOnly) {
    const auto reference = MakeReference();
    const auto source = MakeInstance(reference.Get());
    source->SetProperty(Prop::kName, Var(L"door"));
    source->SetProperty(Prop::kBsId, Var(L"s:1"));
    source->AddLocalSelector(PathOf({source.Get()}));
    const auto copy = MakeInstance();
    EXPECT_EQ(copy->CopyFrom(source.Get(), 0), ResultEnum::kSuccess);
    EXPECT_EQ(copy->GetProperty(Prop::kBsId, 0), Var(L"s:1"));
    EXPECT_TRUE(copy->GetProperty(Prop::kName, 0).IsEmpty());
    EXPECT_EQ(copy->GetReference(), nullptr);
    EXPECT_EQ(copy->GetSelectorCount(), 0);
}

TEST(Instance, CopyFromRefusesAnotherClass) {
    const auto instance = MakeInstance();
    EXPECT_EQ(instance->CopyFrom(MakeReference().Get(), 0), ResultEnum::kWrongClass);
    EXPECT_EQ(instance->CopyFrom(nullptr, 0), ResultEnum::kWrongClass);
}

TEST(Instance, InheritsAMissingPropertyFromItsReference) {
    const auto reference = MakeReference();
    reference->SetProperty(Prop::kName, Var(L"door"));
    const auto instance = MakeInstance(reference.Get());
    EXPECT_EQ(instance->GetProperty(Prop::kName, 1), Var(L"door"));
    EXPECT_TRUE(instance->GetProperty(Prop::kName, 0).IsEmpty());
}

TEST(Instance, WithoutReferenceInheritsNothing) {
    EXPECT_TRUE(MakeInstance()->GetProperty(Prop::kName, 1).IsEmpty());
}

TEST(Instance, DoesNotInheritForAKeyThatIsPresentAndEmpty) {
    const auto reference = MakeReference();
    reference->SetProperty(Prop::kName, Var(L"door"));
    const auto instance = MakeInstance(reference.Get());
    instance->SetProperty(Prop::kName, Var());
    EXPECT_TRUE(instance->GetProperty(Prop::kName, 1).IsEmpty());
}

TEST(Instance, DoesNotInheritWhatLivesInParametersOrMetadata) {
    const auto reference = MakeReference();
    reference->SetProperty(Prop::kBsId, Var(L"s:1"));
    reference->GetMetadata(true)->At(Var(L"key")) = Var(1);
    const auto instance = MakeInstance(reference.Get());
    EXPECT_TRUE(instance->GetProperty(Prop::kBsId, 1).IsEmpty());
    EXPECT_TRUE(instance->GetProperty(Prop::kMetadata, 1).IsEmpty());
}

TEST(Instance, NeverInheritsItsOriginLink) {
    const auto reference = MakeReference();
    reference->SetProperty(Prop::kOrigin, Var(L"s:1"));
    EXPECT_TRUE(MakeInstance(reference.Get())->GetProperty(Prop::kOrigin, 1).IsEmpty());
}

TEST(Instance, AnEmptyOriginRemovesATrueOne) {
    const auto instance = MakeInstance();
    instance->SetProperty(Prop::kOrigin, Var(L"s:1"));
    instance->SetProperty(Prop::kOrigin, Var());
    EXPECT_TRUE(instance->GetProperty(Prop::kOrigin, 0).IsEmpty());
}

TEST(Instance, AnEmptyOriginLeavesAFalseOneAlone) {
    const auto instance = MakeInstance();
    instance->SetProperty(Prop::kOrigin, Var(false));
    instance->SetProperty(Prop::kOrigin, Var());
    EXPECT_EQ(instance->GetProperty(Prop::kOrigin, 0), Var(false));
}

TEST(Instance, KeepsFourPropertiesInItsParameters) {
    constexpr struct {
        PropEnum property;
        int parameter;
    } kRows[] = {{Prop::kExternalIds, 0x97},
                 {Prop::kBsId, 0x9e},
                 {Prop::kAttachedIdentifier, 0xae},
                 {Prop::kPrimaryIdentifier, 0xaf}};
    const auto instance = MakeInstance();
    for (const auto& row : kRows) {
        instance->SetProperty(row.property, Var(row.parameter));
        EXPECT_EQ(instance->GetParamVar(row.parameter), Var(row.parameter));
        instance->SetParamVar(row.parameter, Var(L"other"));
        EXPECT_EQ(instance->GetProperty(row.property, 0), Var(L"other"));
    }
}

TEST(Instance, ItsMetadataPropertyIsTheSharedMap) {
    const auto instance = MakeInstance();
    EXPECT_TRUE(instance->GetProperty(Prop::kMetadata, 0).IsEmpty());
    Var map;
    map.At(L"colour") = Var(L"red");
    instance->SetProperty(Prop::kMetadata, map);
    EXPECT_EQ(instance->GetProperty(Prop::kMetadata, 0).ToMap(), map.ToMap());
    instance->SetProperty(Prop::kMetadata, Var());
    EXPECT_EQ(instance->GetMetadata(false), nullptr);
}

TEST(Instance, StoresAnEmptyValueUnderAnyOtherId) {
    const auto instance = MakeInstance();
    instance->SetProperty(Prop::kLocalMatrix, Var(1));
    instance->SetProperty(Prop::kLocalMatrix, Var());
    EXPECT_TRUE(instance->GetProperty(Prop::kLocalMatrix, 0).IsEmpty());
}

}  // namespace qn::test
