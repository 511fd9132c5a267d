#pragma once

#include <cmath>

namespace qn {

/// The linear part of a map, rows as in `Matrix4`.
struct Matrix3 {
    double m[3][3]{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};

    double Determinant() const noexcept {
        return m[0][0] * (m[1][1] * m[2][2] - m[1][2] * m[2][1]) -
               m[0][1] * (m[1][0] * m[2][2] - m[1][2] * m[2][0]) +
               m[0][2] * (m[1][0] * m[2][1] - m[1][1] * m[2][0]);
    }
    /// The cofactors: the transposed inverse times the determinant.
    Matrix3 Cofactors() const noexcept {
        Matrix3 result;
        for (int r = 0; r < 3; ++r)
            for (int c = 0; c < 3; ++c) {
                const int r1 = (r + 1) % 3, r2 = (r + 2) % 3, c1 = (c + 1) % 3, c2 = (c + 2) % 3;
                result.m[r][c] = m[r1][c1] * m[r2][c2] - m[r1][c2] * m[r2][c1];
            }
        return result;
    }
    Matrix3 Transposed() const noexcept {
        Matrix3 result;
        for (int r = 0; r < 3; ++r)
            for (int c = 0; c < 3; ++c)
                result.m[r][c] = m[c][r];
        return result;
    }
    Matrix3 Scaled(double factor) const noexcept {
        Matrix3 result(*this);
        for (auto& row : result.m)
            for (double& value : row)
                value *= factor;
        return result;
    }
    /// The square root of the summed squares.
    double Norm() const noexcept {
        double sum = 0;
        for (const auto& row : m)
            for (const double value : row)
                sum += value * value;
        return std::sqrt(sum);
    }
    friend Matrix3 operator*(const Matrix3& left, const Matrix3& right) noexcept {
        Matrix3 result;
        for (int r = 0; r < 3; ++r)
            for (int c = 0; c < 3; ++c)
                result.m[r][c] = left.m[r][0] * right.m[0][c] + left.m[r][1] * right.m[1][c] +
                                 left.m[r][2] * right.m[2][c];
        return result;
    }
};

}  // namespace qn
