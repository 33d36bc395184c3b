#include "support/cases.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using test::Case;
using test::forEachCase;
using test::Surface;

constexpr int lowest = std::numeric_limits<int>::min();
constexpr int highest = std::numeric_limits<int>::max();
constexpr float infinity = std::numeric_limits<float>::infinity();

int widthOf(const tagRECT &rect) {
    return static_cast<int>(rect.right - rect.left);
}

int heightOf(const tagRECT &rect) {
    return static_cast<int>(rect.bottom - rect.top);
}

std::uint32_t cut(std::int64_t value) {
    return static_cast<std::uint32_t>(value);
}

/// The weight of the source in 1/256: truncated toward zero, what 64 bits cannot hold gives 0, 32 bits are kept.
std::int64_t weightOf(float alpha) {
    const double exact = static_cast<double>(alpha) * 256;
    if (!(exact > -9e18 && exact < 9e18))
        return 0;
    return static_cast<std::int32_t>(cut(static_cast<std::int64_t>(exact)));
}

/// Each channel in its place, under its mask, in 32 bits.
q_ulong naiveBlend(q_ulong d, std::int64_t dWeight, q_ulong s, std::int64_t sWeight) {
    const auto products = [&](std::int64_t mask) {
        return cut((static_cast<std::int64_t>(d) & mask) * dWeight + (static_cast<std::int64_t>(s) & mask) * sWeight);
    };
    return ((products(0xFF0000) & 0xFF0000FF) | (products(0xFF00) & 0xFF0000) | products(0xFF)) >> 8;
}

/// Each channel as a byte of its own; blue unmasked and shifted as a word without a sign.
q_ulong naiveMix(q_ulong d, q_ulong s, std::int64_t weight) {
    const auto sum = [&](int shift) {
        return cut(static_cast<std::int64_t>(s >> shift & 0xFF) * weight +
                   static_cast<std::int64_t>(d >> shift & 0xFF) * (256 - weight));
    };
    return (sum(16) & 0xFF00) << 8 | (sum(8) & 0xFF00) | sum(0) / 256;
}

/// What a blend within 0 to 1 means: every byte on its own, in whole numbers.
q_ulong meanOf(q_ulong d, q_ulong dWeight, q_ulong s, q_ulong sWeight) {
    q_ulong result = 0;
    for (int shift = 0; shift < 24; shift += 8)
        result |= ((d >> shift & 0xFF) * dWeight + (s >> shift & 0xFF) * sWeight) / 256 << shift;
    return result;
}

q_ulong naiveHalfMix(q_ulong d, q_ulong s) {
    q_ulong result = 0;
    for (int shift = 0; shift < 24; shift += 8)
        result |= ((d >> shift & 0xFF) / 2 + (s >> shift & 0xFF) / 2) << shift;
    return result;
}

/// Rows top to bottom, columns left to right; `store` gets the destination pixel and the source's column and row.
template <class Store>
void naiveWalk(Surface &dst, int dstX, int dstY, const tagRECT &rect, Store store) {
    for (int y = 0; y < heightOf(rect); ++y)
        for (int x = 0; x < widthOf(rect); ++x)
            store(dst.at(dstX + x, dstY + y), static_cast<int>(rect.left) + x, static_cast<int>(rect.top) + y);
}

/// Asks of every pixel of the picture which source pixel lies on it, in numbers that cannot overflow.
template <class Store>
void naiveCentred(Surface &dst, std::int64_t centreX, std::int64_t centreY, const tagRECT &rect, int rowsLeftOut,
                  int clipWidth, int clipHeight, Store store) {
    const int halfWidth = widthOf(rect) >> 1;
    const int halfHeight = heightOf(rect) >> 1;
    for (int y = 0; y < clipHeight && y < dst.height(); ++y)
        for (int x = 0; x < clipWidth && x < dst.width(); ++x)
            if (x >= centreX - halfWidth && x < centreX + halfWidth && y >= centreY - halfHeight &&
                y < centreY + halfHeight - rowsLeftOut)
                store(dst.at(x, y), static_cast<int>(rect.left + x - (centreX - halfWidth)),
                      static_cast<int>(rect.top + y - (centreY - halfHeight)));
}

/// A picture of all pairs of bytes in each channel: the destination changes by row, the source by column.
struct AllPairs {
    Surface dst{256, 256};
    Surface src{256, 256};

    explicit AllPairs(q_ulong srcTopByte = 0x80) {
        for (q_ulong y = 0; y < 256; ++y)
            for (q_ulong x = 0; x < 256; ++x) {
                dst.at(static_cast<int>(x), static_cast<int>(y)) = 0xC3000000 | y << 16 | y << 8 | (255 - y);
                src.at(static_cast<int>(x), static_cast<int>(y)) = srcTopByte << 24 | x << 16 | (255 - x) << 8 | x;
            }
    }

    /// The picture with `mean(d, s)` in every pixel.
    template <class Mean>
    Surface with(Mean mean) const {
        Surface result = dst;
        for (int y = 0; y < 256; ++y)
            for (int x = 0; x < 256; ++x)
                result.at(x, y) = mean(dst.at(x, y), src.at(x, y));
        return result;
    }
};

constexpr q_ulong someWeights[] = {0, 1, 2, 3, 17, 64, 127, 128, 129, 200, 254, 255, 256};

/// Mostly within 0 to 1, in steps of 1/256 and between them; else outside, sometimes far.
float randomAlpha(test::Random &random) {
    switch (random.between(0, 9)) {
    case 0:
        return random.realBetween(-4, 5);
    case 1:
        return static_cast<float>(random.between(lowest, highest)) / 64;
    case 2:
        return static_cast<float>(random.between(lowest, highest)) * 1.0e5F;
    default:
        return static_cast<float>(random.between(0, 4096)) / 4096;
    }
}

q_ulong unsignedOf(int value) {
    return static_cast<q_ulong>(value);
}

// The forms of one pixel, for values worked out by hand.

q_ulong offsetBlend(q_ulong d, q_ulong s, float alpha) {
    Surface dst(1, 1, d);
    Surface src(1, 1, s);
    tagRECT rect = dst.rect();
    iBltFast32Alpha(dst.pixels(), src.pixels(), 0, 0, &rect, dst.pitch(), src.pitch(), alpha);
    return dst.at(0, 0);
}

q_ulong filteredBlend(q_ulong d, q_ulong s, float alpha) {
    Surface dst(1, 1, d);
    Surface src(1, 1, s);
    tagRECT rect = dst.rect();
    iBltBilinear32_Alpha(dst.pixels(), src.pixels(), &rect, &rect, unsignedOf(dst.pitch()), unsignedOf(src.pitch()),
                         alpha);
    return dst.at(0, 0);
}

q_ulong keyedBlend(q_ulong d, q_ulong s, float alpha) {
    Surface dst(1, 1, d);
    Surface src(1, 1, s);
    tagRECT rect = dst.rect();
    iBltFast32_KeySrc_Alpha(dst.pixels(), src.pixels(), 0, 0, &rect, dst.pitch(), src.pitch(), s, alpha);
    return dst.at(0, 0);
}

q_ulong keyedHalfMix(q_ulong d, q_ulong s, q_ulong key = 0) {
    Surface dst(1, 1, d);
    Surface src(1, 1, s);
    tagRECT rect = dst.rect();
    iBltFast32_KeySrc_AlphaFast(dst.pixels(), src.pixels(), 0, 0, &rect, dst.pitch(), src.pitch(), key);
    return dst.at(0, 0);
}

q_ulong centredChannelBlend(q_ulong d, q_ulong s) {
    Surface dst(2, 2, d);
    Surface src(2, 2, s);
    tagRECT rect = dst.rect();
    iBltFast32SafeAlpha_Channel(dst.pixels(), src.pixels(), 1, 1, &rect, dst.pitch(), src.pitch(), 2, 2);
    return dst.at(0, 0);
}

q_ulong channelBlend(q_ulong d, q_ulong s) {
    Surface dst(1, 1, d);
    Surface src(1, 1, s);
    tagRECT rect = dst.rect();
    iBltFast32AlphaChannelSafe(dst.pixels(), src.pixels(), 0, 0, &rect, &rect, dst.pitch(), src.pitch());
    return dst.at(0, 0);
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
    test::Random random(1);
    Surface dst = Surface::randomOfSize(random, 8, 8);
    Surface src = Surface::randomOfSize(random, 9, 8);
    Surface expected = dst;
    for (int y = 5; y < 7; ++y)
        for (int x = 2; x < 5; ++x)
            expected.at(x, y) = src.at(x, y) & 0xFFFFFF;
    tagRECT rect = {4, 2, 7, 4};
    iBltFast32Alpha(dst.pixels(), src.pixels(), -2, 3, &rect, dst.pitch(), src.pitch(), 1.0F);
    EXPECT_EQ(dst.differenceFrom(expected), "");
    EXPECT_EQ(rect.left, 4);
    EXPECT_EQ(rect.top, 2);
    EXPECT_EQ(rect.right, 7);
    EXPECT_EQ(rect.bottom, 4);
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
        EXPECT_EQ(offsetBlend(0xAB102030, 0xCD405060, alpha), 0x00102030u);
    // 2^32 steps, and 512 more: the low 32 bits count.
    EXPECT_EQ(offsetBlend(0xAB102030, 0xCD405060, 0x1p24F), 0x00102030u);
    EXPECT_EQ(offsetBlend(0xAB102030, 0xCD405060, 0x1p24F + 2), offsetBlend(0xAB102030, 0xCD405060, 2.0F));
}

TEST(iBltFast32Alpha, every_pair_of_bytes_at_several_weights) {
    for (const q_ulong weight : someWeights) {
        AllPairs pairs;
        const Surface expected = pairs.with([=](q_ulong d, q_ulong s) { return meanOf(d, 256 - weight, s, weight); });
        tagRECT rect = pairs.dst.rect();
        iBltFast32Alpha(pairs.dst.pixels(), pairs.src.pixels(), 0, 0, &rect, pairs.dst.pitch(), pairs.src.pitch(),
                        static_cast<float>(weight) / 256);
        EXPECT_EQ(pairs.dst.differenceFrom(expected), "") << weight;
    }
}

TEST(iBltFast32Alpha, every_weight_from_far_below_0_to_far_above_1) {
    for (int weight = -1024; weight <= 1280; ++weight)
        for (const q_ulong d : {0x00FF8001u, 0x12345678u})
            for (const q_ulong s : {0xFF01FF80u, 0x00FFFFFFu}) {
                ASSERT_EQ(offsetBlend(d, s, static_cast<float>(weight) / 256), naiveBlend(d, 256 - weight, s, weight))
                    << weight;
                if (weight >= 0 && weight <= 256) {
                    ASSERT_EQ(offsetBlend(d, s, static_cast<float>(weight) / 256),
                              meanOf(d, unsignedOf(256 - weight), s, unsignedOf(weight)));
                }
            }
}

TEST(iBltFast32Alpha, every_rectangle_over_a_small_surface) {
    test::Random random(2);
    Surface src = Surface::randomOfSize(random, 4, 4);
    const Surface empty(4, 4, 0x01020304);
    for (int top = 0; top <= 4; ++top)
        for (int left = 0; left <= 4; ++left)
            for (int bottom = -2; bottom <= 4; ++bottom)
                for (int right = -2; right <= 4; ++right) {
                    Surface dst = empty;
                    Surface expected = empty;
                    tagRECT rect = {left - 2, top + 1, right - 2, bottom + 1};
                    naiveWalk(expected, left, top, {left, top, right, bottom},
                              [&](q_ulong &d, int x, int y) { d = naiveBlend(d, 156, src.at(x, y), 100); });
                    iBltFast32Alpha(dst.pixels(), src.pixels(), 2, -1, &rect, dst.pitch(), src.pitch(), 100.0F / 256);
                    ASSERT_EQ(dst.differenceFrom(expected), "");
                }
}

/// Blits a surface over itself, moved by up to a few pixels, and compares with one pixel after the other.
template <class Blit, class Store>
void overlappingBlits(Blit blit, Store store) {
    for (int offsetY = -3; offsetY <= 3; ++offsetY)
        for (int offsetX = -5; offsetX <= 5; ++offsetX) {
            test::Random random(3);
            Surface surface = Surface::randomOfSize(random, 24, 12);
            Surface expected = surface;
            tagRECT rect = {6, 4, 18, 9};
            naiveWalk(expected, 6 + offsetX, 4 + offsetY, rect,
                      [&](q_ulong &d, int x, int y) { store(d, expected, x, y); });
            blit(surface, offsetX, offsetY, rect);
            EXPECT_EQ(surface.differenceFrom(expected), "") << "moved by " << offsetX << ", " << offsetY;
        }
}

TEST(iBltFast32Alpha, overlapping_blends_run_in_row_and_column_order) {
    overlappingBlits(
        [](Surface &surface, int offsetX, int offsetY, tagRECT rect) {
            iBltFast32Alpha(&surface.at(offsetX, offsetY), surface.pixels(), 0, 0, &rect, surface.pitch(),
                            surface.pitch(), 0.5F);
        },
        [](q_ulong &d, Surface &src, int x, int y) { d = naiveBlend(d, 128, src.at(x, y), 128); });
}

TEST(iBltFast32Alpha, agrees_with_a_naive_blend) {
    forEachCase("iBltFast32Alpha", [](Case &c) {
        Surface dst = Surface::random(c.random);
        Surface src = Surface::random(c.random);
        const tagRECT target =
            c.random.rectInsideOrEmpty(std::min(src.width(), dst.width()), std::min(src.height(), dst.height()));
        const int offsetX = c.random.between(-30, 30);
        const int offsetY = c.random.between(-30, 30);
        tagRECT rect = {target.left - offsetX, target.top - offsetY, target.right - offsetX, target.bottom - offsetY};
        const float alpha = randomAlpha(c.random);
        const std::int64_t weight = weightOf(alpha);
        Surface expected = dst;
        naiveWalk(expected, static_cast<int>(target.left), static_cast<int>(target.top), target,
                  [&](q_ulong &d, int x, int y) { d = naiveBlend(d, 256 - weight, src.at(x, y), weight); });
        iBltFast32Alpha(dst.pixels(), src.pixels(), offsetX, offsetY, &rect, dst.pitch(), src.pitch(), alpha);
        c.expectEqual(dst, expected);
    });
}

/// The filter of the plain bilinear scaling: positions of 20 fraction bits, unsigned, no guard at the edges.
q_ulong naiveSample(const Surface &src, const tagRECT &srcRect, const tagRECT &dstRect, int x, int y) {
    const auto positionOf = [](int pixel, int srcExtent, int dstExtent) {
        const auto numerator = static_cast<std::uint32_t>(static_cast<std::uint64_t>(srcExtent) << 20);
        const std::uint64_t step = numerator / static_cast<std::uint32_t>(dstExtent);
        return static_cast<std::uint32_t>(step * static_cast<std::uint64_t>(pixel));
    };
    const std::uint32_t u = positionOf(x, widthOf(srcRect), widthOf(dstRect));
    const std::uint32_t v = positionOf(y, heightOf(srcRect), heightOf(dstRect));
    const int column = static_cast<int>(srcRect.left) + static_cast<int>(u >> 20);
    const int row = static_cast<int>(srcRect.top) + static_cast<int>(v >> 20);
    const q_ulong fx = u >> 16 & 15;
    const q_ulong fy = v >> 16 & 15;
    q_ulong result = 0;
    for (int shift = 0; shift < 24; shift += 8) {
        const auto tap = [&](int dx, int dy) { return src.at(column + dx, row + dy) >> shift & 0xFF; };
        const q_ulong sum = tap(0, 0) * (16 - fx) * (16 - fy) + tap(1, 0) * fx * (16 - fy) +
                            tap(0, 1) * (16 - fx) * fy + tap(1, 1) * fx * fy;
        result |= sum / 256 << shift;
    }
    return result;
}

TEST(iBltBilinear32_Alpha, the_filtered_byte_is_truncated_before_it_is_blended) {
    // Halfway between 1 and 2 the filter gives 1, of which three quarters are 0; three quarters of 1.5 would be 1.
    Surface dst(4, 1);
    Surface src(2, 1);
    src.at(0, 0) = 0x010101;
    src.at(1, 0) = 0x020202;
    tagRECT srcRect = src.rect();
    tagRECT dstRect = dst.rect();
    iBltBilinear32_Alpha(dst.pixels(), src.pixels(), &dstRect, &srcRect, unsignedOf(dst.pitch()),
                         unsignedOf(src.pitch()), 0.75F);
    EXPECT_EQ(dst.at(1, 0), 0u);
    EXPECT_EQ(dst.at(2, 0), 0x00010101u);
}

TEST(iBltBilinear32_Alpha, positions_have_20_fraction_bits) {
    // 3 pixels on 65536 make a step of 48 units of 2^-20: the second pixel begins a third of the way. 15 bits would cut
    // the step and reach it at the half.
    Surface src(3, 1);
    src.at(0, 0) = 0x10;
    src.at(1, 0) = 0x20;
    src.at(2, 0) = 0x30;
    Surface dst(65536, 1);
    tagRECT srcRect = src.rect();
    tagRECT dstRect = dst.rect();
    iBltBilinear32_Alpha(dst.pixels(), src.pixels(), &dstRect, &srcRect, unsignedOf(dst.pitch()),
                         unsignedOf(src.pitch()), 1.0F);
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
    Surface plain = before;
    iBltBilinear32(plain.pixels(), src.pixels(), &dstRect, &srcRect, unsignedOf(plain.pitch()),
                   unsignedOf(src.pitch()));
    Surface opaque = before;
    iBltBilinear32_Alpha(opaque.pixels(), src.pixels(), &dstRect, &srcRect, unsignedOf(opaque.pitch()),
                         unsignedOf(src.pitch()), 1.0F);
    EXPECT_EQ(opaque.differenceFrom(plain), "");
    Surface clear = before;
    Surface cleared = before;
    for (int y = 0; y < before.height(); ++y)
        for (int x = 0; x < before.width(); ++x)
            cleared.at(x, y) &= 0xFFFFFF;
    iBltBilinear32_Alpha(clear.pixels(), src.pixels(), &dstRect, &srcRect, unsignedOf(clear.pitch()),
                         unsignedOf(src.pitch()), 0.0F);
    EXPECT_EQ(clear.differenceFrom(cleared), "");
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
        const float alpha = randomAlpha(random);
        ASSERT_EQ(filteredBlend(random.pixel(), random.pixel(), alpha) >> 24, 0u) << alpha;
    }
}

TEST(iBltBilinear32_Alpha, beyond_1_red_and_green_wrap_in_place_and_blue_runs_upward) {
    // Doubled: red and green 0x80 give 0x100, of which their masks leave nothing; blue 0xFF gives 0x1FE.
    EXPECT_EQ(filteredBlend(0, 0x808000, 2.0F), 0u);
    EXPECT_EQ(filteredBlend(0, 0x0000FF, 2.0F), 0x000001FEu);
    EXPECT_EQ(filteredBlend(0, 0x402010, 2.0F), 0x00804020u);
}

TEST(iBltBilinear32_Alpha, every_pair_of_bytes_at_several_weights) {
    for (const q_ulong weight : someWeights) {
        AllPairs pairs;
        const Surface expected = pairs.with([=](q_ulong d, q_ulong s) { return meanOf(d, 256 - weight, s, weight); });
        tagRECT rect = pairs.dst.rect();
        iBltBilinear32_Alpha(pairs.dst.pixels(), pairs.src.pixels(), &rect, &rect, unsignedOf(pairs.dst.pitch()),
                             unsignedOf(pairs.src.pitch()), static_cast<float>(weight) / 256);
        EXPECT_EQ(pairs.dst.differenceFrom(expected), "") << weight;
    }
}

TEST(iBltBilinear32_Alpha, every_weight_from_far_below_0_to_far_above_1) {
    for (int weight = -1024; weight <= 1280; ++weight)
        for (const q_ulong d : {0x00FF8001u, 0x12345678u})
            for (const q_ulong s : {0xFF01FF80u, 0x00FFFFFFu})
                ASSERT_EQ(filteredBlend(d, s, static_cast<float>(weight) / 256), naiveMix(d, s, weight)) << weight;
}

TEST(iBltBilinear32_Alpha, every_destination_rectangle_over_a_small_surface) {
    test::Random random(5);
    Surface src = Surface::randomOfSize(random, 5, 3);
    tagRECT srcRect = src.rect();
    const Surface empty(5, 5, 0x01020304);
    for (int top = 0; top <= 5; ++top)
        for (int left = 0; left <= 5; ++left)
            for (int bottom = -2; bottom <= 5; ++bottom)
                for (int right = -2; right <= 5; ++right) {
                    Surface dst = empty;
                    Surface expected = empty;
                    tagRECT dstRect = {left, top, right, bottom};
                    naiveWalk(expected, left, top, dstRect, [&](q_ulong &d, int x, int y) {
                        d = naiveMix(d, naiveSample(src, srcRect, dstRect, x - left, y - top), 77);
                    });
                    iBltBilinear32_Alpha(dst.pixels(), src.pixels(), &dstRect, &srcRect, unsignedOf(dst.pitch()),
                                         unsignedOf(src.pitch()), 77.0F / 256);
                    ASSERT_EQ(dst.differenceFrom(expected), "");
                }
}

TEST(iBltBilinear32_Alpha, overlapping_blends_run_in_row_and_column_order) {
    const tagRECT whole = {0, 0, 12, 5};
    overlappingBlits(
        [](Surface &surface, int offsetX, int offsetY, tagRECT rect) {
            tagRECT dstRect = {rect.left + offsetX, rect.top + offsetY, rect.right + offsetX, rect.bottom + offsetY};
            iBltBilinear32_Alpha(surface.pixels(), surface.pixels(), &dstRect, &rect, unsignedOf(surface.pitch()),
                                 unsignedOf(surface.pitch()), 0.5F);
        },
        [&](q_ulong &d, Surface &src, int x, int y) {
            d = naiveMix(d, naiveSample(src, {6, 4, 18, 9}, whole, x - 6, y - 4), 128);
        });
    // And enlarged over itself.
    test::Random random(6);
    Surface surface = Surface::randomOfSize(random, 24, 16);
    Surface expected = surface;
    tagRECT srcRect = {4, 4, 12, 9};
    tagRECT dstRect = {5, 5, 20, 14};
    naiveWalk(expected, 5, 5, dstRect, [&](q_ulong &d, int x, int y) {
        d = naiveMix(d, naiveSample(expected, srcRect, dstRect, x - 5, y - 5), 128);
    });
    iBltBilinear32_Alpha(surface.pixels(), surface.pixels(), &dstRect, &srcRect, unsignedOf(surface.pitch()),
                         unsignedOf(surface.pitch()), 0.5F);
    EXPECT_EQ(surface.differenceFrom(expected), "");
}

TEST(iBltBilinear32_Alpha, any_two_rectangles_of_one_surface_are_read_as_they_are_written) {
    for (int seed = 0; seed < 3000; ++seed) {
        test::Random random(static_cast<std::uint64_t>(seed));
        Surface surface = Surface::random(random, 24);
        Surface expected = surface;
        tagRECT srcRect = random.rectInside(surface.width(), surface.height());
        tagRECT dstRect = random.rectInside(surface.width(), surface.height());
        const float alpha = randomAlpha(random);
        const int left = static_cast<int>(dstRect.left);
        const int top = static_cast<int>(dstRect.top);
        naiveWalk(expected, left, top, dstRect, [&](q_ulong &d, int x, int y) {
            d = naiveMix(d, naiveSample(expected, srcRect, dstRect, x - left, y - top), weightOf(alpha));
        });
        iBltBilinear32_Alpha(surface.pixels(), surface.pixels(), &dstRect, &srcRect, unsignedOf(surface.pitch()),
                             unsignedOf(surface.pitch()), alpha);
        ASSERT_EQ(surface.differenceFrom(expected), "") << seed;
    }
}

TEST(iBltBilinear32_Alpha, a_source_without_pixels_draws_nothing) {
    for (const tagRECT empty : {tagRECT{1, 0, 1, 2}, tagRECT{0, 1, 2, 1}, tagRECT{2, 0, 1, 2}}) {
        Surface dst(3, 3, 0xAA112233);
        Surface src(3, 3, 0x00FFFFFF);
        tagRECT dstRect = dst.rect();
        tagRECT srcRect = empty;
        iBltBilinear32_Alpha(dst.pixels(), src.pixels(), &dstRect, &srcRect, unsignedOf(dst.pitch()),
                             unsignedOf(src.pitch()), 1.0F);
        EXPECT_EQ(dst.differenceFrom(Surface(3, 3, 0xAA112233)), "");
    }
}

TEST(iBltBilinear32_Alpha, agrees_with_a_naive_filter_and_blend) {
    forEachCase("iBltBilinear32_Alpha", [](Case &c) {
        Surface dst = Surface::random(c.random, 12);
        Surface src = Surface::random(c.random, 12);
        tagRECT srcRect = c.random.rectInside(src.width(), src.height());
        if (c.random.oneIn(20))
            srcRect.right = srcRect.left;
        if (c.random.oneIn(20))
            srcRect.bottom = srcRect.top;
        tagRECT dstRect = c.random.rectInsideOrEmpty(dst.width(), dst.height());
        const float alpha = randomAlpha(c.random);
        Surface expected = dst;
        if (srcRect.left < srcRect.right && srcRect.top < srcRect.bottom)
            naiveWalk(expected, static_cast<int>(dstRect.left), static_cast<int>(dstRect.top), dstRect,
                      [&](q_ulong &d, int x, int y) {
                          const q_ulong s = naiveSample(src, srcRect, dstRect, x - static_cast<int>(dstRect.left),
                                                        y - static_cast<int>(dstRect.top));
                          d = naiveMix(d, s, weightOf(alpha));
                      });
        iBltBilinear32_Alpha(dst.pixels(), src.pixels(), &dstRect, &srcRect, unsignedOf(dst.pitch()),
                             unsignedOf(src.pitch()), alpha);
        c.expectEqual(dst, expected);
    });
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

TEST(iBltFast32_KeySrc_AlphaFast, every_pair_of_bytes) {
    AllPairs pairs;
    const Surface expected = pairs.with(naiveHalfMix);
    tagRECT rect = pairs.dst.rect();
    iBltFast32_KeySrc_AlphaFast(pairs.dst.pixels(), pairs.src.pixels(), 0, 0, &rect, pairs.dst.pitch(),
                                pairs.src.pitch(), 0);
    EXPECT_EQ(pairs.dst.differenceFrom(expected), "");
}

TEST(iBltFast32_KeySrc_AlphaFast, overlapping_mixes_run_in_row_and_column_order) {
    overlappingBlits(
        [](Surface &surface, int offsetX, int offsetY, tagRECT rect) {
            iBltFast32_KeySrc_AlphaFast(surface.pixels(), surface.pixels(), 6 + offsetX, 4 + offsetY, &rect,
                                        surface.pitch(), surface.pitch(), 0);
        },
        [](q_ulong &d, Surface &src, int x, int y) {
            if (src.at(x, y) != 0)
                d = naiveHalfMix(d, src.at(x, y));
        });
}

TEST(iBltFast32_KeySrc_AlphaFast, agrees_with_a_naive_mix) {
    forEachCase("iBltFast32_KeySrc_AlphaFast", [](Case &c) {
        Surface dst = Surface::random(c.random);
        Surface src = Surface::random(c.random);
        tagRECT rect =
            c.random.rectInsideOrEmpty(std::min(src.width(), dst.width()), std::min(src.height(), dst.height()));
        const int dstX = c.random.between(0, dst.width() - std::max(1, widthOf(rect)));
        const int dstY = c.random.between(0, dst.height() - std::max(1, heightOf(rect)));
        Surface expected = dst;
        naiveWalk(expected, dstX, dstY, rect, [&](q_ulong &d, int x, int y) {
            if (src.at(x, y) != 0)
                d = naiveHalfMix(d, src.at(x, y));
        });
        iBltFast32_KeySrc_AlphaFast(dst.pixels(), src.pixels(), dstX, dstY, &rect, dst.pitch(), src.pitch(),
                                    c.random.pixel());
        c.expectEqual(dst, expected);
    });
}

TEST(iBltFast32_KeySrc_Alpha, the_key_is_0_whatever_the_argument_says) {
    EXPECT_EQ(keyedBlend(0xAB102030, 0, 1.0F), 0xAB102030u);
    EXPECT_EQ(keyedBlend(0xAB102030, 0x405060, 1.0F), 0x00405060u); // its key argument equals the pixel
    EXPECT_EQ(keyedBlend(0xAB102030, 0x01000000, 1.0F), 0u);        // black with a top byte is drawn
}

TEST(iBltFast32_KeySrc_Alpha, every_pair_of_bytes_at_several_weights) {
    for (const q_ulong weight : someWeights) {
        AllPairs pairs;
        const Surface expected = pairs.with([=](q_ulong d, q_ulong s) { return meanOf(d, 256 - weight, s, weight); });
        tagRECT rect = pairs.dst.rect();
        iBltFast32_KeySrc_Alpha(pairs.dst.pixels(), pairs.src.pixels(), 0, 0, &rect, pairs.dst.pitch(),
                                pairs.src.pitch(), 0, static_cast<float>(weight) / 256);
        EXPECT_EQ(pairs.dst.differenceFrom(expected), "") << weight;
    }
}

TEST(iBltFast32_KeySrc_Alpha, every_weight_from_far_below_0_to_far_above_1) {
    for (int weight = -1024; weight <= 1280; ++weight)
        for (const q_ulong d : {0x00FF8001u, 0x12345678u})
            for (const q_ulong s : {0xFF01FF80u, 0x00FFFFFFu})
                ASSERT_EQ(keyedBlend(d, s, static_cast<float>(weight) / 256), naiveBlend(d, 256 - weight, s, weight))
                    << weight;
}

TEST(iBltFast32_KeySrc_Alpha, overlapping_blends_run_in_row_and_column_order) {
    overlappingBlits(
        [](Surface &surface, int offsetX, int offsetY, tagRECT rect) {
            iBltFast32_KeySrc_Alpha(surface.pixels(), surface.pixels(), 6 + offsetX, 4 + offsetY, &rect,
                                    surface.pitch(), surface.pitch(), 0, 0.75F);
        },
        [](q_ulong &d, Surface &src, int x, int y) {
            if (src.at(x, y) != 0)
                d = naiveBlend(d, 64, src.at(x, y), 192);
        });
}

TEST(iBltFast32_KeySrc_Alpha, agrees_with_a_naive_blend) {
    forEachCase("iBltFast32_KeySrc_Alpha", [](Case &c) {
        Surface dst = Surface::random(c.random);
        Surface src = Surface::random(c.random);
        tagRECT rect =
            c.random.rectInsideOrEmpty(std::min(src.width(), dst.width()), std::min(src.height(), dst.height()));
        const int dstX = c.random.between(0, dst.width() - std::max(1, widthOf(rect)));
        const int dstY = c.random.between(0, dst.height() - std::max(1, heightOf(rect)));
        const float alpha = randomAlpha(c.random);
        const std::int64_t weight = weightOf(alpha);
        Surface expected = dst;
        naiveWalk(expected, dstX, dstY, rect, [&](q_ulong &d, int x, int y) {
            if (src.at(x, y) != 0)
                d = naiveBlend(d, 256 - weight, src.at(x, y), weight);
        });
        iBltFast32_KeySrc_Alpha(dst.pixels(), src.pixels(), dstX, dstY, &rect, dst.pitch(), src.pitch(),
                                c.random.pixel(), alpha);
        c.expectEqual(dst, expected);
    });
}

/// The centred blits by the top byte: 0 is left out, 255 copies, the weights of the rest add up to 255.
void naiveCentredChannel(q_ulong &d, q_ulong s) {
    const q_ulong alpha = s >> 24;
    if (s != 0)
        d = alpha == 255 ? s : naiveBlend(d, 255 - alpha, s, alpha);
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
    const AllPairs blank;
    tagRECT rect = blank.dst.rect();
    for (q_ulong alpha = 0; alpha < 256; ++alpha) {
        AllPairs pairs(alpha);
        const Surface expected = pairs.with([=](q_ulong d, q_ulong s) {
            return alpha == 255 ? s : meanOf(d, 255 - alpha, s, alpha); // no pixel of the source is 0
        });
        iBltFast32SafeAlpha_Channel(pairs.dst.pixels(), pairs.src.pixels(), 128, 128, &rect, pairs.dst.pitch(),
                                    pairs.src.pitch(), 256, 256);
        ASSERT_EQ(pairs.dst.differenceFrom(expected), "") << alpha;
    }
}

using CentredBlit = void (*)(q_ulong *, q_ulong *, int, int, tagRECT *, int, int, int, int);
using NaivePixel = void (*)(q_ulong &, const Surface &, int, int);

void everyPositionAndSize(CentredBlit blit, NaivePixel store, int rowsLeftOut) {
    test::Random random(7);
    Surface src = Surface::randomOfSize(random, 7, 7);
    const Surface empty(4, 4, 0xAAAAAAAA);
    for (int centreY = -6; centreY <= 9; ++centreY)
        for (int centreX = -6; centreX <= 9; ++centreX)
            for (int height = -3; height <= 7; ++height)
                for (int width = -3; width <= 7; ++width) {
                    Surface dst = empty;
                    Surface expected = empty;
                    tagRECT rect = {0, 0, width, height};
                    naiveCentred(expected, centreX, centreY, rect, rowsLeftOut, 4, 4,
                                 [&](q_ulong &d, int x, int y) { store(d, src, x, y); });
                    blit(dst.pixels(), src.pixels(), centreX, centreY, &rect, dst.pitch(), src.pitch(), 4, 4);
                    ASSERT_EQ(dst.differenceFrom(expected), "")
                        << width << " x " << height << " around " << centreX << ", " << centreY;
                }
    tagRECT whole = src.rect();
    for (const int clipHeight : {lowest, -1, 0, 1, 3, 7, highest})
        for (const int clipWidth : {lowest, -1, 0, 1, 3, 7, highest}) {
            Surface dst(7, 7, 0xAAAAAAAA);
            Surface expected = dst;
            naiveCentred(expected, 3, 3, whole, rowsLeftOut, clipWidth, clipHeight,
                         [&](q_ulong &d, int x, int y) { store(d, src, x, y); });
            blit(dst.pixels(), src.pixels(), 3, 3, &whole, dst.pitch(), src.pitch(), clipWidth, clipHeight);
            EXPECT_EQ(dst.differenceFrom(expected), "") << clipWidth << " x " << clipHeight;
        }
}

void centresAtTheEndsOfTheNumbers(CentredBlit blit) {
    test::Random random(8);
    Surface src = Surface::randomOfSize(random, 7, 7);
    Surface dst(4, 4, 0xAAAAAAAA);
    const Surface before = dst;
    for (int distance = 0; distance < 10; ++distance)
        for (const int end : {lowest + distance, highest - distance, lowest / 2 + distance, highest / 2 - distance})
            for (int height = -7; height <= 7; ++height)
                for (int width = -7; width <= 7; ++width) {
                    tagRECT rect = {0, 0, width, height};
                    blit(dst.pixels(), src.pixels(), end, 2, &rect, dst.pitch(), src.pitch(), 4, 4);
                    blit(dst.pixels(), src.pixels(), 2, end, &rect, dst.pitch(), src.pitch(), 4, 4);
                    blit(dst.pixels(), src.pixels(), end, end, &rect, dst.pitch(), src.pitch(), 4, 4);
                    ASSERT_EQ(dst.differenceFrom(before), "") << width << " x " << height << " around " << end;
                }
}

void centredCase(Case &c, CentredBlit blit, NaivePixel store, int rowsLeftOut) {
    Surface dst = Surface::random(c.random);
    Surface src = Surface::random(c.random);
    if (c.random.oneIn(2)) // sprites: mostly of one piece
        for (int y = -1; y <= src.height(); ++y)
            for (int x = -1; x <= src.width(); ++x)
                src.at(x, y) = c.random.oneIn(6) ? 0 : src.at(x, y) | 0x01000000;
    tagRECT rect = c.random.rectInsideOrEmpty(src.width(), src.height());
    const int centreX = c.random.between(-12, 28);
    const int centreY = c.random.between(-12, 28);
    const int clipWidth = c.random.between(-1, dst.width());
    const int clipHeight = c.random.between(-1, dst.height());
    Surface expected = dst;
    naiveCentred(expected, centreX, centreY, rect, rowsLeftOut, clipWidth, clipHeight,
                 [&](q_ulong &d, int x, int y) { store(d, src, x, y); });
    blit(dst.pixels(), src.pixels(), centreX, centreY, &rect, dst.pitch(), src.pitch(), clipWidth, clipHeight);
    c.expectEqual(dst, expected);
}

/// The destination of the overlap runs is the centre of a rectangle of 12 by 5 pixels moved by the offsets: an odd
/// height loses its last row.
void overlappingCentred(CentredBlit blit, NaivePixel store, int rowsLeftOut) {
    for (int offsetY = -3; offsetY <= 3; ++offsetY)
        for (int offsetX = -5; offsetX <= 5; ++offsetX) {
            test::Random random(9);
            Surface surface = Surface::randomOfSize(random, 24, 12);
            Surface expected = surface;
            tagRECT rect = {6, 4, 18, 9};
            naiveCentred(expected, 12 + offsetX, 6 + offsetY, rect, rowsLeftOut, 24, 12,
                         [&](q_ulong &d, int x, int y) { store(d, expected, x, y); });
            blit(surface.pixels(), surface.pixels(), 12 + offsetX, 6 + offsetY, &rect, surface.pitch(), surface.pitch(),
                 24, 12);
            EXPECT_EQ(surface.differenceFrom(expected), "") << "moved by " << offsetX << ", " << offsetY;
        }
}

void naiveChannelAt(q_ulong &d, const Surface &src, int x, int y) {
    naiveCentredChannel(d, src.at(x, y));
}

TEST(iBltFast32SafeAlpha_Channel, every_position_and_size_over_a_small_surface_stays_inside) {
    everyPositionAndSize(iBltFast32SafeAlpha_Channel, naiveChannelAt, 0);
}

TEST(iBltFast32SafeAlpha_Channel, centres_at_the_ends_of_the_numbers_draw_nothing) {
    centresAtTheEndsOfTheNumbers(iBltFast32SafeAlpha_Channel);
}

TEST(iBltFast32SafeAlpha_Channel, overlapping_blends_run_in_row_and_column_order) {
    overlappingCentred(iBltFast32SafeAlpha_Channel, naiveChannelAt, 0);
}

TEST(iBltFast32SafeAlpha_Channel, agrees_with_a_naive_blend) {
    forEachCase("iBltFast32SafeAlpha_Channel",
                [](Case &c) { centredCase(c, iBltFast32SafeAlpha_Channel, naiveChannelAt, 0); });
}

/// The softened outline of one pixel: its four direct neighbours decide, the block of nine is counted.
void naiveSoftened(q_ulong &d, const Surface &src, int x, int y) {
    const q_ulong s = src.at(x, y);
    if (s == 0)
        return;
    if (src.at(x - 1, y) != 0 && src.at(x + 1, y) != 0 && src.at(x, y - 1) != 0 && src.at(x, y + 1) != 0) {
        d = s;
        return;
    }
    int count = 0;
    for (int dy = -1; dy <= 1; ++dy)
        for (int dx = -1; dx <= 1; ++dx)
            count += src.at(x + dx, y + dy) != 0 ? 1 : 0;
    const std::int64_t coverage = 42 * (count - 1);
    d = naiveBlend(d, 256 - coverage, s, coverage);
}

/// The middle of a 3 by 3 block drawn over `d`; bit i of `pattern` fills the i-th of its eight neighbours.
q_ulong softened(q_ulong d, q_ulong s, unsigned pattern, q_ulong neighbour = 0x01000000) {
    constexpr int around[8][2] = {{-1, -1}, {0, -1}, {1, -1}, {-1, 0}, {1, 0}, {-1, 1}, {0, 1}, {1, 1}};
    Surface dst(2, 2, d);
    Surface src(2, 4);
    src.at(0, 0) = s;
    for (unsigned i = 0; i < 8; ++i)
        if (pattern >> i & 1)
            src.at(around[i][0], around[i][1]) = neighbour;
    tagRECT rect = {0, 0, 2, 4};
    iBltFast32SafeKeySrcAntiAliasing(dst.pixels(), src.pixels(), 1, 2, &rect, dst.pitch(), src.pitch(), 1, 1);
    return dst.at(0, 0);
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
            for (unsigned pattern = 0; pattern < 256; ++pattern) {
                Surface src(1, 1);
                src.at(0, 0) = s;
                for (unsigned i = 0, bit = 0; i < 9; ++i)
                    if (i != 4 && pattern >> bit++ & 1)
                        src.at(static_cast<int>(i % 3) - 1, static_cast<int>(i / 3) - 1) = 0x01000000;
                q_ulong expected = d;
                naiveSoftened(expected, src, 0, 0);
                ASSERT_EQ(softened(d, s, pattern), expected) << pattern;
            }
}

TEST(iBltFast32SafeKeySrcAntiAliasing, the_last_row_is_left_out) {
    Surface src(5, 5, 0x00ABCDEF); // all neighbours are there: plain copies
    Surface dst(8, 8);
    Surface expected(8, 8);
    for (int y = 0; y < 3; ++y) // 5 rows lose the odd one and the last
        for (int x = 0; x < 4; ++x)
            expected.at(2 + x, 2 + y) = 0x00ABCDEF;
    tagRECT rect = src.rect();
    iBltFast32SafeKeySrcAntiAliasing(dst.pixels(), src.pixels(), 4, 4, &rect, dst.pitch(), src.pitch(), 8, 8);
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

TEST(iBltFast32SafeKeySrcAntiAliasing, a_clip_that_ends_above_the_last_row_leaves_nothing_more_out) {
    Surface src(4, 4, 0x00ABCDEF);
    Surface dst(8, 8);
    Surface expected(8, 8);
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < 4; ++x)
            expected.at(2 + x, 2 + y) = 0x00ABCDEF;
    tagRECT rect = src.rect();
    iBltFast32SafeKeySrcAntiAliasing(dst.pixels(), src.pixels(), 4, 4, &rect, dst.pitch(), src.pitch(), 8, 4);
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

TEST(iBltFast32SafeKeySrcAntiAliasing, reads_no_further_than_one_pixel_around) {
    // A border row above and border columns beside; the row below stands in for the last, which is not drawn.
    test::PageEndPixels src(6 * 5);
    for (int i = 0; i < 30; ++i)
        src.data()[i] = 0x00ABCDEF;
    Surface dst(4, 4);
    tagRECT rect = {1, 1, 5, 5};
    iBltFast32SafeKeySrcAntiAliasing(dst.pixels(), src.data(), 2, 2, &rect, dst.pitch(), 6, 4, 4);
    EXPECT_EQ(dst.at(3, 2), 0x00ABCDEFu);
    EXPECT_EQ(dst.at(3, 3), 0u);
}

TEST(iBltFast32SafeKeySrcAntiAliasing, every_position_and_size_over_a_small_surface_stays_inside) {
    everyPositionAndSize(iBltFast32SafeKeySrcAntiAliasing, naiveSoftened, 1);
}

TEST(iBltFast32SafeKeySrcAntiAliasing, centres_at_the_ends_of_the_numbers_draw_nothing) {
    centresAtTheEndsOfTheNumbers(iBltFast32SafeKeySrcAntiAliasing);
}

TEST(iBltFast32SafeKeySrcAntiAliasing, overlapping_blits_run_in_row_and_column_order) {
    overlappingCentred(iBltFast32SafeKeySrcAntiAliasing, naiveSoftened, 1);
}

TEST(iBltFast32SafeKeySrcAntiAliasing, agrees_with_a_naive_outline) {
    forEachCase("iBltFast32SafeKeySrcAntiAliasing",
                [](Case &c) { centredCase(c, iBltFast32SafeKeySrcAntiAliasing, naiveSoftened, 1); });
}

/// Blends by the top byte with weights that add up to 256. Asks of every pixel of the picture and its near margin which
/// source pixel lies on it, in numbers that cannot overflow.
void naiveChannel(Surface &dst, const Surface &src, std::int64_t dstX, std::int64_t dstY, const tagRECT &rect,
                  const tagRECT &clip) {
    for (int y = -2; y < dst.height() + 2; ++y)
        for (int x = -2; x < dst.width() + 2; ++x) {
            if (x < clip.left || x >= clip.right || y < clip.top || y >= clip.bottom || x < dstX ||
                x >= dstX + widthOf(rect) || y < dstY || y >= dstY + heightOf(rect))
                continue;
            const q_ulong s = src.at(static_cast<int>(x - dstX), static_cast<int>(y - dstY));
            const q_ulong alpha = s >> 24;
            q_ulong &d = dst.at(x, y);
            if (alpha != 0)
                d = naiveBlend(d, 256 - alpha, s, alpha);
        }
}

TEST(iBltFast32AlphaChannelSafe, the_corner_of_the_source_rectangle_is_not_added) {
    Surface src(20, 8);
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 20; ++x)
            src.at(x, y) = 0xFF000000 | unsignedOf(x * 16) << 8 | unsignedOf(y * 16);
    Surface dst(4, 3, 0x11223344);
    Surface expected = dst;
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 4; ++x)
            expected.at(x, y) = naiveBlend(0x11223344, 1, src.at(x, y), 255);
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

TEST(iBltFast32AlphaChannelSafe, every_alpha_with_every_pair_of_bytes) {
    const AllPairs blank;
    tagRECT rect = blank.dst.rect();
    for (q_ulong alpha = 0; alpha < 256; ++alpha) {
        AllPairs pairs(alpha);
        const Surface expected =
            pairs.with([=](q_ulong d, q_ulong s) { return alpha == 0 ? d : meanOf(d, 256 - alpha, s, alpha); });
        iBltFast32AlphaChannelSafe(pairs.dst.pixels(), pairs.src.pixels(), 0, 0, &rect, &rect, pairs.dst.pitch(),
                                   pairs.src.pitch());
        ASSERT_EQ(pairs.dst.differenceFrom(expected), "") << alpha;
    }
}

TEST(iBltFast32AlphaChannelSafe, every_position_and_size_over_a_small_surface_stays_inside) {
    test::Random random(10);
    Surface src = Surface::randomOfSize(random, 6, 6);
    const Surface empty(5, 5, 0xAAAAAAAA);
    tagRECT clip = {1, 0, 4, 4};
    for (int dstY = -7; dstY <= 6; ++dstY)
        for (int dstX = -7; dstX <= 6; ++dstX)
            for (int height = -2; height <= 6; ++height)
                for (int width = -2; width <= 6; ++width) {
                    Surface dst = empty;
                    Surface expected = empty;
                    tagRECT rect = {3, 5, 3 + width, 5 + height};
                    naiveChannel(expected, src, dstX, dstY, rect, clip);
                    iBltFast32AlphaChannelSafe(dst.pixels(), src.pixels(), dstX, dstY, &rect, &clip, dst.pitch(),
                                               src.pitch());
                    ASSERT_EQ(dst.differenceFrom(expected), "")
                        << width << " x " << height << " at " << dstX << ", " << dstY;
                }
}

TEST(iBltFast32AlphaChannelSafe, every_clip_rectangle_bounds_the_writes) {
    test::Random random(11);
    Surface src = Surface::randomOfSize(random, 6, 6);
    const Surface empty(4, 4, 0xAAAAAAAA);
    for (int top = -2; top <= 5; ++top)
        for (int left = -2; left <= 5; ++left)
            for (int bottom = -2; bottom <= 5; ++bottom)
                for (int right = -2; right <= 5; ++right) {
                    Surface dst = empty;
                    Surface expected = empty;
                    tagRECT rect = {0, 0, 6, 6};
                    tagRECT clip = {left, top, right, bottom};
                    naiveChannel(expected, src, -1, -1, rect, clip);
                    iBltFast32AlphaChannelSafe(dst.pixels(), src.pixels(), -1, -1, &rect, &clip, dst.pitch(),
                                               src.pitch());
                    ASSERT_EQ(dst.differenceFrom(expected), "");
                }
}

TEST(iBltFast32AlphaChannelSafe, positions_at_the_ends_of_the_numbers_draw_nothing) {
    test::Random random(12);
    Surface src = Surface::randomOfSize(random, 7, 7);
    Surface dst(4, 4, 0xAAAAAAAA);
    const Surface before = dst;
    tagRECT clip = dst.rect();
    for (int distance = 0; distance < 10; ++distance)
        for (const int end : {lowest + distance, highest - distance, lowest / 2 + distance, highest / 2 - distance})
            for (int height = -7; height <= 7; ++height)
                for (int width = -7; width <= 7; ++width) {
                    tagRECT rect = {0, 0, width, height};
                    iBltFast32AlphaChannelSafe(dst.pixels(), src.pixels(), end, 1, &rect, &clip, dst.pitch(),
                                               src.pitch());
                    iBltFast32AlphaChannelSafe(dst.pixels(), src.pixels(), 1, end, &rect, &clip, dst.pitch(),
                                               src.pitch());
                    iBltFast32AlphaChannelSafe(dst.pixels(), src.pixels(), end, end, &rect, &clip, dst.pitch(),
                                               src.pitch());
                    ASSERT_EQ(dst.differenceFrom(before), "") << width << " x " << height << " at " << end;
                }
}

TEST(iBltFast32AlphaChannelSafe, reads_nothing_that_the_clip_leaves_out) {
    test::PageEndPixels src(4 * 3);
    for (int i = 0; i < 12; ++i)
        src.data()[i] = 0xFFFFFFFF;
    Surface dst(2, 3);
    tagRECT rect = {0, 0, 8, 6}; // more columns and rows than the source has
    tagRECT clip = dst.rect();
    iBltFast32AlphaChannelSafe(dst.pixels(), src.data(), -2, 0, &rect, &clip, dst.pitch(), 4);
    EXPECT_EQ(dst.at(1, 2), 0x00FEFEFEu);
}

TEST(iBltFast32AlphaChannelSafe, overlapping_blends_run_in_row_and_column_order) {
    for (int offsetY = -3; offsetY <= 3; ++offsetY)
        for (int offsetX = -5; offsetX <= 5; ++offsetX) {
            test::Random random(13);
            Surface surface = Surface::randomOfSize(random, 24, 12);
            Surface expected = surface;
            tagRECT rect = {0, 0, 12, 6};
            tagRECT clip = surface.rect();
            naiveChannel(expected, expected, offsetX, offsetY, rect, clip);
            iBltFast32AlphaChannelSafe(surface.pixels(), surface.pixels(), offsetX, offsetY, &rect, &clip,
                                       surface.pitch(), surface.pitch());
            EXPECT_EQ(surface.differenceFrom(expected), "") << "moved by " << offsetX << ", " << offsetY;
        }
}

TEST(iBltFast32AlphaChannelSafe, agrees_with_a_naive_blend) {
    forEachCase("iBltFast32AlphaChannelSafe", [](Case &c) {
        Surface dst = Surface::random(c.random);
        Surface src = Surface::random(c.random);
        tagRECT rect = c.random.rectInsideOrEmpty(src.width(), src.height());
        tagRECT clip = c.random.rectInsideOrEmpty(dst.width(), dst.height());
        const int dstX = c.random.between(-14, 18);
        const int dstY = c.random.between(-14, 18);
        Surface expected = dst;
        naiveChannel(expected, src, dstX, dstY, rect, clip);
        iBltFast32AlphaChannelSafe(dst.pixels(), src.pixels(), dstX, dstY, &rect, &clip, dst.pitch(), src.pitch());
        c.expectEqual(dst, expected);
    });
}

} // namespace
