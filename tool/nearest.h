#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace assembly::tool {

/// The candidate that takes the fewest changed letters to reach; the first of several, empty if none is near.
std::string Nearest(std::string_view word, const std::vector<std::string>& candidates);
/// " (did you mean "X"?)", or nothing if no candidate is near.
std::string Suggestion(std::string_view word, const std::vector<std::string>& candidates);

}  // namespace assembly::tool
