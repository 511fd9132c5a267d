// Definitions whose content comes from a file when nodes are made.

#include "construction/hierarchy_generator.h"
#include "engine/stream/scene_file.h"
#include "tests/behaviour/element_support.h"
#include "tests/behaviour/factory_support.h"
#include "tests/support/recording_context.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

/// car(part part), where `part` names a file, and a generator on a node.
struct Workshop {
    explicit Workshop(const String& file) {
        part->SetTarget(Var(file));
        part->SetProperty(Prop::kName, Var(L"part"));
        car->SetProperty(Prop::kName, Var(L"car"));
        for (const auto& use : {first, second})
            car->AddChild(use.Get());
        generator->SetSelector(PathOf({top.Get()}));
    }
    void Generate() const { generator->Generate(node, context.Get()); }

    Counted<LookupTable> table = NewTable();
    Counted<Reference> car = NewReferenceIn(*table), part = NewReferenceIn(*table);
    Counted<Instance> top = car->CreateInstanceWithId(String());
    Counted<Instance> first = part->CreateInstanceWithId(String()),
                      second = part->CreateInstanceWithId(String());
    Counted<HierarchyGenerator> generator = CreateAs<HierarchyGenerator>(ClassKey::kHierarchyGenerator);
    Counted<RecordingContext> context = MakeContext();
    Counted<k3::Scene> scene = Make<k3::Scene>();
    k3::Node* node = AddNode(*scene, L"node");
};

/// A file with box(lid), a view of the lid and a layer of the view with the lid.
String WriteBox(const TempFolder& folder) {
    const auto scene = Make<k3::Scene>();
    k3::Node* lid = AddNode(*AddNode(*scene, L"box"), L"lid");
    k3::Layer* layer = scene->CreateLayer(L"layer");
    layer->AddNode(lid);
    k3::Viewport* view = scene->CreateViewport(L"view");
    view->SetViewNode(lid);
    view->SetLayer(layer);
    const String file = folder.File("box.qn");
    EXPECT_TRUE(SaveSceneFile(*scene, file, *MakeContext()));
    return file;
}

k3::Node* Descend(k3::Node* node, int levels) {
    for (; node && levels > 0; --levels)
        node = node->GetFirstChild();
    return node;
}

TEST(GeneratedFiles, AreLoadedOnceAndStandBelowEveryUse) {
    const TempFolder folder;
    const Workshop w(WriteBox(folder));
    w.Generate();
    EXPECT_TRUE(w.context->Texts().empty());
    ASSERT_EQ(w.node->GetChildCount(), 2);
    const k3::Node* first = w.node->GetFirstChild();
    const k3::Node* second = w.node->GetLastChild();
    EXPECT_EQ(Outline(*first), Outline(*second));
    EXPECT_NE(Outline(*first).find("box(lid)"), std::string::npos) << Outline(*first);
    EXPECT_EQ(DefinitionOf(*first), w.part.Get());
    EXPECT_EQ(DefinitionOf(*second), w.part.Get());
    EXPECT_EQ(ShownBy(*first->GetFirstChild()), ShownBy(*second->GetFirstChild()));
}

TEST(GeneratedFiles, LeaveTheirOwnNodesOutOfTheScene) {
    const TempFolder folder;
    const Workshop w(WriteBox(folder));
    w.Generate();
    EXPECT_EQ(w.scene->GetChildCount(), 1);
    EXPECT_EQ(w.scene->GetFirstChild(), w.node);
    EXPECT_TRUE(w.part->GetTarget().IsEmpty()) << "the name is used up";
}

TEST(GeneratedFiles, BringLayersThatHoldTheNewNodes) {
    const TempFolder folder;
    const Workshop w(WriteBox(folder));
    w.Generate();
    InterfaceArray* views = w.scene->GetViewports();
    ASSERT_TRUE(views);
    ASSERT_EQ(views->GetCount(), 1);
    const auto* view = Cast<k3::Viewport>(views->Get(0));
    k3::Node* lid = Descend(w.node, 2);
    ASSERT_TRUE(lid);
    ASSERT_EQ(lid->GetName(), L"lid") << Outline(*w.node);
    ASSERT_TRUE(view->GetLayer());
    ASSERT_TRUE(view->GetLayer()->GetMembers());
    EXPECT_GE(view->GetLayer()->GetMembers()->Find(lid), 0);
    EXPECT_EQ(view->GetViewNode(), lid);
}

TEST(GeneratedFiles, ThatAreMissingLeaveAPlaceholder) {
    const TempFolder folder;
    const Workshop w(folder.File("missing.qn"));
    w.Generate();
    EXPECT_EQ(w.node->GetChildCount(), 2);
    EXPECT_EQ(w.scene->GetChildCount(), 1);
    ASSERT_FALSE(w.context->Texts().empty());
    EXPECT_NE(w.context->Texts().back().find("could not be loaded into the scene"), std::string::npos);
    EXPECT_EQ(w.context->Levels().back(), 3);
    EXPECT_TRUE(w.part->GetTarget().IsEmpty());
}

}  // namespace
}  // namespace qn::test
