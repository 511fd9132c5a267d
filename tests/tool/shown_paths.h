#pragma once

#include <nlohmann/json.hpp>
#include <functional>
#include <string>

namespace assembly::tests {

/// Expects the paths of all occurrences in `shown`, the output of the verb "show" as JSON, to be those that
/// `expected` lists or, if they are many, has the sum of. `nameOf` gives an occurrence's part of a path.
void ExpectPaths(const nlohmann::json& shown, const nlohmann::json& expected,
                 const std::function<std::string(const nlohmann::json& occurrence)>& nameOf);

}  // namespace assembly::tests
