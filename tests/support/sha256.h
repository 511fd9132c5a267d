#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace qn::test {

/// SHA-256 of the bytes as 64 lower-case hex digits.
std::string Sha256(std::string_view bytes);
/// The same of the lines, with a line feed between each two.
std::string Sha256OfLines(const std::vector<std::string>& lines);

}  // namespace qn::test
