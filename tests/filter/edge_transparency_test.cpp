#include "plain/edge_transparency.h"
#include "support/painting.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <utility>

namespace {

using test::another;
using test::blank;
using test::painted;
using test::Surface;
using test::untouched;

constexpr int lowest = std::numeric_limits<int>::min();
constexpr int highest = std::numeric_limits<int>::max();

struct Edge {
    tagPOINT p1;
    tagPOINT p2;
    int edgeWidth;
    tagRECT clip;
    int swapImages = 0;
};

Surface mixed(Surface out, Surface imageA, Surface imageB, Edge edge,
              decltype(Edge_Transparency) *mix = Edge_Transparency) {
    mix(out.pixels(), imageA.pixels(), imageB.pixels(), &edge.p1, &edge.p2, edge.edgeWidth, out.pitch(), 12345, -1,
        edge.swapImages, &edge.clip);
    return out;
}

/// With a black `imageA` and a white `imageB` the result is grey by the mix alone.
Surface greys(int width, int height, const Edge &edge) {
    return mixed(blank(width, height), Surface(width, height), Surface(width, height, 0xFFFFFF), edge);
}
q_ulong grey(int t) {
    return static_cast<q_ulong>(255 * t / 4096) * 0x10101;
}

TEST(Edge_Transparency, a_horizontal_edge_fades_from_low_to_high_on_the_way_down) {
    // Half the width on either side of row 5; the last point's column is drawn, the row of the far end is not.
    const Surface expected = painted(blank(6, 12), {1, 1, 5, 9}, [](int, int y) { return grey((y - 1) * 512); });
    EXPECT_EQ(greys(6, 12, {{1, 5}, {4, 5}, 8, {0, 0, 6, 12}}).differenceFrom(expected), "");
}

TEST(Edge_Transparency, a_vertical_edge_fades_from_low_to_high_on_the_way_right) {
    // The last point's row is not drawn, the column of the far end is, all high.
    const Surface expected = painted(blank(12, 6), {1, 1, 10, 4}, [](int x, int) { return grey((x - 1) * 512); });
    EXPECT_EQ(greys(12, 6, {{5, 1}, {5, 4}, 8, {0, 0, 12, 6}}).differenceFrom(expected), "");
}

TEST(Edge_Transparency, exactly_45_degrees_is_walked_by_columns) {
    // Half of 2 over the cosine is 2.8, a band of 2: four rows in each of five columns.
    const Surface expected = painted(blank(12, 12), {3, 0, 8, 12}, [](int x, int y) {
        const int i = y - x + 2;
        return i >= 0 && i < 4 ? grey(i * 1024) : untouched;
    });
    EXPECT_EQ(greys(12, 12, {{3, 3}, {7, 7}, 4, {0, 0, 12, 12}}).differenceFrom(expected), "");
}

TEST(Edge_Transparency, from_46_degrees_on_the_walk_is_by_rows) {
    // A rise of 103 over 100 is 45.8 degrees, one of 104 is 46.1. Only the walk by columns draws the last point's
    // column; only the walk by rows leaves out its row.
    for (const int rise : {103, 104}) {
        const Surface out = greys(130, 130, {{10, 10}, {110, 10 + rise}, 10, {0, 0, 130, 130}});
        EXPECT_EQ(out.at(110, 10 + rise) == untouched, rise == 104);
        EXPECT_NE(out.at(109, 9 + rise), untouched);
    }
}

TEST(Edge_Transparency, a_3_4_5_direction_has_a_band_of_five_quarters_of_half_the_width) {
    // Flat: 4 columns for 3 rows, half the width 8 over 0.8 is 10 rows above and below.
    const auto ramp = [](int along, int across, int beyond) {
        const int start = 20 + (along - 10) * 3 / 4 - 10;
        const bool isInside = across >= start && across < start + 20 + beyond;
        return isInside ? grey((across - start) * (16777216 / 20) / 4096) : untouched;
    };
    const Surface flat = painted(blank(60, 60), {10, 0, 51, 59}, [&](int x, int y) { return ramp(x, y, 0); });
    EXPECT_EQ(greys(60, 60, {{10, 20}, {50, 50}, 16, {0, 0, 60, 60}}).differenceFrom(flat), "");
    // Steep: the same turned over its diagonal, with the other walk's ends.
    const Surface steep = painted(blank(60, 60), {0, 10, 60, 50}, [&](int x, int y) { return ramp(y, x, 1); });
    EXPECT_EQ(greys(60, 60, {{20, 10}, {50, 50}, 16, {0, 0, 60, 60}}).differenceFrom(steep), "");
}

TEST(Edge_Transparency, a_falling_line_rounds_its_start_downward) {
    // From (0, 10) to (4, 9): minus a quarter of a row for each column, shifted arithmetically.
    constexpr int starts[] = {8, 7, 7, 7, 7};
    const Surface expected = painted(blank(8, 16), {0, 0, 5, 16}, [&](int x, int y) {
        return y >= starts[x] && y < starts[x] + 4 ? grey((y - starts[x]) * 1024) : untouched;
    });
    EXPECT_EQ(greys(8, 16, {{0, 10}, {4, 9}, 4, {0, 0, 8, 16}}).differenceFrom(expected), "");
}

TEST(Edge_Transparency, the_order_of_the_points_turns_nothing_but_the_rounding) {
    // On multiples of the slope's denominator both orders agree.
    const auto drawn = [](tagPOINT p1, tagPOINT p2) { return greys(40, 40, {p1, p2, 6, {0, 0, 40, 40}}); };
    EXPECT_EQ(drawn({26, 20}, {10, 12}).differenceFrom(drawn({10, 12}, {26, 20})), "");
    EXPECT_EQ(drawn({26, 12}, {10, 20}).differenceFrom(drawn({10, 20}, {26, 12})), "");
    EXPECT_NE(drawn({10, 20}, {26, 12}).differenceFrom(drawn({10, 12}, {26, 20})), "");
}

TEST(Edge_Transparency, a_strip_across_the_clip_edge_keeps_its_ramp) {
    const tagRECT whole = {0, 0, 40, 40};
    for (Edge edge : {Edge{{5, 18}, {35, 25}, 20, whole}, Edge{{18, 5}, {25, 35}, 20, whole}}) {
        const Surface unclipped = greys(40, 40, edge);
        for (int cut = 0; cut < 12; ++cut) {
            edge.clip = {8 + cut, 7 + cut, 33 - cut, 34 - cut};
            const tagRECT shown = {8 + cut, 7 + cut, 33 - cut, 33 - cut}; // the clip's last row is left out
            const Surface expected = painted(blank(40, 40), shown, [&](int x, int y) { return unclipped.at(x, y); });
            EXPECT_EQ(greys(40, 40, edge).differenceFrom(expected), "") << cut;
        }
    }
}

TEST(Edge_Transparency, both_walks_draw_the_clips_last_column_and_leave_out_its_last_row) {
    const tagRECT clip = {0, 0, 10, 10};
    for (const Edge &edge : {Edge{{-20, 5}, {40, 5}, 40, clip}, Edge{{5, -20}, {5, 40}, 40, clip}})
        for (int y = 0; y < 10; ++y)
            EXPECT_EQ(drawnInRow(greys(10, 10, edge), y), y == 9 ? 0 : 10) << y;
}

TEST(Edge_Transparency, swapImages_exchanges_the_pictures) {
    test::Random random(1);
    const Surface imageA = Surface::randomOfSize(random, 20, 20);
    const Surface imageB = another(random, imageA);
    const Edge edge = {{2, 8}, {18, 12}, 10, {0, 0, 20, 20}};
    Edge swapped = edge;
    swapped.swapImages = 77;
    EXPECT_EQ(mixed(imageA, imageB, imageA, swapped).differenceFrom(mixed(imageA, imageA, imageB, edge)), "");
    const Surface out = greys(20, 20, swapped); // imageA, the black one, is now high
    EXPECT_EQ(out.at(2, 3), 0x00FFFFFFu);
    EXPECT_EQ(out.at(2, 12), grey(4096 - 3686)); // 9 of 10 rows down: t = 1677721 * 9 / 4096
}

TEST(Edge_Transparency, a_top_byte_disturbs_red) {
    const Surface out =
        mixed(blank(4, 12), Surface(4, 12, 0x01000000), Surface(4, 12), {{0, 5}, {3, 5}, 8, {0, 0, 4, 12}});
    // The top byte stands in red's word as 4096. Times the weight of low, 4096 less the mix, it spoils red, but for the
    // full weight, whose product lies above red.
    EXPECT_EQ(out.at(0, 1), 0u);
    EXPECT_EQ(out.at(0, 3), 0x00C00000u); // 3072 * 4096
    EXPECT_EQ(out.at(0, 5), 0x00800000u);
    EXPECT_EQ(out.at(0, 7), 0x00400000u);
}

TEST(Edge_Transparency, every_pair_of_bytes_at_every_step_of_two_strips) {
    constexpr int pairs = 65536;
    for (const int half : {4, 11}) {
        const tagRECT all = {0, 0, pairs, 2 * half};
        const Surface imageA = painted(Surface(pairs, 2 * half), all, [](int x, int) {
            const auto low = static_cast<q_ulong>(x & 0xFF);
            return low << 16 | (255 - low) << 8 | low;
        });
        const Surface imageB = painted(imageA, all, [](int x, int) {
            const auto high = static_cast<q_ulong>(x >> 8);
            return high << 16 | high << 8 | (255 - high);
        });
        const Surface expected = painted(imageA, all, [&](int x, int y) {
            const int t = 16777216 / (2 * half) * y / 4096;
            return plain::mix4096(imageA.at(x, y), imageB.at(x, y), t);
        });
        const Edge edge = {{0, half}, {pairs - 1, half}, 2 * half, {0, 0, pairs, 2 * half + 1}};
        EXPECT_EQ(mixed(imageA, imageA, imageB, edge).differenceFrom(expected), "");
    }
}

// Flat strips may be drawn row by row, some columns at a time, where nothing tells the order. What follows is where it
// would be told.

TEST(Edge_Transparency, overlapping_pictures_are_mixed_in_the_order_of_the_walk) {
    for (int seed = 0; seed < 6000; ++seed) {
        test::Random random(static_cast<std::uint64_t>(seed));
        const Surface before = Surface::randomOfSize(random, 40, 60);
        const auto anyOffset = [&] {
            const int x = random.between(-6, 6);
            const int y = random.between(-5, 5);
            const bool isFar = random.oneIn(2);
            return random.oneIn(4) ? 0 : x + (isFar ? y < 0 ? y - 9 : y + 9 : y) * before.pitch();
        };
        const int a = anyOffset();
        const int b = anyOffset();
        Edge edge = {{random.between(-4, 20), random.between(-4, 20)},
                     {random.between(-4, 20), random.between(-4, 20)},
                     random.between(2, 24),
                     random.rectInside(16, 16),
                     random.between(0, 1)};
        const auto drawnBy = [&](decltype(Edge_Transparency) *mix) {
            Surface sheet = before;
            q_ulong *const out = &sheet.at(12, 22);
            mix(out, out + a, out + b, &edge.p1, &edge.p2, edge.edgeWidth, sheet.pitch(), 0, 0, edge.swapImages,
                &edge.clip);
            return sheet;
        };
        ASSERT_EQ(drawnBy(Edge_Transparency).differenceFrom(drawnBy(plain::Edge_Transparency)), "") << seed;
    }
}

TEST(Edge_Transparency, on_a_pitch_below_the_width_the_last_column_wins) {
    for (int seed = 0; seed < 2000; ++seed) {
        test::Random random(static_cast<std::uint64_t>(seed));
        const Surface before = Surface::randomOfSize(random, 1, 40);
        const int width = before.pitch() + random.between(-1, 12);
        const Edge edge = {{random.between(-4, 4), random.between(0, 12)},
                           {width - random.between(-4, 4), random.between(0, 12)},
                           random.between(2, 16),
                           {0, 0, width, random.between(1, 30)}};
        const Surface imageA = another(random, before);
        const Surface imageB = another(random, before);
        ASSERT_EQ(mixed(before, imageA, imageB, edge)
                      .differenceFrom(mixed(before, imageA, imageB, edge, plain::Edge_Transparency)),
                  "")
            << seed;
    }
}

TEST(Edge_Transparency, a_strip_without_width_or_direction_draws_nothing) {
    const tagRECT clip = {0, 0, 20, 20};
    for (const int edgeWidth : {1, 0, -1, -2, -100, lowest})
        for (const tagPOINT &p2 : {tagPOINT{18, 12}, tagPOINT{12, 18}})
            EXPECT_EQ(greys(20, 20, {{8, 8}, p2, edgeWidth, clip}).differenceFrom(blank(20, 20)), "") << edgeWidth;
    EXPECT_EQ(greys(20, 20, {{8, 8}, {8, 8}, 10, clip}).differenceFrom(blank(20, 20)), "");
}

TEST(Edge_Transparency, strips_beyond_the_numbers_draw_nothing) {
    const tagRECT clip = {0, 0, 8, 8};
    const auto expectNothing = [](const Edge &edge) {
        ASSERT_EQ(greys(8, 8, edge).differenceFrom(blank(8, 8)), "") << edge.p1.x << ", " << edge.p1.y;
    };
    // The distance between the points and the clip is more than an int counts.
    expectNothing({{2000000000, 4}, {2000000010, 4}, 8, {-2000000000, 0, -1999999990, 8}});
    expectNothing({{-2000000010, 4}, {-2000000000, 4}, 8, {1999999990, 0, 2000000000, 8}});
    // The strip's width wraps to 0.
    constexpr q_long distant = 1 << 30;
    for (const int width : {2, 6}) {
        expectNothing({{0, -distant}, {1, distant}, width, clip});
        expectNothing({{-distant, 0}, {distant, 1}, width, clip});
    }
    for (int distance = 0; distance < 24; ++distance)
        for (const int end : {lowest + distance, highest - distance})
            for (const int span : {0, 3, 7}) {
                const int other = end < 0 ? end + span : end - span;
                for (const auto &[p1, p2] : {std::pair<tagPOINT, tagPOINT>{{0, end}, {7, end}},
                                             {{0, end}, {7, other}},
                                             {{end, 0}, {end, 7}},
                                             {{end, 0}, {other, 8}},
                                             {{end, end}, {other, other}}})
                    expectNothing({p1, p2, 20, clip});
            }
}

TEST(Edge_Transparency, a_line_that_ends_at_the_largest_coordinate_is_drawn_all_the_same) {
    const auto ramp = [](int across) { return grey((across - 1) * (16777216 / 6) / 4096); };
    const Surface flat = painted(blank(12, 12), {0, 1, 8, 7}, [&](int, int y) { return ramp(y); });
    EXPECT_EQ(greys(12, 12, {{0, 4}, {highest, 4}, 6, {0, 0, 8, 12}}).differenceFrom(flat), "");
    const Surface steep = painted(blank(12, 12), {1, 0, 8, 7}, [&](int x, int) { return ramp(x); });
    EXPECT_EQ(greys(12, 12, {{4, 0}, {4, highest}, 6, {0, 0, 12, 8}}).differenceFrom(steep), "");
}

/// A disc of `imageA` on `imageB`, drawn over nothing.
Surface disc(Surface imageA, Surface imageB, tagPOINT centre, int radius, int band) {
    Surface out = blank(imageA.width(), imageA.height());
    Edge_Transparency_Circle(out.pixels(), imageA.pixels(), imageB.pixels(), &centre, radius, band, out.width(),
                             out.height(), out.pitch());
    return out;
}
/// Of white, around the first pixel.
Surface whiteDisc(int width, int height, int radius, int band) {
    return disc(Surface(width, height, 0xAAFFFFFF), Surface(width, height, 0xBB000000), {0, 0}, radius, band);
}

TEST(Edge_Transparency_Circle, copies_whole_pixels_inside_and_outside_and_mixes_between) {
    // The band reaches from 3 to 7, a quarter of the mix for each pixel.
    Surface imageA(12, 1, 0x00FFFFFF);
    const Surface imageB(12, 1, 0xBB000000);
    imageA = painted(imageA, {0, 0, 4, 1}, 0xAAFFFFFF);
    const Surface out = disc(imageA, painted(imageB, {0, 0, 7, 1}, 0), {0, 0}, 5, 2);
    for (int x = 0; x <= 3; ++x)
        EXPECT_EQ(out.at(x, 0), 0xAAFFFFFFu) << x;
    EXPECT_EQ(out.at(4, 0), 0x00BFBFBFu); // t = 3072
    EXPECT_EQ(out.at(5, 0), 0x007F7F7Fu); // t = 2048
    EXPECT_EQ(out.at(6, 0), 0x003F3F3Fu); // t = 1024
    for (int x = 7; x < 12; ++x)
        EXPECT_EQ(out.at(x, 0), 0xBB000000u) << x;
}

TEST(Edge_Transparency_Circle, a_top_byte_disturbs_red) {
    const Surface out = disc(Surface(3, 1, 0x01000000), Surface(3, 1), {0, 0}, 2, 2);
    EXPECT_EQ(out.at(0, 0), 0x01000000u);
    EXPECT_EQ(out.at(1, 0), 0x00C00000u); // t = 3072, times 4096
    EXPECT_EQ(out.at(2, 0), 0x00800000u);
}

TEST(Edge_Transparency_Circle, a_band_above_the_radius_leaves_the_centre_pixel_alone_pure) {
    Surface imageA(13, 13, 0xAAFFFFFF);
    imageA.at(7, 6) = imageA.at(6, 5) = 0x00FFFFFF;
    const Surface out = disc(imageA, Surface(13, 13), {6, 6}, 2, 4);
    EXPECT_EQ(out.at(6, 6), 0xAAFFFFFFu);
    EXPECT_EQ(out.at(7, 6), 0x009F9F9Fu); // outer 6 less distance 1, times 512: t = 2560
    EXPECT_EQ(out.at(6, 5), 0x009F9F9Fu);
    EXPECT_EQ(out.at(12, 6), 0u);
}

TEST(Edge_Transparency_Circle, below_0_the_radius_leaves_the_outer_part_of_the_edge_and_at_minus_the_band_nothing) {
    const Surface white(4, 1, 0xFFFFFF);
    const Surface out = disc(white, Surface(4, 1), {0, 0}, -2, 4);
    EXPECT_EQ(out.at(0, 0), 0xFFFFFFu);
    EXPECT_EQ(out.at(1, 0), 0x1F1F1Fu); // outer 2 less distance 1, times 512
    EXPECT_EQ(out.at(2, 0), 0u);
    const Surface none = disc(white, Surface(4, 1), {0, 0}, -4, 4);
    EXPECT_EQ(none.differenceFrom(painted(blank(4, 1), white.rect(), 0)), "");
}

TEST(Edge_Transparency_Circle, a_negative_band_is_a_hard_edge_within_the_radius) {
    const Surface expected =
        painted(blank(8, 1), {0, 0, 8, 1}, [](int x, int) { return x < 4 ? 0xAAFFFFFFu : 0xBB000000u; });
    EXPECT_EQ(whiteDisc(8, 1, 6, -2).differenceFrom(expected), "");
}

TEST(Edge_Transparency_Circle, the_distance_is_truncated_before_it_weighs) {
    // The square of the distance of (1, 1) is 2, its root 1: the same mix as at (1, 0), 7 of 8 parts.
    const Surface out = disc(Surface(2, 2, 0xFFFFFF), Surface(2, 2), {0, 0}, 4, 4);
    EXPECT_EQ(out.at(1, 0), 0x00DFDFDFu);
    EXPECT_EQ(out.at(1, 1), 0x00DFDFDFu);
}

TEST(Edge_Transparency_Circle, a_radius_and_a_band_whose_sum_wraps_mix_as_far_as_its_square_reaches) {
    constexpr int most = 0x7FFFFFFF;
    for (const int outer : {-2, -3, -50}) {
        Surface white(240, 5, 0xAAFFFFFF);
        Surface black(240, 5, 0xBB000000);
        tagPOINT centre = {110, 2};
        Surface expected = blank(240, 5);
        plain::Edge_Transparency_Circle(expected.pixels(), white.pixels(), black.pixels(), &centre, most,
                                        most + outer + 2, 240, 5, expected.pitch());
        EXPECT_EQ(disc(white, black, centre, most, most + outer + 2).differenceFrom(expected), "") << outer;
    }
}

TEST(Edge_Transparency_Circle, every_pair_of_bytes_at_every_step_of_a_band) {
    for (q_ulong low = 0; low < 256; ++low)
        for (q_ulong high = 0; high < 256; ++high)
            for (int distance = 4; distance < 12; ++distance) {
                q_ulong a = high << 16 | high << 8 | (255 - high);
                q_ulong b = low << 16 | (255 - low) << 8 | low;
                q_ulong out = untouched;
                tagPOINT centre = {0, distance};
                Edge_Transparency_Circle(&out, &a, &b, &centre, 8, 4, 1, 1, 1);
                // 4 is the inner edge, where the picture is copied; from there on an eighth less for each pixel.
                ASSERT_EQ(out, distance == 4 ? a : plain::mix4096(b, a, (12 - distance) * 512));
            }
}

TEST(Edge_Transparency_Circle, a_band_of_0_draws_nothing) {
    for (const int band : {0, lowest}) // twice the latter is 0 in 32 bits
        EXPECT_EQ(whiteDisc(9, 9, 3, band).differenceFrom(blank(9, 9)), "");
}

TEST(Edge_Transparency_Circle, circles_of_every_size_agree_with_a_naive_mix_on_whichever_picture_they_are_drawn) {
    test::Random random(57);
    for (int number = 0; number < 3000; ++number) {
        const int width = random.between(1, number % 10 == 0 ? 300 : 75);
        const int height = random.between(1, 40);
        // The top bytes of all pixels the same, or each its own.
        const q_ulong mask = number % 3 == 0 ? 0xFFFFFFFF : 0xFFFFFF;
        const q_ulong top = number % 3 == 1 ? 0xFF000000 : 0;
        Surface pictures[3] = {Surface(width, height), Surface(width, height), Surface(width, height)};
        for (Surface &picture : pictures)
            for (int y = 0; y < height; ++y)
                for (int x = 0; x < width; ++x)
                    picture.at(x, y) = (random.word() & mask) | top;
        const bool isFar = number % 20 == 0;
        tagPOINT centre = {random.between(-60, width + 60), random.between(-60, height + 60)};
        if (isFar)
            centre.x = random.between(-17000, 17000);
        const int radius = isFar ? random.between(0, 17000) : random.between(0, 120);
        const int band = isFar ? random.between(1, 17000) : random.between(1, 90);
        const int drawnOn = number % 4 == 0 ? 1 : number % 4 == 1 ? 2 : 0;
        Surface expected[3] = {pictures[0], pictures[1], pictures[2]};
        plain::Edge_Transparency_Circle(expected[drawnOn].pixels(), expected[1].pixels(), expected[2].pixels(), &centre,
                                        radius, band, width, height, expected[0].pitch());
        Edge_Transparency_Circle(pictures[drawnOn].pixels(), pictures[1].pixels(), pictures[2].pixels(), &centre,
                                 radius, band, width, height, pictures[0].pitch());
        for (int i = 0; i < 3; ++i)
            ASSERT_EQ(pictures[i].differenceFrom(expected[i]), "") << number;
    }
}

} // namespace
