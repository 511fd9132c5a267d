#include "engine/runtime/engine.h"

#include "engine/runtime/api_impl.h"

namespace qn {
namespace {

/// Never destroyed: objects that die late in the process still find their host.
Api& TheApi() {
    static Api& host = *new ApiImpl;
    return host;
}

}  // namespace

Api* api = &TheApi();

Api& StartEngine() {
    api = &TheApi();
    return *api;
}

bool StartEngineWithAssembly(String* reason) {
    return StartEngine().LoadModule(kAssemblyModule, reason);
}

}  // namespace qn
