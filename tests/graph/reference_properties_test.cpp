#include "frame/host/object3d.h"
#include "tests/graph/graph_support.h"

namespace qn::test {

TEST(ReferenceProperties, IgnoreTheArgumentOfInheritance) {
    const auto reference = MakeReference();
    reference->SetProperty(Prop::kName, Var(L"door"));
    EXPECT_EQ(reference->GetProperty(Prop::kName, 0), Var(L"door"));
    EXPECT_EQ(reference->GetProperty(Prop::kName, 1), Var(L"door"));
}

TEST(ReferenceProperties, AnEmptyValueRemovesATrueOriginAndAMatrix) {
    const auto reference = MakeReference();
    reference->SetProperty(Prop::kOrigin, Var(L"s:1"));
    reference->SetProperty(Prop::kLocalMatrix, Var(Matrix4<double>()));
    reference->SetProperty(Prop::kOrigin, Var());
    reference->SetProperty(Prop::kLocalMatrix, Var());
    EXPECT_TRUE(reference->GetProperty(Prop::kOrigin, 0).IsEmpty());
    EXPECT_TRUE(reference->GetProperty(Prop::kLocalMatrix, 0).IsEmpty());
}

TEST(ReferenceProperties, AnEmptyOriginReplacesAFalseOne) {
    const auto reference = MakeReference();
    reference->SetProperty(Prop::kOrigin, Var(false));
    reference->SetProperty(Prop::kOrigin, Var());
    EXPECT_TRUE(reference->GetProperty(Prop::kOrigin, 0).IsEmpty());
}

TEST(ReferenceProperties, FourLiveInTheParameters) {
    const auto reference = MakeReference();
    reference->SetProperty(Prop::kBsId, Var(L"s:1"));
    reference->SetProperty(Prop::kExternalIds, Var(2));
    EXPECT_EQ(reference->GetParamVar(0x9e), Var(L"s:1"));
    EXPECT_EQ(reference->GetParamVar(0x97), Var(2));
    reference->SetParamVar(0xae, Var(3));
    reference->SetParamVar(0xaf, Var(4));
    EXPECT_EQ(reference->GetProperty(Prop::kAttachedIdentifier, 0), Var(3));
    EXPECT_EQ(reference->GetProperty(Prop::kPrimaryIdentifier, 0), Var(4));
}

TEST(ReferenceProperties, MetadataAreTheSharedMap) {
    const auto reference = MakeReference();
    EXPECT_TRUE(reference->GetProperty(Prop::kMetadata, 0).IsEmpty());
    Var map;
    map.At(L"colour") = Var(L"red");
    reference->SetProperty(Prop::kMetadata, map);
    EXPECT_EQ(reference->GetMetadata(false), map.ToMap());
}

namespace {

/// A definition whose content is a generic object with that flag.
Counted<ReferenceImpl> WithGeneric(int flag) {
    const auto generic = Make<k3::Generic>();
    generic->SetParam(0x40b, static_cast<ParamWord>(flag), kValueInteger);
    auto reference = MakeReference();
    reference->SetTarget(Var(generic));
    return reference;
}

}  // namespace

TEST(ReferenceProperties, GenericContentIsUnknownWithoutServerIdOrOrigin) {
    const auto reference = WithGeneric(1);
    reference->SetProperty(Prop::kGenericContent, Var(true));
    EXPECT_TRUE(reference->GetProperty(Prop::kGenericContent, 0).IsEmpty());
}

TEST(ReferenceProperties, GenericContentIsReadFromTheTarget) {
    for (const int flag : {0, 1}) {
        const auto reference = WithGeneric(flag);
        reference->SetProperty(Prop::kBsId, Var(L"s:1"));
        EXPECT_EQ(reference->GetProperty(Prop::kGenericContent, 0), Var(flag != 0));
    }
}

TEST(ReferenceProperties, AnOriginIsAsGoodAsAServerIdForGenericContent) {
    const auto reference = WithGeneric(1);
    reference->SetProperty(Prop::kOrigin, Var(L"s:1"));
    EXPECT_EQ(reference->GetProperty(Prop::kGenericContent, 0), Var(true));
}

TEST(ReferenceProperties, ATrueStoredValueOfGenericContentWins) {
    const auto reference = WithGeneric(0);
    reference->SetProperty(Prop::kBsId, Var(L"s:1"));
    reference->SetProperty(Prop::kGenericContent, Var(7));
    EXPECT_EQ(reference->GetProperty(Prop::kGenericContent, 0), Var(7));
    reference->SetProperty(Prop::kGenericContent, Var(0));
    EXPECT_EQ(reference->GetProperty(Prop::kGenericContent, 0), Var(false));
}

TEST(ReferenceProperties, OtherContentIsNotGeneric) {
    const auto reference = MakeReference();
    reference->SetProperty(Prop::kBsId, Var(L"s:1"));
    reference->SetTarget(Var(Make<k3::Object3D>()));
    EXPECT_TRUE(reference->GetProperty(Prop::kGenericContent, 0).IsEmpty());
}

}  // namespace qn::test
