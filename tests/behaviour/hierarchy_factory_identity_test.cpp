#include "tests/behaviour/element_support.h"
#include "tests/behaviour/factory_support.h"
#include "tests/behaviour/plain_traverser.h"
#include "tests/support/recording_context.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

TEST(HierarchyFactoryIdentity, IsMadeByKeyInAnyCase) {
    EXPECT_TRUE(CreateAs<HierarchyFactory>("qn.graph.hierarchyfactory"));
    EXPECT_TRUE(CreateAs<HierarchyFactory>("QN.Graph.HierarchyFactory"));
    EXPECT_STREQ(NewFactory()->GetInterfaceName(), "qn.graph.hierarchyfactory");
}

TEST(HierarchyFactoryIdentity, IsAnExtensionAndNothingStorable) {
    const auto factory = NewFactory();
    for (const char* name : {"qn.graph.hierarchyfactory", "k3_extension", "K3_Extension"})
        EXPECT_TRUE(factory->IsTypeOf(name)) << name;
    for (const char* name : {"k3_refsource", "k3_reftarget", "qn.graph.hierarchygenerator", ""})
        EXPECT_FALSE(factory->IsTypeOf(name)) << name;
    EXPECT_FALSE(factory->IsTypeOf(nullptr));
    EXPECT_FALSE(Cast<ReferenceSource>(factory.Get()));
}

TEST(HierarchyFactoryIdentity, CopiesFromFactoriesAlone) {
    const auto factory = NewFactory(), other = NewFactory();
    EXPECT_EQ(factory->CopyFrom(other.Get(), 0), ResultEnum::kSuccess);
    EXPECT_EQ(factory->CopyFrom(NewReference().Get(), 0), ResultEnum::kWrongClass);
    EXPECT_EQ(factory->CopyFrom(nullptr, 0), ResultEnum::kWrongClass);
}

TEST(HierarchyFactoryIdentity, MakesEmptyTablesOneByOne) {
    const auto factory = NewFactory();
    const auto table = factory->CreateLookupTable();
    ASSERT_TRUE(table);
    EXPECT_EQ(table->GetRefCount(), 1);
    EXPECT_FALSE(table->GetContext());
    EXPECT_EQ(table->GenerateEntityId(), L"e1");
    EXPECT_FALSE(table == factory->CreateLookupTable());
}

TEST(HierarchyFactoryIdentity, MakesEmptyDefinitionsOutsideOfAnyTable) {
    const auto factory = NewFactory();
    const auto reference = factory->CreateReference();
    ASSERT_TRUE(reference);
    EXPECT_EQ(reference->GetRefCount(), 1);
    EXPECT_FALSE(reference->GetLookupTable());
    EXPECT_EQ(reference->GetChildCount() + reference->GetInstanceCount(), 0);
    EXPECT_TRUE(reference->GetProperty(Prop::kLocalId, 0).IsEmpty());
    EXPECT_FALSE(reference == factory->CreateReference());
}

TEST(HierarchyFactoryRefusals, NeedATraverserAndATable) {
    const auto factory = NewFactory();
    const auto table = NewTable();
    const auto use = NewUse(L"car");
    const auto place = Make<PlainTraverser>(use.Get());
    EXPECT_FALSE(factory->CreateReferenceFromTraverser(nullptr, table.Get(), L"id"));
    EXPECT_FALSE(factory->CreateReferenceFromTraverser(place.Get(), nullptr, L"id"));
    EXPECT_FALSE(table->FindReferenceById(L"id"));
    EXPECT_FALSE(factory->CreateNodesFromSelector(PathOf({use.Get()}), nullptr));
}

TEST(HierarchyFactoryRefusals, NeedANode) {
    const auto factory = NewFactory();
    const auto table = NewTable();
    EXPECT_FALSE(factory->CreateStandaloneReference(nullptr));
    EXPECT_FALSE(factory->CreateReferenceFromNode(nullptr, table.Get()));
    EXPECT_FALSE(factory->CreateInstanceFromNode(nullptr));
    EXPECT_FALSE(factory->CreateInstanceInTable(nullptr, table.Get()));
    EXPECT_FALSE(factory->CreateInstanceInTable(nullptr, nullptr));
    EXPECT_FALSE(factory->GenerateNodes(PathOf({NewUse(L"car").Get()}), nullptr));
    factory->ApplyNodeToInstance(nullptr);
    const auto reference = NewReference();
    factory->ApplyNodeToReference(nullptr, reference.Get());
    EXPECT_TRUE(reference->GetTarget().IsEmpty());
}

TEST(HierarchyFactoryRefusals, NeedATableForADefinitionInATable) {
    const auto scene = Make<k3::Scene>();
    EXPECT_FALSE(NewFactory()->CreateReferenceFromNode(AddNode(*scene, L"car"), nullptr));
}

TEST(HierarchyFactoryRefusals, NeedAValidSelectorForNodes) {
    const auto scene = Make<k3::Scene>();
    k3::Node* root = AddNode(*scene, L"root");
    const auto use = NewUse(L"car");
    EXPECT_FALSE(NewFactory()->GenerateNodes(Selector(), root));
    EXPECT_FALSE(NewFactory()->GenerateNodes(PathOf({nullptr, use.Get()}), root));
    EXPECT_FALSE(ShownBy(*root));
    EXPECT_EQ(root->GetName(), L"root");
}

TEST(HierarchyFactoryRefusals, AreSilent) {
    const auto factory = NewFactory();
    const auto context = MakeContext();
    EXPECT_FALSE(factory->CreateLookupTableForScene(nullptr, context.Get()));
    EXPECT_FALSE(factory->HasCircularReference(nullptr, context.Get()));
    EXPECT_TRUE(context->Texts().empty());
}

TEST(HierarchyFactoryRefusals, DoNotApplyANodeToNothing) {
    const auto scene = Make<k3::Scene>();
    k3::Node* node = AddNode(*scene, L"node");
    NewFactory()->ApplyNodeToReference(node, nullptr);
    NewFactory()->ApplyNodeToInstance(node);
    EXPECT_EQ(node->GetName(), L"node");
}

}  // namespace
}  // namespace qn::test
