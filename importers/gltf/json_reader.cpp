#include "importers/gltf/json_reader.h"

#include "frame/host/collections.h"
#include "importers/gltf/gltf_limits.h"

#include <cmath>
#include <limits>

namespace qn::gltf {
namespace {

namespace od = simdjson::ondemand;

std::string NameOfType(JsonValue& value) {
    od::json_type type{};
    if (value.type().get(type)) return "something that is no JSON value";
    switch (type) {
        case od::json_type::array:
            return "an array";
        case od::json_type::object:
            return "an object";
        case od::json_type::number:
            return "a number";
        case od::json_type::string:
            return "a text";
        case od::json_type::boolean:
            return "true or false";
        case od::json_type::null:
            return "null";
    }
    return "something that is no JSON value";
}

/// 2^63, the least double that no 64-bit integer holds.
constexpr double kBeyondIntegers = 9223372036854775808.0;

}  // namespace

void JsonReader::FailType(JsonValue& value, const std::string& expected) const {
    Fail("expected " + expected + ", found " + NameOfType(value));
}

void JsonReader::FailNumber(JsonValue& value) const {
    od::json_type type{};
    if (value.type().get(type) || type != od::json_type::number) FailType(value, "a number");
    Fail("expected a number that a 64-bit floating point value holds");
}

/// Keys are almost always plain, and are then lent from the text itself.
std::string_view JsonReader::KeyOf(od::field& field) {
    const char* const start = field.key().raw();
    const char* end = start;
    for (; *end != '"'; ++end)
        if (*end == '\\') return field.unescaped_key();
    return {start, static_cast<std::size_t>(end - start)};
}

std::uint64_t JsonReader::Unsigned(JsonValue& value) {
    std::uint64_t number = 0;
    if (!value.get_uint64().get(number)) return number;
    const double written = Number(value);  // 12.0 and 1.2e1 are whole, too
    if (!(written >= 0) || written >= kBeyondIntegers || std::floor(written) != written)
        Fail("expected a whole number of 0 or more");
    return static_cast<std::uint64_t>(written);
}

std::uint64_t JsonReader::UpTo(JsonValue& value, std::uint64_t most, LoadFailure kind) {
    const std::uint64_t number = Unsigned(value);
    if (number > most)
        Fail("expected at most " + std::to_string(most) + ", found " + std::to_string(number), kind);
    return number;
}

bool JsonReader::Bool(JsonValue& value) {
    bool result = false;
    if (value.get_bool().get(result)) FailType(value, "true or false");
    return result;
}

std::string_view JsonReader::String(JsonValue& value) {
    std::string_view text;
    if (value.get_string().get(text)) FailType(value, "a text");
    return text;
}

Var JsonReader::NumberAny(JsonValue& value) {
    std::int64_t whole = 0;
    if (value.get_int64().get(whole)) return Var(Number(value));
    const bool isSmall = whole >= std::numeric_limits<int>::min() && whole <= std::numeric_limits<int>::max();
    return isSmall ? Var(static_cast<int>(whole)) : Var(whole);
}

Var JsonReader::AnyAt(JsonValue& value, int levelsLeft) {
    if (levelsLeft <= 0)
        Fail("values are nested deeper than " + std::to_string(gltf_limits::kDeepestExtras) + " levels",
             LoadFailure::kLimit);
    const od::json_type type = value.type();
    Var result;
    switch (type) {
        case od::json_type::object: {
            const auto map = VarMap::Create();
            Members(value, [&](std::string_view key, JsonValue& member) {
                Var read = AnyAt(member, levelsLeft - 1);
                map->At(Var(qn::String::FromUtf8(key))) = std::move(read);
            });
            return Var(map);
        }
        case od::json_type::array: {
            const auto array = VarArray::Create();
            Elements(value,
                     [&](std::uint64_t, JsonValue& element) { array->Add(AnyAt(element, levelsLeft - 1)); });
            return Var(array);
        }
        case od::json_type::number:
            return NumberAny(value);
        case od::json_type::string:
            return Var(qn::String::FromUtf8(String(value)));
        case od::json_type::boolean:
            return Var(Bool(value));
        case od::json_type::null:
            if (!value.is_null()) Fail("expected a JSON value");
            return Var();
    }
    return result;
}

}  // namespace qn::gltf
