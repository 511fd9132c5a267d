#pragma once

#include <string>
#include <string_view>

namespace assembly::tool {

/// The text with an apostrophe before whatever a spreadsheet would run as a formula: a leading "=", "+", "-",
/// "@", tab or line break, their wide forms, also behind blanks and quotes, and also behind a character at
/// which another spreadsheet splits cells. Plain numbers stay.
std::string WithoutFormula(std::string_view utf8);

/// The text as one field of a CSV file: in quotes, with inner quotes doubled, where it needs them.
std::string CsvField(std::string_view utf8);

}  // namespace assembly::tool
