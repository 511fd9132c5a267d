#include "engine/runtime/modules.h"

#include "engine/runtime/module_folder.h"
#include "frame/host/scene.h"

#include <filesystem>

#include <dlfcn.h>

namespace qn {
namespace {

namespace fs = std::filesystem;

constexpr const char* kEntryName = "K3DLLFunc";

/// The linker's text, without the file's path at its front.
String LinkerError(const std::string& file) {
    const char* told = dlerror();
    std::string text = told ? told : "unknown error of the dynamic linker";
    if (text.rfind(file + ": ", 0) == 0) text.erase(0, file.size() + 2);
    return String::FromUtf8(text);
}

/// Names the module without its folder, so that the text is the same on every machine.
bool Refuse(String* reason, const std::string& file, const String& why) {
    if (reason) *reason = String::FromUtf8(fs::path(file).filename().string()) + L": " + why;
    return false;
}

/// The file to open: names without folder stand in the module folder.
std::string Locate(const String& path) {
    const std::string name = path.ToUtf8();
    return name.find('/') == std::string::npos ? (fs::path(ModuleFolder().ToUtf8()) / name).string() : name;
}

}  // namespace

ModuleTable& Modules() {
    static auto& table = *new ModuleTable;
    return table;
}

bool RegisterEntry(ModuleHandle handle, ModuleEntry entry) {
    return Modules().Add({handle, entry, String()});
}

bool LoadModuleFile(const String& path, String* reason) {
    const std::string file = Locate(path);
    std::error_code error;
    if (!fs::is_regular_file(file, error)) return Refuse(reason, file, L"no such module");
    void* library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!library) return Refuse(reason, file, LinkerError(file));
    if (Modules().Find(library)) {
        dlclose(library);  // the count that this call added
        return true;
    }
    const auto entry = reinterpret_cast<ModuleEntry>(dlsym(library, kEntryName));
    if (entry && Modules().Add({library, entry, String::FromUtf8(file)})) return true;
    dlclose(library);
    return Refuse(reason, file,
                  entry ? L"the module refused to register" : L"not a module: it exports no K3DLLFunc");
}

void RunPostLoadHooks(k3::Scene* scene, bool merged) {
    static char mark;                                               // any address will do
    const std::vector<LoadedModule> modules = Modules().Modules();  // a hook may load a further module
    for (const LoadedModule& module : modules) {
        module.entry(ModuleCode::kPostLoad, scene, merged ? &mark : nullptr);
    }
}

}  // namespace qn
