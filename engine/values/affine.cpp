#include "engine/values/affine.h"

#include <array>
#include <cmath>

namespace qn {
namespace {

constexpr int kMostIterations = 64;  // both iterations end far earlier: they converge quadratically
constexpr double kConverged = 1e-14;

using Quaternion = std::array<double, 4>;  // x, y, z, w

/// The orthogonal matrix closest to a regular one, by Newton's iteration on the mean of a matrix and its
/// transposed inverse, scaled so that both have the same norm.
bool NearestOrthogonal(const Matrix3& linear, Matrix3& out) noexcept {
    Matrix3 present = linear;
    for (int i = 0; i < kMostIterations; ++i) {
        const double determinant = present.Determinant();
        if (determinant == 0 || !std::isfinite(determinant)) return false;
        const Matrix3 opposite = present.Cofactors().Scaled(1 / determinant);
        const double balance = std::sqrt(opposite.Norm() / present.Norm());
        if (!std::isfinite(balance) || balance == 0) return false;
        Matrix3 next, change;
        for (int r = 0; r < 3; ++r)
            for (int c = 0; c < 3; ++c) {
                next.m[r][c] = 0.5 * (balance * present.m[r][c] + opposite.m[r][c] / balance);
                change.m[r][c] = next.m[r][c] - present.m[r][c];
            }
        present = next;
        if (change.Norm() <= kConverged * present.Norm()) break;
    }
    out = present;
    return true;
}

/// Turns the off-diagonal entry (p, q) of the symmetric matrix to zero and gathers the turn in `axes`
/// (columns).
void JacobiTurn(Matrix3& symmetric, Matrix3& axes, int p, int q) noexcept {
    const double entry = symmetric.m[p][q];
    if (entry == 0) return;
    const double slope = (symmetric.m[q][q] - symmetric.m[p][p]) / (2 * entry);
    const double tangent = (slope < 0 ? -1 : 1) / (std::fabs(slope) + std::hypot(slope, 1.0));
    const double cosine = 1 / std::hypot(tangent, 1.0), sine = tangent * cosine;
    Matrix3 turn;
    turn.m[p][p] = turn.m[q][q] = cosine;
    turn.m[p][q] = sine;
    turn.m[q][p] = -sine;
    symmetric = turn.Transposed() * symmetric * turn;
    symmetric.m[p][q] = symmetric.m[q][p] = 0;
    axes = axes * turn;
}

/// Eigenvectors of a symmetric matrix as the columns of `axes`, its eigenvalues on its diagonal.
void Diagonalize(Matrix3& symmetric, Matrix3& axes) noexcept {
    for (int i = 0; i < kMostIterations; ++i) {
        const double rest = std::hypot(symmetric.m[0][1], symmetric.m[0][2], symmetric.m[1][2]);
        if (rest <= kConverged * symmetric.Norm()) return;
        JacobiTurn(symmetric, axes, 0, 1);
        JacobiTurn(symmetric, axes, 0, 2);
        JacobiTurn(symmetric, axes, 1, 2);
    }
}

/// The quaternion of a rotation whose columns are the turned axes; w is not negative.
Quaternion ToQuaternion(const Matrix3& r) noexcept {
    const double squares[4] = {1 + r.m[0][0] - r.m[1][1] - r.m[2][2], 1 - r.m[0][0] + r.m[1][1] - r.m[2][2],
                               1 - r.m[0][0] - r.m[1][1] + r.m[2][2], 1 + r.m[0][0] + r.m[1][1] + r.m[2][2]};
    int largest = 3;
    for (int i = 0; i < 3; ++i)
        if (squares[i] > squares[largest]) largest = i;
    const double twice = std::sqrt(squares[largest]);  // two times that component
    const double xy = r.m[0][1] + r.m[1][0], xz = r.m[0][2] + r.m[2][0], yz = r.m[1][2] + r.m[2][1];
    const double wx = r.m[2][1] - r.m[1][2], wy = r.m[0][2] - r.m[2][0], wz = r.m[1][0] - r.m[0][1];
    const double rows[4][4] = {{0, xy, xz, wx}, {xy, 0, yz, wy}, {xz, yz, 0, wz}, {wx, wy, wz, 0}};
    Quaternion result;
    for (std::size_t i = 0; i < 4; ++i)
        result[i] = static_cast<int>(i) == largest ? twice / 2 : rows[largest][i] / (2 * twice);
    const double factor = result[3] < 0 ? -1 : 1;
    for (double& part : result)
        part = part * factor + 0.0;
    return result;
}

constexpr int kOrders[6][3] = {{0, 1, 2}, {1, 2, 0}, {2, 0, 1}, {1, 0, 2}, {0, 2, 1}, {2, 1, 0}};

Matrix3 PickColumns(const Matrix3& axes, const int (&order)[3], const int (&signs)[3]) noexcept {
    Matrix3 result;
    for (int c = 0; c < 3; ++c)
        for (int r = 0; r < 3; ++r)
            result.m[r][c] = axes.m[r][order[c]] * signs[c];
    return result;
}

/// Of all orders and directions of the axes that make a rotation, the one that turns least.
void NameAxes(const Matrix3& symmetric, const Matrix3& axes, AffineParts& parts) noexcept {
    double best = -4;
    for (const auto& order : kOrders)
        for (int mask = 0; mask < 8; ++mask) {
            const int signs[3] = {mask & 1 ? -1 : 1, mask & 2 ? -1 : 1, mask & 4 ? -1 : 1};
            const Matrix3 candidate = PickColumns(axes, order, signs);
            const double trace = candidate.m[0][0] + candidate.m[1][1] + candidate.m[2][2];
            if (candidate.Determinant() < 0 || trace <= best) continue;
            best = trace;
            parts.stretchRotation = ToQuaternion(candidate);
            for (std::size_t c = 0; c < 3; ++c)
                parts.scale[c] = symmetric.m[order[c]][order[c]];
        }
}

}  // namespace

bool DecomposeLinear(const Matrix3& linear, AffineParts& parts) noexcept {
    Matrix3 orthogonal;
    if (!NearestOrthogonal(linear, orthogonal)) return false;
    parts.sign = orthogonal.Determinant() < 0 ? -1 : 1;
    const Matrix3 rotation = orthogonal.Scaled(parts.sign);
    // Points are rows, so the stretch stands on the left: linear = stretch * sign * rotation.
    Matrix3 stretch = linear * orthogonal.Transposed();
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < r; ++c)
            stretch.m[r][c] = stretch.m[c][r] = (stretch.m[r][c] + stretch.m[c][r]) / 2;
    parts.rotation = ToQuaternion(rotation.Transposed());
    Matrix3 axes;
    Diagonalize(stretch, axes);
    NameAxes(stretch, axes, parts);
    return true;
}

}  // namespace qn
