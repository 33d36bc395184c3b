#include "support/surface.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

namespace {

using test::Surface;

constexpr q_ulong untouched = 0x11111111;
constexpr q_ulong revealed = 0xFF2468AC;

void draw(Surface &dst, Surface &src, int x1, int y1, int x2, int y2, int width) {
    ImageLine(dst.pixels(), src.pixels(), dst.pitch(), x1, y1, x2, y2, width);
}

TEST(ImageLine, of_width_1_copies_one_whole_pixel_for_each_position) {
    Surface src(8, 8, revealed);
    Surface dst(8, 8, untouched);
    draw(dst, src, 1, 2, 6, 2, 1);
    Surface expected(8, 8, untouched);
    for (int x = 1; x <= 6; ++x)
        expected.at(x, 2) = revealed;
    EXPECT_EQ(dst.differenceFrom(expected), "");

    draw(dst, src, 3, 3, 3, 3, 1);
    expected.at(3, 3) = revealed;
    EXPECT_EQ(dst.differenceFrom(expected), "") << "both ends in one place";
}

TEST(ImageLine, of_no_or_negative_width_copies_nothing) {
    Surface src(8, 8, revealed);
    Surface dst(8, 8, untouched);
    for (int width = 0; width >= -9; --width)
        draw(dst, src, 1, 2, 6, 4, width);
    EXPECT_EQ(dst.differenceFrom(Surface(8, 8, untouched)), "");
}

TEST(ImageLine, an_even_width_reaches_further_up_and_left) {
    Surface src(8, 8, revealed);
    Surface dst(8, 8, untouched);
    draw(dst, src, 2, 4, 5, 4, 4);
    Surface expected(8, 8, untouched);
    for (int y = 2; y <= 5; ++y)
        for (int x = 2; x <= 5; ++x)
            expected.at(x, y) = revealed;
    EXPECT_EQ(dst.differenceFrom(expected), "") << "rows 4 - 2 to 4 + 1";

    dst = Surface(8, 8, untouched);
    draw(dst, src, 4, 2, 4, 5, 3);
    expected = Surface(8, 8, untouched);
    for (int y = 2; y <= 5; ++y)
        for (int x = 3; x <= 5; ++x)
            expected.at(x, y) = revealed;
    EXPECT_EQ(dst.differenceFrom(expected), "") << "columns 4 - 1 to 4 + 1";
}

TEST(ImageLine, runs_across_the_row_at_45_degrees) {
    Surface src(12, 12, revealed);
    for (const int step : {1, -1}) {
        Surface dst(12, 12, untouched);
        draw(dst, src, 3, 6 - 3 * step, 9, 6 + 3 * step, 3);
        Surface expected(12, 12, untouched);
        for (int i = 0; i <= 6; ++i)
            for (int across = -1; across <= 1; ++across)
                expected.at(3 + i + across, 6 - 3 * step + i * step) = revealed;
        EXPECT_EQ(dst.differenceFrom(expected), "");
    }
}

TEST(ImageLine, shows_the_source_at_the_same_place) {
    test::Random random(1);
    Surface src = Surface::randomOfSize(random, 16, 13);
    Surface dst(16, 13, untouched, src.pitch() - Surface(16, 13).pitch());
    Surface expected = dst;
    draw(dst, src, 3, 3, 3, 9, 2);
    for (int y = 3; y <= 9; ++y)
        for (int x = 2; x <= 3; ++x)
            expected.at(x, y) = src.at(x, y);
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

} // namespace
