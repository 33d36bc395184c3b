#include "support/surface.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <utility>

namespace {

using test::Surface;

constexpr int greatest = std::numeric_limits<int>::max();

void drawSoft(Surface &s, int x, int y, int radius, int thickness, q_ulong colour) {
    Draw_Anti_Aliasing_Circle_NoFillInside(s.pixels(), s.pitch(), x, y, radius, thickness, colour);
}

TEST(Draw_Anti_Aliasing_Circle_NoFillInside, full_colour_on_the_circle_and_nothing_at_the_edges_of_the_band) {
    // Radius 10, thickness 2: the band runs from 6 to 14, in steps of 64 along an axis.
    Surface surface(31, 31, 0);
    drawSoft(surface, 15, 15, 10, 2, 0x80FF40);
    EXPECT_EQ(surface.at(15 + 10, 15), 0x80FF40u);
    EXPECT_EQ(surface.at(15 - 10, 15), 0x80FF40u);
    EXPECT_EQ(surface.at(15, 15 + 10), 0x80FF40u);
    EXPECT_EQ(surface.at(15, 15 - 10), 0x80FF40u);
    EXPECT_EQ(surface.at(15 + 12, 15), 0x407F20u);
    EXPECT_EQ(surface.at(15 + 8, 15), 0x407F20u);
    EXPECT_EQ(surface.at(15 + 14, 15), 0u);
    EXPECT_EQ(surface.at(15 + 6, 15), 0u);
    EXPECT_EQ(surface.at(15 + 6, 15 + 8), 0x80FF40u);
}

TEST(Draw_Anti_Aliasing_Circle_NoFillInside, a_centre_inside_the_band_is_blended_four_times) {
    // Radius 1, thickness 1: half a band away, and 0, 100, 150, 175, 187 are the steps to 200. The table, at a quarter
    // of a square, has no distances between 0 and 2.
    Surface surface(9, 9, 0);
    drawSoft(surface, 4, 4, 1, 1, 200);
    EXPECT_EQ(surface.at(4, 4), 187u);
    EXPECT_EQ(surface.at(5, 4), 100u); // once
    EXPECT_EQ(surface.at(6, 4), 100u);
}

TEST(Draw_Anti_Aliasing_Circle_NoFillInside, radius_0_has_its_peak_at_the_centre) {
    Surface surface(9, 9, 0xFF000000);
    drawSoft(surface, 4, 4, 0, 1, 0x0000C8);
    EXPECT_EQ(surface.at(4, 4), 0x000000C8u); // full weight replaces the top byte too
    EXPECT_EQ(surface.at(3, 4), 0x000000C8u); // a square of 1 has the table's distance of 0
    EXPECT_EQ(surface.at(2, 4), 0xFF000000u);
}

TEST(Draw_Anti_Aliasing_Circle_NoFillInside, red_is_blended_together_with_the_top_byte) {
    Surface surface(31, 31, 0x01000000);
    drawSoft(surface, 15, 15, 10, 2, 0x030100FE);
    EXPECT_EQ(surface.at(27, 15), 0x0200007Fu); // (0x100 + 0x301) / 2 is 0x200
}

TEST(Draw_Anti_Aliasing_Circle_NoFillInside, thickness_below_1_draws_nothing) {
    const Surface fresh(9, 9, 0xFF112233);
    for (const int thickness : {0, -1, -2, -greatest - 1}) {
        Surface surface = fresh;
        drawSoft(surface, 4, 4, 2, thickness, 0xFFFFFF);
        EXPECT_EQ(surface.differenceFrom(fresh), "") << thickness;
    }
}

TEST(Draw_Anti_Aliasing_Circle_NoFillInside, a_band_may_reach_181_pixels_from_its_centre) {
    // Halfway through the outer half of the band, at a distance of exactly 180.
    Surface surface(401, 401, 0);
    drawSoft(surface, 200, 200, 179, 1, 0xFFFFFF);
    for (const auto &[dx, dy] : {std::pair{180, 0}, {0, 180}, {108, 144}, {144, 108}})
        for (const int signX : {-1, 1})
            for (const int signY : {-1, 1})
                EXPECT_EQ(surface.at(200 + signX * dx, 200 + signY * dy), 0x7F7F7Fu) << dx << ", " << dy;
}

TEST(Draw_Anti_Aliasing_Circle_NoFillInside, bands_that_reach_beyond_the_table_are_drawn_as_far_as_it_goes) {
    Surface surface(401, 401, 0);
    drawSoft(surface, 200, 200, 181, 4, 0xFFFFFF);
    for (int y = 0; y <= 400; ++y)
        for (int x = 0; x <= 400; ++x) {
            const int square = (x - 200) * (x - 200) + (y - 200) * (y - 200);
            if (square >= 32768 || square < 173 * 173) {
                ASSERT_EQ(surface.at(x, y), 0u) << x << ", " << y;
            } else if (square >= 175 * 175) {
                ASSERT_NE(surface.at(x, y), 0u) << x << ", " << y;
            }
        }
}

TEST(Draw_Ring_Safe, adds_each_pixel_of_the_band_once) {
    Surface surface(9, 9, 0x000010);
    tagRECT clip = surface.rect();
    Draw_Ring_Safe(surface.pixels(), surface.pitch(), &clip, 4, 4, 1, 1, 0x0000C8);
    EXPECT_EQ(surface.at(4, 4), 0x10u + 100);
    EXPECT_EQ(surface.at(5, 4), 0x10u + 100);
    EXPECT_EQ(surface.at(6, 4), 0x10u + 100);
    EXPECT_EQ(surface.at(7, 4), 0x10u + 200 * 22 / 256); // the table has 1448 of 512 for 3, so 88 / 1024 of the band
    EXPECT_EQ(surface.at(8, 4), 0x10u);
}

TEST(Draw_Ring_Safe, a_top_byte_in_the_pixel_saturates_red) {
    Surface surface(9, 9, 0x01000000);
    tagRECT clip = surface.rect();
    Draw_Ring_Safe(surface.pixels(), surface.pitch(), &clip, 4, 4, 2, 1, 0x000102);
    EXPECT_EQ(surface.at(6, 4), 0x00FF0102u);
}

TEST(Draw_Ring_Safe, a_top_byte_in_the_colour_is_a_very_large_red) {
    Surface surface(9, 9, 0);
    tagRECT clip = surface.rect();
    Draw_Ring_Safe(surface.pixels(), surface.pitch(), &clip, 4, 4, 2, 1, 0x01000000);
    EXPECT_EQ(surface.at(6, 4), 0x00FF0000u);
    EXPECT_EQ(surface.at(7, 4), 0x00960000u); // 600 / 1024 of 0x100
}

TEST(Draw_Ring_Safe, thickness_below_1_draws_nothing) {
    const Surface fresh(9, 9, 0xFF112233);
    for (const int thickness : {0, -1, -2, -greatest - 1}) {
        Surface surface = fresh;
        tagRECT clip = surface.rect();
        Draw_Ring_Safe(surface.pixels(), surface.pitch(), &clip, 4, 4, 2, thickness, 0xFFFFFF);
        EXPECT_EQ(surface.differenceFrom(fresh), "") << thickness;
    }
}

TEST(Draw_Ring_Safe, extreme_numbers_stay_inside_the_clip_and_the_table) {
    const Surface fresh(6, 6, 0x80112233);
    for (const int x : {-greatest - 1, -65536, -150, 3, 150, 65536, greatest})
        for (const int y : {-greatest - 1, -150, 3, greatest})
            for (const int radius : {-greatest - 1, -2000000, -200, 100, 150, 181, 200, 4000000, 1 << 22, greatest})
                for (const int thickness : {1, 30, 1000, 1 << 20, 1 << 21, 1 << 22, 1 << 30, greatest}) {
                    Surface surface = fresh;
                    tagRECT clip = {1, 2, 5, 4};
                    Draw_Ring_Safe(surface.pixels(), surface.pitch(), &clip, x, y, radius, thickness, 0xFFFFFF);
                    for (int row = 2; row < 4; ++row)
                        for (int column = 1; column < 5; ++column)
                            surface.at(column, row) = 0x80112233;
                    ASSERT_EQ(surface.differenceFrom(fresh), "") << x << ", " << y << ": " << radius;
                }
}

void drawRing(Surface &s, int x, int y, int radius, q_ulong colour, q_ulong intensity) {
    Draw_Ring(s.pixels(), s.pitch(), x, y, radius, colour, intensity);
}

/// The gains along the row through the centre, to the left of it.
std::string gainsOf(int radius) {
    Surface surface(2 * radius + 1, 2 * radius + 1, 0);
    drawRing(surface, radius, radius, radius, 128, 128);
    std::string gains;
    for (int distance = radius; distance >= 0; --distance)
        gains += std::to_string(surface.at(radius - distance, radius)) + ' ';
    return gains;
}

TEST(Draw_Ring, the_band_is_16_wide_from_radius_32_upward_and_half_the_radius_below) {
    // Radius 32: from 16 over 24 to 32; radius 40: from 24 over 32 to 40.
    EXPECT_EQ(gainsOf(32), "0 16 32 48 64 80 96 112 128 112 96 80 64 48 32 16 0 "
                           "0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 ");
    EXPECT_EQ(gainsOf(40), "0 16 32 48 64 80 96 112 128 112 96 80 64 48 32 16 0 "
                           "0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 ");
    EXPECT_EQ(gainsOf(8), "0 64 128 64 0 0 0 0 0 "); // from 4 over 6 to 8
}

TEST(Draw_Ring, radius_1_peaks_at_the_centre) {
    // Inner and middle circle are both 0, half the band is 1.
    Surface surface(3, 3, 0xFF000001);
    Surface expected = surface;
    expected.at(1, 1) = 0x00000081;
    expected.at(0, 1) = expected.at(1, 0) = 0x00000001;
    drawRing(surface, 1, 1, 1, 128, 128);
    EXPECT_EQ(surface.differenceFrom(expected), "");
}

TEST(Draw_Ring, the_last_column_and_row_are_left_out) {
    Surface surface(17, 17, 0xFF000000);
    drawRing(surface, 8, 8, 8, 0, 128);
    EXPECT_EQ(surface.at(0, 8), 0u);
    EXPECT_EQ(surface.at(8, 0), 0u);
    EXPECT_EQ(surface.at(16, 8), 0xFF000000u);
    EXPECT_EQ(surface.at(8, 16), 0xFF000000u);
}

TEST(Draw_Ring, intensity_128_is_the_full_colour_and_every_channel_saturates_alike) {
    Surface surface(17, 17, 0xFF010101);
    drawRing(surface, 8, 8, 8, 0x77102030, 128);
    EXPECT_EQ(surface.at(2, 8), 0x00112131u);
    drawRing(surface, 8, 8, 8, 0x77102030, 60000);
    EXPECT_EQ(surface.at(2, 8), 0x00FFFFFFu);
}

} // namespace
