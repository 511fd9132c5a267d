#pragma once

#include <cstddef>

/// What a STEP file may ask for at most.
namespace qn::step_limits {

inline constexpr int kDeepestParentheses = 64;  ///< levels inside one record
inline constexpr int kMostDigits = 30;          ///< of a number before its point, and its largest exponent
inline constexpr std::size_t kMostFileNameBytes =
    std::size_t{1} << 27;  ///< of names of other files, again for each definition that has them
inline constexpr int kLongestShapeSeconds = 120;  ///< for the geometry of one definition

}  // namespace qn::step_limits
