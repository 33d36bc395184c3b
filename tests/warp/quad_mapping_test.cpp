#include "plain/figures.h"
#include "support/painting.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

namespace {

using namespace test;

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

Surface bilinear(Surface &src, const Quad &p) {
    Surface dst = blank(src.width(), src.height());
    iBilinearMapping(dst.pixels(), src.pixels(), dst.pitch(), src.width(), src.height(), p[0].x, p[1].x, p[2].x, p[3].x,
                     p[0].y, p[1].y, p[2].y, p[3].y);
    return dst;
}

constexpr q_ulong fill = 0x33333333;
constexpr q_ulong scratched = 0x22222222;

Surface pseudo(Surface &src, const Quad &p) {
    Surface dst = blank(src.width(), src.height());
    Surface scratch(src.width(), src.height(), scratched);
    iPsudoBilinearMapping(dst.pixels(), src.pixels(), scratch.pixels(), dst.pitch(), src.width(), src.height(), fill,
                          p[0].x, p[1].x, p[2].x, p[3].x, p[0].y, p[1].y, p[2].y, p[3].y);
    return dst;
}

/// Draws a part of `src`, or all of it, over nothing.
Surface affine(Surface &src, const Quad &p, tagRECT part = {0, 0, -1, -1}, int add = 0, int scale = 256) {
    Surface dst = blank(src.width(), src.height());
    tagRECT clip = dst.rect();
    if (part.right < 0)
        part = src.rect();
    iAffineMapping(dst.pixels(), src.pixels(), dst.pitch(), &part, &clip, p[0].x, p[1].x, p[2].x, p[3].x, p[0].y,
                   p[1].y, p[2].y, p[3].y, add, scale);
    return dst;
}

/// A place as the affine mapping shows it: its top byte has run red full and is gone.
q_ulong brightPlace(int x, int y) {
    return 0xFF0000 | (place(x, y) & 0xFFFF);
}

TEST(iBilinearMapping, corners_on_the_frame_reproduce_the_source) {
    // s and t come out a ten-thousandth or so low, which the half that is added hides, and rounding up reaches beyond
    // the last column and row for none of the pixels.
    Surface src = placesOf(16, 12);
    EXPECT_EQ(bilinear(src, upright(0, 0, 16, 12)).differenceFrom(painted(blank(16, 12), src.rect(), place)), "");
}

TEST(iBilinearMapping, pixels_outside_the_figure_become_0) {
    Surface src(16, 12, 0xFF010203);
    const Surface dst = bilinear(src, upright(5, 3, 11, 9));
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
    const Surface cleared = painted(blank(16, 12), src.rect(), 0);
    EXPECT_EQ(bilinear(src, upright(50, 30, 60, 40)).differenceFrom(cleared), "") << "wholly outside";
}

TEST(iBilinearMapping, figures_of_some_size_show_what_full_width_makes_of_them) {
    // Where the figure is the half, the double or four times the picture, many positions lie on the edge between two
    // pixels but for the ten-thousandth that is added.
    constexpr int width = 150, height = 110;
    Surface src = placesOf(width, height);
    std::vector<Quad> quads;
    for (const int eighths : {4, 8, 16, 32}) {
        for (std::size_t first = 0; first < 4; ++first)
            quads.push_back(cycled(upright(0, 0, width * eighths / 8, height * eighths / 8), first));
        quads.push_back({{{20, 30}, {20 + 10 * eighths, 35}, {30 + 10 * eighths, 90}, {30, 85}}}); // a parallelogram
        quads.push_back({{{10 * eighths, 0}, {width, 10}, {width - 10 * eighths, height}, {-5, 60}}});
        quads.push_back({{{0, 0}, {width, height}, {width, 0}, {10 * eighths, height}}});      // crossed
        quads.push_back({{{5, 5}, {5, 5}, {90, 80 - eighths}, {10, 100}}});                    // a triangle
        quads.push_back({{{0, 20000}, {width, -eighths}, {20000, height}, {-20000, -20000}}}); // far outside
    }
    for (const Quad &p : quads) {
        Surface expected = blank(width, height);
        plain::iBilinearMapping(expected.pixels(), src.pixels(), expected.pitch(), width, height, p[0].x, p[1].x,
                                p[2].x, p[3].x, p[0].y, p[1].y, p[2].y, p[3].y);
        ASSERT_EQ(bilinear(src, p).differenceFrom(expected), "")
            << p[0].x << ", " << p[0].y << " to " << p[2].x << ", " << p[2].y;
    }
}

TEST(iBilinearMapping, wide_pictures_are_mapped_along_their_whole_rows) {
    Surface src =
        painted(Surface(1100, 3), {0, 0, 1100, 3}, [](int x, int y) { return static_cast<q_ulong>(x << 4 | y); });
    EXPECT_EQ(bilinear(src, upright(0, 0, 1100, 3))
                  .differenceFrom(painted(blank(1100, 3), src.rect(), [&](int x, int y) { return src.at(x, y); })),
              "");
}

TEST(iBilinearMapping, a_diamond_shows_the_first_pixel_everywhere) {
    // Both sides lean alike, so that s is divided by exactly 0; what it gives is no number, which truncates to 0.
    Surface src = placesOf(16, 16);
    const Surface expected = painted(blank(16, 16), src.rect(), src.at(0, 0));
    EXPECT_EQ(bilinear(src, {{{8, 0}, {16, 8}, {8, 16}, {0, 8}}}).differenceFrom(expected), "");
}

TEST(iBilinearMapping, turned_corners_turn_the_image) {
    // A corner further each time: the image's top lies right, at the bottom, left. A tie of the half that is added may
    // fall to either side.
    Surface src = placesOf(12, 12);
    constexpr int seen[4][2] = {{3, 5}, {5, 9}, {9, 7}, {7, 3}};
    for (std::size_t first = 0; first < 4; ++first) {
        const q_ulong pixel = bilinear(src, cycled(upright(0, 0, 12, 12), first)).at(3, 5);
        EXPECT_NEAR(static_cast<int>(pixel & 0xFF), seen[first][0], 1) << first;
        EXPECT_NEAR(static_cast<int>(pixel >> 8 & 0xFF), seen[first][1], 1) << first;
    }
}

TEST(iPsudoBilinearMapping, shows_the_source_in_each_of_the_four_orientations) {
    Surface src = placesOf(8, 6);
    for (std::size_t first = 0; first < 4; ++first) {
        const Surface expected = painted(blank(8, 6), src.rect(), [first](int x, int y) {
            const q_ulong turned[4] = {place(x, y), place(y * 8 / 6, 5 - x * 6 / 8), place(7 - x, 5 - y),
                                       place(7 - y * 8 / 6, x * 6 / 8)};
            return turned[first];
        });
        EXPECT_EQ(pseudo(src, cycled(upright(0, 0, 8, 6), first)).differenceFrom(expected), "")
            << "corner " << first << " at the top left";
    }
}

TEST(iPsudoBilinearMapping, leaves_the_fill_colour_outside_the_figure) {
    Surface src = placesOf(8, 6);
    const Surface filled = painted(blank(8, 6), src.rect(), fill);
    // The left end of a row, a hair below 2, is truncated to 1: the step is 8 source columns over 5, -52428.
    const Surface expected =
        painted(filled, {2, 1, 6, 4}, [](int x, int y) { return place((x - 1) * 52428 >> 15, (y - 1) * 2); });
    EXPECT_EQ(pseudo(src, upright(2, 1, 6, 4)).differenceFrom(expected), "");
    for (const Quad &outside : {upright(200, 1, 206, 4), upright(2, 100, 6, 104), upright(3, 0, 3, 6)})
        EXPECT_EQ(pseudo(src, outside).differenceFrom(filled), "");
}

TEST(iPsudoBilinearMapping, a_figure_beyond_column_1024_is_drawn_from_there) {
    Surface src(1100, 2, 7);
    const Surface dst = pseudo(src, upright(1040, 0, 1090, 2));
    EXPECT_EQ(dst.at(1023, 0), fill);
    EXPECT_EQ(dst.at(1024, 0), scratched);
    EXPECT_EQ(dst.at(1038, 1), scratched);
    EXPECT_EQ(dst.at(1040, 1), 7u);
    EXPECT_EQ(dst.at(1089, 1), 7u);
    EXPECT_EQ(dst.at(1090, 1), fill);
}

TEST(iPsudoBilinearMapping, a_figure_as_high_as_the_numbers_reads_nothing_beside_the_scratch_surface) {
    Surface src = placesOf(8, 6);
    const Surface dst = pseudo(src, upright(0, leastInt, 8, greatestInt));
    EXPECT_EQ(dst.at(3, 0), place(3, 0));
    for (int y = 1; y < 6; ++y)
        for (int x = 0; x < 8; ++x)
            EXPECT_EQ(dst.at(x, y), dst.at(x, 0)) << "a step of 0 stays on the first row";
}

TEST(iAffineMapping, other_figures_draw_nothing) {
    Surface src(8, 8, 0x00FFFFFF);
    const Quad others[] = {
        {{{0, 0}, {8, 1}, {7, 8}, {0, 8}}}, {{{0, 0}, {8, 0}, {8, 7}, {1, 8}}},
        {{{0, 0}, {7, 1}, {8, 8}, {0, 8}}}, {{{0, 4}, {8, 4}, {8, 4}, {0, 4}}}, // a line
        {{{4, 0}, {4, 2}, {4, 6}, {4, 8}}},                                     // another
        {{{4, 8}, {4, 2}, {4, 6}, {4, 0}}}, {{{8, 0}, {0, 2}, {0, 6}, {8, 8}}}, // corner 0 right of 1, corner 3 below 0
        {{{8, 4}, {0, 2}, {0, 6}, {8, 4}}}};
    for (const Quad &quad : others)
        EXPECT_EQ(affine(src, quad).differenceFrom(blank(8, 8)), "");
}

TEST(iAffineMapping, brightness_caps_at_both_ends_and_lets_the_top_byte_into_red) {
    const auto shown = [](q_ulong pixel, int add, int scale) {
        Surface src(1, 1, pixel);
        return affine(src, upright(0, 0, 1, 1), {0, 0, 1, 1}, add, scale).at(0, 0);
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
    // From row 7 toward row 0, which is not reached: 7 - 7 * t / 8.
    Surface src = placesOf(8, 8);
    constexpr int rows[8] = {7, 7, 6, 5, 4, 3, 2, 1};
    const Surface expected = painted(blank(8, 8), src.rect(), [&](int x, int y) { return brightPlace(x, rows[y]); });
    EXPECT_EQ(affine(src, {{{0, 8}, {8, 8}, {8, 0}, {0, 0}}}).differenceFrom(expected), "");
}

/// Columns that run from `topOf(x)` to as far from the bottom, each showing a source column; steps have 18 bits.
template <class TopOf, class ColumnOf>
Surface shownColumns(TopOf topOf, ColumnOf columnOf) {
    return painted(blank(8, 8), {0, 0, 8, 8}, [&](int x, int y) {
        const int top = topOf(x);
        const int bottom = 8 - top;
        return y < top || y >= bottom ? untouched
                                      : brightPlace(columnOf(x), (y - top) * ((8 << 18) / (bottom - top)) >> 18);
    });
}

TEST(iAffineMapping, a_trapezoid_between_verticals_exchanges_the_axes) {
    // Heights from 8 to 4: at column x the face runs from x / 4 to 8 - x / 4.
    Surface src = placesOf(8, 8);
    const Surface expected = shownColumns([](int x) { return x / 4; }, [](int x) { return x; });
    EXPECT_EQ(affine(src, {{{0, 0}, {8, 2}, {8, 6}, {0, 8}}}).differenceFrom(expected), "");
}

TEST(iAffineMapping, mirrored_between_verticals_looks_at_the_rows_and_not_at_the_columns) {
    // Corner 0 to the right of corner 1: drawn only if corner 3 is above corner 0, so a figure crossed over.
    Surface src = placesOf(8, 8);
    const Surface expected = shownColumns([](int x) { return x; }, [](int x) { return 7 - 7 * x / 8; });
    EXPECT_EQ(affine(src, {{{8, 8}, {0, 0}, {0, 8}, {8, 0}}}).differenceFrom(expected), "");
}

TEST(iAffineMapping, the_first_source_line_counts_twice) {
    Surface src = placesOf(12, 12);
    const Surface rows = affine(src, upright(0, 0, 4, 4), {1, 2, 5, 6});
    const Surface columns = affine(src, {{{0, 0}, {4, 0}, {4, 4}, {0, 5}}}, {1, 2, 5, 6}); // between verticals
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(rows.at(3, i), brightPlace(4, 2 + 2 + i));
        EXPECT_EQ(columns.at(i, 0), brightPlace(1 + 1 + i, 2));
    }
}

TEST(iAffineMapping, a_figure_as_wide_as_the_numbers_shows_its_source_and_nothing_beside_it) {
    Surface src = placesOf(8, 8);
    const Surface wide = affine(src, {{{leastInt, 0}, {greatestInt, 0}, {greatestInt, 8}, {leastInt, 8}}});
    const Surface high = affine(src, {{{0, leastInt}, {8, leastInt + 1}, {8, greatestInt}, {0, greatestInt}}});
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(wide.at(i, 5), brightPlace(0, 5)) << "a step of 0 stays on the first source pixel";
        EXPECT_EQ(high.at(5, i), brightPlace(5, 0));
    }
}

} // namespace
