#include "support/pictures.h"

namespace {

using namespace test;

Surface softOn(const Surface &surface, int x, int y, int radius, int thickness, q_ulong colour) {
    return drawnOn(surface, Draw_Anti_Aliasing_Circle_NoFillInside, x, y, radius, thickness, colour);
}

TEST(Draw_Anti_Aliasing_Circle_NoFillInside, full_colour_on_the_circle_and_nothing_at_the_edges_of_the_band) {
    // Radius 10, thickness 2: the band runs from 6 to 14, in steps of 64 along an axis.
    const Surface surface = softOn(Surface(31, 31), 15, 15, 10, 2, 0x80FF40);
    for (const Pixels &axis : {rowIn(surface, 15), columnIn(surface, 15)}) {
        EXPECT_EQ(axis[5], 0x80FF40u);
        EXPECT_EQ(axis[25], 0x80FF40u);
        EXPECT_EQ(axis[27], 0x407F20u);
        EXPECT_EQ(axis[23], 0x407F20u);
        EXPECT_EQ(axis[29], 0u);
        EXPECT_EQ(axis[21], 0u);
    }
    EXPECT_EQ(surface.at(15 + 6, 15 + 8), 0x80FF40u);
    // (0x100 + 0x301) / 2 is 0x200
    EXPECT_EQ(softOn(Surface(31, 31, 0x01000000), 15, 15, 10, 2, 0x030100FE).at(27, 15), 0x0200007Fu);
}

TEST(Draw_Anti_Aliasing_Circle_NoFillInside,
     a_centre_inside_the_band_is_blended_four_times_and_radius_0_has_its_peak_there) {
    // Radius 1, thickness 1: half a band away, and 0, 100, 150, 175, 187 are the steps to 200. The table, at a quarter
    // of a square, has no distances between 0 and 2.
    const Surface surface = softOn(Surface(9, 9), 4, 4, 1, 1, 200);
    EXPECT_EQ(surface.at(4, 4), 187u);
    EXPECT_EQ(surface.at(5, 4), 100u); // once
    EXPECT_EQ(surface.at(6, 4), 100u);
    const Surface dot = softOn(Surface(9, 9, 0xFF000000), 4, 4, 0, 1, 0x0000C8);
    EXPECT_EQ(dot.at(4, 4), 0x000000C8u); // full weight replaces the top byte too
    EXPECT_EQ(dot.at(3, 4), 0x000000C8u); // a square of 1 has the table's distance of 0
    EXPECT_EQ(dot.at(2, 4), 0xFF000000u);
}

TEST(Draw_Anti_Aliasing_Circle_NoFillInside, a_band_may_reach_181_pixels_from_its_centre) {
    // Halfway through the outer half of the band, at a distance of exactly 180.
    const Surface surface = softOn(Surface(401, 401), 200, 200, 179, 1, 0xFFFFFF);
    for (const auto &[dx, dy] : {std::pair{180, 0}, {0, 180}, {108, 144}, {-144, 108}, {-144, -108}})
        EXPECT_EQ(surface.at(200 + dx, 200 + dy), 0x7F7F7Fu) << dx << ", " << dy;
}

TEST(Draw_Anti_Aliasing_Circle_NoFillInside, bands_that_reach_beyond_the_table_are_drawn_as_far_as_it_goes) {
    const Surface surface = softOn(Surface(401, 401), 200, 200, 181, 4, 0xFFFFFF);
    for (int y = 0; y <= 400; ++y)
        for (int x = 0; x <= 400; ++x) {
            const int square = (x - 200) * (x - 200) + (y - 200) * (y - 200);
            if (square >= 32768 || square < 173 * 173 || square >= 175 * 175) {
                ASSERT_EQ(surface.at(x, y) != 0, square >= 175 * 175 && square < 32768) << x << ", " << y;
            }
        }
}

TEST(Rings, of_a_thickness_below_1_are_not_drawn) {
    const Surface fresh(9, 9, 0xFF112233);
    for (const int thickness : {0, -1, -2, leastInt}) {
        EXPECT_EQ(softOn(fresh, 4, 4, 2, thickness, 0xFFFFFF).differenceFrom(fresh), "") << thickness;
        EXPECT_EQ(drawnOn(fresh, Draw_Ring_Safe, fresh.rect(), 4, 4, 2, thickness, 0xFFFFFF).differenceFrom(fresh), "")
            << thickness;
    }
}

TEST(Draw_Ring_Safe, adds_each_pixel_of_the_band_once_and_a_top_byte_saturates_red) {
    const Surface surface = drawnOn(Surface(9, 9, 0x10), Draw_Ring_Safe, tagRECT{0, 0, 9, 9}, 4, 4, 1, 1, 0x0000C8);
    // The table has 1448 of 512 for 3, so 88 / 1024 of the band: 200 * 22 / 256.
    EXPECT_EQ(rowIn(surface, 4),
              (Pixels{0x10, 0x10 + 17, 0x10 + 100, 0x10 + 100, 0x10 + 100, 0x10 + 100, 0x10 + 100, 0x10 + 17, 0x10}));
    const auto ring = [](q_ulong old, q_ulong colour) {
        return drawnOn(Surface(9, 9, old), Draw_Ring_Safe, tagRECT{0, 0, 9, 9}, 4, 4, 2, 1, colour);
    };
    EXPECT_EQ(ring(0x01000000, 0x000102).at(6, 4), 0x00FF0102u);
    EXPECT_EQ(ring(0, 0x01000000).at(6, 4), 0x00FF0000u);
    EXPECT_EQ(ring(0, 0x01000000).at(7, 4), 0x00960000u); // 600 / 1024 of 0x100
}

/// The gains along the row through the centre, to the left of it.
Pixels gainsOf(int radius) {
    Pixels row =
        rowIn(drawnOn(Surface(2 * radius + 1, 2 * radius + 1), Draw_Ring, radius, radius, radius, 128, 128), radius);
    row.resize(static_cast<std::size_t>(radius) + 1);
    return row;
}

TEST(Draw_Ring, the_band_is_16_wide_from_radius_32_upward_and_half_the_radius_below) {
    // Radius 32: from 16 over 24 to 32; radius 40: from 24 over 32 to 40.
    Pixels gains = {0, 16, 32, 48, 64, 80, 96, 112, 128, 112, 96, 80, 64, 48, 32, 16, 0};
    gains.resize(33);
    EXPECT_EQ(gainsOf(32), gains);
    gains.resize(41);
    EXPECT_EQ(gainsOf(40), gains);
    EXPECT_EQ(gainsOf(8), (Pixels{0, 64, 128, 64, 0, 0, 0, 0, 0})); // from 4 over 6 to 8
}

TEST(Draw_Ring, radius_1_peaks_at_the_centre) {
    // Inner and middle circle are both 0, half the band is 1. The last column and row are left out.
    EXPECT_EQ(rowsOf(drawnOn(Surface(3, 3, 0xFF000001), Draw_Ring, 1, 1, 1, 128, 128),
                     {{'.', 0xFF000001}, {'o', 0x00000001}, {'#', 0x00000081}}),
              (Rows{".o.", "o#.", "..."}));
}

TEST(Draw_Ring, intensity_128_is_the_full_colour_and_every_channel_saturates_alike) {
    Surface surface = drawnOn(Surface(17, 17, 0xFF010101), Draw_Ring, 8, 8, 8, 0x77102030, 128);
    EXPECT_EQ(surface.at(2, 8), 0x00112131u);
    surface = drawnOn(surface, Draw_Ring, 8, 8, 8, 0x77102030, 60000);
    EXPECT_EQ(surface.at(2, 8), 0x00FFFFFFu);
}

} // namespace
