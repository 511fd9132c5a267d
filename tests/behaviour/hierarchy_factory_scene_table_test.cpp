// Tables that are made for a whole scene.

#include "tests/behaviour/element_support.h"
#include "tests/behaviour/factory_support.h"
#include "tests/support/recording_context.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

String IdOf(const Instance& instance) {
    return instance.GetProperty(Prop::kLocalId, 0).ToText();
}

struct Document {
    Counted<LookupTable> MakeTable() const {
        return factory->CreateLookupTableForScene(scene.Get(), context.Get());
    }

    Counted<HierarchyFactory> factory = NewFactory();
    Counted<k3::Scene> scene = Make<k3::Scene>();
    Counted<RecordingContext> context = MakeContext();
};

TEST(SceneTable, KnowsAllTopLevelNodesAndWhatIsBelow) {
    const Document d;
    k3::Node* car = AddNode(*d.scene, L"car");
    k3::Node* wheel = AddNode(*car, L"wheel");
    k3::Node* boat = AddNode(*d.scene, L"boat");
    const auto table = d.MakeTable();
    ASSERT_TRUE(table);
    EXPECT_EQ(Outline(*table->GetInstanceOfNode(car)->GetReference()), "car(wheel)");
    EXPECT_EQ(Outline(*table->GetInstanceOfNode(boat)->GetReference()), "boat");
    EXPECT_TRUE(table->GetInstanceOfNode(wheel));
    EXPECT_FALSE(table->GetInstanceOfNode(d.scene.Get())) << "the scene itself is no part";
}

TEST(SceneTable, NumbersTheTopLevelNodesInOrder) {
    const Document d;
    k3::Node* first = AddNode(*d.scene, L"first");
    k3::Node* second = AddNode(*d.scene, L"second");
    const auto table = d.MakeTable();
    EXPECT_EQ(table->FindInstanceById(L"n1"), table->GetInstanceOfNode(first));
    EXPECT_EQ(table->FindInstanceById(L"n2"), table->GetInstanceOfNode(second));
}

TEST(SceneTable, IsBoundToSceneAndContext) {
    const Document d;
    const auto table = d.MakeTable();
    EXPECT_EQ(table->GetContext(), d.context.Get());
    k3::Node* late = AddNode(*d.scene, L"late");
    EXPECT_FALSE(table->GetInstanceOfNode(late));
    table->Rebuild();
    EXPECT_TRUE(table->GetInstanceOfNode(late)) << "it knows the scene";
}

TEST(SceneTable, IsMadeWithoutContextToo) {
    const Document d;
    k3::Node* car = AddNode(*d.scene, L"car");
    const auto table = d.factory->CreateLookupTableForScene(d.scene.Get(), nullptr);
    ASSERT_TRUE(table);
    EXPECT_FALSE(table->GetContext());
    EXPECT_TRUE(table->GetInstanceOfNode(car));
}

TEST(SceneTable, IsNewForEachCall) {
    const Document d;
    EXPECT_FALSE(d.MakeTable() == d.MakeTable());
}

TEST(SceneTable, WritesTheIdsOfLivePaths) {
    const Document d;
    const auto elsewhere = NewTable();
    const auto use = EnterInstance(*elsewhere, L"use"), part = EnterInstance(*elsewhere, L"part");
    use->GetReference()->AddChild(part.Get());
    const auto stored = LiveSelector({use.Get(), part.Get()});
    SetSelectors(*part, {stored.Get()});
    k3::Node* car = AddNode(*d.scene, L"car", use.Get());
    AddNode(*car, L"part", part.Get());
    const auto table = d.MakeTable();

    const auto other = EnterInstance(*elsewhere, IdOf(*use).c_str());
    const auto another = EnterInstance(*elsewhere, IdOf(*part).c_str());
    part->ResolveSelectors(false, nullptr);  // takes the ids, if there are any
    EXPECT_EQ(LivePath(*stored), (std::vector<Instance*>{other.Get(), another.Get()}));
}

TEST(SceneTable, LosesThePathsOfPartsWithServerIdsAndKeepsWhatTheySay) {
    const Document d;
    k3::Node* car = AddNode(*d.scene, L"car");
    k3::Node* wheel = AddNode(*car, L"wheel");
    wheel->SetParamVar(Param::kBsId, Var(L"server"));
    const auto table = d.MakeTable();
    const auto use = table->GetInstanceOfNode(wheel);
    ASSERT_EQ(use->GetSelectorCount(), 1);
    const Selector selector = use->GetSelector(0);
    EXPECT_EQ(selector.GetPathElementCount(), 0) << "it had ids alone";
    EXPECT_EQ(selector.GetProperty(Prop::kBsId, 0), Var(L"server"));
    EXPECT_EQ(selector.GetProperty(Prop::kName, 0), Var(L"wheel"));
}

TEST(SceneTable, SaysNothing) {
    const Document d;
    AddNode(*AddNode(*d.scene, L"car"), L"wheel");
    d.MakeTable();
    EXPECT_TRUE(d.context->Texts().empty());
}

}  // namespace
}  // namespace qn::test
