#include "frame/host/object3d.h"
#include "tests/behaviour/element_support.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

struct Forwarded {
    PropEnum property;
    int parameter;
};
constexpr Forwarded kForwarded[] = {
    {PropEnum{0x13}, 0x97}, {PropEnum{0x14}, 0x9e}, {PropEnum{0x22}, 0xae}, {PropEnum{0x23}, 0xaf}};
constexpr int kGenericFlag = 0x40b;

Counted<k3::Generic> GenericWith(int flag) {
    auto generic = Make<k3::Generic>();
    generic->SetParamVar(kGenericFlag, Var(flag));
    return generic;
}

TEST(ReferenceProperties, KeepsWhatWasStoredWhateverInheritanceSays) {
    const auto reference = NewReference();
    reference->SetProperty(Prop::kName, Var(L"wheel"));
    for (const int inherit : {0, 1, 2})
        EXPECT_EQ(reference->GetProperty(Prop::kName, inherit), Var(L"wheel"));
}

TEST(ReferenceProperties, KeepsAnEmptyValueLikeAnyOther) {
    const auto reference = NewReference();
    reference->SetProperty(Prop::kName, Var(L"wheel"));
    reference->SetProperty(Prop::kName, Var());
    EXPECT_TRUE(SavesProperty(*reference, Prop::kName));
    EXPECT_TRUE(reference->GetProperty(Prop::kName, 0).IsEmpty());
}

TEST(ReferenceProperties, CreatesNoKeyByBeingAsked) {
    const auto reference = NewReference();
    for (int id = kFirstProp; id <= kLastProp; ++id)
        (void)reference->GetProperty(PropEnum{id}, 1);
    EXPECT_EQ(SavedMap(*reference, 0x1000).size(), 1) << "that of the local id, made by the save";
}

TEST(ReferenceProperties, LosesATrueOriginOrMatrixToAnEmptyValue) {
    for (const PropEnum id : {Prop::kOrigin, Prop::kLocalMatrix}) {
        for (const Var& stored : {Var(1), Var(L"from"), Var(Matrix4<double>())}) {
            const auto reference = NewReference();
            reference->SetProperty(id, stored);
            reference->SetProperty(id, Var());
            EXPECT_FALSE(SavesProperty(*reference, id)) << Key(id);
        }
    }
}

TEST(ReferenceProperties, OverwritesAFalseOriginOrMatrixWithAnEmptyValue) {
    for (const PropEnum id : {Prop::kOrigin, Prop::kLocalMatrix}) {
        for (const Var& stored : {Var(0), Var(false), Var(L"0")}) {
            const auto reference = NewReference();
            reference->SetProperty(id, stored);
            reference->SetProperty(id, Var());
            EXPECT_TRUE(SavesProperty(*reference, id)) << Key(id);
            EXPECT_TRUE(reference->GetProperty(id, 0).IsEmpty()) << Key(id);
        }
    }
}

TEST(ReferenceProperties, StoresAnEmptyOriginOrMatrixWhereThereWasNone) {
    for (const PropEnum id : {Prop::kOrigin, Prop::kLocalMatrix}) {
        const auto reference = NewReference();
        reference->SetProperty(id, Var());
        EXPECT_TRUE(SavesProperty(*reference, id)) << Key(id);
    }
}

TEST(ReferenceProperties, RemovesAKeyBySecondAndThirdEmptyValueInTurn) {
    const auto reference = NewReference();
    reference->SetProperty(Prop::kOrigin, Var(L"from"));
    reference->SetProperty(Prop::kOrigin, Var());
    EXPECT_FALSE(SavesProperty(*reference, Prop::kOrigin));
    reference->SetProperty(Prop::kOrigin, Var());
    EXPECT_TRUE(SavesProperty(*reference, Prop::kOrigin));
}

TEST(ReferenceMetadata, IsSharedAndStoredByTheBase) {
    const auto reference = NewReference();
    const Var map = MapOf({{Var(L"mass"), Var(12)}});
    reference->SetProperty(Prop::kMetadata, map);
    EXPECT_EQ(reference->GetMetadata(false), map.ToMap());
    EXPECT_EQ(reference->GetProperty(Prop::kMetadata, 0).ToMap(), map.ToMap());
    EXPECT_FALSE(SavesProperty(*reference, Prop::kMetadata));
    reference->SetProperty(Prop::kMetadata, Var(5));
    EXPECT_EQ(reference->GetMetadata(false), nullptr);
}

TEST(ReferenceMetadata, IsNotMadeByBeingRead) {
    const auto reference = NewReference();
    EXPECT_TRUE(reference->GetProperty(Prop::kMetadata, 0).IsEmpty());
    EXPECT_EQ(reference->GetMetadata(false), nullptr);
}

TEST(ReferenceForwarded, LivesInTheParameterTableAlone) {
    for (const auto& [property, parameter] : kForwarded) {
        const auto reference = NewReference();
        reference->SetProperty(property, Var(L"value"));
        EXPECT_EQ(reference->GetParamVar(parameter), Var(L"value"));
        EXPECT_FALSE(SavesProperty(*reference, property)) << Key(property);
        reference->SetParamVar(parameter, Var(9));
        EXPECT_EQ(reference->GetProperty(property, 0), Var(9)) << Key(property);
        reference->SetProperty(property, Var());
        EXPECT_EQ(reference->GetParamType(parameter), 0) << Key(property);
    }
}

TEST(ReferenceContentFlag, IsEmptyWithoutServerIdAndOrigin) {
    const auto reference = NewReference();
    reference->SetTarget(Var(GenericWith(1)));
    reference->SetProperty(Prop::kGenericContent, Var(7));
    EXPECT_TRUE(reference->GetProperty(Prop::kGenericContent, 0).IsEmpty());
    EXPECT_TRUE(SavesProperty(*reference, Prop::kGenericContent)) << "it is stored, yet";
}

TEST(ReferenceContentFlag, IsTheStoredValueBesideAServerIdOrAnOrigin) {
    for (const PropEnum id : {Prop::kBsId, Prop::kOrigin}) {
        const auto reference = NewReference();
        reference->SetProperty(id, Var(L"server"));
        reference->SetProperty(Prop::kGenericContent, Var(L"stored"));
        reference->SetTarget(Var(GenericWith(0)));
        EXPECT_EQ(reference->GetProperty(Prop::kGenericContent, 0), Var(L"stored")) << Key(id);
    }
}

TEST(ReferenceContentFlag, ComesFromAGenericTargetIfNoTrueValueIsStored) {
    for (const Var& stored : {Var(), Var(false), Var(0), Var(L"0")}) {
        const auto reference = NewReference();
        reference->SetProperty(Prop::kBsId, Var(L"server"));
        reference->SetProperty(Prop::kGenericContent, stored);
        for (const auto& [flag, answer] : {std::pair{0, false}, {1, true}, {-4, true}}) {
            reference->SetTarget(Var(GenericWith(flag)));
            const Var found = reference->GetProperty(Prop::kGenericContent, 0);
            EXPECT_EQ(found.GetTag(), VarTag::kBool) << flag;
            EXPECT_EQ(found, Var(answer)) << flag;
        }
        reference->SetTarget(Var(Make<k3::Generic>()));
        EXPECT_EQ(reference->GetProperty(Prop::kGenericContent, 0), Var(false)) << "no parameter";
    }
}

TEST(ReferenceContentFlag, IsEmptyForAnyOtherTarget) {
    for (const Var& target : {Var(), Var(L"file"), Var(Make<k3::Object3D>()), MapOf({})}) {
        const auto reference = NewReference();
        reference->SetProperty(Prop::kBsId, Var(L"server"));
        reference->SetProperty(Prop::kGenericContent, Var(false));
        reference->SetTarget(target);
        EXPECT_TRUE(reference->GetProperty(Prop::kGenericContent, 0).IsEmpty()) << int(target.GetTag());
    }
}

TEST(ReferenceContentFlag, NeedsAServerIdOrOriginThatIsTrue) {
    for (const PropEnum id : {Prop::kBsId, Prop::kOrigin}) {
        const auto reference = NewReference();
        reference->SetProperty(id, Var(L"0"));
        reference->SetTarget(Var(GenericWith(1)));
        EXPECT_TRUE(reference->GetProperty(Prop::kGenericContent, 0).IsEmpty()) << Key(id);
    }
}

}  // namespace
}  // namespace qn::test
