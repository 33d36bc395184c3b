#include "support/surface.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using test::Surface;

constexpr int greatest = std::numeric_limits<int>::max();

TEST(Draw_Star_Type1, an_intensity_of_64_brings_the_full_colour_to_the_centre) {
    Surface surface(17, 17, 0xFF000000);
    Draw_Star_Type1(surface.pixels(), surface.pitch(), 8, 8, 8, 0x77804020, 64);
    EXPECT_EQ(surface.at(8, 8), 0x804020u);
    EXPECT_EQ(surface.at(12, 8), 0x201008u); // the square of one half
    EXPECT_EQ(surface.at(4, 8), 0x201008u);
    EXPECT_EQ(surface.at(8, 4), 0x201008u);
    EXPECT_EQ(surface.at(8, 12), 0x201008u);
    EXPECT_EQ(surface.at(12, 12), 0x080402u);
}

TEST(Draw_Star_Type1, more_than_64_saturates_every_channel_alike) {
    Surface surface(17, 17, 0xFF010101);
    Draw_Star_Type1(surface.pixels(), surface.pitch(), 8, 8, 8, 0x000110FF, 640);
    EXPECT_EQ(surface.at(8, 8), 0x000BA1FFu); // ten times the colour
    Draw_Star_Type1(surface.pixels(), surface.pitch(), 8, 8, 8, 0x00800000, 1000);
    EXPECT_EQ(surface.at(8, 8), 0x00FFA1FFu);
}

TEST(Draw_Star_Type1, the_first_row_has_no_pixel_and_the_last_row_and_column_are_left_out) {
    // What is touched loses its top byte. Row 0 of radius 8 has half 8, its first pixel a weight of 0.
    Surface surface(17, 17, 0xFF000000);
    Draw_Star_Type1(surface.pixels(), surface.pitch(), 8, 8, 8, 0, 64);
    for (int x = 0; x < 17; ++x) {
        EXPECT_EQ(surface.at(x, 0), 0xFF000000u);
        EXPECT_EQ(surface.at(x, 16), 0xFF000000u);
        EXPECT_EQ(surface.at(x, 8), x < 16 ? 0u : 0xFF000000u);
    }
}

TEST(Draw_Star_Type1, radii_of_3_or_less_draw_nothing) {
    const Surface fresh(9, 9, 0xFF112233);
    for (const int radius : {3, 2, 1, 0, -1, -65536, -greatest - 1}) {
        Surface surface = fresh;
        Draw_Star_Type1(surface.pixels(), surface.pitch(), 4, 4, radius, 0xFFFFFF, 64);
        Draw_Star_Type2(surface.pixels(), surface.pitch(), 4, 4, radius, 0xFFFFFF, 64);
        EXPECT_EQ(surface.differenceFrom(fresh), "") << radius;
    }
    Surface surface = fresh;
    Draw_Star_Type1(surface.pixels(), surface.pitch(), 4, 4, 4, 0xFFFFFF, 64);
    EXPECT_EQ(surface.at(4, 4), 0x00FFFFFFu);
}

TEST(Draw_Star_Type1_Safe, all_four_limits_are_exclusive_so_the_first_row_and_column_stay) {
    Surface surface(31, 31, 0xFF000000);
    tagRECT clip = {10, 12, 18, 19};
    Draw_Star_Type1_Safe(surface.pixels(), surface.pitch(), &clip, 15, 15, 14, 0, 64);
    for (int y = 0; y < 31; ++y)
        for (int x = 0; x < 31; ++x)
            EXPECT_EQ(surface.at(x, y), x >= 11 && x <= 17 && y >= 13 && y <= 18 ? 0u : 0xFF000000u) << x << ", " << y;
}

TEST(Draw_Star_Type1_Safe, radii_above_256_are_cut_to_256) {
    for (const int radius : {257, 300, 65536, greatest}) {
        Surface surface(530, 530, 0);
        Surface expected = surface;
        tagRECT clip = surface.rect();
        Draw_Star_Type1_Safe(surface.pixels(), surface.pitch(), &clip, 265, 265, radius, 0x80FF40, 64);
        Draw_Star_Type1(expected.pixels(), expected.pitch(), 265, 265, 256, 0x80FF40, 64);
        EXPECT_EQ(surface.differenceFrom(expected), "") << radius;
    }
}

TEST(Draw_Star_Type2, the_centre_pixel_is_added_four_times) {
    Surface twice(17, 17, 0);
    Draw_Star_Type2(twice.pixels(), twice.pitch(), 8, 8, 8, 0x404040, 64);
    EXPECT_EQ(twice.at(8, 8), 0xFFFFFFu); // 0x100 in each channel
    Surface once(17, 17, 0);
    Draw_Star_Type1(once.pixels(), once.pitch(), 8, 8, 8, 0x404040, 64);
    EXPECT_EQ(once.at(8, 8), 0x404040u);
    Draw_Star_Type2(once.pixels(), once.pitch(), 8, 8, 8, 0x010203, 64);
    EXPECT_EQ(once.at(8, 8), 0x44484Cu);
}

TEST(Draw_Star_Type2, the_centre_row_and_column_are_added_twice_and_the_rest_once) {
    Surface surface(17, 17, 0);
    Draw_Star_Type2(surface.pixels(), surface.pitch(), 8, 8, 8, 0x000040, 64);
    EXPECT_EQ(surface.at(12, 8), 0x20u);
    EXPECT_EQ(surface.at(4, 8), 0x20u);
    EXPECT_EQ(surface.at(8, 12), 0x20u);
    EXPECT_EQ(surface.at(8, 4), 0x20u);
    EXPECT_EQ(surface.at(12, 12), 0x04u);
    EXPECT_EQ(surface.at(4, 4), 0x04u);
}

TEST(Draw_Star_Type2, spans_one_pixel_less_to_the_left_and_upwards) {
    Surface surface(17, 17, 0xFF000000);
    Draw_Star_Type2(surface.pixels(), surface.pitch(), 8, 8, 8, 0, 64);
    for (int x = 0; x < 17; ++x)
        EXPECT_EQ(surface.at(x, 8), x >= 1 && x <= 15 ? 0u : 0xFF000000u) << x;
    for (int y = 0; y < 17; ++y) // 7 rows off the centre the chord's square is 15, which the table has as 0
        EXPECT_EQ(surface.at(8, y), y >= 2 && y <= 14 ? 0u : 0xFF000000u) << y;
}

TEST(Draw_Star_Type3, an_intensity_of_32_reaches_the_full_colour_at_the_centre) {
    Surface surface(17, 17, 0xFF000000);
    Draw_Star_Type3(surface.pixels(), surface.pitch(), 8, 8, 8, 0x77804020, 32);
    EXPECT_EQ(surface.at(8, 8), 0x804020u);
}

TEST(Draw_Star_Type3, the_first_column_of_the_diamond_is_included_and_the_last_is_not) {
    // Radius 8 has an inverse of 128. In row 4 the factor is 4 * 128 * 32 / 1024 = 16, and at 4 to the left the weight
    // 4 * 16 * 128 / 256 = 32, of 2048.
    Surface surface(17, 17, 0xFF000000);
    Draw_Star_Type3(surface.pixels(), surface.pitch(), 8, 8, 8, 0x00FF80, 32);
    for (const int y : {4, 12}) {
        EXPECT_EQ(surface.at(3, y), 0xFF000000u);
        EXPECT_EQ(surface.at(4, y), 0x00000302u);  // 255 / 64 and 128 / 64
        EXPECT_EQ(surface.at(11, y), 0x00000402u); // 5 * 16 * 128 / 256 is 40: 255 * 40 / 2048 and 128 * 40 / 2048
        EXPECT_EQ(surface.at(12, y), 0xFF000000u);
    }
    EXPECT_EQ(surface.at(0, 8), 0u);
    EXPECT_EQ(surface.at(16, 8), 0xFF000000u);
    EXPECT_EQ(surface.at(8, 0), 0xFF000000u);
    EXPECT_EQ(surface.at(8, 16), 0xFF000000u);
}

TEST(Draw_Star_Type3, the_core_is_a_fifth_of_the_radius_and_much_steeper) {
    // Radius 16: inverse 64, core 3. Along the centre row the factor is 16 * 64 * 32 * 4 / 1024 = 128, and the weight
    // (16 - 4b) * 128 from the centre on, (16 - b) * 32 from 3 on.
    Surface surface(33, 33, 0);
    Draw_Star_Type3(surface.pixels(), surface.pitch(), 16, 16, 16, 0x000080, 32);
    const q_ulong expected[] = {128, 96, 64, 26, 24, 22, 20, 18, 16};
    for (int b = 0; b < 9; ++b) {
        EXPECT_EQ(surface.at(16 + b, 16), expected[b]) << b;
        EXPECT_EQ(surface.at(16 - b, 16), expected[b]) << b;
        EXPECT_EQ(surface.at(16, 16 + b), expected[b]) << b;
        EXPECT_EQ(surface.at(16, 16 - b), expected[b]) << b;
    }
}

TEST(Draw_Star_Type3, radius_1_touches_two_pixels_and_radius_0_none) {
    Surface surface(5, 5, 0xFF000000);
    Draw_Star_Type3(surface.pixels(), surface.pitch(), 2, 2, 0, 0xFFFFFF, 32);
    Draw_Star_Type3(surface.pixels(), surface.pitch(), 2, 2, -4, 0xFFFFFF, 32);
    Surface expected(5, 5, 0xFF000000);
    EXPECT_EQ(surface.differenceFrom(expected), "");
    expected.at(1, 2) = 0;        // a weight of 0
    expected.at(2, 2) = 0x3F3F3F; // without a core: 128 * 1024 / 256 is 512 of 2048
    Draw_Star_Type3(surface.pixels(), surface.pitch(), 2, 2, 1, 0xFFFFFF, 128);
    EXPECT_EQ(surface.differenceFrom(expected), "");
}

void drawOneStar(Surface &s, tagRECT clip, int x, int y, int size, int red, int green, int blue) {
    Draw_One_Star_Add(s.pixels(), s.pitch(), &clip, x, y, size, red, green, blue);
}

TEST(Draw_One_Star_Add, spikes_fade_to_nothing_and_the_centre_takes_the_colour_twice) {
    Surface surface(11, 11, 0xFF010101);
    Surface expected = surface;
    const q_ulong gains[] = {0xC80000, 0x4B0000, 0x320000, 0x190000, 0};
    for (int d = 0; d <= 4; ++d)
        expected.at(5 + d, 5) = expected.at(5 - d, 5) = expected.at(5, 5 + d) = expected.at(5, 5 - d) =
            0x010101 + gains[d];
    drawOneStar(surface, surface.rect(), 5, 5, 4, 100, 0, 0);
    EXPECT_EQ(surface.differenceFrom(expected), "");
}

TEST(Draw_One_Star_Add, a_centre_in_the_last_column_or_row_of_the_clip_draws_nothing) {
    const Surface fresh(9, 9, 0xFF112233);
    Surface surface = fresh;
    drawOneStar(surface, {1, 1, 8, 8}, 7, 4, 3, 255, 255, 255);
    drawOneStar(surface, {1, 1, 8, 8}, 4, 7, 3, 255, 255, 255);
    EXPECT_EQ(surface.differenceFrom(fresh), "");
    drawOneStar(surface, {1, 1, 8, 8}, 1, 1, 3, 255, 255, 255);
    EXPECT_EQ(surface.at(1, 1), 0x00FFFFFFu);
}

TEST(Draw_One_Star_Add, a_centre_outside_draws_nothing_even_if_a_spike_reaches_in) {
    const Surface fresh(9, 9, 0xFF112233);
    Surface surface = fresh;
    drawOneStar(surface, {1, 1, 8, 8}, 0, 4, 6, 255, 255, 255);
    drawOneStar(surface, {1, 1, 8, 8}, 4, 0, 6, 255, 255, 255);
    drawOneStar(surface, {1, 1, 8, 8}, 8, 4, 6, 255, 255, 255);
    drawOneStar(surface, {1, 1, 8, 8}, 4, 9, 6, 255, 255, 255);
    EXPECT_EQ(surface.differenceFrom(fresh), "");
}

TEST(Draw_One_Star_Add, spikes_reach_the_last_column_and_row_of_the_clip) {
    Surface surface(9, 9, 0xFF000000);
    drawOneStar(surface, {1, 1, 8, 8}, 4, 4, 100, 0, 0, 0);
    for (int i = -8; i < 17; ++i) {
        EXPECT_EQ(surface.at(i, 4), i >= 1 && i <= 7 ? 0u : 0xFF000000u) << i;
        EXPECT_EQ(surface.at(4, i), i >= 1 && i <= 7 ? 0u : 0xFF000000u) << i;
    }
}

TEST(Draw_One_Star_Add, channels_beyond_a_byte_never_reach_the_top_byte) {
    Surface surface(9, 9, 0xFF101010);
    drawOneStar(surface, surface.rect(), 4, 4, 1, -0x18, 300, -1);
    EXPECT_EQ(surface.at(4, 4), 0x00E0FF0Eu); // 0x10 - 0x18 is -8, and -8 - 0x18 + 0x100 is 0xE0
}

} // namespace
