#include "exchange/value_writer.h"

#include "frame/host/collections.h"
#include "frame/host/node.h"

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

namespace qn::exchange {
namespace {

using nlohmann::json;

json Written(const Var& value, TextBlobs* blobs = nullptr) {
    JsonWriter writer;
    ValueWriter(writer, blobs).Write(value);
    return json::parse(writer.Take());
}

TEST(ValueWriter, WritesPlainValuesAsThemselves) {
    EXPECT_TRUE(Written(Var()).is_null());
    EXPECT_EQ(Written(Var(true)), json(true));
    EXPECT_EQ(Written(Var(-7)), json(-7));
    EXPECT_EQ(Written(Var(2.5)), json(2.5));
    EXPECT_EQ(Written(Var(L"größe")), json("größe"));
}

TEST(ValueWriter, WritesAMatrixRowByRow) {
    const json matrix = Written(Var(Matrix4<double>::Translation(5, 6, 7)));
    ASSERT_EQ(matrix.size(), 16u);
    EXPECT_EQ(matrix[12], 5);
    EXPECT_EQ(matrix[15], 1);
}

TEST(ValueWriter, MarksKeysThatAreNoText) {
    Var map;
    map.At(1) = Var(L"number");
    map.At(L"1") = Var(L"text");
    map.At(L"#1") = Var(L"mark");
    EXPECT_EQ(Written(map), json::parse(R"({"#1": "number", "1": "text", "##1": "mark"})"));
}

TEST(ValueWriter, NamesObjectsAndBytes) {
    EXPECT_EQ(Written(Var(Make<k3::Node>())), json::parse(R"({"$object": "k3_node"})"));
    EXPECT_EQ(Written(Var::Block("abc", 3)), json::parse(R"({"$bytes": 3})"));
}

TEST(ValueWriter, WritesNullForADeadObject) {
    auto node = Make<k3::Node>();
    const Var weak(node.Get(), 0);
    node.Reset();
    EXPECT_TRUE(Written(weak).is_null());
}

TEST(ValueWriter, EndsAtAContainerInsideItself) {
    Var ring;
    ring.At(L"self") = Var(1);
    ring.At(L"self") = ring;
    EXPECT_EQ(Written(ring), json::parse(R"({"self": null})"));
    ring.ToMap()->Clear();
}

TEST(ValueWriter, WritesAContainerThatStandsTwiceSideBySideTwice) {
    Var part;
    part.At(L"a") = Var(1);
    Var whole;
    whole.InitArray(2);
    whole.At(0) = whole.At(1) = part;
    EXPECT_EQ(Written(whole), json::parse(R"([{"a": 1}, {"a": 1}])"));
}

TEST(ValueWriter, GoesDeepWithoutRecursion) {
    Var deep;
    for (int i = 0; i < 100'000; ++i) {
        Var above;
        above.InitArray(1);
        above.At(0) = deep;
        deep = above;
    }
    JsonWriter writer;
    ValueWriter(writer, nullptr).Write(deep);
    EXPECT_GT(writer.Take().size(), 200'000u);
}

TEST(ValueWriter, GivesUpOnMapsThatUnfoldWithoutEnd) {
    Var doubled(L"x");
    for (int i = 0; i < 60; ++i) {
        Var both;
        both.InitArray(2);
        both.At(0) = both.At(1) = doubled;
        doubled = both;
    }
    JsonWriter writer;
    ValueWriter values(writer, nullptr, 1000);
    values.Write(doubled);
    EXPECT_FALSE(values.IsWithinLimit());
    EXPECT_TRUE(json::accept(writer.Take()));
}

TEST(ValueWriter, LeavesLongTextsToTheBlobs) {
    TextBlobs blobs(L"unused");
    const std::wstring longest(TextBlobs::kLongestInline, L'x');
    EXPECT_TRUE(Written(Var(String(longest)), &blobs).is_string());
    const json named = Written(Var(String(longest + L"x")), &blobs);
    EXPECT_EQ(named["bytes"], TextBlobs::kLongestInline + 1);
    EXPECT_TRUE(named["$blob"].is_string());
}

}  // namespace
}  // namespace qn::exchange
