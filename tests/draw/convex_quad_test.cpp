#include "support/pictures.h"

#include <algorithm>
#include <array>

namespace {

using namespace test;

using Corners = std::array<tagPOINT, 4>;

int decide(int px, int py, int ax, int ay, int bx, int by) {
    return DecisionLine2(&px, &py, &ax, &ay, &bx, &by);
}

int decideTurned(int px, int py, int ax, int ay, int bx, int by) {
    return DecisionLine(&px, &py, &ax, &ay, &bx, &by);
}

/// A surface of 12 by 10 with a quad.
Surface quad(Corners p, tagRECT clip = {0, 0, 12, 10}) {
    Surface dst(12, 10);
    q_ulong colour = 0xFF123456;
    Rect_Safe(dst.pixels(), &clip, dst.pitch(), &p[0], &p[1], &p[2], &p[3], &colour);
    return dst;
}

Rows rowsOfQuad(const Corners &corners) {
    return rowsOf(quad(corners), {{'.', 0}, {'#', 0xFF123456}});
}

TEST(DecisionLine2, is_1_to_the_left_of_a_line_that_goes_down) {
    EXPECT_EQ(decide(2, 5, 3, 0, 3, 10), 1);
    EXPECT_EQ(decide(4, 5, 3, 0, 3, 10), 0);
    EXPECT_EQ(decide(3, 5, 3, 0, 3, 10), 0);
    EXPECT_EQ(decide(4, 5, 3, 10, 3, 0), 1);
    EXPECT_EQ(decide(-1, 0, 0, 0, 0, 10), 1);
}

TEST(DecisionLine2, wraps_otherwise_than_DecisionLine) {
    // 65536 * 32768 wraps to the least number of all, and so does its negation.
    EXPECT_EQ(decide(1, 65536, 0, 0, 32768, 1), 0);       // INT_MIN > 1
    EXPECT_EQ(decideTurned(1, 65536, 0, 0, 32768, 1), 1); // INT_MIN < -1
}

TEST(Rect_Safe, corners_on_one_row_paint_that_row_alone_and_equal_ones_one_pixel) {
    // All sides are 0: each band runs from the first corner to the corner that the band starts at.
    Rows expected(10, "............");
    expected[2] = "..########..";
    EXPECT_EQ(rowsOfQuad({{{2, 2}, {9, 2}, {5, 2}, {7, 2}}}), expected);
    const Corners corners = {{{3, 4}, {3, 4}, {3, 4}, {3, 4}}};
    EXPECT_EQ(quad(corners, {4, 0, 8, 8}).differenceFrom(Surface(12, 10)), "");
    expected.assign(10, "............");
    expected[4] = "...#........";
    EXPECT_EQ(rowsOfQuad(corners), expected);
}

TEST(Rect_Safe, two_corners_on_the_left_leave_the_right_side_one_pixel_narrower_below_the_first) {
    // The row of the first middle corner is painted by the band above; the truncated reciprocal leaves the edge at 9.
    const Rows leftBulge = rowsOfQuad({{{10, 0}, {4, 3}, {4, 6}, {10, 9}}});
    for (std::size_t y = 0; y <= 9; ++y)
        EXPECT_EQ(leftBulge[y].rfind('#'), y <= 3 ? 10 : 9) << "row " << y;
    EXPECT_EQ(leftBulge[9], ".........#..");

    const Rows rightBulge = rowsOfQuad({{{4, 0}, {10, 3}, {10, 6}, {4, 9}}});
    EXPECT_EQ(rightBulge[4], "....#######.");
    EXPECT_EQ(rightBulge[6], "....#######.");
    EXPECT_EQ(rightBulge[9], "....#.......");
}

TEST(Rect_Safe, a_corner_on_the_long_edge_is_not_to_the_left) {
    // With the second corner on the long edge and the third to the left the right side is the long edge, whole.
    const Rows rows = rowsOfQuad({{{8, 0}, {8, 4}, {2, 5}, {8, 9}}});
    EXPECT_EQ(rows[6].rfind('#'), 8u);
    EXPECT_EQ(rows[9], "........#...");
}

TEST(Rect_Safe, the_order_of_corners_on_different_rows_does_not_matter) {
    const Corners corners = {{{7, 1}, {2, 4}, {11, 6}, {8, 9}}};
    std::array<std::size_t, 4> order = {0, 1, 2, 3};
    do
        EXPECT_EQ(rowsOfQuad({{corners[order[0]], corners[order[1]], corners[order[2]], corners[order[3]]}}),
                  rowsOfQuad(corners));
    while (std::next_permutation(order.begin(), order.end()));
}

TEST(Rect_Safe, corners_on_equal_rows_keep_the_order_that_the_exchanges_give) {
    // An upright rectangle: which lower corner comes last decides between the cases.
    EXPECT_EQ(rowsOfQuad({{{2, 1}, {9, 1}, {9, 6}, {2, 6}}})[3], "..########..");
    // From the upper right to the lower right corner the other two lie left: the right edge is left out.
    const Rows rightLast = rowsOfQuad({{{9, 1}, {2, 1}, {2, 6}, {9, 6}}});
    EXPECT_EQ(rightLast[3], "..#######...");
    EXPECT_EQ(rightLast[1], "..########..");
}

TEST(Rect_Safe, a_figure_and_a_clip_at_the_end_of_the_numbers_draw_nothing_and_end) {
    const Surface nothing(12, 10);
    EXPECT_EQ(quad({{{0, 0}, {3, 0}, {3, greatestInt}, {0, greatestInt}}}, {0, greatestInt, 4, greatestInt})
                  .differenceFrom(nothing),
              "");
}

} // namespace
