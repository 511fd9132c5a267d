#include "engine/runtime/api_impl.h"

#include "engine/runtime/byte_stream.h"
#include "engine/runtime/class_table.h"
#include "engine/runtime/context_impl.h"
#include "engine/runtime/module_record.h"
#include "engine/runtime/modules.h"
#include "engine/runtime/session.h"
#include "frame/host/platform.h"

namespace qn {
namespace {

/// A module that its record names for the class is loaded now, when the class is first asked for. No record
/// counts where a loaded module has registered the class.
Counted<Interface> CreateFromUnloadedModule(const char* key) {
    const ModuleRecord* known = Modules().Knows(key) ? nullptr : KnownModules().Find(key);
    if (!known || !LoadModuleFile(String::FromUtf8(known->modulePath), nullptr)) return {};
    return Modules().Create(key);
}

}  // namespace

Counted<Interface> ApiImpl::Create(const char* key) {
    if (!key) return {};
    Counted<Interface> object = Modules().Create(key);
    if (!object) object = MakeEngineClass(key);
    return object ? object : CreateFromUnloadedModule(key);
}

bool ApiImpl::RegisterExtension(ModuleHandle handle, const char* key, unsigned value,
                                const String& displayName) {
    if (!key || !*key) return false;
    Modules().AddExtension({handle, key, value, displayName});
    return true;
}

VarMap* ApiImpl::GetPcoreSessionUserData() {
    return GetSession().userData.Get();
}

bool ApiImpl::GetSpecialFolder(int kind, wchar_t* buffer, int size) {
    const auto& folders = GetSession().specialFolders;
    const auto known = folders.find(kind);
    const String folder = known == folders.end() ? GetPlatform().TemporaryFolder() : known->second;
    folder.Get(buffer, size);
    return folder.NonEmpty();
}

Counted<Collection> ApiImpl::CreateCollection() {
    return Make<Collection>();
}

Counted<Stream> ApiImpl::CreateStream(ModuleHandle, const wchar_t* name, unsigned) {
    return name ? ByteStream::OpenFile(String(name)) : Counted<ByteStream>();
}

String ApiImpl::GetProductName() {
    return GetSession().productName;
}

bool ApiImpl::GetDocumentPath(wchar_t* buffer, int size) {
    const String& path = GetSession().documentPath;
    path.Get(buffer, size);
    return path.NonEmpty();
}

Counted<Context> ApiImpl::CreateContext(int, int) {
    return Make<ContextImpl>();
}

void* ApiImpl::GetMainWindow(int) {
    return GetSession().mainWindow;
}

int ApiImpl::ShowMessageBox(void* window, const String& text, const String& caption, unsigned flags) {
    return GetPlatform().ShowMessageBox(window, text, caption, flags);
}

bool ApiImpl::LoadModule(const String& path, String* reason) {
    return LoadModuleFile(path, reason);
}

}  // namespace qn
