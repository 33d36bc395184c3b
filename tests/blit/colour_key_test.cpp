#include "support/cases.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using test::Case;
using test::forEachCase;
using test::Surface;

constexpr int lowest = std::numeric_limits<int>::min();
constexpr int highest = std::numeric_limits<int>::max();

int widthOf(const tagRECT &rect) {
    return static_cast<int>(rect.right - rect.left);
}

int heightOf(const tagRECT &rect) {
    return static_cast<int>(rect.bottom - rect.top);
}

q_ulong sourceAt(const Surface &src, const tagRECT &rect, int column, int row) {
    return src.at(static_cast<int>(rect.left) + column, static_cast<int>(rect.top) + row);
}

/// Rows top to bottom, columns left to right, one pixel after the other.
void naiveCopy(Surface &dst, const Surface &src, int dstX, int dstY, const tagRECT &rect, q_ulong key) {
    for (int y = 0; y < heightOf(rect); ++y)
        for (int x = 0; x < widthOf(rect); ++x) {
            const q_ulong s = sourceAt(src, rect, x, y);
            if (s != key)
                dst.at(dstX + x, dstY + y) = s;
        }
}

/// The source position of a destination pixel: 15 fraction bits, unsigned.
std::uint32_t positionOf(int pixel, int srcExtent, int dstExtent) {
    const auto numerator = static_cast<std::uint32_t>(static_cast<std::uint64_t>(srcExtent) << 15);
    const std::uint64_t step = numerator / static_cast<std::uint32_t>(dstExtent);
    return static_cast<std::uint32_t>(step * static_cast<std::uint64_t>(pixel));
}

void naiveNearest(Surface &dst, const Surface &src, const tagRECT &dstRect, const tagRECT &srcRect, q_ulong key) {
    for (int y = 0; y < heightOf(dstRect); ++y)
        for (int x = 0; x < widthOf(dstRect); ++x) {
            const std::uint32_t u = positionOf(x, widthOf(srcRect), widthOf(dstRect));
            const std::uint32_t v = positionOf(y, heightOf(srcRect), heightOf(dstRect));
            const q_ulong s = sourceAt(src, srcRect, static_cast<int>(u >> 15), static_cast<int>(v >> 15));
            if (s != key)
                dst.at(static_cast<int>(dstRect.left) + x, static_cast<int>(dstRect.top) + y) = s;
        }
}

/// Four taps, or two in the last column; the last row stands in for the one below it.
q_ulong naiveSample(const Surface &src, const tagRECT &rect, std::uint32_t u, std::uint32_t v) {
    const int column = static_cast<int>(u >> 15);
    const int row = static_cast<int>(v >> 15);
    const int below = row == heightOf(rect) - 1 ? row : row + 1;
    const int fx = static_cast<int>(u >> 11 & 15);
    const int fy = static_cast<int>(v >> 11 & 15);
    q_ulong result = 0;
    for (int shift = 0; shift < 24; shift += 8) {
        const auto tap = [&](int x, int y) { return static_cast<int>(sourceAt(src, rect, x, y) >> shift & 0xFF); };
        int sum = 0;
        if (column == widthOf(rect) - 1)
            sum = tap(column, row) * 16 * (16 - fy) + tap(column, below) * 16 * fy;
        else
            sum = tap(column, row) * (16 - fx) * (16 - fy) + tap(column + 1, row) * fx * (16 - fy) +
                  tap(column, below) * (16 - fx) * fy + tap(column + 1, below) * fx * fy;
        result |= static_cast<q_ulong>(sum / 256) << shift;
    }
    return result;
}

void naiveFiltered(Surface &dst, const Surface &src, const tagRECT &dstRect, const tagRECT &srcRect, q_ulong key) {
    for (int y = 0; y < heightOf(dstRect); ++y)
        for (int x = 0; x < widthOf(dstRect); ++x) {
            const q_ulong sample = naiveSample(src, srcRect, positionOf(x, widthOf(srcRect), widthOf(dstRect)),
                                               positionOf(y, heightOf(srcRect), heightOf(dstRect)));
            if (sample != key)
                dst.at(static_cast<int>(dstRect.left) + x, static_cast<int>(dstRect.top) + y) = sample;
        }
}

/// Asks of every pixel of the picture which source pixel lies on it, in numbers that cannot overflow.
void naiveCentred(Surface &dst, const Surface &src, std::int64_t centreX, std::int64_t centreY, const tagRECT &rect,
                  int clipWidth, int clipHeight) {
    const int halfWidth = widthOf(rect) >> 1;
    const int halfHeight = heightOf(rect) >> 1;
    for (int y = 0; y < clipHeight && y < dst.height(); ++y)
        for (int x = 0; x < clipWidth && x < dst.width(); ++x) {
            if (x < centreX - halfWidth || x >= centreX + halfWidth || y < centreY - halfHeight ||
                y >= centreY + halfHeight)
                continue;
            const q_ulong s = sourceAt(src, rect, static_cast<int>(x - (centreX - halfWidth)),
                                       static_cast<int>(y - (centreY - halfHeight)));
            if (s != 0)
                dst.at(x, y) = s;
        }
}

q_ulong unsignedOf(int value) {
    return static_cast<q_ulong>(value);
}

/// A picture of the pixels 1, 2, 3 ... in reading order.
Surface numbered(int width, int height) {
    Surface surface(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            surface.at(x, y) = unsignedOf(y * width + x + 1);
    return surface;
}

TEST(iBltFast32_KeySrc, leaves_out_the_key_and_copies_the_same_colour_with_another_top_byte) {
    Surface dst(4, 1, 0x11111111);
    Surface src(4, 1);
    src.at(0, 0) = 0x00123456;
    src.at(1, 0) = 0xFF123456;
    src.at(2, 0) = 0x00123457;
    src.at(3, 0) = 0;
    tagRECT rect = src.rect();
    iBltFast32_KeySrc(dst.pixels(), src.pixels(), 0, 0, &rect, unsignedOf(dst.pitch()), unsignedOf(src.pitch()),
                      0x00123456);
    EXPECT_EQ(dst.at(0, 0), 0x11111111u);
    EXPECT_EQ(dst.at(1, 0), 0xFF123456u);
    EXPECT_EQ(dst.at(2, 0), 0x00123457u);
    EXPECT_EQ(dst.at(3, 0), 0u); // the key is the argument, not 0
}

TEST(iBltFast32_KeySrc, a_key_with_a_top_byte_matches_that_top_byte_alone) {
    Surface dst(2, 1, 0x11111111);
    Surface src(2, 1);
    src.at(0, 0) = 0x80FFFFFF;
    src.at(1, 0) = 0x00FFFFFF;
    tagRECT rect = src.rect();
    iBltFast32_KeySrc(dst.pixels(), src.pixels(), 0, 0, &rect, unsignedOf(dst.pitch()), unsignedOf(src.pitch()),
                      0x80FFFFFF);
    EXPECT_EQ(dst.at(0, 0), 0x11111111u);
    EXPECT_EQ(dst.at(1, 0), 0x00FFFFFFu);
}

TEST(iBltFast32_KeySrc, positions_and_pitches_below_0_mean_what_they_say) {
    const Surface picture = numbered(3, 2);
    Surface src = picture;
    Surface dst(6, 4);
    Surface expected(6, 4);
    for (int x = 0; x < 3; ++x) {
        expected.at(1 + x, 3) = picture.at(x, 0);
        expected.at(1 + x, 2) = picture.at(x, 1);
    }
    tagRECT rect = src.rect();
    iBltFast32_KeySrc(&dst.at(4, 2), src.pixels(), unsignedOf(-3), unsignedOf(-1), &rect, unsignedOf(-dst.pitch()),
                      unsignedOf(src.pitch()), 0);
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

TEST(iBltFast32_KeySrc, every_rectangle_over_a_small_surface) {
    test::Random random(1);
    Surface src = Surface::randomOfSize(random, 4, 4);
    const Surface empty(4, 4, 0x01020304);
    for (int top = 0; top <= 4; ++top)
        for (int left = 0; left <= 4; ++left)
            for (int bottom = -2; bottom <= 4; ++bottom)
                for (int right = -2; right <= 4; ++right) {
                    Surface dst = empty;
                    Surface expected = empty;
                    tagRECT rect = {left, top, right, bottom};
                    naiveCopy(expected, src, 0, 0, rect, 0xFFFFFF);
                    iBltFast32_KeySrc(dst.pixels(), src.pixels(), 0, 0, &rect, unsignedOf(dst.pitch()),
                                      unsignedOf(src.pitch()), 0xFFFFFF);
                    ASSERT_EQ(dst.differenceFrom(expected), "");
                }
}

TEST(iBltFast32_KeySrc, overlapping_copies_run_in_row_and_column_order) {
    for (int offsetY = -3; offsetY <= 3; ++offsetY)
        for (int offsetX = -5; offsetX <= 5; ++offsetX) {
            test::Random random(2);
            Surface surface = Surface::randomOfSize(random, 24, 12);
            Surface expected = surface;
            tagRECT rect = {6, 4, 18, 9};
            naiveCopy(expected, expected, 6 + offsetX, 4 + offsetY, rect, 0xFFFFFF);
            iBltFast32_KeySrc(surface.pixels(), surface.pixels(), unsignedOf(6 + offsetX), unsignedOf(4 + offsetY),
                              &rect, unsignedOf(surface.pitch()), unsignedOf(surface.pitch()), 0xFFFFFF);
            EXPECT_EQ(surface.differenceFrom(expected), "") << "moved by " << offsetX << ", " << offsetY;
        }
}

TEST(iBltFast32_KeySrc, agrees_with_a_naive_copy) {
    forEachCase("iBltFast32_KeySrc", [](Case &c) {
        Surface dst = Surface::random(c.random);
        Surface src = Surface::random(c.random);
        tagRECT rect =
            c.random.rectInsideOrEmpty(std::min(src.width(), dst.width()), std::min(src.height(), dst.height()));
        const int dstX = c.random.between(0, dst.width() - std::max(1, widthOf(rect)));
        const int dstY = c.random.between(0, dst.height() - std::max(1, heightOf(rect)));
        const q_ulong key = c.random.pixel();
        Surface expected = dst;
        naiveCopy(expected, src, dstX, dstY, rect, key);
        iBltFast32_KeySrc(dst.pixels(), src.pixels(), unsignedOf(dstX), unsignedOf(dstY), &rect,
                          unsignedOf(dst.pitch()), unsignedOf(src.pitch()), key);
        c.expectEqual(dst, expected);
    });
}

TEST(iBltNear32_KeySrc, the_key_is_tested_on_the_sampled_pixel) {
    Surface dst(4, 2, 0x11111111);
    Surface src(2, 1);
    src.at(0, 0) = 0x00ABCDEF;
    src.at(1, 0) = 0xFFABCDEF;
    tagRECT srcRect = src.rect();
    tagRECT dstRect = dst.rect();
    iBltNear32_KeySrc(dst.pixels(), src.pixels(), &dstRect, &srcRect, unsignedOf(dst.pitch()), unsignedOf(src.pitch()),
                      0x00ABCDEF);
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < 4; ++x)
            EXPECT_EQ(dst.at(x, y), x < 2 ? 0x11111111u : 0xFFABCDEFu);
}

TEST(iBltNear32_KeySrc, sources_too_wide_for_16_integer_bits_fit_into_17) {
    Surface src(70000, 1);
    for (int x = 0; x < 70000; ++x)
        src.at(x, 0) = unsignedOf(x + 1);
    Surface dst(4, 1);
    tagRECT srcRect = src.rect();
    tagRECT dstRect = dst.rect();
    iBltNear32_KeySrc(dst.pixels(), src.pixels(), &dstRect, &srcRect, unsignedOf(dst.pitch()), unsignedOf(src.pitch()),
                      0);
    for (int x = 0; x < 4; ++x)
        EXPECT_EQ(dst.at(x, 0), unsignedOf(x * 17500 + 1));
}

TEST(iBltNear32_KeySrc, the_step_is_truncated_to_15_fraction_bits) {
    // 3 pixels on 65536 make a step of 1.5 units, cut to 1: the last position is 65535 / 32768, in the second pixel.
    Surface src = numbered(3, 1);
    Surface dst(65536, 1);
    tagRECT srcRect = src.rect();
    tagRECT dstRect = dst.rect();
    iBltNear32_KeySrc(dst.pixels(), src.pixels(), &dstRect, &srcRect, unsignedOf(dst.pitch()), unsignedOf(src.pitch()),
                      0);
    EXPECT_EQ(dst.at(32767, 0), 1u);
    EXPECT_EQ(dst.at(32768, 0), 2u);
    EXPECT_EQ(dst.at(65535, 0), 2u);
}

TEST(iBltNear32_KeySrc, an_empty_source_repeats_its_first_column_or_row) {
    Surface src = numbered(3, 3);
    Surface dst(3, 3);
    Surface expected(3, 3);
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 3; ++x)
            expected.at(x, y) = src.at(1, y);
    tagRECT srcRect = {1, 0, 1, 3};
    tagRECT dstRect = dst.rect();
    iBltNear32_KeySrc(dst.pixels(), src.pixels(), &dstRect, &srcRect, unsignedOf(dst.pitch()), unsignedOf(src.pitch()),
                      0);
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

using ScalingBlit = void (*)(q_ulong *, q_ulong *, tagRECT *, tagRECT *, q_ulong, q_ulong, q_ulong);
using NaiveScaling = void (*)(Surface &, const Surface &, const tagRECT &, const tagRECT &, q_ulong);

void everyDestinationRectangle(ScalingBlit blit, NaiveScaling naive) {
    test::Random random(3);
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
                    naive(expected, src, dstRect, srcRect, 0);
                    blit(dst.pixels(), src.pixels(), &dstRect, &srcRect, unsignedOf(dst.pitch()),
                         unsignedOf(src.pitch()), 0);
                    ASSERT_EQ(dst.differenceFrom(expected), "");
                }
}

void overlappingScales(ScalingBlit blit, NaiveScaling naive) {
    for (int offsetY = -3; offsetY <= 3; ++offsetY)
        for (int offsetX = -5; offsetX <= 5; ++offsetX)
            for (int growth = -3; growth <= 3; ++growth) {
                test::Random random(4);
                Surface surface = Surface::randomOfSize(random, 28, 16);
                Surface expected = surface;
                tagRECT srcRect = {6, 4, 18, 9};
                tagRECT dstRect = {6 + offsetX, 4 + offsetY, 18 + offsetX + growth, 9 + offsetY + growth};
                naive(expected, expected, dstRect, srcRect, 0xFFFFFF);
                blit(surface.pixels(), surface.pixels(), &dstRect, &srcRect, unsignedOf(surface.pitch()),
                     unsignedOf(surface.pitch()), 0xFFFFFF);
                EXPECT_EQ(surface.differenceFrom(expected), "")
                    << "moved by " << offsetX << ", " << offsetY << ", grown by " << growth;
            }
}

/// Sources of many colours, and sources of two colours, one of them the key, so that filtering meets it often.
void scalingCase(Case &c, ScalingBlit blit, NaiveScaling naive) {
    Surface dst = Surface::random(c.random);
    Surface src = Surface::random(c.random);
    q_ulong key = c.random.pixel();
    if (c.random.oneIn(2)) {
        if (c.random.oneIn(2))
            key &= 0xFFFFFF;
        const q_ulong other = c.random.pixel();
        for (int y = 0; y < src.height(); ++y)
            for (int x = 0; x < src.width(); ++x)
                src.at(x, y) = c.random.oneIn(3) ? other : key;
    }
    tagRECT srcRect = c.random.rectInside(src.width(), src.height());
    if (c.random.oneIn(20))
        srcRect.right = srcRect.left;
    if (c.random.oneIn(20))
        srcRect.bottom = srcRect.top;
    tagRECT dstRect = c.random.rectInsideOrEmpty(dst.width(), dst.height());
    Surface expected = dst;
    naive(expected, src, dstRect, srcRect, key);
    blit(dst.pixels(), src.pixels(), &dstRect, &srcRect, unsignedOf(dst.pitch()), unsignedOf(src.pitch()), key);
    c.expectEqual(dst, expected);
}

TEST(iBltNear32_KeySrc, every_destination_rectangle_over_a_small_surface) {
    everyDestinationRectangle(iBltNear32_KeySrc, naiveNearest);
}

TEST(iBltNear32_KeySrc, overlapping_blits_run_in_row_and_column_order) {
    overlappingScales(iBltNear32_KeySrc, naiveNearest);
}

TEST(iBltNear32_KeySrc, agrees_with_a_naive_scaling) {
    forEachCase("iBltNear32_KeySrc", [](Case &c) { scalingCase(c, iBltNear32_KeySrc, naiveNearest); });
}

TEST(iBltBilinear32_KeySrc, a_surface_that_is_all_key_leaves_the_destination_untouched) {
    const Surface before(9, 7, 0xDEADBEEF);
    Surface dst = before;
    Surface src(4, 5, 0x00A1B2C3);
    tagRECT srcRect = src.rect();
    tagRECT dstRect = dst.rect();
    iBltBilinear32_KeySrc(dst.pixels(), src.pixels(), &dstRect, &srcRect, unsignedOf(dst.pitch()),
                          unsignedOf(src.pitch()), 0x00A1B2C3);
    EXPECT_EQ(dst.differenceFrom(before), "");
}

TEST(iBltBilinear32_KeySrc, a_key_with_a_top_byte_never_matches) {
    Surface dst(9, 7, 0xDEADBEEF);
    Surface src(4, 5, 0x80A1B2C3);
    tagRECT srcRect = src.rect();
    tagRECT dstRect = dst.rect();
    iBltBilinear32_KeySrc(dst.pixels(), src.pixels(), &dstRect, &srcRect, unsignedOf(dst.pitch()),
                          unsignedOf(src.pitch()), 0x80A1B2C3);
    for (int y = 0; y < 7; ++y)
        for (int x = 0; x < 9; ++x)
            EXPECT_EQ(dst.at(x, y), 0x00A1B2C3u);
}

TEST(iBltBilinear32_KeySrc, sources_too_wide_for_16_integer_bits_fit_into_17) {
    Surface src(70000, 1);
    for (int x = 0; x < 70000; ++x)
        src.at(x, 0) = unsignedOf(x + 1);
    Surface dst(4, 1);
    tagRECT srcRect = src.rect();
    tagRECT dstRect = dst.rect();
    iBltBilinear32_KeySrc(dst.pixels(), src.pixels(), &dstRect, &srcRect, unsignedOf(dst.pitch()),
                          unsignedOf(src.pitch()), 0);
    for (int x = 0; x < 4; ++x)
        EXPECT_EQ(dst.at(x, 0), unsignedOf(x * 17500 + 1));
}

TEST(iBltBilinear32_KeySrc, the_border_of_a_keyed_area_blends_the_key_in) {
    Surface dst(8, 1, 0x11111111);
    Surface src(2, 1);
    src.at(0, 0) = 0x000000; // the key
    src.at(1, 0) = 0x6480FF;
    tagRECT srcRect = src.rect();
    tagRECT dstRect = dst.rect();
    iBltBilinear32_KeySrc(dst.pixels(), src.pixels(), &dstRect, &srcRect, unsignedOf(dst.pitch()),
                          unsignedOf(src.pitch()), 0);
    // Steps of a quarter: 4, 8 and 12 sixteenths of 0x64, 0x80 and 0xFF, truncated; then the last column alone.
    EXPECT_EQ(dst.at(0, 0), 0x11111111u);
    EXPECT_EQ(dst.at(1, 0), 0x0019203Fu);
    EXPECT_EQ(dst.at(2, 0), 0x0032407Fu);
    EXPECT_EQ(dst.at(3, 0), 0x004B60BFu);
    for (int x = 4; x < 8; ++x)
        EXPECT_EQ(dst.at(x, 0), 0x006480FFu);
}

TEST(iBltBilinear32_KeySrc, what_filters_to_the_key_is_left_out_though_no_tap_equals_it) {
    Surface dst(4, 1, 0x11111111);
    Surface src(2, 1);
    src.at(0, 0) = 0x000010;
    src.at(1, 0) = 0x000030;
    tagRECT srcRect = src.rect();
    tagRECT dstRect = dst.rect();
    iBltBilinear32_KeySrc(dst.pixels(), src.pixels(), &dstRect, &srcRect, unsignedOf(dst.pitch()),
                          unsignedOf(src.pitch()), 0x000020);
    EXPECT_EQ(dst.at(0, 0), 0x10u);
    EXPECT_EQ(dst.at(1, 0), 0x11111111u);
    EXPECT_EQ(dst.at(2, 0), 0x30u);
    EXPECT_EQ(dst.at(3, 0), 0x30u);
}

TEST(iBltBilinear32_KeySrc, reads_nothing_outside_the_source) {
    for (int height = 1; height <= 4; ++height)
        for (int width = 1; width <= 4; ++width) {
            test::PageEndPixels src(static_cast<std::size_t>(width * height));
            for (int i = 0; i < width * height; ++i)
                src.data()[i] = 0x808080;
            Surface dst(11, 9);
            const Surface expected = [&] {
                Surface surface(11, 9);
                for (int y = 0; y < 9; ++y)
                    for (int x = 0; x < 11; ++x)
                        surface.at(x, y) = 0x808080;
                return surface;
            }();
            tagRECT srcRect = {0, 0, width, height};
            tagRECT dstRect = dst.rect();
            iBltBilinear32_KeySrc(dst.pixels(), src.data(), &dstRect, &srcRect, unsignedOf(dst.pitch()),
                                  unsignedOf(width), 0);
            EXPECT_EQ(dst.differenceFrom(expected), "") << width << " x " << height;
        }
}

TEST(iBltBilinear32_KeySrc, every_destination_rectangle_over_a_small_surface) {
    everyDestinationRectangle(iBltBilinear32_KeySrc, naiveFiltered);
}

TEST(iBltBilinear32_KeySrc, overlapping_blits_run_in_row_and_column_order) {
    overlappingScales(iBltBilinear32_KeySrc, naiveFiltered);
}

TEST(iBltBilinear32_KeySrc, agrees_with_a_naive_filter) {
    forEachCase("iBltBilinear32_KeySrc", [](Case &c) { scalingCase(c, iBltBilinear32_KeySrc, naiveFiltered); });
}

TEST(iBltFast32SafeKeySrc, a_centre_at_the_origin_draws_the_lower_right_quarter) {
    Surface src = numbered(6, 4);
    Surface dst(8, 8);
    Surface expected(8, 8);
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < 3; ++x)
            expected.at(x, y) = src.at(3 + x, 2 + y);
    tagRECT rect = src.rect();
    iBltFast32SafeKeySrc(dst.pixels(), src.pixels(), 0, 0, &rect, dst.pitch(), src.pitch(), 8, 8);
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

TEST(iBltFast32SafeKeySrc, odd_width_loses_last_column_and_odd_height_last_row) {
    Surface src = numbered(5, 3);
    Surface dst(8, 8);
    Surface expected(8, 8);
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < 4; ++x)
            expected.at(2 + x, 3 + y) = src.at(x, y);
    tagRECT rect = src.rect();
    iBltFast32SafeKeySrc(dst.pixels(), src.pixels(), 4, 4, &rect, dst.pitch(), src.pitch(), 8, 8);
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

TEST(iBltFast32SafeKeySrc, only_0_is_left_out) {
    Surface src(2, 2);
    src.at(1, 0) = 0x01000000;
    src.at(0, 1) = 0xFFFFFFFF;
    Surface dst(2, 2, 0x22222222);
    tagRECT rect = src.rect();
    iBltFast32SafeKeySrc(dst.pixels(), src.pixels(), 1, 1, &rect, dst.pitch(), src.pitch(), 2, 2);
    EXPECT_EQ(dst.at(0, 0), 0x22222222u);
    EXPECT_EQ(dst.at(1, 0), 0x01000000u);
    EXPECT_EQ(dst.at(0, 1), 0xFFFFFFFFu);
    EXPECT_EQ(dst.at(1, 1), 0x22222222u);
}

TEST(iBltFast32SafeKeySrc, every_position_and_size_over_a_small_surface_stays_inside) {
    test::Random random(5);
    Surface src = Surface::randomOfSize(random, 7, 7);
    const Surface empty(4, 4, 0xAAAAAAAA);
    for (int centreY = -6; centreY <= 9; ++centreY)
        for (int centreX = -6; centreX <= 9; ++centreX)
            for (int height = -3; height <= 7; ++height)
                for (int width = -3; width <= 7; ++width) {
                    Surface dst = empty;
                    Surface expected = empty;
                    tagRECT rect = {0, 0, width, height};
                    naiveCentred(expected, src, centreX, centreY, rect, 4, 4);
                    iBltFast32SafeKeySrc(dst.pixels(), src.pixels(), centreX, centreY, &rect, dst.pitch(), src.pitch(),
                                         4, 4);
                    ASSERT_EQ(dst.differenceFrom(expected), "")
                        << width << " x " << height << " around " << centreX << ", " << centreY;
                }
}

TEST(iBltFast32SafeKeySrc, every_clip_size_bounds_the_writes) {
    test::Random random(6);
    Surface src = Surface::randomOfSize(random, 6, 6);
    const Surface empty(6, 6, 0xAAAAAAAA);
    tagRECT rect = src.rect();
    for (const int clipHeight : {lowest, -1, 0, 1, 2, 5, 6, highest})
        for (const int clipWidth : {lowest, -1, 0, 1, 2, 5, 6, highest}) {
            Surface dst = empty;
            Surface expected = empty;
            naiveCentred(expected, src, 3, 3, rect, clipWidth, clipHeight);
            iBltFast32SafeKeySrc(dst.pixels(), src.pixels(), 3, 3, &rect, dst.pitch(), src.pitch(), clipWidth,
                                 clipHeight);
            EXPECT_EQ(dst.differenceFrom(expected), "") << clipWidth << " x " << clipHeight;
        }
}

TEST(iBltFast32SafeKeySrc, centres_at_the_ends_of_the_numbers_draw_nothing) {
    test::Random random(7);
    Surface src = Surface::randomOfSize(random, 7, 7);
    Surface dst(4, 4, 0xAAAAAAAA);
    const Surface before = dst;
    for (int distance = 0; distance < 10; ++distance)
        for (const int end : {lowest + distance, highest - distance, lowest / 2 + distance, highest / 2 - distance})
            for (int height = -7; height <= 7; ++height)
                for (int width = -7; width <= 7; ++width) {
                    tagRECT rect = {0, 0, width, height};
                    iBltFast32SafeKeySrc(dst.pixels(), src.pixels(), end, 2, &rect, dst.pitch(), src.pitch(), 4, 4);
                    iBltFast32SafeKeySrc(dst.pixels(), src.pixels(), 2, end, &rect, dst.pitch(), src.pitch(), 4, 4);
                    iBltFast32SafeKeySrc(dst.pixels(), src.pixels(), end, end, &rect, dst.pitch(), src.pitch(), 4, 4);
                    ASSERT_EQ(dst.differenceFrom(before), "") << width << " x " << height << " around " << end;
                }
}

TEST(iBltFast32SafeKeySrc, reads_nothing_that_the_clip_leaves_out) {
    test::PageEndPixels src(4 * 3);
    for (int i = 0; i < 12; ++i)
        src.data()[i] = unsignedOf(i + 1);
    Surface dst(2, 3);
    tagRECT rect = {0, 0, 8, 6}; // more columns and rows than the source has
    iBltFast32SafeKeySrc(dst.pixels(), src.data(), 2, 3, &rect, dst.pitch(), 4, 2, 3);
    EXPECT_EQ(dst.at(0, 0), 3u); // two columns stand left of the surface
    EXPECT_EQ(dst.at(1, 2), 12u);
}

TEST(iBltFast32SafeKeySrc, overlapping_copies_run_in_row_and_column_order) {
    for (int offsetY = -3; offsetY <= 3; ++offsetY)
        for (int offsetX = -5; offsetX <= 5; ++offsetX) {
            test::Random random(8);
            Surface surface = Surface::randomOfSize(random, 24, 12);
            Surface expected = surface;
            tagRECT rect = {6, 4, 18, 9};
            naiveCentred(expected, expected, 12 + offsetX, 6 + offsetY, rect, 24, 12);
            iBltFast32SafeKeySrc(surface.pixels(), surface.pixels(), 12 + offsetX, 6 + offsetY, &rect, surface.pitch(),
                                 surface.pitch(), 24, 12);
            EXPECT_EQ(surface.differenceFrom(expected), "") << "moved by " << offsetX << ", " << offsetY;
        }
}

TEST(iBltFast32SafeKeySrc, agrees_with_a_naive_copy) {
    forEachCase("iBltFast32SafeKeySrc", [](Case &c) {
        Surface dst = Surface::random(c.random);
        Surface src = Surface::random(c.random);
        tagRECT rect = c.random.rectInsideOrEmpty(src.width(), src.height());
        const int centreX = c.random.between(-12, 28);
        const int centreY = c.random.between(-12, 28);
        const int clipWidth = c.random.between(-1, dst.width());
        const int clipHeight = c.random.between(-1, dst.height());
        Surface expected = dst;
        naiveCentred(expected, src, centreX, centreY, rect, clipWidth, clipHeight);
        iBltFast32SafeKeySrc(dst.pixels(), src.pixels(), centreX, centreY, &rect, dst.pitch(), src.pitch(), clipWidth,
                             clipHeight);
        c.expectEqual(dst, expected);
    });
}

} // namespace
