#pragma once

#include "frame/host/collections.h"
#include "frame/host/context.h"
#include "frame/host/counted.h"
#include "frame/host/stream.h"

namespace qn {

using ModuleHandle = void*;

/// The host as a module sees it: makes objects by class key, and knows the application around it.
class Api {
public:
    virtual ~Api() = default;
    /// A new object of a registered class (keys ignore case), or null.
    virtual Counted<Interface> Create(const char* key) = 0;
    virtual bool RegisterExtension(ModuleHandle handle, const char* key, unsigned value,
                                   const String& displayName) = 0;
    /// The session's map, borrowed; may be null.
    virtual VarMap* GetPcoreSessionUserData() = 0;
    virtual bool GetSpecialFolder(int kind, wchar_t* buffer, int size) = 0;
    virtual Counted<Collection> CreateCollection() = 0;
    /// A file for reading, or null.
    virtual Counted<Stream> CreateStream(ModuleHandle handle, const wchar_t* name, unsigned mode) = 0;
    virtual String GetProductName() = 0;
    /// The present document's path, the empty text if there is none.
    virtual bool GetDocumentPath(wchar_t* buffer, int size) = 0;
    virtual Counted<Context> CreateContext(int mode, int reserved) = 0;
    virtual void* GetMainWindow(int reserved) = 0;
    virtual int ShowMessageBox(void* window, const String& text, const String& caption, unsigned flags) = 0;
    /// Loads an extension module and has it register its classes; false, with a reason, if that fails.
    virtual bool LoadModule(const String& path, String* reason = nullptr) = 0;
};

/// The one host of this process.
extern Api* api;

/// `Api::Create` and a cast; null if either fails.
template <class T>
Counted<T> CreateAs(const char* key) {
    return api ? CountedCast<T>(api->Create(key)) : Counted<T>();
}

}  // namespace qn
