#include "tests/behaviour/recording_api.h"

namespace qn::test {

Counted<Interface> RecordingApi::Create(const char* key) {
    created.emplace_back(key);
    const auto maker = makers.find(key);
    return maker == makers.end() ? former_->Create(key) : maker->second();
}

bool RecordingApi::RegisterExtension(ModuleHandle handle, const char* key, unsigned value,
                                     const String& displayName) {
    registered.push_back({handle, key, value, displayName});
    return accepts;
}

Counted<Context> RecordingApi::CreateContext(int mode, int reserved) {
    contextRequests.push_back({mode, reserved});
    auto context = former_->CreateContext(mode, reserved);
    contexts.emplace_back(context.Get());
    return context;
}

void* RecordingApi::GetMainWindow(int reserved) {
    windowRequests.push_back(reserved);
    return mainWindow;
}

int RecordingApi::ShowMessageBox(void* window, const String& text, const String& caption, unsigned flags) {
    boxes.push_back({window, text, caption, flags});
    return 1;
}

}  // namespace qn::test
