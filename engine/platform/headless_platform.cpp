#include "engine/platform/headless_platform.h"

#include <cstdlib>
#include <ctime>

namespace qn {
namespace {

Platform* g_platform = nullptr;

bool IsLeapYear(int year) noexcept {
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

bool IsDate(const LocalTime& time) noexcept {
    static constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (time.year < 1 || time.year > 9999 || time.month < 1 || time.month > 12 || time.day < 1) return false;
    return time.day <= kDays[time.month - 1] + (time.month == 2 && IsLeapYear(time.year) ? 1 : 0);
}

}  // namespace

int HeadlessPlatform::ShowMessageBox(void*, const String& text, const String& caption, unsigned flags) {
    boxes_.push_back({text, caption, flags});
    return 1;
}

bool HeadlessPlatform::OpenFile(const String& path) {
    opened_.push_back(path);
    return true;
}

LocalTime HeadlessPlatform::Now() {
    if (now_) return *now_;
    const std::time_t seconds = std::time(nullptr);
    std::tm local{};
    localtime_r(&seconds, &local);
    return {local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec};
}

String HeadlessPlatform::TemporaryFolder() {
    const char* folder = std::getenv("TMPDIR");
    String result = temporaryFolder_;
    if (result.IsEmpty()) result = String::FromUtf8(folder && *folder ? folder : "/tmp");
    result.AddSlash();
    return result;
}

String HeadlessPlatform::ShortDate(const LocalTime& time) {
    String text;
    if (IsDate(time)) text.Format(L"%d/%d/%d", time.month, time.day, time.year);
    return text;
}

void HeadlessPlatform::ForgetRecords() {
    boxes_.clear();
    opened_.clear();
}

HeadlessPlatform& GetHeadlessPlatform() {
    static HeadlessPlatform& platform = *new HeadlessPlatform;  // outlives every other static object
    return platform;
}

Platform& GetPlatform() {
    return g_platform ? *g_platform : GetHeadlessPlatform();
}
void SetPlatform(Platform* platform) {
    g_platform = platform;
}

bool MWViewerIsRunning() {
    return GetPlatform().GetProcessKind() == ProcessKind::kViewer;
}
bool BrinePublishIsRunning() {
    return GetPlatform().GetProcessKind() == ProcessKind::kPublisher;
}
bool MWGeneratorIsRunning() {
    return GetPlatform().GetProcessKind() == ProcessKind::kGenerator;
}

}  // namespace qn
