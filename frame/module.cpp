#include "frame/module.h"

namespace qn::frame {
namespace {

ModuleHandle moduleHandle = nullptr;

}  // namespace

ModuleHandle GetModuleHandle() {
    return moduleHandle;
}

void SetModuleHandle(ModuleHandle handle) {
    moduleHandle = handle;
}

}  // namespace qn::frame
