#pragma once

#include <cstdint>

/// The one exported function: `code` chooses the command, `first` and `second` are its arguments. Never
/// throws; 0 for a command that is not in the table.
extern "C" std::uintptr_t K3DLLFunc(unsigned code, void* first, void* second);

namespace qn::frame {

namespace Command {
inline constexpr unsigned kRegister = 0x1001;
inline constexpr unsigned kSceneLoaded = 0x1009;
inline constexpr unsigned kInterfaceVersion = 0x1010;
inline constexpr unsigned kVersionText = 0x1020;
inline constexpr unsigned kDescription = 0x1021;
inline constexpr unsigned kIdentifier = 0x1023;
inline constexpr unsigned kCreate = 0x10002;
}  // namespace Command

}  // namespace qn::frame
