#include "construction/write_back.h"

#include "tests/construction/construction_support.h"

namespace qn::test {
namespace {

using namespace qn::graph;

/// One node with an instance of one definition.
struct Shown {
    Shown() {
        instance = LooseInstance(reference.Get());
        node->SetParamVar(Param::kInstance, Var(instance));
    }
    Counted<k3::Scene> scene = Make<k3::Scene>();
    k3::Node* node = AddNode(*scene, "wheel");
    Counted<ReferenceImpl> reference = Make<ReferenceImpl>();
    Counted<InstanceImpl> instance;
};

TEST(ApplyNodeToInstance, WritesWhatTheNodeShows) {
    const Shown shown;
    const auto matrix = Matrix4<double>::Translation(2, 0, 0);
    shown.node->SetMatrix(&matrix, 0);
    Factory()->ApplyNodeToInstance(shown.node);
    EXPECT_EQ(NameOf(shown.instance.Get()), "wheel");
    EXPECT_EQ(ShiftOf(shown.instance->GetProperty(kLocalMatrix, 0)), 2);
}

TEST(ApplyNodeToInstance, WritesEmptyValuesToo) {
    const Shown shown;
    shown.instance->SetProperty(kLocalMatrix, Shift(2));
    shown.instance->SetProperty(kLocalId, Var(L"n1"));
    shown.reference->SetProperty(Prop::kText, Var(L"inherited"));
    Factory()->ApplyNodeToInstance(shown.node);
    EXPECT_TRUE(shown.instance->GetProperty(kLocalMatrix, 0).IsEmpty());
    EXPECT_TRUE(shown.instance->GetProperty(kLocalId, 0).IsEmpty());
    EXPECT_TRUE(shown.instance->GetProperty(Prop::kText, 1).IsEmpty());
}

TEST(ApplyNodeToInstance, LeavesTheServerIdAlone) {
    const Shown shown;
    shown.instance->SetProperty(kBsId, Var(L"s1:1"));
    shown.node->SetParamVar(Param::kBsId, Var(L"s1:2"));
    Factory()->ApplyNodeToInstance(shown.node);
    EXPECT_EQ(Utf8(shown.instance->GetProperty(kBsId, 0)), "s1:1");
}

TEST(ApplyNodeToInstance, GoesOnBelowANodeWithoutInstance) {
    const Shown shown;
    const auto scene = Make<k3::Scene>();
    k3::Node* const group = AddNode(*scene, "group");
    shown.node->AttachTo(group);
    Factory()->ApplyNodeToInstance(group);
    EXPECT_EQ(NameOf(shown.instance.Get()), "wheel");
}

TEST(ApplyNodeToInstance, StaysBelowTheNode) {
    const Shown shown;
    const auto other = LooseInstance();
    AddNode(*shown.scene, "sibling")->SetParamVar(Param::kInstance, Var(other));
    Factory()->ApplyNodeToInstance(shown.node);
    EXPECT_EQ(NameOf(other.Get()), "");
}

TEST(ApplyNodeToInstance, DoesNothingForNull) {
    Factory()->ApplyNodeToInstance(nullptr);
}

TEST(ApplyNodeToReference, WritesWhatTheNodeShowsWithEmptyValues) {
    const Shown shown;
    const auto target = Make<ReferenceImpl>();
    target->SetProperty(Prop::kText, Var(L"old"));
    Factory()->ApplyNodeToReference(shown.node, target.Get());
    EXPECT_EQ(NameOf(target.Get()), "wheel");
    EXPECT_TRUE(target->GetProperty(Prop::kText, 0).IsEmpty());
}

TEST(ApplyNodeToReference, LeavesTheServerIdAlone) {
    const Shown shown;
    shown.node->SetParamVar(Param::kBsId, Var(L"s1:2"));
    const auto target = Make<ReferenceImpl>();
    target->SetProperty(kBsId, Var(L"s1:1"));
    Factory()->ApplyNodeToReference(shown.node, target.Get());
    EXPECT_EQ(Utf8(target->GetProperty(kBsId, 0)), "s1:1");
}

TEST(ApplyNodeToReference, GivesAPrivateMergeOfAllMetadata) {
    const Shown shown;
    shown.reference->SetProperty(kMetadata, MapOf(L"Mass", Var(7)));
    shown.node->SetMetadata(MapOf(L"Colour", Var(L"red")).ToMap());
    const auto target = Make<ReferenceImpl>();

    Factory()->ApplyNodeToReference(shown.node, target.Get());

    const Var metadata = target->GetProperty(kMetadata, 0);
    EXPECT_EQ(metadata.Lookup(L"Mass")->ToInt(), 7);
    EXPECT_EQ(Utf8(*metadata.Lookup(L"Colour")), "red");
    EXPECT_NE(metadata.ToMap(), shown.node->GetMetadata(false));
    EXPECT_NE(metadata.ToMap(), shown.reference->GetMetadata(false));
}

TEST(ApplyNodeToReference, TakesTheMarkOfTheNodeFromTheMetadataAsAWholeAlone) {
    constexpr unsigned kMark = 0x8;
    const Shown shown;
    Var colour(L"red");
    colour.SetValueFlags(kMark);
    Var metadata = MapOf(L"Colour", colour);
    metadata.SetValueFlags(kMark);
    shown.reference->SetProperty(kMetadata, metadata);
    const auto target = Make<ReferenceImpl>();

    Factory()->ApplyNodeToReference(shown.node, target.Get());

    const Var written = target->GetProperty(kMetadata, 0);
    EXPECT_EQ(written.GetValueFlags() & kMark, 0u);
    EXPECT_EQ(written.Lookup(L"Colour")->GetValueFlags() & kMark, kMark);
}

TEST(ApplyNodeToReference, MakesTheNodesObjectTheTarget) {
    const Shown shown;
    const auto content = Make<k3::Object3D>();
    shown.node->SetObject(content.Get());
    const auto target = Make<ReferenceImpl>();
    Factory()->ApplyNodeToReference(shown.node, target.Get());
    EXPECT_EQ(target->GetTarget().ToInterface(), content.Get());
}

TEST(ApplyNodeToReference, KeepsTheTargetWithoutAnObject) {
    const Shown shown;
    const auto target = Make<ReferenceImpl>();
    target->SetTarget(Var(L"part.stp"));
    Factory()->ApplyNodeToReference(shown.node, target.Get());
    EXPECT_EQ(Utf8(target->GetTarget()), "part.stp");
}

TEST(ApplyNodeToReference, DoesNotGoBelowTheNode) {
    const Shown shown;
    k3::Node* const child = AddNode(*shown.node, "tyre");
    const auto instance = LooseInstance();
    child->SetParamVar(Param::kInstance, Var(instance));
    const auto target = Make<ReferenceImpl>();
    Factory()->ApplyNodeToReference(shown.node, target.Get());
    EXPECT_EQ(NameOf(target.Get()), "wheel");
    EXPECT_EQ(NameOf(instance.Get()), "");
}

TEST(ApplyNodeToReference, DoesNothingForNull) {
    const Shown shown;
    Factory()->ApplyNodeToReference(nullptr, shown.reference.Get());
    Factory()->ApplyNodeToReference(shown.node, nullptr);
    EXPECT_EQ(NameOf(shown.reference.Get()), "");
}

}  // namespace
}  // namespace qn::test
