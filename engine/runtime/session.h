#pragma once

#include "frame/host/collections.h"
#include "frame/host/string.h"

#include <map>

namespace qn {

/// What the application around the engine tells the modules. Plain values, read when a module asks.
struct Session {
    String productName = L"assembly";
    String documentPath;  ///< empty: not saved yet
    std::map<int, String>
        specialFolders;          ///< by kind; a kind that is missing is the platform's temporary folder
    void* mainWindow = nullptr;  ///< native handle, not owned
    Counted<VarMap> userData;    ///< starts as an empty map; may be null
};

/// The session of this process.
Session& GetSession();

}  // namespace qn
