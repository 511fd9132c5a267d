#pragma once

#include "frame/host/context.h"
#include "tool/exit_code.h"

#include <stdexcept>
#include <string>

namespace assembly::tool {

/// Ends a verb: what is printed on stderr, and the exit code.
class Failure : public std::runtime_error {
public:
    Failure(ExitCode code, const std::string& text) : std::runtime_error(text), code_(code) {}
    ExitCode Code() const { return code_; }

private:
    ExitCode code_;
};

/// The exit code that stands for a failed load.
constexpr ExitCode CodeOf(qn::LoadFailure failure) {
    switch (failure) {
        case qn::LoadFailure::kNone:
        case qn::LoadFailure::kUnreadable:
        case qn::LoadFailure::kMalformed:
            return ExitCode::kUnreadable;
        case qn::LoadFailure::kLimit:
            return ExitCode::kLimit;
        case qn::LoadFailure::kMissing:
            return ExitCode::kFileMissing;
        case qn::LoadFailure::kCancelled:
            return ExitCode::kCancelled;
        case qn::LoadFailure::kDefect:
            return ExitCode::kDefect;
        case qn::LoadFailure::kNotWritten:
            return ExitCode::kNotWritten;
    }
    return ExitCode::kDefect;
}

/// The exit code that stands for a failed save.
constexpr ExitCode CodeOfSave(qn::LoadFailure failure) {
    const bool isOther = failure != qn::LoadFailure::kLimit && failure != qn::LoadFailure::kCancelled;
    return isOther ? ExitCode::kNotWritten : CodeOf(failure);
}

}  // namespace assembly::tool
