#include "support/random.h"
#include "support/surface.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <vector>

namespace {

using test::Surface;

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
    expected.at(1, 0) = expected.at(2, 0) = expected.at(1, 1) = expected.at(2, 1) = 0x55555555;
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

/// The ends of the numbers are one another's neighbours: a negative extent may come round from one to the other.
TEST(ClippedBlits, places_at_the_ends_of_the_numbers_draw_nothing) {
    constexpr int least = std::numeric_limits<int>::min();
    constexpr int largest = std::numeric_limits<int>::max();
    Surface src(7, 7, 0x55555555);
    Surface dst(4, 4, 0xAAAAAAAA);
    tagRECT clip = dst.rect();
    for (int i = 0; i < 10 * 15 * 15; ++i)
        for (const int end : {least + i / 225, largest - i / 225, least / 2 + i / 225, largest / 2 - i / 225})
            for (const auto &[x, y] : {std::pair{end, 2}, {2, end}, {end, end}}) {
                tagRECT rect = {0, 0, i % 15 - 7, i / 15 % 15 - 7};
                for (const auto blit : {iBltFast32_Advanced, iBltFast32SafeKeySrc, iBltFast32SafeAlpha_Channel,
                                        iBltFast32SafeKeySrcAntiAliasing})
                    blit(dst.pixels(), src.pixels(), x, y, &rect, dst.pitch(), src.pitch(), 4, 4);
                iBltFast32AlphaChannelSafe(dst.pixels(), src.pixels(), x, y, &rect, &clip, dst.pitch(), src.pitch());
                iBltNear32_Add_KeySrc(dst.pixels(), dst.pitch(), src.pixels(), src.pitch(), &clip, &rect, x, y);
                ASSERT_EQ(dst.differenceFrom(Surface(4, 4, 0xAAAAAAAA)), "") << i << " at " << end;
            }
}

} // namespace
