#include "graph/occurrence_overrides.h"

#include "tests/graph/graph_support.h"
#include "tests/support/recording_context.h"

namespace qn::test {

namespace {

/// A scene with a door below its top node, and a lock in it; names equal those of the definitions, so that
/// nothing differs at first.
class OccurrenceOverrides : public testing::Test {
protected:
    OccurrenceOverrides() {
        top = scene->CreateEmptyNode(0, 0, 0);
        doorNode = Show(*top, door);
        lockNode = Show(*doorNode, lock);
    }
    static k3::Node* Show(k3::Node& parent, const Counted<InstanceImpl>& instance) {
        k3::Node* node = parent.CreateChildNode(0, 0, 0);
        if (instance) {
            instance->SetProperty(Prop::kName, Var(L"x"));
            node->SetParamObject(Param::kInstance, instance.Get());
        }
        node->SetName(L"x");
        return node;
    }
    static const PersistentSelectorImpl* Captured(const InstanceImpl& instance, int index = 0) {
        const Var* entry = instance.Selectors().Lookup(index);
        return entry ? Cast<PersistentSelectorImpl>(*entry) : nullptr;
    }
    Var Attribute(PropEnum id) const {
        const auto* captured = Captured(*door);
        return captured ? captured->GetProperty(id, 0) : Var(L"nothing was captured");
    }
    void Filter(const wchar_t* path, const wchar_t* id) {
        Var filter;
        filter.At(0).At(path) = Var(1);
        filter.At(1).At(id) = Var(1);
        context->SetParamVar(Param::kIdFilter, filter);
        table->SetSceneAndContext(scene.Get(), context.Get());
        table->ReadIdFilter();
    }

    Counted<k3::Scene> scene = Make<k3::Scene>();
    Counted<RecordingContext> context = MakeContext();
    Counted<LookupTableImpl> table = Make<LookupTableImpl>();
    Counted<InstanceImpl> door = MakeInstance();
    Counted<InstanceImpl> lock = MakeInstance();
    k3::Node* top;
    k3::Node* doorNode;
    k3::Node* lockNode;
};

}  // namespace

TEST_F(OccurrenceOverrides, WhereNothingDiffersNothingIsStored) {
    CaptureOverrides(*top, nullptr);
    CaptureOverrides(*top, table.Get());
    EXPECT_EQ(door->GetSelectorCount(), 0);
    EXPECT_EQ(lock->GetSelectorCount(), 0);
}

TEST_F(OccurrenceOverrides, AHiddenNode) {
    doorNode->SetFlags(NodeFlag::kHidden);
    CaptureOverrides(*top, nullptr);
    EXPECT_EQ(Attribute(Prop::kHidden), Var(true));
}

TEST_F(OccurrenceOverrides, AServerId) {
    doorNode->SetParamVar(0x9e, Var(L"s:1"));
    CaptureOverrides(*top, nullptr);
    EXPECT_EQ(Attribute(Prop::kBsId), Var(L"s:1"));
}

TEST_F(OccurrenceOverrides, Metadata) {
    doorNode->GetMetadata(true)->At(Var(L"a")) = Var(1);
    CaptureOverrides(*top, nullptr);
    EXPECT_EQ(Attribute(Prop::kMetadata).size(), 1);
}

TEST_F(OccurrenceOverrides, ExternalIdsOnlyAsAMap) {
    doorNode->SetParamVar(0x97, Var(1));
    CaptureOverrides(*top, nullptr);
    EXPECT_EQ(door->GetSelectorCount(), 0);
    Var ids;
    ids.At(L"system") = Var(L"u");
    doorNode->SetParamVar(0x97, ids);
    CaptureOverrides(*top, nullptr);
    EXPECT_EQ(Attribute(Prop::kExternalIds), ids);
}

TEST_F(OccurrenceOverrides, AnotherNameAndAnotherPlace) {
    Matrix4<double> matrix;
    matrix.m[3][0] = 5.0;
    doorNode->SetName(L"left door");
    doorNode->SetMatrix(&matrix, 0);
    CaptureOverrides(*top, nullptr);
    EXPECT_EQ(Attribute(Prop::kName), Var(L"left door"));
    EXPECT_EQ(Attribute(Prop::kLocalMatrix), Var(matrix));
}

TEST_F(OccurrenceOverrides, EffectivityAndLinksHaveNoEffect) {
    doorNode->SetParamVar(0x8b, Var(1));
    doorNode->SetParamVar(0xa3, Var(1));
    CaptureOverrides(*top, nullptr);
    EXPECT_EQ(door->GetSelectorCount(), 0);
}

TEST_F(OccurrenceOverrides, ThePathStartsBelowTheGivenNode) {
    lockNode->SetFlags(NodeFlag::kHidden);
    CaptureOverrides(*top, nullptr);
    ASSERT_NE(Captured(*lock), nullptr);
    EXPECT_EQ(Targets(*Captured(*lock)), (std::vector<Instance*>{door.Get(), lock.Get()}));
    EXPECT_TRUE(Captured(*lock)->idPath.IsEmpty());
}

TEST_F(OccurrenceOverrides, TheGivenNodeItselfIsNotStored) {
    const auto root = MakeInstance();
    top->SetParamObject(Param::kInstance, root.Get());
    top->SetFlags(NodeFlag::kHidden);
    CaptureOverrides(*top, nullptr);
    EXPECT_EQ(root->GetSelectorCount(), 0);
}

TEST_F(OccurrenceOverrides, ANodeWithoutInstanceEndsItsBranch) {
    doorNode->DeleteParam(Param::kInstance);
    lockNode->SetFlags(NodeFlag::kHidden);
    CaptureOverrides(*top, nullptr);
    EXPECT_EQ(lock->GetSelectorCount(), 0);
}

TEST_F(OccurrenceOverrides, AFilteredElementIsStoredAsHiddenThoughNothingDiffers) {
    Filter(L"some/path", L"s:other");
    CaptureOverrides(*top, table.Get());
    EXPECT_EQ(Attribute(Prop::kHidden), Var(true));
    EXPECT_EQ(lock->GetSelectorCount(), 1);
}

TEST_F(OccurrenceOverrides, AnAllowedIdIsNotHidden) {
    Filter(L"some/path", L"s:door");
    door->SetProperty(Prop::kBsId, Var(L"s:door"));
    CaptureOverrides(*top, table.Get());
    EXPECT_EQ(door->GetSelectorCount(), 0);
}

TEST_F(OccurrenceOverrides, AnAllowedPathIsNotHidden) {
    Filter(L"a/b", L"s:other");
    doorNode->SetParamVar(0x9e, Var(L"a/b"));
    CaptureOverrides(*top, table.Get());
    EXPECT_TRUE(Attribute(Prop::kHidden).IsEmpty());
}

TEST_F(OccurrenceOverrides, ADeepTreeIsWalkedToItsEnd) {
    k3::Node* node = lockNode;
    Counted<InstanceImpl> last;
    for (int i = 0; i < kDeep; ++i)
        node = Show(*node, last = MakeInstance());
    node->SetFlags(NodeFlag::kHidden);
    CaptureOverrides(*top, nullptr);
    ASSERT_NE(Captured(*last), nullptr);
    EXPECT_EQ(Captured(*last)->path.size(), static_cast<std::size_t>(kDeep + 2));
}

}  // namespace qn::test
