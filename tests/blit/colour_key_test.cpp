#include "blits.h"

namespace {

using namespace test;

TEST(iBltFast32_KeySrc, the_key_counts_in_all_32_bits) {
    const auto drawn = [](q_ulong key) {
        Surface dst(5, 1, 0x11111111);
        Surface src = rowOf({0x00123456, 0xFF123456, 0x00123457, 0x80FFFFFF, 0});
        place(iBltFast32_KeySrc, dst, 0, 0, src, src.rect(), key);
        return pixelsOf(dst);
    };
    EXPECT_EQ(drawn(0x00123456), (Pixels{0x11111111, 0xFF123456, 0x00123457, 0x80FFFFFF, 0}));
    EXPECT_EQ(drawn(0x80FFFFFF), (Pixels{0x00123456, 0xFF123456, 0x00123457, 0x11111111, 0}));
}

TEST(iBltNear32_KeySrc, the_key_is_tested_on_the_sampled_pixel) {
    EXPECT_EQ(over(Surface(4, 1, 0x11111111), rowOf({0x00ABCDEF, 0xFFABCDEF}), iBltNear32_KeySrc, 0x00ABCDEF),
              (Pixels{0x11111111, 0x11111111, 0xFFABCDEF, 0xFFABCDEF}));
}

TEST(iBltBilinear32_KeySrc, a_surface_that_is_all_key_is_left_out_unless_the_key_has_a_top_byte) {
    const auto drawn = [](q_ulong key) {
        return over(Surface(9, 7, 0xDEADBEEF), Surface(4, 5, key), iBltBilinear32_KeySrc, key);
    };
    EXPECT_EQ(drawn(0x00A1B2C3), Pixels(63, 0xDEADBEEF));
    EXPECT_EQ(drawn(0x80A1B2C3), Pixels(63, 0x00A1B2C3));
}

TEST(iBltBilinear32_KeySrc, the_key_is_tested_on_what_is_filtered_and_blended_in_at_its_border) {
    // Steps of a quarter: 4, 8 and 12 sixteenths of 0x64, 0x80 and 0xFF, truncated; then the last column alone.
    EXPECT_EQ(over(Surface(8, 1, 0x11111111), rowOf({0x000000, 0x6480FF}), iBltBilinear32_KeySrc, 0),
              (Pixels{0x11111111, 0x19203F, 0x32407F, 0x4B60BF, 0x6480FF, 0x6480FF, 0x6480FF, 0x6480FF}));
    // No tap equals this key.
    EXPECT_EQ(over(Surface(4, 1, 0x11111111), rowOf({0x10, 0x30}), iBltBilinear32_KeySrc, 0x20),
              (Pixels{0x10, 0x11111111, 0x30, 0x30}));
}

TEST(iBltBilinear32_KeySrc, whole_steps_leave_out_what_shows_the_key) {
    constexpr q_ulong key = 0x000100;
    atWholeSteps(0xFF010101, [](Surface &src, const Surface &shown, Surface dst) { // one in some eight shows the key
        Surface expected = dst;
        for (int y = 0; y < dst.height(); ++y)
            for (int x = 0; x < dst.width(); ++x)
                if (shown.at(x, y) != key)
                    expected.at(x, y) = shown.at(x, y);
        stretch(iBltBilinear32_KeySrc, dst, dst.rect(), src, src.rect(), key);
        EXPECT_EQ(dst.differenceFrom(expected), "");
    });
}

TEST(iBltFast32SafeKeySrc, is_placed_by_its_centre_and_loses_its_last_column_and_row_if_odd) {
    const auto expectDrawn = [](int width, int height, int centre, const tagRECT &part, int x, int y) {
        Surface src = numbered(width, height);
        Surface dst(8, 8);
        place(iBltFast32SafeKeySrc, dst, centre, centre, src, src.rect(), 8, 8);
        EXPECT_EQ(dst.differenceFrom(showing(Surface(8, 8), x, y, src, part)), "") << width;
    };
    expectDrawn(6, 4, 0, {3, 2, 6, 4}, 0, 0); // the lower right quarter at the origin
    expectDrawn(5, 3, 4, {0, 0, 4, 2}, 2, 3);
}

TEST(iBltFast32SafeKeySrc, only_0_is_left_out) {
    Surface src = pictureOf(2, {0, 0x01000000, 0xFFFFFFFF, 0});
    Surface dst(2, 2, 0x22222222);
    place(iBltFast32SafeKeySrc, dst, 1, 1, src, src.rect(), 2, 2);
    EXPECT_EQ(pixelsOf(dst), (Pixels{0x22222222, 0x01000000, 0xFFFFFFFF, 0x22222222}));
}

} // namespace
