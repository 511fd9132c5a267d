#include "frame/host/layer.h"
#include "tests/behaviour/element_support.h"
#include "tests/behaviour/table_scene.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

TEST(LookupTableRebuild, StartsFromAnEmptyUnboundTable) {
    const auto table = NewTable();
    const auto& fields = *Cast<LookupTableImpl>(table.Get());
    EXPECT_EQ(table->GetContext(), nullptr);
    EXPECT_FALSE(fields.scene);
    EXPECT_FALSE(fields.filterActive);
    EXPECT_TRUE(fields.instances.empty() && fields.references.empty());
    EXPECT_TRUE(fields.instancesById.empty() && fields.selectorsById.empty());
    EXPECT_EQ(fields.nodeToInstance.Size() + fields.instanceToNodes.Size(), 0u);
    EXPECT_EQ(table->GetRefCount(), 1);
}

TEST(LookupTableRebuild, WatchesSceneAndContextWithoutCountingThem) {
    TableScene s;
    EXPECT_EQ(s.context->GetRefCount(), 1);
    EXPECT_EQ(s.scene->GetRefCount(), 1);
    EXPECT_EQ(s.table->GetContext(), s.context.Get());
    s.context.Reset();
    EXPECT_EQ(s.table->GetContext(), nullptr);
    s.scene.Reset();
    EXPECT_FALSE(s.Fields().scene);
}

TEST(LookupTableRebuild, LetsGoOfSceneAndContextForNull) {
    const TableScene s;
    s.table->SetSceneAndContext(s.scene.Get(), nullptr);
    EXPECT_EQ(s.table->GetContext(), nullptr);
    EXPECT_EQ(s.Fields().scene.Get(), s.scene.Get());
    s.table->SetSceneAndContext(nullptr, s.context.Get());
    EXPECT_EQ(s.table->GetContext(), s.context.Get());
    EXPECT_FALSE(s.Fields().scene);
}

/// A table with something in every field.
struct Filled : TableScene {
    Filled() {
        auto& fields = Fields();
        instance = EnterInstance(*table, L"a");
        instance->SetParamVar(Param::kBsId, Var(L"s1:a"));
        table->RegisterInstanceWithBsId(instance.Get());
        reference = table->GetOrCreateBsReference(L"b", L"s1:b");
        fields.instancesById[L"unknown"];
        selector = table->GetOrCreatePersistentSelector(L"s", IdPath({L"a"}), Var());
        table->GetOrCreatePersistentSelector(L"remembered", IdPath({L"nothing"}), Var());
        EnterInMaps(outside.Get(), instance.Get());
        layer = scene->CreateLayer(L"layer");
        fields.layerMembers.At(layer).insert(instance);
        fields.layerReferences.At(layer) = reference;
        fields.viewportTargets.At(scene->CreateViewport(L"view")) = reference.Get();
        fields.loadedReferences.insert(reference);
        fields.allowedIds.insert(L"id");
        fields.allowedPaths.insert(L"path");
        fields.filterActive = true;
    }

    Counted<k3::Node> outside = Make<k3::Node>();
    Counted<Instance> instance;
    Counted<Reference> reference;
    Counted<PersistentSelector> selector;
    k3::Layer* layer = nullptr;
};

TEST(LookupTableRebuild, EmptiesTheIndexes) {
    const Filled f;
    f.table->Rebuild();
    const auto& fields = f.Fields();
    EXPECT_TRUE(fields.instances.empty() && fields.references.empty());
    EXPECT_TRUE(fields.instancesById.empty() && fields.referencesById.empty());
    EXPECT_TRUE(fields.instancesByBsId.empty() && fields.referencesByBsId.empty());
    EXPECT_TRUE(fields.selectorOwners.empty());
    EXPECT_EQ(fields.nodeToInstance.Size() + fields.instanceToNodes.Size(), 0u);
    EXPECT_TRUE(fields.layerMembers.IsEmpty());
    EXPECT_TRUE(fields.viewportTargets.IsEmpty());
    EXPECT_EQ(f.table->GenerateEntityId(), L"e1");
}

TEST(LookupTableRebuild, KeepsSelectorsFileBindingsAndFilter) {
    const Filled f;
    f.table->Rebuild();
    const auto& fields = f.Fields();
    EXPECT_EQ(f.table->FindPersistentSelector(L"s").Get(), f.selector.Get());
    EXPECT_EQ(fields.selectorsById.size(), 2u) << "with the remembered miss";
    EXPECT_TRUE(fields.loadedReferences.contains(f.reference));
    EXPECT_EQ(*fields.layerReferences.Find(f.layer), f.reference);
    EXPECT_EQ(fields.allowedIds.count(L"id"), 1u);
    EXPECT_EQ(fields.allowedPaths.count(L"path"), 1u);
    EXPECT_TRUE(fields.filterActive);
}

TEST(LookupTableRebuild, KeepsTheBinding) {
    const Filled f;
    f.table->Rebuild();
    EXPECT_EQ(f.table->GetContext(), f.context.Get());
    EXPECT_EQ(f.Fields().scene.Get(), f.scene.Get());
}

TEST(LookupTableRebuild, EmptiesAndMakesNothingWithoutALiveContext) {
    TableScene s;
    s.Node(L"child", s.Node(L"top"));
    s.table->GetOrCreateReference(L"former");
    s.context.Reset();
    s.table->Rebuild();
    EXPECT_TRUE(s.Fields().references.empty() && s.Fields().instances.empty());
    EXPECT_EQ(s.Fields().nodeToInstance.Size(), 0u);
}

TEST(LookupTableRebuild, EmptiesAndMakesNothingWithoutALiveScene) {
    TableScene s;
    s.Node(L"child", s.Node(L"top"));
    s.table->GetOrCreateReference(L"former");
    s.scene.Reset();
    s.table->Rebuild();
    EXPECT_TRUE(s.Fields().references.empty() && s.Fields().instances.empty());
}

TEST(LookupTableRebuild, EntersWhatTheSceneShows) {
    const TableScene s;
    k3::Node* top = s.Node(L"top");
    k3::Node* child = s.Node(L"child", top);
    k3::Node* grandchild = s.Node(L"grandchild", child);
    s.table->Rebuild();
    for (k3::Node* node : {top, child, grandchild}) {
        const auto instance = s.table->GetInstanceOfNode(node);
        ASSERT_TRUE(instance) << node->GetName().ToUtf8();
        EXPECT_EQ(NodesIn(s.table->GetNodesOfInstance(instance.Get()).Get()), std::vector<k3::Node*>{node});
        EXPECT_EQ(instance->GetLookupTable(), s.table.Get());
    }
    EXPECT_TRUE(s.table->IsSelectorPathValid(
        PathOf({s.table->GetInstanceOfNode(child).Get(), s.table->GetInstanceOfNode(grandchild).Get()})));
}

TEST(LookupTableRebuild, TakesTopLevelNodesInSiblingOrder) {
    const TableScene s;
    k3::Node* const second = s.Node(L"second");
    k3::Node* const first = s.Node(L"first");
    second->AttachTo(s.scene.Get());  // now the last one
    s.table->Rebuild();
    const auto number = [&](k3::Node* node) {
        return std::stoi(IdOf(s.table->GetInstanceOfNode(node).Get()).substr(1));
    };
    EXPECT_LT(number(first), number(second));
}

TEST(LookupTableRebuild, CanBeRepeated) {
    const TableScene s;
    k3::Node* top = s.Node(L"top");
    k3::Node* child = s.Node(L"child", top);
    s.table->Rebuild();
    const std::size_t instances = s.Fields().instances.size(), references = s.Fields().references.size();
    const std::wstring id = IdOf(s.table->GetInstanceOfNode(child).Get());
    s.table->Rebuild();
    EXPECT_EQ(s.Fields().instances.size(), instances);
    EXPECT_EQ(s.Fields().references.size(), references);
    EXPECT_EQ(IdOf(s.table->GetInstanceOfNode(child).Get()), id);
}

TEST(LookupTableRebuild, ReleasesWhatTheTableHeld) {
    Filled f;
    const Weak<Reference> watched(f.table->GetOrCreateReference(L"mortal").Get());
    ASSERT_TRUE(watched);
    f.table->Rebuild();
    EXPECT_FALSE(watched);
}

}  // namespace
}  // namespace qn::test
