#pragma once

#include <cstddef>
#include <string_view>

/// UTF-8 on one side, `wchar_t` on the other. What cannot be encoded or decoded becomes U+FFFD; a damaged
/// sequence gives one for each of its longest well-formed beginnings.
namespace qn::utf8 {

/// Characters that `Decode` makes of the text.
std::size_t CountCharacters(std::string_view text) noexcept;
/// Writes the characters, without terminator; gives their number.
std::size_t Decode(std::string_view text, wchar_t* out) noexcept;
/// Bytes that `Encode` makes of the text.
std::size_t CountBytes(std::wstring_view text) noexcept;
/// Writes the bytes, without terminator; gives their number.
std::size_t Encode(std::wstring_view text, char* out) noexcept;

}  // namespace qn::utf8
