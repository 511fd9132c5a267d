#pragma once

#include "frame/host/api.h"
#include "frame/host/module_code.h"

#include <algorithm>
#include <cstdint>
#include <span>

namespace qn {

/// One class of a module that has nothing to tell but its classes.
struct ModuleClass {
    const char* key;
    const wchar_t* name;  ///< for users
    Counted<Interface> (*make)();
};

/// Makes an object by its default constructor: the usual `make` of a row.
template <class T>
Counted<Interface> MakeOne() {
    return Make<T>();
}

/// Registers the classes in their order; false at the first that the host refuses.
inline bool RegisterClasses(std::span<const ModuleClass> classes, ModuleHandle handle) {
    return api && std::all_of(classes.begin(), classes.end(), [&](const ModuleClass& row) {
               return api->RegisterExtension(handle, row.key, 0, row.name);
           });
}

/// A new object of the class, or null for an unknown key. Keys ignore ASCII case.
inline Counted<Interface> MakeByKey(std::span<const ModuleClass> classes, const char* key) {
    for (const ModuleClass& row : classes)
        if (EqualKeys(row.key, key)) return row.make();
    return nullptr;
}

/// The whole entry function of such a module.
inline std::uintptr_t AnswerHost(std::span<const ModuleClass> classes, unsigned code, void* first,
                                 void* second) noexcept {
    try {
        switch (code) {
            case ModuleCode::kRegister:
                return RegisterClasses(classes, second);
            case ModuleCode::kInterfaceVersion:
                return kInterfaceVersion;
            case ModuleCode::kCreate:
                return reinterpret_cast<std::uintptr_t>(
                    MakeByKey(classes, static_cast<const char*>(first)).Detach());
            default:
                return 0;
        }
    } catch (...) {
        return 0;  // nothing may throw into the host
    }
}

}  // namespace qn
