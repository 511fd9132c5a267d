#pragma once

#include "engine/values/text_body.h"
#include "frame/host/var.h"

#include <cstddef>
#include <cstdint>

namespace qn {

/// What a value of tag kMatrix shares: this head, then all 16 numbers, or of a matrix that only moves the
/// three of its translation.
struct MatrixBody {
    int count;
    bool isMove;

    static MatrixBody* Make(const Matrix4<double>& matrix);
    Matrix4<double> Get() const noexcept;
    void Destroy() noexcept;
    double* Numbers() noexcept { return reinterpret_cast<double*>(this + 1); }
    const double* Numbers() const noexcept { return reinterpret_cast<const double*>(this + 1); }
};
static_assert(sizeof(MatrixBody) % alignof(double) == 0);

/// What a value of tag kBlock shares: this head, then the bytes.
struct BlockBody {
    int count;
    std::size_t size;
    char* Bytes() noexcept { return reinterpret_cast<char*>(this + 1); }
};

/// The inside of a `Var`, for the engine's value code.
struct VarAccess {
    static std::int64_t Integer(const Var& value) noexcept { return value.payload_.integer; }
    static double Real(const Var& value) noexcept { return value.payload_.real; }
    static const TextBody* Text(const Var& value) noexcept { return value.payload_.text; }
    static Matrix4<double> Matrix(const Var& value) noexcept { return value.payload_.matrix->Get(); }

    static bool IsInteger(const Var& value) noexcept {
        return value.tag_ == VarTag::kInt || value.tag_ == VarTag::kInt64;
    }
    static bool IsReal(const Var& value) noexcept {
        return value.tag_ == VarTag::kFloat || value.tag_ == VarTag::kDouble;
    }
    static bool IsNumber(const Var& value) noexcept {
        return value.tag_ >= VarTag::kInt && value.tag_ <= VarTag::kDouble;
    }
    /// The same as `left == right`, without a call for texts and integers.
    static bool SameKey(const Var& left, const Var& right) {
        if (left.tag_ == VarTag::kText || right.tag_ == VarTag::kText)
            return left.tag_ == right.tag_ && SameText(left.payload_.text, ViewOf(right.payload_.text));
        if (IsInteger(left) && IsInteger(right)) return Integer(left) == Integer(right);
        return left.Compare(right) == 0;
    }
    static bool SameText(const TextBody* left, std::wstring_view right) noexcept {
        return ViewOf(left) == right;
    }
    /// A hash that agrees with == and does not change when an array or map does.
    static std::size_t KeyHash(const Var& key) noexcept;
};

}  // namespace qn
