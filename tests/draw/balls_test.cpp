#include "naive.h"
#include "naive_shapes.h"

#include <gtest/gtest.h>

namespace {

using namespace naive::shapes;
using naive::Number;
using test::Case;
using test::ClippedShape;
using test::forEachCase;
using test::Shape;
using test::Surface;

constexpr int greatest = std::numeric_limits<int>::max();

TEST(Draw_3DBall, radius_0_draws_a_ball_of_radius_1_the_five_pixels_of_a_plus) {
    for (const int radius : {0, 1}) {
        Surface surface(5, 5, 0xFF112233);
        Surface expected = surface;
        expected.at(2, 2) = 0x00FF8040; // twice the colour
        expected.at(1, 2) = expected.at(3, 2) = expected.at(2, 1) = expected.at(2, 3) = 0;
        Draw_3DBall(surface.pixels(), surface.pitch(), 2, 2, radius, 0x77E04020, 12345);
        EXPECT_EQ(surface.differenceFrom(expected), "") << radius;
    }
}

TEST(Draw_3DBall, negative_radii_draw_nothing) {
    const Surface fresh(5, 5, 0xFF112233);
    for (const int radius : {-1, -2, -greatest - 1}) {
        Surface surface = fresh;
        Draw_3DBall(surface.pixels(), surface.pitch(), 2, 2, radius, 0xFFFFFF, 0);
        EXPECT_EQ(surface.differenceFrom(fresh), "") << radius;
    }
}

TEST(Draw_3DBall, is_brightest_half_a_radius_up_and_left_and_dark_at_the_lower_right) {
    // Radius 8: the light reaches 12, 1048576 / 144 is 7281, and 144 * 7281 / 2048 is 511 of 256.
    Surface surface(17, 17, 0xFFFFFFFF);
    Draw_3DBall(surface.pixels(), surface.pitch(), 8, 8, 8, 0x640000, 0);
    EXPECT_EQ(surface.at(4, 4), 199u << 16);
    EXPECT_EQ(surface.at(8, 8), 155u << 16); // 112 * 7281 / 2048 is 398
    EXPECT_EQ(surface.at(13, 13), 0u);       // 144 - 162 is below 0
}

TEST(Draw_3DBall, replaces_what_was_there_with_its_rim_included) {
    for (const q_ulong old : {0u, 0xFFFFFFFFu}) {
        Surface surface(17, 17, old);
        Draw_3DBall(surface.pixels(), surface.pitch(), 8, 8, 8, 0, 0);
        for (int y = 0; y < 17; ++y)
            for (int x = 0; x < 17; ++x)
                EXPECT_EQ(surface.at(x, y), (x - 8) * (x - 8) + (y - 8) * (y - 8) <= 64 ? 0u : old);
    }
}

TEST(Draw_3DBall, radii_above_256_are_cut_to_256) {
    for (const int radius : {256, 257, 1000, greatest}) {
        Surface surface(520, 520, 0xFF112233);
        Surface expected = surface;
        naiveBall(expected, 260, 260, 256, 0x4080FF, anywhere);
        Draw_3DBall(surface.pixels(), surface.pitch(), 260, 260, radius, 0x4080FF, 0);
        EXPECT_EQ(surface.differenceFrom(expected), "") << radius;
    }
}

TEST(Draw_3DBall, every_radius_up_to_100_agrees_with_a_naive_ball) {
    for (int radius = 0; radius <= 100; ++radius) {
        Surface surface(201, 201, 0xFF112233);
        Surface expected = surface;
        naiveBall(expected, 100, 100, radius, 0x4080FF, anywhere);
        Draw_3DBall(surface.pixels(), surface.pitch(), 100, 100, radius, 0x4080FF, 0);
        ASSERT_EQ(surface.differenceFrom(expected), "") << radius;
    }
}

TEST(Draw_3DBall, agrees_with_a_naive_ball) {
    forEachCase("Draw_3DBall", [](Case &c) {
        Shape shape(c.random);
        if (shape.radius == 0) // which is drawn as 1
            shape.x = shape.y = 0;
        Surface expected = shape.surface;
        naiveBall(expected, shape.x, shape.y, shape.radius, shape.colour, anywhere);
        Draw_3DBall(shape.surface.pixels(), shape.surface.pitch(), shape.x, shape.y, shape.radius, shape.colour,
                    c.random.word());
        c.expectEqual(shape.surface, expected);
    });
}

TEST(Draw_3DBall_Safe, all_four_limits_are_exclusive_so_the_first_row_and_column_stay) {
    Surface surface(31, 31, 0xFF000000);
    tagRECT clip = {10, 12, 18, 19};
    Draw_3DBall_Safe(surface.pixels(), surface.pitch(), &clip, 15, 15, 14, 0, 0);
    for (int y = 0; y < 31; ++y)
        for (int x = 0; x < 31; ++x)
            EXPECT_EQ(surface.at(x, y), x >= 11 && x <= 17 && y >= 13 && y <= 18 ? 0u : 0xFF000000u) << x << ", " << y;
}

TEST(Draw_3DBall_Safe, writes_nothing_outside_the_clip) {
    EXPECT_EQ(test::sweep(
                  {-greatest - 1, -5, -1, 0, 1, 2, 3, 5, 8, 12, 30, 256, 300, greatest},
                  [](Surface &s, tagRECT *clip, int x, int y, int radius) {
                      Draw_3DBall_Safe(s.pixels(), s.pitch(), clip, x, y, radius, 0x4080FF, 1);
                  },
                  [](Surface &s, const tagRECT &clip, int x, int y, int radius) {
                      naiveBallSafe(s, clip, x, y, radius, 0x4080FF);
                  }),
              "");
}

TEST(Draw_3DBall_Safe, extreme_centres_draw_nothing) {
    const Surface fresh(6, 6, 0x80112233);
    for (const int x : {-greatest - 1, -greatest + 5, greatest - 5, greatest})
        for (const int y : {-greatest - 1, 3, greatest}) {
            Surface surface = fresh;
            tagRECT clip = surface.rect();
            Draw_3DBall_Safe(surface.pixels(), surface.pitch(), &clip, x, y, 100, 0xFFFFFF, 0);
            EXPECT_EQ(surface.differenceFrom(fresh), "") << x << ", " << y;
        }
}

TEST(Draw_3DBall_Safe, agrees_with_a_naive_ball) {
    forEachCase("Draw_3DBall_Safe", [](Case &c) {
        ClippedShape shape(c.random);
        Surface expected = shape.surface;
        naiveBallSafe(expected, shape.clip, shape.x, shape.y, shape.radius, shape.colour);
        Draw_3DBall_Safe(shape.surface.pixels(), shape.surface.pitch(), &shape.clip, shape.x, shape.y, shape.radius,
                         shape.colour, c.random.word());
        c.expectEqual(shape.surface, expected);
    });
}

} // namespace
