#include "plain/curves.h"
#include "support/surface.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace {

using test::Surface;

using Pixels = std::vector<std::pair<int, int>>;

/// Whether exactly these pixels of a surface of 8 by 8 are drawn.
void expectLine(int x1, int y1, int x2, int y2, const Pixels &pixels) {
    Surface dst(8, 8);
    Surface expected = dst;
    for (const auto &[x, y] : pixels)
        expected.at(x, y) = 0xFE123456;
    tagRECT clip = dst.rect();
    iLine(dst.pixels(), x1, y1, x2, y2, 0xFE123456, &clip, dst.pitch());
    EXPECT_EQ(dst.differenceFrom(expected), "") << x1 << ", " << y1 << " to " << x2 << ", " << y2;
}

TEST(iLine, steps_aside_where_the_error_reaches_zero) {
    expectLine(0, 0, 5, 2, {{0, 0}, {1, 0}, {2, 1}, {3, 1}, {4, 2}, {5, 2}});
    expectLine(0, 0, 2, 5, {{0, 0}, {0, 1}, {1, 2}, {1, 3}, {2, 4}, {2, 5}});
    expectLine(6, 7, 0, 4, {{6, 7}, {5, 6}, {4, 6}, {3, 5}, {2, 5}, {1, 4}, {0, 4}});
}

TEST(iLine, a_tie_steps_aside_at_once_in_either_direction) {
    expectLine(0, 0, 2, 1, {{0, 0}, {1, 1}, {2, 1}});
    expectLine(2, 1, 0, 0, {{2, 1}, {1, 0}, {0, 0}});
    expectLine(0, 0, 1, 2, {{0, 0}, {1, 1}, {1, 2}});
    expectLine(1, 2, 0, 0, {{1, 2}, {0, 1}, {0, 0}});
}

TEST(iLine, straight_and_diagonal_lines_have_both_ends) {
    expectLine(1, 3, 4, 3, {{1, 3}, {2, 3}, {3, 3}, {4, 3}});
    expectLine(4, 3, 4, 1, {{4, 3}, {4, 2}, {4, 1}});
    expectLine(2, 2, 4, 4, {{2, 2}, {3, 3}, {4, 4}});
    expectLine(2, 4, 4, 2, {{2, 4}, {3, 3}, {4, 2}});
}

TEST(iLine, equal_ends_are_one_pixel_if_it_is_inside) {
    expectLine(3, 4, 3, 4, {{3, 4}});
    expectLine(7, 7, 7, 7, {{7, 7}});
    expectLine(8, 4, 8, 4, {});
    expectLine(3, -1, 3, -1, {});
}

TEST(iLine, an_empty_clip_is_left_alone) {
    for (const tagRECT &empty : {tagRECT{2, 2, 2, 6}, tagRECT{2, 2, 6, 2}, tagRECT{6, 6, 2, 2}}) {
        Surface dst(8, 8);
        const Surface before = dst;
        tagRECT clip = empty;
        iLine(dst.pixels(), 0, 0, 7, 7, 0xFFFFFF, &clip, dst.pitch());
        EXPECT_EQ(dst.differenceFrom(before), "");
    }
}

TEST(iLine, the_part_inside_the_clip_has_the_pixels_of_the_whole_line) {
    const tagRECT inner = {3, 2, 9, 7};
    for (int y2 = -4; y2 < 14; ++y2)
        for (int x2 = -4; x2 < 16; ++x2) {
            Surface whole(12, 10);
            Surface clipped(12, 10);
            tagRECT everywhere = {-8, -8, 20, 18};
            tagRECT clip = inner;
            iLine(whole.pixels(), 1, 8, x2, y2, 1, &everywhere, whole.pitch());
            iLine(clipped.pixels(), 1, 8, x2, y2, 1, &clip, clipped.pitch());
            for (int y = -8; y < 18; ++y)
                for (int x = -8; x < 20; ++x) {
                    const bool inside = x >= inner.left && x < inner.right && y >= inner.top && y < inner.bottom;
                    ASSERT_EQ(clipped.at(x, y), inside ? whole.at(x, y) : 0) << x2 << ", " << y2;
                }
        }
}

TEST(iLine, a_picture_stored_bottom_up_is_drawn_by_a_negative_pitch) {
    Surface dst(8, 8);
    Surface expected = dst;
    tagRECT clip = dst.rect();
    plain::iLine(expected.pixels(), 1, 7, 5, 0, 9, &clip, expected.pitch());
    iLine(&dst.at(0, 7), 1, 0, 5, 7, 9, &clip, -dst.pitch());
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

} // namespace
