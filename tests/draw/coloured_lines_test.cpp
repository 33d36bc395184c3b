#include "naive.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using naive::Number;
using test::Case;
using test::forEachCase;
using test::Surface;

struct Point {
    int x;
    int y;
};

/// The pixels of a Bresenham line, both ends included.
std::vector<Point> naiveSteps(int x1, int y1, int x2, int y2) {
    const int adx = std::abs(x2 - x1);
    const int ady = std::abs(y2 - y1);
    const int sx = x2 < x1 ? -1 : 1;
    const int sy = y2 < y1 ? -1 : 1;
    std::vector<Point> points = {{x1, y1}};
    Point at = {x1, y1};
    if (adx <= ady) {
        int d = 2 * adx - ady;
        for (int i = 0; i < ady; ++i) {
            if (d >= 0) {
                at.x += sx;
                d += 2 * (adx - ady);
            } else {
                d += 2 * adx;
            }
            at.y += sy;
            points.push_back(at);
        }
    } else {
        int d = 2 * ady - adx;
        for (int i = 0; i < adx; ++i) {
            if (d >= 0) {
                at.y += sy;
                d += 2 * (ady - adx);
            } else {
                d += 2 * ady;
            }
            at.x += sx;
            points.push_back(at);
        }
    }
    return points;
}

q_ulong naiveShade(q_ulong colour, int halfWidth, int i) {
    const Number n = halfWidth + 1;
    const Number step = 2048 / n;
    const auto channel = [&](Number c) {
        const Number value = i < n / 2 ? 255 + (c - 255) * step * i / 1024 : (halfWidth - i) * step * c / 1024;
        return (value % 256 + 256) % 256;
    };
    return naive::packed(channel(naive::blue(colour)), channel(naive::green(colour)), channel(naive::red(colour)));
}

void naiveFat(Surface &s, const tagRECT &clip, int x1, int y1, int x2, int y2, q_ulong colour, int halfWidth) {
    const bool alongX = std::abs(x2 - x1) > std::abs(y2 - y1);
    bool first = true;
    for (const Point at : naiveSteps(x1, y1, x2, y2)) {
        const bool inside = alongX ? at.x >= clip.left && at.x < clip.right : at.y >= clip.top && at.y < clip.bottom;
        if (first && !inside)
            return;
        first = false;
        if (!inside)
            continue;
        s.at(at.x, at.y) = naiveShade(colour, halfWidth, 0);
        for (int k = 1; k <= halfWidth; ++k) {
            const int dx = alongX ? 0 : k;
            const int dy = alongX ? k : 0;
            const bool fits = alongX ? at.y >= clip.top + k && at.y < clip.bottom - k
                                     : at.x >= clip.left + k && at.x < clip.right - k;
            if (!fits)
                continue;
            s.at(at.x - dx, at.y - dy) = naiveShade(colour, halfWidth, k);
            s.at(at.x + dx, at.y + dy) = naiveShade(colour, halfWidth, k);
        }
    }
}

void drawFat(Surface &s, tagRECT clip, int x1, int y1, int x2, int y2, q_ulong colour, int halfWidth) {
    DDLine_Fat(s.pixels(), &clip, s.pitch(), x1, y1, x2, y2, colour, halfWidth);
}

TEST(DDLine_Fat, runs_from_white_through_the_colour_to_black_with_red_and_blue_exchanged) {
    // Four shades with a step of 512. Blue 0x60 goes 255, 255 - 79, 48, 0; green 0x40 goes 255, 255 - 95, 32, 0;
    // red 0x20 goes 255, 255 - 111, 16, 0.
    Surface surface(9, 3, 0xFFAAAAAA);
    Surface expected = surface;
    const q_ulong shades[] = {0xFFFFFF, 0xB0A090, 0x302010, 0x000000};
    for (int k = 0; k < 4; ++k)
        expected.at(4 - k, 1) = expected.at(4 + k, 1) = shades[k];
    drawFat(surface, surface.rect(), 4, 1, 4, 1, 0xFF204060, 3);
    EXPECT_EQ(surface.differenceFrom(expected), "");
}

TEST(DDLine_Fat, ends_that_coincide_draw_one_section) {
    Surface surface(9, 9, 0xFFAAAAAA);
    Surface expected = surface;
    for (int k = 0; k <= 2; ++k)
        expected.at(4 - k, 4) = expected.at(4 + k, 4) = naiveShade(0x123456, 2, k);
    drawFat(surface, surface.rect(), 4, 4, 4, 4, 0x123456, 2);
    EXPECT_EQ(surface.differenceFrom(expected), "");
}

TEST(DDLine_Fat, half_width_0_is_a_black_line) {
    Surface surface(9, 9, 0xFFAAAAAA);
    Surface expected = surface;
    for (int x = 2; x <= 6; ++x)
        expected.at(x, 4) = 0;
    drawFat(surface, surface.rect(), 2, 4, 6, 4, 0xFFFFFF, 0);
    EXPECT_EQ(surface.differenceFrom(expected), "");
}

TEST(DDLine_Fat, negative_half_widths_draw_nothing) {
    const Surface fresh(9, 9, 0xFFAAAAAA);
    for (const int halfWidth : {-1, -2, -3, -100, std::numeric_limits<int>::min()}) {
        Surface surface = fresh;
        drawFat(surface, surface.rect(), 2, 4, 6, 4, 0xFFFFFF, halfWidth);
        EXPECT_EQ(surface.differenceFrom(fresh), "");
    }
}

TEST(DDLine_Fat, a_first_end_outside_along_the_major_axis_draws_nothing) {
    const Surface fresh(9, 9, 0xFFAAAAAA);
    Surface surface = fresh;
    drawFat(surface, surface.rect(), 4, -1, 4, 8, 0xFFFFFF, 2);
    drawFat(surface, surface.rect(), 4, 9, 4, 0, 0xFFFFFF, 2);
    drawFat(surface, surface.rect(), -1, 4, 8, 4, 0xFFFFFF, 2);
    drawFat(surface, surface.rect(), 9, 4, 0, 4, 0xFFFFFF, 2);
    EXPECT_EQ(surface.differenceFrom(fresh), "");
}

TEST(DDLine_Fat, a_second_end_outside_draws_the_part_inside) {
    Surface surface(9, 9, 0xFFAAAAAA);
    Surface expected = surface;
    for (int y = 5; y < 9; ++y)
        expected.at(4, y) = 0xFFFFFF, expected.at(3, y) = expected.at(5, y) = 0;
    drawFat(surface, surface.rect(), 4, 5, 4, 20, 0x808080, 1);
    EXPECT_EQ(surface.differenceFrom(expected), "");
}

TEST(DDLine_Fat, sections_outside_are_left_out_and_the_line_goes_on) {
    // Along y, from row 3 to row 6 of a clip that ends at row 5: two rows, whichever columns they lie in.
    Surface surface(12, 12, 0xFFAAAAAA);
    Surface expected = surface;
    naiveFat(expected, {0, 3, 12, 5}, 4, 3, 6, 8, 0x808080, 1);
    drawFat(surface, {0, 3, 12, 5}, 4, 3, 6, 8, 0x808080, 1);
    EXPECT_EQ(surface.differenceFrom(expected), "");
    EXPECT_EQ(surface.at(4, 3), 0xFFFFFFu);
    EXPECT_EQ(surface.at(5, 5), 0xFFAAAAAAu);
}

TEST(DDLine_Fat, near_the_clip_outer_shades_are_lost_on_both_sides_at_once) {
    Surface surface(12, 3, 0xFFAAAAAA);
    Surface expected = surface;
    for (int k = 0; k <= 1; ++k) // column 1: a shade at distance 2 would lie at -1
        expected.at(1 - k, 1) = expected.at(1 + k, 1) = naiveShade(0x808080, 4, k);
    drawFat(surface, surface.rect(), 1, 1, 1, 1, 0x808080, 4);
    EXPECT_EQ(surface.differenceFrom(expected), "");
}

TEST(DDLine_Fat, the_centre_is_not_clipped_along_the_minor_axis) {
    Surface surface(9, 9, 0xFFAAAAAA);
    Surface expected = surface;
    for (int y = 2; y <= 4; ++y)
        expected.at(-3, y) = 0xFFFFFF;
    for (int x = 2; x <= 5; ++x)
        expected.at(x, 11) = 0xFFFFFF;
    drawFat(surface, surface.rect(), -3, 2, -3, 4, 0x808080, 4);
    drawFat(surface, surface.rect(), 2, 11, 5, 11, 0x808080, 4);
    EXPECT_EQ(surface.differenceFrom(expected), "");
}

TEST(DDLine_Fat, every_half_width_has_the_shades_of_its_table) {
    for (int halfWidth = 0; halfWidth <= 60; ++halfWidth)
        for (const q_ulong colour : {0x000000u, 0xFFFFFFu, 0x204060u, 0xFE01C8u}) {
            Surface surface(130, 1, 0xFFAAAAAA);
            drawFat(surface, surface.rect(), 65, 0, 65, 0, colour, halfWidth);
            for (int k = 0; k <= halfWidth; ++k) {
                ASSERT_EQ(surface.at(65 - k, 0), naiveShade(colour, halfWidth, k)) << k << " of " << halfWidth;
                ASSERT_EQ(surface.at(65 + k, 0), naiveShade(colour, halfWidth, k)) << k << " of " << halfWidth;
            }
        }
}

TEST(DDLine_Fat, beyond_2047_shades_the_step_is_0) {
    Surface surface(10, 1, 0xFFAAAAAA);
    drawFat(surface, {-4000, 0, 4000, 1}, 5, 0, 5, 0, 0x808080, 0); // black
    EXPECT_EQ(surface.at(5, 0), 0u);
    drawFat(surface, surface.rect(), 5, 0, 5, 0, 0x123456, 3000);
    for (int k = -4; k <= 4; ++k)
        EXPECT_EQ(surface.at(5 + k, 0), 0xFFFFFFu);
    EXPECT_EQ(surface.at(0, 0), 0xFFAAAAAAu);
}

TEST(DDLine_Fat, agrees_with_a_naive_tube) {
    forEachCase("DDLine_Fat", [](Case &c) {
        Surface surface = Surface::random(c.random);
        tagRECT clip = c.random.rectInsideOrEmpty(surface.width(), surface.height());
        const auto x = [&] { return c.random.between(-8, surface.width() + 7); };
        const auto y = [&] { return c.random.between(-8, surface.height() + 7); };
        const int x1 = x();
        const int y1 = y();
        const int x2 = x();
        const int y2 = y();
        const q_ulong colour = c.random.pixel();
        const int halfWidth = c.random.between(0, 9);
        Surface expected = surface;
        naiveFat(expected, clip, x1, y1, x2, y2, colour, halfWidth);
        DDLine_Fat(surface.pixels(), &clip, surface.pitch(), x1, y1, x2, y2, colour, halfWidth);
        c.expectEqual(surface, expected);
    });
}

TEST(DDLine_Fat, side_shades_stay_inside_the_clip_wherever_the_line_lies) {
    const Surface fresh(9, 9, 0xFFAAAAAA);
    for (const tagRECT &clip : {tagRECT{0, 0, 9, 9}, tagRECT{2, 1, 7, 6}, tagRECT{4, 4, 5, 5}})
        for (int halfWidth = 0; halfWidth <= 5; ++halfWidth)
            for (int y1 = -4; y1 <= 12; y1 += 2)
                for (int x1 = -4; x1 <= 12; x1 += 2)
                    for (int y2 = -4; y2 <= 12; ++y2)
                        for (int x2 = -4; x2 <= 12; ++x2) {
                            Surface surface = fresh;
                            Surface expected = fresh;
                            naiveFat(expected, clip, x1, y1, x2, y2, 0x204060, halfWidth);
                            drawFat(surface, clip, x1, y1, x2, y2, 0x204060, halfWidth);
                            ASSERT_TRUE(surface == expected) << x1 << ", " << y1 << " to " << x2 << ", " << y2 << ": "
                                                             << surface.differenceFrom(expected);
                        }
}

void changeColour(Surface &s, int x1, int y1, int x2, int y2, q_ulong colour1, q_ulong colour2) {
    DDLine_Color_Change(s.pixels(), s.pitch(), x1, y1, x2, y2, colour1, colour2);
}

TEST(DDLine_Color_Change, the_second_pixel_repeats_the_first_colour_and_the_second_colour_is_not_reached) {
    Surface surface(8, 3, 0xFFAAAAAA);
    Surface expected = surface;
    const q_ulong pixels[] = {0x77004000, 0x00004000, 0x00003020, 0x00002040, 0x00001060};
    for (int x = 0; x < 5; ++x)
        expected.at(1 + x, 1) = pixels[x];
    changeColour(surface, 1, 1, 5, 1, 0x77004000, 0x77000080);
    EXPECT_EQ(surface.differenceFrom(expected), "");
}

TEST(DDLine_Color_Change, ends_that_coincide_write_one_pixel_as_given) {
    Surface surface(5, 5, 0xFFAAAAAA);
    Surface expected = surface;
    expected.at(2, 3) = 0x12345678;
    changeColour(surface, 2, 3, 2, 3, 0x12345678, 0);
    EXPECT_EQ(surface.differenceFrom(expected), "");
}

TEST(DDLine_Color_Change, falling_channels_are_truncated_towards_zero) {
    Surface surface(8, 1, 0);
    changeColour(surface, 0, 0, 4, 0, 0x010101, 0x000000);
    for (int x = 1; x <= 4; ++x)
        EXPECT_EQ(surface.at(x, 0), 0x010101u);
}

TEST(DDLine_Color_Change, a_top_byte_bends_the_change_of_red) {
    // Upper halves go from 0 to 256 in four steps.
    Surface surface(8, 1, 0xFFAAAAAA);
    changeColour(surface, 0, 0, 4, 0, 0x00000000, 0x01000000);
    EXPECT_EQ(surface.at(2, 0), 0x400000u);
    EXPECT_EQ(surface.at(3, 0), 0x800000u);
    EXPECT_EQ(surface.at(4, 0), 0xC00000u);
}

TEST(DDLine_Color_Change, equal_extents_and_all_octants_follow_bresenham) {
    for (int y2 = -8; y2 <= 8; ++y2)
        for (int x2 = -8; x2 <= 8; ++x2) {
            Surface surface(17, 17, 0);
            Surface expected = surface;
            for (const Point at : naiveSteps(8, 8, 8 + x2, 8 + y2))
                expected.at(at.x, at.y) = 0xFFFFFF;
            changeColour(surface, 8, 8, 8 + x2, 8 + y2, 0xFFFFFF, 0xFFFFFF);
            ASSERT_EQ(surface.differenceFrom(expected), "") << x2 << ", " << y2;
        }
}

TEST(DDLine_Color_Change, agrees_with_a_naive_line) {
    forEachCase("DDLine_Color_Change", [](Case &c) {
        Surface surface = Surface::random(c.random);
        const auto x = [&] { return c.random.between(-8, surface.width() + 7); };
        const auto y = [&] { return c.random.between(-8, surface.height() + 7); };
        const int x1 = x();
        const int y1 = y();
        const int x2 = c.random.oneIn(20) ? x1 : x();
        const int y2 = c.random.oneIn(20) ? y1 : y();
        const q_ulong colour1 = c.random.pixel();
        const q_ulong colour2 = c.random.pixel();
        Surface expected = surface;
        const std::vector<Point> points = naiveSteps(x1, y1, x2, y2);
        const Number n = static_cast<Number>(points.size()) - 1;
        for (Number i = 0; i <= n; ++i) {
            const auto channel = [&](Number from, Number to) {
                const Number change = naive::signed32((to - from) * (65536 / n) * (i - 1));
                return ((change / 65536 + from) % 256 + 256) % 256;
            };
            const Point at = points[static_cast<std::size_t>(i)];
            expected.at(at.x, at.y) = i == 0
                                          ? colour1
                                          : naive::packed(channel(naive::upperHalf(colour1), naive::upperHalf(colour2)),
                                                          channel(naive::green(colour1), naive::green(colour2)),
                                                          channel(naive::blue(colour1), naive::blue(colour2)));
        }
        changeColour(surface, x1, y1, x2, y2, colour1, colour2);
        c.expectEqual(surface, expected);
    });
}

void naiveAddSome(Surface &s, int x1, int y1, int x2, int y2, q_ulong colour, int width, int height) {
    const std::vector<Point> points = naiveSteps(x1, y1, x2, y2);
    const Number n = static_cast<Number>(points.size()) - 1;
    for (Number i = 1; i <= n; ++i) {
        const auto channel = [&](Number c, Number old) {
            const Number fallen = naive::signed32(65536 / n * c * (i - 1));
            const Number whole = fallen >= 0 ? fallen / 65536 : -((-fallen + 65535) / 65536);
            return std::min<Number>(255, c - whole + old);
        };
        const Point at = points[static_cast<std::size_t>(i)];
        if (at.x < 0 || at.x >= width || at.y < 0 || at.y >= height)
            continue;
        q_ulong &d = s.at(at.x, at.y);
        d = naive::packed(channel(naive::upperHalf(colour), naive::red(d)),
                          channel(naive::green(colour), naive::green(d)), channel(naive::blue(colour), naive::blue(d)));
    }
}

void addSome(Surface &s, int x1, int y1, int x2, int y2, q_ulong colour) {
    iLineAddSome(s.pixels(), s.pitch(), x1, y1, x2, y2, colour, s.width(), s.height());
}

TEST(iLineAddSome, the_first_end_is_not_drawn_and_the_pixel_after_it_gets_the_whole_colour) {
    Surface surface(8, 3, 0xFF010203);
    Surface expected = surface;
    const q_ulong gains[] = {0x804020, 0x603018, 0x402010, 0x201008};
    for (int i = 0; i < 4; ++i)
        expected.at(2 + i, 1) = 0x010203 + gains[i];
    addSome(surface, 1, 1, 5, 1, 0x804020);
    EXPECT_EQ(surface.differenceFrom(expected), "");
}

TEST(iLineAddSome, one_step_draws_the_far_end_alone_with_the_whole_colour) {
    Surface surface(8, 8, 0);
    Surface expected = surface;
    expected.at(4, 5) = 0x123456;
    addSome(surface, 3, 4, 4, 5, 0x123456);
    EXPECT_EQ(surface.differenceFrom(expected), "");
}

TEST(iLineAddSome, ends_that_coincide_draw_nothing) {
    const Surface fresh(8, 8, 0xFF112233);
    Surface surface = fresh;
    addSome(surface, 4, 4, 4, 4, 0xFFFFFF);
    EXPECT_EQ(surface.differenceFrom(fresh), "");
}

TEST(iLineAddSome, fades_on_while_outside) {
    Surface surface(4, 1, 0);
    addSome(surface, -5, 0, 3, 0, 0x000080); // eight steps of 16, the first four at -4 to -1
    EXPECT_EQ(surface.at(0, 0), 0x40u);
    EXPECT_EQ(surface.at(3, 0), 0x10u);
    EXPECT_EQ(surface.at(-1, 0), 0u);
}

TEST(iLineAddSome, old_red_is_a_byte_and_the_colours_red_its_upper_half) {
    Surface surface(4, 1, 0xFF100000);
    addSome(surface, 0, 0, 1, 0, 0x00200000);
    EXPECT_EQ(surface.at(1, 0), 0x00300000u);
    addSome(surface, 1, 0, 2, 0, 0x01000000);
    EXPECT_EQ(surface.at(2, 0), 0x00FF0000u);
}

TEST(iLineAddSome, the_accumulator_is_signed) {
    // Of 0xFFFF in 512 steps of 128 / 65536 each, 128 are left at the end; but beyond 2^31 the fall turns negative.
    Surface surface(520, 1, 0);
    addSome(surface, 0, 0, 512, 0, 0xFFFF0000);
    EXPECT_EQ(surface.at(512, 0), 0x00FF0000u);
}

TEST(iLineAddSome, every_line_over_and_beyond_a_small_surface_stays_inside) {
    test::Random random(2);
    const Surface fresh = Surface::randomOfSize(random, 6, 5);
    for (int y1 = -6; y1 <= 10; y1 += 2)
        for (int x1 = -6; x1 <= 12; x1 += 2)
            for (int y2 = -6; y2 <= 10; ++y2)
                for (int x2 = -6; x2 <= 12; ++x2)
                    for (const int width : {6, 3, 0, -2}) {
                        Surface surface = fresh;
                        Surface expected = fresh;
                        naiveAddSome(expected, x1, y1, x2, y2, 0x80FF40, width, 5);
                        iLineAddSome(surface.pixels(), surface.pitch(), x1, y1, x2, y2, 0x80FF40, width, 5);
                        ASSERT_TRUE(surface == expected) << x1 << ", " << y1 << " to " << x2 << ", " << y2 << ": "
                                                         << surface.differenceFrom(expected);
                    }
}

TEST(iLineAddSome, agrees_with_a_naive_line) {
    forEachCase("iLineAddSome", [](Case &c) {
        Surface surface = Surface::random(c.random);
        const auto coordinate = [&] { return c.random.between(-20, 36); };
        const int x1 = coordinate();
        const int y1 = coordinate();
        const int x2 = coordinate();
        const int y2 = coordinate();
        const q_ulong colour = c.random.pixel();
        const int width = c.random.between(-1, surface.width());
        const int height = c.random.between(-1, surface.height());
        Surface expected = surface;
        naiveAddSome(expected, x1, y1, x2, y2, colour, width, height);
        iLineAddSome(surface.pixels(), surface.pitch(), x1, y1, x2, y2, colour, width, height);
        c.expectEqual(surface, expected);
    });
}

} // namespace
