#include "frame/host/matrix.h"

#include "engine/values/affine.h"
#include "engine/values/matrix3.h"

#include <cmath>
#include <cstddef>
#include <utility>

namespace qn {
namespace {

template <class T>
bool IsAffine(const Matrix4<T>& map) {
    return map.m[0][3] == 0 && map.m[1][3] == 0 && map.m[2][3] == 0 && map.m[3][3] == 1;
}

template <class T>
Matrix3 LinearPart(const Matrix4<T>& map) {
    Matrix3 result;
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c)
            result.m[r][c] = map.m[r][c];
    return result;
}

/// Keeps the last column exactly (0, 0, 0, 1), and moves and turns by right angles exact.
template <class T>
bool InvertAffine(const Matrix4<T>& map, Matrix4<T>& out) {
    const Matrix3 linear = LinearPart(map);
    const double determinant = linear.Determinant();
    if (determinant == 0 || !std::isfinite(determinant) || !std::isfinite(1 / determinant)) return false;
    const Matrix3 inverse = linear.Cofactors().Transposed();
    for (int c = 0; c < 3; ++c) {
        double moved = 0;
        for (int r = 0; r < 3; ++r) {
            out.m[r][c] = inverse.m[r][c] / determinant;
            moved -= map.m[3][r] * out.m[r][c];
        }
        out.m[3][c] = moved + 0.0;  // no negative zero
    }
    return true;
}

template <class T>
int LargestRow(const Matrix4<T>& map, int column) {
    int best = column;
    for (int r = column + 1; r < 4; ++r)
        if (std::fabs(map.m[r][column]) > std::fabs(map.m[best][column])) best = r;
    return best;
}

/// Gauss and Jordan's elimination, the largest entry of each column as its pivot.
template <class T>
bool InvertAny(Matrix4<T> map, Matrix4<T>& out) {
    for (int column = 0; column < 4; ++column) {
        const int pivotRow = LargestRow(map, column);
        const T pivot = map.m[pivotRow][column];
        if (pivot == 0 || !std::isfinite(pivot)) return false;
        std::swap(map.m[pivotRow], map.m[column]);
        std::swap(out.m[pivotRow], out.m[column]);
        for (int c = 0; c < 4; ++c)
            map.m[column][c] /= pivot, out.m[column][c] /= pivot;
        for (int r = 0; r < 4; ++r) {
            const T factor = map.m[r][column];
            if (r == column || factor == 0) continue;
            for (int c = 0; c < 4; ++c) {
                map.m[r][c] -= factor * map.m[column][c];
                out.m[r][c] -= factor * out.m[column][c];
            }
        }
    }
    return true;
}

}  // namespace

template <class T>
void Matrix4<T>::SetM2(const Matrix4& wanted, const Matrix4& old) {
    Matrix4 inverse;
    const bool moved = !(wanted == old) && old.Invert(inverse);
    if (moved)
        SetMul(inverse, wanted);
    else
        IdentityMatrix();
}

template <class T>
bool Matrix4<T>::Invert(Matrix4& out) const {
    Matrix4 inverse;
    const bool regular = IsAffine(*this) ? InvertAffine(*this, inverse) : InvertAny(*this, inverse);
    out = regular ? inverse : Matrix4();
    return regular;
}

template <class T>
bool Matrix4<T>::AffineDecompose(AffineParts& parts) const {
    parts = AffineParts();
    AffineParts found;
    if (!DecomposeLinear(LinearPart(*this), found)) return false;
    for (std::size_t c = 0; c < 3; ++c)
        found.translation[c] = m[3][c];
    parts = found;
    return true;
}

template class Matrix4<double>;

}  // namespace qn
