#include "points.h"

#include <gtest/gtest.h>

namespace {

using test::Floats;
using test::Ints;
using test::xyz;

Ints normalOf(_POINT3D p1, _POINT3D p2, _POINT3D p3) {
    _POINT3D out = {99, 99, 99, 42};
    iBubSun(&out, &p1, &p2, &p3);
    EXPECT_EQ(out.w, 42);
    return xyz(out);
}

Floats normalOf(_POINT3DFLOAT p1, _POINT3DFLOAT p2, _POINT3DFLOAT p3) {
    _POINT3DFLOAT out = {99, 99, 99, 42};
    fBubSun(&out, &p1, &p2, &p3);
    EXPECT_EQ(out.w, 42);
    return xyz(out);
}

bool isFront(_POINT3DFLOAT p1, _POINT3DFLOAT p2, _POINT3DFLOAT p3) {
    return IsFront(&p1, &p2, &p3);
}

TEST(fBubSun, points_the_other_way_than_the_integer_form) {
    EXPECT_EQ(normalOf(_POINT3DFLOAT{0, 0, 0, 0}, {10, 0, 0, 0}, {0, 10, 0, 0}), (Floats{0, 0, 1}));
    for (const int side : {1, 10})
        EXPECT_EQ(normalOf(_POINT3D{0, 0, 0, 0}, {side, 0, 0, 0}, {0, side, 0, 0}), (Ints{0, 0, -256}));
}

TEST(fBubSun, points_on_one_line_have_no_normal) {
    EXPECT_EQ(normalOf(_POINT3DFLOAT{1, 2, 3, 0}, {2, 4, 6, 0}, {3, 6, 9, 0}), Floats{});
    EXPECT_EQ(normalOf(_POINT3D{1, 2, 3, 0}, {2, 4, 6, 0}, {3, 6, 9, 0}), Ints{});
}

TEST(iBubSun, the_length_is_truncated_and_so_are_the_components) {
    // (1, 1, 0) x ... gives (1, 1, 1) of length truncate(1.73) = 1: each component is 256.
    EXPECT_EQ(normalOf(_POINT3D{0, 0, 0, 0}, {-1, 0, 1, 0}, {1, -1, 0, 0}), (Ints{-256, -256, -256}));
}

TEST(iBubSun, squares_that_wrapped_below_zero_give_the_least_int_as_length) {
    // The cross product is (49152, -1, 8388608), its squares 2415919105 modulo 2^32. 8388608 << 8 is the least int too.
    EXPECT_EQ(normalOf(_POINT3D{0, 0, 0, 0}, {0, 8388608, 1, 0}, {1, 49152, 0, 0}), (Ints{0, 0, 1}));
}

TEST(IsFront, is_true_clockwise_on_the_screen_and_false_on_a_line) {
    EXPECT_TRUE(isFront({0, 0, 5, 0}, {1, 0, -7, 0}, {0, 1, 0, 0}));
    EXPECT_FALSE(isFront({0, 0, 0, 0}, {0, 1, 0, 0}, {1, 0, 0, 0}));
    EXPECT_FALSE(isFront({0, 0, 0, 0}, {1, 1, 9, 0}, {2, 2, 0, 0}));
    EXPECT_FALSE(isFront({3, 3, 0, 0}, {3, 3, 1, 0}, {3, 3, 2, 0}));
}

TEST(IsFront, the_product_is_not_rounded_to_a_float) {
    // 8192 * 8192 - 8191 * 8193 is 1, and 8191 * 8193 is no float.
    EXPECT_TRUE(isFront({0, 0, 0, 0}, {8192, 8193, 0, 0}, {8191, 8192, 0, 0}));
}

} // namespace
