#pragma once

namespace qn::step {

/// The character that `byte` (0x80 to 0xff) has in ISO 8859-`part` (1 to 9). Latin-1 for a byte
/// that the part leaves open.
char32_t FromIso8859(int part, unsigned char byte);

/// The character that `byte` (0x80 to 0xff) has in the code page 1252.
char32_t FromWindows1252(unsigned char byte);

}  // namespace qn::step
