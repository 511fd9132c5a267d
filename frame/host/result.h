#pragma once

namespace qn {

/// Signed result of an operation. Values above 0 mean success; some callers treat 0 as success as well,
/// so compare the way the caller's contract says (`Succeeded` or `Failed`).
enum class ResultEnum : int {
    kSuccess = 1,
    kNothing = 0,
    kWriteFailed = -8,
    kWrongClass = -9,
    kWrongState = -11,
};

constexpr int ToInt(ResultEnum result) {
    return static_cast<int>(result);
}
/// True for values above 0.
constexpr bool Succeeded(ResultEnum result) {
    return ToInt(result) > 0;
}
/// True for values below 0 only; 0 counts as "nothing to do".
constexpr bool Failed(ResultEnum result) {
    return ToInt(result) < 0;
}

}  // namespace qn
