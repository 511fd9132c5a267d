#pragma once

#include <functional>
#include <stdexcept>
#include <string>

namespace qn::step {

/// What kept a file from being read, for callers that answer differently.
enum class Cause {
    kNone,
    kUnreadable,  ///< it cannot be opened or read
    kMalformed,   ///< it is no STEP file, or a damaged one
    kMemory,
    kLimit,  ///< it asks for more than `step_limits` allow
    kCancelled,
    kDefect  ///< a part of the reader is missing
};

/// Why a file could not be read. Thrown inside the reader only; `ReadStructure` and
/// `ReadGeometry` turn it into a text that names the file. The text names no file.
class ReadFailure : public std::runtime_error {
public:
    explicit ReadFailure(const std::string& text, Cause cause = Cause::kMalformed)
        : std::runtime_error(text), cause_(cause) {}

    Cause GetCause() const { return cause_; }

private:
    Cause cause_;
};

/// Asked from time to time while a file is read. False stops the reading, with Cause::kCancelled.
using Poll = std::function<bool()>;

/// Throws ReadFailure if there is a poll and it wants to stop.
inline void Check(const Poll& poll) {
    if (poll && !poll()) throw ReadFailure("cancelled", Cause::kCancelled);
}

}  // namespace qn::step
