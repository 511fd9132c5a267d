#pragma once

#include "frame/host/api.h"

#include <array>
#include <cstdint>

namespace qn::frame {

inline constexpr const char* kTranslationCatalogue = "assembly";
inline constexpr const wchar_t* kVersionText = L"9.0.0.35737";
inline constexpr const char* kDescription = "Assembly extensions";

/// The module's identity, in memory order.
inline constexpr std::array<std::uint8_t, 16> kModuleIdentifier = {
    0xa4, 0x11, 0xd4, 0x66, 0x53, 0xfc, 0xce, 0x4a, 0x84, 0x9c, 0x1d, 0xa0, 0x33, 0xee, 0x6b, 0x7a};

/// The handle that the host gave at registration; null before. The only state of the module.
ModuleHandle GetModuleHandle();
void SetModuleHandle(ModuleHandle handle);

}  // namespace qn::frame
