#include "naive_line.h"
#include "plane.h"
#include "support/cases.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace {

using test::Case;
using test::forEachCase;
using test::Plane;
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

TEST(iLine, every_line_over_and_beyond_a_small_clip) {
    Surface dst(6, 5);
    Plane plane(dst);
    tagRECT clip = {1, 1, 5, 4};
    for (int y1 = -2; y1 <= 6; ++y1)
        for (int x1 = -2; x1 <= 7; ++x1)
            for (int y2 = -2; y2 <= 6; ++y2)
                for (int x2 = -2; x2 <= 7; ++x2) {
                    dst = Surface(6, 5);
                    plane = Plane(dst);
                    Surface expected = dst;
                    test::naiveLine(x1, y1, x2, y2, clip, [&](int x, int y) { expected.at(x, y) = 0x7B; });
                    iLine(dst.pixels(), x1, y1, x2, y2, 0x7B, &clip, dst.pitch());
                    bLine(plane.pixels(), x1, y1, x2, y2, 0x7B, &clip, plane.pitch());
                    ASSERT_TRUE(dst == expected) << x1 << ", " << y1 << " to " << x2 << ", " << y2;
                    ASSERT_TRUE(plane.words() == expected) << x1 << ", " << y1 << " to " << x2 << ", " << y2;
                }
}

TEST(iLine, a_picture_stored_bottom_up_is_drawn_by_a_negative_pitch) {
    Surface dst(8, 8);
    Surface expected = dst;
    const tagRECT all = dst.rect();
    test::naiveLine(1, 0, 5, 7, all, [&](int x, int y) { expected.at(x, 7 - y) = 9; });
    tagRECT clip = all;
    iLine(&dst.at(0, 7), 1, 0, 5, 7, 9, &clip, -dst.pitch());
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

struct RandomLine {
    explicit RandomLine(Case &c, const Surface &dst)
        : x1(c.random.between(-20, 36)), y1(c.random.between(-20, 36)), x2(c.random.between(-20, 36)),
          y2(c.random.between(-20, 36)), clip(c.random.rectInsideOrEmpty(dst.width(), dst.height())) {}

    int x1;
    int y1;
    int x2;
    int y2;
    tagRECT clip;
};

TEST(iLine, agrees_with_a_naive_line) {
    forEachCase("iLine", [](Case &c) {
        Surface dst = Surface::random(c.random);
        RandomLine line(c, dst);
        const q_ulong color = c.random.pixel();
        Surface expected = dst;
        test::naiveLine(line.x1, line.y1, line.x2, line.y2, line.clip,
                        [&](int x, int y) { expected.at(x, y) = color; });
        iLine(dst.pixels(), line.x1, line.y1, line.x2, line.y2, color, &line.clip, dst.pitch());
        c.expectEqual(dst, expected);
    });
}

TEST(bLine, agrees_with_a_naive_line) {
    forEachCase("bLine", [](Case &c) {
        const Surface shape = Surface::random(c.random);
        Plane dst(shape);
        RandomLine line(c, shape);
        const auto value = static_cast<unsigned char>(c.random.word());
        Plane expected = dst;
        test::naiveLine(line.x1, line.y1, line.x2, line.y2, line.clip,
                        [&](int x, int y) { expected.at(x, y) = value; });
        bLine(dst.pixels(), line.x1, line.y1, line.x2, line.y2, value, &line.clip, dst.pitch());
        c.expectEqual(dst.words(), expected.words());
    });
}

} // namespace
