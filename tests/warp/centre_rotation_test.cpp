#include "plain/centre_turns.h"
#include "support/painting.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

namespace {

using namespace test;

/// The arguments that four of the five functions share; the rectangles are all that there is, unless they are others.
struct Scene {
    int centreX = 0;
    int centreY = 0;
    double angle = 0;
    int width = 0;
    int height = 0;
    tagRECT clip = {0, 0, -1, -1};
    tagRECT srcRect = {0, 0, -1, -1};
};

using Rotator = void(q_ulong *, tagRECT *, int, q_ulong *, tagRECT *, int, int, int, double, int, int);
constexpr Rotator *rotators[] = {iRotateMapping, iRotate, iRotateLinear, iRotateLinearAA};

Surface drawn(Rotator *rotator, Surface on, Surface &src, Scene scene) {
    if (scene.clip.right == -1)
        scene.clip = on.rect();
    if (scene.srcRect.right == -1)
        scene.srcRect = src.rect();
    rotator(on.pixels(), &scene.clip, on.pitch(), src.pixels(), &scene.srcRect, src.pitch(), scene.centreX,
            scene.centreY, scene.angle, scene.width, scene.height);
    return on;
}

constexpr double pi = std::numbers::pi;

TEST(iRotateMapping, an_upright_rectangle_leaves_out_its_first_and_last_row) {
    // The right edge goes down and counts the rows 2 to 6, the left one goes up and counts 3 to 7: the rows 2 and 7
    // have one crossing each. Both columns of a span are drawn.
    Surface src(6, 5, 0x00040404);
    const Surface dst = drawn(iRotateMapping, blank(12, 12), src, {5, 4, 0, 6, 5, {0, 0, 12, 12}, {0, 0, 3, 3}});
    EXPECT_EQ(dst.differenceFrom(painted(blank(12, 12), {2, 3, 9, 7}, 0x00040404)), "");
}

TEST(iRotateMapping, source_rows_run_from_one_edge_to_the_other_in_sixteenths) {
    // On the first row drawn the right edge stands 1 * 4 * 16 / 5 = 12 sixteenths down, the left one, which is told
    // from its lower end, 64 - 4 * 4 * 16 / 5 = 13.
    Surface src =
        painted(Surface(6, 5), {0, 0, 6, 5}, [](int, int y) { return static_cast<q_ulong>(y * 16) | 0xFF000000; });
    const Surface dst = drawn(iRotateMapping, blank(12, 12), src, {5, 4, 0, 6, 5});
    EXPECT_EQ(dst.at(2, 3), 13u);
    EXPECT_EQ(dst.at(8, 3), 12u);
}

TEST(iRotateMapping, a_row_with_a_single_crossing_draws_nothing) {
    // On its corner: the top corner's row belongs to the edge that leaves it alone. 8 * 23170 * 2 / 32768 is 11.3; the
    // floor of its negative is 12 above the middle.
    Surface src(4, 4, 5);
    const Surface dst =
        drawn(iRotateMapping, blank(32, 32), src, {16, 16, pi / 4, 16, 16, {0, 0, 32, 32}, {1, 1, 3, 3}});
    EXPECT_EQ(drawnInRow(dst, 16 - 12), 0);
    EXPECT_GT(drawnInRow(dst, 16 - 11), 0);
    EXPECT_GT(drawnInRow(dst, 16 + 10), 0);
    EXPECT_EQ(drawnInRow(dst, 16 + 11), 0);
}

TEST(iRotateMapping, turns_the_same_way_as_the_direct_mappers) {
    const q_ulong quadrants[2][2] = {{0xFF0000, 0x00FF00}, {0x0000FF, 0xFFFFFF}};
    for (Rotator *const rotator : rotators) {
        const auto quadrantsAt = [&](double angle) {
            Surface src =
                painted(Surface(32, 32), {0, 0, 32, 32}, [&](int x, int y) { return quadrants[y / 16][x / 16]; });
            const Surface dst = drawn(rotator, blank(32, 32), src, {16, 16, angle, 32, 32});
            return std::vector<q_ulong>{dst.at(8, 8) & 0xFFFFFF, dst.at(24, 8) & 0xFFFFFF, dst.at(24, 24) & 0xFFFFFF,
                                        dst.at(8, 24) & 0xFFFFFF};
        };
        // Clockwise: the upper left shows what was at the lower left.
        EXPECT_EQ(quadrantsAt(0), (std::vector<q_ulong>{0xFF0000, 0x00FF00, 0xFFFFFF, 0x0000FF}));
        EXPECT_EQ(quadrantsAt(pi / 2), (std::vector<q_ulong>{0x0000FF, 0xFF0000, 0x00FF00, 0xFFFFFF}));
        EXPECT_EQ(quadrantsAt(-pi / 2), (std::vector<q_ulong>{0x00FF00, 0xFFFFFF, 0x0000FF, 0xFF0000}));
        EXPECT_EQ(quadrantsAt(pi), (std::vector<q_ulong>{0xFFFFFF, 0x0000FF, 0xFF0000, 0x00FF00}));
    }
}

TEST(iRotateMapping, sources_of_any_pitch_look_the_same_as_others_do) {
    const auto pixel = [](int x, int y) { return place(x * 3, y * 9); };
    for (Rotator *const rotator : rotators) {
        Surface usual = painted(Surface(60, 24), {0, 0, 60, 24}, pixel);
        const Scene scene = {30, 12, 0.3, 60, 24};
        const Surface expected = drawn(rotator, blank(60, 24), usual, scene);
        Surface wide = painted(Surface(60, 24, 0, 40000), {0, 0, 60, 24}, pixel);
        EXPECT_EQ(drawn(rotator, blank(60, 24), wide, scene).differenceFrom(expected), "");
        Surface turnedOver =
            painted(Surface(60, 24, 0, 40000), {0, 0, 60, 24}, [&](int x, int y) { return pixel(x, 23 - y); });
        Surface dst = blank(60, 24);
        tagRECT rect = dst.rect();
        rotator(dst.pixels(), &rect, dst.pitch(), &turnedOver.at(0, 23), &rect, -turnedOver.pitch(), 30, 12, 0.3, 60,
                24);
        EXPECT_EQ(dst.differenceFrom(expected), "") << "bottom-up";
    }
}

TEST(iRotate, at_angle_0_each_pixel_shows_its_right_neighbour_and_the_last_column_and_row_stay) {
    Surface src = placesOf(8, 6);
    const Surface expected = painted(blank(8, 6), {0, 0, 7, 5}, [](int x, int y) { return place(x + 1, y); });
    EXPECT_EQ(drawn(iRotate, blank(8, 6), src, {4, 3, 0, 8, 6}).differenceFrom(expected), "");
    EXPECT_EQ(drawn(iRotate, blank(8, 6), src, {4, 3, 0, 0, 6}).differenceFrom(blank(8, 6)), "") << "of width 0";
}

TEST(iRotate, the_centre_in_the_source_comes_from_the_size_of_the_clip) {
    // A clip of 6 by 8: the centre falls on (3, 4) of the source, wherever the clip lies.
    Surface src = placesOf(16, 16);
    const Surface expected =
        painted(blank(16, 16), {2, 3, 7, 10}, [](int x, int y) { return place(x - 5 + 3 + 1, y - 7 + 4); });
    EXPECT_EQ(drawn(iRotate, blank(16, 16), src, {5, 7, 0, 16, 16, {2, 3, 8, 11}}).differenceFrom(expected), "");
}

TEST(iRotate, what_maps_outside_the_source_stays) {
    // The figure is 7 to 10 by 6 to 10; source columns 6 to 8 stand one column further left, and column 6 before it.
    Surface src = placesOf(16, 16);
    const Surface dst = drawn(iRotate, blank(16, 16), src, {8, 8, 0, 3, 4, {0, 0, 16, 16}, {6, 7, 9, 11}});
    EXPECT_EQ(dst.differenceFrom(painted(blank(16, 16), {7, 7, 8, 10}, [](int, int y) { return place(8, y); })), "");
}

TEST(iRotateLinear, clears_the_top_byte_and_ends_one_pixel_before_the_source) {
    Surface src = placesOf(8, 6);
    const Surface expected = painted(blank(8, 6), {0, 0, 6, 5}, [](int x, int y) {
        return place(x + 1, y) & 0xFFFFFF; // column 6 would show source column 7, the last
    });
    EXPECT_EQ(drawn(iRotateLinear, blank(8, 6), src, {4, 3, 0, 8, 6}).differenceFrom(expected), "");
}

TEST(iRotateLinear, positions_of_2048_pixels_and_more_wrap_back_into_the_source) {
    // The middle of the clip shows position 2500 or so, which is -1596; a high source is seen lying as well.
    test::Random random(21);
    for (int number = 0; number < 12; ++number) {
        const bool isHigh = number % 3 > 0;
        const bool isTurned = number % 3 == 2;
        Surface src = isHigh ? Surface::randomOfSize(random, 9, 2000) : Surface::randomOfSize(random, 2000, 9);
        const int length = random.between(4800, 5000);
        const int left = isTurned ? length / 2 - 4 - 4096 : 0; // both positions come from a clip of that size
        const tagRECT srcRect = isHigh ? tagRECT{left, -1000, left + 9, 1000} : tagRECT{-1000, 0, 1000, 9};
        const Surface before = isHigh && !isTurned ? blank(20, length) : blank(length, 20);
        const tagRECT clip = {0, isTurned ? 20 - length : 0, before.width(), before.height()};
        const double angle = random.between(-10, 10) / 10000.0 + (isTurned ? (number % 2 ? pi : -pi) / 2 : 0);
        const auto turned = [&](Rotator *rotator) {
            Surface dst = before;
            tagRECT whole = clip;
            tagRECT part = srcRect;
            rotator(dst.pixels(), &whole, dst.pitch(), &src.at(-srcRect.left, -srcRect.top), &part, src.pitch(),
                    dst.width() / 2, dst.height() / 2, angle, isHigh ? 9 : 3000, isHigh ? 3000 : 9);
            return dst;
        };
        const Surface expected = turned(plain::iRotateLinear);
        EXPECT_NE(expected.differenceFrom(before), "") << number;
        ASSERT_EQ(turned(iRotateLinear).differenceFrom(expected), "") << number;
    }
}

TEST(iRotateLinear, mixes_neighbours_at_half_steps) {
    Surface src = painted(Surface(4, 4), {0, 0, 4, 4},
                          [](int x, int y) { return static_cast<q_ulong>(0x100010 * x + 0x1000 * y); });
    // Enlarged twice about (4, 4); half the clip is (4, 4) in the source: columns 0.5 on from there go back to 0.
    const Surface dst = drawn(iRotateLinear, blank(8, 8), src, {8, 8, 0, 8, 8});
    EXPECT_EQ(dst.at(4, 4), 0x282028u); // column 4 - 2 + 0.5, row 2
    EXPECT_EQ(dst.at(5, 4), untouched); // column 3
    EXPECT_EQ(dst.at(4, 5), 0x282828u); // row 2.5
    EXPECT_EQ(dst.at(4, 6), untouched); // row 3
}

TEST(iRotateLinearAA, sets_the_top_byte_of_its_source_even_where_it_draws_nothing) {
    Random random(1);
    const Surface src = Surface::randomOfSize(random, 16, 13);
    const tagRECT rect = {2, 3, 9, 11};
    for (const int width : {0, 1}) {
        Surface source = src;
        const Surface dst =
            drawn(iRotateLinearAA, blank(8, 8), source, {4, 4, 0, width, 1 - width, {0, 0, 8, 8}, rect});
        EXPECT_EQ(dst.differenceFrom(blank(8, 8)), "");
        const Surface covered = painted(src, rect, [&src](int x, int y) { return src.at(x, y) | 0xFF000000; });
        EXPECT_EQ(source.differenceFrom(covered), "");
    }
}

TEST(iRotateLinearAA, at_angle_0_inside_the_source_writes_plain_filtered_colour) {
    Surface src = placesOf(8, 6);
    const Surface expected =
        painted(blank(8, 6), {0, 0, 7, 5}, [](int x, int y) { return place(x + 1, y) & 0xFFFFFF; });
    EXPECT_EQ(drawn(iRotateLinearAA, blank(8, 6), src, {4, 3, 0, 8, 6}).differenceFrom(expected), "");
}

TEST(iRotateLinearAA, an_edge_takes_the_brightest_tap_by_its_coverage) {
    Surface src(16, 16);
    src.at(8, 8) = 0x4080C0;
    // A source of one pixel, enlarged four times around the middle: a step is a quarter of a pixel.
    const Surface dst =
        drawn(iRotateLinearAA, Surface(16, 16, 0xFF806020), src, {8, 8, 0, 4, 4, {0, 0, 16, 16}, {8, 8, 9, 9}});
    // The pixel (7, 8) stands at source column 8 - 1/4 + 1/4: fully covered.
    EXPECT_EQ(dst.at(7, 8), 0x4080C0u);
    // (8, 8) a quarter further right: coverage 255 * 12 * 16 / 256 = 191, the rest 64.
    const q_ulong red = (0x40 * 191 + 0x80 * 64) >> 8;
    const q_ulong green = (0x80 * 191 + 0x60 * 64) >> 8;
    const q_ulong blue = (0xC0 * 191 + 0x20 * 64) >> 8;
    EXPECT_EQ(dst.at(8, 8), red << 16 | green << 8 | blue);
}

/// A disc of a picture of 40 by 40 pixels, turned over nothing.
Surface turnedDisc(int centreX, int centreY, int radius, double angle) {
    Surface src = placesOf(40, 40);
    Surface dst = blank(40, 40);
    tagRECT clip = dst.rect();
    iRotateCircleMapping(dst.pixels(), &clip, dst.pitch(), src.pixels(), nullptr, src.pitch(), centreX, centreY, radius,
                         angle);
    return dst;
}

TEST(iRotateCircleMapping, at_angle_0_copies_the_disc_on_itself) {
    for (const int radius : {0, 1, 2, 7, 15}) {
        const Surface dst = turnedDisc(20, 19, radius, 0);
        for (int y = 0; y < 40; ++y)
            for (int x = 0; x < 40; ++x) {
                const double distance = std::hypot(x - 20, y - 19);
                if (distance <= radius - 2) {
                    EXPECT_EQ(dst.at(x, y), place(x, y)) << x << ", " << y << " of radius " << radius;
                } else if (distance > radius + 1.5) {
                    EXPECT_EQ(dst.at(x, y), untouched) << x << ", " << y << " of radius " << radius;
                }
            }
    }
}

TEST(iRotateCircleMapping, turns_the_other_way_round_than_the_rectangles_and_copies_whole_pixels) {
    // Table angle -16384 sends (a, b) to (-b, a), and it is the source that it turns: what is left of the middle shows
    // what was above it, within the rounding of the chords.
    const Surface dst = turnedDisc(20, 20, 12, pi / 2);
    const auto expectNear = [&dst](int x, int y, int sourceX, int sourceY) {
        EXPECT_EQ(dst.at(x, y) >> 24, 0xFFu);
        EXPECT_NEAR(static_cast<int>(dst.at(x, y) & 0xFF), sourceX, 1);
        EXPECT_NEAR(static_cast<int>(dst.at(x, y) >> 8 & 0xFF), sourceY, 1);
    };
    expectNear(12, 20, 20, 12);
    expectNear(20, 12, 28, 20);
    expectNear(28, 20, 20, 28);
    expectNear(20, 28, 12, 20);
}

TEST(iRotateCircleMapping, an_enormous_radius_stays_inside_its_table) {
    Surface src(4, 4, 5);
    Surface dst = blank(4, 4);
    tagRECT clip = {0, 0, 0, 0};
    // The bytes of a table for 2^28 do not fit 32 bits; what is left of their number would be a small table.
    const int radius = sizeof(std::size_t) == 4 ? 0x10000000 + 5 : 100005;
    iRotateCircleMapping(dst.pixels(), &clip, dst.pitch(), src.pixels(), nullptr, src.pitch(), 2, 2, radius, 0.3);
    clip = dst.rect();
    iRotateCircleMapping(dst.pixels(), &clip, dst.pitch(), src.pixels(), nullptr, src.pitch(), 2, 2, leastInt, 0.3);
    EXPECT_EQ(dst.differenceFrom(blank(4, 4)), "");
}

} // namespace
