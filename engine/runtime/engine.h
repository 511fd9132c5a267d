#pragma once

#include "frame/host/api.h"

namespace qn {

/// The file name of the assembly module in the module folder.
inline constexpr const wchar_t* kAssemblyModule = L"assembly.so";

/// Makes `qn::api` valid and gives it. It is valid without this call once the engine's library is loaded;
/// programs call it so that the linker keeps the library, and so that the order is plain to read. Any number
/// of calls is one.
Api& StartEngine();

/// `StartEngine`, then loads the assembly module from the module folder; false, with a reason, if that fails.
bool StartEngineWithAssembly(String* reason = nullptr);

}  // namespace qn
