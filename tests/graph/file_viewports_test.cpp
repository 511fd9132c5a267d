#include "graph/file_viewports.h"

#include "tests/graph/file_fixture.h"

namespace qn::test {

namespace {

/// Two views of the file, of which the first looks at the door and shows a layer.
class FileViews : public FileFixture {
protected:
    FileViews() {
        FillWithHierarchy();
        front = AddViewport(L"front");
        back = AddViewport(L"back");
        front->SetViewNode(doorNode);
    }
    k3::Layer* AddLayer(std::initializer_list<k3::Node*> members) {
        k3::Layer* layer = file->CreateLayer(L"layer");
        for (k3::Node* node : members)
            layer->AddNode(node);
        front->SetLayer(layer);
        return layer;
    }
    /// Lets a view belong to a definition that stays alive when another one takes its place.
    static void Own(k3::Viewport& viewport, Reference& owner) {
        viewport.SetParamVar(Param::kViewportTarget, Var(&owner, 0));
        viewport.SetParamObject(0x7000, &owner);
    }
    Reference* AwaitedBy(const wchar_t* name) {
        const auto* target = table->viewportTargets.Find(Loaded(name));
        return target ? target->Get() : nullptr;
    }

    k3::Viewport* front;
    k3::Viewport* back;
};

}  // namespace

TEST_F(FileViews, WithoutOwnerBelongToTheLoadedReference) {
    const auto loaded = LoadFile();
    EXPECT_EQ(OwnerOf(*Loaded(L"front")), loaded.Get());
    EXPECT_EQ(OwnerOf(*Loaded(L"back")), loaded.Get());
}

TEST_F(FileViews, TheirOwnerIsHeldWeakly) {
    const auto loaded = LoadFile();
    EXPECT_TRUE(Loaded(L"front")->GetParamVar(0x8112).IsWeak());
}

TEST_F(FileViews, OfOneNameWithoutOwnerAllStay) {
    AddViewport(L"back");
    LoadFile();
    EXPECT_EQ(ViewportNames(), (std::vector<std::string>{"front", "back", "back"}));
}

TEST_F(FileViews, KeepAnOwnerThatLives) {
    front->SetParamVar(0x8112, Var(door->GetReference(), 0));
    const auto loaded = LoadFile();
    EXPECT_EQ(OwnerOf(*Loaded(L"front")), loaded->GetChild(0)->GetReference());
}

TEST_F(FileViews, BelongToTheReferenceThatHasTheServerIdOfTheirOwner) {
    door->GetReference()->SetProperty(Prop::kBsId, Var(L"s:door"));
    Own(*front, *door->GetReference());
    const auto known = table->GetOrCreateBsReference(L"door", L"s:door");
    known->AddChild(MakeInstance().Get());  // it has content, so it stays when the file's own is registered
    LoadFile();
    EXPECT_EQ(OwnerOf(*Loaded(L"front")), known.Get());
}

TEST_F(FileViews, WhoseOwnerDiedInTheLoadBelongToTheLoadedReference) {
    door->GetReference()->SetProperty(Prop::kBsId, Var(L"s:door"));
    front->SetParamVar(0x8112, Var(door->GetReference(), 0));
    table->GetOrCreateBsReference(L"door", L"s:door")->AddChild(MakeInstance().Get());
    const auto loaded = LoadFile();
    EXPECT_EQ(OwnerOf(*Loaded(L"front")), loaded.Get());
}

TEST_F(FileViews, OfANameThatTheOwnerHasAreDeleted) {
    door->GetReference()->SetProperty(Prop::kBsId, Var(L"s:door"));
    const auto known = table->GetOrCreateBsReference(L"door", L"s:door");
    known->AddChild(MakeInstance().Get());
    k3::Viewport* present = scene->CreateViewport(L"front");
    present->SetParamVar(0x8112, Var(known.Get(), 0));
    Own(*front, *door->GetReference());
    LoadFile();
    EXPECT_EQ(ViewportNames(), (std::vector<std::string>{"front", "back"}));
    EXPECT_EQ(Loaded(L"front"), present);
}

TEST_F(FileViews, WithoutNameAreNeverDoubles) {
    for (k3::Viewport* viewport : {front, back}) {
        viewport->SetName(String());
        viewport->SetParamVar(0x8112, Var(door->GetReference(), 0));
    }
    LoadFile();
    EXPECT_EQ(ViewportNames().size(), 2u);
}

TEST_F(FileViews, OfOneNameInTheFileTheFirstStays) {
    back->SetName(L"front");
    for (k3::Viewport* viewport : {front, back})
        viewport->SetParamVar(0x8112, Var(door->GetReference(), 0));
    LoadFile();
    EXPECT_EQ(ViewportNames(), std::vector<std::string>{"front"});
}

TEST_F(FileViews, UnwantedOnesAreDeletedEachSecondExcepted) {
    AddViewport(L"left");
    AddViewport(L"right");
    top->SetParamVar(Param::kNoViewports, Var(true));
    LoadFile();
    EXPECT_EQ(ViewportNames(), (std::vector<std::string>{"back", "right"}));
}

TEST_F(FileViews, ALoneOneDoesNotSurviveAnIdFilter) {
    file->DeleteObject(back, 0);
    Var filter;
    filter.At(0) = MapOf(L"none", Var(1));
    filter.At(1) = MapOf(L"none", Var(1));
    context->SetParamVar(Param::kIdFilter, filter);
    LoadFile();
    EXPECT_TRUE(ViewportNames().empty());
}

TEST_F(FileViews, OfContentThatIsPresentAreDeletedEachSecondExcepted) {
    part->SetProperty(Prop::kBsId, Var(L"s:1"));
    table->GetOrCreateBsReference(L"present", L"s:1");
    AddViewport(L"left");
    LoadFile();
    EXPECT_EQ(ViewportNames(), std::vector<std::string>{"back"});
}

TEST_F(FileViews, TakeTheirCompanionsAlong) {
    top->SetParamVar(Param::kNoViewports, Var(true));
    front->SetCompanion(back);
    LoadFile();
    EXPECT_TRUE(ViewportNames().empty());
}

TEST_F(FileViews, AwaitTheDefinitionOfWhatTheyLookAt) {
    const auto loaded = LoadFile();
    EXPECT_EQ(AwaitedBy(L"front"), loaded->GetChild(0)->GetReference());
    EXPECT_EQ(AwaitedBy(L"back"), nullptr);
}

TEST_F(FileViews, AwaitTheReferenceThatHasTheServerId) {
    door->GetReference()->SetProperty(Prop::kBsId, Var(L"s:door"));
    const auto known = table->GetOrCreateBsReference(L"door", L"s:door");
    known->AddChild(MakeInstance().Get());
    LoadFile();
    EXPECT_EQ(AwaitedBy(L"front"), known.Get());
}

TEST_F(FileViews, LayersAwaitTheInstancesOfTheirMembers) {
    AddLayer({doorNode, lockNode});
    const auto loaded = LoadFile();
    const auto* awaited = table->layerMembers.Find(Loaded(L"front")->GetLayer());
    ASSERT_NE(awaited, nullptr);
    EXPECT_EQ(awaited->size(), 2u);
    EXPECT_EQ(awaited->count(Counted<Instance>(loaded->GetChild(0).Get())), 1u);
}

TEST_F(FileViews, ALayerWithTheRootAwaitsTheWholeReference) {
    AddLayer({top});
    const auto loaded = LoadFile();
    k3::Layer* layer = Loaded(L"front")->GetLayer();
    EXPECT_TRUE(table->layerMembers.Find(layer)->empty());
    ASSERT_NE(table->layerReferences.Find(layer), nullptr);
    EXPECT_EQ(*table->layerReferences.Find(layer), loaded.Get());
}

TEST_F(FileViews, ALayerWithoutMembersAwaitsNothing) {
    AddLayer({});
    LoadFile();
    EXPECT_TRUE(table->layerMembers.IsEmpty());
}

TEST_F(FileViews, GetTheCurrentStructureOfTheContext) {
    const Var bom(Make<Extension>());
    context->SetParamVar(Param::kViewportBom, bom);
    LoadFile();
    EXPECT_EQ(Loaded(L"back")->GetParamVar(0x810e), bom);
}

TEST_F(FileViews, OfAFileOfNodesAloneAllStayAndBelongToIt) {
    top->DeleteParam(Param::kInstance);
    top->SetParamVar(Param::kNoViewports, Var(true));
    back->SetName(L"front");
    const auto loaded = LoadFile();
    const auto all = scene->GetAllViewports();
    ASSERT_EQ(all->GetCount(), 2);
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(OwnerOf(*Cast<k3::Viewport>(all->Get(i))), loaded.Get());
}

TEST_F(FileViews, OfAFileOfNodesAloneAwaitTheirDefinitionWithoutServerId) {
    top->DeleteParam(Param::kInstance);
    door->GetReference()->SetProperty(Prop::kBsId, Var(L"s:door"));
    const auto known = table->GetOrCreateBsReference(L"door", L"s:door");
    LoadFile();
    ASSERT_NE(AwaitedBy(L"front"), nullptr);
    EXPECT_NE(AwaitedBy(L"front"), known.Get());
}

TEST_F(FileViews, APresentEntryOfAViewportOrLayerStays) {
    const auto former = MakeReference();
    FileViewports viewports(*table, *scene, *context);
    viewports.RememberPresent();
    k3::Viewport* viewport = scene->CreateViewport(L"new");
    viewports.CollectNew();
    k3::Layer* layer = AddLayer({top});
    viewport->SetLayer(layer);
    viewport->SetViewNode(doorNode);
    table->viewportTargets.At(viewport) = Weak<Reference>(former.Get());
    table->layerReferences.At(layer) = Counted<Reference>(former.Get());
    NodeToInstance nodes;
    nodes.Set(top, root.Get());
    nodes.Set(doorNode, door.Get());
    viewports.BindAll(part.Get(), root.Get(), nodes);
    EXPECT_EQ(table->viewportTargets.Find(viewport)->Get(), former.Get());
    EXPECT_EQ(*table->layerReferences.Find(layer), former.Get());
}

TEST_F(FileViews, ThatWereThereBeforeAreLeftAlone) {
    scene->CreateViewport(L"mine");
    top->SetParamVar(Param::kNoViewports, Var(true));
    LoadFile();
    EXPECT_TRUE(Loaded(L"mine")->GetParamVar(0x8112).IsEmpty());
}

TEST_F(FileViews, ACompanionThatSomethingDependsOnStays) {
    for (const bool dependsOn : {false, true}) {
        const auto companion = Make<k3::Entity>(nullptr, k3::kTypeDependable);
        scene->GetEntities()->Add(companion.Get());
        if (dependsOn) companion->GetDependants()->Add(root.Get());
        FileViewports viewports(*table, *scene, *context);
        viewports.RememberPresent();
        scene->CreateViewport(L"new")->SetCompanion(companion.Get());
        viewports.CollectNew();
        viewports.DeleteNew();
        EXPECT_EQ(scene->GetEntities()->Find(companion.Get()) >= 0, dependsOn);
        EXPECT_TRUE(ViewportNames().empty());
    }
}

}  // namespace qn::test
