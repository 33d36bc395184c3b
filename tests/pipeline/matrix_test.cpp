#include "support/random.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

_I3DMATRIX anyMatrix(test::Random &random) {
    _I3DMATRIX matrix;
    for (float &element : matrix.m)
        element = random.real();
    return matrix;
}

TEST(SetRotationMatrix, a_quarter_turn_about_Z_takes_X_toward_minus_Y) {
    _I3DMATRIX matrix;
    _I3DVECTOR axis = {0, 0, 17, 0};
    SetRotationMatrix(matrix, axis, 1.5707964F);
    const float expected[16] = {0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    for (int i = 0; i < 16; ++i)
        EXPECT_NEAR(matrix.m[i], expected[i], 1e-6) << i;
    EXPECT_EQ(axis.z, 17) << "the axis is left alone";
}

TEST(SetRotationMatrix, an_axis_without_length_scales_by_the_cosine) {
    _I3DMATRIX matrix;
    _I3DVECTOR axis = {0, 0, 0, 0};
    SetRotationMatrix(matrix, axis, 1);
    const float cosine = std::cos(1.0F);
    for (int i = 0; i < 15; ++i)
        EXPECT_NEAR(matrix.m[i], i % 5 == 0 ? cosine : 0, 1e-7) << i;
    EXPECT_EQ(matrix.m[15], 1);
}

TEST(MatrixMultiply, the_result_may_be_an_operand) {
    test::Random random(1);
    _I3DMATRIX a = anyMatrix(random);
    _I3DMATRIX b = anyMatrix(random);
    _I3DMATRIX product;
    MatrixMultiply(product, a, b);
    _I3DMATRIX left = a;
    MatrixMultiply(left, left, b);
    _I3DMATRIX right = b;
    MatrixMultiply(right, a, right);
    _I3DMATRIX square = a;
    MatrixMultiply(square, square, square);
    _I3DMATRIX expectedSquare;
    MatrixMultiply(expectedSquare, a, a);
    for (int i = 0; i < 16; ++i) {
        EXPECT_EQ(left.m[i], product.m[i]);
        EXPECT_EQ(right.m[i], product.m[i]);
        EXPECT_EQ(square.m[i], expectedSquare.m[i]);
    }
}

TEST(MatrixMultiply, sums_are_rounded_once) {
    _I3DMATRIX a = {};
    _I3DMATRIX b = {};
    a.m[0] = 0x1p24F;
    a.m[1] = 1;
    a.m[2] = -0x1p24F;
    b.m[0] = b.m[4] = b.m[8] = 1;
    _I3DMATRIX out;
    MatrixMultiply(out, a, b);
    EXPECT_EQ(out.m[0], 1);
}

} // namespace
