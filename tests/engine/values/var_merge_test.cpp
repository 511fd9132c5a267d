#include "tests/engine/values/value_builders.h"

#include <gtest/gtest.h>

namespace qn {
namespace {

using test::ArrayOf;
using test::MapOf;

class Thing : public ReferenceSource {};

TEST(VarMerge, PutsAPrivateCopyOfWhatIsMissing) {
    Var target = MapOf({{Var("a"), Var(1)}}), source = MapOf({{Var("b"), MapOf({{Var("x"), Var(1)}})}});
    target.Merge(source, 0);
    source.At("b").At("x") = Var(2);
    EXPECT_EQ(target, MapOf({{Var("a"), Var(1)}, {Var("b"), MapOf({{Var("x"), Var(1)}})}}));
}

TEST(VarMerge, GoesIntoMapsOnBothSides) {
    Var target = MapOf({{Var("a"), MapOf({{Var("x"), Var(1)}, {Var("y"), Var(1)}})}});
    target.Merge(MapOf({{Var("a"), MapOf({{Var("y"), Var(2)}, {Var("z"), Var(2)}})}}), 0);
    EXPECT_EQ(target,
              MapOf({{Var("a"), MapOf({{Var("x"), Var(1)}, {Var("y"), Var(2)}, {Var("z"), Var(2)}})}}));
}

TEST(VarMerge, LetsTheArgumentWinOtherwise) {
    Var target = MapOf({{Var("a"), Var(1)},
                        {Var("b"), MapOf({})},
                        {Var("c"), ArrayOf({Var(1), Var(2)})},
                        {Var("d"), Var(4)}});
    target.Merge(
        MapOf({{Var("a"), MapOf({})}, {Var("b"), Var(2)}, {Var("c"), ArrayOf({Var(3)})}, {Var("d"), Var()}}),
        0);
    EXPECT_EQ(
        target,
        MapOf({{Var("a"), MapOf({})}, {Var("b"), Var(2)}, {Var("c"), ArrayOf({Var(3)})}, {Var("d"), Var()}}));
}

TEST(VarMerge, WorksInPlaceOnTheSharedMap) {
    Var target = MapOf({{Var("in"), MapOf({})}});
    const Var holder(target), inner(target.At("in"));
    target.Merge(MapOf({{Var("in"), MapOf({{Var("x"), Var(1)}})}, {Var("y"), Var(2)}}), 0);
    EXPECT_EQ(holder.size(), 2);
    EXPECT_EQ(inner.size(), 1);
    EXPECT_EQ(holder.ToMap(), target.ToMap());
}

TEST(VarMerge, TurnsAnEmptyReceiverIntoAPrivateCopy) {
    Var source = MapOf({{Var("a"), MapOf({})}});
    source.SetValueFlags(9);
    Var target;
    target.Merge(source, 0);
    EXPECT_EQ(target, source);
    EXPECT_NE(target.ToMap(), source.ToMap());
    EXPECT_NE(target.At("a").ToMap(), source.At("a").ToMap());
    EXPECT_EQ(target.GetValueFlags(), 9u);
}

TEST(VarMerge, DoesNothingUnlessBothAreMaps) {
    Var number(1), map = MapOf({{Var("a"), Var(1)}}), array = ArrayOf({Var(1)}), none;
    number.Merge(map, 0);
    array.Merge(map, 0);
    map.Merge(array, 0);
    map.Merge(Var(), 0);
    none.Merge(array, 0);
    EXPECT_EQ(number, Var(1));
    EXPECT_EQ(array, ArrayOf({Var(1)}));
    EXPECT_EQ(map, MapOf({{Var("a"), Var(1)}}));
    EXPECT_TRUE(none.IsEmpty());
}

TEST(VarMerge, AppendsNewKeysInTheOrderOfTheArgument) {
    Var target = MapOf({{Var("b"), Var(1)}});
    target.Merge(MapOf({{Var("d"), Var(1)}, {Var("b"), Var(2)}, {Var("a"), Var(1)}}), 0);
    EXPECT_EQ(target.KeyAt(0), Var("b"));
    EXPECT_EQ(target.KeyAt(1), Var("d"));
    EXPECT_EQ(target.KeyAt(2), Var("a"));
}

TEST(VarMerge, KeepsValueFlagsAndSharesObjects) {
    const auto thing = Make<Thing>();
    Var marked = ArrayOf({Var(thing)});
    marked.SetValueFlags(8);
    Var target = MapOf({});
    target.Merge(MapOf({{Var("a"), marked}}), 0);
    EXPECT_EQ(target.At("a").GetValueFlags(), 8u);
    EXPECT_EQ(target.At("a").At(0).ToInterface(), thing.Get());
    EXPECT_NE(target.At("a").ToArray(), marked.ToArray());
}

TEST(VarMerge, OfAMapWithItselfChangesNothing) {
    Var map = MapOf({{Var("a"), MapOf({{Var("x"), Var(1)}})}});
    const Var before = MapOf({{Var("a"), MapOf({{Var("x"), Var(1)}})}});
    map.Merge(map, 0);
    EXPECT_EQ(map, before);
}

TEST(VarMerge, TakesAPartOfItself) {
    Var map = MapOf({{Var("a"), MapOf({{Var("x"), Var(1)}, {Var("a"), Var(5)}})}});
    map.Merge(map.At("a"), 0);
    EXPECT_EQ(map, MapOf({{Var("a"), Var(5)}, {Var("x"), Var(1)}}));
}

TEST(VarMerge, EndsForMapsThatContainThemselves) {
    Var left = MapOf({{Var("x"), Var(1)}}), right = MapOf({{Var("y"), Var(2)}});
    left.At("self") = left;
    right.At("self") = right;
    left.Merge(right, 0);
    EXPECT_EQ(left.size(), 3);
    EXPECT_EQ(left.At("self").ToMap(), left.ToMap());
    left.ToMap()->Clear();
    right.ToMap()->Clear();
}

TEST(VarMerge, NeedsNoStackForDeepMaps) {
    const auto deep = [](const char* leaf) {
        Var value = MapOf({{Var(leaf), Var(1)}});
        for (int i = 0; i < 50000; ++i)
            value = MapOf({{Var("in"), value}});
        return value;
    };
    Var target = deep("a");
    target.Merge(deep("b"), 0);
    Var inner = target;
    while (const Var* next = inner.Lookup("in"))
        inner = Var(*next);
    EXPECT_EQ(inner, MapOf({{Var("a"), Var(1)}, {Var("b"), Var(1)}}));
}

}  // namespace
}  // namespace qn
