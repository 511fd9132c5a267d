#pragma once

#include "frame/host/api.h"

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace qn {

/// The one function that a module exports.
using ModuleEntry = std::uintptr_t (*)(unsigned code, void* first, void* second);

/// Codes of a module's entry function.
namespace ModuleCode {
inline constexpr unsigned kRegister = 0x1001;  ///< second: the module handle
inline constexpr unsigned kPostLoad = 0x1009;  ///< first: the scene, second: not 0 for a merged file
inline constexpr unsigned kInterfaceVersion = 0x1010;
inline constexpr unsigned kVersionText = 0x1020;  ///< first: wide buffer, second: its capacity
inline constexpr unsigned kDescription = 0x1021;  ///< as kVersionText
inline constexpr unsigned kIdentifier = 0x1023;   ///< first: 16 bytes
inline constexpr unsigned kCreate =
    0x10002;  ///< first: class key; answers an Interface* with one count, or 0
}  // namespace ModuleCode

struct LoadedModule {
    ModuleHandle handle = nullptr;
    ModuleEntry entry = nullptr;
    String path;  ///< empty for a module that is part of the program
};

/// One registered class, as the module passed it.
struct ExtensionRow {
    ModuleHandle handle = nullptr;
    std::string key;
    unsigned value = 0;
    String displayName;
};

/// The modules in force and the classes that they registered, both in order. Nothing is merged: a class
/// registered twice has two rows.
class ModuleTable {
public:
    const std::vector<LoadedModule>& Modules() const { return modules_; }
    const std::vector<ExtensionRow>& Extensions() const { return extensions_; }
    /// The module of that handle, or null; valid until the table changes.
    const LoadedModule* Find(ModuleHandle handle) const;
    /// Whether a module registered the key (case does not matter), even if it makes nothing.
    bool Knows(const char* key) const;
    /// The new object of the first module that registered the key (case does not matter) and makes one; null
    /// if none.
    Counted<Interface> Create(const char* key) const;

    /// Keeps the module and has it register its classes. False, with nothing kept, if the handle is known or
    /// the entry answers 0.
    bool Add(const LoadedModule& module);
    void AddExtension(const ExtensionRow& row);
    /// Forgets the module and its classes. Objects of it must be gone.
    void Remove(ModuleHandle handle);

private:
    struct KeyHash {
        using is_transparent = void;
        std::size_t operator()(std::string_view key) const noexcept;
    };
    struct KeyEqual {
        using is_transparent = void;
        bool operator()(std::string_view left, std::string_view right) const noexcept;
    };
    void Index(std::size_t row);

    std::vector<LoadedModule> modules_;
    std::vector<ExtensionRow> extensions_;
    std::unordered_map<std::string, std::vector<std::size_t>, KeyHash, KeyEqual> rowsOfKey_;
};

}  // namespace qn
