#include "tests/engine/values/value_builders.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <cmath>
#include <limits>
#include <set>
#include <vector>

namespace qn {
namespace {

using test::ArrayOf;
using test::MapOf;
using test::RandomValue;

class Thing : public ReferenceSource {};

int Sign(int order) {
    return (order > 0) - (order < 0);
}

TEST(VarOrder, RanksKindsOfValues) {
    const Var ranked[] = {Var(),       Var(true),          Var(-100),
                          Var(""),     Var::Block("z", 1), Var(Matrix4<double>()),
                          ArrayOf({}), MapOf({}),          Var(Make<Thing>())};
    for (std::size_t i = 0; i < std::size(ranked); ++i)
        for (std::size_t j = 0; j < std::size(ranked); ++j)
            EXPECT_EQ(Sign(ranked[i].Compare(ranked[j])), (i > j) - (i < j)) << i << " " << j;
}

TEST(VarOrder, ComparesNumbersOfAllTagsByValue) {
    EXPECT_EQ(Var(1), Var(1.0));
    EXPECT_EQ(Var(std::int64_t{1}), Var(1.0f));
    EXPECT_LT(Var(1), Var(1.5));
    EXPECT_LT(Var(-0.5), Var(0));
    EXPECT_LT(Var(-1), Var(-0.5));
    EXPECT_EQ(Var(0.0), Var(-0.0));
    EXPECT_EQ(Var(0), Var(-0.0));
}

TEST(VarOrder, RoundsNoWideInteger) {
    const std::int64_t large = (std::int64_t{1} << 53) + 1;
    EXPECT_GT(Var(large).Compare(Var(9007199254740992.0)), 0);
    EXPECT_LT(Var(9007199254740992.0), Var(large));
    EXPECT_LT(Var(std::numeric_limits<std::int64_t>::max()), Var(9223372036854775808.0));
    EXPECT_EQ(Var(std::numeric_limits<std::int64_t>::min()), Var(-9223372036854775808.0));
    EXPECT_LT(Var(-1e300), Var(std::numeric_limits<std::int64_t>::min()));
}

TEST(VarOrder, PutsNotANumberLowestOfAllNumbers) {
    const Var none(std::nan(""));
    EXPECT_LT(none, Var(-std::numeric_limits<double>::infinity()));
    EXPECT_LT(none, Var(std::numeric_limits<std::int64_t>::min()));
    EXPECT_EQ(none, Var(std::nanf("")));
    EXPECT_GT(none.Compare(Var(true)), 0);
}

TEST(VarOrder, NeverTakesABoolForANumber) {
    EXPECT_FALSE(Var(true) == Var(1));
    EXPECT_FALSE(Var(false) == Var(0));
    EXPECT_FALSE(Var(false) == Var());
    EXPECT_LT(Var(false), Var(true));
}

TEST(VarOrder, ComparesTextsByCodeUnits) {
    EXPECT_EQ(Var("a"), Var(L"a"));
    EXPECT_LT(Var(L"\U0001F600"), Var(L"\xe000"));
    EXPECT_FALSE(Var("1") == Var(1));
}

TEST(VarOrder, GoesThroughArraysElementByElement) {
    EXPECT_LT(ArrayOf({Var(1)}), ArrayOf({Var(1), Var(0)}));
    EXPECT_LT(ArrayOf({Var(1), Var(9)}), ArrayOf({Var(2)}));
    EXPECT_EQ(ArrayOf({Var(1), ArrayOf({Var("x")})}), ArrayOf({Var(1.0), ArrayOf({Var(L"x")})}));
}

TEST(VarOrder, GoesThroughMapsBySizeThenByEntriesInKeyOrder) {
    EXPECT_LT(MapOf({{Var("z"), Var(9)}}), MapOf({{Var("a"), Var(1)}, {Var("b"), Var(1)}}));
    EXPECT_LT(MapOf({{Var("b"), Var(1)}, {Var("a"), Var(9)}}),
              MapOf({{Var("b"), Var(0)}, {Var("c"), Var(0)}}));
    EXPECT_LT(MapOf({{Var("a"), Var(1)}, {Var("b"), Var(9)}}),
              MapOf({{Var("b"), Var(0)}, {Var("a"), Var(2)}}));
}

TEST(VarOrder, DoesNotDependOnTheOrderOfInsertion) {
    EXPECT_EQ(MapOf({{Var("a"), Var(1)}, {Var("b"), ArrayOf({Var(2)})}}),
              MapOf({{Var("b"), ArrayOf({Var(2)})}, {Var("a"), Var(1)}}));
}

TEST(VarOrder, TakesObjectsByIdentity) {
    const auto first = Make<Thing>(), second = Make<Thing>();
    EXPECT_EQ(Var(first), Var(first.Get(), 0));
    EXPECT_NE(Var(first), Var(second));
    const std::less<const Interface*> before;
    EXPECT_EQ(Var(first) < Var(second), before(first.Get(), second.Get()));
}

TEST(VarOrder, DoesNotCountValueFlags) {
    Var marked(1);
    marked.SetValueFlags(9);
    EXPECT_EQ(marked, Var(1));
    EXPECT_EQ(marked.Hash(), Var(1).Hash());
}

TEST(VarOrder, ComparesMatricesAndBlocksByContent) {
    EXPECT_EQ(Var(Matrix4<double>()), Var(Matrix4<double>()));
    EXPECT_LT(Var(Matrix4<double>()), Var(Matrix4<double>::Translation(1, 0, 0)));
    EXPECT_EQ(Var::Block("ab", 2), Var::Block("ab", 2));
    EXPECT_LT(Var::Block("a", 1), Var::Block("ab", 2));
    EXPECT_LT(Var::Block("a", 1), Var::Block("\xff", 1));
}

TEST(VarOrder, IsTotalAndAgreesWithEqualityAndHash) {
    std::mt19937 random(11);
    std::vector<Var> values;
    for (int i = 0; i < 250; ++i)
        values.push_back(RandomValue(random, 3));
    for (const Var& left : values)
        for (const Var& right : values) {
            const int order = Sign(left.Compare(right));
            EXPECT_EQ(order, -Sign(right.Compare(left)));
            EXPECT_TRUE(order != 0 || left.Hash() == right.Hash());
        }
    std::sort(values.begin(), values.end());
    for (std::size_t i = 0; i < values.size(); ++i)
        for (std::size_t j = i; j < values.size(); ++j)
            EXPECT_LE(values[i].Compare(values[j]), 0);
}

TEST(VarOrder, ServesAsKeyOfASet) {
    const std::set<Var> keys{Var(1), Var(1.0), Var("1"), Var(true), Var(), Var()};
    EXPECT_EQ(keys.size(), 4u);
}

TEST(VarOrder, EndsForValuesThatContainThemselves) {
    Var left = ArrayOf({Var(1)}), right = ArrayOf({Var(1)});
    left.At(1) = left;
    right.At(1) = right;
    EXPECT_EQ(left, right);
    right.At(2) = Var(5);
    EXPECT_NE(left, right);
    Var map = MapOf({{Var("a"), Var(1)}}), twin = MapOf({{Var("a"), Var(1)}});
    map.At("self") = map;
    twin.At("self") = twin;
    EXPECT_EQ(map, twin);
    for (const Var& ring : {left, right})
        ring.ToArray()->Clear();
    for (const Var& ring : {map, twin})
        ring.ToMap()->Clear();
}

TEST(VarOrder, EndsForMapsThatAreTheirOwnKeys) {
    Var left = MapOf({{Var("a"), Var(1)}}), right = MapOf({{Var("a"), Var(1)}});
    left.At(left) = Var(2);
    right.At(right) = Var(2);
    EXPECT_EQ(Sign(left.Compare(right)), -Sign(right.Compare(left)));
    left.ToMap()->Clear();
    right.ToMap()->Clear();
}

TEST(VarOrder, NeedsNoStackForDeepValues) {
    const auto deep = [] {
        Var value(1);
        for (int i = 0; i < 100000; ++i)
            value = ArrayOf({value});
        return value;
    };
    EXPECT_EQ(deep(), deep());
}

TEST(VarOrder, ComparesWhatIsSharedManyTimesOnce) {
    const auto doubled = [](int leaf) {
        Var value(leaf);
        for (int i = 0; i < 200; ++i)
            value = ArrayOf({value, value});
        return value;
    };
    EXPECT_EQ(doubled(1), doubled(1));
    EXPECT_LT(doubled(1), doubled(2));
}

}  // namespace
}  // namespace qn
