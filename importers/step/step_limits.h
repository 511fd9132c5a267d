#pragma once

/// What a STEP file may ask for at most.
namespace qn::step_limits {

inline constexpr int kDeepestParentheses = 64;    ///< levels inside one record
inline constexpr int kMostDigits = 30;            ///< of a number before its point, and its largest exponent
inline constexpr int kLongestShapeSeconds = 120;  ///< for the geometry of one definition

}  // namespace qn::step_limits
