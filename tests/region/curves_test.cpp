#include "plain/curves.h"

#include "support/pictures.h"

#include <array>
#include <initializer_list>

namespace {

using namespace test;

using Four = std::array<int, 4>;

/// Curves are drawn with 1 on 0.
plain::Pen<q_ulong> penOn(Surface &surface, const tagRECT &clip) {
    return {{surface.pixels(), surface.pitch()}, clip, 1};
}

/// A curve by four points, on a surface of 64 by 64 that may be drawn on up to its margins.
constexpr tagRECT withMargin = {-8, -8, 72, 72};
Surface curveThrough(const Four &xs, const Four &ys, tagRECT clip = withMargin) {
    Surface dst(64, 64);
    iBesierLine(dst.pixels(), xs[0], ys[0], xs[1], ys[1], xs[2], ys[2], xs[3], ys[3], 1, &clip, dst.pitch());
    return dst;
}

TEST(iBesierLine, four_equal_points_draw_one_pixel) {
    for (int p = -8; p < 72; ++p) {
        Surface expected(64, 64);
        expected.at(p, 63 - p) = 1;
        ASSERT_EQ(curveThrough({p, p, p, p}, {63 - p, 63 - p, 63 - p, 63 - p}).differenceFrom(expected), "") << p;
    }
}

/// Whether a curve that goes down by the cubes below has its chords' ends in these columns.
void expectChordEnds(const Four &xs, const std::array<int, 15> &ends) {
    // 27 t^3 = 0.008 i^3, truncated; at 5, 10 and 15 it is a little above a whole number.
    constexpr int cubes[15] = {0, 0, 0, 0, 1, 1, 2, 4, 5, 8, 10, 13, 17, 21, 27};
    Surface expected(64, 64);
    int x = xs[0];
    int y = 0;
    for (std::size_t i = 0; i < 15; ++i) {
        plain::drawLine(penOn(expected, withMargin), x, y, ends[i], cubes[i]);
        x = ends[i];
        y = cubes[i];
    }
    EXPECT_EQ(curveThrough(xs, {0, 0, 0, 27}).differenceFrom(expected), "");
}

TEST(iBesierLine, chords_end_on_exact_points_that_are_truncated_toward_zero) {
    // x = 45 t, the least bit above 3 i.
    expectChordEnds({0, 15, 30, 45}, {3, 6, 9, 12, 15, 18, 21, 24, 27, 30, 33, 36, 39, 42, 45});
    // x = 55 - 45 t, the least bit below 55 - 3 i: the last chord ends on 9, not on 10.
    expectChordEnds({55, 40, 25, 10}, {51, 48, 45, 42, 39, 36, 33, 30, 27, 24, 21, 18, 15, 12, 9});
    // x = 3 - 6 t: 2.6, 2.2, 1.8, 1.4, the least bit below 1, 0.6, 0.2, -0.2, -0.6, the least bit below -1 ...
    expectChordEnds({3, 1, -1, -3}, {2, 2, 1, 1, 0, 0, 0, 0, 0, -1, -1, -1, -2, -2, -3});
}

TEST(iBesierLine, the_end_lies_the_least_bit_beyond_three_equal_points) {
    // 343 / 2^81 of the way, seen from the first: from the right 19 and not 20, from the left 20, and from the left of
    // -4, beyond which it lies the least bit above it, -3.
    const std::array<std::pair<Four, int>, 3> ends = {
        {{{50, 20, 20, 20}, 19}, {{0, 20, 20, 20}, 20}, {{-8, -4, -4, -4}, -3}}};
    for (const auto &[xs, end] : ends) {
        const Surface curve = curveThrough(xs, {0, 0, 0, 0});
        EXPECT_EQ(curve.at(end, 0), 1u) << end;
        EXPECT_EQ(curve.at(xs[0] < end ? end + 1 : end - 1, 0), 0u) << end;
    }
}

TEST(iBesierLine, a_curve_beyond_the_clip_slides_along_its_edge) {
    // The middle of the curve lies far to the right.
    const tagRECT clip = {4, 4, 20, 28};
    const Surface dst = curveThrough({5, 200, 200, 5}, {5, 5, 27, 27}, clip);
    const Pixels edge = columnIn(dst, 19);
    EXPECT_EQ(Pixels(edge.begin() + 8, edge.begin() + 25), Pixels(17, 1));
    EXPECT_EQ(columnIn(dst, 20), Pixels(64, 0));
}

TEST(iBesierLine, only_the_first_point_is_not_moved_to_the_clip) {
    // The first chord starts outside, at (0, 0), and ends at (10, 12): only what lies inside is drawn of it.
    Surface expected(64, 64);
    expected.at(10, 12) = 1;
    EXPECT_EQ(curveThrough({}, {}, {10, 12, 30, 30}).differenceFrom(expected), "");
}

TEST(iBesierLine, coordinates_beyond_24_bits_are_rounded_as_floats_but_for_the_start) {
    // 16777217 is no float and becomes 16777216, column 6 of what is looked at.
    Surface dst(9, 1);
    tagRECT clip = {16777210, 0, 16777219, 1};
    constexpr int x = 16777217;
    iBesierLine(dst.pixels() - 16777210, x, 0, x, 0, x, 0, x, 0, 1, &clip, dst.pitch());
    EXPECT_EQ(pixelsOf(dst), (Pixels{0, 0, 0, 0, 0, 0, 1, 1, 0}));
}

using Points = std::vector<short>;

Surface smoothCurve(Points xs, Points ys, int openCurve) {
    Surface dst(96, 64);
    return drawnOn(dst, iPolyBesier, dst.rect(), xs.data(), ys.data(), xs.size(), 1, openCurve);
}

/// Whether a smooth curve consists of curves by points and handles worked out by hand, one after the other.
void expectCurves(const Surface &smooth, std::initializer_list<std::pair<Four, Four>> curves) {
    Surface expected(96, 64);
    for (const auto &[xs, ys] : curves)
        plain::drawCurve(penOn(expected, expected.rect()), xs, ys);
    EXPECT_EQ(smooth.differenceFrom(expected), "");
}

TEST(iPolyBesier, an_open_curve_leaves_without_a_handle_enters_with_one_and_has_those_of_its_neighbours_between) {
    // 15/64 of the way from (4, 4) to (68, 36) is (15, 7.5), truncated.
    expectCurves(smoothCurve({4, 68}, {4, 36}, 1), {{{4, 4, 68 - 15, 68}, {4, 4, 36 - 7, 36}}});
    // At (40, 40): (68 - 4) * 15 / 64 = 15 and (12 - 4) * 15 / 64 = 1. At the end: (68 - 40) * 15 / 64 = 6 and
    // (12 - 40) * 15 / 64 = -6.5, toward zero -6.
    expectCurves(smoothCurve({4, 40, 68}, {4, 40, 12}, 1),
                 {{{4, 4, 40 - 15, 40}, {4, 4, 40 - 1, 40}}, {{40, 40 + 15, 68 - 6, 68}, {40, 40 + 1, 12 + 6, 12}}});
}

TEST(iPolyBesier, a_closed_curve_has_a_true_handle_at_its_first_point_too) {
    // At (8, 8): from (40, 56) to (72, 8), (7, -11); at (72, 8): from (8, 8) to (40, 56), (7, 11); at (40, 56): (-15,
    // 0).
    expectCurves(smoothCurve({8, 72, 40}, {8, 8, 56}, 0), {{{8, 8 + 7, 72 - 7, 72}, {8, 8 - 11, 8 - 11, 8}},
                                                           {{72, 72 + 7, 40 + 15, 40}, {8, 8 + 11, 56, 56}},
                                                           {{40, 40 - 15, 8 - 7, 8}, {56, 56, 8 + 11, 8}}});
    // One of two points goes straight there and back.
    expectCurves(smoothCurve({4, 60}, {4, 30}, 0),
                 {{{4, 4, 60, 60}, {4, 4, 30, 30}}, {{60, 60, 4, 4}, {30, 30, 4, 4}}});
    expectCurves(smoothCurve({9}, {7}, 1), {});
    expectCurves(smoothCurve({9}, {7}, 0), {{{9, 9, 9, 9}, {7, 7, 7, 7}}});
}

TEST(iPolyBesier, handles_wrap_at_16_bits) {
    // The tangent at (32760, 10) is (32760 + 32760) * 15 / 64 = 15356: the handle that leaves it wraps to -17420.
    expectCurves(smoothCurve({-32760, 32760, 32760}, {10, 10, 40}, 1),
                 {{{-32760, -32760, 32760 - 15356, 32760}, {10, 10, 10 - 7, 10}},
                  {{32760, 32760 + 15356 - 65536, 32760, 32760}, {10, 17, 33, 40}}});
}

} // namespace
