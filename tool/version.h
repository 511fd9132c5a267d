#pragma once

namespace assembly::tool {

inline constexpr const char* kVersion = "assembly 0.1.0";

}  // namespace assembly::tool
