#pragma once

#include "frame/host/api.h"

namespace qn {

/// The stand-alone host: modules from `Modules()`, surroundings from `GetSession()` and `GetPlatform()`.
/// Without state of its own.
class ApiImpl final : public Api {
public:
    /// Asks the modules that registered the key, then the engine's own classes, then loads the module whose
    /// record names the class.
    Counted<Interface> Create(const char* key) override;
    /// False without a key.
    bool RegisterExtension(ModuleHandle handle, const char* key, unsigned value,
                           const String& displayName) override;
    VarMap* GetPcoreSessionUserData() override;
    bool GetSpecialFolder(int kind, wchar_t* buffer, int size) override;
    Counted<Collection> CreateCollection() override;
    Counted<Stream> CreateStream(ModuleHandle handle, const wchar_t* name, unsigned mode) override;
    String GetProductName() override;
    bool GetDocumentPath(wchar_t* buffer, int size) override;
    Counted<Context> CreateContext(int mode, int reserved) override;
    void* GetMainWindow(int reserved) override;
    int ShowMessageBox(void* window, const String& text, const String& caption, unsigned flags) override;
    bool LoadModule(const String& path, String* reason) override;
};

}  // namespace qn
