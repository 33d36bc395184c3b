#include "naive_image_line.h"
#include "turning.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

namespace {

using namespace naive::imageLine;
using test::Case;
using test::forEachCase;
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
    Surface src = test::anyPicture(random);
    Surface dst = test::anyPicture(random);
    Surface expected = dst;
    draw(dst, src, 3, 3, 3, 9, 2);
    for (int y = 3; y <= 9; ++y)
        for (int x = 2; x <= 3; ++x)
            expected.at(x, y) = src.at(x, y);
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

TEST(ImageLine, every_line_of_a_small_square_is_bresenhams) {
    test::Random random(1);
    Surface src = test::anyPicture(random);
    const Surface before = test::anyPicture(random);
    for (int y1 = 0; y1 < 6; ++y1)
        for (int x1 = 0; x1 < 6; ++x1)
            for (int y2 = 0; y2 < 6; ++y2)
                for (int x2 = 0; x2 < 6; ++x2) {
                    Surface dst = before;
                    Surface expected = before;
                    draw(dst, src, x1, y1, x2, y2, 1);
                    naiveLine(expected, src, x1, y1, x2, y2, 1);
                    ASSERT_EQ(dst.differenceFrom(expected), "") << x1 << ", " << y1 << " to " << x2 << ", " << y2;
                }
}

TEST(ImageLine, agrees_with_a_naive_line) {
    forEachCase("ImageLine", [](Case &c) {
        Surface dst = test::anyPicture(c.random);
        Surface src = test::anyPicture(c.random);
        const int x1 = c.random.between(0, 15);
        const int y1 = c.random.between(0, 12);
        const int x2 = c.random.oneIn(6) ? x1 : c.random.between(0, 15);
        const int y2 = c.random.oneIn(6) ? y1 : c.random.between(0, 12);
        const int width = c.random.between(-2, 14);
        Surface expected = dst;
        naiveLine(expected, src, x1, y1, x2, y2, width);
        draw(dst, src, x1, y1, x2, y2, width);
        c.expectEqual(dst, expected);
    });
}

} // namespace
