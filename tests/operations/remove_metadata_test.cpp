#include "operations/remove_metadata.h"
#include "tests/operations/operations_support.h"

namespace qn::test {
namespace {

const std::vector<std::string> kKeys = {"Name", "$QN.BOM.LINK", "Colour"};

class RemoveMetadata : public OperationTest {
protected:
    k3::Node* AddDescribed(k3::Node* parent = nullptr) {
        k3::Node* const made = AddUse("described", nullptr, parent);
        ReferenceOf(made)->SetMetadata(MetadataOf(kKeys).Get());
        InstanceOf(made)->SetMetadata(MetadataOf(kKeys).Get());
        made->SetMetadata(MetadataOf(kKeys).Get());
        return made;
    }

    /// Keys of definition, instance and node.
    static std::string Keys(const k3::Node* of) {
        return KeysOf(*ReferenceOf(of)) + " / " + KeysOf(*InstanceOf(of)) + " / " + KeysOf(*of);
    }

    k3::Node* const node = AddDescribed();
    static constexpr const char* kAll = "Name $QN.BOM.LINK Colour";
};

TEST_F(RemoveMetadata, ClearsDefinitionsAndInstancesAndEmptiesNodes) {
    operation->RemoveNodeMetadata(node, 7, 0, false);
    EXPECT_EQ(Keys(node), "(none) / (none) / ");
}

TEST_F(RemoveMetadata, KeepsSystemKeysWhereAsked) {
    operation->RemoveNodeMetadata(node, 7, 0, true);
    EXPECT_EQ(Keys(node), "$QN.BOM.LINK / $QN.BOM.LINK / $QN.BOM.LINK");
}

TEST_F(RemoveMetadata, WorksOnTheLayersThatAreNamed) {
    const std::string all = kAll;
    operation->RemoveNodeMetadata(node, 1, 0, true);
    EXPECT_EQ(Keys(node), "$QN.BOM.LINK / " + all + " / " + all);
    operation->RemoveNodeMetadata(node, 2, 0, false);
    EXPECT_EQ(Keys(node), "$QN.BOM.LINK / (none) / " + all);
    operation->RemoveNodeMetadata(node, 4, 0, false);
    EXPECT_EQ(Keys(node), "$QN.BOM.LINK / (none) / ");
}

TEST_F(RemoveMetadata, IsNoWalk) {
    const k3::Node* const below = AddDescribed(node);
    operation->RemoveNodeMetadata(node, 7, 0, false);
    EXPECT_EQ(KeysOf(*below), kAll);
}

TEST_F(RemoveMetadata, ByNumberReachesTheSceneAndEveryNode) {
    const k3::Node* const below = AddDescribed(AddNode("plain", node));
    scene->SetMetadata(MetadataOf(kKeys).Get());
    EXPECT_EQ(Run(4, {{1, Var(true)}, {2, Var(true)}, {3, Var(true)}, {4, Var(true)}}), 1);
    EXPECT_EQ(KeysOf(*scene), "$QN.BOM.LINK");
    EXPECT_EQ(Keys(node), "$QN.BOM.LINK / $QN.BOM.LINK / $QN.BOM.LINK");
    EXPECT_EQ(Keys(below), "$QN.BOM.LINK / $QN.BOM.LINK / $QN.BOM.LINK");
}

TEST_F(RemoveMetadata, ByNumberWithoutFlagsWalksAndAnswersOne) {
    EXPECT_EQ(Run(4), 1);
    EXPECT_EQ(KeysOf(*node), kAll);
}

TEST_F(RemoveMetadata, MakesNoMetadataForANodeWithoutAny) {
    const k3::Node* const plain = AddNode("plain");
    EXPECT_EQ(Run(4, {{3, Var(true)}}), 1);
    EXPECT_EQ(KeysOf(*plain), "(none)");
}

TEST_F(RemoveMetadata, TreatsACollectionInPlaceOfTheInstanceAsBothElements) {
    Var stored;
    stored.InitArray(1);
    const Counted<VarMap> definition = VarMap::Create();
    definition->SetMetadata(MetadataOf(kKeys).Get());
    stored.At(0) = Var(definition);
    stored.ToArray()->SetMetadata(MetadataOf(kKeys).Get());
    k3::Node* const unresolved = AddNode("unresolved");
    unresolved->SetParamVar(Param::kInstance, stored);

    operation->RemoveNodeMetadata(unresolved, 1, 0, true);
    EXPECT_EQ(KeysOf(*definition), "$QN.BOM.LINK");
    EXPECT_EQ(KeysOf(*stored.ToArray()), kAll);
    operation->RemoveNodeMetadata(unresolved, 3, 0, false);
    EXPECT_EQ(KeysOf(*definition), "");
    EXPECT_EQ(KeysOf(*stored.ToArray()), "");
}

TEST_F(RemoveMetadata, OfACollectionWithoutAnyGivesAnEmptyMapUnlessSystemKeysStay) {
    Var stored;
    stored.InitArray(0);
    k3::Node* const unresolved = AddNode("unresolved");
    unresolved->SetParamVar(Param::kInstance, stored);
    operation->RemoveNodeMetadata(unresolved, 3, 0, true);
    EXPECT_EQ(KeysOf(*stored.ToArray()), "(none)");
    operation->RemoveNodeMetadata(unresolved, 3, 0, false);
    EXPECT_EQ(KeysOf(*stored.ToArray()), "");
    EXPECT_EQ(stored.size(), 0);
}

TEST_F(RemoveMetadata, TreatsADescriptionInPlaceOfTheInstanceAsBothElements) {
    const Counted<VarMap> definition = VarMap::Create(), description = VarMap::Create();
    definition->SetMetadata(MetadataOf(kKeys).Get());
    description->SetMetadata(MetadataOf(kKeys).Get());
    description->At(Var("name")) = Var("first by position, but not by key");
    description->At(Var(0)) = Var(definition);
    k3::Node* const unresolved = AddNode("unresolved");
    unresolved->SetParamVar(Param::kInstance, Var(description));

    operation->RemoveNodeMetadata(unresolved, 1, 0, true);
    EXPECT_EQ(KeysOf(*definition), "$QN.BOM.LINK");
    EXPECT_EQ(KeysOf(*description), kAll);
    operation->RemoveNodeMetadata(unresolved, 3, 0, false);
    EXPECT_EQ(KeysOf(*definition), "");
    EXPECT_EQ(KeysOf(*description), "");
    EXPECT_EQ(description->GetCount(), 2);
}

TEST_F(RemoveMetadata, LeavesAFirstEntryThatIsFalseOrNoObject) {
    for (const Var& entry : {Var(false), Var(0), Var(7), Var("text")}) {
        Var stored;
        stored.InitArray(1);
        stored.At(0) = entry;
        stored.ToArray()->SetMetadata(MetadataOf(kKeys).Get());
        k3::Node* const unresolved = AddNode("unresolved");
        unresolved->SetParamVar(Param::kInstance, stored);
        operation->RemoveNodeMetadata(unresolved, 1, 0, false);
        EXPECT_EQ(KeysOf(*stored.ToArray()), kAll) << Utf8(entry);
        operation->RemoveNodeMetadata(unresolved, 3, 0, true);
        EXPECT_EQ(KeysOf(*stored.ToArray()), "$QN.BOM.LINK") << Utf8(entry);
        EXPECT_EQ(Utf8(stored.ValueAt(0)), Utf8(entry));
    }
}

TEST_F(RemoveMetadata, TakesInstancesWithoutDefinition) {
    k3::Node* const bare = AddBareUse("bare");
    InstanceOf(bare)->SetMetadata(MetadataOf(kKeys).Get());
    operation->RemoveNodeMetadata(bare, 3, 0, true);
    EXPECT_EQ(KeysOf(*InstanceOf(bare)), "$QN.BOM.LINK");
    operation->RemoveNodeMetadata(bare, 3, 0, false);
    EXPECT_EQ(KeysOf(*InstanceOf(bare)), "(none)");
}

TEST(PurgeMetadata, KeepsTextsThatBeginWithADollar) {
    const auto map = MetadataOf({"Name", "$QN.BOM.LINK", "a$", "", "$"});
    map->At(7) = Var(true);
    graph::PurgeMetadata(Var(map));
    ASSERT_EQ(map->GetCount(), 2);
    EXPECT_EQ(Utf8(map->KeyAt(0)), "$QN.BOM.LINK");
    EXPECT_EQ(Utf8(map->KeyAt(1)), "$");
}

TEST(PurgeMetadata, LeavesWhatIsNoMap) {
    Var array;
    array.InitArray(3);
    graph::PurgeMetadata(array);
    graph::PurgeMetadata(Var());
    graph::PurgeMetadata(Var("text"));
    EXPECT_EQ(array.size(), 3);
}

}  // namespace
}  // namespace qn::test
