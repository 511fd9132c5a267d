#pragma once

#include <string_view>

namespace qn::step {

/// Throws ReadFailure, naming the number, if a real number of the records is so large that
/// calculations with it overflow: 1E+31 and beyond. Strings, names and comments are passed over.
void RefuseHugeNumbers(std::string_view records);

}  // namespace qn::step
