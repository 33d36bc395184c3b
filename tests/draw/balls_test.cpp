#include "support/pictures.h"

namespace {

using namespace test;

TEST(Draw_3DBall, radius_0_draws_a_ball_of_radius_1_the_five_pixels_of_a_plus) {
    for (const int radius : {0, 1}) // twice the colour in the middle, black on the rim
        EXPECT_EQ(rowsOf(drawnOn(Surface(5, 5, 0xFF112233), Draw_3DBall, 2, 2, radius, 0x77E04020, 12345),
                         {{'.', 0xFF112233}, {'#', 0x00FF8040}, {'o', 0}}),
                  (Rows{".....", "..o..", ".o#o.", "..o..", "....."}));
}

TEST(Draw_3DBall, is_brightest_half_a_radius_up_and_left_and_dark_at_the_lower_right) {
    // Radius 8: the light reaches 12, 1048576 / 144 is 7281, and 144 * 7281 / 2048 is 511 of 256.
    const Surface surface = drawnOn(Surface(17, 17, 0xFFFFFFFF), Draw_3DBall, 8, 8, 8, 0x640000, 0);
    EXPECT_EQ(surface.at(4, 4), 199u << 16);
    EXPECT_EQ(surface.at(8, 8), 155u << 16); // 112 * 7281 / 2048 is 398
    EXPECT_EQ(surface.at(13, 13), 0u);       // 144 - 162 is below 0
}

} // namespace
