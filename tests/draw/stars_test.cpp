#include "support/pictures.h"

namespace {

using namespace test;

/// Functions that add a colour around a centre, called alike.
using Spot = void (*)(q_ulong *, int, int, int, int, q_ulong, q_ulong);
using ClippedSpot = void (*)(q_ulong *, int, tagRECT *, int, int, int, q_ulong, q_ulong);

/// A spot of radius 8 in the middle of a surface of 17 by 17.
Surface spotOn(q_ulong ground, Spot draw, q_ulong colour, q_ulong intensity) {
    return drawnOn(Surface(17, 17, ground), draw, 8, 8, 8, colour, intensity);
}

TEST(Spots, of_two_kinds_have_no_pixel_in_the_first_row_and_leave_out_the_last_row_and_column) {
    // What is touched loses its top byte. Row 0 of radius 8 has no width, and row 8 begins with a weight of 0.
    for (const Spot draw : {Draw_Star_Type1, Draw_Light}) {
        const Rows rows = rowsOf(spotOn(0xFF000000, draw, 0, 64), {{'.', 0xFF000000}, {'o', 0}});
        EXPECT_EQ(rows[0], ".................");
        EXPECT_EQ(rows[8], "oooooooooooooooo.");
        EXPECT_EQ(rows[16], ".................");
    }
}

TEST(ClippedSpots, have_four_exclusive_limits_so_the_first_row_and_column_of_the_clip_stay) {
    for (const ClippedSpot draw : {Draw_Star_Type1_Safe, Draw_Light_Safe, Draw_3DBall_Safe})
        EXPECT_EQ(rowsOf(drawnOn(Surface(7, 7, 0xFF000000), draw, tagRECT{1, 2, 6, 5}, 3, 3, 14, 0, 64),
                         {{'.', 0xFF000000}, {'o', 0}}),
                  (Rows{".......", ".......", ".......", "..oooo.", "..oooo.", ".......", "......."}));
}

TEST(ClippedSpots, of_a_radius_above_256_are_cut_to_256) {
    const std::pair<ClippedSpot, Spot> pairs[] = {{Draw_Star_Type1_Safe, Draw_Star_Type1},
                                                  {Draw_Light_Safe, Draw_Light}};
    for (const auto &[clipped, whole] : pairs)
        for (const int radius : {257, 300, 65536, greatestInt}) {
            const Surface surface =
                drawnOn(Surface(530, 530), clipped, tagRECT{0, 0, 530, 530}, 265, 265, radius, 0x80FF40, 64);
            const Surface expected = drawnOn(Surface(530, 530), whole, 265, 265, 256, 0x80FF40, 64);
            EXPECT_EQ(surface.differenceFrom(expected), "") << radius;
        }
}

TEST(Draw_Star_Type1, an_intensity_of_64_brings_the_full_colour_to_the_centre_and_more_saturates_every_channel_alike) {
    const Surface surface = spotOn(0xFF000000, Draw_Star_Type1, 0x77804020, 64);
    for (const Pixels &axis : {rowIn(surface, 8), columnIn(surface, 8)}) {
        EXPECT_EQ(axis[8], 0x804020u);
        EXPECT_EQ(axis[4], 0x201008u); // the square of one half
        EXPECT_EQ(axis[12], 0x201008u);
    }
    EXPECT_EQ(surface.at(12, 12), 0x080402u);
    EXPECT_EQ(spotOn(0xFF010101, Draw_Star_Type1, 0x000110FF, 640).at(8, 8), 0x000BA1FFu); // ten times the colour
    EXPECT_EQ(spotOn(0xFF010101, Draw_Star_Type1, 0x00800000, 1000).at(8, 8), 0x00FF0101u);
}

TEST(Draw_Star_Type2, the_axes_are_added_twice_and_the_centre_pixel_four_times) {
    EXPECT_EQ(spotOn(0, Draw_Star_Type2, 0x404040, 64).at(8, 8), 0xFFFFFFu); // 0x100 in each channel
    EXPECT_EQ(spotOn(0, Draw_Star_Type1, 0x404040, 64).at(8, 8), 0x404040u);
    EXPECT_EQ(spotOn(0x404040, Draw_Star_Type2, 0x010203, 64).at(8, 8), 0x44484Cu);
    const Surface surface = spotOn(0, Draw_Star_Type2, 0x000040, 64);
    for (const Pixels &axis : {rowIn(surface, 8), columnIn(surface, 8)}) {
        EXPECT_EQ(axis[4], 0x20u);
        EXPECT_EQ(axis[12], 0x20u);
    }
    EXPECT_EQ(surface.at(12, 12), 0x04u);
    EXPECT_EQ(surface.at(4, 4), 0x04u);
}

TEST(Draw_Star_Type2, spans_one_pixel_less_to_the_left_and_upwards) {
    const Surface surface = spotOn(0xFF000000, Draw_Star_Type2, 0, 64);
    EXPECT_EQ(rowsOf(surface, {{'.', 0xFF000000}, {'o', 0}})[8], ".ooooooooooooooo.");
    const Pixels column = columnIn(surface, 8);
    for (std::size_t y = 0; y < 17; ++y) // 7 rows off the centre the chord's square is 15, which the table has as 0
        EXPECT_EQ(column[y], y >= 2 && y <= 14 ? 0u : 0xFF000000u) << y;
}

TEST(Draw_Star_Type3, the_first_column_of_the_diamond_is_included_and_the_last_is_not) {
    // Radius 8 has an inverse of 128. In row 4 the factor is 4 * 128 * 32 / 1024 = 16, and at 4 to the left the weight
    // 4 * 16 * 128 / 256 = 32, of 2048.
    const Surface surface = spotOn(0xFF000000, Draw_Star_Type3, 0x00FF80, 32);
    for (const int y : {4, 12}) {
        EXPECT_EQ(surface.at(3, y), 0xFF000000u);
        EXPECT_EQ(surface.at(4, y), 0x00000302u);  // 255 / 64 and 128 / 64
        EXPECT_EQ(surface.at(11, y), 0x00000402u); // 5 * 16 * 128 / 256 is 40: 255 * 40 / 2048 and 128 * 40 / 2048
        EXPECT_EQ(surface.at(12, y), 0xFF000000u);
    }
    EXPECT_EQ(surface.at(8, 8), 0x0000FF80u);
    EXPECT_EQ(surface.at(0, 8), 0u);
    EXPECT_EQ(surface.at(16, 8), 0xFF000000u);
    EXPECT_EQ(surface.at(8, 0), 0xFF000000u);
    EXPECT_EQ(surface.at(8, 16), 0xFF000000u);
}

TEST(Draw_Star_Type3, the_core_is_a_fifth_of_the_radius_and_much_steeper) {
    // Radius 16: inverse 64, core 3. Along the centre row the factor is 16 * 64 * 32 * 4 / 1024 = 128, and the weight
    // (16 - 4b) * 128 from the centre on, (16 - b) * 32 from 3 on.
    const Surface surface = drawnOn(Surface(33, 33), Draw_Star_Type3, 16, 16, 16, 0x000080, 32);
    const Pixels expected = {16, 18, 20, 22, 24, 26, 64, 96, 128, 96, 64, 26, 24, 22, 20, 18, 16};
    for (const Pixels &axis : {rowIn(surface, 16), columnIn(surface, 16)})
        EXPECT_EQ(Pixels(axis.begin() + 8, axis.begin() + 25), expected);
}

TEST(Draw_Star_Type3, radius_1_touches_two_pixels_and_radius_0_none) {
    const Surface fresh(3, 3, 0xFF000000);
    for (const int radius : {0, -4})
        EXPECT_EQ(drawnOn(fresh, Draw_Star_Type3, 1, 1, radius, 0xFFFFFF, 32).differenceFrom(fresh), "");
    // A weight of 0, and without a core 128 * 1024 / 256, which is 512 of 2048.
    EXPECT_EQ(
        rowsOf(drawnOn(fresh, Draw_Star_Type3, 1, 1, 1, 0xFFFFFF, 128), {{'.', 0xFF000000}, {'o', 0}, {'#', 0x3F3F3F}}),
        (Rows{"...", "o#.", "..."}));
}

Surface oneStarOn(const Surface &surface, int x, int y, int size, int red, int green, int blue) {
    return drawnOn(surface, Draw_One_Star_Add, tagRECT{1, 1, 10, 10}, x, y, size, red, green, blue);
}

TEST(Draw_One_Star_Add, spikes_fade_to_nothing_and_the_centre_takes_the_colour_twice) {
    const Surface surface = oneStarOn(Surface(11, 11, 0xFF010101), 5, 5, 4, 100, 0, 0);
    const Pixels spike = {0xFF010101, 0x010101, 0x1A0101, 0x330101, 0x4C0101,  0xC90101,
                          0x4C0101,   0x330101, 0x1A0101, 0x010101, 0xFF010101};
    EXPECT_EQ(rowIn(surface, 5), spike);
    EXPECT_EQ(columnIn(surface, 5), spike);
    EXPECT_EQ(surface.at(4, 4), 0xFF010101u);
}

TEST(Draw_One_Star_Add, a_centre_outside_or_in_the_last_column_or_row_of_the_clip_draws_nothing) {
    const Surface fresh(11, 11, 0xFF112233);
    for (const auto &[x, y] : {std::pair{9, 4}, {4, 9}, {0, 4}, {4, 0}, {10, 4}, {4, 11}})
        EXPECT_EQ(oneStarOn(fresh, x, y, 6, 255, 255, 255).differenceFrom(fresh), "") << x << ", " << y;
    EXPECT_EQ(oneStarOn(fresh, 1, 1, 3, 255, 255, 255).at(1, 1), 0x00FFFFFFu);
}

TEST(Draw_One_Star_Add, spikes_reach_the_last_column_and_row_of_the_clip) {
    const Surface surface = oneStarOn(Surface(11, 11, 0xFF000000), 4, 4, 100, 0, 0, 0);
    Pixels spike(11, 0);
    spike.front() = spike.back() = 0xFF000000;
    EXPECT_EQ(rowIn(surface, 4), spike);
    EXPECT_EQ(columnIn(surface, 4), spike);
}

TEST(Draw_One_Star_Add, channels_beyond_a_byte_never_reach_the_top_byte) {
    // 0x10 - 0x18 is -8, and -8 - 0x18 + 0x100 is 0xE0
    EXPECT_EQ(oneStarOn(Surface(11, 11, 0xFF101010), 4, 4, 1, -0x18, 300, -1).at(4, 4), 0x00E0FF0Eu);
}

} // namespace
