#pragma once

#include <cstdint>

/// The one exported function: `code` is one of `ModuleCode`, `first` and `second` are its arguments. Never
/// throws; 0 for a code that is not in the table.
extern "C" std::uintptr_t K3DLLFunc(unsigned code, void* first, void* second);
