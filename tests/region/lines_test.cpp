#include "support/pictures.h"

namespace {

using namespace test;

constexpr q_ulong colour = 0xFE123456;

/// A surface of 8 by 8 with a line.
Surface line(int x1, int y1, int x2, int y2, tagRECT clip = {0, 0, 8, 8}) {
    Surface dst(8, 8);
    iLine(dst.pixels(), x1, y1, x2, y2, colour, &clip, dst.pitch());
    return dst;
}

/// The first rows of such a surface; the others must be empty.
Rows drawn(int x1, int y1, int x2, int y2) {
    Rows rows = rowsOf(line(x1, y1, x2, y2), {{'.', 0}, {'#', colour}});
    while (!rows.empty() && rows.back() == "........")
        rows.pop_back();
    return rows;
}

TEST(iLine, steps_aside_where_the_error_reaches_zero_and_at_a_tie_at_once_in_either_direction) {
    EXPECT_EQ(drawn(0, 0, 5, 2), (Rows{"##......", "..##....", "....##.."}));
    EXPECT_EQ(drawn(0, 0, 2, 5), (Rows{"#.......", "#.......", ".#......", ".#......", "..#.....", "..#....."}));
    EXPECT_EQ(drawn(6, 3, 0, 0), (Rows{"##......", "..##....", "....##..", "......#."}));
    EXPECT_EQ(drawn(0, 0, 2, 1), (Rows{"#.......", ".##....."}));
    EXPECT_EQ(drawn(2, 1, 0, 0), (Rows{"##......", "..#....."}));
    EXPECT_EQ(drawn(0, 0, 1, 2), (Rows{"#.......", ".#......", ".#......"}));
    EXPECT_EQ(drawn(1, 2, 0, 0), (Rows{"#.......", "#.......", ".#......"}));
}

TEST(iLine, straight_and_diagonal_lines_have_both_ends_and_equal_ends_are_one_pixel_if_it_is_inside) {
    EXPECT_EQ(drawn(1, 0, 4, 0), (Rows{".####..."}));
    EXPECT_EQ(drawn(4, 2, 4, 0), Rows(3, "....#..."));
    EXPECT_EQ(drawn(2, 0, 4, 2), (Rows{"..#.....", "...#....", "....#..."}));
    EXPECT_EQ(drawn(2, 2, 4, 0), (Rows{"....#...", "...#....", "..#....."}));
    EXPECT_EQ(drawn(3, 1, 3, 1), (Rows{"........", "...#...."}));
    EXPECT_EQ(drawn(7, 0, 7, 0), (Rows{".......#"}));
    EXPECT_EQ(drawn(8, 4, 8, 4), Rows());
    EXPECT_EQ(drawn(3, -1, 3, -1), Rows());
}

} // namespace
