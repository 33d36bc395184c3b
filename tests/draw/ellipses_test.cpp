#include "support/surface.h"

#include <gtest/gtest.h>

namespace {

using test::Surface;

void drawOutline(Surface &s, tagRECT clip, tagRECT box, int thickness, q_ulong colour) {
    Draw_Outer_Ellipse_NoFillInside(s.pixels(), s.pitch(), &clip, &box, thickness, colour);
}

void drawHalfStrength(Surface &s, tagRECT clip, tagRECT box, q_ulong colour) {
    Draw_Outer_Ellipse_AlphaFast(s.pixels(), s.pitch(), &clip, &box, 12345, colour);
}

TEST(Draw_Outer_Ellipse_NoFillInside, a_square_box_of_side_100_has_a_ring_of_radius_70) {
    Surface surface(160, 160, 0);
    drawOutline(surface, surface.rect(), {30, 30, 130, 130}, 1, 0x7F000001);
    for (const int d : {-70, 70}) {
        EXPECT_EQ(surface.at(80 + d, 80), 0x7F000001u);
        EXPECT_EQ(surface.at(80, 80 + d), 0x7F000001u);
        EXPECT_EQ(surface.at(80 + d + (d < 0 ? -1 : 1), 80), 0u);
        EXPECT_EQ(surface.at(80, 80 + d + (d < 0 ? -1 : 1)), 0u);
    }
    // With 70 in place of the radius it is the circle's own walk.
    Surface circle(160, 160, 0);
    Draw_Circle_NoFillInside(circle.pixels(), circle.pitch(), 80, 80, 70, 1, 0x7F000001);
    EXPECT_EQ(surface.differenceFrom(circle), "");
}

TEST(Draw_Outer_Ellipse_NoFillInside, thickness_is_squeezed_with_the_ellipse) {
    // 80 by 20: A is 56 and B 28 * 56 / 113. A thickness of 24 is 25 pixels across, but the rows 13 to 8 down.
    Surface surface(160, 60, 0);
    drawOutline(surface, surface.rect(), {40, 20, 120, 40}, 24, 1);
    int across = 0;
    for (int x = 0; x < 80; ++x)
        across += surface.at(x, 30) != 0;
    int down = 0;
    for (int y = 0; y < 30; ++y)
        down += surface.at(80, y) != 0;
    EXPECT_EQ(across, 25);
    EXPECT_EQ(down, 6);
}

TEST(Draw_Outer_Ellipse_NoFillInside, boxes_of_no_width_or_height_draw_nothing) {
    const Surface fresh(9, 9, 0xFF112233);
    Surface surface = fresh;
    for (const tagRECT &box : {tagRECT{4, 2, 4, 6}, tagRECT{2, 4, 6, 4}, tagRECT{4, 4, 4, 4}}) {
        drawOutline(surface, surface.rect(), box, 1, 0);
        drawHalfStrength(surface, surface.rect(), box, 0);
    }
    EXPECT_EQ(surface.differenceFrom(fresh), "");
}

TEST(Draw_Outer_Ellipse_AlphaFast, blends_at_half_strength_and_the_centre_twice) {
    Surface surface(31, 31, 0xFF804020);
    drawHalfStrength(surface, surface.rect(), {10, 10, 20, 20}, 0x77101010);
    EXPECT_EQ(surface.at(14, 14), 0x00482818u);
    EXPECT_EQ(surface.at(15, 14), 0x00482818u);
    EXPECT_EQ(surface.at(14, 15), 0x00482818u);
    EXPECT_EQ(surface.at(15, 15), 0x002C1C14u); // half of 0x482818 and 0x080808 again
}

TEST(Draw_Outer_Ellipse_AlphaFast, axes_stop_short_of_their_far_ends) {
    // A square box of side 10 has A and B of 7.
    Surface surface(31, 31, 0xFFFFFFFF);
    drawHalfStrength(surface, surface.rect(), {10, 10, 20, 20}, 0);
    EXPECT_EQ(surface.at(8, 15), 0x007F7F7Fu);
    EXPECT_EQ(surface.at(22, 15), 0xFFFFFFFFu);
    EXPECT_EQ(surface.at(15, 8), 0x007F7F7Fu);
    EXPECT_EQ(surface.at(15, 22), 0xFFFFFFFFu);
    EXPECT_EQ(surface.at(21, 15), 0x007F7F7Fu);
    EXPECT_EQ(surface.at(15, 21), 0x007F7F7Fu);
}

TEST(Draw_Outer_Ellipse_AlphaFast, a_box_left_of_the_clip_still_blends_a_column_on_its_edge) {
    Surface surface(12, 31, 0xFFFFFFFF);
    Surface expected = surface;
    for (int y = 8; y < 22; ++y)
        expected.at(3, y) = 0x007F7F7F;
    drawHalfStrength(surface, {3, 2, 12, 29}, {-40, 10, -30, 20}, 0);
    EXPECT_EQ(surface.differenceFrom(expected), "");
}

TEST(Draw_Outer_Ellipse_AlphaFast, a_box_below_the_clip_still_blends_a_row_on_its_edge) {
    Surface surface(31, 12, 0xFFFFFFFF);
    Surface expected = surface;
    for (int x = 8; x < 22; ++x)
        expected.at(x, 9) = 0x007F7F7F;
    drawHalfStrength(surface, {2, 3, 29, 10}, {10, 40, 20, 50}, 0);
    EXPECT_EQ(surface.differenceFrom(expected), "");
}

TEST(Draw_Outer_Ellipse_AlphaFast, the_vertical_axis_starts_at_row_0_not_at_the_top_of_the_clip) {
    Surface surface(31, 31, 0xFFFFFFFF);
    drawHalfStrength(surface, {0, 12, 31, 31}, {10, -2, 20, 18}, 0); // B is 14 around row 8
    for (int y = -8; y < 0; ++y)
        EXPECT_EQ(surface.at(15, y), 0xFFFFFFFFu) << y;
    for (int y = 0; y < 12; ++y) {
        EXPECT_EQ(surface.at(15, y), 0x007F7F7Fu) << y;
        EXPECT_EQ(surface.at(14, y), 0xFFFFFFFFu) << y;
    }
}

} // namespace
