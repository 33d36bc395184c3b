#include "plain/bubbles.h"
#include "support/surface.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <vector>

namespace {

using test::Surface;

q_ulong lightOf(q_ulong word) {
    return word & 0xFF;
}
q_ulong tintOf(q_ulong word) {
    return word >> 8 & 0xFF;
}
q_ulong highlightOf(q_ulong word) {
    return word >> 16 & 0xFF;
}

/// A resource alone on a surface.
Surface sphere(int size, int secondHighlight) {
    Surface resource(size, size);
    MakeBubbleResource(resource.pixels(), resource.pitch(), 0, 0, size, secondHighlight);
    return resource;
}

Surface spots(int size, int secondHighlight) {
    Surface resource(size, size);
    MakeBubbleResource2(resource.pixels(), resource.pitch(), 0, 0, size, secondHighlight);
    return resource;
}

bool insideDisc(int i, int j, int size) {
    const int radius = size >> 1;
    return (i - radius) * (i - radius) + (j - radius) * (j - radius) < radius * radius;
}

// The resource with normals

TEST(MakeBubbleResource, the_centre_is_lit_by_its_nearly_level_facet) {
    // Heights 32, sqrt(1023) and sqrt(1023): with d = 0.015628 the normal is (d, d, -1) turned up, V . N =
    // (1 + 2 d) / sqrt(1 + 2 d^2) = 1.0310, times 80 is 82.48. W . N = 0.829, whose 128th power is nothing.
    EXPECT_EQ(sphere(64, 0).at(32, 32), 80u + 82u);
}

TEST(MakeBubbleResource, outside_the_disc_the_facets_are_level) {
    // V . N = 1. tint = ((32^2 + 32^2) << 7) / 32^2 = 256 at the corner, which carries into the highlight.
    EXPECT_EQ(sphere(64, 0).at(0, 0), 160u | 256u << 8);
}

TEST(MakeBubbleResource, the_tint_rises_with_the_square_of_the_radius) {
    const Surface resource = sphere(64, 0);
    for (int i = 0; i < 64; ++i)
        for (int j = 0; j < 64; ++j)
            if (insideDisc(i, j, 64)) {
                const int squared = (i - 32) * (i - 32) + (j - 32) * (j - 32);
                EXPECT_EQ(tintOf(resource.at(i, j)), static_cast<q_ulong>(squared * 128 / 1024));
                EXPECT_LT(tintOf(resource.at(i, j)), 128u);
            }
}

TEST(MakeBubbleResource, the_light_comes_from_the_upper_left) {
    const Surface resource = sphere(96, 0);
    q_ulong brightest = 0;
    q_ulong shiniest = 0;
    int brightX = 0, brightY = 0, shinyX = 0, shinyY = 0;
    for (int j = 0; j < 96; ++j)
        for (int i = 0; i < 96; ++i) {
            const q_ulong word = resource.at(i, j);
            if (!insideDisc(i, j, 96))
                continue;
            if (lightOf(word) > brightest) {
                brightest = lightOf(word);
                brightX = i;
                brightY = j;
            }
            if (highlightOf(word) > shiniest) {
                shiniest = highlightOf(word);
                shinyX = i;
                shinyY = j;
            }
        }
    // Brightest where the normal is (-1, -1, 1) / sqrt(3): 48 / sqrt(3) = 27.7 from the centre; 80 sqrt(3) = 138.6.
    EXPECT_EQ(brightest, 218u);
    EXPECT_NEAR(brightX, 48 - 27.7, 3);
    EXPECT_NEAR(brightY, 48 - 27.7, 3);
    // The highlight is where it is (-1, -1, 2) / sqrt(6): 48 / sqrt(6) = 19.6 from the centre.
    EXPECT_GE(shiniest, 195u);
    EXPECT_LE(shiniest, 200u);
    EXPECT_NEAR(shinyX, 48 - 19.6, 1.1);
    EXPECT_NEAR(shinyY, 48 - 19.6, 1.1);
}

TEST(MakeBubbleResource, the_dark_side_has_the_light_of_the_surroundings_alone) {
    const Surface resource = sphere(64, 0);
    EXPECT_EQ(lightOf(resource.at(32 + 20, 32 + 20)), 80u);
    EXPECT_EQ(highlightOf(resource.at(32 + 20, 32 + 20)), 0u);
}

TEST(MakeBubbleResource, the_second_highlight_changes_the_lower_right_quadrant_alone) {
    for (const int size : {33, 64}) {
        const Surface without = sphere(size, 0);
        const Surface with = sphere(size, -3);
        int changed = 0;
        q_ulong shiniest = 0;
        for (int j = 0; j < size; ++j)
            for (int i = 0; i < size; ++i) {
                const bool quadrant = i > size / 2 && j > size / 2;
                if (!quadrant) {
                    EXPECT_EQ(with.at(i, j), without.at(i, j)) << i << ", " << j;
                }
                changed += with.at(i, j) != without.at(i, j);
                if (quadrant && insideDisc(i, j, size))
                    shiniest = std::max(shiniest, highlightOf(with.at(i, j)));
            }
        EXPECT_GT(changed, 10);
        EXPECT_GE(shiniest, 40u);
        EXPECT_LE(shiniest, 50u);
    }
}

TEST(MakeBubbleResource, sizes_below_2_write_nothing) {
    for (const int size : {1, 0, -1, -2, -40, INT_MIN}) {
        Surface resource(4, 4, 0xABABABAB);
        MakeBubbleResource(resource.pixels(), resource.pitch(), 1, 1, size, 1);
        MakeBubbleResource2(resource.pixels(), resource.pitch(), 1, 1, size, 1);
        EXPECT_EQ(resource.differenceFrom(Surface(4, 4, 0xABABABAB)), "");
    }
}

// The resource with spots

TEST(MakeBubbleResource2, the_centres_of_its_three_spots) {
    // R = 90: the first highlight is at (120, 60), 1800 from the light at (150, 30): 200 cos(0.34515) = 188.2. The tint
    // there is (1800 << 7) / 8100 = 28, at the light (7200 << 7) / 8100 = 113.
    const Surface resource = spots(180, 1);
    EXPECT_EQ(resource.at(120, 60), 200u << 16 | 28u << 8 | (55u + 188u));
    EXPECT_EQ(resource.at(150, 30), 113u << 8 | (55u + 200u));
    EXPECT_EQ(highlightOf(resource.at(60, 120)), 64u);
    EXPECT_EQ(highlightOf(spots(180, 0).at(60, 120)), 0u);
}

TEST(MakeBubbleResource2, the_spots_keep_their_extent_whatever_the_size) {
    // 22^2 is below 512, 23^2 is not: at 484 the highlight is 200 cos(1.48489)^16, nothing as a whole number; at 10^2
    // it is 200 cos(0.3068)^16 = 93.0 or a little more. 90^2 is below 8192: 200 cos(1.55316) = 3.5.
    for (const int size : {180, 240, 300}) {
        const Surface resource = spots(size, 0);
        const int radius = size / 2;
        const int x = radius + radius / 3;
        const int y = radius - radius / 3;
        EXPECT_EQ(highlightOf(resource.at(x - 10, y)), 93u) << size;
        EXPECT_EQ(highlightOf(resource.at(x - 22, y)), 0u) << size;
        const int lightX = radius + 2 * radius / 3;
        const int lightY = radius - 2 * radius / 3;
        EXPECT_EQ(lightOf(resource.at(lightX - 90, lightY)), 55u + 3u) << size;
        EXPECT_EQ(lightOf(resource.at(lightX - 91, lightY)), 55u) << size;
    }
}

TEST(MakeBubbleResource2, the_second_highlight_goes_before_the_first_where_they_overlap) {
    // R = 6: the highlights are at (8, 4) and (4, 8), 32 from each other. cos(32 a)^16 is 0.926: 59 of 64, 185 of 200.
    EXPECT_EQ(highlightOf(spots(12, 1).at(8, 4)), 59u);
    EXPECT_EQ(highlightOf(spots(12, 1).at(4, 8)), 64u);
    EXPECT_EQ(highlightOf(spots(12, 0).at(8, 4)), 200u);
    EXPECT_EQ(highlightOf(spots(12, 0).at(4, 8)), 185u);
}

// Drawing

constexpr q_ulong resourceWord(q_ulong light, q_ulong tint, q_ulong highlight) {
    return light | tint << 8 | highlight << 16;
}

/// A picture whose pixels tell where they stand.
Surface positions(int width, int height) {
    Surface surface(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            surface.at(x, y) = static_cast<q_ulong>(y << 8 | x);
    return surface;
}

using DrawBubble = void (*)(q_ulong *, q_ulong *, int, int, int, int, q_ulong *, int, q_ulong, int, int);

/// Draws a bubble from a resource that is the same word all over.
void drawEven(DrawBubble draw, Surface &dst, int cx, int cy, int size, q_ulong word, q_ulong color) {
    std::vector<q_ulong> scratch(static_cast<std::size_t>(size * size));
    std::vector<q_ulong> resource(static_cast<std::size_t>(dst.pitch() * 4), word);
    draw(dst.pixels(), scratch.data(), dst.pitch(), cx, cy, size, resource.data(), 4, color, dst.width(), dst.height());
}

TEST(DrawRealBubble, refracts_by_hand_worked_values) {
    for (const DrawBubble draw : {DrawRealBubble, DrawRealBubbleOld}) {
        Surface dst = positions(200, 200);
        drawEven(draw, dst, 100, 100, 64, resourceWord(128, 0, 0), 0);
        // unit = 65536 / 4096 = 16. At (16, 0): s = 4096, k = 48 + 29 = 77, 16 * 77 / 128 = 9.6.
        EXPECT_EQ(dst.at(116, 100), 100u << 8 | 109u);
        EXPECT_EQ(dst.at(84, 100), 100u << 8 | 90u); // -9.6 goes down to -10
        EXPECT_EQ(dst.at(100, 116), 109u << 8 | 100u);
        EXPECT_EQ(dst.at(100, 84), 90u << 8 | 100u);
        // At (1, 0): s = 16, -29 * 16 >> 12 = -1, k = 49: 0.38 and -0.38.
        EXPECT_EQ(dst.at(101, 100), 100u << 8 | 100u);
        EXPECT_EQ(dst.at(99, 100), 100u << 8 | 99u);
        // At (24, 12): d2 = 720, s = 11520, -29 * 11520 >> 12 = -82, k = 130: 24.4 and 12.2.
        EXPECT_EQ(dst.at(124, 112), 112u << 8 | 124u);
    }
}

TEST(DrawRealBubble, the_centre_shows_what_lies_under_it) {
    for (const DrawBubble draw : {DrawRealBubble, DrawRealBubbleOld})
        for (const int size : {20, 41, 64, 180}) {
            Surface dst = positions(200, 200);
            drawEven(draw, dst, 90, 110, size, resourceWord(255, 0, 0), 0xFFFFFF);
            EXPECT_EQ(dst.at(90, 110), 110u << 8 | 90u);
        }
}

TEST(DrawRealBubble, without_tint_and_highlight_the_colour_does_not_matter) {
    Surface black = positions(100, 100);
    Surface white = black;
    drawEven(DrawRealBubble, black, 50, 50, 40, resourceWord(255, 0, 0), 0);
    drawEven(DrawRealBubble, white, 50, 50, 40, resourceWord(255, 0, 0), 0xFFFFFF);
    EXPECT_EQ(black.differenceFrom(white), "");
    EXPECT_EQ(black.at(50, 50), 50u << 8 | 50u);
}

TEST(DrawRealBubble, shows_black_where_the_ray_leaves_the_surface) {
    // The bubble's own pixel (4, 50) is on the surface, at dx = -30: s = 900 * 16 = 14400, k = 48 + 102 = 150, so the
    // background is sought at 34 - 36 = -2.
    for (const DrawBubble draw : {DrawRealBubble, DrawRealBubbleOld}) {
        Surface dst(200, 100, 0xFFFFFFFF);
        drawEven(draw, dst, 34, 50, 64, resourceWord(128, 0, 0), 0);
        EXPECT_EQ(dst.at(4, 50), 0u);
        // At (-28, 0): s = 12544, k = 48 + 89 = 137, the ray comes from 34 - 30 = 4.
        EXPECT_EQ(dst.at(6, 50), 0x00FFFFFFu);
    }
}

TEST(DrawRealBubble, light_tint_and_highlight_by_hand) {
    // Colour (200, 100, 50) lit by 192 / 128 is (255, 150, 75). Background (10, 20, 30), tint 64:
    // (10 * 192 + 255 * 64) / 256 = 71, (20 * 192 + 150 * 64) / 256 = 52, (30 * 192 + 75 * 64) / 256 = 41; plus 200
    // saturated: 255, 252, 241. The top byte becomes 0.
    for (const DrawBubble draw : {DrawRealBubble, DrawRealBubbleOld}) {
        Surface dst(60, 60, 0xAB0A141E);
        drawEven(draw, dst, 30, 30, 16, resourceWord(192, 64, 200) | 0xEE000000, 0x77C86432);
        EXPECT_EQ(dst.at(30, 30), 0x00FFFCF1u);
    }
}

TEST(DrawRealBubble, the_rim_is_softened_over_one_pixel) {
    // At (31, 7) of a radius of 32: sqrt(1010) = 31.7805, e = 8192 - 8135 = 57. The word there is the background
    // plus 64.
    Surface dst(200, 200, 0xFF808080);
    drawEven(DrawRealBubble, dst, 100, 100, 64, resourceWord(128, 0, 64), 0);
    EXPECT_EQ(dst.at(131, 107), 0x8E8E8Eu); // (128 * 199 + 192 * 57) / 256 = 142.25
    // At (31, 0) e is 256, and the word stands as it is; one pixel further the surface does.
    EXPECT_EQ(dst.at(131, 100), 0xC0C0C0u);
    EXPECT_EQ(dst.at(68, 100), 0xFF808080u);
}

TEST(DrawRealBubbleOld, the_rim_is_hard) {
    Surface dst(200, 200, 0xFF808080);
    drawEven(DrawRealBubbleOld, dst, 100, 100, 64, resourceWord(128, 0, 64), 0);
    EXPECT_EQ(dst.at(131, 107), 0xC0C0C0u);
    EXPECT_EQ(dst.at(68, 100), 0xFF808080u);
}

TEST(DrawRealBubbleOld, a_radius_beyond_90_needs_no_table) {
    Surface dst(300, 300, 0x808080);
    drawEven(DrawRealBubbleOld, dst, 150, 150, 260, resourceWord(128, 0, 64), 0);
    // Beyond 256 the refraction is the same all over: 48 / 128.
    EXPECT_EQ(dst.at(150 + 129, 150), 0xC0C0C0u);
    EXPECT_EQ(dst.at(150 - 129, 150), 0xC0C0C0u);
    EXPECT_EQ(dst.at(150 - 130, 150), 0x808080u);
}

TEST(DrawRealBubbleOld, reads_the_resource_by_the_pitch_of_the_surface) {
    // The same resource, once in rows of its own length and once in an image as wide as the surface.
    Surface image(64, 64);
    MakeBubbleResource(image.pixels(), image.pitch(), 0, 0, 32, 1);
    std::vector<q_ulong> packed;
    for (int y = 0; y < 32; ++y)
        for (int x = 0; x < 32; ++x)
            packed.push_back(image.at(x, y));
    std::vector<q_ulong> scratch(32 * 32);
    Surface ball = positions(64, 64);
    Surface wide = ball;
    Surface wrong = ball;
    DrawRealBubble(ball.pixels(), scratch.data(), ball.pitch(), 32, 32, 32, packed.data(), 32, 0x80FF40, 64, 64);
    DrawRealBubbleOld(wide.pixels(), scratch.data(), wide.pitch(), 32, 32, 32, image.pixels(), 32, 0x80FF40, 64, 64);
    // Rows that are too short: the bytes behind them stand in.
    packed.resize(static_cast<std::size_t>(wrong.pitch() * 32), 0x00FFFFFF);
    DrawRealBubbleOld(wrong.pixels(), scratch.data(), wrong.pitch(), 32, 32, 32, packed.data(), 32, 0x80FF40, 64, 64);
    int differing = 0;
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 64; ++x) {
            const int squared = (x - 32) * (x - 32) + (y - 32) * (y - 32);
            if (squared < 15 * 15) {
                EXPECT_EQ(wide.at(x, y), ball.at(x, y)) << x << ", " << y;
            }
            differing += wrong.at(x, y) != wide.at(x, y);
        }
    EXPECT_GT(differing, 100);
}

void drawEvenBall(Surface &dst, int cx, int cy, int size, q_ulong word, q_ulong color) {
    std::vector<q_ulong> resource(16, word);
    DrawReal3DBall(dst.pixels(), dst.pitch(), cx, cy, size, resource.data(), 4, color, dst.width(), dst.height());
}

TEST(DrawReal3DBall, lights_the_colour_and_adds_the_highlight) {
    // (200, 100, 50) * 192 / 128 = (300, 150, 75), plus 30, saturated; the tint is ignored and the top byte is 0.
    Surface dst(20, 20, 0xFFFFFFFF);
    drawEvenBall(dst, 10, 10, 9, resourceWord(192, 127, 30), 0xFFC86432);
    EXPECT_EQ(dst.at(10, 10), 0x00FFB469u);
}

TEST(DrawReal3DBall, pixels_exactly_on_the_rim_belong_to_it) {
    Surface ball(30, 30);
    drawEvenBall(ball, 15, 15, 21, resourceWord(128, 0, 0), 0xFFFFFF);
    Surface bubble(30, 30, 0xFFFFFF);
    drawEven(DrawRealBubbleOld, bubble, 15, 15, 21, resourceWord(128, 127, 0), 0);
    for (const auto &[dx, dy] : {std::pair{10, 0}, {-10, 0}, {0, 10}, {0, -10}, {6, 8}, {-8, 6}}) {
        EXPECT_EQ(ball.at(15 + dx, 15 + dy), 0xFFFFFFu);
        EXPECT_EQ(bubble.at(15 + dx, 15 + dy), 0xFFFFFFu);
    }
    EXPECT_EQ(ball.at(15 + 8, 15 + 7), 0u);
    EXPECT_NE(bubble.at(15 + 9, 15), 0xFFFFFFu);
}

TEST(DrawReal3DBall, an_even_size_ends_a_pixel_before_the_rim_at_the_right_and_the_bottom) {
    Surface ball(30, 30);
    drawEvenBall(ball, 15, 15, 20, resourceWord(128, 0, 0), 0xFFFFFF);
    EXPECT_EQ(ball.at(5, 15), 0xFFFFFFu);
    EXPECT_EQ(ball.at(15, 5), 0xFFFFFFu);
    EXPECT_EQ(ball.at(25, 15), 0u);
    EXPECT_EQ(ball.at(15, 25), 0u);
    EXPECT_EQ(ball.at(24, 15), 0xFFFFFFu);
}

TEST(DrawReal3DBall, a_size_of_1_is_one_pixel_and_a_bubble_of_that_size_none) {
    Surface ball(8, 8);
    Surface expected = ball;
    expected.at(3, 4) = 0x102030;
    drawEvenBall(ball, 3, 4, 1, resourceWord(128, 0, 0), 0x102030);
    EXPECT_EQ(ball.differenceFrom(expected), "");
    for (const DrawBubble draw : {DrawRealBubble, DrawRealBubbleOld}) {
        Surface bubble(8, 8);
        drawEven(draw, bubble, 3, 4, 1, resourceWord(128, 0, 255), 0xFFFFFF);
        EXPECT_EQ(bubble.differenceFrom(Surface(8, 8)), "");
    }
}

TEST(DrawReal3DBall, the_whole_resource_lies_over_the_whole_ball) {
    // A size of 8 shows each word of a resource of 4 by 4 on 2 by 2 pixels.
    std::vector<q_ulong> resource;
    for (q_ulong i = 0; i < 16; ++i)
        resource.push_back(resourceWord(0, 0, 16 * i));
    Surface dst(16, 16);
    DrawReal3DBall(dst.pixels(), dst.pitch(), 8, 8, 8, resource.data(), 4, 0, 16, 16);
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x)
            if ((x - 4) * (x - 4) + (y - 4) * (y - 4) <= 16) {
                EXPECT_EQ(dst.at(4 + x, 4 + y), static_cast<q_ulong>(16 * (y / 2 * 4 + x / 2)) * 0x10101);
            }
}

TEST(DrawReal3DBall, the_farthest_centres_and_empty_surfaces_draw_nothing) {
    std::vector<q_ulong> resource(16, 0xFFFFFF);
    std::vector<q_ulong> scratch(400);
    const Surface picture = positions(12, 12);
    const auto expectNothing = [&](int cx, int cy, int size, int width, int height) {
        Surface dst = picture;
        for (const DrawBubble draw : {DrawRealBubble, DrawRealBubbleOld})
            draw(dst.pixels(), scratch.data(), dst.pitch(), cx, cy, size, resource.data(), 4, 0xFFFFFF, width, height);
        DrawReal3DBall(dst.pixels(), dst.pitch(), cx, cy, size, resource.data(), 4, 0xFFFFFF, width, height);
        EXPECT_EQ(dst.differenceFrom(picture), "") << cx << ", " << cy;
    };
    for (const int centre : {INT_MIN, INT_MIN + 5, -1000000, 1000000, INT_MAX - 5, INT_MAX}) {
        expectNothing(centre, 6, 20, 12, 12);
        expectNothing(6, centre, 20, 12, 12);
        expectNothing(centre, centre, 20, 12, 12);
    }
    for (const int none : {0, -1, -12, INT_MIN}) {
        expectNothing(6, 6, 10, none, 12);
        expectNothing(6, 6, 10, 12, none);
        expectNothing(6, 6, none, 12, 12);
    }
}

// Both against naive computations

TEST(MakeBubbleResource, resources_of_every_size_agree_with_a_naive_one_in_every_bit) {
    using Make = void (*)(q_ulong *, int, int, int, int, int);
    const auto check = [](Make make, Make makePlainly) {
        for (int size = 2; size < 300; size += size < 40 ? 1 : 13)
            for (const int secondHighlight : {0, 1}) {
                Surface resource(size + 3, size + 2, 0x12345678);
                Surface expected = resource;
                make(resource.pixels(), resource.pitch(), 2, 1, size, secondHighlight);
                makePlainly(expected.pixels(), expected.pitch(), 2, 1, size, secondHighlight);
                ASSERT_EQ(resource.differenceFrom(expected), "") << size;
            }
    };
    check(MakeBubbleResource, plain::MakeBubbleResource);
    check(MakeBubbleResource2, plain::MakeBubbleResource2);
}

TEST(DrawRealBubble, bubbles_of_every_size_agree_with_a_naive_one_over_the_edges_too) {
    PrepareSinTable();
    test::Random random(41);
    for (int size = 1; size <= 180; ++size) {
        const int width = random.between(1, 150);
        const int height = random.between(1, 120);
        const int resourceSize = random.between(1, 60);
        Surface surface = Surface::randomOfSize(random, width, height);
        std::vector<q_ulong> resource(static_cast<std::size_t>(surface.pitch() + 60) * 61);
        for (q_ulong &word : resource)
            word = random.word();
        const q_ulong color = random.word();
        const int cx = random.between(-40, width + 40);
        const int cy = random.between(-40, height + 40);
        const auto check = [&](auto draw, auto drawPlainly) {
            Surface drawn = surface;
            Surface expected = surface;
            std::vector<q_ulong> scratch(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
            draw(drawn.pixels(), scratch.data(), drawn.pitch(), cx, cy, size, resource.data(), resourceSize, color,
                 width, height);
            drawPlainly(expected.pixels(), scratch.data(), expected.pitch(), cx, cy, size, resource.data(),
                        resourceSize, color, width, height);
            ASSERT_EQ(drawn.differenceFrom(expected), "") << size;
        };
        check(DrawRealBubble, plain::DrawRealBubble);
        check(DrawRealBubbleOld, plain::DrawRealBubbleOld);
    }
}

} // namespace
