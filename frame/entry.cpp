#include "frame/entry.h"

#include "frame/catalogue.h"
#include "frame/host/module_code.h"
#include "frame/host/translate.h"
#include "frame/module.h"
#include "frame/post_load_hook.h"
#include "operations/description.h"

#include <climits>
#include <cstring>

namespace qn::frame {
namespace {

constexpr std::uintptr_t kDone = 1;
constexpr std::uintptr_t kRefused = 0;

std::uintptr_t Register(void*, void* handle) {
    SetModuleHandle(handle);
    RegisterCatalogue(handle);
    graph::RegisterOperationDescription(handle);
    return kDone;
}

std::uintptr_t SceneLoaded(void* scene, void* merged) {
    try {
        CheckLoadedScene(static_cast<k3::Scene*>(scene), merged != nullptr);
    } catch (...) {
        // The host goes on with the scene as it is: the check is a service, not a condition.
    }
    return kDone;
}

std::uintptr_t InterfaceVersion(void*, void*) {
    return kInterfaceVersion;
}

std::uintptr_t CopyText(const String& text, void* buffer, void* capacity) {
    const auto size = reinterpret_cast<std::uintptr_t>(capacity);
    if (buffer && size > 0)
        text.Get(static_cast<wchar_t*>(buffer), size > INT_MAX ? INT_MAX : static_cast<int>(size));
    return kDone;
}

std::uintptr_t VersionText(void* buffer, void* capacity) {
    return CopyText(String(kVersionText), buffer, capacity);
}

std::uintptr_t Description(void* buffer, void* capacity) {
    return CopyText(Translate(kTranslationCatalogue, kDescription, "XTXT: plugin info", -1), buffer,
                    capacity);
}

std::uintptr_t Identifier(void* buffer, void*) {
    if (buffer) std::memcpy(buffer, kModuleIdentifier.data(), kModuleIdentifier.size());
    return kDone;
}

std::uintptr_t Create(void* key, void*) {
    return reinterpret_cast<std::uintptr_t>(CreateByKey(static_cast<const char*>(key)).Detach());
}

struct CommandRow {
    unsigned code;
    std::uintptr_t (*run)(void* first, void* second);
};

constexpr CommandRow kCommands[] = {
    {ModuleCode::kRegister, &Register},
    {ModuleCode::kPostLoad, &SceneLoaded},
    {ModuleCode::kInterfaceVersion, &InterfaceVersion},
    {ModuleCode::kVersionText, &VersionText},
    {ModuleCode::kDescription, &Description},
    {ModuleCode::kIdentifier, &Identifier},
    {ModuleCode::kCreate, &Create},
};

}  // namespace
}  // namespace qn::frame

extern "C" __attribute__((visibility("default"))) std::uintptr_t K3DLLFunc(unsigned code, void* first,
                                                                           void* second) {
    using namespace qn::frame;
    try {
        for (const CommandRow& row : kCommands)
            if (row.code == code) return row.run(first, second);
    } catch (...) {
        // Nothing may throw into the host.
    }
    return kRefused;
}
