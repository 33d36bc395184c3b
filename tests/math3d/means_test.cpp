#include <q_Mur.h>

#include <gtest/gtest.h>

namespace {

TEST(iMean2Vector, rounds_toward_minus_infinity_where_the_float_form_does_not_round) {
    _POINT3D a = {-1, -3, 3, 0};
    _POINT3D b = {0, 0, 0, 0};
    const _POINT3D mean = iMean2Vector(&a, &b);
    EXPECT_EQ(mean.x, -1);
    EXPECT_EQ(mean.y, -2);
    EXPECT_EQ(mean.z, 1);
    const _POINT3D quarter = iMean4Vector(&a, &b, &b, &b);
    EXPECT_EQ(quarter.x, -1);
    EXPECT_EQ(quarter.y, -1);
    EXPECT_EQ(quarter.z, 0);
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
