#include "support/painting.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace {

using namespace test;

/// A corner on the destination and on the source.
struct Corner {
    int x;
    int y;
    int u;
    int v;
};

using Corners = std::array<Corner, 3>;

/// A triangle of `src` over nothing, within a clip or within all of it.
Surface drawn(Surface &src, const Corners &corners, tagRECT clip = {0, 0, -1, -1}) {
    Surface dst = blank(src.width(), src.height());
    if (clip.right < 0)
        clip = dst.rect();
    _POINTINT screen[3];
    _POINTINT source[3];
    for (std::size_t i = 0; i < 3; ++i) {
        screen[i] = {corners[i].x, corners[i].y};
        source[i] = {corners[i].u, corners[i].v};
    }
    Blt_Triangle(dst.pixels(), &clip, dst.pitch(), &screen[0], &screen[1], &screen[2], src.pixels(), src.pitch(),
                 &source[0], &source[1], &source[2]);
    return dst;
}

TEST(Blt_Triangle, with_two_corners_on_top_the_lower_part_takes_the_whole_height) {
    // Of two corners on one row the later one is the top: (8, 0), with (0, 0) in the middle, to the left of the long
    // edge. From row to row the short edge moves by 8 / 3 of a pixel, one row less than the height of 4.
    Surface src = placesOf(9, 5);
    Surface expected = blank(9, 5);
    constexpr int left[4] = {0, 2, 5, 7}; // 349525 / 2^20 is just below a third: row 3 stops at 7.99
    constexpr int row[4] = {0, 1, 2, 3};  // 4 * y / 3, truncated
    for (int y = 0; y < 4; ++y)
        for (int x = left[y]; x < 8; ++x) {
            const int span = 8 - left[y] - 1;
            const int u = (x - left[y]) * ((8 - left[y]) * (1048576 / (span == 0 ? 1 : span))) / 1048576 + left[y];
            expected.at(x, y) = place(u, row[y]);
        }
    EXPECT_EQ(drawn(src, {{{0, 0, 0, 0}, {8, 0, 8, 0}, {8, 4, 8, 4}}}).differenceFrom(expected), "");
}

TEST(Blt_Triangle, one_row_high_has_a_reciprocal_of_one) {
    // Top (2, 3), middle (9, 3): only row 3, which belongs to the lower part, from the top corner to the middle one.
    Surface src = placesOf(12, 12);
    const Surface expected = painted(blank(12, 12), {2, 3, 9, 4}, [](int x, int) { // 7 columns over a span of 6
        return place(2 + (x - 2) * (7 * 174762) / 1048576, 5);
    });
    EXPECT_EQ(drawn(src, {{{9, 3, 9, 5}, {2, 3, 2, 5}, {2, 4, 2, 6}}}).differenceFrom(expected), "");
    // With the middle at the bottom both edges start on the one corner.
    EXPECT_EQ(drawn(src, {{{4, 3, 4, 5}, {2, 4, 2, 6}, {8, 4, 8, 6}}}).differenceFrom(blank(12, 12)), "");
}

TEST(Blt_Triangle, flat_triangles_draw_nothing) {
    Surface src = placesOf(12, 12);
    for (const Corners &flat :
         {Corners{{{2, 3, 2, 3}, {9, 3, 9, 3}, {5, 3, 5, 3}}}, Corners{{{2, 3, 2, 3}, {2, 3, 2, 3}, {2, 3, 2, 3}}},
          Corners{{{5, 1, 2, 3}, {5, 4, 2, 3}, {5, 8, 2, 3}}}})
        EXPECT_EQ(drawn(src, flat).differenceFrom(blank(12, 12)), "");
}

TEST(Blt_Triangle, a_row_of_one_pixel_takes_its_span_for_1) {
    // A long edge at column 4 and a middle one pixel to its right: row 2 alone has a width, 1, so a span of 0.
    Surface src = placesOf(12, 12);
    const Surface dst = drawn(src, {{{4, 0, 4, 6}, {5, 2, 7, 8}, {4, 5, 4, 11}}});
    EXPECT_EQ(dst.at(4, 2), place(4, 8)); // 2.5 rows of source below 6: 5 rows go by over 4 rows, not 5
    EXPECT_EQ(dst.at(5, 2), untouched);
    EXPECT_EQ(dst.at(4, 4), untouched) << "the short edge has reached its end one row early";
}

TEST(Blt_Triangle, edges_reach_their_far_end_one_row_early) {
    // The long edge on the left at column 0; the other from (0, 0) to (8, 5) moves by 2 a row, over 4 rows and not 5.
    Surface src = placesOf(16, 16);
    const Surface dst = drawn(src, {{{0, 0, 0, 0}, {8, 5, 8, 5}, {0, 5, 0, 5}}});
    for (int y = 0; y < 6; ++y)
        EXPECT_EQ(drawnInRow(dst, y), y < 5 ? 2 * y : 0) << y;
    EXPECT_EQ(dst.at(0, 4), place(0, 5)) << "source rows reach their end early as well";
}

/// Expects the same of three corners in all their orders.
void expectSameInAnyOrder(Surface &src, const Corners &corners) {
    const Surface first = drawn(src, corners);
    std::array<std::size_t, 3> order = {0, 1, 2};
    while (std::next_permutation(order.begin(), order.end()))
        EXPECT_EQ(drawn(src, {corners[order[0]], corners[order[1]], corners[order[2]]}).differenceFrom(first), "");
}

TEST(Blt_Triangle, the_order_of_corners_does_not_matter) {
    // Of corners on equal rows it decides which edge is the long one; the side of the middle corner makes good for it.
    Surface src = placesOf(16, 16);
    expectSameInAnyOrder(src, {{{3, 1, 2, 2}, {13, 6, 14, 3}, {5, 12, 6, 13}}});
    const Corners flatTop = {{{1, 1, 0, 0}, {9, 1, 9, 0}, {5, 7, 5, 6}}};
    expectSameInAnyOrder(src, flatTop);
    EXPECT_EQ(drawn(src, flatTop).at(1, 1), place(0, 0));
    EXPECT_EQ(drawn(src, flatTop).at(8, 1), place(8, 0)); // 7 * (9 * (1048576 / 7)) is just below 9 columns
    const Corners flatBottom = {{{5, 1, 5, 0}, {1, 7, 0, 6}, {9, 7, 9, 6}}};
    expectSameInAnyOrder(src, flatBottom);
    // The end, reached one row early: 6 * 5 * (1048576 / 5) is just below 6.
    EXPECT_EQ(drawn(src, flatBottom).at(1, 6), place(0, 5));
}

TEST(Blt_Triangle, a_source_outside_the_clip_leaves_the_destination) {
    // An upright half square whose source lies four columns and three rows further.
    Surface src = placesOf(16, 16);
    const Surface dst = drawn(src, {{{2, 2, 6, 5}, {2, 10, 6, 13}, {10, 10, 14, 13}}}, {2, 2, 10, 10});
    EXPECT_GT(drawnInRow(dst, 6), 0);
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 16; ++x) {
            if (dst.at(x, y) == untouched)
                continue;
            EXPECT_LT(dst.at(x, y) & 0xFF, 10u);
            EXPECT_LT(dst.at(x, y) >> 8 & 0xFF, 10u);
            EXPECT_LT(x, 7) << "the source of column 7 is column 11 or so";
            EXPECT_LT(y, 8);
        }
}

TEST(Blt_Triangle, the_side_of_the_middle_corner_is_told_where_its_turned_round_test_would_wrap) {
    // 32768 * -65536 is the least number of all and less than -65537; turned round it would wrap to the other side.
    Surface src(16, 16, 7);
    const Surface expected = painted(blank(16, 16), src.rect(), [](int x, int y) {
        return x < y / 2 ? 7 : untouched; // the long edge moves by half a pixel for each row
    });
    EXPECT_EQ(drawn(src, {{{0, 0, 5, 5}, {1, 65536, 5, 5}, {32768, 65537, 5, 5}}}).differenceFrom(expected), "");
}

} // namespace
