#pragma once

#include "frame/host/string.h"

#include <cstdint>
#include <vector>

namespace qn {

enum class ProcessKind { kAuthor, kViewer, kPublisher, kGenerator };

/// A calendar time as the log names want it.
struct LocalTime {
    int year = 1970, month = 1, day = 1, hour = 0, minute = 0, second = 0;
};

/// Everything that leaves the process: dialogs, started programs, clock, folders. The default is headless:
/// boxes and opened files are recorded, nothing starts.
class Platform {
public:
    struct Box {
        String text, caption;
        unsigned flags = 0;
    };
    virtual ~Platform() = default;
    virtual int ShowMessageBox(void* window, const String& text, const String& caption, unsigned flags) = 0;
    virtual bool OpenFile(const String& path) = 0;
    virtual LocalTime Now() = 0;
    /// With a final "/".
    virtual String TemporaryFolder() = 0;
    virtual ProcessKind GetProcessKind() = 0;
    /// Short date, M/d/yyyy; empty on failure.
    virtual String ShortDate(const LocalTime& time) = 0;
};

/// The platform in force; never null.
Platform& GetPlatform();
/// Replaces it; null goes back to the headless default. Borrowed: must outlive its use.
void SetPlatform(Platform* platform);

/// The kind of the running process, by the platform in force.
bool MWViewerIsRunning();
bool BrinePublishIsRunning();
bool MWGeneratorIsRunning();

}  // namespace qn
