#include "frame/host/object3d.h"
#include "tests/behaviour/element_support.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

constexpr int kPropertiesChunk = 0x1000;

struct Forwarded {
    PropEnum property;
    int parameter;
};
constexpr Forwarded kForwarded[] = {
    {PropEnum{0x13}, 0x97}, {PropEnum{0x14}, 0x9e}, {PropEnum{0x22}, 0xae}, {PropEnum{0x23}, 0xaf}};

/// An instance whose definition answers `value` to the property.
Counted<Instance> UseOfReferenceWith(PropEnum id, const Var& value) {
    const auto reference = NewReference();
    reference->SetProperty(id, value);
    return reference->CreateInstance();
}

TEST(InstanceProperties, KeepsWhatWasStored) {
    const auto instance = NewInstance();
    instance->SetProperty(Prop::kName, Var(L"bolt"));
    instance->SetProperty(Prop::kLocalId, Var(L"n7"));
    EXPECT_EQ(instance->GetProperty(Prop::kName, 0), Var(L"bolt"));
    EXPECT_EQ(instance->GetProperty(Prop::kLocalId, 0), Var(L"n7"));
    instance->SetProperty(Prop::kName, Var(L"screw"));
    EXPECT_EQ(instance->GetProperty(Prop::kName, 1), Var(L"screw"));
}

TEST(InstanceProperties, AsksItsDefinitionForAMissingValueWhenInheritanceIsOn) {
    const auto instance = UseOfReferenceWith(Prop::kName, Var(L"bolt"));
    EXPECT_EQ(instance->GetProperty(Prop::kName, 1), Var(L"bolt"));
    EXPECT_EQ(instance->GetProperty(Prop::kName, -3), Var(L"bolt"));
    EXPECT_TRUE(instance->GetProperty(Prop::kName, 0).IsEmpty());
}

TEST(InstanceProperties, PrefersItsOwnValueToThatOfItsDefinition) {
    const auto instance = UseOfReferenceWith(Prop::kName, Var(L"bolt"));
    instance->SetProperty(Prop::kName, Var(L"bolt, upper left"));
    EXPECT_EQ(instance->GetProperty(Prop::kName, 1), Var(L"bolt, upper left"));
}

TEST(InstanceProperties, DoesNotInheritWhereItHasAnEmptyValue) {
    const auto instance = UseOfReferenceWith(Prop::kName, Var(L"bolt"));
    instance->SetProperty(Prop::kName, Var());
    EXPECT_TRUE(instance->GetProperty(Prop::kName, 1).IsEmpty());
    EXPECT_TRUE(SavesProperty(*instance, Prop::kName));
}

TEST(InstanceProperties, InheritsFromItsDefinitionAloneAndNotFromWhatThatCameFrom) {
    const auto original = NewReference();
    original->SetProperty(Prop::kBsId, Var(L"server"));
    const auto copy = original->CreateCopy();
    original->SetProperty(Prop::kText, Var(L"told later"));
    EXPECT_TRUE(copy->CreateInstance()->GetProperty(Prop::kText, 1).IsEmpty());
}

TEST(InstanceProperties, AnswersEmptyWithoutKeyAndDefinition) {
    EXPECT_TRUE(NewInstance()->GetProperty(Prop::kName, 1).IsEmpty());
}

TEST(InstanceProperties, CreatesNoKeyByBeingAsked) {
    const auto instance = NewInstance();
    (void)instance->GetProperty(Prop::kName, 1);
    (void)instance->GetProperty(Prop::kOrigin, 1);
    EXPECT_FALSE(SavesProperty(*instance, Prop::kName));
    EXPECT_FALSE(SavesProperty(*instance, Prop::kOrigin));
}

TEST(InstanceProperties, KeepsNumbersThatHaveNoMeaning) {
    const auto instance = NewInstance();
    for (const int id : {0x24, 0x500, -1})
        instance->SetProperty(PropEnum{id}, Var(id));
    for (const int id : {0x24, 0x500, -1})
        EXPECT_EQ(instance->GetProperty(PropEnum{id}, 0), Var(id));
}

TEST(InstanceProperties, InheritsWhatItsDefinitionComputes) {
    const auto generic = Make<k3::Generic>();
    generic->SetParamVar(0x40b, Var(1));
    const auto reference = NewReference();
    reference->SetProperty(Prop::kBsId, Var(L"server"));
    reference->SetTarget(Var(generic));
    const auto instance = reference->CreateInstance();
    EXPECT_EQ(instance->GetProperty(Prop::kGenericContent, 1), Var(true));
    EXPECT_TRUE(instance->GetProperty(Prop::kGenericContent, 0).IsEmpty());
}

TEST(InstanceOrigin, IsNeverInherited) {
    const auto instance = UseOfReferenceWith(Prop::kOrigin, Var(L"from"));
    EXPECT_TRUE(instance->GetProperty(Prop::kOrigin, 1).IsEmpty());
    instance->SetProperty(Prop::kOrigin, Var(L"own"));
    EXPECT_EQ(instance->GetProperty(Prop::kOrigin, 1), Var(L"own"));
}

TEST(InstanceOrigin, IsRemovedByAnEmptyValueIfItIsTrue) {
    for (const Var& stored : {Var(7), Var(true), Var(L"text"), Var(0.5), Var(NewReference())}) {
        const auto instance = NewInstance();
        instance->SetProperty(Prop::kOrigin, stored);
        instance->SetProperty(Prop::kOrigin, Var());
        EXPECT_TRUE(instance->GetProperty(Prop::kOrigin, 0).IsEmpty());
        EXPECT_FALSE(SavesProperty(*instance, Prop::kOrigin)) << int(stored.GetTag());
    }
}

TEST(InstanceOrigin, StaysWhenAnEmptyValueMeetsAFalseOne) {
    for (const Var& stored : {Var(0), Var(false), Var(L""), Var(L"0"), Var(L"False"), Var(0.0)}) {
        const auto instance = NewInstance();
        instance->SetProperty(Prop::kOrigin, stored);
        instance->SetProperty(Prop::kOrigin, Var());
        const Var kept = instance->GetProperty(Prop::kOrigin, 0);
        EXPECT_EQ(kept.GetTag(), stored.GetTag());
        EXPECT_EQ(kept, stored);
    }
}

TEST(InstanceOrigin, GetsNoKeyFromAnEmptyValue) {
    const auto instance = NewInstance();
    instance->SetProperty(Prop::kOrigin, Var());
    EXPECT_FALSE(SavesProperty(*instance, Prop::kOrigin));
}

TEST(InstanceMetadata, IsTheMapOfTheObjectAndShared) {
    const auto instance = NewInstance();
    const Var map = MapOf({{Var(L"mass"), Var(12)}});
    instance->SetProperty(Prop::kMetadata, map);
    EXPECT_EQ(instance->GetMetadata(false), map.ToMap());
    EXPECT_EQ(instance->GetProperty(Prop::kMetadata, 0).ToMap(), map.ToMap());
    EXPECT_FALSE(SavesProperty(*instance, Prop::kMetadata));
}

TEST(InstanceMetadata, IsEmptyWithoutAMapAndMakesNone) {
    const auto instance = NewInstance();
    EXPECT_TRUE(instance->GetProperty(Prop::kMetadata, 1).IsEmpty());
    EXPECT_EQ(instance->GetMetadata(false), nullptr);
}

TEST(InstanceMetadata, IsClearedByAnythingThatIsNoMap) {
    for (const Var& value : {Var(), Var(5), Var(L"text"), ArrayOf({Var(1)})}) {
        const auto instance = NewInstance();
        instance->SetProperty(Prop::kMetadata, MapOf({{Var(L"mass"), Var(12)}}));
        instance->SetProperty(Prop::kMetadata, value);
        EXPECT_EQ(instance->GetMetadata(false), nullptr) << int(value.GetTag());
        EXPECT_TRUE(instance->GetProperty(Prop::kMetadata, 0).IsEmpty());
    }
}

TEST(InstanceMetadata, IsNotInherited) {
    const auto instance = UseOfReferenceWith(Prop::kMetadata, MapOf({{Var(L"mass"), Var(12)}}));
    EXPECT_TRUE(instance->GetProperty(Prop::kMetadata, 1).IsEmpty());
}

TEST(InstanceForwarded, LivesInTheParameterTableAlone) {
    for (const auto& [property, parameter] : kForwarded) {
        const auto instance = NewInstance();
        instance->SetProperty(property, Var(L"value"));
        EXPECT_EQ(instance->GetParamVar(parameter), Var(L"value"));
        EXPECT_EQ(instance->GetProperty(property, 0), Var(L"value"));
        EXPECT_FALSE(SavesProperty(*instance, property)) << Key(property);
    }
}

TEST(InstanceForwarded, ReadsAParameterThatWasSetDirectly) {
    for (const auto& [property, parameter] : kForwarded) {
        const auto instance = NewInstance();
        instance->SetParamVar(parameter, Var(3));
        EXPECT_EQ(instance->GetProperty(property, 0), Var(3)) << Key(property);
    }
}

TEST(InstanceForwarded, IsErasedByAnEmptyValue) {
    for (const auto& [property, parameter] : kForwarded) {
        const auto instance = NewInstance();
        instance->SetProperty(property, Var(L"value"));
        instance->SetProperty(property, Var());
        EXPECT_EQ(instance->GetParamType(parameter), 0) << Key(property);
    }
}

TEST(InstanceForwarded, IsNotInherited) {
    for (const auto& [property, parameter] : kForwarded)
        EXPECT_TRUE(UseOfReferenceWith(property, Var(L"v"))->GetProperty(property, 1).IsEmpty()) << parameter;
}

TEST(InstanceForwarded, IsNotReadFromStoredProperties) {
    const auto instance = NewInstance();
    Feed(*instance, kPropertiesChunk, MapOf({{Var(0x14), Var(L"in the map")}}).ToMap());
    EXPECT_TRUE(instance->GetProperty(Prop::kBsId, 0).IsEmpty());
}

TEST(InstanceTable, IsThatOfItsDefinition) {
    auto table = NewTable();
    EXPECT_EQ(NewReference()->CreateInstance()->GetLookupTable(), nullptr);
    const auto instance = NewReferenceIn(*table)->CreateInstance();
    EXPECT_EQ(instance->GetLookupTable(), table);
    table.Reset();
    EXPECT_EQ(instance->GetLookupTable(), nullptr);
}

TEST(InstanceTable, ChangesWithTheDefinition) {
    const auto table = NewTable();
    const auto instance = NewReference()->CreateInstance();
    NewReferenceIn(*table)->SetInstanceReference(instance.Get());
    EXPECT_EQ(instance->GetLookupTable(), table);
}

}  // namespace
}  // namespace qn::test
