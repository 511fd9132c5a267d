#include "graph/node_properties.h"
#include "tests/graph/table_fixture.h"

#include <string>

namespace qn::test {
namespace {

class NodeProperties : public testing::Test {
protected:
    Var Read(PropEnum id) const { return ReadNodeProperty(*node, id); }
    void Write(PropEnum id, const Var& value) { WriteNodeProperty(*node, id, value); }

    Counted<k3::Node> node = Make<k3::Node>();
};

Var Bytes() {
    return Var::Block("ab", 2);
}

TEST_F(NodeProperties, ReadEmptyOnAPlainNodeButForTheName) {
    for (int id = kFirstProp; id <= kLastProp; ++id)
        EXPECT_EQ(Read(PropEnum{id}).IsEmpty(), PropEnum{id} != Prop::kName) << id;
    EXPECT_TRUE(Read(Prop::kName).IsText());
}

TEST_F(NodeProperties, IgnoreNumbersThatNodesDoNotHave) {
    for (const int id :
         {-1, 0, 0x0a, 0x0b, 0x0d, 0x0e, 0x0f, 0x10, 0x16, 0x17, 0x18, 0x1c, 0x23, 0x24, 1000}) {
        Write(PropEnum{id}, Var(L"x"));
        EXPECT_TRUE(Read(PropEnum{id}).IsEmpty()) << id;
    }
}

TEST_F(NodeProperties, CutTheNameToItsBuffer) {
    const std::wstring name(600, L'x');
    node->SetName(name.c_str());
    EXPECT_EQ(Read(Prop::kName).ToText(), String(name.substr(0, 511)));
    const std::wstring fits(511, L'y');
    node->SetName(fits.c_str());
    EXPECT_EQ(Read(Prop::kName).ToText(), String(fits));
}

TEST_F(NodeProperties, TakeTheNameFromAnyValueWithAText) {
    Write(Prop::kName, Var(L"Rad größer"));
    EXPECT_EQ(node->GetName(), L"Rad größer");
    Write(Prop::kName, Var(7));
    EXPECT_EQ(node->GetName(), L"7");
}

TEST_F(NodeProperties, ReadMatricesOnlyIfTheyAreNoIdentity) {
    const Var moved(Matrix4<double>::Translation(1, 2, 3));
    for (const PropEnum id : {Prop::kLocalMatrix, Prop::kOwnMatrix, Prop::kThirdMatrix}) {
        Write(id, moved);
        EXPECT_EQ(Read(id), moved) << Key(id);
        Write(id, Var(7));
        EXPECT_EQ(Read(id), moved) << Key(id);
        Write(id, Var(Matrix4<double>()));
        EXPECT_TRUE(Read(id).IsEmpty()) << Key(id);
    }
}

TEST_F(NodeProperties, PutTheThreeMatricesInPlacesOfTheirOwn) {
    Write(Prop::kLocalMatrix, Var(Matrix4<double>::Translation(1, 0, 0)));
    Write(Prop::kOwnMatrix, Var(Matrix4<double>::Translation(2, 0, 0)));
    Write(Prop::kThirdMatrix, Var(Matrix4<double>::Translation(3, 0, 0)));
    Matrix4<double> matrix;
    node->GetMatrix(&matrix, 0);
    EXPECT_EQ(matrix.m[3][0], 1);
    node->GetMatrix(&matrix, 1);
    EXPECT_EQ(matrix.m[3][0], 2);
    node->GetThirdMatrix(&matrix);
    EXPECT_EQ(matrix.m[3][0], 3);
}

TEST_F(NodeProperties, HideThroughTheVisibleParameterInverted) {
    Write(Prop::kHidden, Var(true));
    EXPECT_FALSE(node->GetParamVar(Param::kVisible).ToBool());
    EXPECT_TRUE(Read(Prop::kHidden).ToBool());
    Write(Prop::kHidden, Var(1));
    EXPECT_TRUE(Read(Prop::kHidden).ToBool());
    Write(Prop::kHidden, Var(false));
    EXPECT_TRUE(Read(Prop::kHidden).IsEmpty());
}

TEST_F(NodeProperties, KeepIntegersThatAreNotZero) {
    for (const PropEnum id : {Prop::kInteger, Prop::kShortValue}) {
        Write(id, Var(7));
        EXPECT_EQ(Read(id), Var(7));
        Write(id, Var(std::int64_t{8}));
        EXPECT_EQ(Read(id), Var(8));
        Write(id, Var(9.0));
        Write(id, Var(L"9"));
        EXPECT_EQ(Read(id), Var(8));
        Write(id, Var(0));
        EXPECT_TRUE(Read(id).IsEmpty());
    }
}

TEST_F(NodeProperties, ReadAndWriteBlocksThroughDifferentParameters) {
    Write(Prop::kBlockA, Bytes());
    Write(Prop::kBlockB, Bytes());
    EXPECT_EQ(node->GetParamVar(Param::kWrittenBlockA), Bytes());
    EXPECT_EQ(node->GetParamVar(Param::kWrittenBlockB), Bytes());
    node->SetParamVar(Param::kBlockA, Var(L"a"));
    node->SetParamVar(Param::kBlockB, Var(L"b"));
    EXPECT_EQ(Read(Prop::kBlockA), Var(L"a"));
    EXPECT_EQ(Read(Prop::kBlockB), Var(L"b"));
}

TEST_F(NodeProperties, TakeNothingButBlocksForBlocks) {
    Write(Prop::kBlockA, Var(L"text"));
    EXPECT_TRUE(node->GetParamVar(Param::kWrittenBlockA).IsEmpty());
}

TEST_F(NodeProperties, TakeALinkAndDropIt) {
    Write(Prop::kLink, Var(Make<PersistentSelectorImpl>()));
    EXPECT_TRUE(Read(Prop::kLink).IsEmpty());
    node->SetParamVar(Param::kNodeLink9, Var(3));
    EXPECT_EQ(Read(Prop::kLink), Var(3));
}

TEST_F(NodeProperties, ShareMetadataWhenReadAndCopyItWhenWritten) {
    Var metadata;
    metadata.At(L"group").At(L"key") = Var(1);
    Write(Prop::kMetadata, metadata);
    metadata.At(L"group").At(L"key") = Var(2);
    EXPECT_EQ(*Read(Prop::kMetadata).Lookup(L"group")->Lookup(L"key"), Var(1));
    EXPECT_EQ(Read(Prop::kMetadata).ToMap(), node->GetMetadata(false));
    Write(Prop::kMetadata, Var(7));
    EXPECT_TRUE(Read(Prop::kMetadata).IsMap());
}

TEST_F(NodeProperties, RaiseTwoFlagsWhateverTheValue) {
    for (const Var& value : {Var(false), Var(0), Var(std::int64_t{0})}) {
        node->SetFlags(0);
        Write(Prop::kStopsInstancing, value);
        Write(Prop::kFlag8000, value);
        EXPECT_EQ(node->GetFlags(), NodeFlag::kStopsInstancing | NodeFlag::kFlag8000);
    }
    node->SetFlags(0);
    Write(Prop::kStopsInstancing, Var(L"true"));
    Write(Prop::kFlag8000, Var(1.0));
    EXPECT_EQ(node->GetFlags(), 0u);
}

TEST_F(NodeProperties, ReadAFlagThatTheyNeverWrite) {
    node->SetFlags(NodeFlag::kFlag200000);
    EXPECT_EQ(Read(Prop::kStopsInstancing), Var(true));
    node->SetFlags(NodeFlag::kStopsInstancing);
    EXPECT_EQ(Read(Prop::kStopsInstancing), Var(true));
    node->SetFlags(NodeFlag::kFlag8000);
    EXPECT_TRUE(Read(Prop::kStopsInstancing).IsEmpty());
    EXPECT_EQ(Read(Prop::kFlag8000), Var(true));
}

TEST_F(NodeProperties, CarryIdsInParameters) {
    const struct {
        PropEnum id;
        int parameter;
    } rows[] = {{Prop::kExternalIds, 0x97}, {Prop::kBsId, 0x9e}, {Prop::kAttachedIdentifier, 0xae}};
    for (const auto& [id, parameter] : rows) {
        Write(id, Var(L"id"));
        EXPECT_EQ(node->GetParamVar(parameter), Var(L"id"));
        EXPECT_EQ(Read(id), Var(L"id"));
        Write(id, Var());
        EXPECT_TRUE(Read(id).IsEmpty());
    }
}

TEST_F(NodeProperties, ReadTheLinkListOnlyAsArrayAndNeverWriteIt) {
    Var map;
    map.At(L"key") = Var(1);
    node->SetParamVar(Param::kLinkList, map);
    EXPECT_TRUE(Read(Prop::kLinkList).IsEmpty());
    const auto list = VarArray::Create(1);
    node->SetParamVar(Param::kLinkList, Var(list));
    EXPECT_EQ(Read(Prop::kLinkList).ToArray(), list.Get());
    Write(Prop::kLinkList, Var(VarArray::Create(3)));
    EXPECT_EQ(Read(Prop::kLinkList).ToArray(), list.Get());
}

TEST_F(NodeProperties, ExcludeForATrueValueAndNeverReadIt) {
    Write(Prop::kExcluded, Var(0));
    EXPECT_EQ(node->GetFlags(), 0u);
    Write(Prop::kExcluded, Var(L"yes"));
    EXPECT_EQ(node->GetFlags(), NodeFlag::kExcluded | NodeFlag::kStopsInstancing);
    EXPECT_TRUE(Read(Prop::kExcluded).IsEmpty());
}

TEST_F(NodeProperties, TakeTrueValuesAlone) {
    Write(Prop::kParam8a, Var(0));
    Write(Prop::kNoViewports, Var(L"false"));
    Write(Prop::kFlag20000000, Var(false));
    EXPECT_TRUE(Read(Prop::kParam8a).IsEmpty());
    EXPECT_TRUE(Read(Prop::kNoViewports).IsEmpty());
    EXPECT_TRUE(Read(Prop::kFlag20000000).IsEmpty());
    Write(Prop::kParam8a, Var(7));
    Write(Prop::kNoViewports, Var(7));
    Write(Prop::kFlag20000000, Var(7));
    EXPECT_EQ(Read(Prop::kParam8a), Var(7));
    EXPECT_EQ(Read(Prop::kNoViewports), Var(true));
    EXPECT_EQ(Read(Prop::kFlag20000000), Var(true));
}

TEST_F(NodeProperties, NeverClearAFlag) {
    node->SetFlags(NodeFlag::kStopsInstancing | NodeFlag::kFlag8000 | NodeFlag::kFlag20000000 |
                   NodeFlag::kFlag40000);
    const unsigned before = node->GetFlags();
    for (const PropEnum id : {Prop::kStopsInstancing, Prop::kFlag8000, Prop::kFlag20000000, Prop::kFlag40000})
        for (const Var& value : {Var(false), Var()})
            Write(id, value);
    EXPECT_EQ(node->GetFlags(), before);
}

TEST_F(NodeProperties, LimitOpacityToNumbersFromZeroToOne) {
    Write(Prop::kOpacity, Var(1.5));
    EXPECT_TRUE(Read(Prop::kOpacity).IsEmpty());
    EXPECT_EQ(node->GetOpacity(), 1.0f);
    Write(Prop::kOpacity, Var(-1.0f));
    EXPECT_EQ(Read(Prop::kOpacity), Var(0.0f));
    Write(Prop::kOpacity, Var(0.5f));
    EXPECT_EQ(Read(Prop::kOpacity), Var(0.5f));
    Write(Prop::kOpacity, Var(1));
    EXPECT_EQ(Read(Prop::kOpacity), Var(0.5f));
}

TEST_F(NodeProperties, KeepATextThatIsNotEmpty) {
    Write(Prop::kText, Var(L"note"));
    EXPECT_EQ(Read(Prop::kText), Var(L"note"));
    Write(Prop::kText, Var(7));
    EXPECT_EQ(Read(Prop::kText), Var(L"note"));
    Write(Prop::kText, Var(L""));
    EXPECT_TRUE(Read(Prop::kText).IsEmpty());
}

TEST_F(NodeProperties, RaiseOneFlagForTheBoolTrueAlone) {
    Write(Prop::kFlag40000, Var(1));
    Write(Prop::kFlag40000, Var(false));
    EXPECT_TRUE(Read(Prop::kFlag40000).IsEmpty());
    Write(Prop::kFlag40000, Var(true));
    EXPECT_EQ(Read(Prop::kFlag40000), Var(true));
}

}  // namespace
}  // namespace qn::test
