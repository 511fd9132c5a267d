#include "frame/host/matrix.h"

#include <gtest/gtest.h>
#include <cmath>
#include <limits>
#include <random>

namespace qn {
namespace {

using Matrix = Matrix4<double>;
constexpr double kClose = 1e-9;

Matrix Scaling(double x, double y, double z) {
    Matrix result;
    result.m[0][0] = x, result.m[1][1] = y, result.m[2][2] = z;
    return result;
}

/// Turns about z, x towards y.
Matrix TurnZ(double angle) {
    Matrix result;
    result.m[0][0] = result.m[1][1] = std::cos(angle);
    result.m[0][1] = std::sin(angle);
    result.m[1][0] = -std::sin(angle);
    return result;
}

Matrix Product(const Matrix& first, const Matrix& second) {
    Matrix result;
    result.SetMul(first, second);
    return result;
}

/// The map of a quaternion q: a point p becomes q p q*.
Matrix FromQuaternion(const std::array<double, 4>& q) {
    const double x = q[0], y = q[1], z = q[2], w = q[3];
    Matrix result;
    const double rows[3][3] = {{1 - 2 * (y * y + z * z), 2 * (x * y + z * w), 2 * (x * z - y * w)},
                               {2 * (x * y - z * w), 1 - 2 * (x * x + z * z), 2 * (y * z + x * w)},
                               {2 * (x * z + y * w), 2 * (y * z - x * w), 1 - 2 * (x * x + y * y)}};
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c)
            result.m[r][c] = rows[r][c];
    return result;
}

Matrix Inverse(const Matrix& map) {
    Matrix result;
    EXPECT_TRUE(map.Invert(result));
    return result;
}

/// Stretch, then turn, then mirror, then move.
Matrix Composed(const AffineParts& parts) {
    const Matrix axes = FromQuaternion(parts.stretchRotation);
    Matrix result = Product(Inverse(axes), Scaling(parts.scale[0], parts.scale[1], parts.scale[2]));
    result = Product(Product(result, axes), FromQuaternion(parts.rotation));
    result = Product(result, Scaling(parts.sign, parts.sign, parts.sign));
    return Product(result,
                   Matrix::Translation(parts.translation[0], parts.translation[1], parts.translation[2]));
}

TEST(Matrix, AppliesTheFirstFactorFirst) {
    const Matrix both = Product(Matrix::Translation(1, 0, 0), Scaling(2, 2, 2));
    EXPECT_EQ(both.m[3][0], 2);
    const Matrix other = Product(Scaling(2, 2, 2), Matrix::Translation(1, 0, 0));
    EXPECT_EQ(other.m[3][0], 1);
}

TEST(Matrix, MayBeAFactorOfItself) {
    Matrix map = Matrix::Translation(1, 2, 3);
    map.SetMul(map, map);
    EXPECT_EQ(map, Matrix::Translation(2, 4, 6));
}

TEST(Matrix, ComparesWithinTheToleranceAndExactlyForZero) {
    Matrix map;
    EXPECT_TRUE(map.IsIdentity(0.0));
    map.m[0][1] = 1e-12;
    EXPECT_FALSE(map.IsIdentity(0.0));
    EXPECT_TRUE(map.IsIdentity(1e-11));
    EXPECT_TRUE(map.Equal<double>(map, 0.0));
    map.m[0][1] = std::numeric_limits<double>::quiet_NaN();
    EXPECT_FALSE(map.IsIdentity(1));
}

TEST(Matrix, InvertsMovesExactly) {
    EXPECT_EQ(Inverse(Matrix::Translation(1, -2, 0.1)), Matrix::Translation(-1, 2, -0.1));
    EXPECT_EQ(Inverse(Matrix()), Matrix());
}

TEST(Matrix, InvertsAnyRegularMap) {
    std::mt19937 random(3);
    std::uniform_real_distribution<double> entry(-2, 2);
    for (int i = 0; i < 200; ++i) {
        Matrix map;
        for (auto& row : map.m)
            for (double& value : row)
                value = entry(random);
        if (i % 2)
            for (int r = 0; r < 4; ++r)
                map.m[r][3] = r == 3;
        Matrix inverse;
        if (!map.Invert(inverse)) continue;
        EXPECT_TRUE(Product(map, inverse).IsIdentity(1e-6));
    }
}

TEST(Matrix, GivesTheIdentityForTheInverseOfASingularMap) {
    Matrix out = Matrix::Translation(1, 1, 1);
    EXPECT_FALSE(Scaling(1, 0, 1).Invert(out));
    EXPECT_EQ(out, Matrix());
    Matrix projective;
    projective.m[0][3] = 1, projective.m[2][2] = 0, projective.m[3][3] = 1;
    EXPECT_FALSE(projective.Invert(out));
    EXPECT_EQ(out, Matrix());
}

TEST(Matrix, DeltaAfterTheOldMapGivesTheNewOne) {
    const Matrix old = Product(TurnZ(0.3), Matrix::Translation(1, 2, 3));
    const Matrix wanted = Product(Scaling(1, 2, 3), Matrix::Translation(-4, 0, 2));
    Matrix delta;
    delta.SetM2(wanted, old);
    EXPECT_TRUE(Product(old, delta).Equal(wanted, kClose));
}

TEST(Matrix, DeltaBetweenEqualMapsIsTheIdentityExactly) {
    const Matrix map = Product(TurnZ(0.3), Matrix::Translation(0.1, 0.2, 0.3));
    Matrix delta = Scaling(5, 5, 5);
    delta.SetM2(map, map);
    EXPECT_TRUE(delta.IsIdentity(0.0));
}

TEST(Matrix, DeltaFromASingularMapIsTheIdentity) {
    Matrix delta = Scaling(5, 5, 5);
    delta.SetM2(Matrix::Translation(1, 2, 3), Scaling(0, 1, 1));
    EXPECT_EQ(delta, Matrix());
}

TEST(Matrix, DeltaMayReplaceOneOfItsArguments) {
    Matrix map = Matrix::Translation(1, 0, 0);
    map.SetM2(map, Matrix::Translation(0, 1, 0));
    EXPECT_EQ(map, Matrix::Translation(1, -1, 0));
}

TEST(AffineParts, OfTheIdentityAreTheIdentity) {
    AffineParts parts;
    parts.sign = 5, parts.scale = {7, 7, 7};
    ASSERT_TRUE(Matrix().AffineDecompose(parts));
    EXPECT_EQ(parts.translation, (std::array<double, 3>{0, 0, 0}));
    EXPECT_EQ(parts.rotation, (std::array<double, 4>{0, 0, 0, 1}));
    EXPECT_EQ(parts.stretchRotation, (std::array<double, 4>{0, 0, 0, 1}));
    EXPECT_EQ(parts.scale, (std::array<double, 3>{1, 1, 1}));
    EXPECT_EQ(parts.sign, 1);
}

TEST(AffineParts, TellTurnScaleAndMoveApart) {
    AffineParts parts;
    const Matrix map = Product(Product(Scaling(2, 3, 4), TurnZ(0.5)), Matrix::Translation(7, 8, 9));
    ASSERT_TRUE(map.AffineDecompose(parts));
    EXPECT_EQ(parts.translation, (std::array<double, 3>{7, 8, 9}));
    EXPECT_NEAR(parts.rotation[2], std::sin(0.25), kClose);
    EXPECT_NEAR(parts.rotation[3], std::cos(0.25), kClose);
    EXPECT_NEAR(parts.scale[0], 2, kClose);
    EXPECT_NEAR(parts.scale[1], 3, kClose);
    EXPECT_NEAR(parts.scale[2], 4, kClose);
    EXPECT_NEAR(parts.stretchRotation[3], 1, kClose);
}

TEST(AffineParts, ShowAMirrorImageInTheSign) {
    AffineParts parts;
    ASSERT_TRUE(Scaling(-1, 1, 1).AffineDecompose(parts));
    EXPECT_EQ(parts.sign, -1);
    EXPECT_NEAR(parts.scale[0] * parts.scale[1] * parts.scale[2], 1, kClose);
    EXPECT_TRUE(Composed(parts).Equal(Scaling(-1, 1, 1), kClose));
}

TEST(AffineParts, StayTheIdentityForASingularMap) {
    AffineParts parts;
    parts.scale = {7, 7, 7};
    EXPECT_FALSE(Product(Scaling(0, 1, 1), Matrix::Translation(1, 2, 3)).AffineDecompose(parts));
    EXPECT_EQ(parts.translation, (std::array<double, 3>{0, 0, 0}));
    EXPECT_EQ(parts.scale, (std::array<double, 3>{1, 1, 1}));
}

TEST(AffineParts, ComposeToTheMapForRandomMaps) {
    std::mt19937 random(4);
    std::uniform_real_distribution<double> entry(-3, 3);
    for (int i = 0; i < 500; ++i) {
        Matrix map;
        for (int r = 0; r < 4; ++r)
            for (int c = 0; c < 3; ++c)
                map.m[r][c] = entry(random);
        AffineParts parts;
        ASSERT_TRUE(map.AffineDecompose(parts));
        EXPECT_TRUE(Composed(parts).Equal(map, 1e-7)) << i;
        for (const double scale : parts.scale)
            EXPECT_GT(scale, 0);
    }
}

TEST(AffineParts, OfAPureTurnHaveNoStretch) {
    std::mt19937 random(5);
    std::normal_distribution<double> part;
    for (int i = 0; i < 200; ++i) {
        std::array<double, 4> q{part(random), part(random), part(random), part(random)};
        const double norm = std::sqrt(q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3]);
        for (double& value : q)
            value /= q[3] < 0 ? -norm : norm;
        if (q[3] < 0)
            for (double& value : q)
                value = -value;
        AffineParts parts;
        ASSERT_TRUE(FromQuaternion(q).AffineDecompose(parts));
        for (std::size_t k = 0; k < 3; ++k)
            EXPECT_NEAR(parts.scale[k], 1, kClose);
        EXPECT_NEAR(parts.stretchRotation[3], 1, kClose) << i;
        EXPECT_TRUE(FromQuaternion(parts.rotation).Equal(FromQuaternion(q), kClose));
    }
}

}  // namespace
}  // namespace qn
