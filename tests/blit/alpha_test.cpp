#include "pictures.h"
#include "plain/scaled_blit.h"

#include <limits>

namespace {

using test::pitchOf;
using test::Pixels;
using test::pixelsOf;
using test::rowOf;
using test::showing;
using test::Surface;
using test::unsignedOf;

constexpr float infinity = std::numeric_limits<float>::infinity();

/// What a blend within 0 to 1 means: every byte on its own, in whole numbers.
q_ulong meanOf(q_ulong d, q_ulong dWeight, q_ulong s, q_ulong sWeight) {
    q_ulong result = 0;
    for (int shift = 0; shift < 24; shift += 8)
        result |= ((d >> shift & 0xFF) * dWeight + (s >> shift & 0xFF) * sWeight) / 256 << shift;
    return result;
}

// The forms of one pixel, for values worked out by hand.

q_ulong offsetBlend(q_ulong d, q_ulong s, float alpha) {
    tagRECT rect = {0, 0, 1, 1};
    iBltFast32Alpha(&d, &s, 0, 0, &rect, 1, 1, alpha);
    return d;
}

q_ulong filteredBlend(q_ulong d, q_ulong s, float alpha) {
    Surface src(1, 1, s); // taps reach beyond it
    tagRECT rect = {0, 0, 1, 1};
    iBltBilinear32_Alpha(&d, src.pixels(), &rect, &rect, 1, pitchOf(src), alpha);
    return d;
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

TEST(iBltFast32Alpha, alpha_1_writes_the_source_colours_with_top_byte_0) {
    EXPECT_EQ(offsetBlend(0xAB102030, 0xCD405060, 1.0F), 0x00405060u);
    EXPECT_EQ(offsetBlend(0xFFFFFFFF, 0, 1.0F), 0u);
}

TEST(iBltFast32Alpha, alpha_0_keeps_the_destination_colours_and_clears_the_top_byte) {
    EXPECT_EQ(offsetBlend(0xAB102030, 0xCD405060, 0.0F), 0x00102030u);
}

TEST(iBltFast32Alpha, alpha_is_truncated_to_steps_of_1_in_256) {
    EXPECT_EQ(offsetBlend(0, 0xFFFFFF, 0.0039F), 0u);            // 0.9984 of a step
    EXPECT_EQ(offsetBlend(0, 0xFFFFFF, 0.999F), 0x00FEFEFEu);    // 255 steps: 255 * 255 / 256
    EXPECT_EQ(offsetBlend(0xFFFFFF, 0, -0.0039F), 0x00FFFFFFu);  // toward zero from below, too
    EXPECT_EQ(offsetBlend(0x646464, 0xC8C8C8, 0.5F), 0x969696u); // (100 + 200) / 2
}

TEST(iBltFast32Alpha, the_rectangle_moves_on_both_surfaces_and_the_record_stays) {
    Surface dst(8, 8, 0xAAAAAAAA);
    Surface src = test::numbered(9, 8);
    const Surface expected = showing(dst, 2, 5, src, {2, 5, 5, 7});
    tagRECT rect = {4, 2, 7, 4};
    iBltFast32Alpha(dst.pixels(), src.pixels(), -2, 3, &rect, dst.pitch(), src.pitch(), 1.0F);
    EXPECT_EQ(dst.differenceFrom(expected), "");
    EXPECT_EQ((Pixels{unsignedOf(rect.left), unsignedOf(rect.top), unsignedOf(rect.right), unsignedOf(rect.bottom)}),
              (Pixels{4, 2, 7, 4}));
}

TEST(iBltFast32Alpha, beyond_1_red_runs_out_of_the_word) {
    // 512 times the source: red 0x80 leaves at the top, green and blue double.
    EXPECT_EQ(offsetBlend(0, 0x804020, 2.0F), 0x00008040u);
    // Minus 256 times the destination: green 0x10 gives 0xFFF00000, of which its mask leaves 0xF0 in green's place;
    // blue is without a mask and 0xFFFFFF00, whose sign fills all three bytes.
    EXPECT_EQ(offsetBlend(0x001000, 0, 2.0F), 0x0000F000u);
    EXPECT_EQ(offsetBlend(0x000001, 0, 2.0F), 0x00FFFFFFu);
}

TEST(iBltFast32Alpha, below_0_blue_fills_the_colours_but_not_the_top_byte) {
    // 1 * 512 - 3 * 256 = -256
    EXPECT_EQ(offsetBlend(0x000001, 0x000003, -1.0F), 0x00FFFFFFu);
}

TEST(iBltFast32Alpha, an_alpha_beyond_all_numbers_counts_as_0) {
    for (const float alpha : {1.0e30F, -1.0e30F, infinity, -infinity, std::numeric_limits<float>::quiet_NaN()})
        for (const auto blend : {offsetBlend, filteredBlend, keyedBlend})
            EXPECT_EQ(blend(0xAB102030, 0xCD405060, alpha), 0x00102030u);
    // 2^32 steps, and 512 more: the low 32 bits count.
    EXPECT_EQ(offsetBlend(0xAB102030, 0xCD405060, 0x1p24F), 0x00102030u);
    EXPECT_EQ(offsetBlend(0xAB102030, 0xCD405060, 0x1p24F + 2), offsetBlend(0xAB102030, 0xCD405060, 2.0F));
}

TEST(iBltFast32Alpha, every_weight_from_far_below_0_to_far_above_1) {
    for (int weight = -1024; weight <= 1280; ++weight)
        for (const q_ulong d : {0x00FF8001u, 0x12345678u})
            for (const q_ulong s : {0xFF01FF80u, 0x00FFFFFFu}) {
                const float alpha = static_cast<float>(weight) / 256;
                const q_ulong blended = plain::blended(d, 256 - weight, s, weight);
                ASSERT_EQ(offsetBlend(d, s, alpha), blended) << weight;
                ASSERT_EQ(keyedBlend(d, s, alpha), blended) << weight;
                Surface src(1, 1, s);
                tagRECT rect = {0, 0, 1, 1};
                q_ulong filtered = d;
                plain::iBltBilinear32_Alpha(&filtered, src.pixels(), &rect, &rect, 1, pitchOf(src), alpha);
                ASSERT_EQ(filteredBlend(d, s, alpha), filtered) << weight;
                if (weight >= 0 && weight <= 256) {
                    ASSERT_EQ(blended, meanOf(d, unsignedOf(256 - weight), s, unsignedOf(weight)));
                    ASSERT_EQ(filtered, blended);
                }
            }
}

TEST(iBltBilinear32_Alpha, the_filtered_byte_is_truncated_before_it_is_blended) {
    // Halfway between 1 and 2 the filter gives 1, of which three quarters are 0; three quarters of 1.5 would be 1.
    Surface dst(4, 1);
    Surface src = rowOf({0x010101, 0x020202});
    tagRECT srcRect = src.rect();
    tagRECT dstRect = dst.rect();
    iBltBilinear32_Alpha(dst.pixels(), src.pixels(), &dstRect, &srcRect, pitchOf(dst), pitchOf(src), 0.75F);
    EXPECT_EQ(dst.at(1, 0), 0u);
    EXPECT_EQ(dst.at(2, 0), 0x00010101u);
}

TEST(iBltBilinear32_Alpha, positions_have_20_fraction_bits) {
    // 3 pixels on 65536 make a step of 48 units of 2^-20: the second pixel begins a third of the way. 15 bits would cut
    // the step and reach it at the half.
    Surface src = rowOf({0x10, 0x20, 0x30});
    Surface dst(65536, 1);
    tagRECT srcRect = src.rect();
    tagRECT dstRect = dst.rect();
    iBltBilinear32_Alpha(dst.pixels(), src.pixels(), &dstRect, &srcRect, pitchOf(dst), pitchOf(src), 1.0F);
    EXPECT_EQ(dst.at(21845, 0), 0x1Fu); // fifteen sixteenths
    EXPECT_EQ(dst.at(21846, 0), 0x20u);
    EXPECT_EQ(dst.at(43690, 0), 0x2Fu);
    EXPECT_EQ(dst.at(43691, 0), 0x30u);
}

TEST(iBltBilinear32_Alpha, alpha_1_is_the_plain_filter_and_alpha_0_the_destination) {
    test::Random random(4);
    Surface src = Surface::randomOfSize(random, 5, 4);
    const Surface before = Surface::randomOfSize(random, 9, 11);
    tagRECT srcRect = src.rect();
    tagRECT dstRect = before.rect();
    Surface filtered = before;
    Surface opaque = before;
    Surface clear = before;
    iBltBilinear32(filtered.pixels(), src.pixels(), &dstRect, &srcRect, pitchOf(before), pitchOf(src));
    iBltBilinear32_Alpha(opaque.pixels(), src.pixels(), &dstRect, &srcRect, pitchOf(before), pitchOf(src), 1.0F);
    iBltBilinear32_Alpha(clear.pixels(), src.pixels(), &dstRect, &srcRect, pitchOf(before), pitchOf(src), 0.0F);
    EXPECT_EQ(opaque.differenceFrom(filtered), "");
    Pixels cleared = pixelsOf(before);
    for (q_ulong &pixel : cleared)
        pixel &= 0xFFFFFF;
    EXPECT_EQ(pixelsOf(clear), cleared);
}

TEST(iBltBilinear32_Alpha, below_0_blue_runs_through_green_and_red_and_leaves_the_top_byte_0) {
    // 1 * 512 - 3 * 256 = -256, which is 0xFFFFFF00 as a word
    EXPECT_EQ(filteredBlend(0x000001, 0x000003, -1.0F), 0x00FFFFFFu);
    // Blue 0 * 512 - 1 * 256 = -256 covers red and green, whatever they are.
    EXPECT_EQ(filteredBlend(0xFF102000, 0x010101, -1.0F), 0x00FFFFFFu);
    // Green 0 * 512 - 1 * 256 stays in its place: under its mask 0xFF00 is left of 0xFFFFFF00.
    EXPECT_EQ(filteredBlend(0xFF000000, 0x000100, -1.0F), 0x0000FF00u);
}

TEST(iBltBilinear32_Alpha, leaves_the_top_byte_0_under_every_alpha) {
    test::Random random(7);
    for (int i = 0; i < 100000; ++i) {
        const auto distant = static_cast<float>(static_cast<int>(random.word()));
        const float alpha = random.oneIn(2) ? random.realBetween(-4, 5) : distant / 64;
        ASSERT_EQ(filteredBlend(random.pixel(), random.pixel(), alpha) >> 24, 0u) << alpha;
    }
}

TEST(iBltBilinear32_Alpha, beyond_1_red_and_green_wrap_in_place_and_blue_runs_upward) {
    // Doubled: red and green 0x80 give 0x100, of which their masks leave nothing; blue 0xFF gives 0x1FE.
    EXPECT_EQ(filteredBlend(0, 0x808000, 2.0F), 0u);
    EXPECT_EQ(filteredBlend(0, 0x0000FF, 2.0F), 0x000001FEu);
    EXPECT_EQ(filteredBlend(0, 0x402010, 2.0F), 0x00804020u);
}

TEST(iBltBilinear32_Alpha, a_source_without_pixels_draws_nothing) {
    Surface dst(3, 3, 0xAA112233);
    Surface src(3, 3, 0x00FFFFFF);
    tagRECT dstRect = dst.rect();
    for (tagRECT srcRect : {tagRECT{1, 0, 1, 2}, {0, 1, 2, 1}, {2, 0, 1, 2}})
        iBltBilinear32_Alpha(dst.pixels(), src.pixels(), &dstRect, &srcRect, pitchOf(dst), pitchOf(src), 1.0F);
    EXPECT_EQ(dst.differenceFrom(Surface(3, 3, 0xAA112233)), "");
}

TEST(iBltFast32_KeySrc_AlphaFast, white_on_black_is_7F7F7F) {
    EXPECT_EQ(keyedHalfMix(0, 0xFFFFFF), 0x007F7F7Fu);
}

TEST(iBltFast32_KeySrc_AlphaFast, the_lowest_bits_are_dropped_and_nothing_is_carried) {
    EXPECT_EQ(keyedHalfMix(0x010101, 0x010101), 0u); // halves of 1 are lost before the sum
    EXPECT_EQ(keyedHalfMix(0xFFFFFFFF, 0xFFFFFFFF), 0x00FEFEFEu);
    EXPECT_EQ(keyedHalfMix(0x81000000, 0x81000000), 0u);
}

TEST(iBltFast32_KeySrc_AlphaFast, the_key_is_0_whatever_the_argument_says) {
    EXPECT_EQ(keyedHalfMix(0xAB102030, 0, 0xFFFFFF), 0xAB102030u);
    EXPECT_EQ(keyedHalfMix(0xAB102030, 0x405060, 0x405060), 0x00283848u);
    EXPECT_EQ(keyedHalfMix(0xAB102030, 0x01000000, 0x01000000), 0x00081018u); // black with a top byte is drawn
}

TEST(iBltFast32_KeySrc_Alpha, the_key_is_0_whatever_the_argument_says) {
    EXPECT_EQ(keyedBlend(0xAB102030, 0, 1.0F), 0xAB102030u);
    EXPECT_EQ(keyedBlend(0xAB102030, 0x405060, 1.0F), 0x00405060u); // its key argument equals the pixel
    EXPECT_EQ(keyedBlend(0xAB102030, 0x01000000, 1.0F), 0u);        // black with a top byte is drawn
}

TEST(iBltFast32SafeAlpha_Channel, alpha_255_copies_the_pixel_and_254_clears_the_top_byte) {
    EXPECT_EQ(centredChannelBlend(0x12345678, 0xFFABCDEF), 0xFFABCDEFu);
    EXPECT_EQ(centredChannelBlend(0x12345678, 0xFEABCDEF) >> 24, 0u);
    EXPECT_EQ(centredChannelBlend(0, 0xFEFFFFFF), 0x00FDFDFDu); // 255 * 254 / 256
}

TEST(iBltFast32SafeAlpha_Channel, a_colour_of_alpha_0_dims_the_destination_and_0_leaves_it) {
    EXPECT_EQ(centredChannelBlend(0xAAFF8001, 0x00000001), 0x00FE7F00u); // times 255 / 256
    EXPECT_EQ(centredChannelBlend(0xAAFF8001, 0), 0xAAFF8001u);
}

TEST(iBltFast32SafeAlpha_Channel, every_alpha_with_every_pair_of_bytes) {
    tagRECT rect = {0, 0, 256, 256};
    for (q_ulong alpha = 0; alpha < 256; ++alpha) {
        Pixels dst, src, centred, placed; // no pixel of the source is 0
        for (q_ulong y = 0; y < 256; ++y)
            for (q_ulong x = 0; x < 256; ++x) {
                const q_ulong d = 0xC3000000 | y << 16 | y << 8 | (255 - y);
                const q_ulong s = alpha << 24 | x << 16 | (255 - x) << 8 | x;
                dst.push_back(d);
                src.push_back(s);
                centred.push_back(alpha == 255 ? s : meanOf(d, 255 - alpha, s, alpha));
                placed.push_back(alpha == 0 ? d : meanOf(d, 256 - alpha, s, alpha));
            }
        Pixels result = dst;
        iBltFast32SafeAlpha_Channel(result.data(), src.data(), 128, 128, &rect, 256, 256, 256, 256);
        ASSERT_TRUE(result == centred) << alpha;
        result = dst;
        iBltFast32AlphaChannelSafe(result.data(), src.data(), 0, 0, &rect, &rect, 256, 256);
        ASSERT_TRUE(result == placed) << alpha;
    }
}

using CentredBlit = void (*)(q_ulong *, q_ulong *, int, int, tagRECT *, int, int, int, int);

/// The middle of a 3 by 3 block drawn over `d`; bit i of `pattern` fills the i-th of its eight neighbours.
q_ulong softened(q_ulong d, q_ulong s, unsigned pattern, CentredBlit blit = iBltFast32SafeKeySrcAntiAliasing) {
    constexpr int around[8] = {0, 1, 2, 3, 5, 6, 7, 8};
    q_ulong block[3 * 5] = {0, 0, 0, 0, s};
    for (unsigned i = 0; i < 8; ++i)
        if (pattern >> i & 1)
            block[around[i]] = 0x01000000;
    tagRECT rect = {1, 1, 3, 5};
    blit(&d, block, 1, 2, &rect, 1, 3, 1, 1);
    return d;
}

TEST(iBltFast32SafeKeySrcAntiAliasing, a_lone_pixel_keeps_the_destination_colours_and_clears_the_top_byte) {
    EXPECT_EQ(softened(0xAB102030, 0xFFFFFFFF, 0), 0x00102030u);
}

TEST(iBltFast32SafeKeySrcAntiAliasing, four_direct_neighbours_copy_the_pixel_whole) {
    constexpr unsigned directNeighbours = 1 << 1 | 1 << 3 | 1 << 4 | 1 << 6;
    EXPECT_EQ(softened(0xAB102030, 0xCD405060, directNeighbours), 0xCD405060u);
    EXPECT_EQ(softened(0xAB102030, 0xCD405060, 0xFF), 0xCD405060u);
}

TEST(iBltFast32SafeKeySrcAntiAliasing, coverage_grows_by_42_with_each_pixel_of_the_block) {
    // White over black: 255 * 42 * (n - 1) / 256 for n from 1 to 7, the four direct neighbours never complete.
    constexpr unsigned patterns[] = {0x00, 0x01, 0x05, 0x25, 0xA5, 0xA7, 0xAF};
    constexpr q_ulong expected[] = {0x000000, 0x292929, 0x535353, 0x7D7D7D, 0xA7A7A7, 0xD1D1D1, 0xFBFBFB};
    for (int i = 0; i < 7; ++i)
        EXPECT_EQ(softened(0, 0x00FFFFFF, patterns[i]), expected[i]) << i + 1;
}

TEST(iBltFast32SafeKeySrcAntiAliasing, eight_pixels_of_the_block_exceed_full_coverage_and_wrap) {
    // Coverage 294 and weight -38. 0xFF * 294 = 0x124DA: red loses what stands above the word and keeps 0x24, green's
    // mask keeps 0x24, and blue's 0x124 is or-ed with it.
    EXPECT_EQ(softened(0, 0x00FFFFFF, 0xFF & ~(1u << 3)), 0x00242524u);
    // A white destination takes 0xFF * 38 = 0x25DA off again: 0x124DA - 0x25DA = 0xFF00 in every channel.
    EXPECT_EQ(softened(0x00FFFFFF, 0x00FFFFFF, 0xFF & ~(1u << 4)), 0x00FFFFFFu);
}

TEST(iBltFast32SafeKeySrcAntiAliasing, every_neighbourhood) {
    for (const q_ulong d : {0xAB000000u, 0x00FFFFFFu, 0x5A80C123u})
        for (const q_ulong s : {0x00FFFFFFu, 0xFF000000u, 0x12FE7F01u})
            for (unsigned pattern = 0; pattern < 256; ++pattern)
                ASSERT_EQ(softened(d, s, pattern), softened(d, s, pattern, plain::iBltFast32SafeKeySrcAntiAliasing))
                    << pattern;
}

TEST(iBltFast32SafeKeySrcAntiAliasing, the_last_row_is_left_out_and_none_where_the_clip_ends_above_it) {
    Surface src(5, 5, 0x00ABCDEF); // all neighbours are there: plain copies
    for (const auto &[size, clipHeight, rows] : {std::array{5, 8, 3}, {4, 8, 3}, {4, 4, 2}}) {
        Surface dst(8, 8); // 5 columns lose the odd one, 5 rows that and the last
        tagRECT rect = {0, 0, size, size};
        iBltFast32SafeKeySrcAntiAliasing(dst.pixels(), src.pixels(), 4, 4, &rect, dst.pitch(), src.pitch(), 8,
                                         clipHeight);
        EXPECT_EQ(dst.differenceFrom(showing(Surface(8, 8), 2, 2, src, {0, 0, 4, rows})), "") << clipHeight;
    }
}

TEST(iBltFast32AlphaChannelSafe, the_corner_of_the_source_rectangle_is_not_added) {
    Surface src = test::numbered(20, 8);
    for (int i = 0; i < 160; ++i)
        src.at(i % 20, i / 20) |= 0xFF000000;
    Surface dst(4, 3, 0x11223344);
    Surface expected = dst;
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 4; ++x)
            expected.at(x, y) = meanOf(0x11223344, 1, src.at(x, y), 255);
    tagRECT rect = {10, 4, 14, 7};
    tagRECT clip = dst.rect();
    iBltFast32AlphaChannelSafe(dst.pixels(), src.pixels(), 0, 0, &rect, &clip, dst.pitch(), src.pitch());
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

TEST(iBltFast32AlphaChannelSafe, alpha_255_keeps_one_256th_of_the_destination) {
    EXPECT_EQ(channelBlend(0x00FFFFFF, 0xFFFEFEFE), 0x00FEFEFEu); // (254 * 255 + 255) / 256
    EXPECT_EQ(channelBlend(0x00000000, 0xFFFEFEFE), 0x00FDFDFDu); // 254 * 255 / 256
}

TEST(iBltFast32AlphaChannelSafe, alpha_0_leaves_the_destination_with_its_top_byte) {
    EXPECT_EQ(channelBlend(0xABCDEF01, 0x00FFFFFF), 0xABCDEF01u);
    EXPECT_EQ(channelBlend(0xABCDEF01, 0x01000000) >> 24, 0u);
}

} // namespace
