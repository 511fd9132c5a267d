#include "exporters/gltf/place.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace qn::gltf_export {
namespace {

using Matrix = Matrix4<double>;

Matrix Linear(std::array<double, 9> rows) {
    Matrix matrix;
    for (std::size_t i = 0; i < 9; ++i)
        matrix.m[i / 3][i % 3] = rows[i];
    return matrix;
}

Matrix Turn(const Quaternion& q) {
    const auto [x, y, z, w] = q;
    return Linear({1 - 2 * (y * y + z * z), 2 * (x * y + z * w), 2 * (x * z - y * w),  //
                   2 * (x * y - z * w), 1 - 2 * (x * x + z * z), 2 * (y * z + x * w),  //
                   2 * (x * z + y * w), 2 * (y * z - x * w), 1 - 2 * (x * x + y * y)});
}

Matrix Together(const PlaceParts& parts) {
    Matrix result = Turn(parts.inner);
    result.SetMul(result, Linear({parts.scale[0], 0, 0, 0, parts.scale[1], 0, 0, 0, parts.scale[2]}));
    result.SetMul(result, Turn(parts.rotation));
    const auto [x, y, z] = parts.translation;
    result.SetMul(result, Matrix::Translation(x, y, z));
    return result;
}

double LengthOf(const Quaternion& q) {
    return std::hypot(std::hypot(q[0], q[1]), std::hypot(q[2], q[3]));
}

const Matrix kTurned = Turn({0.5, 0.5, 0.5, 0.5});
const Matrix kAskew = Turn({0.18257418583505536, 0.3651483716701107, 0.5477225575051661, 0.7302967433402214});

Matrix Scaled(const Matrix& matrix, double factor) {
    Matrix result;
    result.SetMul(Linear({factor, 0, 0, 0, factor, 0, 0, 0, factor}), matrix);
    return result;
}

TEST(Place, TheIdentityNeedsNoWords) {
    EXPECT_EQ(PlaceOf(Matrix()).form, PlaceForm::kNothing);
}

TEST(Place, TurnsMovesScalesAndMirrorsStayMatrices) {
    const Matrix plain[] = {kTurned,
                            kAskew,
                            Matrix::Translation(1e6, 2, -3),
                            Scaled(kAskew, 25.4),
                            Linear({-1, 0, 0, 0, 1, 0, 0, 0, 1}),
                            Linear({2, 0, 0, 0, 0.5, 0, 0, 0, 20})};
    for (const Matrix& matrix : plain)
        EXPECT_EQ(PlaceOf(matrix).form, PlaceForm::kMatrix);
}

TEST(Place, WhatSinglePrecisionTakesForShearGetsParts) {
    const Matrix matrices[] = {Scaled(kAskew, 1e4), Scaled(kAskew, 1e-8)};
    for (const Matrix& matrix : matrices) {
        const Place place = PlaceOf(matrix);
        ASSERT_EQ(place.form, PlaceForm::kParts);
        const PlaceParts parts = PartsOf(place);
        EXPECT_EQ(parts.inner, (Quaternion{0, 0, 0, 1}));
        EXPECT_TRUE(Together(parts).Equal(matrix, 1e-11 * std::abs(parts.scale[0])));
    }
}

TEST(Place, ShearedAndSingularMapsGetTwoNodes) {
    const Matrix matrices[] = {
        Linear({1, 0, 0, 0.5, 1, 0, 0, 0, 1}),  // sheared
        Linear({1, 2, 3, 4, 5, 6, 7, 8, 10}),   // anything
        Linear({-1, 2, 3, 4, 5, 6, 7, 8, 10}),  // and its mirror image
        Linear({1, 0, 0, 0, 1, 0, 0, 0, 0}),    // flat
        Linear({1, 2, 3, 2, 4, 6, 1, 0, 0}),    // flat and askew
        Linear({1, 2, 3, 2, 4, 6, 3, 6, 9}),    // a line
        Linear({0, 0, 0, 0, 0, 0, 0, 0, 0}),    // a point
        Linear({1e-3, 0, 0, 2e-3, 1e-3, 0, 0, 0, 1e-3}),
    };
    for (const Matrix& matrix : matrices) {
        const Place place = PlaceOf(matrix);
        ASSERT_EQ(place.form, PlaceForm::kTwo);
        const PlaceParts parts = PartsOf(place);
        EXPECT_TRUE(Together(parts).Equal(matrix, 1e-12 * 20));
        EXPECT_NEAR(LengthOf(parts.rotation), 1, 1e-12);
        EXPECT_NEAR(LengthOf(parts.inner), 1, 1e-12);
    }
}

TEST(Place, MovesAlongWithTheParts) {
    Matrix sheared = Linear({1, 0, 0, 0.5, 1, 0, 0, 0, 1});
    sheared.m[3][0] = 7, sheared.m[3][1] = -8, sheared.m[3][2] = 9;
    EXPECT_EQ(PartsOf(PlaceOf(sheared)).translation, (std::array<double, 3>{7, -8, 9}));
}

TEST(Place, RefusesWhatIsNotFiniteOrNotAffine) {
    EXPECT_TRUE(IsWritablePlace(kTurned));
    Matrix wrong = kTurned;
    wrong.m[1][1] = std::nan("");
    EXPECT_FALSE(IsWritablePlace(wrong));
    wrong.m[1][1] = std::numeric_limits<double>::infinity();
    EXPECT_FALSE(IsWritablePlace(wrong));
    wrong = kTurned;
    wrong.m[0][3] = 0.1;
    EXPECT_FALSE(IsWritablePlace(wrong));
    wrong = kTurned;
    wrong.m[3][3] = 2;
    EXPECT_FALSE(IsWritablePlace(wrong));
}

}  // namespace
}  // namespace qn::gltf_export
