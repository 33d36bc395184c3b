#include "support/painting.h"

#include <gtest/gtest.h>

#include <utility>

namespace {

using test::Surface;

Surface crossed(Surface dst, int x, int y, q_ulong colour, tagRECT clip) {
    VKD_3D_Draw_Cross(dst.pixels(), &clip, static_cast<q_ulong>(dst.pitch()), x, y, colour);
    return dst;
}
Surface crossed(const Surface &dst, int x, int y, q_ulong colour) {
    return crossed(dst, x, y, colour, dst.rect());
}

TEST(VKD_3D_Draw_Cross, has_eight_pixels_and_a_shorter_right_arm) {
    Surface expected(9, 9, 0x55000000);
    for (const auto &[x, y] : {std::pair(4, 2), std::pair(4, 3), std::pair(2, 4), std::pair(3, 4), std::pair(4, 4),
                               std::pair(5, 4), std::pair(4, 5), std::pair(4, 6)})
        expected.at(x, y) = 0x00102030;
    EXPECT_EQ(crossed(Surface(9, 9, 0x55000000), 4, 4, 0x99102030).differenceFrom(expected), "");
}

TEST(VKD_3D_Draw_Cross, near_the_border_it_vanishes_whole) {
    const Surface blank(16, 16);
    const tagRECT clip = {1, 2, 12, 14};
    EXPECT_EQ(crossed(blank, 3, 8, 7, clip).differenceFrom(blank), "") << "clip left + 2";
    EXPECT_EQ(crossed(blank, 4, 8, 7, clip).at(2, 8), 7u);
    EXPECT_EQ(crossed(blank, 9, 8, 7, clip).differenceFrom(blank), "") << "clip right - 3";
    EXPECT_EQ(crossed(blank, 8, 8, 7, clip).at(9, 8), 7u);
}

TEST(VKD_3D_Draw_Cross, the_sum_is_that_of_the_centre_alone) {
    Surface dst(9, 9, 0xFFFFFFFF);
    dst.at(4, 4) = 0x77000001;
    EXPECT_EQ(crossed(dst, 4, 4, 0x88304050).at(3, 4), 0x304051u);
    EXPECT_EQ(crossed(dst, 4, 4, 0x88304050).at(4, 6), 0x304051u);
    const Surface white(9, 9, 0xFFFFFF);
    EXPECT_EQ(crossed(white, 4, 4, 0x123456).differenceFrom(white), "");
}

TEST(VKD_Render_3D_Dot_Add, later_crosses_lie_over_earlier_ones) {
    Surface dst(12, 12);
    std::vector<_POINT3DFLOAT> points = {{5, 5, 0, 0}, {6, 5, 99, 0}};
    std::vector<q_ulong> colours = {0x10, 0x20};
    tagRECT clip = dst.rect();
    VKD_Render_3D_Dot_Add(dst.pixels(), &clip, static_cast<q_ulong>(dst.pitch()), points.data(), colours.data(), 2, 1);
    EXPECT_EQ(dst.at(3, 5), 0x10u);
    EXPECT_EQ(dst.at(6, 5), 0x30u) << "the sum of what the second found at its centre";
    EXPECT_EQ(dst.at(4, 5), 0x30u);
    EXPECT_EQ(dst.at(5, 3), 0x10u);
}

} // namespace
