#pragma once

#include <string>

namespace qn {

/// The text that the pattern and its arguments give, the same in every locale. Conversions: d i u x X o c s S
/// f F e E g G p with the flags "- + 0 # blank", width, precision ("*" too) and the lengths h hh l ll z t j;
/// "%s" and "%c" are wide,
/// "%S" and "%hs" take UTF-8. A null text gives "(null)"; anything else after "%" stays as it stands.
std::wstring FormatText(const wchar_t* pattern, __builtin_va_list arguments);

}  // namespace qn
