#pragma once

#include <cstdint>

namespace qn {

/// The one function that a module exports, K3DLLFunc: `code` chooses the command, `first` and `second` are
/// its arguments. Never throws; 0 for a code that it does not know.
using ModuleEntry = std::uintptr_t (*)(unsigned code, void* first, void* second);

/// Codes of a module's entry function.
namespace ModuleCode {
inline constexpr unsigned kRegister = 0x1001;  ///< second: the module handle
inline constexpr unsigned kPostLoad = 0x1009;  ///< first: the scene, second: not 0 for a merged file
inline constexpr unsigned kInterfaceVersion = 0x1010;
inline constexpr unsigned kVersionText = 0x1020;  ///< first: wide buffer, second: its capacity
inline constexpr unsigned kDescription = 0x1021;  ///< as kVersionText
inline constexpr unsigned kIdentifier = 0x1023;   ///< first: 16 bytes
/// first: class key; answers an Interface* with one count, or 0
inline constexpr unsigned kCreate = 0x10002;
}  // namespace ModuleCode

/// The version of the contract: what modules and their objects answer when they are asked for it.
inline constexpr int kInterfaceVersion = 0x910;

}  // namespace qn
