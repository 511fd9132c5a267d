#pragma once

#include <string>
#include <string_view>

/// SHA-256 of the bytes as 64 lower-case hex digits.
std::string Sha256(std::string_view bytes);
