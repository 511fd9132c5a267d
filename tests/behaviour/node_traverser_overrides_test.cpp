#include "tests/behaviour/stored_selector.h"
#include "tests/behaviour/traverser_support.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;
using Path = std::vector<Instance*>;

/// top > car > wheel, where each node carries an instance that says nothing.
struct Occurrence : Stage {
    Counted<Instance> topInstance = NewReference()->CreateInstance();
    Counted<Instance> carInstance = NewReference()->CreateInstance();
    Counted<Instance> wheelInstance = NewReference()->CreateInstance();
    k3::Node* top = NodeWith(topInstance.Get());
    k3::Node* car = NodeWith(carInstance.Get(), top);
    k3::Node* wheel = NodeWith(wheelInstance.Get(), car);

    Occurrence() {
        for (Instance* instance : {topInstance.Get(), carInstance.Get(), wheelInstance.Get()})
            instance->SetProperty(Prop::kName, Var(L""));
    }
    /// What the walk found of the wheel.
    Counted<PersistentSelector> Override() {
        FreeInstanceOf(wheel);
        return SelectorUnder(*wheelInstance, Var(0));
    }
};

TEST(NodeTraverserOverrides, AreNoneWhereNodeAndInstanceAgree) {
    Occurrence o;
    EXPECT_FALSE(o.Override());
    o.wheel->SetText(L"text");
    o.wheelInstance->SetProperty(Prop::kText, Var(L"text"));
    EXPECT_FALSE(o.Override());
    EXPECT_EQ(o.wheelInstance->GetSelectorCount(), 0);
}

TEST(NodeTraverserOverrides, HoldWhatTheNodeHasAndTheInstanceHasNot) {
    Occurrence o;
    o.wheel->SetText(L"text");
    const auto matrix = Shift(1);
    o.wheel->SetMatrix(&matrix, 0);
    const auto found = o.Override();
    ASSERT_TRUE(found);
    EXPECT_EQ(FieldsOf(found).attributes, MapOf({{Var(2), Var(Shift(1))}, {Var(0x20), Var(L"text")}}));
}

TEST(NodeTraverserOverrides, HoldWhatDiffers) {
    Occurrence o;
    o.wheelInstance->SetProperty(Prop::kText, Var(L"instance"));
    o.wheelInstance->SetProperty(Prop::kInteger, Var(5));
    o.wheel->SetText(L"node");
    o.wheel->SetIntegerAttribute(5, 0);
    EXPECT_EQ(FieldsOf(o.Override()).attributes, MapOf({{Var(0x20), Var(L"node")}}));
}

TEST(NodeTraverserOverrides, HoldNothingThatTheNodeHasNot) {
    Occurrence o;
    o.wheelInstance->SetProperty(Prop::kText, Var(L"instance"));
    EXPECT_FALSE(o.Override());
}

TEST(NodeTraverserOverrides, HoldNothingThatTheInstanceInherits) {
    Occurrence o;
    o.wheelInstance->GetReference()->SetProperty(Prop::kText, Var(L"text"));
    o.wheel->SetText(L"text");
    EXPECT_FALSE(o.Override());
}

TEST(NodeTraverserOverrides, HoldMetadataEvenIfEqual) {
    Occurrence o;
    const Var metadata = MapOf({{Var(L"note"), Var(1)}});
    o.wheelInstance->SetProperty(Prop::kMetadata, metadata);
    o.wheel->SetMetadata(metadata.ToMap());
    const auto found = o.Override();
    ASSERT_TRUE(found);
    EXPECT_EQ(FieldsOf(found).attributes, MapOf({{Var(0x0c), metadata}}));
}

TEST(NodeTraverserOverrides, HoldNoIds) {
    Occurrence o;
    o.wheel->SetParamVar(Param::kBsId, Var(L"s1:x"));
    o.wheel->SetParamVar(Param::kExternalIds, MapOf({{Var(L"a"), Var(1)}}));
    EXPECT_FALSE(o.Override());
}

TEST(NodeTraverserOverrides, HoldTheAttachedIdentifier) {
    Occurrence o;
    o.wheel->SetParamVar(Param::kAttachedIdentifier, Var(L"id"));
    EXPECT_EQ(FieldsOf(o.Override()).attributes, MapOf({{Var(0x22), Var(L"id")}}));
}

TEST(NodeTraverserOverrides, StandOnThePathFromTheTopLevelNode) {
    Occurrence o;
    o.wheel->SetText(L"text");
    EXPECT_EQ(PathIn(*o.Override()), (Path{o.topInstance.Get(), o.carInstance.Get(), o.wheelInstance.Get()}));
}

TEST(NodeTraverserOverrides, OfATopLevelNodeStandOnAPathOfOne) {
    Occurrence o;
    o.top->SetText(L"text");
    o.FreeInstanceOf(o.top);
    EXPECT_EQ(PathIn(*SelectorUnder(*o.topInstance, Var(0))), Path{o.topInstance.Get()});
}

TEST(NodeTraverserOverrides, StandOnAPathThatEndsAtANodeWithoutInstance) {
    Occurrence o;
    o.car->DeleteParam(Param::kInstance);
    o.wheel->SetText(L"text");
    EXPECT_EQ(PathIn(*o.Override()), Path{o.wheelInstance.Get()});
}

TEST(NodeTraverserOverrides, FollowTheMapOfTheTableIfThereIsOne) {
    const Occurrence o;
    o.wheel->SetText(L"text");
    const auto inMap = EnterInstance(*o.table, L"car");
    o.EnterInMaps(o.car, inMap.Get());
    const auto found = o.InstanceOf(o.wheel);
    EXPECT_EQ(found.Get(), o.wheelInstance.Get());
    EXPECT_EQ(PathIn(*SelectorUnder(*found, Var(0))), (Path{inMap.Get(), o.wheelInstance.Get()}))
        << "the top node is in no map, so the path starts below it";
}

TEST(NodeTraverserOverrides, AreFoundAgainThroughTheTable) {
    const Occurrence o;
    o.wheel->SetText(L"text");
    o.wheelInstance->GetReference()->RegisterInTable(o.table.Get());
    for (k3::Node* node : {o.top, o.car})
        o.EnterInMaps(node, Cast<Instance>(node->GetParamVar(Param::kInstance)));
    o.InstanceOf(o.wheel);
    ASSERT_EQ(o.wheelInstance->GetSelectorCount(), 1);
    const Selector found = o.wheelInstance->GetSelector(0);
    EXPECT_EQ(ElementsOf(found), (Path{o.topInstance.Get(), o.carInstance.Get(), o.wheelInstance.Get()}));
    EXPECT_EQ(found.GetAttributes(), MapOf({{Var(0x20), Var(L"text")}}));
}

TEST(NodeTraverserOverrides, OfEveryNodeThatShowsAnInstanceAreKept) {
    Occurrence o;
    k3::Node* twin = o.NodeWith(o.wheelInstance.Get(), o.top);
    o.wheel->SetText(L"one");
    twin->SetText(L"two");
    o.FreeInstanceOf(o.wheel);
    o.FreeInstanceOf(twin);
    EXPECT_EQ(o.wheelInstance->GetSelectorCount(), 2);
    EXPECT_EQ(PathIn(*SelectorUnder(*o.wheelInstance, Var(1))),
              (Path{o.topInstance.Get(), o.wheelInstance.Get()}));
}

TEST(NodeTraverserOverrides, AreLookedForOnlyWhenTheNodeIsFirstSeen) {
    Occurrence o;
    o.wheel->SetText(L"one");
    o.FreeInstanceOf(o.wheel);
    o.wheel->SetText(L"two");
    o.FreeInstanceOf(o.wheel);
    EXPECT_EQ(o.wheelInstance->GetSelectorCount(), 1);
}

TEST(NodeTraverserOverrides, StandOnTheInstanceThatTookThePlaceOfTheOther) {
    const Occurrence o;
    const auto other = o.table->GetOrCreateReference(L"other")->CreateInstanceWithBsId(L"use", L"s1:use");
    o.wheelInstance->SetProperty(Prop::kBsId, Var(L"s1:use"));
    o.wheel->SetText(L"text");
    EXPECT_EQ(o.InstanceOf(o.wheel).Get(), other.Get());
    EXPECT_EQ(o.wheelInstance->GetSelectorCount(), 0);
    ASSERT_EQ(other->GetSelectorCount(), 1);
    EXPECT_EQ(PathIn(*SelectorUnder(*other, Var(0))), Path{other.Get()});
    EXPECT_EQ(SelectorUnder(*other, Var(0))->GetProperty(Prop::kText, 0), Var(L"text"));
}

TEST(NodeTraverserOverrides, LeaveTheInstanceAsItWas) {
    Occurrence o;
    o.wheel->SetText(L"text");
    o.Override();
    EXPECT_TRUE(o.wheelInstance->GetProperty(Prop::kText, 0).IsEmpty());
}

}  // namespace
}  // namespace qn::test
