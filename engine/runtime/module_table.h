#pragma once

#include "frame/host/api.h"
#include "frame/host/module_code.h"

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace qn {

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
