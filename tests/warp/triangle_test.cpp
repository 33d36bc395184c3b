#include "support/surface.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>

namespace {

using test::Surface;

/// A corner on the destination and on the source.
struct Corner {
    int x;
    int y;
    int u;
    int v;
};

using Corners = std::array<Corner, 3>;

void draw(Surface &dst, tagRECT clip, Surface &src, const Corners &corners) {
    _POINTINT screen[3];
    _POINTINT source[3];
    for (std::size_t i = 0; i < 3; ++i) {
        screen[i] = {corners[i].x, corners[i].y};
        source[i] = {corners[i].u, corners[i].v};
    }
    Blt_Triangle(dst.pixels(), &clip, dst.pitch(), &screen[0], &screen[1], &screen[2], src.pixels(), src.pitch(),
                 &source[0], &source[1], &source[2]);
}

constexpr q_ulong untouched = 0x11111111;

Surface placesOf(int width, int height) {
    Surface surface(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            surface.at(x, y) = 0xFF000000 | static_cast<q_ulong>(y << 8 | x);
    return surface;
}

q_ulong place(int x, int y) {
    return 0xFF000000 | static_cast<q_ulong>(y << 8 | x);
}

TEST(Blt_Triangle, with_two_corners_on_top_the_lower_part_takes_the_whole_height) {
    // Of two corners on one row the later one is the top: (8, 0), with (0, 0) in the middle, to the left of the long
    // edge. From row to row the short edge moves by 8 / 3 of a pixel, one row less than the height of 4.
    Surface src = placesOf(9, 5);
    Surface dst(9, 5, untouched);
    draw(dst, dst.rect(), src, {{{0, 0, 0, 0}, {8, 0, 8, 0}, {8, 4, 8, 4}}});
    Surface expected(9, 5, untouched);
    const int left[4] = {0, 2, 5, 7}; // 349525 / 2^20 is just below a third: row 3 stops at 7.99
    const int row[4] = {0, 1, 2, 3};  // 4 * y / 3, truncated
    for (int y = 0; y < 4; ++y)
        for (int x = left[y]; x < 8; ++x) {
            const int span = 8 - left[y] - 1;
            const int u = (x - left[y]) * ((8 - left[y]) * (1048576 / (span == 0 ? 1 : span))) / 1048576 + left[y];
            expected.at(x, y) = place(u, row[y]);
        }
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

TEST(Blt_Triangle, one_row_high_has_a_reciprocal_of_one) {
    // Top (2, 3), middle (9, 3): only row 3, which belongs to the lower part, from the top corner to the middle one.
    Surface src = placesOf(12, 12);
    Surface dst(12, 12, untouched);
    draw(dst, dst.rect(), src, {{{9, 3, 9, 5}, {2, 3, 2, 5}, {2, 4, 2, 6}}});
    Surface expected(12, 12, untouched);
    for (int x = 2; x < 9; ++x) // 7 columns of source over a span of 6
        expected.at(x, 3) = place(2 + (x - 2) * (7 * 174762) / 1048576, 5);
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

TEST(Blt_Triangle, one_row_high_with_the_middle_at_the_bottom_ends_at_the_rows_start) {
    Surface src = placesOf(12, 12);
    Surface dst(12, 12, untouched);
    draw(dst, dst.rect(), src, {{{4, 3, 4, 5}, {2, 4, 2, 6}, {8, 4, 8, 6}}});
    EXPECT_EQ(dst.differenceFrom(Surface(12, 12, untouched)), "") << "both edges start on the one corner";
}

TEST(Blt_Triangle, flat_triangles_draw_nothing) {
    Surface src = placesOf(12, 12);
    Surface dst(12, 12, untouched);
    draw(dst, dst.rect(), src, {{{2, 3, 2, 3}, {9, 3, 9, 3}, {5, 3, 5, 3}}});
    draw(dst, dst.rect(), src, {{{2, 3, 2, 3}, {2, 3, 2, 3}, {2, 3, 2, 3}}});
    draw(dst, dst.rect(), src, {{{5, 1, 2, 3}, {5, 4, 2, 3}, {5, 8, 2, 3}}});
    EXPECT_EQ(dst.differenceFrom(Surface(12, 12, untouched)), "");
}

TEST(Blt_Triangle, a_row_of_one_pixel_takes_its_span_for_1) {
    // A long edge at column 4 and a middle one pixel to its right: row 2 alone has a width, 1, so a span of 0.
    Surface src = placesOf(12, 12);
    Surface dst(12, 12, untouched);
    draw(dst, dst.rect(), src, {{{4, 0, 4, 6}, {5, 2, 7, 8}, {4, 5, 4, 11}}});
    EXPECT_EQ(dst.at(4, 2), place(4, 8)); // 2.5 rows of source below 6: 5 rows go by over 4 rows, not 5
    EXPECT_EQ(dst.at(5, 2), untouched);
    EXPECT_EQ(dst.at(4, 4), untouched) << "the short edge has reached its end one row early";
}

TEST(Blt_Triangle, edges_reach_their_far_end_one_row_early) {
    Surface src = placesOf(16, 16);
    Surface dst(16, 16, untouched);
    // The long edge on the left at column 0; the other from (0, 0) to (8, 5) moves by 2 a row, over 4 rows and not 5.
    draw(dst, dst.rect(), src, {{{0, 0, 0, 0}, {8, 5, 8, 5}, {0, 5, 0, 5}}});
    const auto columns = [&](int y) {
        int count = 0;
        for (int x = 0; x < 16; ++x)
            count += dst.at(x, y) != untouched;
        return count;
    };
    for (int y = 0; y < 5; ++y)
        EXPECT_EQ(columns(y), 2 * y) << y;
    EXPECT_EQ(columns(5), 0);
    EXPECT_EQ(dst.at(0, 4), place(0, 5)) << "source rows reach their end early as well";
}

TEST(Blt_Triangle, corners_on_equal_rows_keep_their_own_source_in_either_order) {
    // The order decides which edge is the long one; the side of the middle corner makes good for it.
    Surface src = placesOf(12, 12);
    const Corner left = {1, 1, 0, 0};
    const Corner right = {9, 1, 9, 0};
    const Corner below = {5, 7, 5, 6};
    Surface first(12, 12, untouched);
    draw(first, first.rect(), src, {left, right, below});
    EXPECT_EQ(first.at(1, 1), place(0, 0));
    EXPECT_EQ(first.at(8, 1), place(8, 0)); // 7 * (9 * (1048576 / 7)) is just below 9 columns
    for (const Corners &corners :
         {Corners{right, left, below}, Corners{below, left, right}, Corners{below, right, left},
          Corners{left, below, right}, Corners{right, below, left}}) {
        Surface dst(12, 12, untouched);
        draw(dst, dst.rect(), src, corners);
        EXPECT_EQ(dst.differenceFrom(first), "");
    }
    // On two lower corners alike.
    const Corner above = {5, 1, 5, 0};
    Surface upright(12, 12, untouched);
    draw(upright, upright.rect(), src, {{above, {1, 7, 0, 6}, {9, 7, 9, 6}}});
    EXPECT_EQ(upright.at(1, 6), place(0, 5)); // the end, reached one row early: 6 * 5 * (1048576 / 5) is just below 6
    Surface turned(12, 12, untouched);
    draw(turned, turned.rect(), src, {{{9, 7, 9, 6}, {1, 7, 0, 6}, above}});
    EXPECT_EQ(turned.differenceFrom(upright), "");
}

TEST(Blt_Triangle, a_source_outside_the_clip_leaves_the_destination) {
    Surface src = placesOf(16, 16);
    Surface dst(16, 16, untouched);
    const tagRECT clip = {2, 2, 10, 10};
    // An upright half square whose source lies four columns and three rows further.
    draw(dst, clip, src, {{{2, 2, 6, 5}, {2, 10, 6, 13}, {10, 10, 14, 13}}});
    bool anything = false;
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 16; ++x) {
            if (dst.at(x, y) == untouched)
                continue;
            anything = true;
            EXPECT_LT(dst.at(x, y) & 0xFF, 10u);
            EXPECT_LT(dst.at(x, y) >> 8 & 0xFF, 10u);
            EXPECT_LT(x, 7) << "the source of column 7 is column 11 or so";
            EXPECT_LT(y, 8);
        }
    EXPECT_TRUE(anything);
}

TEST(Blt_Triangle, the_order_of_corners_on_different_rows_does_not_matter) {
    Surface src = placesOf(16, 16);
    Corners corners = {{{3, 1, 2, 2}, {13, 6, 14, 3}, {5, 12, 6, 13}}};
    Surface first(16, 16, untouched);
    draw(first, first.rect(), src, corners);
    EXPECT_NE(first.at(6, 6), untouched);
    std::array<std::size_t, 3> order = {0, 1, 2};
    do {
        Surface dst(16, 16, untouched);
        draw(dst, dst.rect(), src, {corners[order[0]], corners[order[1]], corners[order[2]]});
        EXPECT_EQ(dst.differenceFrom(first), "");
    } while (std::next_permutation(order.begin(), order.end()));
}

TEST(Blt_Triangle, the_side_of_the_middle_corner_is_told_where_its_turned_round_test_would_wrap) {
    // 32768 * -65536 is the least number of all and less than -65537; turned round it would wrap to the other side.
    Surface src(16, 16, 7);
    Surface dst(16, 16, untouched);
    draw(dst, dst.rect(), src, {{{0, 0, 5, 5}, {1, 65536, 5, 5}, {32768, 65537, 5, 5}}});
    Surface expected(16, 16, untouched);
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < y / 2; ++x) // the long edge moves by half a pixel for each row
            expected.at(x, y) = 7;
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

TEST(Blt_Triangle, figures_wholly_outside_and_empty_clips_draw_nothing) {
    Surface src = placesOf(16, 16);
    Surface dst(16, 16, untouched);
    for (const int x : {-1000, -40, 0, 40, 1000})
        for (const int y : {-1000, -40, 0, 40, 1000})
            if (x != 0 || y != 0)
                draw(dst, dst.rect(), src, {{{x, y, 0, 0}, {x + 12, y + 3, 12, 3}, {x + 4, y + 14, 4, 14}}});
    for (const tagRECT &clip :
         {tagRECT{4, 0, 4, 16}, tagRECT{0, 4, 16, 4}, tagRECT{9, 9, 3, 3}, tagRECT{INT_MIN, INT_MIN, INT_MIN, INT_MIN}})
        draw(dst, clip, src, {{{0, 0, 0, 0}, {12, 3, 12, 3}, {4, 14, 4, 14}}});
    EXPECT_EQ(dst.differenceFrom(Surface(16, 16, untouched)), "");
}

} // namespace
