#pragma once

#include "engine/runtime/module_table.h"

namespace qn {

namespace k3 {
class Scene;
}

/// The modules of this process.
ModuleTable& Modules();

/// Takes a module in that is part of the program (tests, static builds): keeps handle and entry and has it
/// register its classes.
bool RegisterEntry(ModuleHandle handle, ModuleEntry entry);

/// Loads a module from a file and has it register its classes; true at once if it is loaded already. A name
/// without folder is looked for in the module folder. On failure nothing changes and `reason` tells why.
bool LoadModuleFile(const String& path, String* reason);

/// Lets every module check and repair a scene that was just read; `merged` if it came into a scene with
/// content.
void RunPostLoadHooks(k3::Scene* scene, bool merged);

}  // namespace qn
