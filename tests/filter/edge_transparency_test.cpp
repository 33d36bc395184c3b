#include "plain/edge_transparency.h"
#include "support/surface.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <utility>

namespace {

using test::Surface;

constexpr int lowest = std::numeric_limits<int>::min();
constexpr int highest = std::numeric_limits<int>::max();

/// What a mix of two colours means: every byte on its own.
q_ulong meanOf(q_ulong low, q_ulong high, q_ulong t) {
    q_ulong result = 0;
    for (int shift = 0; shift < 24; shift += 8)
        result |= ((low >> shift & 0xFF) * (4096 - t) + (high >> shift & 0xFF) * t) / 4096 << shift;
    return result;
}

struct Edge {
    tagPOINT p1;
    tagPOINT p2;
    int edgeWidth;
    int swapImages;
    tagRECT clip;
};

void drawEdge(Surface &out, Surface &imageA, Surface &imageB, Edge edge) {
    Edge_Transparency(out.pixels(), imageA.pixels(), imageB.pixels(), &edge.p1, &edge.p2, edge.edgeWidth, out.pitch(),
                      12345, -1, edge.swapImages, &edge.clip);
}

void drawPlainEdge(Surface &out, Surface &imageA, Surface &imageB, Edge edge) {
    plain::Edge_Transparency(out.pixels(), imageA.pixels(), imageB.pixels(), &edge.p1, &edge.p2, edge.edgeWidth,
                             out.pitch(), 0, 0, edge.swapImages, &edge.clip);
}

constexpr q_ulong untouched = 0x77777777;

/// A black `imageA` and a white `imageB`: with `swapImages` 0 the result is grey by the mix alone.
struct BlackAndWhite {
    Surface out;
    Surface black;
    Surface white;

    BlackAndWhite(int width, int height)
        : out(width, height, untouched), black(width, height, 0), white(width, height, 0xFFFFFF) {}

    void draw(const Edge &edge) { drawEdge(out, black, white, edge); }
};

q_ulong grey(int t) {
    return static_cast<q_ulong>(255 * t / 4096) * 0x10101;
}

TEST(Edge_Transparency, a_horizontal_edge_fades_from_low_to_high_on_the_way_down) {
    BlackAndWhite scene(6, 12);
    scene.draw({{1, 5}, {4, 5}, 8, 0, {0, 0, 6, 12}});
    Surface expected(6, 12, untouched);
    // Half the width on either side of row 5; the last point's column is drawn, the row of the far end is not.
    for (int x = 1; x <= 4; ++x)
        for (int y = 1; y < 9; ++y)
            expected.at(x, y) = grey((y - 1) * 512);
    EXPECT_EQ(scene.out.differenceFrom(expected), "");
}

TEST(Edge_Transparency, a_vertical_edge_fades_from_low_to_high_on_the_way_right) {
    BlackAndWhite scene(12, 6);
    scene.draw({{5, 1}, {5, 4}, 8, 0, {0, 0, 12, 6}});
    Surface expected(12, 6, untouched);
    // The last point's row is not drawn, the column of the far end is, all high.
    for (int y = 1; y < 4; ++y)
        for (int x = 1; x <= 9; ++x)
            expected.at(x, y) = grey((x - 1) * 512);
    EXPECT_EQ(scene.out.differenceFrom(expected), "");
}

TEST(Edge_Transparency, exactly_45_degrees_is_walked_by_columns) {
    BlackAndWhite scene(12, 12);
    scene.draw({{3, 3}, {7, 7}, 4, 0, {0, 0, 12, 12}});
    Surface expected(12, 12, untouched);
    // Half of 2 over the cosine is 2.8, a band of 2: four rows in each of five columns.
    for (int x = 3; x <= 7; ++x)
        for (int i = 0; i < 4; ++i)
            expected.at(x, x - 2 + i) = grey(i * 1024);
    EXPECT_EQ(scene.out.differenceFrom(expected), "");
}

TEST(Edge_Transparency, from_46_degrees_on_the_walk_is_by_rows) {
    // A rise of 103 over 100 is 45.8 degrees, one of 104 is 46.1.
    for (const int rise : {103, 104}) {
        BlackAndWhite scene(130, 130);
        scene.draw({{10, 10}, {110, 10 + rise}, 10, 0, {0, 0, 130, 130}});
        const bool byRows = rise == 104;
        // Only the walk by columns draws the last point's column; only the walk by rows leaves out its row.
        const int lastRow = 10 + rise;
        EXPECT_EQ(scene.out.at(110, lastRow) == untouched, byRows);
        EXPECT_NE(scene.out.at(109, lastRow - 1), untouched);
    }
}

TEST(Edge_Transparency, a_3_4_5_direction_has_a_band_of_five_quarters_of_half_the_width) {
    // Flat: 4 columns for 3 rows, half the width 8 over 0.8 is 10 rows above and below.
    BlackAndWhite flat(60, 60);
    flat.draw({{10, 20}, {50, 50}, 16, 0, {0, 0, 60, 60}});
    Surface expected(60, 60, untouched);
    for (int x = 10; x <= 50; ++x) {
        const int start = 20 + (x - 10) * 3 / 4 - 10;
        for (int y = start; y < std::min(start + 20, 59); ++y)
            expected.at(x, y) = grey((y - start) * (16777216 / 20) / 4096);
    }
    EXPECT_EQ(flat.out.differenceFrom(expected), "");
    // Steep: the same turned over its diagonal, with the other walk's ends.
    BlackAndWhite steep(60, 60);
    steep.draw({{20, 10}, {50, 50}, 16, 0, {0, 0, 60, 60}});
    Surface turned(60, 60, untouched);
    for (int y = 10; y < 50; ++y) {
        const int start = 20 + (y - 10) * 3 / 4 - 10;
        for (int x = start; x <= std::min(start + 20, 59); ++x)
            turned.at(x, y) = grey((x - start) * (16777216 / 20) / 4096);
    }
    EXPECT_EQ(steep.out.differenceFrom(turned), "");
}

TEST(Edge_Transparency, a_falling_line_rounds_its_start_downward) {
    // From (0, 10) to (4, 9): minus a quarter of a row for each column, shifted arithmetically.
    BlackAndWhite scene(8, 16);
    scene.draw({{0, 10}, {4, 9}, 4, 0, {0, 0, 8, 16}});
    constexpr int starts[] = {8, 7, 7, 7, 7};
    for (int x = 0; x < 5; ++x) {
        EXPECT_EQ(scene.out.at(x, starts[x] - 1), untouched) << x;
        EXPECT_EQ(scene.out.at(x, starts[x]), 0u) << x;
        EXPECT_EQ(scene.out.at(x, starts[x] + 3), grey(3072)) << x;
        EXPECT_EQ(scene.out.at(x, starts[x] + 4), untouched) << x;
    }
}

TEST(Edge_Transparency, the_order_of_the_points_turns_nothing_but_the_rounding) {
    // On multiples of the slope's denominator all four orders of a rectangle's corners agree by mirror image.
    const tagRECT clip = {0, 0, 40, 40};
    BlackAndWhite forward(40, 40);
    BlackAndWhite backward(40, 40);
    forward.draw({{10, 12}, {26, 20}, 6, 0, clip});
    backward.draw({{26, 20}, {10, 12}, 6, 0, clip});
    EXPECT_EQ(backward.out.differenceFrom(forward.out), "");
    BlackAndWhite falling(40, 40);
    BlackAndWhite climbing(40, 40);
    falling.draw({{10, 20}, {26, 12}, 6, 0, clip});
    climbing.draw({{26, 12}, {10, 20}, 6, 0, clip});
    EXPECT_EQ(climbing.out.differenceFrom(falling.out), "");
    EXPECT_NE(falling.out.differenceFrom(forward.out), "");
}

TEST(Edge_Transparency, a_strip_across_the_clip_edge_keeps_its_ramp) {
    const tagRECT whole = {0, 0, 40, 40};
    for (const Edge &edge : {Edge{{5, 18}, {35, 25}, 20, 0, whole}, Edge{{18, 5}, {25, 35}, 20, 0, whole}}) {
        BlackAndWhite unclipped(40, 40);
        unclipped.draw(edge);
        for (int cut = 0; cut < 12; ++cut) {
            const tagRECT clip = {8 + cut, 7 + cut, 33 - cut, 34 - cut};
            Edge clipped = edge;
            clipped.clip = clip;
            BlackAndWhite scene(40, 40);
            scene.draw(clipped);
            Surface expected(40, 40, untouched);
            for (int y = static_cast<int>(clip.top); y < clip.bottom - 1; ++y) // the clip's last row is left out
                for (int x = static_cast<int>(clip.left); x < clip.right; ++x)
                    expected.at(x, y) = unclipped.out.at(x, y);
            EXPECT_EQ(scene.out.differenceFrom(expected), "") << cut;
        }
    }
}

TEST(Edge_Transparency, both_walks_draw_the_clips_last_column_and_leave_out_its_last_row) {
    BlackAndWhite flat(10, 10);
    flat.draw({{-20, 5}, {40, 5}, 40, 0, {0, 0, 10, 10}});
    BlackAndWhite steep(10, 10);
    steep.draw({{5, -20}, {5, 40}, 40, 0, {0, 0, 10, 10}});
    for (const Surface *out : {&flat.out, &steep.out})
        for (int y = 0; y < 10; ++y)
            for (int x = 0; x < 10; ++x)
                EXPECT_EQ(out->at(x, y) == untouched, y == 9) << x << ", " << y;
}

TEST(Edge_Transparency, swapImages_exchanges_the_pictures) {
    test::Random random(1);
    Surface imageA = Surface::randomOfSize(random, 20, 20);
    Surface imageB = imageA;
    for (int y = 0; y < 20; ++y)
        for (int x = 0; x < 20; ++x)
            imageB.at(x, y) = random.pixel();
    const Edge edge = {{2, 8}, {18, 12}, 10, 0, {0, 0, 20, 20}};
    Edge swapped = edge;
    swapped.swapImages = 77;
    Surface plain = imageA;
    drawEdge(plain, imageA, imageB, edge);
    Surface exchanged = imageA;
    drawEdge(exchanged, imageB, imageA, swapped);
    EXPECT_EQ(exchanged.differenceFrom(plain), "");
    BlackAndWhite scene(20, 20);
    scene.draw(swapped); // imageA, the black one, is now high
    EXPECT_EQ(scene.out.at(2, 3), 0x00FFFFFFu);
    EXPECT_EQ(scene.out.at(2, 12), grey(4096 - 3686)); // 9 of 10 rows down: t = 1677721 * 9 / 4096
}

TEST(Edge_Transparency, a_top_byte_disturbs_red) {
    Surface out(4, 12, untouched);
    Surface imageA(4, 12, 0x01000000);
    Surface imageB(4, 12, 0x00000000);
    drawEdge(out, imageA, imageB, {{0, 5}, {3, 5}, 8, 0, {0, 0, 4, 12}});
    // The top byte stands in red's word as 4096. Times the weight of low, 4096 less the mix, it spoils red, but for the
    // full weight, whose product lies above red.
    EXPECT_EQ(out.at(0, 1), 0u);
    EXPECT_EQ(out.at(0, 3), 0x00C00000u); // 3072 * 4096
    EXPECT_EQ(out.at(0, 5), 0x00800000u);
    EXPECT_EQ(out.at(0, 7), 0x00400000u);
}

TEST(Edge_Transparency, every_pair_of_bytes_at_every_step_of_two_strips) {
    for (const int half : {4, 11}) {
        constexpr int pairs = 65536;
        const int height = 2 * half + 1;
        Surface out(pairs, height, untouched);
        Surface imageA(pairs, height);
        Surface imageB(pairs, height);
        Surface expected = out;
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < pairs; ++x) {
                const auto low = static_cast<q_ulong>(x & 0xFF);
                const auto high = static_cast<q_ulong>(x >> 8);
                imageA.at(x, y) = low << 16 | (255 - low) << 8 | low;
                imageB.at(x, y) = high << 16 | high << 8 | (255 - high);
                if (y < 2 * half)
                    expected.at(x, y) = meanOf(imageA.at(x, y), imageB.at(x, y),
                                               static_cast<q_ulong>(16777216 / (2 * half) * y / 4096));
            }
        drawEdge(out, imageA, imageB, {{0, half}, {pairs - 1, half}, 2 * half, 0, {0, 0, pairs, height + 1}});
        EXPECT_EQ(out.differenceFrom(expected), "");
    }
}

TEST(Edge_Transparency, every_small_direction_agrees_with_a_naive_mix) {
    test::Random random(2);
    Surface imageA = Surface::randomOfSize(random, 24, 24);
    Surface imageB = imageA;
    for (int y = 0; y < 24; ++y)
        for (int x = 0; x < 24; ++x)
            imageB.at(x, y) = random.pixel();
    Surface blank = imageA;
    for (int y = 0; y < 24; ++y)
        for (int x = 0; x < 24; ++x)
            blank.at(x, y) = untouched;
    for (int dy = -12; dy <= 12; ++dy)
        for (int dx = -12; dx <= 12; ++dx)
            for (const int edgeWidth : {-3, 0, 1, 2, 3, 5, 10, 19}) {
                const Edge edge = {{12, 12}, {12 + dx, 12 + dy}, edgeWidth, dx & 1, {1, 2, 23, 22}};
                Surface out = blank;
                Surface expected = blank;
                drawPlainEdge(expected, imageA, imageB, edge);
                drawEdge(out, imageA, imageB, edge);
                ASSERT_EQ(out.differenceFrom(expected), "") << dx << ", " << dy << " of width " << edgeWidth;
            }
}

TEST(Edge_Transparency, overlapping_pictures_are_mixed_in_the_order_of_the_walk) {
    for (int seed = 0; seed < 6000; ++seed) {
        test::Random random(static_cast<std::uint64_t>(seed));
        Surface sheet = Surface::randomOfSize(random, 40, 60);
        const auto anyOffset = [&] {
            const int x = random.between(-6, 6);
            const int y = random.between(-5, 5);
            const bool isFar = random.oneIn(2);
            return random.oneIn(4) ? 0 : x + (isFar ? y < 0 ? y - 9 : y + 9 : y) * sheet.pitch();
        };
        const int a = anyOffset();
        const int b = anyOffset();
        Edge edge = {};
        edge.p1 = {random.between(-4, 20), random.between(-4, 20)};
        edge.p2 = {random.between(-4, 20), random.between(-4, 20)};
        edge.edgeWidth = random.between(2, 24);
        edge.swapImages = random.between(0, 1);
        edge.clip = random.rectInside(16, 16);
        Surface expected = sheet;
        for (const auto &[draw, surface] :
             {std::pair{&Edge_Transparency, &sheet}, {&plain::Edge_Transparency, &expected}}) {
            q_ulong *const out = &surface->at(12, 22);
            draw(out, out + a, out + b, &edge.p1, &edge.p2, edge.edgeWidth, surface->pitch(), 0, 0, edge.swapImages,
                 &edge.clip);
        }
        ASSERT_EQ(sheet.differenceFrom(expected), "") << seed;
    }
}

TEST(Edge_Transparency, on_a_pitch_below_the_width_the_last_column_wins) {
    for (int seed = 0; seed < 2000; ++seed) {
        test::Random random(static_cast<std::uint64_t>(seed));
        Surface out = Surface::randomOfSize(random, 1, 40);
        Surface imageA(1, 40, 0, out.pitch() - 1 - 2 * Surface::margin);
        Surface imageB = imageA;
        for (int y = 0; y < 40; ++y)
            for (int x = 0; x < out.pitch(); ++x) {
                imageA.at(x, y) = random.pixel();
                imageB.at(x, y) = random.pixel();
            }
        const int width = out.pitch() + random.between(-1, 12);
        Edge edge = {};
        edge.p1 = {random.between(-4, 4), random.between(0, 12)};
        edge.p2 = {width - random.between(-4, 4), random.between(0, 12)};
        edge.edgeWidth = random.between(2, 16);
        edge.clip = {0, 0, width, random.between(1, 30)};
        Surface expected = out;
        drawPlainEdge(expected, imageA, imageB, edge);
        drawEdge(out, imageA, imageB, edge);
        ASSERT_EQ(out.differenceFrom(expected), "") << seed;
    }
}

TEST(Edge_Transparency, points_a_world_away_from_the_clip_draw_nothing) {
    // The distance between the points and the clip is more than an int counts.
    const tagRECT left = {-2000000000, 0, -1999999990, 8};
    const tagRECT right = {1999999990, 0, 2000000000, 8};
    BlackAndWhite scene(8, 8);
    scene.draw({{2000000000, 4}, {2000000010, 4}, 8, 0, left});
    scene.draw({{-2000000010, 4}, {-2000000000, 4}, 8, 0, right});
    EXPECT_EQ(scene.out, Surface(8, 8, untouched));
}

TEST(Edge_Transparency, a_strip_whose_width_wraps_to_0_draws_nothing) {
    constexpr q_long distant = 1 << 30;
    BlackAndWhite scene(8, 8);
    for (const int width : {2, 6}) {
        scene.draw({{0, -distant}, {1, distant}, width, 0, {0, 0, 8, 8}});
        scene.draw({{-distant, 0}, {distant, 1}, width, 0, {0, 0, 8, 8}});
    }
    EXPECT_EQ(scene.out, Surface(8, 8, untouched));
}

TEST(Edge_Transparency, agrees_with_a_naive_mix_at_every_width) {
    test::Random random(7);
    Surface imageA = Surface::randomOfSize(random, 200, 40);
    Surface imageB(200, 40, 0x80FFC0, imageA.pitch() - 200 - 2 * Surface::margin);
    for (int width = 1; width <= 200; ++width)
        for (const int rise : {-25, -3, 0, 1, 30}) {
            const Edge edge = {{-1, 15}, {width, 15 + rise}, 14, width & 1, {0, 2, width, 38}};
            Surface out(200, 40, untouched, imageA.pitch() - 200 - 2 * Surface::margin);
            Surface expected = out;
            drawPlainEdge(expected, imageA, imageB, edge);
            drawEdge(out, imageA, imageB, edge);
            ASSERT_EQ(out.differenceFrom(expected), "") << width << " rising by " << rise;
        }
}

TEST(Edge_Transparency, a_strip_without_width_or_direction_draws_nothing) {
    for (const int edgeWidth : {1, 0, -1, -2, -100, lowest}) {
        BlackAndWhite scene(20, 20);
        scene.draw({{2, 8}, {18, 12}, edgeWidth, 0, {0, 0, 20, 20}});
        scene.draw({{8, 2}, {12, 18}, edgeWidth, 0, {0, 0, 20, 20}});
        EXPECT_EQ(scene.out, Surface(20, 20, untouched)) << edgeWidth;
    }
    BlackAndWhite scene(20, 20);
    scene.draw({{8, 8}, {8, 8}, 10, 0, {0, 0, 20, 20}});
    EXPECT_EQ(scene.out, Surface(20, 20, untouched));
}

TEST(Edge_Transparency, strips_at_the_ends_of_the_numbers_draw_nothing) {
    const Surface blank(8, 8, untouched);
    BlackAndWhite scene(8, 8);
    for (int distance = 0; distance < 24; ++distance)
        for (const int end : {lowest + distance, highest - distance})
            for (const int span : {0, 3, 7}) {
                const int other = end < 0 ? end + span : end - span;
                for (const Edge &edge :
                     {Edge{{0, end}, {7, end}, 20, 0, {0, 0, 8, 8}}, Edge{{0, end}, {7, other}, 20, 0, {0, 0, 8, 8}},
                      Edge{{end, 0}, {end, 7}, 20, 0, {0, 0, 8, 8}}, Edge{{end, 0}, {other, 8}, 20, 0, {0, 0, 8, 8}},
                      Edge{{end, end}, {other, other}, 20, 0, {0, 0, 8, 8}}})
                    scene.draw(edge);
                ASSERT_EQ(scene.out.differenceFrom(blank), "") << end;
            }
}

TEST(Edge_Transparency, a_line_that_ends_at_the_largest_coordinate_is_drawn_all_the_same) {
    const Edge flat = {{0, 4}, {highest, 4}, 6, 0, {0, 0, 8, 12}};
    const Edge steep = {{4, 0}, {4, highest}, 6, 0, {0, 0, 12, 8}};
    BlackAndWhite scene(12, 12);
    scene.draw(flat);
    Surface expected(12, 12, untouched);
    for (int x = 0; x < 8; ++x)
        for (int y = 1; y < 7; ++y)
            expected.at(x, y) = grey((y - 1) * (16777216 / 6) / 4096);
    EXPECT_EQ(scene.out.differenceFrom(expected), "");
    BlackAndWhite turned(12, 12);
    turned.draw(steep);
    Surface turnedExpected(12, 12, untouched);
    for (int y = 0; y < 7; ++y)
        for (int x = 1; x <= 7; ++x)
            turnedExpected.at(x, y) = grey((x - 1) * (16777216 / 6) / 4096);
    EXPECT_EQ(turned.out.differenceFrom(turnedExpected), "");
}

TEST(Edge_Transparency, points_further_apart_than_the_numbers_reach_stay_inside_the_clip) {
    const Surface blank(8, 8, untouched);
    for (const int edgeWidth : {2, 20, highest, lowest})
        for (const tagPOINT &p1 : {tagPOINT{lowest, 3}, tagPOINT{3, lowest}, tagPOINT{lowest, lowest}})
            for (const tagPOINT &p2 : {tagPOINT{highest, 3}, tagPOINT{3, highest}, tagPOINT{highest, highest}})
                for (const tagRECT &clip : {tagRECT{2, 2, 6, 6}, tagRECT{2, 2, lowest, 6}, tagRECT{2, 2, 6, lowest}}) {
                    BlackAndWhite scene(8, 8);
                    scene.draw({p1, p2, edgeWidth, 0, clip});
                    scene.draw({p2, p1, edgeWidth, 0, clip});
                    for (int y = 2; y < 6; ++y)
                        for (int x = 2; x < 6; ++x)
                            if (clip.right == 6 && clip.bottom == 6)
                                scene.out.at(x, y) = untouched;
                    ASSERT_EQ(scene.out.differenceFrom(blank), "");
                }
}

struct Disc {
    tagPOINT centre;
    int radius;
    int band;
};

void drawDisc(Surface &out, Surface &imageA, Surface &imageB, Disc disc, int width, int height) {
    Edge_Transparency_Circle(out.pixels(), imageA.pixels(), imageB.pixels(), &disc.centre, disc.radius, disc.band,
                             width, height, out.pitch());
}

TEST(Edge_Transparency_Circle, copies_whole_pixels_inside_and_outside_and_mixes_between) {
    Surface out(12, 1);
    Surface imageA(12, 1, 0x00FFFFFF);
    Surface imageB(12, 1, 0x00000000);
    for (int x = 0; x <= 3; ++x)
        imageA.at(x, 0) = 0xAAFFFFFF;
    for (int x = 7; x < 12; ++x)
        imageB.at(x, 0) = 0xBB000000;
    drawDisc(out, imageA, imageB, {{0, 0}, 5, 2}, 12, 1);
    // The band reaches from 3 to 7, a quarter of the mix for each pixel.
    for (int x = 0; x <= 3; ++x)
        EXPECT_EQ(out.at(x, 0), 0xAAFFFFFFu) << x;
    EXPECT_EQ(out.at(4, 0), 0x00BFBFBFu); // t = 3072
    EXPECT_EQ(out.at(5, 0), 0x007F7F7Fu); // t = 2048
    EXPECT_EQ(out.at(6, 0), 0x003F3F3Fu); // t = 1024
    for (int x = 7; x < 12; ++x)
        EXPECT_EQ(out.at(x, 0), 0xBB000000u) << x;
}

TEST(Edge_Transparency_Circle, a_top_byte_disturbs_red) {
    Surface out(3, 1);
    Surface imageA(3, 1, 0x01000000);
    Surface imageB(3, 1, 0);
    drawDisc(out, imageA, imageB, {{0, 0}, 2, 2}, 3, 1);
    EXPECT_EQ(out.at(0, 0), 0x01000000u);
    EXPECT_EQ(out.at(1, 0), 0x00C00000u); // t = 3072, times 4096
    EXPECT_EQ(out.at(2, 0), 0x00800000u);
}

TEST(Edge_Transparency_Circle, a_band_above_the_radius_leaves_the_centre_pixel_alone_pure) {
    Surface out(13, 13, untouched);
    Surface imageA(13, 13, 0xAAFFFFFF);
    Surface imageB(13, 13, 0);
    imageA.at(7, 6) = 0x00FFFFFF;
    imageA.at(6, 5) = 0x00FFFFFF;
    drawDisc(out, imageA, imageB, {{6, 6}, 2, 4}, 13, 13);
    EXPECT_EQ(out.at(6, 6), 0xAAFFFFFFu);
    EXPECT_EQ(out.at(7, 6), 0x009F9F9Fu); // outer 6 less distance 1, times 512: t = 2560
    EXPECT_EQ(out.at(6, 5), 0x009F9F9Fu);
    EXPECT_EQ(out.at(12, 6), 0u);
}

TEST(Edge_Transparency_Circle, below_0_the_radius_leaves_the_outer_part_of_the_edge_and_at_minus_the_band_nothing) {
    Surface imageA(4, 1, 0xFFFFFF);
    Surface imageB(4, 1, 0);
    Surface out(4, 1);
    drawDisc(out, imageA, imageB, {{0, 0}, -2, 4}, 4, 1);
    EXPECT_EQ(out.at(0, 0), 0xFFFFFFu);
    EXPECT_EQ(out.at(1, 0), 0x1F1F1Fu); // outer 2 less distance 1, times 512
    EXPECT_EQ(out.at(2, 0), 0u);
    drawDisc(out, imageA, imageB, {{0, 0}, -4, 4}, 4, 1);
    EXPECT_EQ(out.differenceFrom(imageB), "");
}

TEST(Edge_Transparency_Circle, a_negative_band_is_a_hard_edge_within_the_radius) {
    Surface imageA(8, 1, 0xAAFFFFFF);
    Surface imageB(8, 1, 0xBB000000);
    Surface out(8, 1);
    drawDisc(out, imageA, imageB, {{0, 0}, 6, -2}, 8, 1);
    for (int x = 0; x < 8; ++x)
        EXPECT_EQ(out.at(x, 0), x < 4 ? 0xAAFFFFFFu : 0xBB000000u) << x;
}

TEST(Edge_Transparency_Circle, the_distance_is_truncated_before_it_weighs) {
    // The square of the distance of (1, 1) is 2, its root 1: the same mix as at (1, 0).
    Surface out(2, 2);
    Surface imageA(2, 2, 0xFFFFFF);
    Surface imageB(2, 2, 0);
    drawDisc(out, imageA, imageB, {{0, 0}, 4, 4}, 2, 2);
    EXPECT_EQ(out.at(1, 0), 0x00DFDFDFu); // 7 of 8 parts
    EXPECT_EQ(out.at(1, 1), 0x00DFDFDFu);
}

TEST(Edge_Transparency_Circle, every_pair_of_bytes_at_every_step_of_a_band) {
    for (int distance = 4; distance < 12; ++distance) {
        Surface out(256, 256);
        Surface imageA(256, 256);
        Surface imageB(256, 256);
        for (int y = 0; y < 256; ++y)
            for (int x = 0; x < 256; ++x) {
                const auto low = static_cast<q_ulong>(x);
                const auto high = static_cast<q_ulong>(y);
                imageB.at(x, y) = low << 16 | (255 - low) << 8 | low;
                imageA.at(x, y) = high << 16 | high << 8 | (255 - high);
            }
        for (int y = 0; y < 256; ++y)
            for (int x = 0; x < 256; ++x) {
                tagPOINT centre = {0, distance};
                Edge_Transparency_Circle(&out.at(x, y), &imageA.at(x, y), &imageB.at(x, y), &centre, 8, 4, 1, 1, 1);
                // 4 is the inner edge, where the picture is copied; from there on an eighth less for each pixel.
                const auto t = static_cast<q_ulong>((12 - distance) * 512);
                ASSERT_EQ(out.at(x, y), distance == 4 ? imageA.at(x, y) : meanOf(imageB.at(x, y), imageA.at(x, y), t));
            }
    }
}

TEST(Edge_Transparency_Circle, a_band_of_0_draws_nothing) {
    Surface out(9, 9, untouched);
    const Surface blank = out;
    Surface imageA(9, 9, 0xAAFFFFFF);
    Surface imageB(9, 9, 0);
    drawDisc(out, imageA, imageB, {{4, 4}, 3, 0}, 9, 9);
    drawDisc(out, imageA, imageB, {{4, 4}, 3, lowest}, 9, 9); // twice this is 0 in 32 bits
    EXPECT_EQ(out.differenceFrom(blank), "");
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
