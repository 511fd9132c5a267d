#pragma once

#include <array>

namespace qn {

/// Parts of an affine map. Quaternions are x, y, z, w.
struct AffineParts {
    std::array<double, 3> translation{0, 0, 0};
    std::array<double, 4> rotation{0, 0, 0, 1};
    std::array<double, 4> stretchRotation{0, 0, 0, 1};
    std::array<double, 3> scale{1, 1, 1};
    double sign = 1;  ///< -1 for a mirror image
};

/// A 4 x 4 map. Points are rows, so the translation stands in the last row; lengths are millimetres.
template <class T>
class Matrix4 {
public:
    constexpr Matrix4() { IdentityMatrix(); }

    constexpr void IdentityMatrix() {
        for (int r = 0; r < 4; ++r)
            for (int c = 0; c < 4; ++c)
                m[r][c] = r == c ? T(1) : T(0);
    }
    static constexpr Matrix4 Translation(T x, T y, T z) {
        Matrix4 result;
        result.m[3][0] = x, result.m[3][1] = y, result.m[3][2] = z;
        return result;
    }
    /// Every entry within `tolerance` of the identity.
    bool IsIdentity(double tolerance) const { return Equal(Matrix4(), tolerance); }
    template <class U = double>
    bool Equal(const Matrix4& other, U tolerance) const {
        for (int r = 0; r < 4; ++r)
            for (int c = 0; c < 4; ++c) {
                const double difference = double(m[r][c]) - double(other.m[r][c]);
                if (!(difference <= double(tolerance) && -difference <= double(tolerance))) return false;
            }
        return true;
    }
    /// This becomes the map that applies `first`, then `second`. Either may be this object.
    void SetMul(const Matrix4& first, const Matrix4& second) {
        Matrix4 product;
        for (int r = 0; r < 4; ++r)
            for (int c = 0; c < 4; ++c) {
                T sum = 0;
                for (int k = 0; k < 4; ++k)
                    sum += first.m[r][k] * second.m[k][c];
                product.m[r][c] = sum;
            }
        *this = product;
    }
    /// This becomes the map that, applied after `old`, gives `wanted`; the identity if `old` is singular.
    void SetM2(const Matrix4& wanted, const Matrix4& old);
    /// The inverse in `out`; false (and the identity) if singular.
    bool Invert(Matrix4& out) const;
    /// False, with the parts left at the identity, if the map is singular.
    bool AffineDecompose(AffineParts& parts) const;

    friend bool operator==(const Matrix4&, const Matrix4&) = default;

    T m[4][4];
};

}  // namespace qn
