#include "plain/curves.h"
#include "plane.h"

#include <gtest/gtest.h>

#include <array>
#include <initializer_list>
#include <utility>
#include <vector>

namespace {

using test::Plane;
using test::Surface;

/// Curves are drawn with 1 on 0.
plain::Pen<q_ulong> penOn(Surface &surface, const tagRECT &clip) {
    return {{surface.pixels(), surface.pitch()}, clip, 1};
}

tagRECT withMargin(const Surface &surface) {
    return {-Surface::margin, -Surface::margin, surface.width() + Surface::margin, surface.height() + Surface::margin};
}

/// A curve by four points, on a surface of 64 by 64 that may be drawn on up to its margins.
Surface curveThrough(const int (&xs)[4], const int (&ys)[4]) {
    Surface dst(64, 64);
    tagRECT clip = withMargin(dst);
    iBesierLine(dst.pixels(), xs[0], ys[0], xs[1], ys[1], xs[2], ys[2], xs[3], ys[3], 1, &clip, dst.pitch());
    return dst;
}

TEST(iBesierLine, four_equal_points_draw_one_pixel) {
    for (int p = -8; p < 72; ++p) {
        const int other = 63 - p;
        Surface expected(64, 64);
        expected.at(p, other) = 1;
        ASSERT_EQ(curveThrough({p, p, p, p}, {other, other, other, other}).differenceFrom(expected), "") << p;
    }
}

TEST(iBesierLine, a_horizontal_curve_stays_on_its_row) {
    for (int y = -8; y < 72; ++y) {
        const Surface dst = curveThrough({3, 50, 7, 60}, {y, y, y, y});
        for (int row = -8; row < 72; ++row)
            for (int x = -8; x < 72; ++x)
                ASSERT_EQ(dst.at(x, row), row == y && x >= 3 && x <= 60 ? 1u : 0u) << x << ", " << row << " of " << y;
    }
}

TEST(iBesierLine, a_vertical_curve_stays_on_its_column) {
    for (int x = -8; x < 72; ++x) {
        const Surface dst = curveThrough({x, x, x, x}, {60, 7, 50, 3});
        for (int y = -8; y < 72; ++y)
            for (int column = -8; column < 72; ++column)
                ASSERT_TRUE(dst.at(column, y) == 0 || column == x) << column << ", " << y << " of " << x;
    }
}

/// Where 27 t^3 = 0.008 i^3 comes to, truncated; at 5, 10 and 15 it is a little above a whole number.
constexpr int cubes[15] = {0, 0, 0, 0, 1, 1, 2, 4, 5, 8, 10, 13, 17, 21, 27};

/// Whether a curve that goes down by those cubes has its chords' ends in these columns.
void expectChordEnds(const int (&xs)[4], const int (&ends)[15]) {
    Surface expected(64, 64);
    int x = xs[0];
    int y = 0;
    for (int i = 0; i < 15; ++i) {
        plain::drawLine(penOn(expected, withMargin(expected)), x, y, ends[i], cubes[i]);
        x = ends[i];
        y = cubes[i];
    }
    EXPECT_EQ(curveThrough(xs, {0, 0, 0, 27}).differenceFrom(expected), "");
}

TEST(iBesierLine, an_even_rise_ends_its_chords_on_the_even_steps) {
    // x = 45 t, the least bit above 3 i.
    expectChordEnds({0, 15, 30, 45}, {3, 6, 9, 12, 15, 18, 21, 24, 27, 30, 33, 36, 39, 42, 45});
}

TEST(iBesierLine, an_even_fall_ends_each_chord_a_pixel_further) {
    // x = 55 - 45 t, the least bit below 55 - 3 i: the last chord ends on 9, not on 10.
    expectChordEnds({55, 40, 25, 10}, {51, 48, 45, 42, 39, 36, 33, 30, 27, 24, 21, 18, 15, 12, 9});
}

TEST(iBesierLine, truncation_goes_toward_zero_on_both_sides) {
    // x = 3 - 6 t: 2.6, 2.2, 1.8, 1.4, the least bit below 1, 0.6, 0.2, -0.2, -0.6, the least bit below -1 ...
    expectChordEnds({3, 1, -1, -3}, {2, 2, 1, 1, 0, 0, 0, 0, 0, -1, -1, -1, -2, -2, -3});
}

TEST(iBesierLine, the_ends_of_the_chords_are_exact) {
    // With the last three points the same the end lies 343 / 2^81 of the way beyond them, seen from the first.
    EXPECT_EQ(plain::chordEnd(15, 50, 20, 20, 20), 19);
    EXPECT_EQ(plain::chordEnd(15, 0, 20, 20, 20), 20);
    Surface before(64, 64);
    tagRECT clip = {0, 0, 64, 64};
    iBesierLine(before.pixels(), 50, 0, 20, 0, 20, 0, 20, 0, 1, &clip, before.pitch());
    EXPECT_EQ(before.at(19, 0), 1u);
    EXPECT_EQ(before.at(18, 0), 0u);
    Surface behind(64, 64);
    iBesierLine(behind.pixels(), 0, 0, 20, 0, 20, 0, 20, 0, 1, &clip, behind.pitch());
    EXPECT_EQ(behind.at(20, 0), 1u);
    EXPECT_EQ(behind.at(21, 0), 0u);
    // On the other side of zero the end of -8, -4, -4, -4 lies the least bit above -4 and becomes -3.
    EXPECT_EQ(plain::chordEnd(15, -8, -4, -4, -4), -3);
    const Surface negative = curveThrough({-8, -4, -4, -4}, {0, 0, 0, 0});
    EXPECT_EQ(negative.at(-3, 0), 1u);
    EXPECT_EQ(negative.at(-2, 0), 0u);
}

TEST(iBesierLine, a_curve_beyond_the_clip_slides_along_its_edge) {
    Surface dst(32, 32);
    Surface expected = dst;
    tagRECT clip = {4, 4, 20, 28};
    // The middle of the curve lies far to the right.
    iBesierLine(dst.pixels(), 5, 5, 200, 5, 200, 27, 5, 27, 1, &clip, dst.pitch());
    plain::drawCurve(penOn(expected, clip), {5, 200, 200, 5}, {5, 5, 27, 27});
    EXPECT_EQ(dst.differenceFrom(expected), "");
    for (int y = 8; y <= 24; ++y)
        EXPECT_EQ(dst.at(19, y), 1u) << y;
}

TEST(iBesierLine, only_the_first_point_is_not_moved_to_the_clip) {
    // The first chord starts outside, at (0, 0), and ends at (10, 12): only what lies inside is drawn of it.
    Surface dst(32, 32);
    tagRECT clip = {10, 12, 30, 30};
    iBesierLine(dst.pixels(), 0, 0, 0, 0, 0, 0, 0, 0, 1, &clip, dst.pitch());
    Surface expected(32, 32);
    expected.at(10, 12) = 1;
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

TEST(iBesierLine, coordinates_beyond_24_bits_are_rounded_as_floats_but_for_the_start) {
    // 16777217 is no float and becomes 16777216, column 6 of what is looked at.
    Surface dst(32, 8);
    q_ulong *const origin = dst.pixels() - 16777210;
    tagRECT clip = {16777210, 0, 16777230, 8};
    constexpr int x = 16777217;
    iBesierLine(origin, x, 3, x, 3, x, 3, x, 3, 1, &clip, dst.pitch());
    Surface expected(32, 8);
    expected.at(6, 3) = 1;
    expected.at(7, 3) = 1;
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

using Points = std::vector<short>;

Surface smoothCurve(Points xs, Points ys, int openCurve) {
    Surface dst(96, 64);
    tagRECT clip = dst.rect();
    iPolyBesier(dst.pixels(), &clip, dst.pitch(), xs.data(), ys.data(), static_cast<int>(xs.size()), 1, openCurve);
    return dst;
}

/// Curves by points and handles worked out by hand, one after the other.
Surface curvesThrough(std::initializer_list<std::pair<std::array<int, 4>, std::array<int, 4>>> curves) {
    Surface dst(96, 64);
    for (const auto &[xs, ys] : curves)
        plain::drawCurve(penOn(dst, dst.rect()), xs, ys);
    return dst;
}

TEST(iPolyBesier, an_open_curve_of_two_points_leaves_without_a_handle_and_enters_with_one) {
    // 15/64 of the way from (4, 4) to (68, 36) is (15, 7.5), truncated.
    EXPECT_EQ(
        smoothCurve({4, 68}, {4, 36}, 1).differenceFrom(curvesThrough({{{4, 4, 68 - 15, 68}, {4, 4, 36 - 7, 36}}})),
        "");
}

TEST(iPolyBesier, an_open_curve_has_the_handles_of_its_neighbours_in_between) {
    // At (40, 40): (68 - 4) * 15 / 64 = 15 and (12 - 4) * 15 / 64 = 1. At the end: (68 - 40) * 15 / 64 = 6 and
    // (12 - 40) * 15 / 64 = -6.5, toward zero -6.
    EXPECT_EQ(smoothCurve({4, 40, 68}, {4, 40, 12}, 1)
                  .differenceFrom(curvesThrough({{{4, 4, 40 - 15, 40}, {4, 4, 40 - 1, 40}},
                                                 {{40, 40 + 15, 68 - 6, 68}, {40, 40 + 1, 12 + 6, 12}}})),
              "");
}

TEST(iPolyBesier, a_closed_curve_has_a_true_handle_at_its_first_point_too) {
    // At (8, 8): from (40, 56) to (72, 8), (7, -11); at (72, 8): from (8, 8) to (40, 56), (7, 11); at (40, 56): (-15,
    // 0).
    EXPECT_EQ(smoothCurve({8, 72, 40}, {8, 8, 56}, 0)
                  .differenceFrom(curvesThrough({{{8, 8 + 7, 72 - 7, 72}, {8, 8 - 11, 8 - 11, 8}},
                                                 {{72, 72 + 7, 40 + 15, 40}, {8, 8 + 11, 56, 56}},
                                                 {{40, 40 - 15, 8 - 7, 8}, {56, 56, 8 + 11, 8}}})),
              "");
}

TEST(iPolyBesier, a_closed_curve_of_two_points_goes_straight_there_and_back) {
    EXPECT_EQ(smoothCurve({4, 60}, {4, 30}, 0)
                  .differenceFrom(curvesThrough({{{4, 4, 60, 60}, {4, 4, 30, 30}}, {{60, 60, 4, 4}, {30, 30, 4, 4}}})),
              "");
}

TEST(iPolyBesier, one_point_draws_a_pixel_only_if_closed) {
    EXPECT_EQ(smoothCurve({9}, {7}, 1).differenceFrom(Surface(96, 64)), "");
    Surface expected(96, 64);
    expected.at(9, 7) = 1;
    EXPECT_EQ(smoothCurve({9}, {7}, 0).differenceFrom(expected), "");
}

TEST(iPolyBesier, no_points_draw_nothing) {
    short none = 5;
    for (const int count : {0, -1, -1000})
        for (const int openCurve : {0, 1}) {
            Surface dst(8, 8);
            tagRECT clip = dst.rect();
            iPolyBesier(dst.pixels(), &clip, dst.pitch(), &none, &none, count, 1, openCurve);
            EXPECT_EQ(dst.differenceFrom(Surface(8, 8)), "");
        }
}

TEST(iPolyBesier, any_number_but_0_asks_for_an_open_curve) {
    EXPECT_EQ(smoothCurve({8, 72, 40}, {8, 8, 56}, -1).differenceFrom(smoothCurve({8, 72, 40}, {8, 8, 56}, 1)), "");
}

TEST(iPolyBesier, handles_wrap_at_16_bits) {
    // The tangent at (32760, 10) is (32760 + 32760) * 15 / 64 = 15356: the handle that leaves it wraps to -17420.
    Surface dst(96, 64);
    tagRECT clip = dst.rect();
    Points xs = {-32760, 32760, 32760};
    Points ys = {10, 10, 40};
    iPolyBesier(dst.pixels(), &clip, dst.pitch(), xs.data(), ys.data(), 3, 1, 1);
    EXPECT_EQ(dst.differenceFrom(curvesThrough({{{-32760, -32760, 32760 - 15356, 32760}, {10, 10, 10 - 7, 10}},
                                                {{32760, 32760 + 15356 - 65536, 32760, 32760}, {10, 17, 33, 40}}})),
              "");
}

TEST(bPolyBesier, draws_the_pixels_that_iPolyBesier_draws) {
    Points xs = {8, 72, 40, 100, -9};
    Points ys = {8, 8, 56, 30, 70};
    for (const int openCurve : {0, 1}) {
        Surface shape(96, 64);
        Plane plane(shape);
        tagRECT clip = {3, 4, 90, 60};
        bPolyBesier(plane.pixels(), &clip, plane.pitch(), xs.data(), ys.data(), 5, 0xAB, openCurve);
        iPolyBesier(shape.pixels(), &clip, shape.pitch(), xs.data(), ys.data(), 5, 0xAB, openCurve);
        EXPECT_EQ(plane.words().differenceFrom(shape), "");
    }
}

} // namespace
