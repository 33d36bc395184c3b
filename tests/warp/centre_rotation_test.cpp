#include "support/surface.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <numbers>
#include <vector>

namespace {

using test::Surface;

/// The arguments that four of the five functions share.
struct Scene {
    tagRECT clip = {};
    tagRECT srcRect = {};
    int centreX = 0;
    int centreY = 0;
    double angle = 0;
    int width = 0;
    int height = 0;
};

using Rotator = void(q_ulong *, tagRECT *, int, q_ulong *, tagRECT *, int, int, int, double, int, int);

void draw(Rotator *rotator, Surface &dst, Surface &src, Scene scene) {
    rotator(dst.pixels(), &scene.clip, dst.pitch(), src.pixels(), &scene.srcRect, src.pitch(), scene.centreX,
            scene.centreY, scene.angle, scene.width, scene.height);
}

constexpr double pi = std::numbers::pi;
constexpr q_ulong untouched = 0x11111111;

/// A picture whose pixels tell their own place.
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

constexpr Rotator *rotators[] = {iRotateMapping, iRotate, iRotateLinear, iRotateLinearAA};

TEST(iRotateMapping, an_upright_rectangle_leaves_out_its_first_and_last_row) {
    // The right edge goes down and counts the rows 2 to 6, the left one goes up and counts 3 to 7: the rows 2 and 7
    // have one crossing each. Both columns of a span are drawn.
    Surface src(6, 5, 0x00040404);
    Surface dst(12, 12, untouched);
    draw(iRotateMapping, dst, src, {dst.rect(), {0, 0, 3, 3}, 5, 4, 0, 6, 5});
    Surface expected(12, 12, untouched);
    for (int y = 3; y <= 6; ++y)
        for (int x = 2; x <= 8; ++x)
            expected.at(x, y) = 0x00040404;
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

TEST(iRotateMapping, source_rows_run_from_one_edge_to_the_other_in_sixteenths) {
    // On the first row drawn the right edge stands 1 * 4 * 16 / 5 = 12 sixteenths down, the left one, which is told
    // from its lower end, 64 - 4 * 4 * 16 / 5 = 13.
    Surface src(6, 5);
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 6; ++x)
            src.at(x, y) = static_cast<q_ulong>(y * 16) | 0xFF000000;
    Surface dst(12, 12, untouched);
    draw(iRotateMapping, dst, src, {dst.rect(), src.rect(), 5, 4, 0, 6, 5});
    EXPECT_EQ(dst.at(2, 3), 13u);
    EXPECT_EQ(dst.at(8, 3), 12u);
}

TEST(iRotateMapping, a_row_with_a_single_crossing_draws_nothing) {
    // On its corner: the top corner's row belongs to the edge that leaves it alone.
    Surface src(4, 4, 5);
    Surface dst(32, 32, untouched);
    draw(iRotateMapping, dst, src, {dst.rect(), {1, 1, 3, 3}, 16, 16, pi / 4, 16, 16});
    // 8 * 23170 * 2 / 32768 is 11.3; the floor of its negative is 12 above the middle.
    const auto columns = [&](int y) {
        int count = 0;
        for (int x = 0; x < 32; ++x)
            count += dst.at(x, y) != untouched;
        return count;
    };
    EXPECT_EQ(columns(16 - 12), 0);
    EXPECT_GT(columns(16 - 11), 0);
    EXPECT_GT(columns(16 + 10), 0);
    EXPECT_EQ(columns(16 + 11), 0);
}

TEST(iRotateMapping, turns_the_same_way_as_the_direct_mappers) {
    Surface src(32, 32);
    const q_ulong quadrants[2][2] = {{0xFF0000, 0x00FF00}, {0x0000FF, 0xFFFFFF}};
    for (int y = 0; y < 32; ++y)
        for (int x = 0; x < 32; ++x)
            src.at(x, y) = quadrants[y / 16][x / 16];
    for (Rotator *const rotator : rotators) {
        const auto quadrantsAt = [&](double angle) {
            Surface dst(32, 32, untouched);
            Surface source = src;
            draw(rotator, dst, source, {dst.rect(), src.rect(), 16, 16, angle, 32, 32});
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

TEST(iRotateMapping, figures_wholly_outside_and_of_no_size_draw_nothing) {
    Surface src(8, 8, 5);
    for (Rotator *const rotator : rotators) {
        Surface dst(8, 8, untouched);
        for (const int x : {-1000, -40, 4, 40, 1000})
            for (const int y : {-1000, -40, 4, 40, 1000}) {
                if (x != 4 || y != 4)
                    draw(rotator, dst, src, {dst.rect(), src.rect(), x, y, 0.7, 8, 8});
            }
        draw(rotator, dst, src, {dst.rect(), src.rect(), 4, 4, 0.7, 0, 8});
        draw(rotator, dst, src, {dst.rect(), src.rect(), 4, 4, 0.7, 8, 0});
        draw(rotator, dst, src, {{4, 0, 4, 8}, src.rect(), 4, 4, 0.7, 8, 8});
        draw(rotator, dst, src, {{0, 5, 8, 5}, src.rect(), 4, 4, 0.7, 8, 8});
        draw(rotator, dst, src, {{6, 0, 2, 8}, src.rect(), 4, 4, 0.7, 8, 8});
        EXPECT_EQ(dst.differenceFrom(Surface(8, 8, untouched)), "");
    }
}

TEST(iRotateMapping, a_clip_at_the_ends_of_the_number_range_draws_nothing) {
    Surface src(8, 8, 5);
    for (Rotator *const rotator : rotators) {
        Surface dst(8, 8, untouched);
        for (const tagRECT &clip : {tagRECT{0, 0, INT_MIN, 8}, tagRECT{0, 0, 8, INT_MIN},
                                    tagRECT{INT_MAX, 0, INT_MAX, 8}, tagRECT{0, INT_MAX, 8, INT_MAX}})
            draw(rotator, dst, src, {clip, src.rect(), 4, 4, 0, 8, 8});
        EXPECT_EQ(dst.differenceFrom(Surface(8, 8, untouched)), "");
    }
}

TEST(iRotate, at_angle_0_each_pixel_shows_its_right_neighbour_and_the_last_column_and_row_stay) {
    Surface src = placesOf(8, 6);
    Surface dst(8, 6, untouched);
    draw(iRotate, dst, src, {src.rect(), src.rect(), 4, 3, 0, 8, 6});
    Surface expected(8, 6, untouched);
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 7; ++x)
            expected.at(x, y) = place(x + 1, y);
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

TEST(iRotate, the_centre_in_the_source_comes_from_the_size_of_the_clip) {
    Surface src = placesOf(16, 16);
    Surface dst(16, 16, untouched);
    // A clip of 6 by 8: the centre falls on (3, 4) of the source, wherever the clip lies.
    draw(iRotate, dst, src, {{2, 3, 8, 11}, src.rect(), 5, 7, 0, 16, 16});
    Surface expected(16, 16, untouched);
    for (int y = 3; y < 10; ++y)
        for (int x = 2; x < 7; ++x)
            expected.at(x, y) = place(x - 5 + 3 + 1, y - 7 + 4);
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

TEST(iRotate, what_maps_outside_the_source_stays) {
    Surface src = placesOf(16, 16);
    Surface dst(16, 16, untouched);
    draw(iRotate, dst, src, {dst.rect(), {6, 7, 9, 11}, 8, 8, 0, 3, 4});
    // The figure is 7 to 10 by 6 to 10; source columns 6 to 8 stand one column further left, and column 6 before it.
    Surface expected(16, 16, untouched);
    for (int y = 7; y < 10; ++y)
        expected.at(7, y) = place(8, y);
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

TEST(iRotateLinear, clears_the_top_byte_and_ends_one_pixel_before_the_source) {
    Surface src = placesOf(8, 6);
    Surface dst(8, 6, untouched);
    draw(iRotateLinear, dst, src, {src.rect(), src.rect(), 4, 3, 0, 8, 6});
    Surface expected(8, 6, untouched);
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 6; ++x) // column 6 would show source column 7, the last
            expected.at(x, y) = place(x + 1, y) & 0xFFFFFF;
    EXPECT_EQ(dst.differenceFrom(expected), "");
}

TEST(iRotateLinear, mixes_neighbours_at_half_steps) {
    Surface src(4, 4);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 4; ++x)
            src.at(x, y) = static_cast<q_ulong>(0x100010 * x + 0x1000 * y);
    Surface dst(8, 8, untouched);
    // Enlarged twice about (4, 4); half the clip is (4, 4) in the source: columns 0.5 on from there go back to 0.
    draw(iRotateLinear, dst, src, {{0, 0, 8, 8}, src.rect(), 8, 8, 0, 8, 8});
    EXPECT_EQ(dst.at(4, 4), 0x282028u); // column 4 - 2 + 0.5, row 2
    EXPECT_EQ(dst.at(5, 4), untouched); // column 3
    EXPECT_EQ(dst.at(4, 5), 0x282828u); // row 2.5
    EXPECT_EQ(dst.at(4, 6), untouched); // row 3
}

TEST(iRotateLinearAA, sets_the_top_byte_of_its_source_even_where_it_draws_nothing) {
    test::Random random(1);
    Surface src = Surface::randomOfSize(random, 16, 13);
    Surface expected = src;
    const tagRECT rect = {2, 3, 9, 11};
    for (int y = 3; y < 11; ++y)
        for (int x = 2; x < 9; ++x)
            expected.at(x, y) |= 0xFF000000;
    for (const int width : {0, 1}) {
        Surface dst(8, 8, untouched);
        Surface source = src;
        draw(iRotateLinearAA, dst, source, {dst.rect(), rect, 4, 4, 0, width, 1 - width});
        EXPECT_EQ(source.differenceFrom(expected), "");
        EXPECT_EQ(dst.differenceFrom(Surface(8, 8, untouched)), "");
    }
}

TEST(iRotateLinearAA, at_angle_0_inside_the_source_writes_plain_filtered_colour) {
    Surface src(8, 6);
    for (int y = 0; y < 6; ++y)
        for (int x = 0; x < 8; ++x)
            src.at(x, y) = static_cast<q_ulong>(x * 0x030507 + y * 0x070503);
    const Surface before = src;
    Surface dst(8, 6, untouched);
    draw(iRotateLinearAA, dst, src, {src.rect(), src.rect(), 4, 3, 0, 8, 6});
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 7; ++x)
            EXPECT_EQ(dst.at(x, y), before.at(x + 1, y));
    EXPECT_EQ(dst.at(7, 0), untouched);
    EXPECT_EQ(dst.at(0, 5), untouched);
}

TEST(iRotateLinearAA, an_edge_takes_the_brightest_tap_by_its_coverage) {
    Surface src(16, 16);
    src.at(8, 8) = 0x4080C0;
    Surface dst(16, 16, 0xFF806020);
    // A source of one pixel, enlarged four times around the middle: a step is a quarter of a pixel.
    draw(iRotateLinearAA, dst, src, {dst.rect(), {8, 8, 9, 9}, 8, 8, 0, 4, 4});
    // The pixel (7, 8) stands at source column 8 - 1/4 + 1/4: fully covered.
    EXPECT_EQ(dst.at(7, 8), 0x4080C0u);
    // (8, 8) a quarter further right: coverage 255 * 12 * 16 / 256 = 191, the rest 64.
    const q_ulong red = (0x40 * 191 + 0x80 * 64) >> 8;
    const q_ulong green = (0x80 * 191 + 0x60 * 64) >> 8;
    const q_ulong blue = (0xC0 * 191 + 0x20 * 64) >> 8;
    EXPECT_EQ(dst.at(8, 8), red << 16 | green << 8 | blue);
}

TEST(iRotateCircleMapping, at_angle_0_copies_the_disc_on_itself) {
    Surface src = placesOf(40, 40);
    for (const int radius : {0, 1, 2, 7, 15}) {
        Surface dst(40, 40, untouched);
        tagRECT clip = dst.rect();
        iRotateCircleMapping(dst.pixels(), &clip, dst.pitch(), src.pixels(), nullptr, src.pitch(), 20, 19, radius, 0);
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
    Surface src = placesOf(40, 40);
    Surface dst(40, 40, untouched);
    tagRECT clip = dst.rect();
    iRotateCircleMapping(dst.pixels(), &clip, dst.pitch(), src.pixels(), nullptr, src.pitch(), 20, 20, 12, pi / 2);
    // Table angle -16384 sends (a, b) to (-b, a), and it is the source that it turns: what is left of the middle shows
    // what was above it, within the rounding of the chords.
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
    Surface dst(4, 4, untouched);
    tagRECT clip = {0, 0, 0, 0};
    // The bytes of a table for 2^28 do not fit 32 bits; what is left of their number would be a small table.
    const int radius = sizeof(std::size_t) == 4 ? 0x10000000 + 5 : 100005;
    iRotateCircleMapping(dst.pixels(), &clip, dst.pitch(), src.pixels(), nullptr, src.pitch(), 2, 2, radius, 0.3);
    clip = dst.rect();
    iRotateCircleMapping(dst.pixels(), &clip, dst.pitch(), src.pixels(), nullptr, src.pitch(), 2, 2, INT_MIN, 0.3);
    EXPECT_EQ(dst.differenceFrom(Surface(4, 4, untouched)), "");
}

} // namespace
