#pragma once

#include "frame/host/api.h"
#include "frame/host/string.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace qn::test {

/// The host in force while it lives: remembers what it is asked and passes it on to the former one, but for
/// keys that have a maker here, and for message boxes.
class RecordingApi final : public Api {
public:
    struct Registration {
        ModuleHandle handle;
        std::string key;
        unsigned value;
        String displayName;
    };
    struct Box {
        void* window;
        String text, caption;
        unsigned flags;
    };
    struct ContextRequest {
        int mode, reserved;
        friend bool operator==(const ContextRequest&, const ContextRequest&) = default;
    };

    RecordingApi() : former_(api) { api = this; }
    ~RecordingApi() override { api = former_; }

    Counted<Interface> Create(const char* key) override;
    /// Remembers it and answers `accepts`; passes nothing on.
    bool RegisterExtension(ModuleHandle handle, const char* key, unsigned value,
                           const String& displayName) override;
    VarMap* GetPcoreSessionUserData() override { return former_->GetPcoreSessionUserData(); }
    bool GetSpecialFolder(int kind, wchar_t* buffer, int size) override {
        return former_->GetSpecialFolder(kind, buffer, size);
    }
    Counted<Collection> CreateCollection() override { return former_->CreateCollection(); }
    Counted<Stream> CreateStream(ModuleHandle handle, const wchar_t* name, unsigned mode) override {
        return former_->CreateStream(handle, name, mode);
    }
    String GetProductName() override { return former_->GetProductName(); }
    bool GetDocumentPath(wchar_t* buffer, int size) override {
        return former_->GetDocumentPath(buffer, size);
    }
    Counted<Context> CreateContext(int mode, int reserved) override;
    void* GetMainWindow(int reserved) override;
    int ShowMessageBox(void* window, const String& text, const String& caption, unsigned flags) override;
    bool LoadModule(const String& path, String* reason) override { return former_->LoadModule(path, reason); }

    /// Makers by key; one that gives null makes the key impossible to create.
    std::map<std::string, std::function<Counted<Interface>()>> makers;
    bool accepts = true;
    void* mainWindow = nullptr;

    std::vector<std::string> created;
    std::vector<Registration> registered;
    std::vector<ContextRequest> contextRequests;
    std::vector<Weak<Context>> contexts;
    std::vector<int> windowRequests;
    std::vector<Box> boxes;

private:
    Api* former_;
};

}  // namespace qn::test
