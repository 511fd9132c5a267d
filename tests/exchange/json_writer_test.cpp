#include "exchange/json_writer.h"

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include <limits>

namespace qn::exchange {
namespace {

TEST(JsonWriter, PutsTheOuterEntriesOnLinesAndTheRestBeside) {
    JsonWriter json;
    json.BeginObject();
    json.Key("rows");
    json.BeginArray();
    for (int row = 0; row < 2; ++row) {
        json.BeginObject();
        json.IntegerField("a", row);
        json.TextField("b", std::string_view("x"));
        json.EndObject();
    }
    json.EndArray();
    json.Key("empty");
    json.BeginArray();
    json.EndArray();
    json.EndObject();
    EXPECT_EQ(json.Take(),
              "{\n  \"rows\": [\n    {\"a\": 0, \"b\": \"x\"},\n    {\"a\": 1, \"b\": \"x\"}\n  ],\n  "
              "\"empty\": []\n}\n");
}

TEST(JsonWriter, EscapesWhatJsonCannotHold) {
    JsonWriter json;
    const std::string text("a\"b\\c\n\r\t\x01\x1f é", 14);
    json.Text(text);
    EXPECT_EQ(nlohmann::json::parse(json.Take()).get<std::string>(), text);
}

TEST(JsonWriter, WritesNumbersThatReadBackTheSame) {
    for (const double number : {0.1, 1e300, -2.5e-308, 3.0}) {
        JsonWriter json;
        json.Number(number);
        EXPECT_EQ(nlohmann::json::parse(json.Take()).get<double>(), number);
    }
}

TEST(JsonWriter, WritesNullForWhatIsNoNumberAndNoMinusZero) {
    JsonWriter json;
    json.BeginArray();
    json.Number(std::numeric_limits<double>::quiet_NaN());
    json.Number(std::numeric_limits<double>::infinity());
    json.Number(-0.0);
    json.Integer(std::numeric_limits<std::int64_t>::min());
    json.EndArray();
    EXPECT_EQ(nlohmann::json::parse(json.Take()).dump(), "[null,null,0,-9223372036854775808]");
}

}  // namespace
}  // namespace qn::exchange
