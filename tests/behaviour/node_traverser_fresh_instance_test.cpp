#include "frame/host/object3d.h"
#include "tests/behaviour/traverser_support.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

Var Metadata() {
    return MapOf({{Var(L"group"), MapOf({{Var(L"key"), Var(1)}})}});
}

/// A node below a top-level node, without instance.
struct Fresh : Stage {
    k3::Node* top = Node(L"top");
    k3::Node* node = Node(L"node", top);
};

TEST(NodeTraverserFreshInstance, GetsIdsFromTheTable) {
    const Fresh f;
    const auto made = f.InstanceOf(f.node);
    ASSERT_TRUE(made);
    EXPECT_EQ(IdOf(made.Get()), L"n1");
    EXPECT_EQ(IdOf(made->GetReference()), L"e1");
    EXPECT_EQ(f.table->FindInstanceById(L"n1").Get(), made.Get());
    EXPECT_EQ(f.table->FindReferenceById(L"e1").Get(), made->GetReference());
    EXPECT_TRUE(f.Fields().instances.count(made));
}

TEST(NodeTraverserFreshInstance, IsNotKeptOnTheNodeIfThereIsATable) {
    const Fresh f;
    f.InstanceOf(f.node);
    EXPECT_TRUE(f.node->GetParamVar(Param::kInstance).IsEmpty());
}

TEST(NodeTraverserFreshInstance, IsKeptOnTheNodeWithoutTable) {
    Fresh f;
    const auto made = f.FreeInstanceOf(f.node);
    const Var kept = f.node->GetParamVar(Param::kInstance);
    EXPECT_EQ(Cast<Instance>(kept), made.Get());
    EXPECT_FALSE(kept.IsWeak());
    EXPECT_TRUE(made->GetProperty(Prop::kLocalId, 0).IsEmpty());
    EXPECT_EQ(made->GetLookupTable(), nullptr);
    ASSERT_TRUE(made->GetReference());
}

TEST(NodeTraverserFreshInstance, NamesItsReferenceByTheServerIdOfTheNode) {
    const Fresh f;
    f.node->SetParamVar(Param::kBsId, Var(L"s1:part"));
    const auto made = f.InstanceOf(f.node);
    EXPECT_EQ(made->GetReference(), f.table->FindReferenceByBsId(L"s1:part").Get());
    EXPECT_TRUE(made->GetProperty(Prop::kBsId, 0).IsEmpty()) << "never the instance";
    EXPECT_FALSE(f.table->FindInstanceByBsId(L"s1:part"));
}

TEST(NodeTraverserFreshInstance, SharesTheReferenceOfAServerId) {
    const Fresh f;
    k3::Node* twin = f.Node(L"twin", f.top);
    f.node->SetParamVar(Param::kBsId, Var(L"s1:part"));
    twin->SetParamVar(Param::kBsId, Var(L"s1:part"));
    const auto first = f.InstanceOf(f.node), second = f.InstanceOf(twin);
    EXPECT_NE(first.Get(), second.Get());
    EXPECT_EQ(first->GetReference(), second->GetReference());
    EXPECT_NE(IdOf(first.Get()), IdOf(second.Get()));
}

TEST(NodeTraverserFreshInstance, NamesNothingByTheServerIdWithoutTable) {
    Fresh f;
    f.node->SetParamVar(Param::kBsId, Var(L"s1:part"));
    const auto made = f.FreeInstanceOf(f.node);
    EXPECT_TRUE(made->GetProperty(Prop::kBsId, 0).IsEmpty());
    EXPECT_TRUE(made->GetReference()->GetProperty(Prop::kBsId, 0).IsEmpty());
}

TEST(NodeTraverserFreshInstance, TakesThePropertiesOfTheNode) {
    const Fresh f;
    const auto local = Shift(1), own = Shift(2);
    f.node->SetMatrix(&local, 0);
    f.node->SetMatrix(&own, 1);
    f.node->SetThirdMatrix(Shift(3));
    f.node->SetFlags(0x1 | 0x8000);
    f.node->SetIntegerAttribute(6, 0);
    f.node->SetShortValue(15);
    f.node->SetText(L"text");
    f.node->SetParamVar(Param::kExternalIds, MapOf({{Var(L"sys"), ArrayOf({Var(L"id")})}}));
    f.node->SetParamVar(Param::kAttachedIdentifier, Var(L"attached"));
    f.node->SetMetadata(Metadata().ToMap());
    const auto made = f.InstanceOf(f.node);
    const std::pair<PropEnum, Var> expected[] = {
        {Prop::kName, Var(L"node")},
        {Prop::kLocalMatrix, Var(Shift(1))},
        {Prop::kOwnMatrix, Var(Shift(2))},
        {Prop::kThirdMatrix, Var(Shift(3))},
        {Prop::kHidden, Var(true)},
        {Prop::kInteger, Var(6)},
        {Prop::kMetadata, Metadata()},
        {Prop::kFlag8000, Var(true)},
        {Prop::kExternalIds, MapOf({{Var(L"sys"), ArrayOf({Var(L"id")})}})},
        {Prop::kShortValue, Var(15)},
        {Prop::kText, Var(L"text")},
        {Prop::kAttachedIdentifier, Var(L"attached")}};
    for (const auto& [id, value] : expected)
        EXPECT_EQ(made->GetProperty(id, 0), value) << Key(id);
}

TEST(NodeTraverserFreshInstance, TakesEmptyPropertiesTooAndSoInheritsNothing) {
    const Fresh f;
    const auto made = f.InstanceOf(f.node);
    const std::set<int> elsewhere{0x0a, 0x0c, 0x0f, 0x13, 0x14, 0x22, 0x23};
    for (int id = kFirstProp; id <= kLastProp; ++id)
        EXPECT_TRUE(elsewhere.contains(id) || SavesProperty(*made, PropEnum{id})) << id;
    made->GetReference()->SetProperty(Prop::kText, Var(L"text"));
    EXPECT_TRUE(made->GetProperty(Prop::kText, 1).IsEmpty());
}

TEST(NodeTraverserFreshInstance, TakesNoMetadataWhereThereIsNone) {
    const Fresh f;
    EXPECT_EQ(f.InstanceOf(f.node)->GetMetadata(false), nullptr);
}

TEST(NodeTraverserFreshInstance, NamesAReferenceWithoutName) {
    const Fresh f;
    EXPECT_EQ(f.InstanceOf(f.node)->GetReference()->GetProperty(Prop::kName, 0), Var(L"node"));
}

TEST(NodeTraverserFreshInstance, LeavesTheNameOfAReference) {
    const Fresh f;
    f.table->GetOrCreateBsReference(String(), L"s1:part")->SetProperty(Prop::kName, Var(L"part"));
    f.node->SetParamVar(Param::kBsId, Var(L"s1:part"));
    const auto made = f.InstanceOf(f.node);
    EXPECT_EQ(made->GetProperty(Prop::kName, 0), Var(L"node"));
    EXPECT_EQ(made->GetReference()->GetProperty(Prop::kName, 0), Var(L"part"));
}

TEST(NodeTraverserFreshInstance, LeavesTheOtherPropertiesOfAReference) {
    const Fresh f;
    f.node->SetText(L"text");
    f.node->SetMetadata(Metadata().ToMap());
    const auto made = f.InstanceOf(f.node);
    EXPECT_TRUE(made->GetReference()->GetProperty(Prop::kText, 0).IsEmpty());
    EXPECT_EQ(made->GetReference()->GetMetadata(false), nullptr);
}

TEST(NodeTraverserFreshInstance, GivesANewReferenceTheObjectOfTheNode) {
    Fresh f;
    const auto object = Make<k3::Object3D>();
    f.node->SetObject(object.Get());
    const Var target = f.InstanceOf(f.node)->GetReference()->GetTarget();
    EXPECT_EQ(Cast<k3::Object3D>(target), object.Get());
    EXPECT_FALSE(target.IsWeak());
    k3::Node* other = f.Node(L"other", f.top);
    other->SetObject(object.Get());
    EXPECT_EQ(Cast<k3::Object3D>(f.FreeInstanceOf(other)->GetReference()->GetTarget()), object.Get());
}

TEST(NodeTraverserFreshInstance, LeavesTheTargetOfAReferenceWithoutObject) {
    const Fresh f;
    f.table->GetOrCreateBsReference(String(), L"s1:part")->SetTarget(Var(L"a.step"));
    f.node->SetParamVar(Param::kBsId, Var(L"s1:part"));
    EXPECT_EQ(f.InstanceOf(f.node)->GetReference()->GetTarget(), Var(L"a.step"));
}

TEST(NodeTraverserFreshInstance, CarriesNoSelector) {
    const Fresh f;
    f.node->SetText(L"text");
    EXPECT_EQ(f.InstanceOf(f.node)->GetSelectorCount(), 0);
}

TEST(NodeTraverserFreshInstance, StandsInForAParameterThatHoldsNoInstance) {
    const Fresh f;
    const auto stranger = NewReference();
    for (const Var& value :
         {Var(stranger), ArrayOf({Var(1)}), Var(L"text"), Var(7), MapOf({{Var(0), Var(1)}})}) {
        k3::Node* node = f.Node(L"node", f.top);
        node->SetParamVar(Param::kInstance, value);
        const auto made = f.InstanceOf(node);
        ASSERT_TRUE(made) << int{value.GetTag()};
        EXPECT_EQ(made->GetProperty(Prop::kName, 0), Var(L"node"));
    }
}

}  // namespace
}  // namespace qn::test
