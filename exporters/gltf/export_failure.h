#pragma once

#include <stdexcept>
#include <string>

namespace qn::gltf_export {

/// How an export ended.
enum class Outcome {
    kDone,
    kLimit,       ///< more than the format or the system holds
    kUnsayable,   ///< the format has no form for something in the assembly
    kNotWritten,  ///< the disk or the folder refused
    kCancelled,
};

/// Ends an export. Does not leave this library.
class ExportFailure : public std::runtime_error {
public:
    ExportFailure(Outcome outcome, const std::string& text) : std::runtime_error(text), outcome_(outcome) {}
    Outcome What() const { return outcome_; }

private:
    Outcome outcome_;
};

}  // namespace qn::gltf_export
