#include "support/surface.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using test::Surface;

TEST(iFillRect, bottom_up_surfaces_have_a_negative_pitch) {
    Surface dst(4, 4);
    Surface expected(4, 4);
    for (int y = 2; y <= 3; ++y)
        for (int x = 1; x < 3; ++x)
            expected.at(x, y) = 0xFE112233;
    tagRECT rect = {1, 0, 3, 2};
    iFillRect(&dst.at(0, 3), &rect, -dst.pitch(), 0xFE112233);
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

q_ulong fadedOnce(q_ulong pixel, float factor) {
    Surface one(1, 1, pixel);
    tagRECT rect = one.rect();
    iFadeOut32(one.pixels(), &rect, one.pitch(), factor);
    return one.at(0, 0);
}

TEST(iFadeOut32, factor_0_is_a_gentle_step_and_no_clear) {
    EXPECT_EQ(fadedOnce(0xFFFFFFFF, 0.0F), 0x00E1E1E1u); // 255 becomes 15 * 15 = 225
    for (q_ulong c = 0; c < 256; ++c)
        EXPECT_EQ(fadedOnce(c << 16 | c << 8 | c, 0.0F), c / 16 * 15 * 0x10101);
}

TEST(iFadeOut32, factors_that_truncate_to_0_are_the_gentle_step) {
    constexpr float infinity = std::numeric_limits<float>::infinity();
    for (const float factor : {0.00390F, -0.00390F, -0.0F, 1e-30F, 1e30F, -1e30F, infinity, -infinity,
                               std::numeric_limits<float>::quiet_NaN()})
        EXPECT_EQ(fadedOnce(0xFFFFFFFF, factor), 0x00E1E1E1u) << factor;
    EXPECT_EQ(fadedOnce(0xFFFFFFFF, 1.0F / 256), 0u); // 255 / 256
}

TEST(iFillRect, an_empty_rectangle_keeps_all_pixels_and_so_does_a_faded_one) {
    const Surface before(4, 4, 0xAABBCCDD);
    for (const tagRECT empty : {tagRECT{1, 1, 1, 3}, {1, 1, 3, 1}, {3, 1, 1, 3}, {1, 3, 3, 1}}) {
        Surface dst = before;
        tagRECT rect = empty;
        iFillRect(dst.pixels(), &rect, dst.pitch(), 0xFE112233);
        iFadeOut32(dst.pixels(), &rect, dst.pitch(), 0.0F);
        iFadeOut32(dst.pixels(), &rect, dst.pitch(), 0.5F);
        EXPECT_EQ(dst.differenceFrom(before), "");
    }
}

TEST(iFadeOut32, factor_1_keeps_the_colours_and_clears_the_top_byte) {
    EXPECT_EQ(fadedOnce(0xFF123456, 1.0F), 0x00123456u);
    EXPECT_EQ(fadedOnce(0x80FFFFFF, 1.0F), 0x00FFFFFFu);
}

TEST(iFadeOut32, factor_one_half_halves_with_truncation) {
    EXPECT_EQ(fadedOnce(0x00FF0301, 0.5F), 0x007F0100u);
}

TEST(iFadeOut32, every_byte_and_scale_up_to_256_is_the_truncated_product) {
    for (q_ulong scale = 1; scale <= 256; ++scale)
        for (q_ulong c = 0; c < 256; ++c)
            ASSERT_EQ(fadedOnce(c << 16 | (255 - c) << 8 | c, static_cast<float>(scale) / 256),
                      (c * scale / 256) << 16 | ((255 - c) * scale / 256) << 8 | c * scale / 256);
}

TEST(iFadeOut32, factor_2_wraps_red_drops_green_and_spills_blue_into_green) {
    // Scale 512: red 0xC0 << 25 keeps one bit of its two, green 0x80 << 17 stands above green's mask, and blue
    // 0xC0 << 9 is 0x18000, which the shift makes 0x180.
    EXPECT_EQ(fadedOnce(0x00C080C0, 2.0F), 0x00800180u);
}

} // namespace
