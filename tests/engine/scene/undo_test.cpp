#include "engine/scene/undo_recorder.h"
#include "tests/engine/scene/fake_graph.h"
#include "tests/engine/scene/scene_tests.h"

namespace qn::k3 {
namespace {

using test::AddNode;
using test::ChildNames;
using test::Names;
using test::TreeText;

/// A scene "(a(b(c) d) e)" with a recorder.
class Undo : public ::testing::Test {
protected:
    void SetUp() override {
        scene_->SetName(L"s");
        a_ = AddNode(*scene_, L"a");
        b_ = AddNode(*a_, L"b");
        AddNode(*b_, L"c");
        d_ = AddNode(*a_, L"d");
        e_ = AddNode(*scene_, L"e");
        scene_->EnableUndo(true);
        undo_ = scene_->GetUndoRecorder(1);
    }

    /// Runs `change` in one item, then goes back and forth and back, and compares the tree each time.
    template <class Change>
    void ExpectExact(Change&& change) {
        const std::string before = TreeText(*scene_);
        undo_->BeginItem(L"change");
        change();
        undo_->EndItem(L"change");
        const std::string after = TreeText(*scene_);
        EXPECT_TRUE(undo_->Undo());
        EXPECT_EQ(TreeText(*scene_), before);
        EXPECT_TRUE(undo_->Redo());
        EXPECT_EQ(TreeText(*scene_), after);
        EXPECT_TRUE(undo_->Undo());
        EXPECT_EQ(TreeText(*scene_), before);
        CheckChains(*scene_);
    }

    static void CheckChains(const Node& root) {
        ChildNames(root);
        for (Node* child = root.GetFirstChild(); child; child = child->GetNextSibling())
            CheckChains(*child);
    }

    const Counted<Scene> scene_ = Make<Scene>();
    Node* a_ = nullptr;
    Node* b_ = nullptr;
    Node* d_ = nullptr;
    Node* e_ = nullptr;
    UndoRecorder* undo_ = nullptr;
};

TEST_F(Undo, IsOffUnlessSwitchedOn) {
    EXPECT_EQ(Make<Scene>()->GetUndoRecorder(1), nullptr);
    scene_->EnableUndo(false);
    EXPECT_EQ(scene_->GetUndoRecorder(1), nullptr);
}

TEST_F(Undo, HasNothingToTakeBackAtFirst) {
    EXPECT_FALSE(undo_->Undo());
    EXPECT_FALSE(undo_->Redo());
}

TEST_F(Undo, AnItemWithoutRecordsIsNone) {
    undo_->BeginItem(L"x");
    undo_->EndItem(L"x");
    EXPECT_FALSE(undo_->Undo());
}

TEST_F(Undo, RecordsOutsideOfAnItemDoNothing) {
    undo_->RecordName(a_, 0);
    a_->SetName(L"x");
    undo_->EndItem(nullptr);
    EXPECT_FALSE(undo_->Undo());
    EXPECT_EQ(a_->GetName(), String(L"x"));
}

TEST_F(Undo, IsRefusedInsideAnItem) {
    undo_->BeginItem(L"x");
    EXPECT_FALSE(undo_->Undo());
    undo_->EndItem(nullptr);
}

TEST_F(Undo, ADeletedNodeComesBackToItsPlace) {
    ExpectExact([&] { scene_->DeleteNode(0, a_, 0); });
}

TEST_F(Undo, ADeletedNodeIsTheSameObjectAgain) {
    const Weak<Node> node(b_);
    undo_->BeginItem(L"");
    scene_->DeleteNode(0, b_, 0);
    undo_->EndItem(nullptr);
    ASSERT_TRUE(node);
    EXPECT_EQ(b_->GetScene(), nullptr);
    undo_->Undo();
    EXPECT_EQ(a_->GetFirstChild(), b_);
    EXPECT_EQ(b_->GetFirstChild()->GetScene(), scene_.Get());
}

TEST_F(Undo, DeletionsOfNeighboursAndOfParentsComeBack) {
    ExpectExact([&] {
        scene_->DeleteNode(0, d_, 0);
        scene_->DeleteNode(0, b_, 0);
        scene_->DeleteNode(0, a_, 0);
        scene_->DeleteNode(0, e_, 0);
    });
}

TEST_F(Undo, ANodeAttachedAndRecordedIsTakenOut) {
    ExpectExact([&] {
        const auto copy = CountedCast<Node>(b_->Clone(0));
        copy->AttachTo(a_);
        undo_->RecordNodeAdded(copy.Get(), 0);
    });
}

TEST_F(Undo, ANodeAddedBeforeTheItemIsTakenOutWhenRecordedAsAdded) {
    AddNode(*a_, L"late");
    undo_->BeginItem(L"");
    undo_->RecordNodeAdded(a_->GetLastChild(), 0);
    undo_->EndItem(nullptr);
    undo_->Undo();
    EXPECT_EQ(ChildNames(*a_), (Names{"b", "d"}));
    undo_->Redo();
    EXPECT_EQ(ChildNames(*a_), (Names{"b", "d", "late"}));
}

TEST_F(Undo, ANodeRecordedAsAddedBeforeItIsAttachedIsTakenOut) {
    ExpectExact([&] {
        const auto node = Make<Node>();
        undo_->RecordNodeAdded(node.Get(), 0);
        node->AttachTo(b_);
    });
}

TEST_F(Undo, AMovedNodeGoesBack) {
    ExpectExact([&] { e_->AttachTo(b_); });
}

TEST_F(Undo, NodesThatChangedPlacesGoBack) {
    ExpectExact([&] {
        a_->AttachTo(e_);
        b_->AttachTo(scene_.Get());
        e_->AttachTo(b_);
    });
}

TEST_F(Undo, ANodeTakenOutOfTheSceneGoesBack) {
    const auto root = Make<Node>();
    undo_->BeginItem(L"");
    a_->AttachTo(root.Get());
    undo_->EndItem(nullptr);
    undo_->Undo();
    EXPECT_EQ(TreeText(*scene_), "s(a(b(c) d) e)");
    EXPECT_EQ(root->GetChildCount(), 0);
    undo_->Redo();
    EXPECT_EQ(TreeText(*scene_), "s(e)");
    EXPECT_EQ(a_->GetParent(), root.Get());
}

TEST_F(Undo, NameIsRestored) {
    a_->SetDisplayName(L"shown");
    undo_->BeginItem(L"");
    undo_->RecordName(a_, 0);
    a_->SetName(L"x");
    a_->SetDisplayName(L"y");
    undo_->EndItem(nullptr);
    undo_->Undo();
    EXPECT_EQ(a_->GetName(), String(L"a"));
    EXPECT_EQ(a_->GetDisplayName(), String(L"shown"));
    undo_->Redo();
    EXPECT_EQ(a_->GetName(), String(L"x"));
    EXPECT_EQ(a_->GetDisplayName(), String(L"y"));
}

TEST_F(Undo, AttributesAreRestored) {
    a_->SetFlags(0x8001);
    undo_->BeginItem(L"");
    undo_->RecordAttributes(a_, 0);
    a_->SetAttributeWord(0, 4);
    a_->SetAttributeWord(1, 5);
    a_->SetIntegerAttribute(6, 0);
    a_->SetShortValue(7);
    a_->SetOpacity(0.5f);
    a_->SetText(L"t");
    undo_->EndItem(nullptr);
    undo_->Undo();
    EXPECT_EQ(a_->GetFlags(), 0x8001u);
    EXPECT_EQ(a_->GetAttributeWord(1), 0u);
    EXPECT_EQ(a_->GetIntegerAttribute(), 0);
    EXPECT_EQ(a_->GetShortValue(), 0);
    EXPECT_EQ(a_->GetOpacity(), 1.0f);
    EXPECT_TRUE(a_->GetText().IsEmpty());
    undo_->Redo();
    EXPECT_EQ(a_->GetFlags(), 4u);
    EXPECT_EQ(a_->GetShortValue(), 7);
    EXPECT_EQ(a_->GetText(), String(L"t"));
}

TEST_F(Undo, ObjectIsRestored) {
    const auto first = Make<Mesh>(), second = Make<Mesh>();
    a_->SetObject(first.Get());
    undo_->BeginItem(L"");
    undo_->RecordObject(a_, 0);
    a_->SetObject(second.Get());
    undo_->EndItem(nullptr);
    undo_->Undo();
    EXPECT_EQ(a_->GetObject(), first.Get());
    undo_->Redo();
    EXPECT_EQ(a_->GetObject(), second.Get());
}

TEST_F(Undo, AllThreeMatricesAreRestoredExactly) {
    const auto old = Matrix4<double>::Translation(0.1, 0.2, 0.3);
    const auto fresh = Matrix4<double>::Translation(4, 5, 6);
    a_->SetMatrix(&old, 0);
    a_->SetThirdMatrix(old);
    undo_->BeginItem(L"");
    undo_->RecordTransform(a_, 0, 0);
    a_->SetMatrix(&fresh, 0);
    a_->SetMatrix(&fresh, 1);
    a_->SetThirdMatrix(fresh);
    undo_->RecordTransform(a_, 0, 0);  // the first record is the state before
    undo_->EndItem(nullptr);
    undo_->Undo();
    Matrix4<double> out;
    a_->GetMatrix(&out, 0);
    EXPECT_EQ(out, old);
    a_->GetMatrix(&out, 1);
    EXPECT_TRUE(out.IsIdentity(0.0));
    a_->GetThirdMatrix(&out);
    EXPECT_EQ(out, old);
    undo_->Redo();
    a_->GetMatrix(&out, 1);
    EXPECT_EQ(out, fresh);
}

TEST_F(Undo, AParameterIsRestoredWithItsContainers) {
    Var rows;
    rows.InitArray(1);
    rows.At(0) = Var(1);
    Viewport* view = scene_->CreateViewport(L"v");
    view->SetParamVar(Param::kViewportRows, rows);
    undo_->BeginItem(L"");
    undo_->RecordParam(view, Param::kViewportRows, Var(L""));
    view->GetParamVar(Param::kViewportRows).ToArray()->Set(0, Var(2));
    undo_->EndItem(nullptr);
    undo_->Undo();
    EXPECT_EQ(view->GetParamVar(Param::kViewportRows).ToArray()->Get(0), Var(1));
    undo_->Redo();
    EXPECT_EQ(view->GetParamVar(Param::kViewportRows).ToArray()->Get(0), Var(2));
}

TEST_F(Undo, AParameterThatWasNotThereGoesAway) {
    undo_->BeginItem(L"");
    undo_->RecordParam(a_, 0x100, Var());
    a_->SetParamVar(0x100, Var(1));
    undo_->EndItem(nullptr);
    undo_->Undo();
    EXPECT_EQ(a_->GetParamType(0x100), VarTag::kEmpty);
    undo_->Redo();
    EXPECT_EQ(a_->GetParamVar(0x100).ToInt(), 1);
}

TEST_F(Undo, EditsAfterAnUndoDoNotReachTheRecord) {
    a_->SetParamVar(0x100, Var(VarArray::Create(1)));
    undo_->BeginItem(L"");
    undo_->RecordParam(a_, 0x100, Var());
    a_->GetParamVar(0x100).ToArray()->Set(0, Var(1));
    undo_->EndItem(nullptr);
    undo_->Undo();
    a_->GetParamVar(0x100).ToArray()->Set(0, Var(7));
    undo_->Redo();
    undo_->Undo();
    EXPECT_TRUE(a_->GetParamVar(0x100).ToArray()->Get(0).IsEmpty());
}

TEST_F(Undo, MetadataOfADefinitionIsRestoredInTheSharedMap) {
    const auto reference = Make<test::FakeReference>();
    const auto map = VarMap::Create();
    map->At(Var(L"k")) = Var(1);
    reference->SetMetadata(map.Get());
    const auto other = VarMap::Create();
    undo_->BeginItem(L"");
    undo_->RecordParam(reference.Get(), Param::kMetadataUndo, Var(0));
    map->At(Var(L"k")) = Var(2);
    reference->SetMetadata(other.Get());
    undo_->EndItem(nullptr);
    undo_->Undo();
    EXPECT_EQ(reference->GetMetadata(false), map.Get());
    EXPECT_EQ(*map->Lookup(Var(L"k")), Var(1));
    undo_->Redo();
    EXPECT_EQ(reference->GetMetadata(false), other.Get());
}

TEST_F(Undo, OnOtherObjectsTheMetadataNumberIsAPlainParameter) {
    undo_->BeginItem(L"");
    undo_->RecordParam(a_, Param::kMetadataUndo, Var(0));
    a_->SetParamVar(Param::kMetadataUndo, Var(3));
    undo_->EndItem(nullptr);
    undo_->Undo();
    EXPECT_TRUE(a_->GetParamVar(Param::kMetadataUndo).IsEmpty());
}

/// A track of one number.
class FakeTrack final : public Track {
public:
    Var GetKeys() const override { return {}; }
    bool Accepts(const Var&) const override { return true; }
    bool SetValue(float time, const AffineParts&, int, const Var&) override {
        value = time;
        return true;
    }
    Counted<ReferenceSource> Clone(unsigned) const override {
        auto copy = Make<FakeTrack>();
        copy->value = value;
        return copy;
    }
    ResultEnum CopyFrom(const Interface* source, unsigned) override {
        value = static_cast<const FakeTrack*>(Cast<Track>(source))->value;
        return ResultEnum::kSuccess;
    }
    float value = 0;
};

TEST_F(Undo, ATrackIsRestoredInItsPlace) {
    const auto track = Make<FakeTrack>(), other = Make<FakeTrack>();
    track->value = 1;
    a_->SetTrack(99, track.Get());
    undo_->BeginItem(L"");
    undo_->RecordTrack(a_, 0);
    track->value = 2;
    a_->SetTrack(1, other.Get());
    undo_->EndItem(nullptr);
    undo_->Undo();
    EXPECT_EQ(a_->GetTrack(99), track.Get());
    EXPECT_EQ(track->value, 1);
    EXPECT_EQ(a_->GetTrack(1), nullptr);
    undo_->Redo();
    EXPECT_EQ(track->value, 2);
    EXPECT_EQ(a_->GetTrack(1), other.Get());
}

TEST_F(Undo, LayersAndSelectionComeBack) {
    Layer* layer = scene_->CreateLayer(L"l");
    layer->AddNode(e_);
    layer->AddNode(b_);
    layer->AddNode(a_);
    const auto selection = PointerArray::Create();
    selection->Add(b_);
    scene_->SetSelectedNodes(selection.Get());
    undo_->BeginItem(L"");
    scene_->_RemoveChild(a_, true);
    undo_->EndItem(nullptr);
    EXPECT_EQ(layer->GetMembers()->GetCount(), 1);
    EXPECT_EQ(scene_->GetSelectedNodes()->GetCount(), 0);
    undo_->Undo();
    ASSERT_EQ(layer->GetMembers()->GetCount(), 3);
    EXPECT_EQ(layer->GetMembers()->Get(1), b_);
    ASSERT_EQ(scene_->GetSelectedNodes()->GetCount(), 1);
    EXPECT_EQ(scene_->GetSelectedNodes()->Get(0), b_);
    undo_->Redo();
    EXPECT_EQ(layer->GetMembers()->GetCount(), 1);
    EXPECT_EQ(scene_->GetSelectedNodes()->GetCount(), 0);
}

TEST_F(Undo, LayerEditsAreTakenBack) {
    Layer* layer = scene_->CreateLayer(L"l");
    layer->AddNode(a_);
    undo_->BeginItem(L"");
    layer->DeleteAll();
    layer->AddNode(e_);
    undo_->EndItem(nullptr);
    undo_->Undo();
    ASSERT_EQ(layer->GetMembers()->GetCount(), 1);
    EXPECT_EQ(layer->GetMembers()->Get(0), a_);
}

TEST_F(Undo, ADeletedViewportComesBackToItsPlace) {
    const Weak<Viewport> first(scene_->CreateViewport(L"1"));
    scene_->CreateViewport(L"2");
    undo_->BeginItem(L"");
    scene_->DeleteObject(first.Get(), 0);
    scene_->CreateLayer(L"l");
    undo_->EndItem(nullptr);
    undo_->Undo();
    ASSERT_EQ(scene_->GetViewports()->GetCount(), 2);
    EXPECT_EQ(scene_->GetViewports()->Get(0), first.Get());
    EXPECT_EQ(scene_->GetLayers()->GetCount(), 0);
    undo_->Redo();
    EXPECT_EQ(scene_->GetViewports()->GetCount(), 1);
    EXPECT_EQ(scene_->GetLayers()->GetCount(), 1);
}

TEST_F(Undo, ItemsNest) {
    undo_->BeginItem(L"outer");
    undo_->BeginItem(L"inner");
    scene_->DeleteNode(0, e_, 0);
    undo_->EndItem(nullptr);
    scene_->DeleteNode(0, d_, 0);
    undo_->EndItem(nullptr);
    EXPECT_TRUE(undo_->Undo());
    EXPECT_EQ(TreeText(*scene_), "s(a(b(c) d) e)");
    EXPECT_FALSE(undo_->Undo());
}

TEST_F(Undo, ItemsAreTakenBackInReverseOrder) {
    for (Node* node : {e_, d_, b_}) {
        undo_->BeginItem(L"");
        scene_->DeleteNode(0, node, 0);
        undo_->EndItem(nullptr);
    }
    EXPECT_EQ(TreeText(*scene_), "s(a)");
    undo_->Undo();
    EXPECT_EQ(TreeText(*scene_), "s(a(b(c)))");
    undo_->Undo();
    undo_->Undo();
    EXPECT_EQ(TreeText(*scene_), "s(a(b(c) d) e)");
    EXPECT_FALSE(undo_->Undo());
    undo_->Redo();
    undo_->Redo();
    undo_->Redo();
    EXPECT_EQ(TreeText(*scene_), "s(a)");
    EXPECT_FALSE(undo_->Redo());
}

TEST_F(Undo, TheTextAtTheEndIsTheItemsText) {
    const auto item = [&](const wchar_t* begin, const wchar_t* end) {
        undo_->BeginItem(begin);
        undo_->RecordName(a_, 0);
        undo_->EndItem(end);
    };
    item(L"one", nullptr);
    item(L"two", L"");
    item(L"three", L"four");
    EXPECT_EQ(static_cast<SceneUndo*>(undo_)->GetUndoTexts(), (std::vector<String>{L"one", L"two", L"four"}));
}

TEST_F(Undo, ANewItemEndsRedo) {
    undo_->BeginItem(L"");
    scene_->DeleteNode(0, e_, 0);
    undo_->EndItem(nullptr);
    undo_->Undo();
    undo_->BeginItem(L"");
    scene_->DeleteNode(0, d_, 0);
    undo_->EndItem(nullptr);
    EXPECT_FALSE(undo_->Redo());
}

TEST_F(Undo, TheSceneItselfCanBeRecordedWithoutHoldingItself) {
    undo_->BeginItem(L"");
    undo_->RecordName(scene_.Get(), 0);
    undo_->RecordParam(scene_.Get(), 0x100, Var());
    scene_->SetName(L"x");
    scene_->SetParamVar(0x100, Var(1));
    undo_->EndItem(nullptr);
    EXPECT_EQ(scene_->GetRefCount(), 1);
    undo_->Undo();
    EXPECT_EQ(scene_->GetName(), String(L"s"));
    EXPECT_TRUE(scene_->GetParamVar(0x100).IsEmpty());
}

TEST_F(Undo, SendsOneChangeEvent) {
    undo_->BeginItem(L"");
    scene_->DeleteNode(0, a_, 0);
    scene_->DeleteNode(0, e_, 0);
    undo_->EndItem(nullptr);
    const unsigned before = scene_->GetChangeEventCount();
    undo_->Undo();
    EXPECT_EQ(scene_->GetChangeEventCount(), before + 1);
}

}  // namespace
}  // namespace qn::k3
