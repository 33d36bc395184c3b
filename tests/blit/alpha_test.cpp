#include "blits.h"

#include <array>
#include <limits>

namespace {

using namespace test;

// The forms of one pixel, for values worked out by hand.

q_ulong offsetBlend(q_ulong d, q_ulong s, float alpha) {
    tagRECT rect = {0, 0, 1, 1};
    iBltFast32Alpha(&d, &s, 0, 0, &rect, 1, 1, alpha);
    return d;
}

q_ulong filteredBlend(q_ulong d, q_ulong s, float alpha) {
    return over(Surface(1, 1, d), Surface(1, 1, s), iBltBilinear32_Alpha, alpha)[0];
}

q_ulong keyedBlend(q_ulong d, q_ulong s, float alpha) {
    tagRECT rect = {0, 0, 1, 1};
    iBltFast32_KeySrc_Alpha(&d, &s, 0, 0, &rect, 1, 1, s, alpha);
    return d;
}

q_ulong keyedHalfMix(q_ulong d, q_ulong s, q_ulong key = 0) {
    tagRECT rect = {0, 0, 1, 1};
    iBltFast32_KeySrc_AlphaFast(&d, &s, 0, 0, &rect, 1, 1, key);
    return d;
}

q_ulong channelBlend(q_ulong d, q_ulong s) {
    tagRECT rect = {0, 0, 1, 1};
    iBltFast32AlphaChannelSafe(&d, &s, 0, 0, &rect, &rect, 1, 1);
    return d;
}

/// A rectangle of two by two around (1, 1) is what shows its first pixel on (0, 0).
q_ulong centredChannelBlend(q_ulong d, q_ulong s) {
    q_ulong src[4] = {s};
    tagRECT rect = {0, 0, 2, 2};
    iBltFast32SafeAlpha_Channel(&d, src, 1, 1, &rect, 1, 2, 1, 1);
    return d;
}

TEST(iBltFast32Alpha, alpha_goes_in_truncated_steps_of_1_in_256_from_the_destination_to_the_source_with_top_byte_0) {
    EXPECT_EQ(offsetBlend(0xAB102030, 0xCD405060, 1.0F), 0x00405060u);
    EXPECT_EQ(offsetBlend(0xFFFFFFFF, 0, 1.0F), 0u);
    EXPECT_EQ(offsetBlend(0xAB102030, 0xCD405060, 0.0F), 0x00102030u);
    EXPECT_EQ(offsetBlend(0, 0xFFFFFF, 0.0039F), 0u);            // 0.9984 of a step
    EXPECT_EQ(offsetBlend(0, 0xFFFFFF, 0.999F), 0x00FEFEFEu);    // 255 steps: 255 * 255 / 256
    EXPECT_EQ(offsetBlend(0xFFFFFF, 0, -0.0039F), 0x00FFFFFFu);  // toward zero from below, too
    EXPECT_EQ(offsetBlend(0x646464, 0xC8C8C8, 0.5F), 0x969696u); // (100 + 200) / 2
}

TEST(iBltFast32Alpha, the_rectangle_moves_on_both_surfaces_and_the_record_stays) {
    Surface dst(8, 8, 0xAAAAAAAA);
    Surface src = numbered(9, 8);
    const Surface expected = showing(dst, 2, 5, src, {2, 5, 5, 7});
    tagRECT rect = {4, 2, 7, 4};
    iBltFast32Alpha(dst.pixels(), src.pixels(), -2, 3, &rect, dst.pitch(), src.pitch(), 1.0F);
    EXPECT_EQ(dst.differenceFrom(expected), "");
    EXPECT_EQ((std::array{rect.left, rect.top, rect.right, rect.bottom}), (std::array<q_long, 4>{4, 2, 7, 4}));
}

TEST(iBltFast32Alpha, outside_0_to_1_the_masks_decide_what_is_left_of_each_channel) {
    // 512 times the source: red 0x80 leaves at the top, green and blue double.
    EXPECT_EQ(offsetBlend(0, 0x804020, 2.0F), 0x00008040u);
    // Minus 256 times the destination: green 0x10 gives 0xFFF00000, of which its mask leaves 0xF0 in green's place;
    // blue is without a mask and 0xFFFFFF00, whose sign fills all three bytes.
    EXPECT_EQ(offsetBlend(0x001000, 0, 2.0F), 0x0000F000u);
    EXPECT_EQ(offsetBlend(0x000001, 0, 2.0F), 0x00FFFFFFu);
    EXPECT_EQ(offsetBlend(0x000001, 0x000003, -1.0F), 0x00FFFFFFu); // 1 * 512 - 3 * 256 = -256
}

TEST(iBltFast32Alpha, an_alpha_beyond_all_numbers_counts_as_0) {
    using Limits = std::numeric_limits<float>;
    for (const float alpha : {1.0e30F, -1.0e30F, Limits::infinity(), -Limits::infinity(), Limits::quiet_NaN()})
        for (const auto blend : {offsetBlend, filteredBlend, keyedBlend})
            EXPECT_EQ(blend(0xAB102030, 0xCD405060, alpha), 0x00102030u);
    // 2^32 steps, and 512 more: the low 32 bits count.
    EXPECT_EQ(offsetBlend(0xAB102030, 0xCD405060, 0x1p24F), 0x00102030u);
    EXPECT_EQ(offsetBlend(0xAB102030, 0xCD405060, 0x1p24F + 2), offsetBlend(0xAB102030, 0xCD405060, 2.0F));
}

TEST(iBltBilinear32_Alpha, the_filtered_byte_is_truncated_before_it_is_blended) {
    // Halfway between 1 and 2 the filter gives 1, of which three quarters are 0; three quarters of 1.5 would be 1.
    const Pixels pixels = over(Surface(4, 1), rowOf({0x010101, 0x020202}), iBltBilinear32_Alpha, 0.75F);
    EXPECT_EQ(pixels[1], 0u);
    EXPECT_EQ(pixels[2], 0x00010101u);
}

TEST(iBltBilinear32_Alpha, whole_steps_blend_what_they_show) {
    atWholeSteps(0xFFFFFFFF, [](Surface &src, const Surface &shown, Surface dst) {
        const Surface expected = mixed(dst, shown, [](q_ulong d, q_ulong s) { return (d + 3 * s) / 4; });
        stretch(iBltBilinear32_Alpha, dst, dst.rect(), src, src.rect(), 0.75F);
        EXPECT_EQ(dst.differenceFrom(expected), "");
    });
}

TEST(iBltBilinear32_Alpha, outside_0_to_1_blue_runs_through_green_and_red_and_leaves_the_top_byte_0) {
    // 1 * 512 - 3 * 256 = -256, which is 0xFFFFFF00 as a word
    EXPECT_EQ(filteredBlend(0x000001, 0x000003, -1.0F), 0x00FFFFFFu);
    // Blue 0 * 512 - 1 * 256 = -256 covers red and green, whatever they are.
    EXPECT_EQ(filteredBlend(0xFF102000, 0x010101, -1.0F), 0x00FFFFFFu);
    // Green 0 * 512 - 1 * 256 stays in its place: under its mask 0xFF00 is left of 0xFFFFFF00.
    EXPECT_EQ(filteredBlend(0xFF000000, 0x000100, -1.0F), 0x0000FF00u);
    // Doubled: red and green 0x80 give 0x100, of which their masks leave nothing; blue 0xFF gives 0x1FE.
    EXPECT_EQ(filteredBlend(0, 0x808000, 2.0F), 0u);
    EXPECT_EQ(filteredBlend(0, 0x0000FF, 2.0F), 0x000001FEu);
    EXPECT_EQ(filteredBlend(0, 0x402010, 2.0F), 0x00804020u);
}

TEST(iBltFast32_KeySrc_AlphaFast, the_lowest_bits_are_dropped_and_nothing_is_carried) {
    EXPECT_EQ(keyedHalfMix(0, 0xFFFFFF), 0x007F7F7Fu);
    EXPECT_EQ(keyedHalfMix(0x010101, 0x010101), 0u); // halves of 1 are lost before the sum
    EXPECT_EQ(keyedHalfMix(0xFFFFFFFF, 0xFFFFFFFF), 0x00FEFEFEu);
    EXPECT_EQ(keyedHalfMix(0x81000000, 0x81000000), 0u);
}

TEST(iBltFast32_KeySrc_Alpha, the_key_is_0_whatever_the_argument_says) {
    EXPECT_EQ(keyedBlend(0xAB102030, 0, 1.0F), 0xAB102030u);
    EXPECT_EQ(keyedBlend(0xAB102030, 0x405060, 1.0F), 0x00405060u); // its key argument equals the pixel
    EXPECT_EQ(keyedBlend(0xAB102030, 0x01000000, 1.0F), 0u);        // black with a top byte is drawn
    EXPECT_EQ(keyedHalfMix(0xAB102030, 0, 0xFFFFFF), 0xAB102030u);
    EXPECT_EQ(keyedHalfMix(0xAB102030, 0x405060, 0x405060), 0x00283848u);
    EXPECT_EQ(keyedHalfMix(0xAB102030, 0x01000000, 0x01000000), 0x00081018u);
}

TEST(iBltFast32SafeAlpha_Channel, alpha_255_copies_the_pixel_254_clears_the_top_byte_and_0_dims_the_destination) {
    EXPECT_EQ(centredChannelBlend(0x12345678, 0xFFABCDEF), 0xFFABCDEFu);
    EXPECT_EQ(centredChannelBlend(0x12345678, 0xFEABCDEF) >> 24, 0u);
    EXPECT_EQ(centredChannelBlend(0, 0xFEFFFFFF), 0x00FDFDFDu);          // 255 * 254 / 256
    EXPECT_EQ(centredChannelBlend(0xAAFF8001, 0x00000001), 0x00FE7F00u); // times 255 / 256
    EXPECT_EQ(centredChannelBlend(0xAAFF8001, 0), 0xAAFF8001u);
}

TEST(iBltFast32AlphaChannelSafe, the_corner_of_the_source_rectangle_is_not_added) {
    Surface src = showing(Surface(20, 8), 0, 0, Surface(4, 3, 0xFFABCDEF), {0, 0, 4, 3});
    Surface dst(4, 3);
    tagRECT rect = {10, 4, 14, 7};
    tagRECT clip = dst.rect();
    iBltFast32AlphaChannelSafe(dst.pixels(), src.pixels(), 0, 0, &rect, &clip, dst.pitch(), src.pitch());
    EXPECT_EQ(pixelsOf(dst), Pixels(12, 0xAACCEE)); // 255 / 256 of it
}

TEST(iBltFast32AlphaChannelSafe, alpha_255_keeps_one_256th_of_the_destination_and_alpha_0_all_of_it) {
    EXPECT_EQ(channelBlend(0x00FFFFFF, 0xFFFEFEFE), 0x00FEFEFEu); // (254 * 255 + 255) / 256
    EXPECT_EQ(channelBlend(0x00000000, 0xFFFEFEFE), 0x00FDFDFDu); // 254 * 255 / 256
    EXPECT_EQ(channelBlend(0xABCDEF01, 0x00FFFFFF), 0xABCDEF01u);
    EXPECT_EQ(channelBlend(0xABCDEF01, 0x01000000) >> 24, 0u);
}

/// The middle of a 3 by 3 block, the others of which are filled where the rows have a '#', drawn over `d`.
q_ulong softened(q_ulong d, q_ulong s, const Rows &rows) {
    Surface src = pictureOf(rows, {{'#', 0x01000000}});
    src.at(1, 1) = s;
    Surface dst(1, 1, d);
    place(iBltFast32SafeKeySrcAntiAliasing, dst, 1, 2, src, {1, 1, 3, 5}, 1, 1);
    return dst.at(0, 0);
}

TEST(iBltFast32SafeKeySrcAntiAliasing, a_lone_pixel_is_transparent_and_one_between_four_is_copied_whole) {
    EXPECT_EQ(softened(0xAB102030, 0xFFFFFFFF, {"...", "...", "..."}), 0x00102030u);
    EXPECT_EQ(softened(0xAB102030, 0xCD405060, {".#.", "#.#", ".#."}), 0xCD405060u);
    EXPECT_EQ(softened(0xAB102030, 0xCD405060, {"###", "#.#", "###"}), 0xCD405060u);
}

TEST(iBltFast32SafeKeySrcAntiAliasing, coverage_grows_by_42_with_each_pixel_of_the_block_until_it_wraps) {
    // White over black: 255 * 42 * (n - 1) / 256 for n from 2 to 7, the four direct neighbours never complete.
    constexpr q_ulong white = 0x00FFFFFF;
    EXPECT_EQ(softened(0, white, {"#..", "...", "..."}), 0x292929u);
    EXPECT_EQ(softened(0, white, {"#.#", "...", "..."}), 0x535353u);
    EXPECT_EQ(softened(0, white, {"#.#", "...", "#.."}), 0x7D7D7Du);
    EXPECT_EQ(softened(0, white, {"#.#", "...", "#.#"}), 0xA7A7A7u);
    EXPECT_EQ(softened(0, white, {"###", "...", "#.#"}), 0xD1D1D1u);
    EXPECT_EQ(softened(0, white, {"###", "#..", "#.#"}), 0xFBFBFBu);
    // Coverage 294 and weight -38. 0xFF * 294 = 0x124DA: red loses what stands above the word and keeps 0x24, green's
    // mask keeps 0x24, and blue's 0x124 is or-ed with it.
    EXPECT_EQ(softened(0, 0x00FFFFFF, {"###", "..#", "###"}), 0x00242524u);
    // A white destination takes 0xFF * 38 = 0x25DA off again: 0x124DA - 0x25DA = 0xFF00 in every channel.
    EXPECT_EQ(softened(0x00FFFFFF, 0x00FFFFFF, {"###", "#..", "###"}), 0x00FFFFFFu);
}

TEST(iBltFast32SafeKeySrcAntiAliasing, the_last_row_is_left_out_and_none_where_the_clip_ends_above_it) {
    Surface src(5, 5, 0x00ABCDEF); // all neighbours are there: plain copies
    for (const auto &[size, clipHeight, rows] : {std::array{5, 8, 3}, {4, 8, 3}, {4, 4, 2}}) {
        Surface dst(8, 8); // 5 columns lose the odd one, 5 rows that and the last
        place(iBltFast32SafeKeySrcAntiAliasing, dst, 4, 4, src, {0, 0, size, size}, 8, clipHeight);
        EXPECT_EQ(dst.differenceFrom(showing(Surface(8, 8), 2, 2, src, {0, 0, 4, rows})), "") << clipHeight;
    }
}

} // namespace
