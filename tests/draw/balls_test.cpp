#include "support/surface.h"

#include <gtest/gtest.h>

namespace {

using test::Surface;

TEST(Draw_3DBall, radius_0_draws_a_ball_of_radius_1_the_five_pixels_of_a_plus) {
    for (const int radius : {0, 1}) {
        Surface surface(5, 5, 0xFF112233);
        Surface expected = surface;
        expected.at(2, 2) = 0x00FF8040; // twice the colour
        expected.at(1, 2) = expected.at(3, 2) = expected.at(2, 1) = expected.at(2, 3) = 0;
        Draw_3DBall(surface.pixels(), surface.pitch(), 2, 2, radius, 0x77E04020, 12345);
        EXPECT_EQ(surface.differenceFrom(expected), "") << radius;
    }
}

TEST(Draw_3DBall, is_brightest_half_a_radius_up_and_left_and_dark_at_the_lower_right) {
    // Radius 8: the light reaches 12, 1048576 / 144 is 7281, and 144 * 7281 / 2048 is 511 of 256.
    Surface surface(17, 17, 0xFFFFFFFF);
    Draw_3DBall(surface.pixels(), surface.pitch(), 8, 8, 8, 0x640000, 0);
    EXPECT_EQ(surface.at(4, 4), 199u << 16);
    EXPECT_EQ(surface.at(8, 8), 155u << 16); // 112 * 7281 / 2048 is 398
    EXPECT_EQ(surface.at(13, 13), 0u);       // 144 - 162 is below 0
}

TEST(Draw_3DBall, replaces_what_was_there_with_its_rim_included) {
    for (const q_ulong old : {0u, 0xFFFFFFFFu}) {
        Surface surface(17, 17, old);
        Draw_3DBall(surface.pixels(), surface.pitch(), 8, 8, 8, 0, 0);
        for (int y = 0; y < 17; ++y)
            for (int x = 0; x < 17; ++x)
                EXPECT_EQ(surface.at(x, y), (x - 8) * (x - 8) + (y - 8) * (y - 8) <= 64 ? 0u : old);
    }
}

TEST(Draw_3DBall_Safe, all_four_limits_are_exclusive_so_the_first_row_and_column_stay) {
    Surface surface(31, 31, 0xFF000000);
    tagRECT clip = {10, 12, 18, 19};
    Draw_3DBall_Safe(surface.pixels(), surface.pitch(), &clip, 15, 15, 14, 0, 0);
    for (int y = 0; y < 31; ++y)
        for (int x = 0; x < 31; ++x)
            EXPECT_EQ(surface.at(x, y), x >= 11 && x <= 17 && y >= 13 && y <= 18 ? 0u : 0xFF000000u) << x << ", " << y;
}

} // namespace
