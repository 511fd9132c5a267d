#pragma once

#include "frame/host/var.h"
#include "importers/gltf/gltf_error.h"
#include "importers/gltf/gltf_limits.h"
#include "importers/gltf/json_place.h"

#include <simdjson.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace qn::gltf {

using JsonValue = simdjson::ondemand::value;

/// Reads values of a JSON text in the order in which they stand in it, and knows where it is.
class JsonReader {
public:
    /// Calls `read(key, value)` for each member. The key lives as long as the text.
    template <class Read>
    void Members(JsonValue& object, Read&& read) {
        simdjson::ondemand::object members;
        if (object.get_object().get(members)) FailType(object, "an object");
        EachMember(members, read);
    }
    template <class Read>
    void EachMember(simdjson::ondemand::object& members, Read&& read) {
        for (simdjson::ondemand::field field : members) {
            const std::string_view key = KeyOf(field);
            place.Enter(key);
            read(key, field.value());
            place.Leave();
        }
    }
    /// Calls `read(index, value)` for each element.
    template <class Read>
    void Elements(JsonValue& array, Read&& read) {
        simdjson::ondemand::array elements;
        if (array.get_array().get(elements)) FailType(array, "an array");
        std::uint64_t index = 0;
        place.Enter(index);
        for (auto element : elements) {
            place.Renumber(index);
            JsonValue value = element.value();
            read(index++, value);
        }
        place.Leave();
    }

    /// A number without fraction, not below 0.
    std::uint64_t Unsigned(JsonValue& value);
    /// The same up to `most`.
    std::uint64_t UpTo(JsonValue& value, std::uint64_t most, LoadFailure kind = LoadFailure::kMalformed);
    /// An index into some list; whether it leads somewhere is checked when all lists are known.
    std::uint32_t Index(JsonValue& value) { return static_cast<std::uint32_t>(UpTo(value, kGreatestIndex)); }
    double Number(JsonValue& value) {
        double number = 0;
        if (value.get_double().get(number)) FailNumber(value);
        return number;
    }
    bool Bool(JsonValue& value);
    /// Lives as long as the parser.
    std::string_view String(JsonValue& value);
    /// Any value, as a host value: objects are maps, numbers without fraction are integers.
    /// Deeper than `deepest` levels is too deep, and is told as deeper than extras may be.
    Var Any(JsonValue& value, int deepest = gltf_limits::kDeepestExtras) { return AnyAt(value, deepest); }

    [[noreturn]] void Fail(const std::string& text, LoadFailure kind = LoadFailure::kMalformed) const {
        FailAt(place.Pointer(), text, kind);
    }
    [[noreturn]] void FailType(JsonValue& value, const std::string& expected) const;

    JsonPlace place;

private:
    static constexpr std::uint64_t kGreatestIndex = 0xfffffffe;

    [[noreturn]] void FailNumber(JsonValue& value) const;
    static std::string_view KeyOf(simdjson::ondemand::field& field);
    Var AnyAt(JsonValue& value, int levelsLeft);
    Var NumberAny(JsonValue& value);
};

}  // namespace qn::gltf
