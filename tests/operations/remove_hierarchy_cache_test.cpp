#include "tests/operations/operations_support.h"

namespace qn::test {
namespace {

class RemoveHierarchyCache : public OperationTest {
protected:
    RemoveHierarchyCache() {
        ReferenceOf(node)->SetMetadata(MetadataOf({"of definition"}).Get());
        InstanceOf(node)->SetMetadata(MetadataOf({"of instance"}).Get());
        node->SetMetadata(MetadataOf({"of node"}).Get());
        node->SetParamVar(Param::kBsId, Var("id"));
        node->SetParamVar(Param::kExternalIds, MapOf("system", Var("id")));
        node->SetObject(Make<k3::Object3D>().Get());
    }

    std::string EntityKeys() const {
        const Var descriptor = k3::GetEntityDescriptor(node);
        return descriptor.IsSet() ? KeysOf(*descriptor.ToMap()) : "(no descriptor)";
    }

    k3::Node* const node = AddUse("use");
    static constexpr const char* kMerged = "of definition of instance of node";
};

TEST_F(RemoveHierarchyCache, WithAllFlagsFalseLeavesBareNodesWithTheirMetadata) {
    EXPECT_EQ(Run(2), 1);
    EXPECT_TRUE(node->GetParamVar(Param::kInstance).IsEmpty());
    EXPECT_TRUE(node->GetParamVar(Param::kBsId).IsEmpty());
    EXPECT_TRUE(node->GetParamVar(Param::kExternalIds).IsEmpty());
    EXPECT_EQ(KeysOf(*node), "of node");
    EXPECT_EQ(EntityKeys(), "(no descriptor)");
}

TEST_F(RemoveHierarchyCache, MergesMetadataBeforeTheInstanceGoes) {
    EXPECT_EQ(Run(2, {{1, Var(true)}}), 1);
    EXPECT_EQ(KeysOf(*node), kMerged);
    EXPECT_TRUE(node->GetParamVar(Param::kInstance).IsEmpty());
    EXPECT_EQ(EntityKeys(), "(no descriptor)");
}

TEST_F(RemoveHierarchyCache, KeepsServerIdsWhereAsked) {
    EXPECT_EQ(Run(2, {{2, Var(true)}}), 1);
    EXPECT_EQ(Utf8(node->GetParamVar(Param::kBsId)), "id");
    EXPECT_TRUE(node->GetParamVar(Param::kExternalIds).IsEmpty());
}

TEST_F(RemoveHierarchyCache, KeepsExternalIdsWhereAsked) {
    EXPECT_EQ(Run(2, {{3, Var(true)}}), 1);
    EXPECT_TRUE(node->GetParamVar(Param::kBsId).IsEmpty());
    EXPECT_TRUE(node->GetParamVar(Param::kExternalIds).IsMap());
}

TEST_F(RemoveHierarchyCache, MovesMetadataToTheDescriptorAndEmptiesTheNode) {
    EXPECT_EQ(Run(2, {{4, Var(true)}}), 1);
    EXPECT_EQ(EntityKeys(), kMerged);
    EXPECT_EQ(KeysOf(*node), "");
}

TEST_F(RemoveHierarchyCache, GivesNodeAndDescriptorTheSameMapWhereBothKeepIt) {
    EXPECT_EQ(Run(2, {{1, Var(true)}, {4, Var(true)}}), 1);
    EXPECT_EQ(KeysOf(*node), kMerged);
    EXPECT_EQ(k3::GetEntityDescriptor(node).ToMap()->GetMetadata(false), node->GetMetadata(false));
}

TEST_F(RemoveHierarchyCache, MakesTheInstanceDescriptorBeforeTheEntityDescriptorIsAskedFor) {
    node->SetObject(nullptr);
    EXPECT_EQ(Run(2, {{4, Var(true)}}), 1);
    const unsigned before = scene->GetChangeEventCount();
    EXPECT_TRUE(k3::GetOrCreateInstanceDescriptor(node, false).IsMap());
    EXPECT_EQ(scene->GetChangeEventCount(), before);  // it was there
    EXPECT_EQ(EntityKeys(), "(no descriptor)");
    EXPECT_EQ(KeysOf(*node), "");
}

TEST_F(RemoveHierarchyCache, LeavesANodeWithoutAnyMetadataWithoutAny) {
    const k3::Node* const plain = AddNode("plain");
    EXPECT_EQ(Run(2, {{1, Var(true)}, {4, Var(true)}}), 1);
    EXPECT_EQ(KeysOf(*plain), "(none)");
}

TEST_F(RemoveHierarchyCache, ReachesEveryNodeBelow) {
    const k3::Node* const below = AddUse("below", nullptr, AddNode("plain", node));
    operation->RemoveHierarchyCache(node, false, false, false, false);
    EXPECT_TRUE(below->GetParamVar(Param::kInstance).IsEmpty());
    EXPECT_EQ(scene->GetChildCount(), 1);
}

TEST_F(RemoveHierarchyCache, ClearsACollectionInPlaceOfTheInstance) {
    k3::Node* const unresolved = AddNode("unresolved");
    unresolved->SetParamVar(Param::kInstance, MapOf("a", Var(1)));
    operation->RemoveHierarchyCache(scene.Get(), false, false, false, false);
    EXPECT_TRUE(unresolved->GetParamVar(Param::kInstance).IsEmpty());
}

TEST_F(RemoveHierarchyCache, LeavesValuesThatAreFalse) {
    k3::Node* const plain = AddNode("plain");
    const auto ids = {Param::kInstance, Param::kBsId, Param::kExternalIds};
    for (const auto id : ids)
        plain->SetParamVar(id, Var(false));
    EXPECT_EQ(Run(2), 1);
    for (const auto id : ids)
        EXPECT_EQ(Utf8(plain->GetParamVar(id)), "false") << id;
}

}  // namespace
}  // namespace qn::test
