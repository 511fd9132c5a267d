#pragma once

#include "frame/host/api.h"

namespace qn::test {

/// A host that is in force while it lives, and gives nothing and refuses everything.
class InertApi : public Api {
public:
    InertApi() : former_(api) { api = this; }
    ~InertApi() override { api = former_; }
    InertApi(const InertApi&) = delete;
    InertApi& operator=(const InertApi&) = delete;

    Counted<Interface> Create(const char*) override { return nullptr; }
    bool RegisterExtension(ModuleHandle, const char*, unsigned, const String&) override { return false; }
    VarMap* GetPcoreSessionUserData() override { return nullptr; }
    bool GetSpecialFolder(int, wchar_t*, int) override { return false; }
    Counted<Collection> CreateCollection() override { return nullptr; }
    Counted<Stream> CreateStream(ModuleHandle, const wchar_t*, unsigned) override { return nullptr; }
    String GetProductName() override { return String(); }
    bool GetDocumentPath(wchar_t*, int) override { return false; }
    Counted<Context> CreateContext(int, int) override { return nullptr; }
    void* GetMainWindow(int) override { return nullptr; }
    int ShowMessageBox(void*, const String&, const String&, unsigned) override { return 0; }
    bool LoadModule(const String&, String*) override { return false; }

private:
    Api* const former_;
};

}  // namespace qn::test
