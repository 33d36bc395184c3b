#include "support/painting.h"

#include <gtest/gtest.h>

namespace {

using namespace test;

/// A stroke over nothing that reveals pixels which tell their place.
Surface stroke(int x1, int y1, int x2, int y2, int width) {
    Surface src = placesOf(12, 12);
    Surface dst = blank(12, 12);
    ImageLine(dst.pixels(), src.pixels(), dst.pitch(), x1, y1, x2, y2, width);
    return dst;
}

TEST(ImageLine, of_width_1_copies_one_whole_pixel_for_each_position) {
    EXPECT_EQ(stroke(1, 2, 6, 2, 1).differenceFrom(painted(blank(12, 12), {1, 2, 7, 3}, place)), "");
    EXPECT_EQ(stroke(3, 3, 3, 3, 1).differenceFrom(painted(blank(12, 12), {3, 3, 4, 4}, place)), "");
}

TEST(ImageLine, of_no_or_negative_width_copies_nothing) {
    for (int width = 0; width >= -9; --width)
        EXPECT_EQ(stroke(1, 2, 6, 4, width).differenceFrom(blank(12, 12)), "") << width;
}

TEST(ImageLine, an_even_width_reaches_further_up_and_left) {
    EXPECT_EQ(stroke(2, 4, 5, 4, 4).differenceFrom(painted(blank(12, 12), {2, 2, 6, 6}, place)), "")
        << "rows 4 - 2 to 4 + 1";
    EXPECT_EQ(stroke(4, 2, 4, 5, 3).differenceFrom(painted(blank(12, 12), {3, 2, 6, 6}, place)), "")
        << "columns 4 - 1 to 4 + 1";
}

TEST(ImageLine, runs_across_the_row_at_45_degrees) {
    for (const int step : {1, -1}) {
        Surface expected = blank(12, 12);
        for (int i = 0; i <= 6; ++i) {
            const int y = 6 + (i - 3) * step;
            expected = painted(expected, {2 + i, y, 5 + i, y + 1}, place);
        }
        EXPECT_EQ(stroke(3, 6 - 3 * step, 9, 6 + 3 * step, 3).differenceFrom(expected), "");
    }
}

} // namespace
