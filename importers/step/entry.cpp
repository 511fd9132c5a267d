#include "frame/host/api.h"
#include "importers/step/step_importer.h"

#include <cstdint>

namespace qn::step {
namespace {

constexpr unsigned kRegister = 0x1001;
constexpr unsigned kInterfaceVersionCode = 0x1010;
constexpr unsigned kCreate = 0x10002;

constexpr std::uintptr_t kInterfaceVersion = 0x910;
constexpr std::uintptr_t kDone = 1;
constexpr std::uintptr_t kRefused = 0;

std::uintptr_t Register(ModuleHandle handle) {
    return api && api->RegisterExtension(handle, StepImporter::kKey, 0, L"STEP") ? kDone : kRefused;
}

std::uintptr_t Create(const char* key) {
    if (!EqualKeys(key, StepImporter::kKey)) return kRefused;
    Counted<Interface> made = Make<StepImporter>();
    return reinterpret_cast<std::uintptr_t>(made.Detach());
}

}  // namespace
}  // namespace qn::step

/// The module's one exported function: registers the importer with the host and makes it. Never throws; 0 for
/// a code that it does not know.
extern "C" __attribute__((visibility("default"))) std::uintptr_t K3DLLFunc(unsigned code, void* first,
                                                                           void* second) {
    using namespace qn::step;
    try {
        switch (code) {
            case kRegister:
                return Register(second);
            case kInterfaceVersionCode:
                return kInterfaceVersion;
            case kCreate:
                return Create(static_cast<const char*>(first));
            default:
                return kRefused;
        }
    } catch (...) {
        return kRefused;
    }
}
