#include "construction/hierarchy_generator.h"
#include "tests/behaviour/element_support.h"
#include "tests/behaviour/factory_support.h"
#include "tests/support/recording_context.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

Counted<HierarchyGenerator> NewGenerator() {
    return CreateAs<HierarchyGenerator>(ClassKey::kHierarchyGenerator);
}

TEST(HierarchyGeneratorIdentity, IsMadeByKeyInAnyCase) {
    EXPECT_TRUE(CreateAs<HierarchyGenerator>("qn.graph.hierarchygenerator"));
    EXPECT_TRUE(CreateAs<HierarchyGenerator>("QN.GRAPH.HIERARCHYGENERATOR"));
    EXPECT_STREQ(NewGenerator()->GetInterfaceName(), "qn.graph.hierarchygenerator");
}

TEST(HierarchyGeneratorIdentity, IsAGeneratorThatCanBeStored) {
    const auto generator = NewGenerator();
    for (const char* name : {"qn.graph.hierarchygenerator", "qn.k3.generator", "k3_refsource", "k3_reftarget",
                             "k3_extension", "QN.K3.Generator"})
        EXPECT_TRUE(generator->IsTypeOf(name)) << name;
    for (const char* name : {"qn.graph.hierarchyfactory", "qn.k3.entity", ""})
        EXPECT_FALSE(generator->IsTypeOf(name)) << name;
    EXPECT_FALSE(generator->IsTypeOf(nullptr));
    EXPECT_TRUE(Cast<k3::Generator>(generator.Get()));
    EXPECT_TRUE(Cast<ReferenceSource>(generator.Get()));
}

TEST(HierarchyGeneratorIdentity, CopiesParametersAndMetadataOfAnother) {
    const auto generator = NewGenerator(), other = NewGenerator();
    other->SetParamVar(7, Var(L"value"));
    other->SetMetaValue(Var(L"key"), Var(1));
    EXPECT_EQ(generator->CopyFrom(other.Get(), 0), ResultEnum::kSuccess);
    EXPECT_EQ(generator->GetParamVar(7), Var(L"value"));
    EXPECT_EQ(Var(generator->GetMetadata(false)), MapOf({{Var(L"key"), Var(1)}}));
}

TEST(HierarchyGeneratorIdentity, CopiesNothingElse) {
    const auto generator = NewGenerator(), other = NewGenerator();
    const auto scene = Make<k3::Scene>();
    k3::Node* node = AddNode(*scene, L"node");
    const auto use = NewUse(L"car");
    other->SetSelector(PathOf({use.Get()}));
    generator->CopyFrom(other.Get(), 0);
    EXPECT_FALSE(generator->GetRootReference());
    EXPECT_EQ(generator->Generate(node, MakeContext().Get()), ResultEnum::kSuccess);
    EXPECT_EQ(node->GetName(), L"node");
}

TEST(HierarchyGeneratorIdentity, RefusesToCopyFromAnythingElse) {
    const auto generator = NewGenerator();
    const auto reference = NewReference();
    reference->SetParamVar(7, Var(L"value"));
    EXPECT_EQ(generator->CopyFrom(reference.Get(), 0), ResultEnum::kWrongClass);
    EXPECT_EQ(generator->CopyFrom(nullptr, 0), ResultEnum::kWrongClass);
    EXPECT_TRUE(generator->GetParamVar(7).IsEmpty());
}

TEST(HierarchyGeneratorIdentity, StartsWithNothing) {
    const auto generator = NewGenerator();
    EXPECT_EQ(generator->GetRefCount(), 1);
    EXPECT_FALSE(generator->GetTargetNode());
    EXPECT_FALSE(generator->GetRootReference());
}

TEST(HierarchyGeneratorIdentity, CanBeAttachedToANode) {
    const auto scene = Make<k3::Scene>();
    k3::Node* node = AddNode(*scene, L"node");
    const auto generator = NewGenerator();
    k3::Generator::Attach(node, generator.Get());
    EXPECT_TRUE(k3::Generator::IsPresent(node, "qn.graph.hierarchygenerator"));
    EXPECT_EQ(k3::Generator::Get(node), generator.Get());
    k3::Generator::Detach(node);
    EXPECT_FALSE(k3::Generator::IsPresent(node, "qn.graph.hierarchygenerator"));
}

}  // namespace
}  // namespace qn::test
