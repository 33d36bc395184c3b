#include "support/cases.h"
#include "support/precision.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace {

using test::Case;
using test::forEachCase;
using test::Surface;

constexpr int lowest = std::numeric_limits<int>::min();
constexpr int highest = std::numeric_limits<int>::max();

std::int64_t cut(std::int64_t value) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
}

std::int64_t truncated(long double value) {
    return value > -9.0e18L && value < 9.0e18L ? cut(static_cast<std::int64_t>(value)) : 0;
}

/// Green and blue each on their own; red together with whatever stands above it in the word.
q_ulong naiveMix(q_ulong low, q_ulong high, std::int64_t t) {
    const std::int64_t u = 4096 - t;
    const auto channel = [&](int shift) {
        return (static_cast<std::int64_t>(low >> shift & 0xFF) * u +
                static_cast<std::int64_t>(high >> shift & 0xFF) * t) >>
               12;
    };
    const std::int64_t red =
        static_cast<std::int64_t>(low >> 12 & 0xFFFF0) * u + static_cast<std::int64_t>(high >> 12 & 0xFFFF0) * t;
    return static_cast<q_ulong>((red & 0xFF0000) | (channel(8) & 0xFF) << 8 | (channel(0) & 0xFF));
}

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

/// Where the pictures' corners lie on their surfaces.
struct Origins {
    tagPOINT out;
    tagPOINT imageA;
    tagPOINT imageB;
};

/// One pixel after the other, from the two points; whole numbers cut to 32 bits, angles at full width.
void naiveEdge(Surface &out, const Surface &imageA, const Surface &imageB, const Edge &edge,
               const Origins &origins = {}) {
    const std::int64_t x1 = edge.p1.x;
    const std::int64_t y1 = edge.p1.y;
    const std::int64_t x2 = edge.p2.x;
    const std::int64_t y2 = edge.p2.y;
    const std::int64_t minX = std::min(x1, x2);
    const std::int64_t maxX = std::max(x1, x2);
    const std::int64_t minY = std::min(y1, y2);
    const std::int64_t maxY = std::max(y1, y2);
    const long double theta = std::atan2(static_cast<long double>(maxY - minY), static_cast<long double>(maxX - minX));
    const bool byRows = truncated(theta * static_cast<long double>(57.29577791868204)) > 45;
    const std::int64_t run = byRows ? y2 - y1 : x2 - x1;
    const int half = edge.edgeWidth / 2;
    const std::int64_t band = truncated(half / (byRows ? std::sin(theta) : std::cos(theta)));
    if (run == 0 || band == 0)
        return;
    const std::int64_t slope = cut((byRows ? x2 - x1 : y2 - y1) * 32768) / run;
    const std::int64_t ramp = 16777216 / cut(2 * band);
    const auto pixelOf = [](const Surface &picture, const tagPOINT &origin, int x, int y) {
        return picture.at(x + static_cast<int>(origin.x), y + static_cast<int>(origin.y));
    };
    const auto mixAt = [&](int x, int y) {
        const std::int64_t distance = byRows ? y - y1 : x - x1;
        const std::int64_t start = cut((cut(distance * slope) >> 15) - band + (byRows ? x1 : y1));
        const std::int64_t end = cut(start + cut(2 * band));
        const int across = byRows ? x : y;
        if (byRows && (y < minY || y >= std::min<std::int64_t>(maxY, edge.clip.bottom - 1) || x < start || x > end))
            return;
        if (!byRows && (x < minX || x > maxX || y < start || y >= std::min<std::int64_t>(end, edge.clip.bottom - 1)))
            return;
        const std::int64_t value = cut(across * ramp - start * ramp);
        const q_ulong a = pixelOf(imageA, origins.imageA, x, y);
        const q_ulong b = pixelOf(imageB, origins.imageB, x, y);
        const bool swapped = edge.swapImages != 0;
        out.at(x + static_cast<int>(origins.out.x), y + static_cast<int>(origins.out.y)) =
            naiveMix(swapped ? b : a, swapped ? a : b, value / 4096);
    };
    if (byRows) {
        for (int y = static_cast<int>(edge.clip.top); y < edge.clip.bottom; ++y)
            for (int x = static_cast<int>(edge.clip.left); x < edge.clip.right; ++x)
                mixAt(x, y);
    } else {
        for (int x = static_cast<int>(edge.clip.left); x < edge.clip.right; ++x)
            for (int y = static_cast<int>(edge.clip.top); y < edge.clip.bottom; ++y)
                mixAt(x, y);
    }
}

void drawEdge(Surface &out, Surface &imageA, Surface &imageB, Edge edge) {
    Edge_Transparency(out.pixels(), imageA.pixels(), imageB.pixels(), &edge.p1, &edge.p2, edge.edgeWidth, out.pitch(),
                      12345, -1, edge.swapImages, &edge.clip);
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
                naiveEdge(expected, imageA, imageB, edge);
                drawEdge(out, imageA, imageB, edge);
                ASSERT_EQ(out.differenceFrom(expected), "") << dx << ", " << dy << " of width " << edgeWidth;
            }
}

TEST(Edge_Transparency, every_clip_rectangle_bounds_the_strip) {
    test::Random random(3);
    Surface imageA = Surface::randomOfSize(random, 6, 6);
    Surface imageB = imageA;
    for (int y = -2; y < 9; ++y)
        for (int x = -2; x < 9; ++x)
            imageB.at(x, y) = random.pixel();
    for (int top = -2; top <= 7; ++top)
        for (int left = -2; left <= 7; ++left)
            for (int bottom = -2; bottom <= 8; ++bottom)
                for (int right = -2; right <= 8; ++right)
                    for (const tagPOINT &end : {tagPOINT{9, 5}, tagPOINT{4, -7}}) {
                        const Edge edge = {{-3, 1}, end, 6, 0, {left, top, right, bottom}};
                        Surface out = imageA;
                        Surface expected = imageA;
                        naiveEdge(expected, imageA, imageB, edge);
                        drawEdge(out, imageA, imageB, edge);
                        ASSERT_EQ(out.differenceFrom(expected), "")
                            << left << ", " << top << ", " << right << ", " << bottom;
                    }
}

TEST(Edge_Transparency, out_may_be_either_image) {
    test::Random random(4);
    Surface imageA = Surface::randomOfSize(random, 20, 20);
    Surface imageB = imageA;
    for (int y = 0; y < 20; ++y)
        for (int x = 0; x < 20; ++x)
            imageB.at(x, y) = random.pixel();
    for (const Edge &edge :
         {Edge{{2, 8}, {18, 12}, 10, 0, {0, 0, 20, 20}}, Edge{{8, 2}, {12, 18}, 10, 1, {0, 0, 20, 20}}}) {
        Surface expected = imageA;
        naiveEdge(expected, imageA, imageB, edge);
        Surface overA = imageA;
        Edge_Transparency(overA.pixels(), overA.pixels(), imageB.pixels(), const_cast<tagPOINT *>(&edge.p1),
                          const_cast<tagPOINT *>(&edge.p2), edge.edgeWidth, overA.pitch(), 0, 0, edge.swapImages,
                          const_cast<tagRECT *>(&edge.clip));
        EXPECT_EQ(overA.differenceFrom(expected), "");
        expected = imageB;
        naiveEdge(expected, imageA, imageB, edge);
        Surface overB = imageB;
        Edge_Transparency(overB.pixels(), imageA.pixels(), overB.pixels(), const_cast<tagPOINT *>(&edge.p1),
                          const_cast<tagPOINT *>(&edge.p2), edge.edgeWidth, overB.pitch(), 0, 0, edge.swapImages,
                          const_cast<tagRECT *>(&edge.clip));
        EXPECT_EQ(overB.differenceFrom(expected), "");
    }
}

TEST(Edge_Transparency, overlapping_pictures_are_mixed_in_the_order_of_the_walk) {
    for (int seed = 0; seed < 6000; ++seed) {
        test::Random random(static_cast<std::uint64_t>(seed));
        Surface sheet = Surface::randomOfSize(random, 40, 60);
        const auto anyOrigin = [&]() -> tagPOINT {
            const int x = random.between(-6, 6);
            int y = random.between(-5, 5);
            if (random.oneIn(2))
                y += y < 0 ? -9 : 9;
            return random.oneIn(4) ? tagPOINT{12, 22} : tagPOINT{12 + x, 22 + y};
        };
        const Origins origins = {{12, 22}, anyOrigin(), anyOrigin()};
        Edge edge = {};
        edge.p1 = {random.between(-4, 20), random.between(-4, 20)};
        edge.p2 = {random.between(-4, 20), random.between(-4, 20)};
        edge.edgeWidth = random.between(2, 24);
        edge.swapImages = random.between(0, 1);
        edge.clip = random.rectInside(16, 16);
        Surface expected = sheet;
        naiveEdge(expected, expected, expected, edge, origins);
        const auto pixelsAt = [&](const tagPOINT &origin) {
            return &sheet.at(static_cast<int>(origin.x), static_cast<int>(origin.y));
        };
        Edge_Transparency(pixelsAt(origins.out), pixelsAt(origins.imageA), pixelsAt(origins.imageB), &edge.p1, &edge.p2,
                          edge.edgeWidth, sheet.pitch(), 0, 0, edge.swapImages, &edge.clip);
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
        naiveEdge(expected, imageA, imageB, edge);
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
            naiveEdge(expected, imageA, imageB, edge);
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

TEST(Edge_Transparency, reads_only_what_it_writes) {
    test::PageEndPixels imageA(10 * 9);
    test::PageEndPixels imageB(10 * 9);
    test::PageEndPixels out(10 * 9);
    for (tagPOINT end : {tagPOINT{50, 12}, tagPOINT{12, 50}}) {
        tagPOINT start = {-40, -30};
        tagRECT clip = {0, 0, 10, 10}; // its last row is never touched
        Edge_Transparency(out.data(), imageA.data(), imageB.data(), &start, &end, 60, 10, 0, 0, 0, &clip);
    }
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

Edge randomEdge(test::Random &random, const Surface &out) {
    const auto point = [&]() -> tagPOINT {
        switch (random.between(0, 9)) {
        case 0:
            return {random.between(-1000, 1000), random.between(-1000, 1000)};
        case 1:
            return {random.between(-(1 << 30), (1 << 30) - 1), random.between(-(1 << 30), (1 << 30) - 1)};
        default:
            return {random.between(-8, 24), random.between(-8, 24)};
        }
    };
    Edge edge = {point(), point(), random.between(-2, 40), random.between(0, 1) * random.between(-3, 3), {}};
    if (random.oneIn(4))
        edge.p2.y = edge.p1.y;
    else if (random.oneIn(4))
        edge.p2.x = edge.p1.x;
    else if (random.oneIn(4))
        edge.p2 = {edge.p1.x + random.between(-9, 9) * 4, edge.p1.y + random.between(-9, 9) * 3};
    if (random.oneIn(20))
        edge.edgeWidth = random.between(lowest, highest);
    edge.clip = random.rectInsideOrEmpty(out.width(), out.height());
    return edge;
}

TEST(Edge_Transparency, the_precision_that_the_host_has_set_changes_nothing) {
    for (int dy = -30; dy <= 30; ++dy)
        for (int dx = -30; dx <= 30; ++dx)
            for (const int edgeWidth : {10, 42, 43}) {
                const Edge edge = {{30, 30}, {30 + dx, 30 + dy}, edgeWidth, 0, {0, 0, 60, 60}};
                BlackAndWhite scene(60, 60);
                scene.draw(edge);
                BlackAndWhite reduced(60, 60);
                {
                    const test::ReducedPrecision precision;
                    reduced.draw(edge);
                    ASSERT_EQ(precision.controlWord(), 0x027F); // left as it was found
                }
                ASSERT_EQ(reduced.out.differenceFrom(scene.out), "") << dx << ", " << dy;
            }
}

TEST(Edge_Transparency, agrees_with_a_naive_mix) {
    forEachCase("Edge_Transparency", [](Case &c) {
        Surface out = Surface::random(c.random);
        Surface imageA = out;
        Surface imageB = out;
        for (int y = 0; y < out.height(); ++y)
            for (int x = 0; x < out.width(); ++x) {
                imageA.at(x, y) = c.random.pixel();
                imageB.at(x, y) = c.random.pixel();
            }
        const Edge edge = randomEdge(c.random, out);
        Surface expected = out;
        naiveEdge(expected, imageA, imageB, edge);
        drawEdge(out, imageA, imageB, edge);
        c.expectEqual(out, expected);
    });
}

struct Disc {
    tagPOINT centre;
    int radius;
    int band;
};

void naiveDisc(Surface &out, const Surface &imageA, const Surface &imageB, const Disc &disc, int width, int height) {
    const std::int64_t outer = disc.radius + disc.band;
    const std::int64_t inner = std::max(disc.radius - disc.band, 0);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const std::int64_t dx = x - disc.centre.x;
            const std::int64_t dy = y - disc.centre.y;
            const std::int64_t square = dx * dx + dy * dy;
            if (square >= outer * outer) {
                out.at(x, y) = imageB.at(x, y);
            } else if (square <= inner * inner) {
                out.at(x, y) = imageA.at(x, y);
            } else {
                std::int64_t distance = 0;
                while ((distance + 1) * (distance + 1) <= square)
                    ++distance;
                const std::int64_t t = (outer - distance) * (134217728 / (2 * disc.band)) >> 15;
                out.at(x, y) = naiveMix(imageB.at(x, y), imageA.at(x, y), t);
            }
        }
}

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

TEST(Edge_Transparency_Circle, a_centre_outside_the_area_draws_the_part_that_lies_inside) {
    test::Random random(5);
    Surface imageA = Surface::randomOfSize(random, 10, 10);
    Surface imageB = imageA;
    for (int y = 0; y < 10; ++y)
        for (int x = 0; x < 10; ++x)
            imageB.at(x, y) = random.pixel();
    for (const int centreY : {-2000, -20, -3, 4, 12, 30, 2000})
        for (const int centreX : {-2000, -20, -3, 4, 12, 30, 2000})
            for (const int radius : {0, 3, 20, 2000, 2829})
                for (const int band : {-7, -1, 1, 2, 9, 40}) {
                    const Disc disc = {{centreX, centreY}, radius, band};
                    Surface out = imageA;
                    Surface expected = imageA;
                    naiveDisc(expected, imageA, imageB, disc, 10, 10);
                    drawDisc(out, imageA, imageB, disc, 10, 10);
                    ASSERT_EQ(out.differenceFrom(expected), "")
                        << centreX << ", " << centreY << " radius " << radius << " band " << band;
                }
}

TEST(Edge_Transparency_Circle, every_area_over_a_small_surface_stays_inside) {
    test::Random random(6);
    Surface imageA = Surface::randomOfSize(random, 4, 4);
    Surface imageB = imageA;
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 4; ++x)
            imageB.at(x, y) = random.pixel();
    for (int height = -2; height <= 4; ++height)
        for (int width = -2; width <= 4; ++width) {
            Surface out = imageA;
            Surface expected = imageA;
            naiveDisc(expected, imageA, imageB, {{2, 2}, 2, 1}, width, height);
            drawDisc(out, imageA, imageB, {{2, 2}, 2, 1}, width, height);
            EXPECT_EQ(out.differenceFrom(expected), "") << width << " x " << height;
        }
}

TEST(Edge_Transparency_Circle, out_may_be_either_image) {
    test::Random random(7);
    Surface imageA = Surface::randomOfSize(random, 20, 20);
    Surface imageB = imageA;
    for (int y = 0; y < 20; ++y)
        for (int x = 0; x < 20; ++x)
            imageB.at(x, y) = random.pixel();
    const Disc disc = {{9, 10}, 6, 3};
    Surface expected = imageA;
    naiveDisc(expected, imageA, imageB, disc, 20, 20);
    Surface overA = imageA;
    drawDisc(overA, overA, imageB, disc, 20, 20);
    EXPECT_EQ(overA.differenceFrom(expected), "");
    expected = imageB;
    naiveDisc(expected, imageA, imageB, disc, 20, 20);
    Surface overB = imageB;
    drawDisc(overB, imageA, overB, disc, 20, 20);
    EXPECT_EQ(overB.differenceFrom(expected), "");
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

TEST(Edge_Transparency_Circle, numbers_beyond_the_squares_stay_inside_the_area) {
    for (const int centreX : {lowest, -50000, 3, 50000, highest})
        for (const int centreY : {lowest, 3, highest})
            for (const int radius : {lowest, -1, 60000, highest})
                for (const int band : {lowest + 1, -1, 1, 50000, highest}) {
                    Surface out(6, 6, untouched);
                    Surface imageA(6, 6, 0x010203);
                    Surface imageB(6, 6, 0x040506);
                    drawDisc(out, imageA, imageB, {{centreX, centreY}, radius, band}, 6, 6);
                    for (int y = 0; y < 6; ++y)
                        for (int x = 0; x < 6; ++x) {
                            ASSERT_NE(out.at(x, y), untouched);
                            out.at(x, y) = untouched;
                        }
                    ASSERT_EQ(out, Surface(6, 6, untouched));
                }
}

TEST(Edge_Transparency_Circle, agrees_with_a_naive_mix) {
    forEachCase("Edge_Transparency_Circle", [](Case &c) {
        Surface out = Surface::random(c.random);
        Surface imageA = out;
        Surface imageB = out;
        for (int y = 0; y < out.height(); ++y)
            for (int x = 0; x < out.width(); ++x) {
                imageA.at(x, y) = c.random.pixel();
                imageB.at(x, y) = c.random.pixel();
            }
        const int width = c.random.between(-1, out.width());
        const int height = c.random.between(-1, out.height());
        Disc disc = {{c.random.between(-6, 22), c.random.between(-6, 22)}, c.random.between(0, 20), 0};
        if (c.random.oneIn(20))
            disc = {{c.random.between(-300, 300), c.random.between(-300, 300)}, c.random.between(0, 450), 0};
        do
            disc.band = c.random.between(-2, 20);
        while (disc.band == 0);
        Surface expected = out;
        naiveDisc(expected, imageA, imageB, disc, width, height);
        drawDisc(out, imageA, imageB, disc, width, height);
        c.expectEqual(out, expected);
    });
}

} // namespace
