#pragma once

#include "frame/host/var.h"

#include <optional>
#include <string>
#include <string_view>

namespace assembly::tool {

/// What a type of the description means to a caller. A type without row is a text.
struct OperationType {
    const char* name;                                          ///< as in the description
    const char* schema;                                        ///< the JSON Schema type
    const char* expected;                                      ///< for people, as "true or false"
    const char* shown;                                         ///< in place of a value, as "TEXT"
    std::optional<qn::Var> (*parse)(const std::string& text);  ///< empty if the text is no such value
};

const OperationType& TypeOf(std::string_view name);

}  // namespace assembly::tool
