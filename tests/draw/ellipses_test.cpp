#include "support/pictures.h"

#include <algorithm>

namespace {

using namespace test;

Surface outlineOn(const Surface &surface, tagRECT box, int thickness, q_ulong colour) {
    return drawnOn(surface, Draw_Outer_Ellipse_NoFillInside, surface.rect(), box, thickness, colour);
}

/// A black ellipse on white.
Surface halfStrengthOn(const Surface &surface, tagRECT clip, tagRECT box) {
    return drawnOn(surface, Draw_Outer_Ellipse_AlphaFast, clip, box, 12345, 0);
}

TEST(Draw_Outer_Ellipse_NoFillInside, a_square_box_of_side_100_has_a_ring_of_radius_70) {
    const Surface surface = outlineOn(Surface(160, 160), {30, 30, 130, 130}, 1, 0x7F000001);
    EXPECT_EQ(surface.at(150, 80), 0x7F000001u);
    EXPECT_EQ(surface.at(151, 80), 0u);
    // With 70 in place of the radius it is the circle's own walk.
    const Surface circle = drawnOn(Surface(160, 160), Draw_Circle_NoFillInside, 80, 80, 70, 1, 0x7F000001);
    EXPECT_EQ(surface.differenceFrom(circle), "");
}

TEST(Draw_Outer_Ellipse_NoFillInside, thickness_is_squeezed_with_the_ellipse) {
    // 80 by 20: A is 56 and B 28 * 56 / 113. A thickness of 24 is 25 pixels across, but the rows 13 to 8 down.
    const Surface surface = outlineOn(Surface(160, 60), {40, 20, 120, 40}, 24, 1);
    const Pixels across = rowIn(surface, 30);
    const Pixels down = columnIn(surface, 80);
    EXPECT_EQ(std::count(across.begin(), across.begin() + 80, 1u), 25);
    EXPECT_EQ(std::count(down.begin(), down.begin() + 30, 1u), 6);
}

TEST(Draw_Outer_Ellipse_AlphaFast, blends_at_half_strength_and_the_centre_twice) {
    Surface surface(31, 31, 0xFF804020);
    tagRECT clip = surface.rect();
    surface = drawnOn(surface, Draw_Outer_Ellipse_AlphaFast, clip, tagRECT{10, 10, 20, 20}, 12345, 0x77101010);
    EXPECT_EQ(surface.at(14, 14), 0x00482818u);
    EXPECT_EQ(surface.at(15, 14), 0x00482818u);
    EXPECT_EQ(surface.at(14, 15), 0x00482818u);
    EXPECT_EQ(surface.at(15, 15), 0x002C1C14u); // half of 0x482818 and 0x080808 again
}

const Colours blended = {{'.', 0xFFFFFFFF}, {'#', 0x007F7F7F}};

TEST(Draw_Outer_Ellipse_AlphaFast, axes_stop_short_of_their_far_ends) {
    // A square box of side 10 has A and B of 7, from column 8 on.
    const Surface surface = halfStrengthOn(Surface(31, 31, 0xFFFFFFFF), {0, 0, 31, 31}, {10, 10, 20, 20});
    const Rows rows = rowsOf(surface, blended);
    EXPECT_EQ(rows[15], "........#######?######........."); // the centre is blended twice
    std::string column;
    for (const std::string &row : rows)
        column += row[15];
    EXPECT_EQ(column, rows[15]);
}

TEST(Draw_Outer_Ellipse_AlphaFast, a_box_beyond_the_clip_still_blends_a_column_or_row_on_its_edge) {
    Surface expected = showing(Surface(12, 31, 0xFFFFFFFF), 3, 8, Surface(1, 14, 0x007F7F7F), {0, 0, 1, 14});
    EXPECT_EQ(halfStrengthOn(Surface(12, 31, 0xFFFFFFFF), {3, 2, 12, 29}, {-40, 10, -30, 20}).differenceFrom(expected),
              "");
    expected = showing(Surface(31, 12, 0xFFFFFFFF), 8, 9, Surface(14, 1, 0x007F7F7F), {0, 0, 14, 1});
    EXPECT_EQ(halfStrengthOn(Surface(31, 12, 0xFFFFFFFF), {2, 3, 29, 10}, {10, 40, 20, 50}).differenceFrom(expected),
              "");
}

TEST(Draw_Outer_Ellipse_AlphaFast, the_vertical_axis_starts_at_row_0_not_at_the_top_of_the_clip) {
    const Surface surface = halfStrengthOn(Surface(31, 31, 0xFFFFFFFF), {0, 12, 31, 31}, {10, -2, 20, 18});
    const Rows rows = rowsOf(surface, blended); // B is 14 around row 8
    for (std::size_t y = 0; y < 12; ++y)
        EXPECT_EQ(rows[y], "...............#...............") << y;
    EXPECT_EQ(surface.at(15, -1), 0xFFFFFFFFu);
}

} // namespace
