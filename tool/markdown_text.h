#pragma once

#include <string>
#include <string_view>

namespace assembly::tool {

/// The text as one cell of a Markdown table: nothing in it is taken for markup or ends the cell; control
/// characters become visible, line breaks a break inside the cell.
std::string MarkdownCell(std::string_view utf8);

}  // namespace assembly::tool
