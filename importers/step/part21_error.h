#pragma once

#include <stdexcept>
#include <string>

namespace qn::step {

/// Why a file could not be read. Thrown inside the reader only; `ReadStructure` and
/// `ReadGeometry` turn it into a text that names the file. The text names no file.
class ReadFailure : public std::runtime_error {
public:
    explicit ReadFailure(const std::string& cause) : std::runtime_error(cause) {}
};

}  // namespace qn::step
