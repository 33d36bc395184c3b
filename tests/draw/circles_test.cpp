#include "support/pictures.h"

namespace {

using namespace test;

TEST(Draw_Circle_FillInside, radius_0_is_one_pixel_with_its_top_byte) {
    EXPECT_EQ(
        rowsOf(drawnOn(Surface(3, 3), Draw_Circle_FillInside, 1, 1, 0, 0x7F123456), {{'.', 0}, {'#', 0x7F123456}}),
        (Rows{"...", ".#.", "..."}));
}

Surface circle(int radius, int thickness) {
    return drawnOn(Surface(25, 25), Draw_Circle_NoFillInside, 12, 12, radius, thickness, 1);
}

TEST(Draw_Circle_NoFillInside, rows_run_up_to_and_including_the_first_pixel_of_the_hole) {
    // Radius 5, thickness 2: the middle row has 5, 4 and, at the hole's edge, 3.
    EXPECT_EQ(rowsOf(circle(5, 2), {{'.', 0}, {'#', 1}})[12], ".......###.....###.......");
}

TEST(Draw_Circle_NoFillInside, thickness_of_the_radius_leaves_no_hole_and_beyond_it_widens_the_hole_again) {
    EXPECT_EQ(circle(5, 5).differenceFrom(drawnOn(Surface(25, 25), Draw_Circle_FillInside, 12, 12, 5, 1)), "");
    EXPECT_EQ(circle(10, 16).differenceFrom(circle(10, 4)), ""); // 10 - 16 squares as 10 - 4
}

TEST(iFill_Circle_Safe, radius_0_writes_its_pixel_if_that_is_inside_the_clip) {
    for (int y = -1; y <= 5; ++y)
        for (int x = -1; x <= 5; ++x) {
            Surface expected(5, 5);
            if (x >= 1 && x < 4 && y >= 2 && y < 4)
                expected.at(x, y) = 0x7F123456;
            const Surface surface = drawnOn(Surface(5, 5), iFill_Circle_Safe, {1, 2, 4, 4}, x, y, 0, 0x7F123456);
            EXPECT_EQ(surface.differenceFrom(expected), "") << x << ", " << y;
        }
}

TEST(iFill_Circle_Safe, runs_of_every_length_are_filled_to_their_ends) {
    for (int length = 1; length <= 70; ++length) {
        Surface expected(80, 3);
        for (int x = 0; x < length; ++x)
            expected.at(5 + x, 1) = 0x7F123456;
        const Surface surface =
            drawnOn(Surface(80, 3), iFill_Circle_Safe, {5, 1, 5 + length, 2}, 40, 1, 100, 0x7F123456);
        EXPECT_EQ(surface.differenceFrom(expected), "") << length;
    }
}

TEST(iFill_Circle_Safe, beyond_a_radius_of_32767_the_squares_wrap) {
    // 46340 squared is 88048 short of 2^31: 200 squared more is outside, 300 squared more wraps below 0.
    const auto isDrawn = [](int dx, int dy) {
        return drawnOn(Surface(1, 1), iFill_Circle_Safe, {0, 0, 1, 1}, -dx, -dy, 46340, 1).at(0, 0) != 0;
    };
    EXPECT_TRUE(isDrawn(46340, 0));
    EXPECT_FALSE(isDrawn(46340, 200));
    EXPECT_TRUE(isDrawn(46340, 300));
    EXPECT_TRUE(isDrawn(46340, 46340));
    EXPECT_FALSE(isDrawn(46341, 0));
}

q_ulong blendedOver(q_ulong old, q_ulong colour, int alpha) {
    return drawnOn(Surface(1, 1, old), iFill_Circle_Alpha, {0, 0, 1, 1}, 0, 0, 0, colour, alpha).at(0, 0);
}

TEST(iFill_Circle_Alpha, alpha_0_keeps_the_colours_and_clears_the_top_bytes_of_the_disc) {
    EXPECT_EQ(rowsOf(drawnOn(Surface(5, 5, 0xFF123456), iFill_Circle_Alpha, {0, 0, 5, 5}, 2, 2, 1, 0xFFFFFFFF, 0),
                     {{'.', 0xFF123456}, {'o', 0x00123456}}),
              (Rows{".....", "..o..", ".ooo.", "..o..", "....."}));
}

TEST(iFill_Circle_Alpha, alpha_256_is_opaque_128_half_and_outside_0_to_256_each_channel_wraps_within_its_byte) {
    EXPECT_EQ(blendedOver(0xFF123456, 0x77ABCDEF, 256), 0x00ABCDEFu);
    EXPECT_EQ(blendedOver(0xFFFF0001, 0x7700FF02, 128), 0x007F7F01u);
    EXPECT_EQ(blendedOver(0x000001, 0x0000FF, 512), 0x0000FDu);  // 255 * 512 - 256 is 510 - 1 in 1/256
    EXPECT_EQ(blendedOver(0x0000FF, 0x000001, 512), 0x000003u);  // 2 - 255 is -253
    EXPECT_EQ(blendedOver(0x204060, 0x010203, -256), 0x3F7EBDu); // twice the old less the colour
}

TEST(Draw_Bubble_Circle, keeps_the_centre_and_is_solid_at_the_rim) {
    // Radius 8: 1/64 is exact in 16 bits, so the rim has the whole colour, and a distance of 4 a quarter of it.
    const Surface surface =
        drawnOn(Surface(17, 17, 0xFF000000), Draw_Bubble_Circle, {0, 0, 17, 17}, 8, 8, 8, 0x77FF8040);
    for (const Pixels &axis : {rowIn(surface, 8), columnIn(surface, 8)}) {
        EXPECT_EQ(axis[0], 0xFF8040u);
        EXPECT_EQ(axis[4], 0x3F2010u);
        EXPECT_EQ(axis[8], 0u);
        EXPECT_EQ(axis[16], 0xFF8040u);
    }
    EXPECT_EQ(surface.at(0, 0), 0xFF000000u);
}

TEST(Draw_Bubble_Circle, a_square_of_0_draws_nothing_and_beyond_a_radius_of_256_the_disc_stays_clear) {
    const Surface fresh(3, 3, 0xFF112233);
    for (const int radius : {0, -1, 65536})
        EXPECT_EQ(drawnOn(fresh, Draw_Bubble_Circle, fresh.rect(), 1, 1, radius, 0xFFFFFF).differenceFrom(fresh), "")
            << radius;
    EXPECT_EQ(rowIn(drawnOn(fresh, Draw_Bubble_Circle, fresh.rect(), -250, 1, 257, 0xFFFFFF), 1),
              Pixels(3, 0x00112233));
}

Surface metal(q_ulong ground, q_ulong colour) {
    return drawnOn(Surface(17, 17, ground), Draw_Metal_Circle, 8, 8, 8, colour);
}

TEST(Draw_Metal_Circle, goes_from_white_to_the_colour_whose_low_16_bits_of_red_become_the_upper_half) {
    const Surface surface = metal(0xFF000000, 0x00008040);
    EXPECT_EQ(surface.at(8, 8), 0x00FFFFFFu);
    EXPECT_EQ(surface.at(0, 8), 0x00008040u);
    EXPECT_EQ(surface.at(8, 16), 0x00008040u);
    // A quarter of the way: -255 / 4 is -64 rounded down, -127 / 4 is -32 and -191 / 4 is -48.
    EXPECT_EQ(surface.at(12, 8), 0x00BFDFCFu);
    EXPECT_EQ(surface.at(0, 0), 0xFF000000u);
    // At the rim red is 0x0301 - 255 + 255; a quarter of the way 514 / 4 is 128, and 128 + 255 is 0x17F.
    const Surface top = metal(0, 0x0301FFFF);
    EXPECT_EQ(top.at(0, 8), 0x0301FFFFu);
    EXPECT_EQ(top.at(12, 8), 0x017FFFFFu);
}

TEST(Draw_Metal_Circle, radius_0_draws_nothing_and_one_beyond_256_is_white) {
    const Surface fresh(3, 3, 0xFF112233);
    EXPECT_EQ(drawnOn(fresh, Draw_Metal_Circle, 1, 1, 0, 0).differenceFrom(fresh), "");
    EXPECT_EQ(drawnOn(Surface(515, 515), Draw_Metal_Circle, 257, 257, 257, 0x123456).at(0, 257), 0xFFFFFFu);
}

} // namespace
