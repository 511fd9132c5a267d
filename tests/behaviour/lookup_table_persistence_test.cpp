#include "engine/stream/object_file.h"
#include "engine/stream/scene_file.h"
#include "tests/behaviour/element_support.h"
#include "tests/behaviour/table_scene.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

TEST(LookupTablePersistence, HasNoChunkOfItsOwn) {
    const auto table = NewTable();
    table->GetOrCreateBsReference(L"a", L"s1:a");
    EnterInstance(*table, L"b");
    table->GetOrCreatePersistentSelector(L"s", IdPath({L"b"}), Var());
    EXPECT_TRUE(TapeOf(*table)->OwnIds().empty());
    EXPECT_TRUE(TapeOf(*table)->Chunks().empty()) << "without parameters the base has nothing to write";
}

TEST(LookupTablePersistence, KeepsWhatTheBaseKeepsAndNothingElse) {
    const auto context = MakeContext();
    const auto table = NewTable();
    table->SetParamVar(5, Var(L"kept"));
    table->SetMetaValue(Var(L"note"), Var(7));
    table->GetOrCreateReference(L"lost");
    const auto loaded = CountedCast<LookupTable>(LoadFromBytes(SaveToBytes(*table, *context), *context));
    ASSERT_TRUE(loaded);
    EXPECT_EQ(loaded->GetParamVar(5), Var(L"kept"));
    EXPECT_EQ(*loaded->GetMetadata(false)->Lookup(Var(L"note")), Var(7));
    EXPECT_FALSE(loaded->FindReferenceById(L"lost"));
    EXPECT_EQ(loaded->GenerateEntityId(), L"e1");
}

TEST(LookupTablePersistence, PassesEveryChunkToTheBase) {
    const auto table = NewTable();
    const auto reference = NewReference();
    for (const int id : {0x1000, 0x1001, 0x1002, 0x1003, 0x2000})
        EXPECT_EQ(Feed(*table, id, reference.Get()), ResultEnum::kSuccess) << id;
    EXPECT_TRUE(Cast<LookupTableImpl>(table.Get())->references.empty());
}

TEST(LookupTablePersistence, RefusesToCopyAnotherTable) {
    const TableScene s;
    s.table->SetParamVar(5, Var(1));
    const auto source = NewTable();
    source->SetParamVar(5, Var(2));
    source->GetOrCreateReference(L"a");
    EXPECT_EQ(s.table->CopyFrom(source.Get(), 0), ResultEnum::kWrongClass);
    EXPECT_EQ(s.table->GetParamVar(5), Var(1));
    EXPECT_TRUE(s.Fields().references.empty());
    EXPECT_EQ(s.table->CopyFrom(s.table.Get(), 0), ResultEnum::kWrongClass);
}

TEST(LookupTablePersistence, RefusesToCopyWhatIsNoInstance) {
    const auto table = NewTable();
    EXPECT_EQ(table->CopyFrom(nullptr, 0), ResultEnum::kWrongClass);
    EXPECT_EQ(table->CopyFrom(NewReference().Get(), 0), ResultEnum::kWrongClass);
    EXPECT_EQ(table->CopyFrom(Make<k3::Node>().Get(), 0), ResultEnum::kWrongClass);
}

TEST(LookupTablePersistence, CopiesParametersAndMetadataOfAnInstance) {
    const auto table = NewTable();
    const auto instance = NewInstance();
    instance->SetParamVar(5, Var(L"value"));
    instance->SetMetaValue(Var(L"note"), Var(7));
    instance->SetProperty(Prop::kName, Var(L"name"));
    EXPECT_EQ(table->CopyFrom(instance.Get(), 0), ResultEnum::kSuccess);
    EXPECT_EQ(table->GetParamVar(5), Var(L"value"));
    ASSERT_TRUE(table->GetMetadata(false));
    EXPECT_EQ(*table->GetMetadata(false)->Lookup(Var(L"note")), Var(7));
}

TEST(LookupTablePersistence, NamesItsClassAndAncestors) {
    const auto table = NewTable();
    EXPECT_STREQ(table->GetInterfaceName(), "qn.graph.lookuptable");
    for (const char* name :
         {"qn.graph.lookuptable", "QN.graph.LookupTable", "k3_refsource", "k3_reftarget", "k3_extension"})
        EXPECT_TRUE(table->IsTypeOf(name)) << name;
    for (const char* name : {"qn.graph.instance", "k3_node", ""})
        EXPECT_FALSE(table->IsTypeOf(name)) << name;
}

/// A scene whose nodes carry instances with server ids: top > car > wheel, wheel.
struct Stored {
    Stored() {
        const TableScene s;
        k3::Node* top = s.Node(L"top");
        k3::Node* car = Node(s, L"car", top);
        Node(s, L"left", car);
        Node(s, L"right", car);
        s.table->Rebuild();
        s.table->GetOrCreatePersistentSelector(L"s", IdPath({L"n1"}), Var());
        SceneSaveOptions options;
        options.expand = true;
        bytes = SaveSceneToBytes(*s.scene, *s.context, options);
    }

    static k3::Node* Node(const TableScene& s, const wchar_t* name, k3::Node* parent) {
        k3::Node* node = s.Node(name, parent);
        const auto reference = s.table->GetOrCreateBsReference(String(), L"s1:definition of " + String(name));
        const auto instance = reference->CreateInstanceWithBsId(String(), L"s1:" + String(name));
        instance->SetProperty(Prop::kName, Var(name));
        node->SetParamVar(Param::kInstance, Var(instance));
        return node;
    }

    static constexpr const char* kNames[] = {"car", "left", "right"};
    std::string bytes;
};

TEST(LookupTablePersistence, FindsTheSameElementsInALoadedSceneAfterARebuild) {
    const Stored stored;
    const TableScene s;
    ASSERT_TRUE(LoadSceneFromBytes(stored.bytes, L"stored", *s.scene, *s.context));
    s.table->Rebuild();
    for (const std::string name : Stored::kNames) {
        const auto instance = s.table->FindInstanceByBsId(L"s1:" + String::FromUtf8(name));
        ASSERT_TRUE(instance) << name;
        const auto nodes = NodesIn(s.table->GetNodesOfInstance(instance.Get()).Get());
        ASSERT_EQ(nodes.size(), 1u) << name;
        EXPECT_EQ(nodes[0]->GetName().ToUtf8(), name);
        EXPECT_EQ(s.table->GetInstanceOfNode(nodes[0]).Get(), instance.Get());
        EXPECT_EQ(s.table->FindInstanceById(IdOf(instance.Get())).Get(), instance.Get());
        const auto reference = s.table->FindReferenceByBsId(L"s1:definition of " + String::FromUtf8(name));
        EXPECT_EQ(reference.Get(), instance->GetReference()) << name;
    }
}

TEST(LookupTablePersistence, KeepsSelectorsThatWereEnteredBeforeARebuild) {
    const Stored stored;
    const TableScene s;
    ASSERT_TRUE(LoadSceneFromBytes(stored.bytes, L"stored", *s.scene, *s.context));
    s.table->Rebuild();
    EXPECT_FALSE(s.table->FindPersistentSelector(L"s")) << "a table is not stored";
    const auto car = s.table->FindInstanceByBsId(L"s1:car");
    const auto made = s.table->GetOrCreatePersistentSelector(L"s", IdPath({IdOf(car.Get()).c_str()}), Var());
    ASSERT_TRUE(made);
    s.table->Rebuild();
    EXPECT_EQ(s.table->FindPersistentSelector(L"s").Get(), made.Get());
}

TEST(LookupTablePersistence, LeavesIdsBehindSoThatTheyCountFromOneAgain) {
    const Stored stored;
    const TableScene s;
    ASSERT_TRUE(LoadSceneFromBytes(stored.bytes, L"stored", *s.scene, *s.context));
    EXPECT_EQ(s.table->GenerateNodeId(), L"n1");
    EXPECT_EQ(s.table->GenerateEntityId(), L"e1");
}

TEST(LookupTablePersistence, OfElementsIsNoBondToTheTable) {
    const auto context = MakeContext();
    auto table = NewTable();
    const auto reference = table->GetOrCreateReference(L"a");
    const auto loaded = CountedCast<Reference>(LoadFromBytes(SaveToBytes(*reference, *context), *context));
    ASSERT_TRUE(loaded);
    EXPECT_EQ(loaded->GetLookupTable(), nullptr);
}

}  // namespace
}  // namespace qn::test
