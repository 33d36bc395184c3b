#include "support/surface.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>

namespace {

using test::Surface;

constexpr int greatest = std::numeric_limits<int>::max();

TEST(Draw_Circle_FillInside, radius_0_is_one_pixel_with_its_top_byte) {
    Surface surface(3, 3, 0);
    Surface expected = surface;
    expected.at(1, 1) = 0x7F123456;
    Draw_Circle_FillInside(surface.pixels(), surface.pitch(), 1, 1, 0, 0x7F123456);
    EXPECT_EQ(surface.differenceFrom(expected), "");
}

TEST(Draw_Circle_FillInside, every_radius_up_to_120_is_all_pixels_at_that_distance) {
    for (int radius = 0; radius <= 120; ++radius) {
        Surface surface(241, 241, 0);
        Draw_Circle_FillInside(surface.pixels(), surface.pitch(), 120, 120, radius, 1);
        for (int y = 0; y < 241; ++y)
            for (int x = 0; x < 241; ++x)
                ASSERT_EQ(surface.at(x, y), (x - 120) * (x - 120) + (y - 120) * (y - 120) <= radius * radius ? 1u : 0u)
                    << radius << ": " << x << ", " << y;
    }
}

TEST(Draw_Circle_NoFillInside, rows_run_up_to_and_including_the_first_pixel_of_the_hole) {
    // Radius 5, thickness 2: the middle row has 5, 4 and, at the hole's edge, 3.
    Surface surface(13, 13, 0);
    Draw_Circle_NoFillInside(surface.pixels(), surface.pitch(), 6, 6, 5, 2, 0xFF000001);
    for (int dx = -6; dx <= 6; ++dx)
        EXPECT_EQ(surface.at(6 + dx, 6), std::abs(dx) >= 3 && std::abs(dx) <= 5 ? 0xFF000001 : 0u) << dx;
}

TEST(Draw_Circle_NoFillInside, thickness_of_the_radius_leaves_no_hole) {
    Surface surface(13, 13, 0);
    Surface expected = surface;
    Draw_Circle_FillInside(expected.pixels(), expected.pitch(), 6, 6, 5, 1);
    Draw_Circle_NoFillInside(surface.pixels(), surface.pitch(), 6, 6, 5, 5, 1);
    EXPECT_EQ(surface.differenceFrom(expected), "");
}

TEST(Draw_Circle_NoFillInside, thickness_beyond_the_radius_widens_the_hole_again) {
    Surface thin(25, 25, 0);
    Draw_Circle_NoFillInside(thin.pixels(), thin.pitch(), 12, 12, 10, 4, 1);
    Surface beyond(25, 25, 0);
    Draw_Circle_NoFillInside(beyond.pixels(), beyond.pitch(), 12, 12, 10, 16, 1); // 10 - 16 squares as 10 - 4
    EXPECT_EQ(beyond.differenceFrom(thin), "");
}

void drawFilled(Surface &s, tagRECT *clip, int x, int y, int radius) {
    iFill_Circle_Safe(s.pixels(), clip, s.pitch(), x, y, radius, 0x7F123456);
}

TEST(iFill_Circle_Safe, radius_0_writes_its_pixel_if_that_is_inside_the_clip) {
    for (int y = -1; y <= 5; ++y)
        for (int x = -1; x <= 5; ++x) {
            Surface surface(5, 5, 0);
            Surface expected = surface;
            tagRECT clip = {1, 2, 4, 4};
            if (x >= 1 && x < 4 && y >= 2 && y < 4)
                expected.at(x, y) = 0x7F123456;
            drawFilled(surface, &clip, x, y, 0);
            EXPECT_EQ(surface.differenceFrom(expected), "") << x << ", " << y;
        }
}

TEST(iFill_Circle_Safe, last_row_and_column_of_the_clip_are_included) {
    Surface surface(5, 5, 0);
    tagRECT clip = {1, 1, 4, 4};
    drawFilled(surface, &clip, 2, 2, 9);
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 5; ++x)
            EXPECT_EQ(surface.at(x, y), x >= 1 && x <= 3 && y >= 1 && y <= 3 ? 0x7F123456u : 0u);
}

TEST(iFill_Circle_Safe, beyond_a_radius_of_32767_the_squares_wrap) {
    // 46340 squared is 88048 short of 2^31: 200 squared more is outside, 300 squared more wraps below 0.
    const auto drawn = [](int dx, int dy) {
        Surface surface(1, 1, 0);
        tagRECT clip = surface.rect();
        drawFilled(surface, &clip, -dx, -dy, 46340);
        return surface.at(0, 0) != 0;
    };
    EXPECT_TRUE(drawn(46340, 0));
    EXPECT_FALSE(drawn(46340, 200));
    EXPECT_TRUE(drawn(46340, 300));
    EXPECT_TRUE(drawn(46340, 46340));
    EXPECT_FALSE(drawn(46341, 0));
}

q_ulong blendedOver(q_ulong old, q_ulong colour, int alpha) {
    Surface one(1, 1, old);
    tagRECT clip = one.rect();
    iFill_Circle_Alpha(one.pixels(), &clip, one.pitch(), 0, 0, 0, colour, alpha);
    return one.at(0, 0);
}

TEST(iFill_Circle_Alpha, alpha_0_keeps_the_colours_and_clears_the_top_bytes_of_the_disc) {
    Surface surface(7, 7, 0xFF123456);
    Surface expected = surface;
    Draw_Circle_FillInside(expected.pixels(), expected.pitch(), 3, 3, 2, 0x00123456);
    tagRECT clip = surface.rect();
    iFill_Circle_Alpha(surface.pixels(), &clip, surface.pitch(), 3, 3, 2, 0xFFFFFFFF, 0);
    EXPECT_EQ(surface.differenceFrom(expected), "");
}

TEST(iFill_Circle_Alpha, alpha_256_is_opaque_and_128_half) {
    EXPECT_EQ(blendedOver(0xFF123456, 0x77ABCDEF, 256), 0x00ABCDEFu);
    EXPECT_EQ(blendedOver(0xFFFF0001, 0x7700FF02, 128), 0x007F7F01u);
}

TEST(iFill_Circle_Alpha, outside_0_to_256_each_channel_wraps_within_its_byte) {
    EXPECT_EQ(blendedOver(0x000001, 0x0000FF, 512), 0x0000FDu);  // 255 * 512 - 256 is 510 - 1 in 1/256
    EXPECT_EQ(blendedOver(0x0000FF, 0x000001, 512), 0x000003u);  // 2 - 255 is -253
    EXPECT_EQ(blendedOver(0x204060, 0x010203, -256), 0x3F7EBDu); // twice the old less the colour
}

TEST(Draw_Bubble_Circle, keeps_the_centre_and_is_solid_at_the_rim) {
    // Radius 8: 1/64 is exact in 16 bits, so the rim has the whole colour, and a distance of 4 a quarter of it.
    Surface surface(17, 17, 0xFF000000);
    tagRECT clip = surface.rect();
    Draw_Bubble_Circle(surface.pixels(), &clip, surface.pitch(), 8, 8, 8, 0x77FF8040);
    EXPECT_EQ(surface.at(8, 8), 0u);
    EXPECT_EQ(surface.at(0, 8), 0xFF8040u);
    EXPECT_EQ(surface.at(16, 8), 0xFF8040u);
    EXPECT_EQ(surface.at(8, 0), 0xFF8040u);
    EXPECT_EQ(surface.at(8, 16), 0xFF8040u);
    EXPECT_EQ(surface.at(12, 8), 0x3F2010u);
    EXPECT_EQ(surface.at(0, 0), 0xFF000000u);
}

TEST(Draw_Bubble_Circle, radius_0_draws_nothing) {
    const Surface fresh(3, 3, 0xFF112233);
    for (const int radius : {0, -1, 65536, -greatest - 1}) { // all but -1 have a square of 0
        Surface surface = fresh;
        tagRECT clip = surface.rect();
        Draw_Bubble_Circle(surface.pixels(), &clip, surface.pitch(), 1, 1, radius, 0xFFFFFF);
        EXPECT_EQ(surface.differenceFrom(fresh), "") << radius;
    }
}

TEST(Draw_Bubble_Circle, beyond_a_radius_of_256_the_disc_stays_clear) {
    Surface surface(5, 5, 0xFF112233);
    tagRECT clip = surface.rect();
    Draw_Bubble_Circle(surface.pixels(), &clip, surface.pitch(), -250, 2, 257, 0xFFFFFF);
    for (int x = 0; x < 5; ++x)
        EXPECT_EQ(surface.at(x, 2), 0x00112233u);
}

TEST(Draw_Metal_Circle, goes_from_white_to_the_colour) {
    Surface surface(17, 17, 0xFF000000);
    Draw_Metal_Circle(surface.pixels(), surface.pitch(), 8, 8, 8, 0x00008040);
    EXPECT_EQ(surface.at(8, 8), 0x00FFFFFFu);
    EXPECT_EQ(surface.at(0, 8), 0x00008040u);
    EXPECT_EQ(surface.at(8, 16), 0x00008040u);
    // A quarter of the way: -255 / 4 is -64 rounded down, -127 / 4 is -32 and -191 / 4 is -48.
    EXPECT_EQ(surface.at(12, 8), 0x00BFDFCFu);
    EXPECT_EQ(surface.at(0, 0), 0xFF000000u);
}

TEST(Draw_Metal_Circle, the_low_16_bits_of_red_become_the_upper_half) {
    // At the rim red is 0x0301 - 255 + 255; a quarter of the way 514 / 4 is 128, and 128 + 255 is 0x17F.
    Surface surface(17, 17, 0);
    Draw_Metal_Circle(surface.pixels(), surface.pitch(), 8, 8, 8, 0x0301FFFF);
    EXPECT_EQ(surface.at(0, 8), 0x0301FFFFu);
    EXPECT_EQ(surface.at(12, 8), 0x017FFFFFu);
    EXPECT_EQ(surface.at(8, 8), 0x00FFFFFFu);
}

TEST(Draw_Metal_Circle, radius_0_draws_nothing_and_one_beyond_256_is_white) {
    Surface surface(3, 3, 0xFF112233);
    Draw_Metal_Circle(surface.pixels(), surface.pitch(), 1, 1, 0, 0);
    Draw_Metal_Circle(surface.pixels(), surface.pitch(), 1, 1, -1, 0);
    EXPECT_EQ(surface.differenceFrom(Surface(3, 3, 0xFF112233)), "");

    Surface large(515, 515, 0);
    Draw_Metal_Circle(large.pixels(), large.pitch(), 257, 257, 257, 0x123456);
    EXPECT_EQ(large.at(0, 257), 0xFFFFFFu);
    EXPECT_EQ(large.at(257, 257), 0xFFFFFFu);
}

} // namespace
