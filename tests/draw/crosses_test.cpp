#include "support/pictures.h"

namespace {

using namespace test;

const Rows withoutRightTip = {"...+...", "...+...", ".++++..", "...+...", "...+..."};

TEST(Draw_Pixel_Add, saturates_each_channel_and_clears_the_top_byte_of_one_pixel) {
    EXPECT_EQ(pixelsOf(drawnOn(Surface(3, 1, 0xFF1020F0), Draw_Pixel_Add, 1, 0, 0x80010220)),
              (Pixels{0xFF1020F0, 0x001122FF, 0xFF1020F0}));
}

TEST(Draw_Cross, adds_to_nine_pixels_and_clears_their_top_bytes) {
    EXPECT_EQ(rowsOf(drawnOn(Surface(7, 5, 0xFF80F010), Draw_Cross, 3, 2, 0x77102040),
                     {{'.', 0xFF80F010}, {'+', 0x0090FF50}}),
              (Rows{"...+...", "...+...", ".+++++.", "...+...", "...+..."}));
}

TEST(Draw_Cross_Fast, lacks_the_right_tip_and_overwrites_the_arms_with_the_sum_at_the_centre) {
    EXPECT_EQ(rowsOf(drawnOn(Surface(7, 5), Draw_Cross_Fast, 3, 2, 0xFF0000), {{'.', 0}, {'+', 0xFF0000}}),
              withoutRightTip);
    Surface surface(7, 5, 0x00FFFFFF);
    surface.at(3, 2) = 0xAA102030;
    EXPECT_EQ(rowsOf(drawnOn(surface, Draw_Cross_Fast, 3, 2, 0x010203), {{'.', 0xFFFFFF}, {'+', 0x112233}}),
              withoutRightTip);
}

} // namespace
