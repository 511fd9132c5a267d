#pragma once

namespace assembly::tool {

/// What the process answers with.
enum class ExitCode : int {
    kFine = 0,
    kFindings = 1,  ///< invalid hierarchy, differences
    kUsage = 2,
    kUnreadable = 3,  ///< input missing, unreadable or malformed
    kNotWritten = 4,
    kFileMissing = 5,  ///< a file that the input refers to
    kConflicts = 6,
    kLimit = 7,
    kCancelled = 8,
    kDefect = 70,  ///< a defect of ours
};

constexpr int ToInt(ExitCode code) {
    return static_cast<int>(code);
}

}  // namespace assembly::tool
