#include "support/surface.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <vector>

namespace {

using test::Surface;

using Corners = std::array<tagPOINT, 4>;

int decide(int px, int py, int ax, int ay, int bx, int by) {
    return DecisionLine2(&px, &py, &ax, &ay, &bx, &by);
}

int decideTurned(int px, int py, int ax, int ay, int bx, int by) {
    return DecisionLine(&px, &py, &ax, &ay, &bx, &by);
}

void draw(Surface &dst, tagRECT clip, Corners p, q_ulong colour) {
    Rect_Safe(dst.pixels(), &clip, dst.pitch(), &p[0], &p[1], &p[2], &p[3], &colour);
}

std::vector<int> columnsPainted(const Surface &surface, int y) {
    std::vector<int> columns;
    for (int x = 0; x < surface.width(); ++x)
        if (surface.at(x, y) != 0)
            columns.push_back(x);
    return columns;
}

TEST(DecisionLine2, is_1_to_the_left_of_a_line_that_goes_down) {
    EXPECT_EQ(decide(2, 5, 3, 0, 3, 10), 1);
    EXPECT_EQ(decide(4, 5, 3, 0, 3, 10), 0);
    EXPECT_EQ(decide(3, 5, 3, 0, 3, 10), 0);
    EXPECT_EQ(decide(4, 5, 3, 10, 3, 0), 1);
    EXPECT_EQ(decide(-1, 0, 0, 0, 0, 10), 1);
}

TEST(DecisionLine2, both_forms_follow_the_cross_product_over_a_small_square) {
    for (int px = -2; px <= 2; ++px)
        for (int py = -2; py <= 2; ++py)
            for (int ax = -2; ax <= 2; ++ax)
                for (int ay = -2; ay <= 2; ++ay)
                    for (int bx = -2; bx <= 2; ++bx)
                        for (int by = -2; by <= 2; ++by) {
                            const int expected = (py - ay) * (bx - ax) > (by - ay) * (px - ax) ? 1 : 0;
                            ASSERT_EQ(decide(px, py, ax, ay, bx, by), expected);
                            ASSERT_EQ(decideTurned(px, py, ax, ay, bx, by), expected);
                        }
}

TEST(DecisionLine2, wrapped_products_part_it_from_DecisionLine) {
    // 65536 * 32768 wraps to the least number of all, and so does its negation.
    EXPECT_EQ(decide(1, 65536, 0, 0, 32768, 1), 0);       // INT_MIN > 1
    EXPECT_EQ(decideTurned(1, 65536, 0, 0, 32768, 1), 1); // INT_MIN < -1
}

TEST(DecisionLine2, has_three_names) {
    // Through volatile, for a compiler may take two declarations for two functions.
    using Decision = int (*)(int *, int *, int *, int *, int *, int *);
    const auto addressOf = [](Decision function) {
        const volatile Decision address = function;
        return Decision{address};
    };
    EXPECT_EQ(addressOf(&DecisionLine2), addressOf(&DecisionLines));
    EXPECT_EQ(addressOf(&DecisionLine2), addressOf(&VKD_DecisionLines));
    EXPECT_NE(addressOf(&DecisionLine2), addressOf(&DecisionLine));
}

TEST(Rect_Safe, four_equal_corners_paint_one_pixel_inside_the_clip) {
    Surface dst(8, 8);
    draw(dst, dst.rect(), {{{3, 4}, {3, 4}, {3, 4}, {3, 4}}}, 0xFF123456);
    Surface expected(8, 8);
    expected.at(3, 4) = 0xFF123456;
    EXPECT_EQ(dst.differenceFrom(expected), "");

    Surface outside(8, 8);
    draw(outside, {4, 0, 8, 8}, {{{3, 4}, {3, 4}, {3, 4}, {3, 4}}}, 0xFF123456);
    EXPECT_EQ(outside.differenceFrom(Surface(8, 8)), "");
}

TEST(Rect_Safe, corners_on_one_row_paint_that_row_alone) {
    // All sides are 0: each band runs from the first corner to the corner that the band starts at.
    Surface dst(12, 5);
    draw(dst, dst.rect(), {{{2, 2}, {9, 2}, {5, 2}, {7, 2}}}, 1);
    EXPECT_EQ(columnsPainted(dst, 2), (std::vector<int>{2, 3, 4, 5, 6, 7, 8, 9}));
    for (int y : {0, 1, 3, 4})
        EXPECT_TRUE(columnsPainted(dst, y).empty());
}

TEST(Rect_Safe, two_corners_on_the_left_leave_the_right_side_one_pixel_narrower_below_the_first) {
    const Corners leftBulge = {{{10, 0}, {4, 3}, {4, 6}, {10, 9}}};
    Surface dst(16, 10);
    draw(dst, dst.rect(), leftBulge, 1);
    EXPECT_EQ(columnsPainted(dst, 2).back(), 10);
    EXPECT_EQ(columnsPainted(dst, 3).back(), 10) << "row of the first middle corner, painted by the band above";
    for (int y = 4; y <= 8; ++y)
        EXPECT_EQ(columnsPainted(dst, y).back(), 9) << "row " << y;
    EXPECT_EQ(columnsPainted(dst, 9), (std::vector<int>{9})) << "the truncated reciprocal leaves the edge at 9";

    const Corners rightBulge = {{{4, 0}, {10, 3}, {10, 6}, {4, 9}}};
    Surface other(16, 10);
    draw(other, other.rect(), rightBulge, 1);
    EXPECT_EQ(columnsPainted(other, 4).back(), 10);
    EXPECT_EQ(columnsPainted(other, 6).back(), 10);
    EXPECT_EQ(columnsPainted(other, 9), (std::vector<int>{4}));
}

TEST(Rect_Safe, a_corner_on_the_long_edge_is_not_to_the_left) {
    // With the second corner on the long edge and the third to the left the right side is the long edge, whole.
    Surface dst(16, 13);
    draw(dst, dst.rect(), {{{8, 0}, {8, 4}, {2, 8}, {8, 12}}}, 1);
    EXPECT_EQ(columnsPainted(dst, 6).back(), 8);
    EXPECT_EQ(columnsPainted(dst, 12), (std::vector<int>{8}));
}

TEST(Rect_Safe, the_order_of_corners_on_different_rows_does_not_matter) {
    Corners corners = {{{7, 1}, {2, 4}, {12, 6}, {8, 11}}};
    Surface first(16, 14);
    draw(first, first.rect(), corners, 5);
    std::array<int, 4> order = {0, 1, 2, 3};
    do {
        Corners turned;
        for (std::size_t i = 0; i < 4; ++i)
            turned[i] = corners[static_cast<std::size_t>(order[i])];
        Surface dst(16, 14);
        draw(dst, dst.rect(), turned, 5);
        EXPECT_EQ(dst.differenceFrom(first), "");
    } while (std::next_permutation(order.begin(), order.end()));
}

TEST(Rect_Safe, corners_on_equal_rows_keep_the_order_that_the_exchanges_give) {
    // An upright rectangle: which lower corner comes last decides between the cases.
    Surface leftLast(12, 8);
    draw(leftLast, leftLast.rect(), {{{2, 1}, {9, 1}, {9, 6}, {2, 6}}}, 1);
    EXPECT_EQ(columnsPainted(leftLast, 3), (std::vector<int>{2, 3, 4, 5, 6, 7, 8, 9}));
    // From the upper right to the lower right corner the other two lie left: the right edge is left out.
    Surface rightLast(12, 8);
    draw(rightLast, rightLast.rect(), {{{9, 1}, {2, 1}, {2, 6}, {9, 6}}}, 1);
    EXPECT_EQ(columnsPainted(rightLast, 3), (std::vector<int>{2, 3, 4, 5, 6, 7, 8}));
    EXPECT_EQ(columnsPainted(rightLast, 1), (std::vector<int>{2, 3, 4, 5, 6, 7, 8, 9}));
}

TEST(Rect_Safe, a_clip_at_the_ends_of_the_number_range_draws_nothing_and_ends) {
    Surface dst(4, 4);
    draw(dst, {INT_MIN, INT_MIN, INT_MIN, INT_MIN}, {{{0, 0}, {3, 0}, {3, 3}, {0, 3}}}, 1);
    draw(dst, {0, INT_MAX, 4, INT_MAX}, {{{0, 0}, {3, 0}, {3, INT_MAX}, {0, INT_MAX}}}, 1);
    EXPECT_EQ(dst.differenceFrom(Surface(4, 4)), "");
}

} // namespace
