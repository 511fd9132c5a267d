#include "engine/runtime/module_folder.h"

#include <cstdlib>
#include <filesystem>

#include <dlfcn.h>

namespace qn {
namespace {

namespace fs = std::filesystem;

constexpr const char* kVariable = "ASSEMBLY_MODULES";

String& ChosenFolder() {
    static auto& folder = *new String;
    return folder;
}

/// The folder of the file that this code was loaded from.
fs::path OwnFolder() {
    Dl_info info{};
    if (!dladdr(reinterpret_cast<void*>(&ModuleFolder), &info) || !info.dli_fname) return ".";
    std::error_code error;
    const fs::path file = fs::canonical(info.dli_fname, error);
    return error ? fs::path(".") : file.parent_path();
}

fs::path DefaultFolder() {
    const fs::path own = OwnFolder();
    return own.filename() == "bin" ? own.parent_path() / "lib" : own;
}

}  // namespace

String ModuleFolder() {
    if (ChosenFolder().NonEmpty()) return ChosenFolder();
    const char* fromEnvironment = std::getenv(kVariable);
    if (fromEnvironment && *fromEnvironment) return String::FromUtf8(fromEnvironment);
    return String::FromUtf8(DefaultFolder().string());
}

void SetModuleFolder(const String& folder) {
    ChosenFolder() = folder;
}

}  // namespace qn
