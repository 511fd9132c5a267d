#pragma once

#include "frame/host/string.h"

namespace qn {

/// Where extension modules and importer records stand, without a final slash: the folder that was set, else
/// the environment variable ASSEMBLY_MODULES, else the folder of the engine's library ("../lib" if that is a
/// "bin").
String ModuleFolder();
/// The empty text goes back to the default.
void SetModuleFolder(const String& folder);

}  // namespace qn
