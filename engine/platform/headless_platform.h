#pragma once

#include "frame/host/platform.h"

#include <optional>
#include <vector>

namespace qn {

/// Shows nothing and starts nothing: what would have been shown or opened is recorded, oldest first. Clock,
/// folder and kind of process are those of the machine and of an author, until they are set.
class HeadlessPlatform final : public Platform {
public:
    /// Records the box and answers 1.
    int ShowMessageBox(void* window, const String& text, const String& caption, unsigned flags) override;
    /// Records the path and answers true.
    bool OpenFile(const String& path) override;
    LocalTime Now() override;
    /// `TMPDIR`, else "/tmp".
    String TemporaryFolder() override;
    ProcessKind GetProcessKind() override { return kind_; }
    String ShortDate(const LocalTime& time) override;

    const std::vector<Box>& Boxes() const noexcept { return boxes_; }
    const std::vector<String>& OpenedFiles() const noexcept { return opened_; }
    void ForgetRecords();

    /// Without a value the machine's clock counts again.
    void SetNow(std::optional<LocalTime> time) { now_ = time; }
    /// The empty text brings the machine's folder back.
    void SetTemporaryFolder(const String& folder) { temporaryFolder_ = folder; }
    void SetProcessKind(ProcessKind kind) { kind_ = kind; }

private:
    std::vector<Box> boxes_;
    std::vector<String> opened_;
    std::optional<LocalTime> now_;
    String temporaryFolder_;
    ProcessKind kind_ = ProcessKind::kAuthor;
};

/// The platform that is in force when none was set.
HeadlessPlatform& GetHeadlessPlatform();

}  // namespace qn
