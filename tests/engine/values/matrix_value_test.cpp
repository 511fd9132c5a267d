#include "frame/host/matrix.h"
#include "frame/host/var.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using namespace qn;
using Matrix = Matrix4<double>;

/// The same bits, not only the same numbers.
void ExpectKept(const Matrix& matrix) {
    const Var value(matrix);
    Matrix kept;
    ASSERT_TRUE(value.copy_to(kept));
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c) {
            EXPECT_EQ(std::isnan(kept.m[r][c]), std::isnan(matrix.m[r][c]));
            EXPECT_EQ(std::signbit(kept.m[r][c]), std::signbit(matrix.m[r][c])) << r << ", " << c;
            if (!std::isnan(matrix.m[r][c])) {
                EXPECT_EQ(kept.m[r][c], matrix.m[r][c]) << r << ", " << c;
            }
        }
}

TEST(MatrixValue, KeepsEveryMatrixAsItIs) {
    ExpectKept(Matrix());
    ExpectKept(Matrix::Translation(1.5, -2, 1e300));
    Matrix full;
    for (int i = 0; i < 16; ++i)
        full.m[i / 4][i % 4] = i * 0.5 - 3;
    ExpectKept(full);
}

TEST(MatrixValue, KeepsTheSignOfZerosAndWhatIsNoNumber) {
    ExpectKept(Matrix::Translation(-0.0, 0.0, std::numeric_limits<double>::quiet_NaN()));
    Matrix signed_;
    signed_.m[0][1] = -0.0;
    ExpectKept(signed_);
}

TEST(MatrixValue, EqualsWhateverItIsMadeFrom) {
    Matrix zeroWithSign = Matrix::Translation(1, 2, 3);
    zeroWithSign.m[0][1] = -0.0;
    const Var plain(Matrix::Translation(1, 2, 3)), other(zeroWithSign);
    EXPECT_EQ(plain, other);
    EXPECT_EQ(plain.Hash(), other.Hash());
    EXPECT_LT(plain, Var(Matrix::Translation(1, 2, 4)));
    const Var copy(plain);
    EXPECT_EQ(copy, plain);
}

}  // namespace
