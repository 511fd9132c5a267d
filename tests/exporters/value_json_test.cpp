#include "exporters/gltf/value_json.h"

#include "exporters/gltf/export_failure.h"
#include "frame/host/collections.h"
#include "frame/host/node.h"
#include "importers/gltf/document_reader.h"
#include "importers/gltf/extras_value.h"
#include "importers/gltf/gltf_limits.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace qn::gltf_export {
namespace {

std::string JsonOf(const Var& value) {
    std::string out;
    AppendValue(out, value);
    return out;
}

/// Through the text and the importer.
Var Back(const Var& value) {
    std::string text = R"({"asset":{"version":"2.0"},"extras":)" + JsonOf(value) + "}";
    const std::size_t length = text.size();
    text.resize(length + gltf::DocumentReader::kPadding);
    gltf::Model model;
    gltf::DocumentReader(model).Read(text.data(), length, text.size());
    return gltf::MeantValue(model.documentExtras);
}

Var MapOf(const Var& key, const Var& value) {
    Var map;
    map.InitMap();
    map.At(key) = value;
    return map;
}

Matrix4<double> SomeMatrix() {
    Matrix4<double> matrix;
    for (int i = 0; i < 16; ++i)
        matrix.m[i / 4][i % 4] = 0.1 * i - 1e-7;
    return matrix;
}

Var Flagged(Var value) {
    value.SetValueFlags(9);
    return value;
}

std::vector<Var> Values() {
    Var array;
    array.InitArray(2);
    array.At(1) = Var(L"second");
    const char bytes[] = {0, 1, 2, char(0xff), 'a'};
    return {
        Var(),
        Var(true),
        Var(false),
        Var(0),
        Var(-7),
        Var(std::numeric_limits<int>::min()),
        Var(std::int64_t{5}),
        Var(std::numeric_limits<std::int64_t>::max()),
        Var(std::numeric_limits<std::int64_t>::min()),
        Var(5.0),
        Var(-0.0),
        Var(0.1),
        Var(1e300),
        Var(5e-324),
        Var(0.1f),
        Var(3.0f),
        Var(std::numeric_limits<double>::infinity()),
        Var(-std::numeric_limits<double>::infinity()),
        Var(-std::numeric_limits<float>::infinity()),
        Var(""),
        Var(L"quote \" slash \\ line \n tab \t bell \x07 \x00e4 \x2764 \x1f600"),
        Var(SomeMatrix()),
        Var::Block(bytes, 0),
        Var::Block(bytes, 1),
        Var::Block(bytes, 2),
        Var::Block(bytes, 3),
        Var::Block(bytes, 5),
        array,
        MapOf(Var(L"$CADMetadata"), MapOf(Var(L"UNIQUEID"), Var(L"7"))),
        MapOf(Var(3), Var(L"number as key")),
        MapOf(Var(L"$float"), Var(L"a map that looks like a form")),
        MapOf(Var(L"$map"), array),
        MapOf(Var(L"inner"), MapOf(Var(SomeMatrix()), Var(0.5f))),
        Flagged(Var(L"marked")),
        Flagged(MapOf(Var(L"key"), Flagged(Var(1)))),
    };
}

TEST(ValueJson, GivesEveryValueBackWithItsTagAndFlags) {
    for (const Var& value : Values()) {
        const Var back = Back(value);
        EXPECT_EQ(back, value) << JsonOf(value);
        EXPECT_EQ(back.GetTag(), value.GetTag()) << JsonOf(value);
        EXPECT_EQ(back.GetValueFlags(), value.GetValueFlags()) << JsonOf(value);
    }
}

TEST(ValueJson, KeepsFlagsOfValuesInMaps) {
    const Var back = Back(MapOf(Var(L"key"), Flagged(Var(1))));
    ASSERT_NE(back.Lookup(L"key"), nullptr);
    EXPECT_EQ(back.Lookup(L"key")->GetValueFlags(), 9u);
}

TEST(ValueJson, GivesNumbersThatAreNoneBack) {
    double number = 0;
    EXPECT_TRUE(Back(Var(std::nan(""))).copy_to(number));
    EXPECT_TRUE(std::isnan(number));
}

TEST(ValueJson, KeepsTheSignOfMinusZero) {
    double number = 1;
    EXPECT_TRUE(Back(Var(-0.0)).copy_to(number));
    EXPECT_TRUE(std::signbit(number));
}

TEST(ValueJson, KeepsTheOrderOfKeys) {
    Var map;
    map.At(L"b") = Var(1);
    map.At(L"a") = Var(2);
    EXPECT_EQ(JsonOf(map), R"({"b":1,"a":2})");
    EXPECT_EQ(Back(map).KeyAt(0), Var(L"b"));
}

TEST(ValueJson, WritesWholeNumbersAndFractionsApart) {
    EXPECT_EQ(JsonOf(Var(5)), "5");
    EXPECT_EQ(JsonOf(Var(5.0)), "5.0");
    EXPECT_EQ(JsonOf(Var(1e300)), "1e+300");
}

TEST(ValueJson, LeavesObjectsOut) {
    const auto object = Make<k3::Node>();
    Var array;
    array.InitArray(1);
    array.At(0) = Var(object);
    EXPECT_EQ(JsonOf(array), "[null]");
    Var map = MapOf(Var(L"object"), Var(object));
    map.At(L"text") = Var(L"kept");
    EXPECT_EQ(JsonOf(map), R"({"text":"kept"})");
    EXPECT_FALSE(IsWritable(Var(object)));
}

Var Nested(int levels) {
    Var value(1);
    for (int i = 0; i < levels; ++i)
        value = Flagged(MapOf(Var(L"$map"), value));  // the form with the most brackets
    return value;
}

TEST(ValueJson, WritesValuesAsDeepAsTheImporterTakesThem) {
    const Var deepest = Nested(gltf_limits::kDeepestMetadata);
    EXPECT_EQ(Back(deepest), deepest);
    EXPECT_THROW(JsonOf(Nested(gltf_limits::kDeepestMetadata + 1)), ExportFailure);
}

TEST(ValueJson, RefusesAValueThatContainsItself) {
    Var map;
    map.At(L"self") = Var(1);
    map.At(L"self") = map;
    EXPECT_THROW(JsonOf(map), ExportFailure);
    map.ToMap()->Clear();
}

TEST(ValueJson, ADamagedFormStaysWhatItLooksLike) {
    const Var damaged[] = {MapOf(Var(L"$matrix"), Var(1)), MapOf(Var(L"$bytes"), Var(L"abc")),
                           MapOf(Var(L"$flags"), Var()), MapOf(Var(L"$int64"), Var(L"x"))};
    for (const Var& value : damaged)
        EXPECT_EQ(gltf::MeantValue(value), value);
}

}  // namespace
}  // namespace qn::gltf_export
