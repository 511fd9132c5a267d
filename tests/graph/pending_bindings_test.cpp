#include "graph/node_list_owner.h"
#include "graph/shown_nodes.h"
#include "graph/view_binding.h"
#include "tests/graph/graph_support.h"
#include "tests/support/recording_context.h"

namespace qn::test {

namespace {

/// A structure with top-level nodes of its own.
class SimpleBom final : public Extension, public NodeListOwner {
public:
    Var nodes;
    Var GetNodes() const override { return nodes; }
    void* CastTo(const ClassRecord& wanted) override {
        return wanted.name == NodeListOwner::StaticClass().name ? NodeListOwner::CastTo(wanted)
                                                                : Extension::CastTo(wanted);
    }
};

/// A scene that shows a door and, in it, a lock, as they stand after generation.
class PendingBindings : public testing::Test {
protected:
    PendingBindings() {
        table->SetSceneAndContext(scene.Get(), context.Get());
        doorNode = Show(*scene, door);
        lockNode = Show(*doorNode, lock);
    }
    k3::Node* Show(k3::Node& parent, const Counted<InstanceImpl>& instance) {
        k3::Node* node = parent.CreateChildNode(0, 0, 0);
        node->SetParamObject(Param::kInstance, instance.Get());
        table->nodeToInstance.Set(node, instance.Get());
        table->instanceToNodes.Add(instance.Get(), node);
        return node;
    }
    /// A view that belongs to the door and waits for the node of `awaited`.
    k3::Viewport* AddViewport(Reference* awaited) {
        k3::Viewport* viewport = scene->CreateViewport(L"view");
        viewport->SetParamVar(Param::kViewportTarget, Var(door->GetReference(), 0));
        table->viewportTargets.At(viewport) = Weak<Reference>(awaited);
        return viewport;
    }
    static k3::Layer* GiveLayer(k3::Viewport& viewport, std::initializer_list<k3::Node*> members) {
        const auto layer = Make<k3::Layer>();
        for (k3::Node* node : members)
            layer->AddNode(node);
        viewport.SetLayer(layer.Get());
        return layer.Get();
    }
    static void MakePmiView(k3::Viewport& viewport, const Var& isCapture = Var()) {
        Var group;
        group.At(L"Kind") = Var(1);
        if (isCapture.IsSet()) group.At(L"IsCapture") = isCapture;
        viewport.SetMetaValue(Var(L"$QN.PMI.VIEWPORT"), group);
    }
    static std::vector<Interface*> MembersOf(const k3::Layer& layer) {
        std::vector<Interface*> members;
        for (int i = 0; layer.GetMembers() && i < layer.GetMembers()->GetCount(); ++i)
            members.push_back(layer.GetMembers()->Get(i));
        return members;
    }
    static Var UniqueId(const wchar_t* id) {
        Var metadata;
        metadata.At(L"$CADMetadata").At(L"UNIQUEID") = Var(id);
        return metadata;
    }
    static Var UniqueIdOf(const k3::Node& node) {
        const Var metadata(node.GetMetadata(false), 1);
        const Var* group = metadata.Lookup(L"$CADMetadata");
        const Var* id = group ? group->Lookup(L"UNIQUEID") : nullptr;
        return id ? *id : Var();
    }
    static Counted<InstanceImpl> Use(const Counted<ReferenceImpl>& reference) {
        return CountedCast<InstanceImpl>(reference->CreateInstance());
    }

    Counted<k3::Scene> scene = Make<k3::Scene>();
    Counted<RecordingContext> context = MakeContext();
    Counted<LookupTableImpl> table = Make<LookupTableImpl>();
    Counted<ReferenceImpl> doorPart = MakeReference();
    Counted<ReferenceImpl> lockPart = MakeReference();
    Counted<InstanceImpl> door = Use(doorPart);
    Counted<InstanceImpl> lock = Use(lockPart);
    k3::Node* doorNode;
    k3::Node* lockNode;
};

}  // namespace

TEST_F(PendingBindings, TakeViewsFromThoseWhoKnowTheTableByItsInterfaceAlone) {
    auto* binding = Cast<ViewBinding>(static_cast<LookupTable*>(table.Get()));
    ASSERT_TRUE(binding);
    k3::Viewport* viewport = scene->CreateViewport(L"view");
    binding->BindViewLater(viewport, lock->GetReference());
    binding->BindViewLater(viewport, door->GetReference());
    binding->BindViewLater(nullptr, nullptr);
    table->ApplyPendingBindings();
    EXPECT_EQ(viewport->GetViewNode(), lockNode) << "the first definition wins";
}

TEST_F(PendingBindings, ALayerGetsTheNodesOfItsInstances) {
    const auto layer = Make<k3::Layer>();
    layer->AddNode(doorNode);
    table->layerMembers.At(layer.Get()).insert(Counted<Instance>(lock.Get()));
    table->ApplyPendingBindings();
    EXPECT_EQ(MembersOf(*layer), std::vector<Interface*>{lockNode});
}

TEST_F(PendingBindings, ALayerWithoutInstancesKeepsItsMembers) {
    const auto layer = Make<k3::Layer>();
    layer->AddNode(doorNode);
    table->layerMembers.At(layer.Get());
    table->layerReferences.At(layer.Get()) = Counted<Reference>(lockPart.Get());
    table->ApplyPendingBindings();
    EXPECT_EQ(MembersOf(*layer), (std::vector<Interface*>{doorNode, lockNode}));
}

TEST_F(PendingBindings, NothingIsForgottenByApplying) {
    const auto layer = Make<k3::Layer>();
    table->layerMembers.At(layer.Get()).insert(Counted<Instance>(lock.Get()));
    table->loadedReferences.insert(Counted<Reference>(doorPart.Get()));
    k3::Viewport* viewport = AddViewport(lockPart.Get());
    table->ApplyPendingBindings();
    viewport->SetViewNode(nullptr);
    layer->DeleteAll();
    table->ApplyPendingBindings();
    EXPECT_EQ(viewport->GetViewNode(), lockNode);
    EXPECT_EQ(MembersOf(*layer), std::vector<Interface*>{lockNode});
    EXPECT_EQ(table->loadedReferences.size(), 1u);
}

TEST_F(PendingBindings, AViewLooksAtTheNodeInsideWhatItBelongsTo) {
    k3::Node* outside = Show(*scene, lock);
    k3::Viewport* viewport = AddViewport(lockPart.Get());
    table->ApplyPendingBindings();
    EXPECT_EQ(viewport->GetViewNode(), lockNode);
    EXPECT_NE(viewport->GetViewNode(), outside);
}

TEST_F(PendingBindings, AViewOfWhatIsNotShownLooksAtTheFirstNode) {
    k3::Viewport* viewport = AddViewport(lockPart.Get());
    viewport->SetParamVar(Param::kViewportTarget, Var());
    table->ApplyPendingBindings();
    EXPECT_EQ(viewport->GetViewNode(), lockNode);
}

TEST_F(PendingBindings, AViewKeepsItsNodeWhereNoneIsInside) {
    const auto other = Use(MakeReference());
    k3::Node* outside = Show(*scene, other);
    k3::Viewport* viewport = AddViewport(other->GetReference());
    viewport->SetViewNode(lockNode);
    table->ApplyPendingBindings();
    EXPECT_EQ(viewport->GetViewNode(), lockNode);
    EXPECT_NE(viewport->GetViewNode(), outside);
}

TEST_F(PendingBindings, AViewWhoseDefinitionIsGoneIsPassedOver) {
    auto gone = MakeReference();
    k3::Viewport* viewport = AddViewport(gone.Get());
    gone.Reset();
    table->ApplyPendingBindings();
    EXPECT_EQ(viewport->GetViewNode(), nullptr);
}

TEST_F(PendingBindings, AViewOfAnExcludedNodeIsExcludedWithItsCompanion) {
    // Excluded by a node above that has no instance and so is passed through.
    k3::Node* group = scene->CreateEmptyNode(0, 0, 0);
    doorNode->AttachTo(group);
    k3::Viewport* viewport = AddViewport(lockPart.Get());
    const auto companion = Make<k3::Entity>();
    viewport->SetCompanion(companion.Get());
    group->SetFlags(NodeFlag::kExcluded);
    table->ApplyPendingBindings();
    EXPECT_EQ(viewport->GetParamVar(Param::kFlags).ToInt(), 0)
        << "an excluded definition counts as not shown";
    EXPECT_EQ(viewport->GetViewNode(), lockNode);
}

TEST_F(PendingBindings, ALayerLosesWhatIsOutsideOfItsView) {
    k3::Node* outside = Show(*scene, Use(MakeReference()));
    k3::Viewport* viewport = AddViewport(lockPart.Get());
    k3::Layer* layer = GiveLayer(*viewport, {outside, lockNode});
    table->ApplyPendingBindings();
    EXPECT_EQ(MembersOf(*layer), std::vector<Interface*>{lockNode});
}

TEST_F(PendingBindings, APmiViewShowsTheWholeSubtree) {
    k3::Viewport* viewport = AddViewport(lockPart.Get());
    MakePmiView(*viewport);
    k3::Layer* layer = GiveLayer(*viewport, {});
    table->ApplyPendingBindings();
    EXPECT_EQ(MembersOf(*layer), (std::vector<Interface*>{lockNode, doorNode}));
}

TEST_F(PendingBindings, APmiViewShowsOrdinaryGeometryOnly) {
    k3::Viewport* viewport = AddViewport(lockPart.Get());
    MakePmiView(*viewport);
    k3::Layer* layer = GiveLayer(*viewport, {});
    const auto child = [&](const wchar_t* key, const Var& value) {
        k3::Node* node = doorNode->CreateChildNode(0, 0, 0);
        node->SetMetaValue(Var(key), value);
        return node;
    };
    Var pmi, noPmi, hidden, other;
    pmi.At(L"PMIType") = Var(3);
    noPmi.At(L"PMIType") = Var(0);
    hidden.At(L"EntityType") = Var(0x200);
    other.At(L"EntityType") = Var(0x100);
    child(L"$QN.CAD.PMI", pmi);
    k3::Node* first = child(L"$QN.CAD.PMI", noPmi);
    child(L"$QN.XSECTION.OBJECT", Var(1));
    child(L"$QN.CAD.ENTITYTYPE", hidden);
    k3::Node* second = child(L"$QN.CAD.ENTITYTYPE", other);
    table->ApplyPendingBindings();
    EXPECT_EQ(MembersOf(*layer), (std::vector<Interface*>{lockNode, first, second, doorNode}));
}

TEST_F(PendingBindings, ACaptureKeepsWhatItHeldAndNamesItsNode) {
    doorPart->SetProperty(Prop::kMetadata, UniqueId(L"u7"));
    k3::Viewport* viewport = AddViewport(lockPart.Get());
    MakePmiView(*viewport, Var(true));
    k3::Layer* layer = GiveLayer(*viewport, {lockNode});
    table->ApplyPendingBindings();
    EXPECT_EQ(MembersOf(*layer), std::vector<Interface*>{lockNode});
    EXPECT_EQ(UniqueIdOf(*doorNode), Var(L"u7"));
}

TEST_F(PendingBindings, ATrueValueThatIsNoBoolMakesNoCapture) {
    k3::Viewport* viewport = AddViewport(lockPart.Get());
    MakePmiView(*viewport, Var(1));
    k3::Layer* layer = GiveLayer(*viewport, {});
    table->ApplyPendingBindings();
    EXPECT_EQ(MembersOf(*layer).size(), 2u);
}

TEST_F(PendingBindings, ALoadedReferenceMarksItsFirstNode) {
    Var metadata = UniqueId(L"u7");
    metadata.At(L"$QN.CAD.ENTITYTYPE").At(L"EntityType") = Var(0x200);
    lockPart->SetProperty(Prop::kMetadata, metadata);
    table->loadedReferences.insert(Counted<Reference>(lockPart.Get()));
    table->ApplyPendingBindings();
    EXPECT_EQ(UniqueIdOf(*lockNode), Var(L"u7"));
    EXPECT_TRUE(lockNode->GetFlags() & NodeFlag::kHidden);
}

TEST_F(PendingBindings, ALoadedReferenceOfAnotherEntityTypeStaysVisible) {
    Var metadata;
    metadata.At(L"$QN.CAD.ENTITYTYPE").At(L"EntityType") = Var(0x100);
    lockPart->SetProperty(Prop::kMetadata, metadata);
    table->loadedReferences.insert(Counted<Reference>(lockPart.Get()));
    table->ApplyPendingBindings();
    EXPECT_FALSE(lockNode->GetFlags() & NodeFlag::kHidden);
}

TEST_F(PendingBindings, WithoutSceneOrNodesNothingHappens) {
    AddViewport(lockPart.Get());
    table->loadedReferences.insert(Counted<Reference>(MakeReference().Get()));
    table->SetSceneAndContext(nullptr, nullptr);
    table->ApplyPendingBindings();
    EXPECT_EQ(scene->GetAllViewports()->GetCount(), 1);
}

TEST_F(PendingBindings, TheFirstNodeOfADefinitionCounts) {
    Show(*scene, door);
    EXPECT_EQ(ShownNodes(*scene).Find(nullptr, doorPart.Get()), doorNode);
    EXPECT_EQ(ShownNodes(*scene).Find(nullptr, nullptr), nullptr);
}

TEST_F(PendingBindings, NodesWithoutInstanceArePassedThrough) {
    k3::Node* group = scene->CreateEmptyNode(0, 0, 0);
    doorNode->AttachTo(group);
    EXPECT_EQ(ShownNodes(*scene).Find(nullptr, lockPart.Get()), lockNode);
}

TEST_F(PendingBindings, AnExcludedNodeEndsItsBranch) {
    doorNode->SetFlags(NodeFlag::kExcluded);
    EXPECT_EQ(ShownNodes(*scene).Find(nullptr, lockPart.Get()), nullptr);
    EXPECT_TRUE(IsExcluded(lockNode));
}

TEST_F(PendingBindings, AnExcludedInstanceOrReferenceExcludesItsNodes) {
    EXPECT_FALSE(IsExcluded(lockNode));
    door->SetProperty(Prop::kExcluded, Var(false));  // set is enough
    EXPECT_TRUE(IsExcluded(lockNode));
    lockPart->SetProperty(Prop::kExcluded, Var(true));
    EXPECT_TRUE(IsExcluded(lockNode));
    EXPECT_FALSE(IsExcluded(nullptr));
}

TEST_F(PendingBindings, EachStructureHasItsOwnNodes) {
    const auto current = Make<SimpleBom>();
    const auto other = Make<SimpleBom>();
    const auto kept = Make<k3::Node>();
    const auto child = kept->CreateChildNode(0, 0, 0);
    child->SetParamObject(Param::kInstance, door.Get());
    other->nodes = Var(VarArray::Create());
    other->nodes.ToArray()->Add(Var(kept));
    const auto boms = VarArray::Create();
    boms->Add(Var(static_cast<Extension*>(current.Get())));
    boms->Add(Var(static_cast<Extension*>(other.Get())));
    scene->SetParamObject(Param::kCurrentBom, current.Get());
    scene->SetParamObject(Param::kBoms, boms.Get());
    const ShownNodes shown(*scene);
    EXPECT_EQ(shown.Find(nullptr, doorPart.Get()), doorNode);
    EXPECT_EQ(shown.Find(static_cast<Extension*>(current.Get()), doorPart.Get()), doorNode);
    EXPECT_EQ(shown.Find(static_cast<Extension*>(other.Get()), doorPart.Get()), child);
    EXPECT_EQ(shown.Find(static_cast<Extension*>(other.Get()), lockPart.Get()), nullptr);
}

}  // namespace qn::test
