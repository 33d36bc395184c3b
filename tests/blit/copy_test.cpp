#include "support/cases.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <vector>

namespace {

using test::Case;
using test::forEachCase;
using test::Surface;

/// Copies one pixel after the other, rows top to bottom, columns left to right, writing only inside `clip`.
void naiveCopy(Surface &dst, Surface &src, int dstX, int dstY, const tagRECT &srcRect, const tagRECT &clip) {
    for (int y = 0; y < srcRect.bottom - srcRect.top; ++y)
        for (int x = 0; x < srcRect.right - srcRect.left; ++x)
            if (dstX + x >= clip.left && dstX + x < clip.right && dstY + y >= clip.top && dstY + y < clip.bottom)
                dst.at(dstX + x, dstY + y) =
                    src.at(static_cast<int>(srcRect.left) + x, static_cast<int>(srcRect.top) + y);
}

constexpr tagRECT everywhere = {-1000, -1000, 1000, 1000};

TEST(iBltFast32, copies_all_32_bits) {
    Surface dst(2, 1, 0x11111111);
    Surface src(2, 1);
    src.at(0, 0) = 0xFF123456;
    src.at(1, 0) = 0x80000000;
    tagRECT rect = src.rect();
    iBltFast32(dst.pixels(), src.pixels(), 0, 0, &rect, dst.pitch(), src.pitch());
    EXPECT_EQ(dst.at(0, 0), 0xFF123456u);
    EXPECT_EQ(dst.at(1, 0), 0x80000000u);
}

TEST(iBltFast32, overlapping_copies_run_in_row_and_column_order) {
    for (int offsetY = -3; offsetY <= 3; ++offsetY)
        for (int offsetX = -5; offsetX <= 5; ++offsetX) {
            test::Random random(1);
            Surface surface = Surface::randomOfSize(random, 24, 12);
            Surface expected = surface;
            tagRECT rect = {6, 4, 18, 9};
            naiveCopy(expected, expected, 6 + offsetX, 4 + offsetY, rect, everywhere);
            iBltFast32(surface.pixels(), surface.pixels(), static_cast<q_ulong>(6 + offsetX),
                       static_cast<q_ulong>(4 + offsetY), &rect, surface.pitch(), surface.pitch());
            EXPECT_EQ(surface.differenceFrom(expected), "") << "moved by " << offsetX << ", " << offsetY;
        }
}

TEST(iBltFast32, pictures_without_a_margin_are_copied_in_row_and_column_order_too) {
    // Pitches equal to the width: the rows follow each other without a gap, and so do the source's and their copies.
    for (int distance = -13; distance <= 13; ++distance) {
        test::Random random(1);
        test::PageEndPixels pixels(13 + 4 * 5 + 13);
        std::vector<q_ulong> expected;
        for (int i = 0; i < 46; ++i)
            expected.push_back(pixels.data()[i] = random.pixel());
        for (int i = 0; i < 20; ++i)
            expected[static_cast<std::size_t>(13 + distance + i)] = expected[static_cast<std::size_t>(13 + i)];
        tagRECT rect = {0, 0, 4, 5};
        iBltFast32(pixels.data() + 13 + distance, pixels.data() + 13, 0, 0, &rect, 4, 4);
        EXPECT_TRUE(std::equal(expected.begin(), expected.end(), pixels.data())) << distance;
    }
}

TEST(iBltFast32, negative_coordinates_pass_as_unsigned_numbers) {
    Surface dst(4, 4, 0xAAAAAAAA);
    Surface src(2, 2, 0x55555555);
    tagRECT rect = src.rect();
    iBltFast32(&dst.at(3, 3), src.pixels(), static_cast<q_ulong>(-2), static_cast<q_ulong>(-3), &rect, dst.pitch(),
               src.pitch());
    Surface expected(4, 4, 0xAAAAAAAA);
    naiveCopy(expected, src, 1, 0, rect, everywhere);
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

TEST(iBltFast32, bottom_up_surfaces_have_a_negative_pitch) {
    Surface dst(2, 2);
    Surface src(2, 2);
    for (int i = 0; i < 4; ++i)
        src.at(i % 2, i / 2) = static_cast<q_ulong>(i + 1);
    tagRECT rect = src.rect();
    iBltFast32(&dst.at(0, 1), src.pixels(), 0, 0, &rect, -dst.pitch(), src.pitch());
    EXPECT_EQ(dst.at(0, 1), 1u);
    EXPECT_EQ(dst.at(1, 1), 2u);
    EXPECT_EQ(dst.at(0, 0), 3u);
    EXPECT_EQ(dst.at(1, 0), 4u);
}

TEST(iBltFast32_Advanced, starting_left_of_the_surface_leaves_out_source_columns) {
    Surface dst(8, 1, 0xAAAAAAAA);
    Surface src(8, 1);
    for (int x = 0; x < 8; ++x)
        src.at(x, 0) = static_cast<q_ulong>(x);
    tagRECT rect = src.rect();
    iBltFast32_Advanced(dst.pixels(), src.pixels(), -5, 0, &rect, dst.pitch(), src.pitch(), 8, 1);
    EXPECT_EQ(dst.at(0, 0), 5u);
    EXPECT_EQ(dst.at(2, 0), 7u);
    EXPECT_EQ(dst.at(3, 0), 0xAAAAAAAAu);
}

TEST(iBltFast32_Advanced, every_position_and_size_over_a_small_surface_stays_inside) {
    test::Random random(1);
    Surface src = Surface::randomOfSize(random, 6, 6);
    const Surface empty(4, 4, 0xAAAAAAAA);
    for (int dstY = -7; dstY <= 5; ++dstY)
        for (int dstX = -7; dstX <= 5; ++dstX)
            for (int height = -2; height <= 6; ++height)
                for (int width = -2; width <= 6; ++width) {
                    Surface dst = empty;
                    Surface expected = empty;
                    tagRECT rect = {0, 0, width, height};
                    naiveCopy(expected, src, dstX, dstY, rect, dst.rect());
                    iBltFast32_Advanced(dst.pixels(), src.pixels(), dstX, dstY, &rect, dst.pitch(), src.pitch(), 4, 4);
                    ASSERT_EQ(dst.differenceFrom(expected), "")
                        << width << " x " << height << " at " << dstX << ", " << dstY;
                }
}

TEST(iBltFast32_Advanced, coordinates_at_the_end_of_the_numbers_write_nothing) {
    constexpr int least = std::numeric_limits<int>::min();
    constexpr int largest = std::numeric_limits<int>::max();
    const Surface untouched(4, 4, 0xAAAAAAAA);
    Surface src(4, 4, 0x55555555);
    for (const int distant : {least, least + 1, least + 3, largest - 3, largest - 1, largest})
        for (int extent = -5; extent <= 4; ++extent) {
            Surface dst = untouched;
            tagRECT wide = {0, 0, extent, 4};
            iBltFast32_Advanced(dst.pixels(), src.pixels(), distant, 0, &wide, dst.pitch(), src.pitch(), 4, 4);
            tagRECT high = {0, 0, 4, extent};
            iBltFast32_Advanced(dst.pixels(), src.pixels(), 0, distant, &high, dst.pitch(), src.pitch(), 4, 4);
            iBltFast32_Advanced(dst.pixels(), src.pixels(), distant, distant, &high, dst.pitch(), src.pitch(), 4, 4);
            ASSERT_EQ(dst.differenceFrom(untouched), "") << "extent " << extent << " at " << distant;
        }
}

TEST(iBltFast32_Advanced, reads_nothing_that_the_clip_leaves_out) {
    test::PageEndPixels src(4 * 3);
    Surface dst(2, 3);
    tagRECT rect = {0, 0, 6, 3}; // wider than the source has pixels in its last row
    iBltFast32_Advanced(dst.pixels(), src.data(), 0, 0, &rect, dst.pitch(), 4, 2, 3);
    EXPECT_EQ(dst.at(1, 2), src.data()[9]);
}

TEST(iBltFast32_Advanced, agrees_with_a_naive_copy) {
    forEachCase("iBltFast32_Advanced", [](Case &c) {
        Surface dst = Surface::random(c.random);
        Surface src = Surface::random(c.random);
        tagRECT rect = c.random.rectInsideOrEmpty(src.width(), src.height());
        const int dstX = c.random.between(-20, 20);
        const int dstY = c.random.between(-20, 20);
        const int clipWidth = c.random.between(0, dst.width());
        const int clipHeight = c.random.between(0, dst.height());
        Surface expected = dst;
        naiveCopy(expected, src, dstX, dstY, rect, {0, 0, clipWidth, clipHeight});
        iBltFast32_Advanced(dst.pixels(), src.pixels(), dstX, dstY, &rect, dst.pitch(), src.pitch(), clipWidth,
                            clipHeight);
        c.expectEqual(dst, expected);
    });
}

} // namespace
