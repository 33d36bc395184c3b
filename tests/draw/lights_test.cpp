#include "support/pictures.h"

namespace {

using namespace test;

Surface lightOn(const Surface &surface, q_ulong colour, q_ulong intensity) {
    return drawnOn(surface, Draw_Light, 8, 8, 8, colour, intensity);
}

TEST(Draw_Light, an_intensity_of_128_is_the_full_colour_at_the_centre_and_more_saturates_every_channel_alike) {
    const Surface surface = lightOn(Surface(17, 17, 0xFF000000), 0x77804020, 128);
    EXPECT_EQ(surface.at(8, 8), 0x804020u);
    EXPECT_EQ(surface.at(12, 8), 0x603018u); // 48 / 64 of it
    EXPECT_EQ(surface.at(8, 4), 0x603018u);
    EXPECT_EQ(surface.at(4, 4), 0x402010u);                          // 32 / 64
    EXPECT_EQ(surface.at(0, 8), 0u);                                 // touched with a weight of 0
    const Surface bright = lightOn(Surface(17, 17), 0x010203, 4095); // 32 times the colour, nearly
    EXPECT_EQ(bright.at(8, 8), 0x1F3F5Fu);
    EXPECT_EQ(lightOn(bright, 0xFF0000, 4095).at(8, 8), 0xFF3F5Fu);
}

Surface discOn(const Surface &surface, int radius, int red, int green, int blue) {
    return drawnOn(surface, Draw_Circle_Light, surface.width() / 2, surface.height() / 2, radius, red, green, blue);
}

TEST(Draw_Circle_Light, is_solid_at_the_centre_and_very_nearly_clear_at_the_rim) {
    const Surface surface = discOn(Surface(17, 17, 0x00102030), 8, 0x80, 0xFF, 0x40);
    EXPECT_EQ(surface.at(8, 8), 0x80FF40u);
    EXPECT_EQ(surface.at(12, 12), 0x488F38u); // half and half
    EXPECT_EQ(surface.at(0, 8), 0x102030u);
    EXPECT_EQ(surface.at(8, 16), 0x102030u);
    // 65536 / 9 is 7281, and 9 * 7281 / 256 is 255.
    EXPECT_EQ(discOn(Surface(7, 7, 0x00808080), 3, 0, 0, 0).at(0, 3), 0x7F7F7Fu);
}

TEST(Draw_Circle_Light, an_old_top_byte_disturbs_red) {
    // At half weight 0x100 of the upper half is 0x80 of red.
    const Surface surface = discOn(Surface(17, 17, 0x01000000), 8, 0, 0, 0);
    EXPECT_EQ(surface.at(12, 12), 0x00800000u);
    EXPECT_EQ(surface.at(0, 8), 0u);
}

TEST(Draw_Circle_Light, radius_below_1_draws_nothing_and_beyond_256_the_disc_is_solid) {
    const Surface fresh(515, 515, 0xFF112233);
    EXPECT_EQ(discOn(fresh, 0, 1, 2, 3).differenceFrom(fresh), "");
    const Surface large = discOn(fresh, 257, 1, 2, 3);
    EXPECT_EQ(large.at(0, 257), 0x00010203u);
    EXPECT_EQ(large.at(257, 514), 0x00010203u);
}

} // namespace
