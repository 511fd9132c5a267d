#include "operations/build_hierarchy.h"

#include "construction/hierarchy_factory.h"
#include "frame/host/guid.h"
#include "product/bom.h"
#include "product/bom_impl.h"
#include "services/top_level_nodes.h"
#include "tests/operations/operations_support.h"

#include <set>

namespace qn::test {
namespace {

class BuildHierarchy : public OperationTest {
protected:
    ~BuildHierarchy() override { SeedGuids(0); }

    static std::string SelectorId(const Extension& object) { return Utf8(object.GetParamVar(Param::kBsId)); }
    /// The id that the next one to be handed out would be.
    static std::string NextId() {
        std::string digits = Guid::Create().ToText().ToUtf8();
        std::erase(digits, '-');
        return "s1:" + digits;
    }
};

TEST_F(BuildHierarchy, GivesEveryNodeAnInstanceOfADefinitionOfItsOwn) {
    k3::Node* const car = AddNode("car");
    const k3::Node* const left = AddNode("wheel", car);
    const k3::Node* const right = AddNode("wheel", car);
    EXPECT_EQ(Run(15), 1);
    ASSERT_NE(InstanceOf(car), nullptr);
    ASSERT_EQ(ReferenceOf(car)->GetChildCount(), 2);
    EXPECT_EQ(ReferenceOf(car)->GetChild(0).Get(), InstanceOf(left));
    EXPECT_EQ(ReferenceOf(car)->GetChild(1).Get(), InstanceOf(right));
    EXPECT_NE(ReferenceOf(left), ReferenceOf(right));
    EXPECT_EQ(InstanceOf(left)->GetParentReference(), ReferenceOf(car));
    EXPECT_EQ(InstanceOf(car)->GetParentReference(), nullptr);
}

TEST_F(BuildHierarchy, TakesNameMetadataAndContentIntoTheDefinition) {
    k3::Node* const node = AddNode("part");
    const auto content = Make<k3::Object3D>();
    node->SetObject(content.Get());
    node->SetMetadata(MetadataOf({"Colour"}).Get());
    Run(15);
    EXPECT_EQ(Utf8(ReferenceOf(node)->GetProperty(kName, 0)), "part");
    EXPECT_EQ(KeysOf(*ReferenceOf(node)), "Colour");
    EXPECT_EQ(ReferenceOf(node)->GetTarget().ToInterface(), content.Get());
}

TEST_F(BuildHierarchy, HandsOutIdsToDefinitionInstanceAndNodeInThisOrder) {
    const k3::Node* const node = AddNode("part");
    SeedGuids(3);
    Run(15);
    SeedGuids(3);
    for (const std::string& id : {Utf8(ReferenceOf(node)->GetProperty(kBsId, 0)),
                                  Utf8(InstanceOf(node)->GetProperty(kBsId, 0)), SelectorId(*node)})
        EXPECT_EQ(id, NextId());
}

TEST_F(BuildHierarchy, HandsOutIdsToStructuresAfterAllNodes) {
    AddNode("shown");
    const auto first = Make<k3::BomImpl>(scene.Get());
    first->Initialize(Var("first"), false);
    const auto second = Make<k3::BomImpl>(scene.Get());
    second->Initialize(Var("second"), false);
    SeedGuids(3);
    Run(15);
    SeedGuids(3);
    const auto nodes = graph::TopLevelNodes(scene.Get());
    EXPECT_EQ(nodes.size(), 2u);
    for (const k3::Node* const node : nodes) {
        EXPECT_EQ(Utf8(ReferenceOf(node)->GetProperty(kBsId, 0)), NextId());
        EXPECT_EQ(Utf8(InstanceOf(node)->GetProperty(kBsId, 0)), NextId());
        EXPECT_EQ(SelectorId(*node), NextId());
    }
    EXPECT_EQ(SelectorId(*first), NextId());
    EXPECT_EQ(SelectorId(*second), NextId());
}

TEST_F(BuildHierarchy, GivesTheSceneNeitherElementsNorId) {
    AddNode("part");
    Run(15);
    EXPECT_TRUE(scene->GetParamVar(Param::kInstance).IsEmpty());
    EXPECT_TRUE(scene->GetParamVar(Param::kBsId).IsEmpty());
}

TEST_F(BuildHierarchy, ReplacesWhatTheNodesHad) {
    const k3::Node* const node = AddUse("part", MakeReference("old").Get());
    Run(15);
    EXPECT_NE(Utf8(ReferenceOf(node)->GetProperty(kBsId, 0)), "old");
    EXPECT_TRUE(InstanceOf(node)->GetProperty(kOrigin, 0).IsEmpty());
}

TEST_F(BuildHierarchy, SendsOneChangeEventForAll) {
    AddNode("b", AddNode("a"));
    const unsigned before = scene->GetChangeEventCount();
    Run(15);
    EXPECT_EQ(scene->GetChangeEventCount(), before + 1);
}

TEST_F(BuildHierarchy, WithoutFactoryChangesNothingAndStillAnswersOne) {
    const k3::Node* const node = AddNode("part");
    const unsigned before = scene->GetChangeEventCount();
    ThePartners().canBeMade = false;
    EXPECT_EQ(Run(15), 1);
    EXPECT_EQ(InstanceOf(node), nullptr);
    scene->SetMetaValue(Var("a"), Var(1));
    AddNode("later");
    EXPECT_GT(scene->GetChangeEventCount(), before);  // the update was closed
}

TEST_F(BuildHierarchy, OpensNoUpdateOfASceneThatItCannotWatch) {
    mem::FailAllocations(0, 1);
    EXPECT_FALSE(Weak<k3::Scene>(scene.Get()));
    mem::FailAllocations(0, 1);
    graph::GenerateHierarchyWithBsIds(*scene);
    mem::FailAllocations(0, 0);
    const unsigned before = scene->GetChangeEventCount();
    AddNode("later");
    EXPECT_GT(scene->GetChangeEventCount(), before);  // none is left open
}

TEST_F(BuildHierarchy, GivesStructuresAnIdAndBuildsTheirNodes) {
    const k3::Node* const shown = AddNode("shown");
    const auto first = Make<k3::BomImpl>(scene.Get());
    first->Initialize(Var("first"), false);
    const auto second = Make<k3::BomImpl>(scene.Get());
    second->Initialize(Var("second"), false);
    EXPECT_EQ(Run(15), 1);
    for (const auto& bom : {first, second})
        EXPECT_EQ(SelectorId(*bom).substr(0, 3), "s1:");
    EXPECT_NE(SelectorId(*first), SelectorId(*second));
    EXPECT_NE(InstanceOf(shown), nullptr);
    const auto* const copy = Cast<k3::Node>(second->GetNodes().ValueAt(0));
    ASSERT_NE(copy, nullptr);
    EXPECT_NE(InstanceOf(copy), nullptr);
}

TEST_F(BuildHierarchy, GivesNoViewportAnId) {
    AddNode("part");
    k3::Viewport* const first = scene->CreateViewport(L"first");
    k3::Viewport* const second = scene->CreateViewport(L"second");
    Run(15);
    EXPECT_TRUE(first->GetParamVar(Param::kBsId).IsEmpty());
    EXPECT_TRUE(second->GetParamVar(Param::kBsId).IsEmpty());
    EXPECT_TRUE(scene->GetViewports()->GetParamVar(Param::kBsId).IsEmpty());
}

TEST_F(BuildHierarchy, AnEmptySceneStaysEmpty) {
    EXPECT_EQ(Run(15), 1);
    EXPECT_EQ(scene->GetChildCount(), 0);
}

TEST_F(BuildHierarchy, NeedsNoStackForDeepTrees) {
    k3::Node* node = nullptr;
    for (int level = 0; level < 20000; ++level)
        node = AddNode("deep", node);
    EXPECT_EQ(Run(15), 1);
    EXPECT_NE(InstanceOf(node), nullptr);
}

TEST_F(BuildHierarchy, GivesEveryElementAnIdOfItsOwn) {
    std::set<std::string> ids;
    std::vector<k3::Node*> nodes;
    for (int i = 0; i < 100; ++i)
        nodes.push_back(AddNode("part", i % 3 ? nodes.back() : nullptr));
    Run(15);
    for (const k3::Node* const node : nodes) {
        ids.insert(Utf8(ReferenceOf(node)->GetProperty(kBsId, 0)));
        ids.insert(Utf8(InstanceOf(node)->GetProperty(kBsId, 0)));
        ids.insert(SelectorId(*node));
    }
    EXPECT_EQ(ids.size(), 300u);
}

}  // namespace
}  // namespace qn::test
