#include "exporters/gltf/place.h"

#include "engine/values/vector3.h"

#include <algorithm>
#include <cmath>

namespace qn::gltf_export {
namespace {

using Vector = Vector3;
using Rows = std::array<Vector, 3>;

/// Cosine up to which two axes count as square to each other.
constexpr double kSquareCosine = 1e-5;
/// The same as a length, for readers that compare with fixed bounds in single precision.
constexpr double kSquareLength = 5e-6;
/// Lengths of axes that such readers take apart well.
constexpr double kShortestAxis = 1e-6, kLongestAxis = 100;
/// Below this share of the longest axis another one counts as none.
constexpr double kVanishing = 1e-14;
constexpr int kMostSweeps = 60;

double Length(const Vector& a) {
    return std::hypot(a[0], a[1], a[2]);
}

/// Images of the axes.
Rows AxesOf(const Matrix4<double>& matrix) {
    Rows rows;
    for (std::size_t r = 0; r < 3; ++r)
        for (std::size_t c = 0; c < 3; ++c)
            rows[r][c] = matrix.m[r][c];
    return rows;
}

constexpr std::array<std::array<std::size_t, 2>, 3> kPairs{{{0, 1}, {0, 2}, {1, 2}}};

struct Shape {
    bool isSquare = true;  ///< the axes stand square to each other
    bool isPlain = true;   ///< and so do they in single precision
};

Shape ShapeOf(const Rows& axes) {
    Shape shape;
    for (const Vector& axis : axes) {
        const double length = Length(axis);
        if (!(length > 0)) shape.isSquare = false;
        if (length < kShortestAxis || length > kLongestAxis) shape.isPlain = false;
    }
    for (const auto& [a, b] : kPairs) {
        const double overlap = std::abs(Dot(axes[a], axes[b]));
        const double first = Length(axes[a]), second = Length(axes[b]);
        if (!(overlap <= kSquareCosine * first * second)) shape.isSquare = false;
        if (!(overlap <= kSquareLength * std::min(first, second))) shape.isPlain = false;
    }
    shape.isPlain = shape.isPlain && shape.isSquare;
    return shape;
}

/// Of the rotation that takes the axes to these rows, which are of unit length and square.
Quaternion QuaternionOf(const Rows& r) {
    const double trace = r[0][0] + r[1][1] + r[2][2];
    Quaternion q;
    if (trace > 0) {
        const double s = 2 * std::sqrt(trace + 1);
        q = {(r[1][2] - r[2][1]) / s, (r[2][0] - r[0][2]) / s, (r[0][1] - r[1][0]) / s, s / 4};
    } else {
        const std::size_t i =
            r[0][0] >= r[1][1] ? (r[0][0] >= r[2][2] ? 0 : 2) : (r[1][1] >= r[2][2] ? 1 : 2);
        const std::size_t j = (i + 1) % 3, k = (i + 2) % 3;
        const double s = 2 * std::sqrt(std::max(0.0, 1 + r[i][i] - r[j][j] - r[k][k]));
        q[i] = s / 4;
        q[j] = (r[i][j] + r[j][i]) / s;
        q[k] = (r[i][k] + r[k][i]) / s;
        q[3] = (r[j][k] - r[k][j]) / s;
    }
    const double length = std::hypot(std::hypot(q[0], q[1]), std::hypot(q[2], q[3]));
    for (double& number : q)
        number /= length;
    return q;
}

/// Any unit vector square to `axis`, which is one.
Vector AnySquareTo(const Vector& axis) {
    const bool alongX = std::abs(axis[0]) > 0.5;
    const Vector made = Cross(axis, alongX ? Vector{0, 1, 0} : Vector{1, 0, 0});
    return Scaled(made, 1 / Length(made));
}

/// Makes unit vectors of the rows in place, gives their lengths. Rows that vanish are completed to a
/// right-handed set; a left-handed one gets one row and its length turned round.
Vector Normalise(Rows& rows) {
    Vector lengths{Length(rows[0]), Length(rows[1]), Length(rows[2])};
    const double longest = *std::max_element(lengths.begin(), lengths.end());
    std::array<bool, 3> isThere{};
    for (std::size_t i = 0; i < 3; ++i) {
        isThere[i] = lengths[i] > 0 && lengths[i] > kVanishing * longest;
        if (isThere[i])
            rows[i] = Scaled(rows[i], 1 / lengths[i]);
        else
            lengths[i] = 0;
    }
    const auto there = std::count(isThere.begin(), isThere.end(), true);
    if (there == 0) rows = {Vector{1, 0, 0}, Vector{0, 1, 0}, Vector{0, 0, 1}};
    for (std::size_t i = 0; i < 3 && there == 1; ++i)
        if (isThere[i]) {
            rows[(i + 1) % 3] = AnySquareTo(rows[i]);
            rows[(i + 2) % 3] = Cross(rows[i], rows[(i + 1) % 3]);
        }
    for (std::size_t i = 0; i < 3 && there == 2; ++i)
        if (!isThere[i]) rows[i] = Cross(rows[(i + 1) % 3], rows[(i + 2) % 3]);
    if (Dot(Cross(rows[0], rows[1]), rows[2]) < 0) {
        rows[0] = Scaled(rows[0], -1);
        lengths[0] = -lengths[0];
    }
    return lengths;
}

/// Turns pairs of columns of `rows` until all columns stand square to each other; `turns` gathers the
/// rotation, so that rows = original * turns.
void SquareColumns(Rows& rows, Rows& turns) {
    for (int sweep = 0; sweep < kMostSweeps; ++sweep) {
        bool isDone = true;
        for (const auto& [a, b] : kPairs) {
            double aa = 0, bb = 0, ab = 0;
            for (const Vector& row : rows)
                aa += row[a] * row[a], bb += row[b] * row[b], ab += row[a] * row[b];
            if (std::abs(ab) <= 1e-16 * std::sqrt(aa * bb)) continue;
            isDone = false;
            const double zeta = (bb - aa) / (2 * ab);
            const double tangent = (zeta >= 0 ? 1 : -1) / (std::abs(zeta) + std::hypot(1, zeta));
            const double cosine = 1 / std::hypot(1, tangent), sine = cosine * tangent;
            const auto turn = [&, first = a, second = b](Rows& target) {
                for (Vector& row : target) {
                    const double x = row[first], y = row[second];
                    row[first] = cosine * x - sine * y;
                    row[second] = sine * x + cosine * y;
                }
            };
            turn(rows), turn(turns);
        }
        if (isDone) return;
    }
}

Rows Transposed(const Rows& rows) {
    Rows result;
    for (std::size_t r = 0; r < 3; ++r)
        for (std::size_t c = 0; c < 3; ++c)
            result[c][r] = rows[r][c];
    return result;
}

/// A point p becomes p * axes. With axes = inner * scale * rotation (rows): the transposed axes are taken
/// apart.
void TakeApart(const Rows& axes, PlaceParts& parts) {
    Rows squared = Transposed(axes);  // acts on columns: rotation^T * scale * inner^T
    Rows turns{Vector{1, 0, 0}, Vector{0, 1, 0}, Vector{0, 0, 1}};
    SquareColumns(squared, turns);
    Rows images = Transposed(squared);  // rows: scale * rotation
    parts.scale = Normalise(images);
    parts.rotation = QuaternionOf(images);
    // squared = axes^T * turns, so axes = turns * squared^T = turns * scale * rotation.
    parts.inner = QuaternionOf(turns);
}

}  // namespace

bool IsWritablePlace(const Matrix4<double>& matrix) {
    for (const auto& row : matrix.m)
        if (!std::all_of(std::begin(row), std::end(row), [](double number) { return std::isfinite(number); }))
            return false;
    return matrix.m[0][3] == 0 && matrix.m[1][3] == 0 && matrix.m[2][3] == 0 && matrix.m[3][3] == 1;
}

Place PlaceOf(const Matrix4<double>& matrix) {
    Place place{PlaceForm::kMatrix, matrix};
    if (matrix == Matrix4<double>()) {
        place.form = PlaceForm::kNothing;
        return place;
    }
    const Shape shape = ShapeOf(AxesOf(matrix));
    if (!shape.isPlain) place.form = shape.isSquare ? PlaceForm::kParts : PlaceForm::kTwo;
    return place;
}

PlaceParts PartsOf(const Place& place) {
    PlaceParts parts;
    parts.translation = {place.matrix.m[3][0], place.matrix.m[3][1], place.matrix.m[3][2]};
    Rows axes = AxesOf(place.matrix);
    if (place.form == PlaceForm::kTwo) {
        TakeApart(axes, parts);
    } else {
        parts.scale = Normalise(axes);
        parts.rotation = QuaternionOf(axes);
    }
    return parts;
}

}  // namespace qn::gltf_export
