#include "pictures.h"

namespace {

using test::numbered;
using test::pitchOf;
using test::Pixels;
using test::pixelsOf;
using test::rowOf;
using test::showing;
using test::Surface;
using test::unsignedOf;

void fastKey(Surface &dst, Surface &src, q_ulong key) {
    tagRECT rect = src.rect();
    iBltFast32_KeySrc(dst.pixels(), src.pixels(), 0, 0, &rect, pitchOf(dst), pitchOf(src), key);
}

void centredKey(Surface &dst, Surface &src, int centreX, int centreY) {
    tagRECT rect = src.rect();
    iBltFast32SafeKeySrc(dst.pixels(), src.pixels(), centreX, centreY, &rect, dst.pitch(), src.pitch(), dst.width(),
                         dst.height());
}

using ScalingBlit = void (*)(q_ulong *, q_ulong *, tagRECT *, tagRECT *, q_ulong, q_ulong, q_ulong);

/// The source over the whole of a destination.
Pixels scaled(ScalingBlit blit, Surface dst, Surface src, q_ulong key) {
    tagRECT srcRect = src.rect();
    tagRECT dstRect = dst.rect();
    blit(dst.pixels(), src.pixels(), &dstRect, &srcRect, pitchOf(dst), pitchOf(src), key);
    return pixelsOf(dst);
}

TEST(iBltFast32_KeySrc, leaves_out_the_key_and_copies_the_same_colour_with_another_top_byte) {
    Surface dst(4, 1, 0x11111111);
    Surface src = rowOf({0x00123456, 0xFF123456, 0x00123457, 0});
    fastKey(dst, src, 0x00123456);
    EXPECT_EQ(pixelsOf(dst), (Pixels{0x11111111, 0xFF123456, 0x00123457, 0})); // the key is the argument, not 0
}

TEST(iBltFast32_KeySrc, a_key_with_a_top_byte_matches_that_top_byte_alone) {
    Surface dst(2, 1, 0x11111111);
    Surface src = rowOf({0x80FFFFFF, 0x00FFFFFF});
    fastKey(dst, src, 0x80FFFFFF);
    EXPECT_EQ(pixelsOf(dst), (Pixels{0x11111111, 0x00FFFFFF}));
}

TEST(iBltFast32_KeySrc, positions_and_pitches_below_0_mean_what_they_say) {
    Surface src = numbered(3, 2);
    Surface dst(6, 4);
    const Surface expected = showing(showing(dst, 1, 3, src, {0, 0, 3, 1}), 1, 2, src, {0, 1, 3, 2});
    tagRECT rect = src.rect();
    iBltFast32_KeySrc(&dst.at(4, 2), src.pixels(), unsignedOf(-3), unsignedOf(-1), &rect, unsignedOf(-dst.pitch()),
                      pitchOf(src), 0);
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

TEST(iBltNear32_KeySrc, the_key_is_tested_on_the_sampled_pixel) {
    EXPECT_EQ(scaled(iBltNear32_KeySrc, Surface(4, 1, 0x11111111), rowOf({0x00ABCDEF, 0xFFABCDEF}), 0x00ABCDEF),
              (Pixels{0x11111111, 0x11111111, 0xFFABCDEF, 0xFFABCDEF}));
}

TEST(iBltNear32_KeySrc, sources_too_wide_for_16_integer_bits_fit_into_17) {
    for (const ScalingBlit blit : {iBltNear32_KeySrc, iBltBilinear32_KeySrc})
        EXPECT_EQ(scaled(blit, Surface(4, 1), numbered(70000, 1), 0), (Pixels{1, 17501, 35001, 52501}));
}

TEST(iBltNear32_KeySrc, the_step_is_truncated_to_15_fraction_bits) {
    // 3 pixels on 65536 make a step of 1.5 units, cut to 1: the last position is 65535 / 32768, in the second pixel.
    const Pixels pixels = scaled(iBltNear32_KeySrc, Surface(65536, 1), numbered(3, 1), 0);
    EXPECT_EQ(pixels[32767], 1u);
    EXPECT_EQ(pixels[32768], 2u);
    EXPECT_EQ(pixels[65535], 2u);
}

TEST(iBltNear32_KeySrc, an_empty_source_repeats_its_first_column_or_row) {
    Surface src = numbered(3, 3);
    Surface dst(3, 3);
    tagRECT srcRect = {1, 0, 1, 3};
    tagRECT dstRect = dst.rect();
    iBltNear32_KeySrc(dst.pixels(), src.pixels(), &dstRect, &srcRect, pitchOf(dst), pitchOf(src), 0);
    EXPECT_EQ(pixelsOf(dst), (Pixels{2, 2, 2, 5, 5, 5, 8, 8, 8}));
}

TEST(iBltBilinear32_KeySrc, a_surface_that_is_all_key_leaves_the_destination_untouched) {
    EXPECT_EQ(scaled(iBltBilinear32_KeySrc, Surface(9, 7, 0xDEADBEEF), Surface(4, 5, 0x00A1B2C3), 0x00A1B2C3),
              Pixels(63, 0xDEADBEEF));
}

TEST(iBltBilinear32_KeySrc, a_key_with_a_top_byte_never_matches) {
    EXPECT_EQ(scaled(iBltBilinear32_KeySrc, Surface(9, 7, 0xDEADBEEF), Surface(4, 5, 0x80A1B2C3), 0x80A1B2C3),
              Pixels(63, 0x00A1B2C3));
}

TEST(iBltBilinear32_KeySrc, the_border_of_a_keyed_area_blends_the_key_in) {
    // Steps of a quarter: 4, 8 and 12 sixteenths of 0x64, 0x80 and 0xFF, truncated; then the last column alone.
    EXPECT_EQ(scaled(iBltBilinear32_KeySrc, Surface(8, 1, 0x11111111), rowOf({0x000000, 0x6480FF}), 0),
              (Pixels{0x11111111, 0x19203F, 0x32407F, 0x4B60BF, 0x6480FF, 0x6480FF, 0x6480FF, 0x6480FF}));
}

TEST(iBltBilinear32_KeySrc, what_filters_to_the_key_is_left_out_though_no_tap_equals_it) {
    EXPECT_EQ(scaled(iBltBilinear32_KeySrc, Surface(4, 1, 0x11111111), rowOf({0x10, 0x30}), 0x20),
              (Pixels{0x10, 0x11111111, 0x30, 0x30}));
}

TEST(iBltFast32SafeKeySrc, a_centre_at_the_origin_draws_the_lower_right_quarter) {
    Surface src = numbered(6, 4);
    Surface dst(8, 8);
    const Surface expected = showing(dst, 0, 0, src, {3, 2, 6, 4});
    centredKey(dst, src, 0, 0);
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

TEST(iBltFast32SafeKeySrc, odd_width_loses_last_column_and_odd_height_last_row) {
    Surface src = numbered(5, 3);
    Surface dst(8, 8);
    const Surface expected = showing(dst, 2, 3, src, {0, 0, 4, 2});
    centredKey(dst, src, 4, 4);
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

TEST(iBltFast32SafeKeySrc, only_0_is_left_out) {
    Surface src = test::pictureOf(2, {0, 0x01000000, 0xFFFFFFFF, 0});
    Surface dst(2, 2, 0x22222222);
    centredKey(dst, src, 1, 1);
    EXPECT_EQ(pixelsOf(dst), (Pixels{0x22222222, 0x01000000, 0xFFFFFFFF, 0x22222222}));
}

} // namespace
