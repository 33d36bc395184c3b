#include "support/surface.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>

namespace {

using test::Surface;

struct Corner {
    int x;
    int y;
};

using Quad = std::array<Corner, 4>;

/// The corners of an upright rectangle, from the top left clockwise.
Quad upright(int left, int top, int right, int bottom) {
    return {{{left, top}, {right, top}, {right, bottom}, {left, bottom}}};
}

/// The same figure with another corner first.
Quad cycled(const Quad &quad, std::size_t first) {
    return {{quad[first & 3], quad[(first + 1) & 3], quad[(first + 2) & 3], quad[(first + 3) & 3]}};
}

void drawBilinear(Surface &dst, Surface &src, int width, int height, const Quad &p) {
    iBilinearMapping(dst.pixels(), src.pixels(), dst.pitch(), width, height, p[0].x, p[1].x, p[2].x, p[3].x, p[0].y,
                     p[1].y, p[2].y, p[3].y);
}

void drawPseudo(Surface &dst, Surface &src, Surface &scratch, int width, int height, q_ulong fill, const Quad &p) {
    iPsudoBilinearMapping(dst.pixels(), src.pixels(), scratch.pixels(), dst.pitch(), width, height, fill, p[0].x,
                          p[1].x, p[2].x, p[3].x, p[0].y, p[1].y, p[2].y, p[3].y);
}

void drawAffine(Surface &dst, Surface &src, tagRECT srcRect, tagRECT clip, const Quad &p, int add = 0,
                int scale = 256) {
    iAffineMapping(dst.pixels(), src.pixels(), dst.pitch(), &srcRect, &clip, p[0].x, p[1].x, p[2].x, p[3].x, p[0].y,
                   p[1].y, p[2].y, p[3].y, add, scale);
}

constexpr q_ulong untouched = 0x11111111;

Surface placesOf(int width, int height) {
    Surface surface(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            surface.at(x, y) = 0x01000000 | static_cast<q_ulong>(y << 8 | x);
    return surface;
}

q_ulong place(int x, int y) {
    return 0x01000000 | static_cast<q_ulong>(y << 8 | x);
}

TEST(iBilinearMapping, corners_on_the_frame_reproduce_the_source) {
    // s and t come out a ten-thousandth or so low, which the half that is added hides, and rounding up reaches beyond
    // the last column and row for none of the pixels.
    Surface src = placesOf(16, 12);
    Surface dst(16, 12, untouched);
    drawBilinear(dst, src, 16, 12, upright(0, 0, 16, 12));
    Surface expected(16, 12, untouched);
    for (int y = 0; y < 12; ++y)
        for (int x = 0; x < 16; ++x)
            expected.at(x, y) = place(x, y);
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

TEST(iBilinearMapping, pixels_outside_the_figure_become_0) {
    Surface src(16, 12, 0xFF010203);
    Surface dst(16, 12, untouched);
    drawBilinear(dst, src, 16, 12, upright(5, 3, 11, 9));
    for (int y = 0; y < 12; ++y)
        for (int x = 0; x < 16; ++x) {
            // A column of the figure is 16 / 6 source columns, so that the half added is less than its width.
            if (x < 4 || x > 11 || y < 2 || y > 9) {
                EXPECT_EQ(dst.at(x, y), 0u) << x << ", " << y;
            }
            if (x > 5 && x < 11 && y > 3 && y < 9) {
                EXPECT_EQ(dst.at(x, y), 0xFF010203u) << x << ", " << y;
            }
        }
    drawBilinear(dst, src, 16, 12, upright(50, 30, 60, 40));
    Surface cleared(16, 12, untouched);
    for (int y = 0; y < 12; ++y)
        for (int x = 0; x < 16; ++x)
            cleared.at(x, y) = 0;
    EXPECT_EQ(dst.differenceFrom(cleared), "") << "wholly outside";
}

TEST(iBilinearMapping, turned_corners_turn_the_image) {
    Surface src = placesOf(12, 12);
    const Quad frame = upright(0, 0, 12, 12);
    for (std::size_t first = 0; first < 4; ++first) {
        Surface dst(12, 12, untouched);
        drawBilinear(dst, src, 12, 12, cycled(frame, first));
        const q_ulong expected[4] = {place(3, 5), place(5, 9), place(9, 7), place(7, 3)};
        // A corner further each time: the image's top lies right, at the bottom, left. A tie of the half that is added
        // may fall to either side.
        const q_ulong seen = dst.at(3, 5);
        EXPECT_NEAR(static_cast<int>(seen & 0xFF), static_cast<int>(expected[first] & 0xFF), 1);
        EXPECT_NEAR(static_cast<int>(seen >> 8 & 0xFF), static_cast<int>(expected[first] >> 8 & 0xFF), 1);
    }
}

TEST(iBilinearMapping, writes_the_whole_frame_and_nothing_beside_it) {
    Surface src(16, 13);
    for (int height = 0; height <= 13; ++height)
        for (int width = 0; width <= 16; ++width) {
            Surface dst(16, 13, untouched);
            drawBilinear(dst, src, width, height, upright(1, 1, 9, 8));
            drawBilinear(dst, src, width, height, {{{3, 3}, {3, 3}, {3, 3}, {3, 3}}});
            Surface expected(16, 13, untouched);
            for (int y = 0; y < height; ++y)
                for (int x = 0; x < width; ++x)
                    expected.at(x, y) = 0;
            ASSERT_EQ(dst.differenceFrom(expected), "");
        }
}

TEST(iPsudoBilinearMapping, shows_the_source_in_each_of_the_four_orientations) {
    Surface src = placesOf(8, 6);
    const Quad frame = upright(0, 0, 8, 6);
    for (std::size_t first = 0; first < 4; ++first) {
        const Quad quad = cycled(frame, first);
        Surface dst(8, 6, untouched);
        Surface scratch(8, 6, 0x22222222);
        drawPseudo(dst, src, scratch, 8, 6, 0x33333333, quad);
        Surface expected(8, 6, untouched);
        for (int y = 0; y < 6; ++y)
            for (int x = 0; x < 8; ++x) {
                const q_ulong turned[4] = {place(x, y), place(y * 8 / 6, 5 - x * 6 / 8), place(7 - x, 5 - y),
                                           place(7 - y * 8 / 6, x * 6 / 8)};
                expected.at(x, y) = turned[first];
            }
        EXPECT_EQ(dst.differenceFrom(expected), "") << "corner " << first << " at the top left";
    }
}

TEST(iPsudoBilinearMapping, leaves_the_fill_colour_outside_the_figure) {
    Surface src = placesOf(8, 6);
    Surface dst(8, 6, untouched);
    Surface scratch(8, 6, 0x22222222);
    drawPseudo(dst, src, scratch, 8, 6, 0xFF333333, upright(2, 1, 6, 4));
    // The left end of a row, a hair below 2, is truncated to 1: the step is 8 source columns over 5, -52428.
    Surface expected(8, 6, untouched);
    for (int y = 0; y < 6; ++y)
        for (int x = 0; x < 8; ++x)
            expected.at(x, y) =
                x >= 2 && x < 6 && y >= 1 && y < 4 ? place((x - 1) * 52428 >> 15, (y - 1) * 2) : 0xFF333333;
    EXPECT_EQ(dst.differenceFrom(expected), "");

    drawPseudo(dst, src, scratch, 8, 6, 0xFF333333, upright(200, 1, 206, 4));
    drawPseudo(dst, src, scratch, 8, 6, 0xFF333333, upright(2, 100, 6, 104));
    drawPseudo(dst, src, scratch, 8, 6, 0xFF333333, upright(3, 0, 3, 6));
    for (int y = 0; y < 6; ++y)
        for (int x = 0; x < 8; ++x)
            expected.at(x, y) = 0xFF333333;
    EXPECT_EQ(dst.differenceFrom(expected), "") << "wholly outside, and without width";
}

TEST(iPsudoBilinearMapping, a_figure_beyond_column_1024_is_drawn_from_there) {
    Surface src(1100, 2, 7);
    Surface dst(1100, 2, untouched);
    Surface scratch(1100, 2, 0x22222222);
    drawPseudo(dst, src, scratch, 1100, 2, 5, upright(1040, 0, 1090, 2));
    EXPECT_EQ(dst.at(1023, 0), 5u);
    EXPECT_EQ(dst.at(1024, 0), 0x22222222u) << "what the scratch surface held";
    EXPECT_EQ(dst.at(1038, 1), 0x22222222u);
    EXPECT_EQ(dst.at(1040, 1), 7u);
    EXPECT_EQ(dst.at(1089, 1), 7u);
    EXPECT_EQ(dst.at(1090, 1), 5u);
}

TEST(iPsudoBilinearMapping, a_figure_as_high_as_the_numbers_reads_nothing_beside_the_scratch_surface) {
    Surface src = placesOf(8, 6);
    Surface dst(8, 6, untouched);
    Surface scratch(8, 6, 0x22222222);
    drawPseudo(dst, src, scratch, 8, 6, 5, upright(0, INT_MIN, 8, INT_MAX));
    for (int y = 0; y < 6; ++y)
        for (int x = 0; x < 8; ++x)
            EXPECT_EQ(dst.at(x, y), scratch.at(x, 0)) << "a step of 0 stays on the first row";
}

TEST(iAffineMapping, other_figures_draw_nothing) {
    Surface src(8, 8, 0x00FFFFFF);
    Surface dst(8, 8, untouched);
    const tagRECT all = dst.rect();
    drawAffine(dst, src, all, all, {{{0, 0}, {8, 1}, {7, 8}, {0, 8}}});
    drawAffine(dst, src, all, all, {{{0, 0}, {8, 0}, {8, 7}, {1, 8}}});
    drawAffine(dst, src, all, all, {{{0, 0}, {7, 1}, {8, 8}, {0, 8}}});
    drawAffine(dst, src, all, all, {{{0, 4}, {8, 4}, {8, 4}, {0, 4}}}); // a line
    drawAffine(dst, src, all, all, {{{4, 0}, {4, 2}, {4, 6}, {4, 8}}}); // another
    drawAffine(dst, src, all, all, {{{4, 8}, {4, 2}, {4, 6}, {4, 0}}});
    drawAffine(dst, src, all, all, {{{8, 0}, {0, 2}, {0, 6}, {8, 8}}}); // corner 0 right of 1, corner 3 below 0
    drawAffine(dst, src, all, all, {{{8, 4}, {0, 2}, {0, 6}, {8, 4}}});
    EXPECT_EQ(dst.differenceFrom(Surface(8, 8, untouched)), "");
}

TEST(iAffineMapping, copies_colours_and_clears_the_top_byte) {
    Surface src(8, 8);
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x)
            src.at(x, y) = static_cast<q_ulong>(x * 0x202020 + y);
    Surface dst(8, 8, untouched);
    drawAffine(dst, src, src.rect(), dst.rect(), upright(0, 0, 8, 8));
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x)
            EXPECT_EQ(dst.at(x, y), src.at(x, y));
}

TEST(iAffineMapping, brightness_caps_at_both_ends_and_lets_the_top_byte_into_red) {
    const auto shown = [](q_ulong pixel, int add, int scale) {
        Surface src(1, 1, pixel);
        Surface dst(1, 1, untouched);
        drawAffine(dst, src, src.rect(), dst.rect(), upright(0, 0, 1, 1), add, scale);
        return dst.at(0, 0);
    };
    EXPECT_EQ(shown(0x123456, 0, 256), 0x123456u);
    EXPECT_EQ(shown(0x123456, 255, 256), 0xFFFFFFu);
    EXPECT_EQ(shown(0, 255, 0), 0xFFFFFFu);
    EXPECT_EQ(shown(0x8040FF, 0, 128), 0x40207Fu);
    EXPECT_EQ(shown(0x804020, 16, 512), 0xFF9050u);
    EXPECT_EQ(shown(0x804020, -0x40, 256), 0x4000FFu) << "blue falls below 0";
    EXPECT_EQ(shown(0x01004020, 0, 256), 0xFF4020u);
    EXPECT_EQ(shown(0x01004020, 0, 64), 0x401008u);
}

TEST(iAffineMapping, with_corner_3_above_corner_0_the_image_is_upside_down) {
    Surface src = placesOf(8, 8);
    Surface dst(8, 8, untouched);
    drawAffine(dst, src, src.rect(), dst.rect(), {{{0, 8}, {8, 8}, {8, 0}, {0, 0}}});
    // From row 7 toward row 0, which is not reached: 7 - 7 * t / 8.
    constexpr int rows[8] = {7, 7, 6, 5, 4, 3, 2, 1};
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x)
            EXPECT_EQ(dst.at(x, y) & 0xFFFF, place(x, rows[y]) & 0xFFFF);
}

TEST(iAffineMapping, a_trapezoid_between_verticals_exchanges_the_axes) {
    Surface src = placesOf(8, 8);
    Surface dst(8, 8, untouched);
    // Heights from 8 to 4: at column x the face runs from x / 4 to 8 - x / 4. Steps are truncated at 18 bits.
    drawAffine(dst, src, src.rect(), dst.rect(), {{{0, 0}, {8, 2}, {8, 6}, {0, 8}}});
    for (int x = 0; x < 8; ++x) {
        const int top = x / 4;
        const int bottom = 8 - x / 4;
        for (int y = 0; y < 8; ++y) {
            const q_ulong expected =
                y < top || y >= bottom ? untouched : place(x, (y - top) * ((8 << 18) / (bottom - top)) >> 18) & 0xFFFF;
            EXPECT_EQ(y < top || y >= bottom ? dst.at(x, y) : dst.at(x, y) & 0xFFFF, expected) << x << ", " << y;
        }
    }
}

TEST(iAffineMapping, mirrored_between_verticals_looks_at_the_rows_and_not_at_the_columns) {
    // Corner 0 to the right of corner 1: drawn only if corner 3 is above corner 0, so a figure crossed over.
    Surface src = placesOf(8, 8);
    Surface dst(8, 8, untouched);
    drawAffine(dst, src, src.rect(), dst.rect(), {{{8, 8}, {0, 0}, {0, 8}, {8, 0}}});
    for (int x = 0; x < 8; ++x) {
        const int top = x;
        const int bottom = 8 - x;
        const int column = 7 - 7 * x / 8;
        for (int y = 0; y < 8; ++y) {
            if (y < top || y >= bottom) {
                EXPECT_EQ(dst.at(x, y), untouched);
            } else {
                EXPECT_EQ(dst.at(x, y) & 0xFFFF,
                          place(column, (y - top) * ((8 << 18) / (bottom - top)) >> 18) & 0xFFFF);
            }
        }
    }
}

TEST(iAffineMapping, the_first_source_line_counts_twice) {
    Surface src = placesOf(12, 12);
    Surface dst(12, 12, untouched);
    drawAffine(dst, src, {1, 2, 5, 6}, dst.rect(), upright(0, 0, 4, 4));
    for (int y = 0; y < 4; ++y)
        EXPECT_EQ(dst.at(3, y) & 0xFFFF, place(4, 2 + 2 + y) & 0xFFFF);
    drawAffine(dst, src, {1, 2, 5, 6}, dst.rect(), {{{0, 0}, {4, 0}, {4, 4}, {0, 5}}}); // between verticals
    for (int x = 0; x < 4; ++x)
        EXPECT_EQ(dst.at(x, 0) & 0xFFFF, place(1 + 1 + x, 2) & 0xFFFF);
}

TEST(iAffineMapping, a_figure_as_wide_as_the_numbers_shows_its_source_and_nothing_beside_it) {
    Surface src = placesOf(8, 8);
    const Surface before(8, 8, untouched);
    for (const Quad &quad : {Quad{{{INT_MIN, 0}, {INT_MAX, 0}, {INT_MAX, 8}, {INT_MIN, 8}}},
                             Quad{{{0, INT_MIN}, {8, INT_MIN + 1}, {8, INT_MAX}, {0, INT_MAX}}}}) {
        Surface dst = before;
        drawAffine(dst, src, src.rect(), dst.rect(), quad);
        for (int i = 0; i < 8; ++i)
            EXPECT_EQ((quad[0].y == 0 ? dst.at(i, 5) : dst.at(5, i)) & 0xFFFF,
                      (quad[0].y == 0 ? place(0, 5) : place(5, 0)) & 0xFFFF)
                << "a step of 0 stays on the first source pixel";
    }
}

} // namespace
