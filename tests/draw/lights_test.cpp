#include "support/surface.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using test::Surface;

constexpr int greatest = std::numeric_limits<int>::max();

TEST(Draw_Light, an_intensity_of_128_is_the_full_colour_at_the_centre) {
    Surface surface(17, 17, 0xFF000000);
    Draw_Light(surface.pixels(), surface.pitch(), 8, 8, 8, 0x77804020, 128);
    EXPECT_EQ(surface.at(8, 8), 0x804020u);
    EXPECT_EQ(surface.at(12, 8), 0x603018u); // 48 / 64 of it
    EXPECT_EQ(surface.at(8, 4), 0x603018u);
    EXPECT_EQ(surface.at(4, 4), 0x402010u); // 32 / 64
    EXPECT_EQ(surface.at(0, 8), 0u);        // touched with a weight of 0
}

TEST(Draw_Light, the_first_row_has_no_pixel_and_the_last_row_and_column_are_left_out) {
    Surface surface(17, 17, 0xFF000000);
    Draw_Light(surface.pixels(), surface.pitch(), 8, 8, 8, 0, 128);
    for (int x = 0; x < 17; ++x) {
        EXPECT_EQ(surface.at(x, 0), 0xFF000000u);
        EXPECT_EQ(surface.at(x, 16), 0xFF000000u);
        EXPECT_EQ(surface.at(x, 8), x < 16 ? 0u : 0xFF000000u);
    }
}

TEST(Draw_Light, radii_of_3_or_less_draw_nothing) {
    const Surface fresh(9, 9, 0xFF112233);
    for (const int radius : {3, 2, 1, 0, -1, -65536, -greatest - 1}) {
        Surface surface = fresh;
        Draw_Light(surface.pixels(), surface.pitch(), 4, 4, radius, 0xFFFFFF, 128);
        EXPECT_EQ(surface.differenceFrom(fresh), "") << radius;
    }
}

TEST(Draw_Light, saturates_every_channel_alike_however_large_the_weight) {
    Surface surface(17, 17, 0);
    Draw_Light(surface.pixels(), surface.pitch(), 8, 8, 8, 0x010203, 4095); // 32 times the colour, nearly
    EXPECT_EQ(surface.at(8, 8), 0x1F3F5Fu);
    Draw_Light(surface.pixels(), surface.pitch(), 8, 8, 8, 0xFF0000, 4095);
    EXPECT_EQ(surface.at(8, 8), 0xFF3F5Fu);
}

TEST(Draw_Light_Safe, all_four_limits_are_exclusive_so_the_first_row_and_column_stay) {
    Surface surface(31, 31, 0xFF000000);
    tagRECT clip = {10, 12, 18, 19};
    Draw_Light_Safe(surface.pixels(), surface.pitch(), &clip, 15, 15, 14, 0, 128);
    for (int y = 0; y < 31; ++y)
        for (int x = 0; x < 31; ++x)
            EXPECT_EQ(surface.at(x, y), x >= 11 && x <= 17 && y >= 13 && y <= 18 ? 0u : 0xFF000000u) << x << ", " << y;
}

TEST(Draw_Light_Safe, radii_above_256_are_cut_to_256) {
    for (const int radius : {257, 300, 65536, greatest}) {
        Surface surface(530, 530, 0);
        Surface expected = surface;
        tagRECT clip = surface.rect();
        Draw_Light_Safe(surface.pixels(), surface.pitch(), &clip, 265, 265, radius, 0x80FF40, 128);
        Draw_Light(expected.pixels(), expected.pitch(), 265, 265, 256, 0x80FF40, 128);
        EXPECT_EQ(surface.differenceFrom(expected), "") << radius;
    }
}

void drawCircleLight(Surface &s, int x, int y, int radius, unsigned char red, unsigned char green, unsigned char blue) {
    Draw_Circle_Light(s.pixels(), s.pitch(), x, y, radius, red, green, blue);
}

TEST(Draw_Circle_Light, is_solid_at_the_centre_and_clear_at_the_rim) {
    Surface surface(17, 17, 0x00102030);
    drawCircleLight(surface, 8, 8, 8, 0x80, 0xFF, 0x40);
    EXPECT_EQ(surface.at(8, 8), 0x80FF40u);
    EXPECT_EQ(surface.at(12, 12), 0x488F38u); // half and half
    for (const int i : {0, 16}) {
        EXPECT_EQ(surface.at(i, 8), 0x102030u);
        EXPECT_EQ(surface.at(8, i), 0x102030u);
    }
}

TEST(Draw_Circle_Light, leaves_the_rim_very_nearly_as_it_was_where_the_inverse_is_truncated) {
    // 65536 / 9 is 7281, and 9 * 7281 / 256 is 255.
    Surface surface(7, 7, 0x00808080);
    drawCircleLight(surface, 3, 3, 3, 0, 0, 0);
    EXPECT_EQ(surface.at(0, 3), 0x7F7F7Fu);
}

TEST(Draw_Circle_Light, an_old_top_byte_disturbs_red) {
    // At half weight 0x100 of the upper half is 0x80 of red.
    Surface surface(17, 17, 0x01000000);
    drawCircleLight(surface, 8, 8, 8, 0, 0, 0);
    EXPECT_EQ(surface.at(12, 12), 0x00800000u);
    EXPECT_EQ(surface.at(0, 8), 0u);
}

TEST(Draw_Circle_Light, radius_below_1_draws_nothing_and_beyond_256_the_disc_is_solid) {
    const Surface fresh(5, 5, 0xFF112233);
    for (const int radius : {0, -1, -greatest - 1}) {
        Surface surface = fresh;
        drawCircleLight(surface, 2, 2, radius, 1, 2, 3);
        EXPECT_EQ(surface.differenceFrom(fresh), "") << radius;
    }
    Surface large(515, 515, 0xFF112233);
    drawCircleLight(large, 257, 257, 257, 1, 2, 3);
    EXPECT_EQ(large.at(0, 257), 0x00010203u);
    EXPECT_EQ(large.at(257, 514), 0x00010203u);
}

} // namespace
