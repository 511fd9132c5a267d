#pragma once

#include "frame/host/resource.h"

namespace qn {

/// Takes a resource away; false if there was none.
bool RemoveResource(ModuleHandle handle, const String& name);

}  // namespace qn
