#include "importers/step/step_transform.h"

#include <cmath>

namespace qn::step {
namespace {

double At(const Transform& m, int row, int column) {
    return m[static_cast<std::size_t>(row * 4 + column)];
}
double& At(Transform& m, int row, int column) {
    return m[static_cast<std::size_t>(row * 4 + column)];
}

bool IsOrthonormal(const Transform& m) {
    constexpr double kTolerance = 1e-12;
    for (int a = 0; a < 3; ++a)
        for (int b = a; b < 3; ++b) {
            double product = 0;
            for (int k = 0; k < 3; ++k)
                product += At(m, a, k) * At(m, b, k);
            if (std::abs(product - (a == b ? 1 : 0)) > kTolerance) return false;
        }
    return true;
}

double Cofactor(const Transform& m, int row, int column) {
    const int r1 = (row + 1) % 3;
    const int r2 = (row + 2) % 3;
    const int c1 = (column + 1) % 3;
    const int c2 = (column + 2) % 3;
    return At(m, r1, c1) * At(m, r2, c2) - At(m, r1, c2) * At(m, r2, c1);
}

}  // namespace

Transform Then(const Transform& first, const Transform& second) {
    Transform result{};
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 4; ++column) {
            double sum = 0;
            for (int k = 0; k < 4; ++k)
                sum += At(first, row, k) * At(second, k, column);
            At(result, row, column) = sum;
        }
    return result;
}

Transform Inverse(const Transform& transform) {
    Transform result = kIdentity;
    const bool isRotation = IsOrthonormal(transform);
    double determinant = 0;
    for (int k = 0; k < 3; ++k)
        determinant += At(transform, 0, k) * Cofactor(transform, 0, k);
    if (!isRotation && (determinant == 0 || !std::isfinite(determinant))) return kIdentity;
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            At(result, row, column) =
                isRotation ? At(transform, column, row) : Cofactor(transform, column, row) / determinant;
    for (int column = 0; column < 3; ++column) {
        double moved = 0;
        for (int k = 0; k < 3; ++k)
            moved -= At(transform, 3, k) * At(result, k, column);
        At(result, 3, column) = moved;
    }
    return result;
}

}  // namespace qn::step
