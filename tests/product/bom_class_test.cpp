#include "frame/host/api.h"
#include "tests/product/product_support.h"

namespace qn::test {
namespace {

using k3::Bom;
using k3::BomImpl;

TEST(Bom, AnswersToItsNamesAndThoseOfItsBases) {
    const auto bom = Make<BomImpl>();
    EXPECT_STREQ(bom->GetInterfaceName(), "qn.k3.bom");
    for (const char* name :
         {"qn.k3.bom", "QN.K3.Bom", "qn.k3.entity", "k3_refsource", "k3_reftarget", "k3_extension"})
        EXPECT_TRUE(static_cast<const Interface&>(*bom).IsTypeOf(name)) << name;
    EXPECT_FALSE(static_cast<const Interface&>(*bom).IsTypeOf("k3_node"));
}

TEST(Bom, IsMadeByKeyWithoutAScene) {
    const auto bom = CreateAs<Bom>("qn.k3.bom");
    ASSERT_TRUE(bom);
    EXPECT_EQ(bom->GetScene(), nullptr);
    EXPECT_EQ(bom->GetType(), k3::kTypeBom);
    EXPECT_EQ(bom->GetRootNode(), nullptr);
    EXPECT_FALSE(bom->GetLayers());
    EXPECT_FALSE(bom->GetNodes().IsSet());
}

TEST(Bom, CopiesNameAndParametersOfItsOwnKindOnly) {
    const auto scene = Make<k3::Scene>();
    const auto source = AddBom(*scene, L"design");
    const auto copy = Make<BomImpl>();
    EXPECT_EQ(copy->CopyFrom(source.Get(), 0), ResultEnum::kSuccess);
    EXPECT_EQ(copy->GetName(), String(L"design"));
    EXPECT_EQ(copy->GetParamVar(Param::kCarriedA), Var(4));
    EXPECT_EQ(copy->GetRootNode(), nullptr) << "what it shows stays with the source";
    EXPECT_EQ(ToInt(copy->CopyFrom(Make<k3::Entity>().Get(), 0)), -9);
    EXPECT_EQ(ToInt(copy->CopyFrom(nullptr, 0)), -9);
}

TEST(Bom, IsAnOwnerOfNodesForTheGraph) {
    const auto scene = Make<k3::Scene>();
    AddNode(*scene, "a");
    const auto bom = AddBom(*scene, L"design");
    const auto* owner = Cast<graph::NodeListOwner>(static_cast<Interface*>(bom.Get()));
    ASSERT_NE(owner, nullptr);
    EXPECT_EQ(owner->GetNodes(), bom->GetNodes());
    EXPECT_EQ(owner->GetLayers(), bom->GetLayers());
}

TEST(Bom, KeepsItsNodesAliveAfterTheScene) {
    auto scene = Make<k3::Scene>();
    AddNode(*scene, "a");
    const auto bom = AddBom(*scene, L"design");
    scene.Reset();
    EXPECT_EQ(bom->GetScene(), nullptr);
    EXPECT_EQ(NodesOf(*bom), "a");
    EXPECT_EQ(ToInt(bom->Activate()), -11);
}

}  // namespace
}  // namespace qn::test
