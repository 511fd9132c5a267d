#pragma once

#include <string>
#include <string_view>

namespace qn::step {

/// The UTF-8 text that the inside of a quoted exchange-file string stands for.
///
/// Line breaks and control characters inside the quotes are layout and vanish, also in the middle
/// of an escape. Known escapes: '' \\ \S\c \Pa\ \X\hh \X2\...\X0\ \X4\...\X0\ \N\ \F\. Broken escapes
/// stay as they are. Bytes above 0x7f are taken as UTF-8 if the whole text is valid UTF-8,
/// else as Latin-1 (0x80 to 0x9f as in the code page 1252). Never fails.
std::string DecodeText(std::string_view raw);

/// Whether `text` is valid UTF-8 without overlong forms and surrogates.
bool IsUtf8(std::string_view text);

}  // namespace qn::step
