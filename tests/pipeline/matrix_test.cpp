#include "math3d/full_width.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using test::anyAngle;
using test::anyFloat;
using test::anyPoint;
using test::callAtAnyPrecision;
using test::Case;
using test::forEachCase;
using test::Real;

void expectEqualMatrices(Case &c, const _I3DMATRIX &result, const _I3DMATRIX &expected) {
    for (int i = 0; i < 16; ++i)
        c.expectEqual(result.m[i], expected.m[i]);
}

_I3DMATRIX anyMatrix(test::Random &random) {
    _I3DMATRIX matrix;
    for (float &element : matrix.m)
        element = anyFloat(random);
    return matrix;
}

_I3DMATRIX naiveProduct(const _I3DMATRIX &a, const _I3DMATRIX &b) {
    return qmur::atFullWidth([&] {
        _I3DMATRIX out;
        for (int i = 0; i < 16; ++i) {
            Real sum = 0;
            for (int k = 0; k < 4; ++k)
                sum = sum + static_cast<Real>(a.m[i / 4 * 4 + k]) * static_cast<Real>(b.m[k * 4 + i % 4]);
            out.m[i] = static_cast<float>(sum);
        }
        return out;
    });
}

TEST(SetIdentityMatrix, sets_all_16_elements) {
    _I3DMATRIX matrix;
    for (float &element : matrix.m)
        element = 7;
    SetIdentityMatrix(matrix);
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(matrix.m[i], i % 5 == 0 ? 1 : 0);
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

TEST(SetRotationMatrix, agrees_with_the_written_out_elements) {
    forEachCase("SetRotationMatrix", [](Case &c) {
        const _POINT3DFLOAT p = c.random.oneIn(16) ? _POINT3DFLOAT{} : anyPoint(c.random);
        _I3DVECTOR axis = {p.x, p.y, p.z, 0};
        const float radians = anyAngle(c.random);
        const _I3DVECTOR unit = Normalize(axis);
        const _I3DMATRIX expected = qmur::atFullWidth([=] {
            const auto angle = qmur::sineCosine(radians);
            const auto cosine = static_cast<float>(angle.cosine);
            const Real s = static_cast<float>(angle.sine);
            const Real n = cosine;
            const Real t = 1.0F - cosine;
            const Real x = unit.x;
            const Real y = unit.y;
            const Real z = unit.z;
            const Real m[16] = {t * x * x + n,
                                t * x * y + s * z,
                                t * x * z - s * y,
                                0,
                                t * x * y - s * z,
                                t * y * y + n,
                                t * y * z + s * x,
                                0,
                                t * x * z + s * y,
                                t * y * z - s * x,
                                t * z * z + n,
                                0,
                                0,
                                0,
                                0,
                                1};
            _I3DMATRIX matrix;
            for (int i = 0; i < 16; ++i)
                matrix.m[i] = static_cast<float>(m[i]);
            return matrix;
        });
        _I3DMATRIX result;
        callAtAnyPrecision(c, [&] { SetRotationMatrix(result, axis, radians); });
        expectEqualMatrices(c, result, expected);
    });
}

TEST(MatrixMultiply, agrees_with_naive_sums) {
    forEachCase(
        "MatrixMultiply",
        [](Case &c) {
            _I3DMATRIX a = anyMatrix(c.random);
            _I3DMATRIX b = anyMatrix(c.random);
            _I3DMATRIX result;
            callAtAnyPrecision(c, [&] { MatrixMultiply(result, a, b); });
            expectEqualMatrices(c, result, naiveProduct(a, b));
        },
        10000);
}

} // namespace
