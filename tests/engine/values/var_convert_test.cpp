#include "frame/host/collections.h"
#include "frame/host/var.h"

#include <gtest/gtest.h>
#include <limits>

namespace qn {
namespace {

class Thing : public ReferenceSource {};

template <class T>
T To(const Var& value, bool converts) {
    T out{};
    EXPECT_EQ(value.copy_to(out), converts);
    return out;
}

TEST(VarTruth, HoldsForNumbersOtherThanZero) {
    EXPECT_TRUE(Var(-1).ToBool());
    EXPECT_TRUE(Var(std::int64_t{1} << 40).ToBool());
    EXPECT_TRUE(Var(0.5).ToBool());
    EXPECT_TRUE(Var(0.5f).ToBool());
    EXPECT_FALSE(Var(0).ToBool());
    EXPECT_FALSE(Var(-0.0).ToBool());
    EXPECT_TRUE(Var(true).ToBool());
    EXPECT_FALSE(Var(false).ToBool());
}

TEST(VarTruth, HoldsForMatricesBlocksAndEvenEmptyContainers) {
    EXPECT_TRUE(Var(Matrix4<double>()).ToBool());
    EXPECT_TRUE(Var::Block(nullptr, 0).ToBool());
    EXPECT_TRUE(Var(VarArray::Create()).ToBool());
    EXPECT_TRUE(Var(VarMap::Create()).ToBool());
    EXPECT_TRUE(Var(Make<Thing>()).ToBool());
    EXPECT_FALSE(Var().ToBool());
}

TEST(VarTruth, FailsForTheTextsEmptyZeroAndFalseInAnyCase) {
    for (const char* text : {"", "0", "false", "FALSE", "fAlSe"})
        EXPECT_FALSE(Var(text).ToBool()) << text;
    for (const char* text : {"1", "00", "true", "no", " ", "0.0", "falsey", "fals"})
        EXPECT_TRUE(Var(text).ToBool()) << text;
}

TEST(VarConversion, ReadersAcceptBothWidthsOfANumber) {
    EXPECT_EQ(To<int>(Var(std::int64_t{7}), true), 7);
    EXPECT_EQ(To<std::int64_t>(Var(-7), true), -7);
    EXPECT_EQ(To<float>(Var(1.5), true), 1.5f);
    EXPECT_EQ(To<double>(Var(1.5f), true), 1.5);
    EXPECT_EQ(To<double>(Var(3), true), 3.0);
    EXPECT_EQ(To<int>(Var(-2.9), true), -2);
    EXPECT_EQ(To<int>(Var(true), true), 1);
}

TEST(VarConversion, CutsAWideIntegerToItsLowBits) {
    EXPECT_EQ(To<int>(Var(std::int64_t{0xffffffff}), true), -1);
}

TEST(VarConversion, LimitsRealNumbersToTheInteger) {
    EXPECT_EQ(To<int>(Var(1e30), true), std::numeric_limits<int>::max());
    EXPECT_EQ(To<int>(Var(-1e30), true), std::numeric_limits<int>::min());
    EXPECT_EQ(To<std::int64_t>(Var(1e30), true), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(To<int>(Var(std::numeric_limits<double>::quiet_NaN()), true), 0);
}

const struct {
    const char* text;
    int number;
} kIntegerTexts[] = {{"42", 42},
                     {"  \t\n-7x", -7},
                     {"+3.9", 3},
                     {"", 0},
                     {"x1", 0},
                     {"- 1", 0},
                     {"--1", 0},
                     {"2147483647", 2147483647},
                     {"2147483648", 2147483647},
                     {"-2147483648", std::numeric_limits<int>::min()},
                     {"-99999999999999999999", std::numeric_limits<int>::min()},
                     {"0x10", 0},
                     {"007", 7}};

TEST(VarConversion, ReadsTheIntegerAtTheBeginOfAText) {
    for (const auto& [text, number] : kIntegerTexts)
        EXPECT_EQ(To<int>(Var(text), true), number) << text;
    EXPECT_EQ(To<std::int64_t>(Var("9223372036854775808"), true), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(To<std::int64_t>(Var("-9223372036854775808"), true), std::numeric_limits<std::int64_t>::min());
}

TEST(VarConversion, ReadsTheRealNumberAtTheBeginOfAText) {
    EXPECT_EQ(To<double>(Var(" +1.5e2 mm"), true), 150);
    EXPECT_EQ(To<double>(Var("none"), true), 0);
    EXPECT_EQ(To<double>(Var(L"2\x8eca"), true), 2);
}

TEST(VarConversion, LeavesTheTargetZeroOrEmptyOnFailure) {
    const Var thing(Make<Thing>()), none;
    for (const Var& value : {thing, none}) {
        int number = 5;
        EXPECT_FALSE(value.copy_to(number));
        EXPECT_EQ(number, 0);
        double real = 5;
        EXPECT_FALSE(value.copy_to(real));
        EXPECT_EQ(real, 0);
        float narrow = 5;
        EXPECT_FALSE(value.copy_to(narrow));
        EXPECT_EQ(narrow, 0);
        String text(L"old");
        EXPECT_FALSE(value.copy_to(text));
        EXPECT_TRUE(text.IsEmpty());
        const char* narrowText = "old";
        EXPECT_FALSE(value.copy_to(narrowText));
        EXPECT_EQ(narrowText, nullptr);
        Guid id = Guid::Create();
        EXPECT_FALSE(value.copy_to(id));
        EXPECT_TRUE(id.IsZero());
        VarMap* map = reinterpret_cast<VarMap*>(1);
        EXPECT_FALSE(value.copy_to(map));
        EXPECT_EQ(map, nullptr);
        VarArray* array = reinterpret_cast<VarArray*>(1);
        EXPECT_FALSE(value.copy_to(array));
        EXPECT_EQ(array, nullptr);
        Matrix4<double> matrix;
        EXPECT_FALSE(value.copy_to(matrix));
        EXPECT_EQ(matrix.m[0][0], 0);
    }
    bool truth = true;
    EXPECT_FALSE(none.copy_to(truth));
    EXPECT_FALSE(truth);
    Interface* object = reinterpret_cast<Interface*>(1);
    EXPECT_FALSE(none.copy_to(object));
    EXPECT_EQ(object, nullptr);
}

TEST(VarConversion, GivesArraysAndMapsOnlyForTheirTagAndObjectsForAllThree) {
    const auto map = VarMap::Create();
    const auto array = VarArray::Create();
    const auto thing = Make<Thing>();
    EXPECT_EQ(To<VarMap*>(Var(map), true), map.Get());
    EXPECT_EQ(To<VarArray*>(Var(array), true), array.Get());
    EXPECT_EQ(To<VarMap*>(Var(array), false), nullptr);
    EXPECT_EQ(To<VarArray*>(Var(map), false), nullptr);
    EXPECT_EQ(To<Interface*>(Var(map), true), map.Get());
    EXPECT_EQ(To<Interface*>(Var(array), true), array.Get());
    EXPECT_EQ(To<Interface*>(Var(thing), true), thing.Get());
    EXPECT_EQ(map->GetRefCount(), 1);
    EXPECT_EQ(Cast<VarMap>(Var(map)), map.Get());
    EXPECT_EQ(Cast<VarMap>(Var(thing)), nullptr);
}

TEST(VarConversion, WritesValuesAsTexts) {
    EXPECT_EQ(Var(-7).ToText(), String(L"-7"));
    EXPECT_EQ(Var(std::int64_t{1} << 40).ToText(), String(L"1099511627776"));
    EXPECT_EQ(Var(0.1).ToText(), String(L"0.1"));
    EXPECT_EQ(Var(0.1f).ToText(), String(L"0.1"));
    EXPECT_EQ(Var(2.0).ToText(), String(L"2"));
    EXPECT_EQ(Var(true).ToText(), String(L"true"));
    EXPECT_EQ(Var(false).ToText(), String(L"false"));
    EXPECT_FALSE(Var(Var(false).ToText()).ToBool());
    EXPECT_EQ(Var(12).to_string().GetTag(), VarTag::kText);
    EXPECT_EQ(Var(12).to_string().size(), 2);
}

TEST(VarConversion, HasTheEmptyTextForWhatHasNone) {
    for (const Var& value : {Var(), Var(Matrix4<double>()), Var(VarMap::Create())}) {
        EXPECT_TRUE(value.to_string().IsText());
        EXPECT_EQ(value.to_string().size(), 0);
    }
}

TEST(VarConversion, LendsNarrowTextForAsLongAsTheTextLives) {
    const Var value(
        L"w\x00e9"
        L"re");
    const char* narrow = To<const char*>(value, true);
    EXPECT_STREQ(narrow, "w\xc3\xa9re");
    EXPECT_EQ(To<const char*>(Var(value), true), narrow);
    EXPECT_STREQ(To<const char*>(Var(""), true), "");
    EXPECT_EQ(To<const char*>(Var(7), false), nullptr);
}

TEST(VarConversion, KeepsGuidsAsTexts) {
    const Guid id = Guid::Create();
    EXPECT_EQ(To<Guid>(Var(id), true), id);
    EXPECT_TRUE(To<Guid>(Var("no id"), false).IsZero());
}

TEST(VarConversion, GivesMatricesAndBlocksBack) {
    const auto matrix = Matrix4<double>::Translation(1, 2, 3);
    EXPECT_EQ(To<Matrix4<double>>(Var(matrix), true), matrix);
    EXPECT_EQ(Var::Block("a\0b", 3).BlockBytes(), std::string_view("a\0b", 3));
    EXPECT_TRUE(Var(1).BlockBytes().empty());
}

}  // namespace
}  // namespace qn
