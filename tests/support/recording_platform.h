#pragma once

#include "frame/host/platform.h"

namespace qn::test {

/// The platform in force while it lives: records boxes and opened files, and answers with its public fields.
class RecordingPlatform final : public Platform {
public:
    RecordingPlatform() { SetPlatform(this); }
    ~RecordingPlatform() override { SetPlatform(nullptr); }

    int ShowMessageBox(void*, const String& text, const String& caption, unsigned flags) override {
        boxes.push_back({text, caption, flags});
        return answer;
    }
    bool OpenFile(const String& path) override {
        opened.push_back(path);
        return true;
    }
    LocalTime Now() override { return now; }
    String TemporaryFolder() override { return temporaryFolder; }
    ProcessKind GetProcessKind() override { return kind; }
    String ShortDate(const LocalTime& time) override {
        String text;
        text.Format(L"%d/%d/%04d", time.month, time.day, time.year);
        return text;
    }

    std::vector<Box> boxes;
    std::vector<String> opened;
    int answer = 1;
    LocalTime now{2001, 2, 3, 4, 5, 6};
    String temporaryFolder = L"/tmp/";
    ProcessKind kind = ProcessKind::kAuthor;
};

}  // namespace qn::test
