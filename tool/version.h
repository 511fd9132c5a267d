#pragma once

namespace assembly::tool {

/// What "--version" prints.
inline constexpr const char* kVersion = "assembly 0.1.0";

}  // namespace assembly::tool
