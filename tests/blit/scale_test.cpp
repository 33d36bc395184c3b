#include "blit/naive_walks.h"
#include "support/cases.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace {

using test::Case;
using test::filteredPixel;
using test::forEachCase;
using test::heightOf;
using test::naiveNearest;
using test::naiveTaps;
using test::PositionFormat;
using test::SourcePosition;
using test::sourcePosition;
using test::Surface;
using test::unclipped;
using test::widthOf;

constexpr PositionFormat unsigned12_20 = {20, false};
constexpr PositionFormat signed12_20 = {20, true};
constexpr PositionFormat signed15_17 = {17, true};

constexpr int least = std::numeric_limits<int>::min();
constexpr int largest = std::numeric_limits<int>::max();

constexpr auto copy = [](q_ulong &d, q_ulong s) { d = s; };

using Scaler = void (*)(Surface &dst, tagRECT dstRect, Surface &src, tagRECT srcRect);

void nearest(Surface &dst, tagRECT dstRect, Surface &src, tagRECT srcRect) {
    iBltNear32(dst.pixels(), src.pixels(), &dstRect, &srcRect, dst.pitch(), src.pitch());
}

void nearestSafe(Surface &dst, tagRECT dstRect, Surface &src, tagRECT srcRect, tagRECT clip) {
    iBltNear32Safe(dst.pixels(), src.pixels(), &dstRect, &srcRect, &clip, dst.pitch(), src.pitch());
}

void bilinear(Surface &dst, tagRECT dstRect, Surface &src, tagRECT srcRect) {
    iBltBilinear32(dst.pixels(), src.pixels(), &dstRect, &srcRect, static_cast<q_ulong>(dst.pitch()),
                   static_cast<q_ulong>(src.pitch()));
}

void bilinearSafe(Surface &dst, tagRECT dstRect, Surface &src, tagRECT srcRect) {
    iBltBilinear32Safe(dst.pixels(), src.pixels(), &dstRect, &srcRect, static_cast<q_ulong>(dst.pitch()),
                       static_cast<q_ulong>(src.pitch()));
}

void adaptive(Surface &dst, tagRECT dstRect, Surface &src, tagRECT srcRect) {
    iBltAdaptive32(dst.pixels(), src.pixels(), &dstRect, &srcRect, static_cast<q_ulong>(dst.pitch()),
                   static_cast<q_ulong>(src.pitch()));
}

void perfect(Surface &dst, tagRECT dstRect, Surface &src, tagRECT srcRect) {
    iBltPerfect32(dst.pixels(), src.pixels(), &dstRect, &srcRect, static_cast<q_ulong>(dst.pitch()),
                  static_cast<q_ulong>(src.pitch()));
}

void naiveNear(Surface &dst, tagRECT dstRect, Surface &src, tagRECT srcRect) {
    naiveNearest(dst, src, dstRect, srcRect, unsigned12_20, unclipped, copy);
}

void naiveBilinear(Surface &dst, tagRECT dstRect, Surface &src, tagRECT srcRect) {
    visitScaled(dstRect, srcRect, unsigned12_20, unclipped, [&](int x, int y, SourcePosition column, auto row) {
        dst.at(x, y) =
            filteredPixel(naiveTaps(src, static_cast<int>(srcRect.left + column.pixel),
                                    static_cast<int>(srcRect.top + row.pixel), column.sixteenths, row.sixteenths));
    });
}

/// Looks at byte addresses, pixel by pixel.
void naiveBilinearSafe(Surface &dst, tagRECT dstRect, Surface &src, tagRECT srcRect, std::int64_t srcPitch) {
    // Some address far from 0, as every surface's is.
    constexpr std::int64_t origin = 0x40000000;
    const std::int64_t limit = origin + heightOf(srcRect) * srcPitch * 4 - 4;
    visitScaled(dstRect, srcRect, unsigned12_20, unclipped, [&](int x, int y, SourcePosition column, auto row) {
        const int srcX = static_cast<int>(srcRect.left + column.pixel);
        const int direction = srcPitch < 0 ? -1 : 1;
        const int srcY = static_cast<int>(srcRect.top + row.pixel * direction);
        const std::int64_t row0 = origin + row.pixel * srcPitch * 4;
        const std::int64_t row1 = row0 + srcPitch * 4;
        if (row1 + 4 * column.pixel + 5 >= limit || row0 + 4 * column.pixel + 4 >= limit)
            dst.at(x, y) = src.at(srcX, srcY);
        else
            dst.at(x, y) = filteredPixel(naiveTaps(src, srcX, srcY, column.sixteenths, row.sixteenths));
    });
}

void naiveBilinearSafe(Surface &dst, tagRECT dstRect, Surface &src, tagRECT srcRect) {
    naiveBilinearSafe(dst, dstRect, src, srcRect, src.pitch());
}

void naivePerfect(Surface &dst, tagRECT dstRect, Surface &src, tagRECT srcRect) {
    const int width = widthOf(dstRect);
    const int height = heightOf(dstRect);
    if (width == 0 || height == 0)
        return;
    const auto phase = [](q_long edge) { return ((edge % 16) + 16) % 16; };
    const std::int64_t startX = (phase(srcRect.left) - phase(dstRect.left)) * 8192;
    const std::int64_t startY = (phase(srcRect.top) - phase(dstRect.top)) * 8192;
    for (int y = 0; y < height / 16 + 1; ++y)
        for (int x = 0; x < width / 16 + 1; ++x) {
            const auto column = sourcePosition(x, widthOf(srcRect), width, signed15_17, startX);
            const auto row = sourcePosition(y, heightOf(srcRect), height, signed15_17, startY);
            dst.at(static_cast<int>(dstRect.left / 16) + x, static_cast<int>(dstRect.top / 16) + y) = filteredPixel(
                naiveTaps(src, static_cast<int>(srcRect.left / 16 + column.pixel),
                          static_cast<int>(srcRect.top / 16 + row.pixel), column.sixteenths, row.sixteenths));
        }
}

/// A picture whose pixels tell their place.
Surface numbered(int width, int height, q_ulong topByte = 0) {
    Surface surface(width, height);
    for (int y = -Surface::margin; y < height + Surface::margin; ++y)
        for (int x = -Surface::margin; x < width + Surface::margin; ++x)
            surface.at(x, y) = topByte << 24 | static_cast<q_ulong>((y + 16) << 8 | (x + 16));
    return surface;
}

/// A rectangle inside a source; once in ten times of no width or height.
tagRECT sourceRect(test::Random &random, const Surface &src) {
    tagRECT rect = random.rectInside(src.width(), src.height());
    if (random.oneIn(10))
        (random.oneIn(2) ? rect.right : rect.bottom) = random.oneIn(2) ? rect.left : rect.top;
    if (rect.right < rect.left || rect.bottom < rect.top)
        return {rect.left, rect.top, rect.left, rect.top};
    return rect;
}

/// Random scalings, compared with a naive one.
void compareScalings(std::string_view name, Scaler scale, Scaler naive) {
    forEachCase(name, [=](Case &c) {
        Surface dst = Surface::random(c.random);
        Surface src = Surface::random(c.random);
        const tagRECT dstRect = c.random.rectInsideOrEmpty(dst.width(), dst.height());
        const tagRECT srcRect = sourceRect(c.random, src);
        Surface expected = dst;
        naive(expected, dstRect, src, srcRect);
        scale(dst, dstRect, src, srcRect);
        c.expectEqual(dst, expected);
    });
}

/// Scalings of a surface onto itself, in every place around the source, compared with a naive one.
void compareOverlaps(Scaler scale, Scaler naive) {
    const tagRECT srcRect = {6, 4, 14, 9};
    for (const auto &[width, height] : {std::pair{8, 5}, {12, 7}, {5, 3}, {16, 5}})
        for (int offsetY = -3; offsetY <= 3; ++offsetY)
            for (int offsetX = -4; offsetX <= 4; ++offsetX) {
                test::Random random(1);
                Surface surface = Surface::randomOfSize(random, 28, 16);
                Surface expected = surface;
                const tagRECT dstRect = {6 + offsetX, 4 + offsetY, 6 + offsetX + width, 4 + offsetY + height};
                naive(expected, dstRect, expected, srcRect);
                scale(surface, dstRect, surface, srcRect);
                ASSERT_EQ(surface.differenceFrom(expected), "")
                    << width << " x " << height << " moved by " << offsetX << ", " << offsetY;
            }
}

/// Long lines, in either direction: over 1999 pixels scaled to 1009, positions of 15, 16, 17 and 20 fraction bits stand
/// on different pixels here and there.
void compareLongLines(Scaler scale, Scaler naive) {
    for (const bool upright : {false, true}) {
        test::Random random(upright);
        Surface src = upright ? Surface::randomOfSize(random, 1, 1999) : Surface::randomOfSize(random, 1999, 1);
        Surface dst = upright ? Surface(1, 1009) : Surface(1009, 1);
        Surface expected = dst;
        naive(expected, dst.rect(), src, src.rect());
        scale(dst, dst.rect(), src, src.rect());
        ASSERT_EQ(dst.differenceFrom(expected), "");
    }
}

// ---------------------------------------------------------------------------------------------------------------------

TEST(iBltNear32, positions_have_20_fraction_bits) {
    compareLongLines(nearest, naiveNear);
}

TEST(iBltNear32, one_pixel_is_repeated_over_any_rectangle) {
    Surface src = numbered(1, 1);
    src.at(0, 0) = 0x80FF1234;
    const Surface empty(6, 6, 0xAAAAAAAA);
    for (int bottom = 0; bottom <= 6; ++bottom)
        for (int right = 0; right <= 6; ++right) {
            Surface dst = empty;
            Surface expected = empty;
            for (int y = 0; y < bottom; ++y)
                for (int x = 0; x < right; ++x)
                    expected.at(x, y) = 0x80FF1234;
            nearest(dst, {0, 0, right, bottom}, src, src.rect());
            ASSERT_EQ(dst.differenceFrom(expected), "");
        }
}

TEST(iBltNear32, each_pixel_shows_the_source_pixel_at_or_left_of_its_place) {
    Surface src = numbered(5, 1);
    Surface dst(8, 1);
    nearest(dst, {0, 0, 8, 1}, src, src.rect()); // steps of 5/8: 0, 0.625, 1.25, 1.875, 2.5, 3.125, 3.75, 4.375
    const int enlarged[] = {0, 0, 1, 1, 2, 3, 3, 4};
    for (int x = 0; x < 8; ++x)
        EXPECT_EQ(dst.at(x, 0), src.at(enlarged[x], 0)) << x;
    nearest(dst, {0, 0, 2, 1}, src, src.rect()); // steps of 2.5
    EXPECT_EQ(dst.at(0, 0), src.at(0, 0));
    EXPECT_EQ(dst.at(1, 0), src.at(2, 0));
    nearest(dst, {0, 0, 3, 1}, src, src.rect()); // the step of 5/3 is truncated: 0, 1.67, 3.33
    EXPECT_EQ(dst.at(1, 0), src.at(1, 0));
    EXPECT_EQ(dst.at(2, 0), src.at(3, 0));
}

TEST(iBltNear32, truncated_steps_fall_short_of_a_whole_pixel) {
    // 1/3 in 20 fraction bits is 349525, and three of them are one unit below 1; 3/9 likewise.
    Surface src = numbered(3, 1);
    Surface dst(9, 1);
    nearest(dst, {0, 0, 9, 1}, src, src.rect());
    EXPECT_EQ(dst.at(3, 0), src.at(0, 0));
    EXPECT_EQ(dst.at(4, 0), src.at(1, 0));
    EXPECT_EQ(dst.at(6, 0), src.at(1, 0));
}

TEST(iBltNear32, a_source_without_width_or_height_repeats_its_first_column_or_row) {
    Surface src = numbered(4, 4, 0x77);
    Surface dst(3, 3);
    nearest(dst, {0, 0, 3, 3}, src, {1, 0, 1, 3});
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 3; ++x)
            EXPECT_EQ(dst.at(x, y), src.at(1, y));
    nearest(dst, {0, 0, 3, 3}, src, {0, 2, 3, 2});
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 3; ++x)
            EXPECT_EQ(dst.at(x, y), src.at(x, 2));
}

TEST(iBltNear32, sources_of_4095_columns_fit_the_format_and_4097_count_as_one) {
    test::Random random(1);
    Surface src = Surface::randomOfSize(random, 4097, 1);
    Surface dst(3, 1);
    nearest(dst, {0, 0, 3, 1}, src, {0, 0, 4095, 1});
    EXPECT_EQ(dst.at(1, 0), src.at(1365, 0));
    EXPECT_EQ(dst.at(2, 0), src.at(2730, 0));
    nearest(dst, {0, 0, 3, 1}, src, {0, 0, 4097, 1});
    for (int x = 0; x < 3; ++x)
        EXPECT_EQ(dst.at(x, 0), src.at(0, 0));
}

TEST(iBltNear32, bottom_up_surfaces_have_a_negative_pitch) {
    Surface src = numbered(2, 2);
    Surface dst(2, 4);
    tagRECT dstRect = {0, 0, 2, 4};
    tagRECT srcRect = src.rect();
    iBltNear32(&dst.at(0, 3), &src.at(0, 1), &dstRect, &srcRect, -dst.pitch(), -src.pitch());
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 2; ++x)
            EXPECT_EQ(dst.at(x, y), src.at(x, y / 2));
}

TEST(iBltNear32, overlapping_scalings_run_in_row_and_column_order) {
    compareOverlaps(nearest, naiveNear);
}

TEST(iBltNear32, agrees_with_a_naive_scaling) {
    compareScalings("iBltNear32", nearest, naiveNear);
}

// ---------------------------------------------------------------------------------------------------------------------

TEST(iBltNear32Safe, a_clip_beside_the_destination_writes_nothing) {
    Surface src = numbered(4, 4);
    const Surface empty(12, 12, 0xAAAAAAAA);
    for (const tagRECT clip : {tagRECT{0, 0, 4, 12},
                               {8, 0, 12, 12},
                               {0, 0, 12, 4},
                               {0, 8, 12, 12},
                               {5, 5, 5, 8},
                               {5, 5, 8, 5},
                               {8, 8, 5, 5}}) {
        Surface dst = empty;
        nearestSafe(dst, {4, 4, 8, 8}, src, src.rect(), clip);
        EXPECT_EQ(dst.differenceFrom(empty), "");
    }
}

TEST(iBltNear32Safe, shows_inside_the_clip_what_stands_there_unclipped) {
    test::Random random(1);
    Surface src = Surface::randomOfSize(random, 5, 7);
    const Surface before = Surface::randomOfSize(random, 10, 10);
    const tagRECT dstRect = {1, 2, 9, 8};
    Surface whole = before;
    nearest(whole, dstRect, src, src.rect());
    for (int top = -1; top <= 10; ++top)
        for (int bottom = -1; bottom <= 11; ++bottom)
            for (int left = -1; left <= 10; ++left)
                for (int right = -1; right <= 11; ++right) {
                    Surface dst = before;
                    Surface expected = before;
                    const tagRECT clip = {left, top, right, bottom};
                    for (int y = 0; y < 10; ++y)
                        for (int x = 0; x < 10; ++x)
                            if (test::isInside(clip, x, y))
                                expected.at(x, y) = whole.at(x, y);
                    nearestSafe(dst, dstRect, src, src.rect(), clip);
                    ASSERT_EQ(dst.differenceFrom(expected), "")
                        << left << ", " << top << ", " << right << ", " << bottom;
                }
}

TEST(iBltNear32Safe, every_position_and_size_over_a_small_surface_stays_inside) {
    test::Random random(1);
    Surface src = Surface::randomOfSize(random, 3, 4);
    const Surface empty(4, 3, 0xAAAAAAAA);
    for (int top = -6; top <= 5; ++top)
        for (int left = -7; left <= 6; ++left)
            for (int height = -2; height <= 8; ++height)
                for (int width = -2; width <= 9; ++width) {
                    Surface dst = empty;
                    Surface expected = empty;
                    const tagRECT dstRect = {left, top, left + width, top + height};
                    naiveNearest(expected, src, dstRect, src.rect(), signed12_20, dst.rect(), copy);
                    nearestSafe(dst, dstRect, src, src.rect(), dst.rect());
                    ASSERT_EQ(dst.differenceFrom(expected), "")
                        << width << " x " << height << " at " << left << ", " << top;
                }
}

TEST(iBltNear32Safe, a_source_turned_inside_out_is_walked_to_the_left) {
    Surface src = numbered(8, 1);
    Surface dst(4, 1);
    nearestSafe(dst, dst.rect(), src, {5, 0, 1, 1}, dst.rect());
    for (int x = 0; x < 4; ++x)
        EXPECT_EQ(dst.at(x, 0), src.at(5 - x, 0));
}

TEST(iBltNear32Safe, positions_have_20_fraction_bits) {
    const Scaler safe = [](Surface &dst, tagRECT dstRect, Surface &src, tagRECT srcRect) {
        nearestSafe(dst, dstRect, src, srcRect, dst.rect());
    };
    compareLongLines(safe, naiveNear);
}

TEST(iBltNear32Safe, sources_of_2047_columns_fit_the_format) {
    test::Random random(1);
    Surface src = Surface::randomOfSize(random, 2047, 1);
    Surface dst(3, 1);
    nearestSafe(dst, {0, 0, 3, 1}, src, src.rect(), dst.rect());
    EXPECT_EQ(dst.at(1, 0), src.at(682, 0));
    EXPECT_EQ(dst.at(2, 0), src.at(1364, 0));
}

TEST(iBltNear32Safe, reads_nothing_that_the_clip_leaves_out) {
    test::PageEndPixels src(4 * 3);
    for (int i = 0; i < 12; ++i)
        src.data()[i] = static_cast<q_ulong>(i);
    Surface dst(4, 5);
    tagRECT dstRect = {0, 0, 8, 10};
    tagRECT srcRect = {0, 0, 8, 6}; // twice what there is
    tagRECT clip = dst.rect();
    iBltNear32Safe(dst.pixels(), src.data(), &dstRect, &srcRect, &clip, dst.pitch(), 4);
    EXPECT_EQ(dst.at(3, 4), 11u); // row 4 of 10 of a source of 6 rows: 2.4
}

TEST(iBltNear32Safe, destinations_far_beyond_the_surface_show_their_part_of_the_source) {
    // 2^30 rows stand above the one that is seen, and with this pitch the first of them lies before all memory.
    constexpr int rows = 1 << 30;
    constexpr int pitch = 1 << 20;
    Surface src = numbered(4, 4);
    Surface dst(4, 1, 0xAAAAAAAA);
    const tagRECT clip = dst.rect();
    tagRECT srcRect = src.rect();
    tagRECT window = clip;
    tagRECT dstRect = {-rows, -rows, rows - 1, rows - 1};
    iBltNear32Safe(dst.pixels(), src.pixels(), &dstRect, &srcRect, &window, pitch, src.pitch());
    // The step of 4 * 2^20 / (2^31 - 1) is 0.
    for (int x = 0; x < 4; ++x)
        EXPECT_EQ(dst.at(x, 0), src.at(0, 0));
    EXPECT_EQ(dst.at(4, 0), 0xAAAAAAAAu);
    EXPECT_EQ(dst.at(0, 1), 0xAAAAAAAAu);
}

TEST(iBltNear32Safe, coordinates_at_the_end_of_the_numbers_write_nothing_outside_the_clip) {
    Surface src = numbered(4, 4);
    const Surface untouched(4, 4, 0xAAAAAAAA);
    const int ends[] = {least, least + 1, least + 5, largest - 5, largest - 1, largest};
    for (const int left : ends)
        for (const int right : ends)
            for (const tagRECT dstRect :
                 {tagRECT{left, 0, right, 4}, {0, left, 4, right}, {left, left, right, right}}) {
                Surface dst = untouched;
                nearestSafe(dst, dstRect, src, src.rect(), dst.rect());
                // What spans the whole of the numbers has no width that an int counts.
                ASSERT_EQ(dst.differenceFrom(untouched), "") << left << " to " << right;
            }
}

TEST(iBltNear32Safe, agrees_with_a_naive_scaling) {
    forEachCase("iBltNear32Safe", [](Case &c) {
        Surface dst = Surface::random(c.random);
        Surface src = Surface::random(c.random);
        tagRECT dstRect = {c.random.between(-20, 20), c.random.between(-20, 20), 0, 0};
        dstRect.right = dstRect.left + c.random.between(-2, 40);
        dstRect.bottom = dstRect.top + c.random.between(-2, 40);
        const tagRECT srcRect = c.random.rectInsideOrEmpty(src.width(), src.height());
        tagRECT clip = c.random.rectInsideOrEmpty(dst.width(), dst.height());
        Surface expected = dst;
        naiveNearest(expected, src, dstRect, srcRect, signed12_20, clip, copy);
        nearestSafe(dst, dstRect, src, srcRect, clip);
        c.expectEqual(dst, expected);
    });
}

// ---------------------------------------------------------------------------------------------------------------------

TEST(iBltBilinear32, a_uniform_colour_stays_under_all_weights) {
    for (q_ulong c = 0; c < 256; ++c) {
        Surface src(1, 1, 0xEE000000 | c << 16 | c << 8 | c);
        Surface dst(16, 16);
        bilinear(dst, dst.rect(), src, src.rect()); // one pixel in sixteen steps: all 256 pairs of fractions
        for (int y = 0; y < 16; ++y)
            for (int x = 0; x < 16; ++x)
                ASSERT_EQ(dst.at(x, y), c << 16 | c << 8 | c);
    }
}

TEST(iBltBilinear32, every_value_under_every_weight_of_each_tap_is_the_truncated_product) {
    for (int tap = 0; tap < 4; ++tap)
        for (q_ulong c = 0; c < 256; ++c) {
            Surface src(1, 1);
            src.at(tap % 2, tap / 2) = c << 16 | (255 - c) << 8 | c;
            Surface dst(16, 16);
            bilinear(dst, dst.rect(), src, src.rect());
            for (q_ulong y = 0; y < 16; ++y)
                for (q_ulong x = 0; x < 16; ++x) {
                    const q_ulong weight = (tap % 2 ? x : 16 - x) * (tap / 2 ? y : 16 - y);
                    ASSERT_EQ(dst.at(static_cast<int>(x), static_cast<int>(y)),
                              (c * weight / 256) << 16 | ((255 - c) * weight / 256) << 8 | c * weight / 256);
                }
        }
}

TEST(iBltBilinear32, the_last_column_and_row_read_one_pixel_beyond_the_source) {
    Surface src(2, 2, 0);
    src.at(2, 0) = 0x0000FF;
    src.at(0, 2) = 0x00FF00;
    Surface dst(4, 4);
    bilinear(dst, dst.rect(), src, src.rect());
    EXPECT_EQ(dst.at(3, 0), 0x00007Fu);
    EXPECT_EQ(dst.at(0, 3), 0x007F00u);
}

TEST(iBltBilinear32, only_four_bits_of_the_fraction_count) {
    // Steps of 1/64: four pixels each share a weight.
    Surface src(1, 1);
    src.at(1, 0) = 0xFF;
    Surface dst(64, 1);
    bilinear(dst, dst.rect(), src, src.rect());
    for (int x = 0; x < 64; ++x)
        EXPECT_EQ(dst.at(x, 0), static_cast<q_ulong>(255 * (x / 4) / 16)) << x;
}

TEST(iBltBilinear32, an_empty_destination_writes_nothing) {
    Surface src = numbered(4, 4);
    const Surface untouched(4, 4, 0xAAAAAAAA);
    for (const tagRECT rect : {tagRECT{1, 1, 1, 3}, {1, 1, 3, 1}, {3, 1, 1, 3}, {1, 3, 3, 1}}) {
        Surface dst = untouched;
        bilinear(dst, rect, src, src.rect());
        bilinearSafe(dst, rect, src, src.rect());
        nearest(dst, rect, src, src.rect());
        adaptive(dst, rect, src, src.rect());
        EXPECT_EQ(dst.differenceFrom(untouched), "");
    }
}

TEST(iBltBilinear32, bottom_up_surfaces_have_a_negative_pitch_though_it_is_unsigned) {
    test::Random random(1);
    Surface src = Surface::randomOfSize(random, 3, 3);
    Surface turned = src;
    for (int y = -1; y <= 3; ++y)
        for (int x = -1; x <= 3; ++x)
            turned.at(x, 2 - y) = src.at(x, y);
    Surface expected(6, 6);
    bilinear(expected, {0, 0, 6, 6}, src, src.rect());
    Surface dst(6, 6);
    tagRECT dstRect = {0, 0, 6, 6};
    tagRECT srcRect = src.rect();
    iBltBilinear32(dst.pixels(), &turned.at(0, 2), &dstRect, &srcRect, static_cast<q_ulong>(dst.pitch()),
                   static_cast<q_ulong>(-turned.pitch()));
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

TEST(iBltBilinear32, positions_have_20_fraction_bits) {
    compareLongLines(bilinear, naiveBilinear);
    compareLongLines(bilinearSafe, naiveBilinearSafe);
}

TEST(iBltBilinear32, overlapping_scalings_run_in_row_and_column_order) {
    compareOverlaps(bilinear, naiveBilinear);
}

TEST(iBltBilinear32, agrees_with_a_naive_filter) {
    compareScalings("iBltBilinear32", bilinear, naiveBilinear);
}

// ---------------------------------------------------------------------------------------------------------------------

TEST(iBltBilinear32Safe, a_uniform_colour_loses_its_top_byte_except_on_the_last_source_row) {
    Surface src(4, 4, 0x80112233);
    Surface dst(8, 8);
    bilinearSafe(dst, dst.rect(), src, src.rect());
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x)
            EXPECT_EQ(dst.at(x, y), y < 6 ? 0x00112233u : 0x80112233u) << x << ", " << y;
}

/// Which pixels come out unfiltered when a source without a border is enlarged two by two.
std::vector<bool> unfiltered(int width, int height, int pitch) {
    std::vector<q_ulong> src(static_cast<std::size_t>((pitch + 1) * (height + 1)), 0x80000000);
    std::vector<q_ulong> dst(static_cast<std::size_t>(4 * width * height));
    tagRECT srcRect = {0, 0, width, height};
    tagRECT dstRect = {0, 0, 2 * width, 2 * height};
    iBltBilinear32Safe(dst.data(), src.data(), &dstRect, &srcRect, static_cast<q_ulong>(2 * width),
                       static_cast<q_ulong>(pitch));
    std::vector<bool> copied;
    for (const q_ulong pixel : dst)
        copied.push_back(pixel != 0);
    return copied;
}

TEST(iBltBilinear32Safe, a_pitch_equal_to_the_width_also_catches_the_end_of_the_last_row_but_one) {
    // A row's taps end at the same column one row below: of the row above the last one, what lies within two pixels of
    // the area's end is copied.
    for (int margin = 0; margin <= 3; ++margin) {
        const std::vector<bool> copied = unfiltered(4, 3, 4 + margin);
        for (int y = 0; y < 6; ++y)
            for (int x = 0; x < 8; ++x) {
                const int column = x / 2;
                const bool expected = y / 2 == 2 || (y / 2 == 1 && column >= 2 + margin);
                EXPECT_EQ(copied[static_cast<std::size_t>(y * 8 + x)], expected)
                    << x << ", " << y << " with " << margin << " columns to the right";
            }
    }
}

TEST(iBltBilinear32Safe, reads_nothing_behind_the_source_area) {
    for (int height = 1; height <= 5; ++height)
        for (int width = 1; width <= 6; ++width)
            for (int pitch = width; pitch <= width + 2; ++pitch) {
                test::PageEndPixels src(static_cast<std::size_t>(pitch * height));
                for (const auto &[dstWidth, dstHeight] :
                     {std::pair{1, 1}, {width, height}, {2 * width, 2 * height}, {7, 5}, {33, 19}}) {
                    Surface dst(dstWidth, dstHeight);
                    tagRECT dstRect = dst.rect();
                    tagRECT srcRect = {0, 0, width, height};
                    iBltBilinear32Safe(dst.pixels(), src.data(), &dstRect, &srcRect, static_cast<q_ulong>(dst.pitch()),
                                       static_cast<q_ulong>(pitch));
                }
            }
}

TEST(iBltBilinear32Safe, a_source_rectangle_within_its_surface_has_an_area_of_whole_pitches) {
    // The area is counted from the rectangle's corner, so it ends beside the rectangle's last row, not with it.
    test::Random random(1);
    Surface src = Surface::randomOfSize(random, 9, 9);
    Surface dst(12, 12);
    Surface expected = dst;
    const tagRECT srcRect = {3, 2, 8, 7};
    naiveBilinearSafe(expected, dst.rect(), src, srcRect);
    bilinearSafe(dst, dst.rect(), src, srcRect);
    EXPECT_EQ(dst.differenceFrom(expected), "");
    EXPECT_NE(dst.at(11, 8), src.at(7, 5)); // still filtered
    EXPECT_EQ(dst.at(11, 10), src.at(7, 6));
}

TEST(iBltBilinear32Safe, the_right_edge_still_reads_one_pixel_beyond) {
    Surface src(2, 3, 0);
    src.at(2, 0) = 0x0000FF;
    Surface dst(4, 3);
    bilinearSafe(dst, dst.rect(), src, src.rect());
    EXPECT_EQ(dst.at(3, 0), 0x00007Fu);
}

TEST(iBltBilinear32Safe, a_bottom_up_source_comes_out_unfiltered) {
    // Its area ends before its first row, in terms of addresses.
    forEachCase(
        "iBltBilinear32Safe bottom-up",
        [](Case &c) {
            Surface dst = Surface::random(c.random);
            Surface src = Surface::random(c.random);
            tagRECT dstRect = c.random.rectInsideOrEmpty(dst.width(), dst.height());
            tagRECT srcRect = {0, 0, src.width(), src.height()};
            Surface expected = dst;
            naiveBilinearSafe(expected, dstRect, src, {0, src.height() - 1, src.width(), 2 * src.height() - 1},
                              -src.pitch());
            iBltBilinear32Safe(dst.pixels(), &src.at(0, src.height() - 1), &dstRect, &srcRect,
                               static_cast<q_ulong>(dst.pitch()), static_cast<q_ulong>(-src.pitch()));
            c.expectEqual(dst, expected);
        },
        1000);
}

TEST(iBltBilinear32Safe, overlapping_scalings_run_in_row_and_column_order) {
    compareOverlaps(bilinearSafe, naiveBilinearSafe);
}

TEST(iBltBilinear32Safe, agrees_with_a_naive_filter) {
    compareScalings("iBltBilinear32Safe", bilinearSafe, naiveBilinearSafe);
}

TEST(iBltBilinear32Safe, agrees_with_a_naive_filter_without_a_border) {
    forEachCase(
        "iBltBilinear32Safe tight",
        [](Case &c) {
            const int width = c.random.between(1, 9);
            const int height = c.random.between(1, 9);
            const int pitch = width + c.random.between(0, 2);
            // The same pixels twice: packed as the library gets them, and laid out for the naive filter, whose rows
            // run on into the next ones.
            test::PageEndPixels packed(static_cast<std::size_t>(pitch * height));
            Surface src(width, height);
            for (int i = 0; i < pitch * height; ++i)
                packed.data()[i] = c.random.pixel();
            for (int y = 0; y <= height; ++y)
                for (int x = 0; x <= width; ++x)
                    if (y * pitch + x < pitch * height)
                        src.at(x, y) = packed.data()[y * pitch + x];
            Surface dst = Surface::random(c.random, 20);
            tagRECT dstRect = c.random.rectInside(dst.width(), dst.height());
            tagRECT srcRect = src.rect();
            Surface expected = dst;
            naiveBilinearSafe(expected, dstRect, src, srcRect, pitch);
            iBltBilinear32Safe(dst.pixels(), packed.data(), &dstRect, &srcRect, static_cast<q_ulong>(dst.pitch()),
                               static_cast<q_ulong>(pitch));
            c.expectEqual(dst, expected);
        },
        4000);
}

// ---------------------------------------------------------------------------------------------------------------------

TEST(iBltAdaptive32, equal_sizes_copy_the_top_byte) {
    Surface src = numbered(4, 3, 0xC0);
    Surface dst(6, 6);
    adaptive(dst, {1, 2, 5, 5}, src, src.rect());
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 4; ++x)
            EXPECT_EQ(dst.at(1 + x, 2 + y), src.at(x, y));
}

TEST(iBltAdaptive32, twice_the_width_is_filtered_without_reading_below) {
    Surface src = numbered(4, 3, 0xC0);
    Surface dst(8, 3);
    Surface expected = dst;
    adaptive(dst, dst.rect(), src, src.rect());
    naiveBilinearSafe(expected, dst.rect(), src, src.rect());
    EXPECT_EQ(dst.differenceFrom(expected), "");
    EXPECT_EQ(dst.at(1, 0) >> 24, 0u);
    EXPECT_EQ(dst.at(1, 2) >> 24, 0xC0u);
}

TEST(iBltAdaptive32, one_and_a_quarter_of_the_width_takes_the_nearest_pixel) {
    Surface src = numbered(4, 3, 0xC0);
    Surface dst(5, 3);
    adaptive(dst, dst.rect(), src, src.rect());
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 5; ++x)
            EXPECT_EQ(dst.at(x, y), src.at(x * 4 / 5, y));
}

TEST(iBltAdaptive32, every_pair_of_small_sizes_chooses_by_area) {
    test::Random random(1);
    Surface src = Surface::randomOfSize(random, 5, 5);
    const Surface before = Surface::randomOfSize(random, 5, 5);
    for (int dstHeight = 0; dstHeight <= 5; ++dstHeight)
        for (int dstWidth = 0; dstWidth <= 5; ++dstWidth)
            for (int srcHeight = 0; srcHeight <= 5; ++srcHeight)
                for (int srcWidth = 0; srcWidth <= 5; ++srcWidth) {
                    const tagRECT dstRect = {0, 0, dstWidth, dstHeight};
                    const tagRECT srcRect = {0, 0, srcWidth, srcHeight};
                    Surface dst = before;
                    Surface expected = before;
                    if (dstWidth == srcWidth && dstHeight == srcHeight) {
                        for (int y = 0; y < dstHeight; ++y)
                            for (int x = 0; x < dstWidth; ++x)
                                expected.at(x, y) = src.at(x, y);
                    } else if (2 * dstWidth * dstHeight >= 3 * srcWidth * srcHeight) {
                        naiveBilinearSafe(expected, dstRect, src, srcRect);
                    } else {
                        naiveNear(expected, dstRect, src, srcRect);
                    }
                    adaptive(dst, dstRect, src, srcRect);
                    ASSERT_EQ(dst.differenceFrom(expected), "")
                        << srcWidth << " x " << srcHeight << " onto " << dstWidth << " x " << dstHeight;
                }
}

TEST(iBltAdaptive32, areas_wrap_in_32_bits) {
    // 3 * 30000 * 30000 is above 2^31 and counts as negative: the reduction to one pixel looks like an enlargement.
    Surface src(2, 2, 0xC0112233);
    Surface dst(1, 1);
    adaptive(dst, dst.rect(), src, {0, 0, 30000, 30000});
    EXPECT_EQ(dst.at(0, 0), 0x00112233u);
    adaptive(dst, dst.rect(), src, {0, 0, 20000, 20000}); // 1.2 * 10^9 still fits
    EXPECT_EQ(dst.at(0, 0), 0xC0112233u);
}

TEST(iBltAdaptive32, agrees_with_a_naive_choice) {
    compareScalings("iBltAdaptive32", adaptive, [](Surface &dst, tagRECT dstRect, Surface &src, tagRECT srcRect) {
        const bool same = widthOf(dstRect) == widthOf(srcRect) && heightOf(dstRect) == heightOf(srcRect);
        const bool enlarged = 2 * widthOf(dstRect) * heightOf(dstRect) >= 3 * widthOf(srcRect) * heightOf(srcRect);
        if (!same && enlarged)
            naiveBilinearSafe(dst, dstRect, src, srcRect);
        else
            naiveNear(dst, dstRect, src, srcRect); // equal sizes step by whole pixels
    });
}

// ---------------------------------------------------------------------------------------------------------------------

TEST(iBltPerfect32, writes_one_column_and_row_more_than_the_whole_pixels) {
    Surface src = numbered(8, 8, 0xFF);
    const Surface before(10, 10, 0xAAAAAAAA);
    for (int size = 16; size <= 5 * 16; ++size) {
        Surface dst = before;
        perfect(dst, {16, 32, 16 + size, 32 + size}, src, {0, 0, size, size});
        Surface expected = before;
        for (int y = 0; y <= size / 16; ++y)
            for (int x = 0; x <= size / 16; ++x)
                expected.at(1 + x, 2 + y) = src.at(x, y) & 0xFFFFFF;
        ASSERT_EQ(dst.differenceFrom(expected), "") << size;
    }
}

TEST(iBltPerfect32, equal_phases_of_any_size_copy_the_colours) {
    Surface src = numbered(4, 4);
    for (int phase = 0; phase < 16; ++phase) {
        Surface dst(4, 4);
        perfect(dst, {phase, phase, phase + 48, phase + 48}, src, {phase, phase, phase + 48, phase + 48});
        for (int y = 0; y < 4; ++y)
            for (int x = 0; x < 4; ++x)
                EXPECT_EQ(dst.at(x, y), src.at(x, y));
    }
}

TEST(iBltPerfect32, a_source_half_a_pixel_further_right_shows_the_mean_of_two_columns) {
    Surface src(3, 2);
    src.at(0, 0) = 0x000000;
    src.at(1, 0) = 0x0000FF;
    src.at(2, 0) = 0x00FF00;
    Surface dst(2, 2);
    perfect(dst, {0, 0, 16, 16}, src, {8, 0, 24, 16});
    EXPECT_EQ(dst.at(0, 0), 0x00007Fu);
    EXPECT_EQ(dst.at(1, 0), 0x007F7Fu);
}

TEST(iBltPerfect32, a_destination_phase_beyond_the_sources_reads_to_the_left_and_above) {
    Surface src(2, 2, 0);
    src.at(-1, 0) = 0x0000FF;
    src.at(0, -1) = 0x00FF00;
    Surface dst(3, 3);
    perfect(dst, {8, 0, 24, 16}, src, {0, 0, 16, 16}); // starts half a pixel before column 0
    EXPECT_EQ(dst.at(0, 0), 0x00007Fu);
    EXPECT_EQ(dst.at(1, 0), 0u);
    perfect(dst, {0, 4, 16, 20}, src, {0, 0, 16, 16}); // a quarter of a pixel before row 0
    EXPECT_EQ(dst.at(0, 0), 0x003F00u);
    EXPECT_EQ(dst.at(0, 1), 0u);
}

TEST(iBltPerfect32, negative_coordinates_are_divided_toward_zero) {
    // -8 sixteenths are pixel 0 with the phase 8; -24 are pixel -1 with the phase 8.
    Surface src = numbered(4, 4);
    Surface dst(4, 4, 0xAAAAAAAA);
    perfect(dst, {-8, -24, 8, -8}, src, {8, 8, 24, 24});
    EXPECT_EQ(dst.at(0, -1), src.at(0, 0));
    EXPECT_EQ(dst.at(1, 0), src.at(1, 1));
    EXPECT_EQ(dst.at(-1, -1), 0xAAAAAAAAu);
    EXPECT_EQ(dst.at(0, 1), 0xAAAAAAAAu);
}

TEST(iBltPerfect32, extents_above_minus_one_pixel_write_one_column_and_0_writes_none) {
    Surface src = numbered(4, 4);
    const Surface before(4, 4, 0xAAAAAAAA);
    for (int extent = -40; extent <= 15; ++extent) {
        const int written = extent == 0 || extent <= -16 ? 0 : 1;
        Surface expected = before;
        for (int y = 0; y < 2 * written; ++y)
            expected.at(1, 1 + y) = src.at(0, y);
        Surface dst = before;
        perfect(dst, {16, 16, 16 + extent, 32}, src, {0, 0, 16, 16});
        EXPECT_EQ(dst.differenceFrom(expected), "") << "width " << extent;

        expected = before;
        for (int x = 0; x < 2 * written; ++x)
            expected.at(1 + x, 1) = src.at(x, 0);
        dst = before;
        perfect(dst, {16, 16, 32, 16 + extent}, src, {0, 0, 16, 16});
        EXPECT_EQ(dst.differenceFrom(expected), "") << "height " << extent;
    }
}

TEST(iBltPerfect32, positions_have_17_fraction_bits) {
    // From 890 to 302 pixels, 16 and 18 bits would weigh some of them otherwise.
    test::Random random(1);
    Surface src = Surface::randomOfSize(random, 890, 1);
    Surface dst(303, 2);
    Surface expected = dst;
    const tagRECT dstRect = {0, 0, 302 * 16, 16};
    const tagRECT srcRect = {0, 0, 890 * 16, 16};
    naivePerfect(expected, dstRect, src, srcRect);
    perfect(dst, dstRect, src, srcRect);
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

TEST(iBltPerfect32, overlapping_scalings_run_in_row_and_column_order) {
    const auto inSixteenths = [](tagRECT rect, int phase) {
        return tagRECT{rect.left * 16 + phase, rect.top * 16, rect.right * 16 + phase, rect.bottom * 16};
    };
    const tagRECT srcRect = inSixteenths({6, 4, 14, 9}, 0);
    for (int phase = 0; phase < 16; phase += 5)
        for (int offsetY = -3; offsetY <= 3; ++offsetY)
            for (int offsetX = -4; offsetX <= 4; ++offsetX) {
                test::Random random(1);
                Surface surface = Surface::randomOfSize(random, 28, 16);
                Surface expected = surface;
                const tagRECT dstRect = inSixteenths({6 + offsetX, 4 + offsetY, 17 + offsetX, 8 + offsetY}, phase);
                naivePerfect(expected, dstRect, expected, srcRect);
                perfect(surface, dstRect, surface, srcRect);
                ASSERT_EQ(surface.differenceFrom(expected), "") << "moved by " << offsetX << ", " << offsetY;
            }
}

TEST(iBltPerfect32, agrees_with_a_naive_filter) {
    forEachCase("iBltPerfect32", [](Case &c) {
        Surface dst = Surface::random(c.random);
        Surface src = Surface::random(c.random);
        // Rectangles in sixteenths, now and then a little beyond the picture or without pixels.
        const auto rectOver = [&c](const Surface &surface) {
            tagRECT rect = c.random.rectInside(surface.width() * 16, surface.height() * 16);
            if (c.random.oneIn(8))
                rect.right = rect.left + c.random.between(-20, 20);
            if (c.random.oneIn(8))
                rect.bottom = rect.top + c.random.between(-20, 20);
            if (c.random.oneIn(8)) {
                const int shift = c.random.between(0, 60);
                rect = {rect.left - shift, rect.top - shift, rect.right - shift, rect.bottom - shift};
            }
            return rect;
        };
        const tagRECT dstRect = rectOver(dst);
        tagRECT srcRect = rectOver(src);
        Surface expected = dst;
        naivePerfect(expected, dstRect, src, srcRect);
        perfect(dst, dstRect, src, srcRect);
        c.expectEqual(dst, expected);
    });
}

} // namespace
