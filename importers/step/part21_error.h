#pragma once

#include <stdexcept>
#include <string>

namespace qn::step {

/// What kept a file from being read, for callers that answer differently.
enum class Cause {
    kNone,
    kUnreadable,  ///< it cannot be opened or read
    kMalformed,   ///< it is no STEP file, or a damaged one
    kMemory
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

}  // namespace qn::step
