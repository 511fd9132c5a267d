#include "frame/module.h"

#include "graph/module_handle.h"

namespace qn::frame {

ModuleHandle GetModuleHandle() {
    return graph::GetModuleHandle();
}

void SetModuleHandle(ModuleHandle handle) {
    graph::SetModuleHandle(handle);
}

}  // namespace qn::frame
