#include "points.h"

#include <gtest/gtest.h>

namespace {

using test::Ints;
using test::xyz;

TEST(iMean2Vector, rounds_toward_minus_infinity_where_the_float_form_does_not_round) {
    _POINT3D a = {-1, -3, 3, 0};
    _POINT3D b = {0, 0, 0, 0};
    EXPECT_EQ(xyz(iMean2Vector(&a, &b)), (Ints{-1, -2, 1}));
    EXPECT_EQ(xyz(iMean4Vector(&a, &b, &b, &b)), (Ints{-1, -1, 0}));
    _POINT3DFLOAT fa = {-1, -3, 3, 0};
    _POINT3DFLOAT fb = {0, 0, 0, 0};
    EXPECT_EQ(fMean2Vector(&fa, &fb).x, -0.5F);
    EXPECT_EQ(fMean4Vector(&fa, &fb, &fb, &fb).y, -0.75F);
}

TEST(fMean4Vector, the_sum_is_not_rounded_before_it_is_divided) {
    _POINT3DFLOAT large = {0x1p24F, 0, 0, 0};
    _POINT3DFLOAT negative = {-0x1p24F, 0, 0, 0};
    _POINT3DFLOAT one = {1, 0, 0, 0};
    EXPECT_EQ(fMean4Vector(&large, &one, &negative, &one).x, 0.5F);
}

} // namespace
