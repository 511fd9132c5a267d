#include "graph/node_instancing.h"
#include "tests/graph/table_fixture.h"
#include "tests/support/failing_stream.h"
#include "tests/support/static_module.h"

#include <gmock/gmock.h>

namespace qn::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using LookupTableObject = TableFixture;

TEST_F(LookupTableObject, IsEmptyUnboundAndUnfilteredWhenNew) {
    EXPECT_EQ(table->GetContext(), nullptr);
    EXPECT_EQ(table->scene.Get(), nullptr);
    EXPECT_TRUE(table->instances.empty());
    EXPECT_TRUE(table->references.empty());
    EXPECT_FALSE(table->filterActive);
    EXPECT_TRUE(table->GetCurrentIdPrefix().IsEmpty());
}

TEST_F(LookupTableObject, KnowsItsKeysInAnyCase) {
    EXPECT_STREQ(table->GetInterfaceName(), "qn.graph.lookuptable");
    for (const char* key : {"qn.graph.lookuptable", "QN.GRAPH.LookupTable", "k3_refsource", "k3_extension"})
        EXPECT_TRUE(table->IsTypeOf(key)) << key;
    EXPECT_FALSE(table->IsTypeOf("qn.graph.instance"));
}

TEST_F(LookupTableObject, WatchesSceneAndContext) {
    auto scene = Make<k3::Scene>();
    auto context = MakeContext();
    table->SetSceneAndContext(scene.Get(), context.Get());
    EXPECT_EQ(table->scene.Get(), scene.Get());
    EXPECT_EQ(table->GetContext(), context.Get());
    scene.Reset();
    context.Reset();
    EXPECT_EQ(table->scene.Get(), nullptr);
    EXPECT_EQ(table->GetContext(), nullptr);
}

TEST_F(LookupTableObject, ForgetsSceneAndContextForNull) {
    const auto scene = Make<k3::Scene>();
    const auto context = MakeContext();
    table->SetSceneAndContext(scene.Get(), context.Get());
    table->SetSceneAndContext(nullptr, nullptr);
    EXPECT_EQ(table->scene.Get(), nullptr);
    EXPECT_EQ(table->GetContext(), nullptr);
}

TEST_F(LookupTableObject, RefusesToCopyFromAnotherTable) {
    const auto other = Make<LookupTableImpl>();
    other->SetParamVar(Param::kBsId, Var(L"s1"));
    other->GetOrCreateReference(L"e7");
    EXPECT_EQ(table->CopyFrom(other.Get(), 0), ResultEnum::kWrongClass);
    EXPECT_TRUE(table->GetParamVar(Param::kBsId).IsEmpty());
    EXPECT_TRUE(table->references.empty());
}

TEST_F(LookupTableObject, CopiesParametersFromAnInstance) {
    const auto instance = Make<InstanceImpl>();
    instance->SetParamVar(Param::kBsId, Var(L"s1"));
    EXPECT_EQ(table->CopyFrom(instance.Get(), 0), ResultEnum::kSuccess);
    EXPECT_EQ(table->GetParamVar(Param::kBsId).ToText(), L"s1");
    EXPECT_TRUE(table->instances.empty());
}

TEST_F(LookupTableObject, WritesNoChunkOfItsOwn) {
    FailingStream bare;
    FailingStream filled;
    Make<LookupTableImpl>()->Save(&bare, nullptr);
    Known(L"n1");
    EXPECT_EQ(table->Save(&filled, nullptr), ResultEnum::kSuccess);
    EXPECT_EQ(filled.Log(), bare.Log());
}

TEST_F(LookupTableObject, LetsGoOfItsElementsWhenItDies) {
    const Weak<Instance> instance(Known(L"n1").Get());
    const Weak<Reference> reference(table->GetOrCreateReference(L"e9").Get());
    EXPECT_TRUE(instance);
    table.Reset();
    EXPECT_FALSE(instance);
    EXPECT_FALSE(reference);
}

// Paths.

using LookupTablePaths = TableFixture;

TEST_F(LookupTablePaths, AreInvalidWhenEmpty) {
    EXPECT_FALSE(table->IsSelectorPathValid(Selector()));
}

TEST_F(LookupTablePaths, MustStartWithARegisteredInstance) {
    const auto stranger = Make<InstanceImpl>();
    const auto known = Known(L"n1");
    EXPECT_FALSE(table->IsSelectorPathValid(PathOf({stranger.Get()})));
    EXPECT_FALSE(table->IsSelectorPathValid(PathOf({nullptr, known.Get()})));
    EXPECT_TRUE(table->IsSelectorPathValid(PathOf({known.Get()})));
}

TEST_F(LookupTablePaths, FollowTheChildrenOfEachDefinition) {
    const auto top = Known(L"n1"), part = Known(L"n2"), other = Known(L"n3");
    top->GetReference()->AddChild(part.Get());
    EXPECT_TRUE(table->IsSelectorPathValid(PathOf({top.Get(), part.Get()})));
    EXPECT_FALSE(table->IsSelectorPathValid(PathOf({top.Get(), other.Get()})));
}

TEST_F(LookupTablePaths, PassOverLaterElementsThatAreNullOrUnknown) {
    const auto top = Known(L"n1"), part = Known(L"n2");
    const auto stranger = Make<InstanceImpl>();
    top->GetReference()->AddChild(part.Get());
    EXPECT_TRUE(table->IsSelectorPathValid(PathOf({top.Get(), nullptr, stranger.Get(), part.Get()})));
    EXPECT_TRUE(table->IsSelectorPathValid(PathOf({top.Get(), stranger.Get()})));
}

TEST_F(LookupTablePaths, PassOverElementsBelowAnInstanceWithoutReference) {
    const auto top = Make<InstanceImpl>();
    table->RegisterInstance(top.Get());
    EXPECT_TRUE(table->IsSelectorPathValid(PathOf({top.Get(), Known(L"n2").Get()})));
}

// Rebuilding.

/// Stands for the hierarchy factory: notes the calls.
class RecordingInstancing final : public Extension, public NodeInstancing {
public:
    struct Call {
        k3::Node* node;
        LookupTable* table;
        String id;
        NodeToInstance* nodeMap;
        InstanceToNodes* instanceMap;
    };
    static inline std::vector<Call> calls;

    Counted<Reference> CreateReferenceFromNodeWithMaps(k3::Node* node, LookupTable* table, const String& id,
                                                       NodeToInstance& nodeMap,
                                                       InstanceToNodes& instanceMap) override {
        calls.push_back({node, table, id, &nodeMap, &instanceMap});
        return nullptr;
    }
    void* CastTo(const ClassRecord& wanted) override {
        if (void* found = NodeInstancing::CastTo(wanted)) return found;
        return Extension::CastTo(wanted);
    }
};

class LookupTableRebuild : public TableFixture {
protected:
    LookupTableRebuild() { RecordingInstancing::calls.clear(); }

    const StaticModule module{{{ClassKey::kHierarchyFactory, &MakeOf<RecordingInstancing>}}};
    Counted<k3::Scene> scene = Make<k3::Scene>();
    Counted<RecordingContext> context = MakeContext();
};

TEST_F(LookupTableRebuild, HandsEveryTopLevelNodeToTheFactoryInOrder) {
    k3::Node* first = scene->CreateEmptyNode(0, 0, 0);
    k3::Node* second = scene->CreateEmptyNode(0, 0, 0);
    first->CreateChildNode(0, 0, 0);
    table->SetSceneAndContext(scene.Get(), context.Get());
    table->Rebuild();
    const auto& calls = RecordingInstancing::calls;
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(calls[0].node, first);
    EXPECT_EQ(calls[1].node, second);
    EXPECT_EQ(calls[0].table, table.Get());
    EXPECT_TRUE(calls[0].id.IsEmpty());
    EXPECT_EQ(calls[0].nodeMap, &table->nodeToInstance);
    EXPECT_EQ(calls[0].instanceMap, &table->instanceToNodes);
}

TEST_F(LookupTableRebuild, CreatesNothingForADeadScene) {
    scene->CreateEmptyNode(0, 0, 0);
    table->SetSceneAndContext(scene.Get(), context.Get());
    Known(L"n1");
    scene.Reset();
    table->Rebuild();
    EXPECT_THAT(RecordingInstancing::calls, IsEmpty());
    EXPECT_TRUE(table->instances.empty());
}

TEST_F(LookupTableRebuild, CreatesNothingForADeadContext) {
    scene->CreateEmptyNode(0, 0, 0);
    table->SetSceneAndContext(scene.Get(), nullptr);
    table->Rebuild();
    EXPECT_THAT(RecordingInstancing::calls, IsEmpty());
}

TEST_F(LookupTableRebuild, EmptiesTheIndexesAndStartsIdsAnew) {
    const auto instance = Known(L"n7");
    instance->SetParamVar(Param::kBsId, Var(L"s7"));
    table->RegisterInstanceWithBsId(instance.Get());
    table->GetOrCreateBsReference(L"e7", L"s8");
    table->GetOrCreatePersistentSelector(L"s1", Ids({L"n7"}), Var());
    const auto node = Make<k3::Node>();
    const auto layer = Make<k3::Layer>();
    const auto viewport = Make<k3::Viewport>();
    table->nodeToInstance.Set(node.Get(), instance.Get());
    table->instanceToNodes.Add(instance.Get(), node.Get());
    table->layerMembers.At(layer.Get());
    table->viewportTargets.At(viewport.Get());
    table->nameGenerator.PushPrefix(L"p");
    table->Rebuild();
    EXPECT_TRUE(table->instances.empty());
    EXPECT_TRUE(table->references.empty());
    EXPECT_TRUE(table->instancesById.empty());
    EXPECT_TRUE(table->referencesById.empty());
    EXPECT_TRUE(table->selectorOwners.empty());
    EXPECT_TRUE(table->instancesByBsId.empty());
    EXPECT_TRUE(table->referencesByBsId.empty());
    EXPECT_EQ(table->nodeToInstance.Size(), 0u);
    EXPECT_FALSE(table->instanceToNodes.Contains(instance.Get()));
    EXPECT_TRUE(table->layerMembers.IsEmpty());
    EXPECT_TRUE(table->viewportTargets.IsEmpty());
    EXPECT_EQ(table->GenerateEntityId(), L"e1");
}

TEST_F(LookupTableRebuild, KeepsSelectorsFileBindingsAndTheFilter) {
    const auto layer = Make<k3::Layer>();
    const auto instance = Known(L"n7");
    const auto selector = table->GetOrCreatePersistentSelector(L"s1", Ids({L"n7"}), Var());
    table->loadedReferences.insert(table->GetOrCreateReference(L"e1"));
    table->layerReferences.At(layer.Get());
    table->allowedIds.insert(L"a");
    table->allowedPaths.insert(L"b");
    table->filterActive = true;
    table->Rebuild();
    EXPECT_EQ(table->FindPersistentSelector(L"s1"), selector);
    EXPECT_EQ(table->loadedReferences.size(), 1u);
    EXPECT_TRUE(table->layerReferences.Contains(layer.Get()));
    EXPECT_THAT(table->allowedIds, ElementsAre(String(L"a")));
    EXPECT_THAT(table->allowedPaths, ElementsAre(String(L"b")));
    EXPECT_TRUE(table->filterActive);
}

}  // namespace
}  // namespace qn::test
