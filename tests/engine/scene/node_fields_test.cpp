#include "tests/engine/scene/scene_tests.h"

namespace qn::k3 {
namespace {

TEST(NodeFields, AreUnsetAtFirst) {
    const auto node = Make<Node>();
    Matrix4<double> matrix = Matrix4<double>::Translation(1, 2, 3);
    node->GetMatrix(&matrix, 0);
    EXPECT_TRUE(matrix.IsIdentity(0.0));
    EXPECT_TRUE(node->GetName().IsEmpty());
    EXPECT_TRUE(node->GetText().IsEmpty());
    EXPECT_EQ(node->GetOpacity(), 1.0f);
    EXPECT_EQ(node->GetIntegerAttribute(), 0);
    EXPECT_EQ(node->GetShortValue(), 0);
    EXPECT_EQ(node->GetFlags(), 0u);
    EXPECT_EQ(node->GetObject(), nullptr);
    EXPECT_EQ(node->GetTrack(99), nullptr);
}

TEST(NodeFields, TheThreeMatricesStandApart) {
    const auto node = Make<Node>();
    const auto first = Matrix4<double>::Translation(1, 0, 0);
    const auto second = Matrix4<double>::Translation(2, 0, 0);
    const auto third = Matrix4<double>::Translation(3, 0, 0);
    node->SetMatrix(&first, 0);
    node->SetMatrix(&second, 1);
    node->SetThirdMatrix(third);
    Matrix4<double> out;
    node->GetMatrix(&out, 0);
    EXPECT_EQ(out, first);
    node->GetOwnMatrix(&out);
    EXPECT_EQ(out, second);
    node->GetThirdMatrix(&out);
    EXPECT_EQ(out, third);
    EXPECT_EQ(node->GetWorldMatrix(), first);
    node->SetMatrix(nullptr, 0);
    node->GetMatrix(&out, 0);
    EXPECT_TRUE(out.IsIdentity(0.0));
}

TEST(NodeFields, TheDisplayNameFallsBackToTheName) {
    const auto node = Make<Node>();
    node->SetName(L"name");
    EXPECT_EQ(node->GetDisplayName(), String(L"name"));
    node->SetDisplayName(L"shown");
    EXPECT_EQ(node->GetDisplayName(), String(L"shown"));
    EXPECT_EQ(node->GetName(), String(L"name"));
}

TEST(NodeFields, ALongNameIsReportedCut) {
    const auto node = Make<Node>();
    node->SetName(std::wstring(600, L'x').c_str());
    EXPECT_EQ(node->GetDisplayName().Length(), 512);
    EXPECT_EQ(node->GetName().Length(), 600);
}

TEST(NodeFields, AttributeWordZeroIsTheFlagsWord) {
    const auto node = Make<Node>();
    node->SetAttributeWord(0, 0x8000);
    node->SetAttributeWord(1, 7);
    node->SetAttributeWord(2, 9);
    EXPECT_EQ(node->GetFlags(), 0x8000u);
    EXPECT_EQ(node->GetAttributeWord(0), 0x8000u);
    EXPECT_EQ(node->GetAttributeWord(1), 7u);
    EXPECT_EQ(node->GetAttributeWord(2), 0u);
}

TEST(NodeFields, ParameterFlagsIsTheFlagsWord) {
    const auto node = Make<Node>();
    node->SetFlags(NodeFlag::kExcluded | NodeFlag::kHidden);
    EXPECT_EQ(node->GetParamVar(Param::kFlags).ToInt(), 0x10000001);
    EXPECT_EQ(node->GetParam(Param::kFlags, 0, kValueInteger), 0x10000001u);
    node->SetParamVar(Param::kFlags, Var(4));
    EXPECT_EQ(node->GetFlags(), 4u);
    node->SetParam(Param::kFlags, 8, kValueInteger);
    EXPECT_EQ(node->GetFlags(), 8u);
}

TEST(NodeFields, ParameterVisibleIsTheInverseOfTheHiddenFlag) {
    const auto node = Make<Node>();
    EXPECT_TRUE(node->GetParamVar(Param::kVisible).ToBool());
    node->SetParamVar(Param::kVisible, Var(false));
    EXPECT_EQ(node->GetFlags(), NodeFlag::kHidden);
    EXPECT_FALSE(node->GetParamVar(Param::kVisible).ToBool());
    node->SetParamVar(Param::kVisible, Var(true));
    EXPECT_EQ(node->GetFlags(), 0u);
    node->SetVisible(0);
    EXPECT_EQ(node->GetFlags(), NodeFlag::kHidden);
}

TEST(NodeFields, BlocksAnswerWithWhatWasWrittenUnlessStoredThemselves) {
    const auto node = Make<Node>();
    node->SetParamVar(Param::kWrittenBlockA, Var(1));
    node->SetParamVar(Param::kWrittenBlockB, Var(2));
    EXPECT_EQ(node->GetParamVar(Param::kBlockA).ToInt(), 1);
    EXPECT_EQ(node->GetParamVar(Param::kBlockB).ToInt(), 2);
    node->SetParamVar(Param::kBlockA, Var(3));
    EXPECT_EQ(node->GetParamVar(Param::kBlockA).ToInt(), 3);
    EXPECT_EQ(node->GetParamVar(Param::kWrittenBlockA).ToInt(), 1);
}

TEST(NodeFields, AParameterIsErasedByAnEmptyValue) {
    const auto node = Make<Node>();
    node->SetParamVar(Param::kBsId, Var(L"x"));
    node->SetParamVar(Param::kBsId, Var());
    EXPECT_EQ(node->GetParamType(Param::kBsId), VarTag::kEmpty);
}

TEST(NodeFields, ClassNames) {
    const auto node = Make<Node>();
    const auto markup = Make<DetailMarkup>();
    const auto scene = Make<Scene>();
    EXPECT_TRUE(node->IsTypeOf("K3_Node"));
    EXPECT_TRUE(node->IsTypeOf("k3_refsource"));
    EXPECT_FALSE(node->IsTypeOf("k3_detail_markup"));
    EXPECT_TRUE(markup->IsTypeOf("k3_detail_markup"));
    EXPECT_TRUE(markup->IsTypeOf("k3_node"));
    EXPECT_TRUE(scene->IsTypeOf("k3_scene"));
    EXPECT_EQ(Cast<Scene>(static_cast<Node*>(scene.Get())), scene.Get());
    EXPECT_EQ(Cast<Scene>(node.Get()), nullptr);
    EXPECT_NE(Cast<SceneImpl>(static_cast<Node*>(scene.Get())), nullptr);
}

}  // namespace
}  // namespace qn::k3
