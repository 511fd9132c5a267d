#include "tests/engine/values/value_builders.h"

#include "frame/host/params.h"

#include <gtest/gtest.h>

namespace qn {
namespace {

using test::ArrayOf;
using test::MapOf;
using test::RandomValue;

class Thing : public ReferenceSource {};

TEST(VarMakeUnique, CopiesNestedArraysAndMaps) {
    const Var original = MapOf({{Var("a"), ArrayOf({Var(1), MapOf({{Var("x"), Var(1)}})})}});
    Var copy(original);
    copy.MakeUnique(1);
    EXPECT_EQ(copy, original);
    copy.At("a").At(1).At("x") = Var(2);
    copy.At("a").At(2) = Var(3);
    EXPECT_EQ(original, MapOf({{Var("a"), ArrayOf({Var(1), MapOf({{Var("x"), Var(1)}})})}}));
}

TEST(VarMakeUnique, SharesOtherObjects) {
    const auto thing = Make<Thing>();
    Var value = ArrayOf({Var(thing), Var(thing.Get(), 0)});
    value.MakeUnique();
    EXPECT_EQ(value.At(0).ToInterface(), thing.Get());
    EXPECT_TRUE(value.At(1).IsWeak());
    EXPECT_EQ(value.At(1).ToInterface(), thing.Get());
    Var object(thing);
    object.MakeUnique();
    EXPECT_EQ(object.ToInterface(), thing.Get());
}

TEST(VarMakeUnique, KeepsValueFlagsAtEveryLevel) {
    Var inner = ArrayOf({Var(1)});
    inner.At(0).SetValueFlags(1);
    inner.SetValueFlags(8);
    Var value = MapOf({{Var("a"), inner}});
    value.SetValueFlags(9);
    value.MakeUnique();
    EXPECT_EQ(value.GetValueFlags(), 9u);
    EXPECT_EQ(value.At("a").GetValueFlags(), 8u);
    EXPECT_EQ(value.At("a").At(0).GetValueFlags(), 1u);
}

TEST(VarMakeUnique, KeepsTheOrderOfAMap) {
    Var map;
    for (int i = 20; i > 0; --i)
        map.At(i) = Var(i);
    map.Remove(Var(10));
    Var copy(map);
    copy.MakeUnique();
    ASSERT_EQ(copy.size(), 19);
    for (int i = 0; i < 19; ++i)
        EXPECT_EQ(copy.KeyAt(i), map.KeyAt(i));
    EXPECT_NE(copy.Lookup(5), nullptr);
    EXPECT_EQ(copy.Lookup(10), nullptr);
}

TEST(VarMakeUnique, CopiesContainersThatAreKeys) {
    const Var key = ArrayOf({Var(1)}), other = ArrayOf({Var(2)});
    Var map = MapOf({{key, Var("one")}, {other, Var("two")}});
    map.MakeUnique();
    ASSERT_EQ(map.size(), 2);
    EXPECT_NE(map.KeyAt(0).ToArray(), key.ToArray());
    EXPECT_EQ(map.Lookup(key)->ToText(), String(L"one"));
    EXPECT_EQ(map.Lookup(other)->ToText(), String(L"two"));
}

TEST(VarMakeUnique, KeepsSharingInsideTheCopy) {
    const Var part = ArrayOf({Var(1)});
    Var value = ArrayOf({part, part});
    value.MakeUnique();
    EXPECT_EQ(value.At(0).ToArray(), value.At(1).ToArray());
    EXPECT_NE(value.At(0).ToArray(), part.ToArray());
}

TEST(VarMakeUnique, EndsForValuesThatContainThemselves) {
    Var ring = ArrayOf({Var(1)});
    ring.At(1) = ring;
    Var copy(ring);
    copy.MakeUnique();
    EXPECT_NE(copy.ToArray(), ring.ToArray());
    EXPECT_EQ(copy.At(1).ToArray(), copy.ToArray());
    ring.ToArray()->Clear();
    copy.ToArray()->Clear();
}

TEST(VarMakeUnique, TurnsAWatchedMapIntoACountedCopy) {
    auto map = VarMap::Create();
    map->At(Var("a")) = Var(1);
    Var value(map.Get(), 0);
    value.MakeUnique();
    map.Reset();
    EXPECT_FALSE(value.IsWeak());
    EXPECT_EQ(value, MapOf({{Var("a"), Var(1)}}));
}

TEST(VarMakeUnique, LeavesNestedContainersSharedInOtherModes) {
    const Var inner = ArrayOf({Var(1)});
    Var value = ArrayOf({inner});
    const VarArray* const before = value.ToArray();
    value.MakeUnique(0);
    EXPECT_NE(value.ToArray(), before);
    EXPECT_EQ(value.At(0).ToArray(), inner.ToArray());
}

TEST(VarMakeUnique, CopiesParametersAndMetadataOfContainers) {
    const auto map = VarMap::Create();
    map->SetParamVar(5, ArrayOf({Var(map.Get(), 0)}));
    map->SetMetaValue(Var("k"), Var("v"));
    Var value(map);
    value.MakeUnique();
    EXPECT_NE(value.ToMap()->GetMetadata(false), map->GetMetadata(false));
    EXPECT_EQ(value.ToMap()->GetMetadata(false)->Lookup(Var("k"))->ToText(), String(L"v"));
    EXPECT_NE(value.ToMap()->GetParamVar(5).ToArray(), map->GetParamVar(5).ToArray());
}

TEST(VarMakeUnique, GivesEqualValuesThatShareNoContainer) {
    std::mt19937 random(12);
    for (int i = 0; i < 500; ++i) {
        const Var value = RandomValue(random, 4);
        Var copy(value);
        copy.MakeUnique();
        EXPECT_EQ(copy, value);
        EXPECT_TRUE(!value.HoldsInterface() || copy.ToInterface() != value.ToInterface());
    }
}

TEST(VarMakeUnique, NeedsNoStackForDeepValues) {
    Var value(1);
    for (int i = 0; i < 100000; ++i)
        value = ArrayOf({value});
    Var copy(value);
    copy.MakeUnique();
    EXPECT_EQ(copy, value);
}

}  // namespace
}  // namespace qn
