#include "frame/host/collections.h"
#include "frame/host/var.h"

#include <gtest/gtest.h>
#include <string>

namespace qn {
namespace {

Var Array(std::initializer_list<Var> values) {
    Var result;
    result.InitArray(0);
    for (const Var& value : values)
        result.At(result.size()) = value;
    return result;
}

TEST(VarAt, MakesAnEmptyValueAMapForIntegerKeysToo) {
    Var byText, byNumber;
    EXPECT_TRUE(byText.At("key").IsEmpty());
    EXPECT_TRUE(byNumber.At(3).IsEmpty());
    EXPECT_TRUE(byText.IsMap());
    EXPECT_TRUE(byNumber.IsMap());
    EXPECT_EQ(byNumber.size(), 1);
}

TEST(VarAt, CreatesTheKeyThatItDoesNotFind) {
    Var map;
    map.At("a");
    EXPECT_EQ(map.size(), 1);
    ASSERT_NE(map.Lookup("a"), nullptr);
    EXPECT_TRUE(map.Lookup("a")->IsEmpty());
}

TEST(VarAt, GrowsAnArrayWithEmpties) {
    Var array;
    array.InitArray(0);
    array.At(2) = Var(7);
    EXPECT_TRUE(array.IsArray());
    EXPECT_EQ(array.size(), 3);
    EXPECT_TRUE(array.Lookup(0)->IsEmpty());
    array.At(Var(std::int64_t{4})) = Var(8);
    EXPECT_EQ(array.size(), 5);
}

TEST(VarAt, GivesAnArrayAScratchValueForTextsAndNegativeIndexes) {
    Var array = Array({Var(1)});
    array.At("x") = Var(2);
    array.At(L"y").At("z") = Var(2);
    array.At(-1) = Var(3);
    array.At(Var("0")) = Var(4);
    array.At(Var(-2)) = Var(5);
    EXPECT_EQ(array.size(), 1);
    EXPECT_EQ(array.Lookup(0)->ToInt(), 1);
    EXPECT_TRUE(array.At(-1).IsEmpty());
}

TEST(VarAt, ReplacesAnyOtherValueByAMap) {
    const auto thing = VarMap::Create();
    for (const Var& old :
         {Var(5), Var("text"), Var(Matrix4<double>()), Var(InterfaceArray::CreateStrong())}) {
        Var value(old);
        value.At("k") = Var(1);
        EXPECT_TRUE(value.IsMap());
        EXPECT_EQ(value.size(), 1);
    }
}

TEST(VarAt, WorksOnTheSharedMap) {
    Var map;
    map.At("a") = Var(1);
    Var copy(map);
    copy.At("a") = Var(2);
    EXPECT_EQ(map.Lookup("a")->ToInt(), 2);
}

TEST(VarAt, TakesNarrowAndWideTextsAsOneKey) {
    Var map;
    map.At("\xc3\xa9") = Var(1);
    map.At(L"\x00e9") = Var(2);
    map.At(Var(String(L"\x00e9"))) = Var(3);
    EXPECT_EQ(map.size(), 1);
    EXPECT_EQ(map.Lookup("\xc3\xa9")->ToInt(), 3);
}

TEST(VarAt, TakesTheValueItselfAsKey) {
    Var value("name");
    value.At(value) = Var(1);
    EXPECT_EQ(value.Lookup("name")->ToInt(), 1);
}

TEST(VarAt, TellsKeysOfDifferentCaseApart) {
    Var map;
    map.At("Name") = Var(1);
    EXPECT_EQ(map.Lookup("name"), nullptr);
}

TEST(VarLookup, ChangesNothingAndGivesNullWhereAtWouldMakeSomething) {
    const Var none, number(5), array = Array({Var(1)});
    for (const Var& value : {none, number, array}) {
        const Var before(value);
        EXPECT_EQ(value.Lookup("k"), nullptr);
        EXPECT_EQ(value.Lookup(L"k"), nullptr);
        EXPECT_EQ(value.Lookup(9), nullptr);
        EXPECT_EQ(value.Lookup(-1), nullptr);
        EXPECT_EQ(value.Lookup(Var("0")), nullptr);
        EXPECT_EQ(value, before);
    }
    EXPECT_EQ(array.Lookup(Var(0))->ToInt(), 1);
}

TEST(VarLookup, FindsLongAndNullTexts) {
    Var map;
    const std::string name(1000, 'x');
    map.At(name.c_str()) = Var(1);
    map.At("") = Var(2);
    EXPECT_EQ(map.Lookup(name.c_str())->ToInt(), 1);
    EXPECT_EQ(map.Lookup(static_cast<const char*>(nullptr))->ToInt(), 2);
    EXPECT_EQ(map.Lookup(static_cast<const wchar_t*>(nullptr))->ToInt(), 2);
}

TEST(VarPositions, GiveKeysAndValuesInTheOrderOfInsertion) {
    Var map;
    map.At("b") = Var(1);
    map.At(7) = Var(2);
    map.At("a") = Var(3);
    map.At("b") = Var(4);  // overwriting keeps the place
    EXPECT_EQ(map.KeyAt(0).ToText(), String(L"b"));
    EXPECT_EQ(map.KeyAt(1).ToInt(), 7);
    EXPECT_EQ(map.KeyAt(2).ToText(), String(L"a"));
    EXPECT_EQ(map.ValueAt(0).ToInt(), 4);
    EXPECT_EQ(map.ValueAt(2).ToInt(), 3);
}

TEST(VarPositions, AreIndexesForAnArray) {
    const Var array = Array({Var("x"), Var("y")});
    EXPECT_EQ(array.KeyAt(1), Var(1));
    EXPECT_EQ(array.ValueAt(1), Var("y"));
}

TEST(VarPositions, AreEmptyOutside) {
    Var map;
    map.At("a");
    for (const Var& value : {map, Array({Var(1)}), Var("text"), Var()})
        for (const int position : {-1, 1, 100}) {
            EXPECT_TRUE(value.KeyAt(position).IsEmpty());
            EXPECT_TRUE(value.ValueAt(position).IsEmpty());
        }
    EXPECT_TRUE(Var("text").KeyAt(0).IsEmpty());
}

TEST(VarRemove, AnswersWhetherThereWasTheKey) {
    Var map;
    map.At("a") = Var(1);
    EXPECT_TRUE(map.Remove(Var("a")));
    EXPECT_FALSE(map.Remove(Var("a")));
    EXPECT_EQ(map.size(), 0);
    EXPECT_FALSE(Var().Remove(Var("a")));
    Var number(4);
    EXPECT_FALSE(number.Remove(Var(0)));
}

TEST(VarRemove, TakesAnElementOutOfAnArray) {
    Var array = Array({Var(1), Var(2), Var(3)});
    EXPECT_TRUE(array.Remove(Var(1)));
    EXPECT_EQ(array, Array({Var(1), Var(3)}));
    EXPECT_FALSE(array.Remove(Var(2)));
    EXPECT_FALSE(array.Remove(Var(-1)));
    EXPECT_FALSE(array.Remove(Var("0")));
}

}  // namespace
}  // namespace qn
