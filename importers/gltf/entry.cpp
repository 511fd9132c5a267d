#include "frame/host/api.h"
#include "importers/gltf/gltf_importer.h"

#include <cstdint>

namespace qn::gltf {
namespace {

constexpr unsigned kRegister = 0x1001;
constexpr unsigned kInterfaceVersionCode = 0x1010;
constexpr unsigned kCreate = 0x10002;

constexpr std::uintptr_t kInterfaceVersion = 0x910;
constexpr std::uintptr_t kDone = 1;
constexpr std::uintptr_t kRefused = 0;

std::uintptr_t Register(ModuleHandle handle) {
    return api && api->RegisterExtension(handle, GltfImporter::kKey, 0, L"glTF") ? kDone : kRefused;
}

std::uintptr_t Create(const char* key) {
    if (!EqualKeys(key, GltfImporter::kKey)) return kRefused;
    Counted<Interface> made = Make<GltfImporter>();
    return reinterpret_cast<std::uintptr_t>(made.Detach());
}

}  // namespace
}  // namespace qn::gltf

/// The module's one exported function: registers the importer with the host and makes it. Never throws; 0 for
/// a code that it does not know.
extern "C" __attribute__((visibility("default"))) std::uintptr_t K3DLLFunc(unsigned code, void* first,
                                                                           void* second) {
    using namespace qn::gltf;
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
