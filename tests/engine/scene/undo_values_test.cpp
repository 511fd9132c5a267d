#include "tests/engine/scene/fake_graph.h"
#include "tests/engine/scene/undo_fixture.h"

namespace qn::k3 {
namespace {

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

}  // namespace
}  // namespace qn::k3
