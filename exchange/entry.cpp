#include "exchange/metadata_export.h"
#include "exchange/shallow_export.h"
#include "exchange/visual_context_resolver.h"
#include "frame/host/api.h"

#include <algorithm>
#include <cstdint>

namespace qn::exchange {
namespace {

constexpr unsigned kRegister = 0x1001;
constexpr unsigned kInterfaceVersionCode = 0x1010;
constexpr unsigned kCreate = 0x10002;

constexpr std::uintptr_t kInterfaceVersion = 0x910;
constexpr std::uintptr_t kDone = 1;
constexpr std::uintptr_t kRefused = 0;

template <class T>
Interface* MakeOne() {
    return Make<T>().Detach();
}

struct ClassRow {
    const char* key;
    const wchar_t* name;
    Interface* (*make)();
};
constexpr ClassRow kClasses[] = {
    {qfxml::ExchangeKey::kMetadataExport, L"Metadata Export", &MakeOne<MetadataExport>},
    {qfxml::ExchangeKey::kShallowExporter, L"Shallow Export", &MakeOne<ShallowExport>},
    {qfxml::ExchangeKey::kVisualContextResolver, L"Visual Context Resolver", &MakeOne<ContextResolver>},
};

std::uintptr_t Register(ModuleHandle handle) {
    const auto registers = [&](const ClassRow& row) {
        return api->RegisterExtension(handle, row.key, 0, row.name);
    };
    return api && std::all_of(std::begin(kClasses), std::end(kClasses), registers) ? kDone : kRefused;
}

std::uintptr_t Create(const char* key) {
    for (const ClassRow& row : kClasses)
        if (EqualKeys(row.key, key)) return reinterpret_cast<std::uintptr_t>(row.make());
    return kRefused;
}

}  // namespace
}  // namespace qn::exchange

/// The module's one exported function: registers the classes with the host and makes them. Never throws; 0
/// for a code that it does not know.
extern "C" __attribute__((visibility("default"))) std::uintptr_t K3DLLFunc(unsigned code, void* first,
                                                                           void* second) {
    using namespace qn::exchange;
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
