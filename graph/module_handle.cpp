#include "graph/module_handle.h"

namespace qn::graph {

namespace {

ModuleHandle moduleHandle = nullptr;

}  // namespace

ModuleHandle GetModuleHandle() {
    return moduleHandle;
}

void SetModuleHandle(ModuleHandle handle) {
    moduleHandle = handle;
}

}  // namespace qn::graph
