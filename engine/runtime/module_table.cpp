#include "engine/runtime/module_table.h"

#include <algorithm>

namespace qn {
namespace {

char Lower(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

constexpr std::size_t kFnvStart = 0xcbf29ce484222325;
constexpr std::size_t kFnvPrime = 0x100000001b3;

}  // namespace

std::size_t ModuleTable::KeyHash::operator()(std::string_view key) const noexcept {
    std::size_t hash = kFnvStart;
    for (const char letter : key)
        hash = (hash ^ static_cast<unsigned char>(Lower(letter))) * kFnvPrime;
    return hash;
}

bool ModuleTable::KeyEqual::operator()(std::string_view left, std::string_view right) const noexcept {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char a, char b) { return Lower(a) == Lower(b); });
}

const LoadedModule* ModuleTable::Find(ModuleHandle handle) const {
    const auto found = std::find_if(modules_.begin(), modules_.end(),
                                    [&](const LoadedModule& module) { return module.handle == handle; });
    return found == modules_.end() ? nullptr : &*found;
}

bool ModuleTable::Knows(const char* key) const {
    return rowsOfKey_.find(std::string_view(key)) != rowsOfKey_.end();
}

Counted<Interface> ModuleTable::Create(const char* key) const {
    const auto rows = rowsOfKey_.find(std::string_view(key));
    if (rows == rowsOfKey_.end()) return {};
    for (const std::size_t row : rows->second) {
        const LoadedModule* module = Find(extensions_[row].handle);
        if (!module) continue;
        const std::uintptr_t made = module->entry(ModuleCode::kCreate, const_cast<char*>(key), nullptr);
        if (made != 0) return Counted<Interface>::Adopt(reinterpret_cast<Interface*>(made));
    }
    return {};
}

bool ModuleTable::Add(const LoadedModule& module) {
    if (!module.entry || Find(module.handle)) return false;
    modules_.push_back(module);
    if (module.entry(ModuleCode::kRegister, nullptr, module.handle) != 0) return true;
    Remove(module.handle);
    return false;
}

void ModuleTable::AddExtension(const ExtensionRow& row) {
    extensions_.push_back(row);
    Index(extensions_.size() - 1);
}

void ModuleTable::Remove(ModuleHandle handle) {
    std::erase_if(modules_, [&](const LoadedModule& module) { return module.handle == handle; });
    std::erase_if(extensions_, [&](const ExtensionRow& row) { return row.handle == handle; });
    rowsOfKey_.clear();
    for (std::size_t row = 0; row < extensions_.size(); ++row)
        Index(row);
}

void ModuleTable::Index(std::size_t row) {
    rowsOfKey_[extensions_[row].key].push_back(row);
}

}  // namespace qn
