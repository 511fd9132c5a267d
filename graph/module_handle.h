#pragma once

#include "frame/host/api.h"

namespace qn::graph {

/// The handle that the host gave the module at registration; null before. It stands in the lowest layer,
/// since files and resources are opened from several.
ModuleHandle GetModuleHandle();
void SetModuleHandle(ModuleHandle handle);

}  // namespace qn::graph
